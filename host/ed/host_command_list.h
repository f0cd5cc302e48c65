#pragma once

namespace ed {

// What the host's commands run.

void runNew();
void runOpen();
void runSave();
void runSaveAs();
void runClose();
void runQuit();

void runLayout();
void runNamedView();
void runZoom();
void runPan();
void runRegen();

void runUndoOne();
void runUndo();
void runRedo();
void runMultipleRedo();

void runAudit();
void runScriptCommand();
void runHelp();
void runSetVariable();

} // namespace ed
