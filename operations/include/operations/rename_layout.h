#pragma once

#include <base/tv_string.h>
#include <db/tv_status.h>

class TvSmTvDbLayoutReference;

/// Gives the layout that a sheet stands on another name, in the drawing and in the reference.
///
/// In a drawing that is open here it is renamed there, under the document's lock, and the tabs
/// follow; the user saves it. A closed drawing is read, changed and saved under its own name and in
/// its own version, whether or not the name is another one. Tells the user nothing.
/// @param reference  its resolved path says which drawing, its handle which layout; it gets the
///                   name once the drawing has it. It must be possible to change it.
/// @return NotThatObject without a reference, and for what is no layout; NameReserved for the model
///         layout's name in any case; NoDatabase when the drawing cannot be read; UnknownHandle;
///         NotOpenable; otherwise what setting the name or saving answered.
TvStatusCode RenameLayoutOfSheet(TvSmTvDbLayoutReference* reference, const TvString& newName);

/// The same, and tells the user why it did not work.
/// @param window  in front of which that is told; the host knows which one is in front now, so it
///                may be null.
/// @return FileGone when the drawing has gone, NotThatObject when the layout or the drawing cannot
///         be had; otherwise the status as it was.
TvStatusCode RenameLayoutOfSheetWithMessages(TvSmTvDbLayoutReference* reference,
                                             const TvString& newName, const void* window = nullptr);
