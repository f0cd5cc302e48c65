#include "ed/tv_editor.h"

#include <algorithm>

#include <rx/tv_rx_dictionary.h>

TVRX_DEFINE_MEMBERS(TvRxEventReactor, TvRxObject)
TVRX_DEFINE_MEMBERS(TvEditorReactor, TvRxEventReactor)
TVRX_DEFINE_MEMBERS(TvEditor, TvRxObject)

void TvRxEventReactor::endDwgOpen(const TvChar*, TvDbDatabase*) {}
void TvRxEventReactor::saveComplete(TvDbDatabase*, const TvChar*) {}
void TvEditorReactor::commandWillStart(const TvChar*) {}
void TvEditorReactor::commandEnded(const TvChar*) {}
void TvEditorReactor::commandCancelled(const TvChar*) {}
void TvEditorReactor::sysVarChanged(const TvChar*) {}
void TvEditorReactor::documentClosing(TvDbDatabase*) {}

void TvEditor::addReactor(TvEditorReactor* reactor)
{
    if (reactor && std::ranges::find(m_reactors, reactor) == m_reactors.end())
        m_reactors.push_back(reactor);
}

void TvEditor::removeReactor(TvEditorReactor* reactor)
{
    std::erase(m_reactors, reactor);
}

template <class Tell>
void TvEditor::forEach(Tell tell)
{
    const std::vector<TvEditorReactor*> now = m_reactors;
    for (TvEditorReactor* reactor : now)
        if (std::ranges::find(m_reactors, reactor) != m_reactors.end())
            tell(*reactor);
}

void TvEditor::fireEndDwgOpen(const TvString& path, TvDbDatabase* database)
{
    forEach([&](TvEditorReactor& reactor) { reactor.endDwgOpen(path.kwszPtr(), database); });
}

void TvEditor::fireSaveComplete(TvDbDatabase* database, const TvString& path)
{
    forEach([&](TvEditorReactor& reactor) { reactor.saveComplete(database, path.kwszPtr()); });
}

void TvEditor::fireCommandWillStart(const TvString& name)
{
    forEach([&](TvEditorReactor& reactor) { reactor.commandWillStart(name.kwszPtr()); });
}

void TvEditor::fireCommandEnded(const TvString& name)
{
    forEach([&](TvEditorReactor& reactor) { reactor.commandEnded(name.kwszPtr()); });
}

void TvEditor::fireCommandCancelled(const TvString& name)
{
    forEach([&](TvEditorReactor& reactor) { reactor.commandCancelled(name.kwszPtr()); });
}

void TvEditor::fireSysVarChanged(const TvString& name)
{
    forEach([&](TvEditorReactor& reactor) { reactor.sysVarChanged(name.kwszPtr()); });
}

void TvEditor::fireDocumentClosing(TvDbDatabase* database)
{
    forEach([&](TvEditorReactor& reactor) { reactor.documentClosing(database); });
}

TvEditor* tvedEditor()
{
    return tvrxCast<TvEditor>(tvrxSysRegistry()->at(kTvEditor));
}
