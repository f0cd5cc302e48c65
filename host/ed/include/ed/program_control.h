#pragma once

#include <base/tv_string.h>

class TvApDocument;

namespace ed {

/// What commands ask of the program around them. Supplied by it.
class ProgramControl
{
public:
    virtual ~ProgramControl() = default;
    /// The program is to end once the command that runs is done. All documents are closed already.
    virtual void quit() = 0;
    /// Shows help. @param topic  a command's global name, or another topic; empty: the beginning.
    /// @return false when there is none: the command line then says what it knows.
    virtual bool showHelp(const TvString& topic) = 0;
    /// The list of recent files has changed (recentFiles()).
    virtual void recentFilesChanged() = 0;
    /// Layouts of a document were renamed by other means than a command: its tabs are drawn anew.
    virtual void layoutsChanged(TvApDocument& /*document*/) {}
    /// Text was put into the command line by other means than its keyboard: it is to be worked off
    /// (CommandLine::work()), and a question that waits is to look at it, but not before who posted
    /// it is done.
    virtual void posted() {}
};

/// Closes all documents, after the user was asked about each that has changes. First all are asked
/// about, and only then closed: who gives up loses nothing.
/// @return false, and all that was not saved is as it was, when the user gave up, there is nobody
///         to ask, or a drawing could not be saved or is locked.
bool closeAllDocuments();

/// Null before the program supplied one.
ProgramControl* programControl();
/// Not owned. Null takes it away.
void setProgramControl(ProgramControl* control);

} // namespace ed

/// Has the tabs of a document's layouts drawn anew, where there are some. Null is harmless.
void tarvUpdateLayoutBar(TvApDocument* document);
