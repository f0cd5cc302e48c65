#pragma once

#include <vector>

#include <rx/tv_rx_object.h>

class TvDbDatabase;

/// The key of the editor in the system registry.
constexpr const TvChar* kTvEditor = u"TvEditor";

/// Is told what happens in the program. Not owned by the editor.
class TvRxEventReactor : public TvRxObject
{
    TVRX_DECLARE_MEMBERS(TvRxEventReactor)

    /// A drawing was opened and is a document now.
    /// @param path  the file, as it was opened.
    virtual void endDwgOpen(const TvChar* path, TvDbDatabase* database);
    /// A drawing was written to its file.
    virtual void saveComplete(TvDbDatabase* database, const TvChar* path);
};

class TvEditorReactor : public TvRxEventReactor
{
    TVRX_DECLARE_MEMBERS(TvEditorReactor)

    /// @param name  the command's global name.
    virtual void commandWillStart(const TvChar* name);
    virtual void commandEnded(const TvChar* name);
    virtual void commandCancelled(const TvChar* name);
    /// A system variable has another value than before.
    virtual void sysVarChanged(const TvChar* name);
    /// The document of that drawing is about to be closed; everything is still there.
    virtual void documentClosing(TvDbDatabase* database);
};

/// Tells reactors what happens, in the order in which they came. A reactor may add and remove
/// reactors, itself too, while it is told something.
class TvEditor : public TvRxObject
{
    TVRX_DECLARE_MEMBERS(TvEditor)

    /// Null and a reactor that is there already are nothing.
    virtual void addReactor(TvEditorReactor* reactor);
    virtual void removeReactor(TvEditorReactor* reactor);

    void fireEndDwgOpen(const TvString& path, TvDbDatabase* database);
    void fireSaveComplete(TvDbDatabase* database, const TvString& path);
    void fireCommandWillStart(const TvString& name);
    void fireCommandEnded(const TvString& name);
    void fireCommandCancelled(const TvString& name);
    void fireSysVarChanged(const TvString& name);
    void fireDocumentClosing(TvDbDatabase* database);

private:
    template <class Tell>
    void forEach(Tell tell);
    std::vector<TvEditorReactor*> m_reactors;
};

/// The editor that the system registry has, or null.
TvEditor* tvedEditor();
