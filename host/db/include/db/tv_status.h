#pragma once

/// Statuses of the host's drawing interface. The numbers are part of it: modules compare and pass
/// them on as plain numbers, so none is ever changed or used again.
namespace TvStatus {
enum Code : int {
    Ok = 0,
    NoChange = -6,       ///< a sampler: the pointer did not move
    NoSuchBlock = -5008, ///< an insertion: the drawing has no block of that name
    InvalidInput = 3,    ///< an argument makes no sense, or the user said no
    NotApplicable = 15,  ///< null, or content of another class
    UnknownHandle = 16,  ///< a handle that leads to no object
    NotAttachable = 72,  ///< a drawing cannot become a reference of this one
    FileGone = 76,       ///< a drawing's file has gone meanwhile
    NoDatabase = 124,    ///< no database, or its file could not be read
    NameReserved = 351,  ///< the name belongs to something else (the model layout's name)
    FileInUse = 433,     ///< another person or document has the file open
    NotThatObject = 507, ///< the object has gone, or is of another class
    NotOpenable = 600,   ///< the object is there, but cannot be opened in that way
    NotThatLink = 655,   ///< a link, or its definition, is not one of ours

    // What lists of result buffers and answers of prompts are made of.
    EndOfList = 5000,
    ShortItem = 5003,
    TextItem = 5005,
    Normal = 5100,

    // The database's own; numbers from 9000 on are nobody else's.
    NotInDatabase = 9001, ///< an object that was never added
    AlreadyInDatabase = 9002,
    NotOpenForWrite = 9003, ///< a change of an object that is open for reading
    WasErased = 9004,
    WasOpenForWrite = 9005, ///< somebody has it open for writing
    WasOpenForRead = 9006,  ///< somebody has it open for reading
    KeyNotFound = 9007,     ///< no entry of that name
    DuplicateName = 9008,   ///< the name is taken
    InvalidName = 9009,     ///< a name that may not be
    NotUnderstood = 9010,   ///< kept as bytes: it may be erased, not changed
    FileNotFound = 9011,
    FileNotReadable = 9012, ///< damaged, or no drawing
    FileNotWritable = 9013,
    FileReadOnly = 9014,
    FileChanged = 9015,        ///< somebody else changed the file since it was read
    VersionNotWritable = 9016, ///< something in it cannot be told in that version
    StillInUse = 9017,         ///< others need it: it cannot be erased
    NothingToUndo = 9018,
    OutOfRange = 9019,
};
} // namespace TvStatus

using TvStatusCode = TvStatus::Code;
