#pragma once

class QMainWindow;
class QWidget;

namespace ui {

/// The program's window, at whose edges palette sets dock and in front of which dialogs stand; null
/// before there is one.
QMainWindow* mainFrame();
/// Not owned. Null takes it away.
void setMainFrame(QMainWindow* frame);

/// In front of what a new dialog stands: the dialog that runs now, else the frame; may be null.
QWidget* dialogParent();

} // namespace ui
