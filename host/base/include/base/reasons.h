#pragma once

/// Numbers of the reasons that statuses carry. Each is the number of a text in the resources and
/// stands in messages as "E21003"; numbers are forever: add, never renumber or reuse. A row: name,
/// number. The text's arguments are told in the comment.
// clang-format off
#define KV_REASONS(X)                                                                             \
    /* host/base: files. %ls 1: the path */                                                       \
    X(FileMissing, 21001)          /* it is not there */                                          \
    X(AccessDenied, 21002)         /* no right */                                                 \
    X(FileReadOnly, 21003)                                                                        \
    X(DiskFull, 21004)                                                                            \
    X(FileExists, 21005)                                                                          \
    X(NotRegularFile, 21006)       /* a folder, device, pipe or socket */                         \
    X(FolderUnreachable, 21007)                                                                   \
    X(FileTooLarge, 21008)                                                                        \
    X(SystemError, 21009)          /* 2: the system's own text */                                 \
    X(ChangedOnDisk, 21010)        /* changed since it was read */                                \
    X(VerifyFailed, 21011)         /* what was written reads back differently */                  \
    X(HardLinked, 21012)           /* has several names; replacing would split them */            \
    X(LinkLoop, 21013)                                                                            \
    X(PathTooLong, 21014)          /* over 260 units, for what we create */                       \
    X(NetworkNotTouched, 21015)    /* host or URL that was not agreed to */                       \
    X(LockHeld, 21016)             /* 2: who holds it */                                          \
    X(LockLost, 21017)                                                                            \
    X(PublishConflict, 21018)      /* 2: the recovery file that holds ours */                     \
    X(ConfigDamaged, 21019)        /* 2: what is wrong */                                         \
    X(Cancelled, 21020)                                                                           \
    X(NotReplaced, 21021)          /* 2: where the former version lies */                         \
    X(NotFlushed, 21022)           /* in place, but its folder could not be flushed: 2: why */    \
    /* core/sm: the sheet-set file. %ls 1: the path */                                            \
    X(DstNotXml, 21101)            /* 2: line, 3: the text there */                         \
    X(DstNotSheetSet, 21102)       /* well-formed, but no sheet set */                            \
    X(DstNewerVersion, 21103)      /* 2: its version */                                           \
    X(DstDoctype, 21104)                                                                          \
    X(DstBadEncoding, 21105)       /* 2: line */                                                  \
    X(DstTooDeep, 21106)                                                                          \
    X(DstTooManyAttributes, 21107) /* 2: element */                                               \
    X(DstDuplicateAttribute, 21108)/* 2: element, 3: attribute */                                 \
    X(DstDuplicateHandle, 21109)   /* 2: handle */                                                \
    X(DstBadHandle, 21110)         /* 2: element, 3: text */                                      \
    X(DstMissingPart, 21111)       /* 2: element that must be there */                            \
    X(DstRepeatedPart, 21112)      /* 2: element that may stand once */                           \
    X(DstReadOnlyVersion, 21113)   /* opened read only because it is newer */                     \
    X(DstNoFileName, 21114)                                                                       \
    /* host/dwg: drawings. They are told about a drawing that the caller names */                 \
    X(DwgNotDrawing, 21301)        /* no version that we know */                                  \
    X(DwgTooLarge, 21302)                                                                         \
    X(DwgHeaderDamaged, 21303)                                                                    \
    X(DwgEncrypted, 21304)                                                                        \
    X(DwgSectionMissing, 21305)    /* 1: section */                                               \
    X(DwgSectionDamaged, 21306)    /* 1: section */                                               \
    X(DwgPagesDamaged, 21307)                                                                     \
    X(DwgObjectMapDamaged, 21308)                                                                 \
    X(DwgObjectDamaged, 21309)     /* 1: handle */                                                \
    X(DwgObjectMissing, 21310)     /* 1: handle */                                                \
    X(DwgUnpacksTooLarge, 21311)                                                                  \
    X(DwgVersionNotWritten, 21312) /* 1: version */                                               \
    X(DwgDamageNotSaved, 21313)    /* a save would hide or lose something */                      \
    X(DwgVerifyFailed, 21314)                                                                     \
    X(DwgRecordInvalid, 21315)     /* 1: handle */                                                \
    X(DwgSectionNotWritten, 21316) /* 1: section */                                               \
    X(DwgObjectsNotEditable, 21317)    /* 1: handles */                                           \
    X(DwgNotConverted, 21318)          /* 1: format, 2: what stands in the way */                 \
    X(DwgClassNotNamed, 21319)         /* 1: class */                                             \
    X(DwgSummaryTooLarge, 21320)                                                                  \
    /* what is wrong with a drawing that can be read; 21320 and the number of its kind */         \
    X(DwgCheckHeaderChecksum, 21321)                                                              \
    X(DwgCheckHeaderEnd, 21322)                                                                   \
    X(DwgCheckSectionOutside, 21323)   /* 1: section */                                           \
    X(DwgCheckSectionChecksum, 21324)  /* 1: section */                                           \
    X(DwgCheckSectionUnreadable, 21325) /* 1: section */                                          \
    X(DwgCheckPageChecksum, 21326)     /* 1: section, 2: page */                                  \
    X(DwgCheckPageUnreadable, 21327)   /* 1: section, 2: page */                                  \
    X(DwgCheckMapOrder, 21328)                                                                    \
    X(DwgCheckSecondHeader, 21329)                                                                \
    X(DwgCheckPreview, 21330)                                                                     \
    X(DwgCheckObjectUnreadable, 21331) /* 1: handle */                                            \
    X(DwgCheckObjectChecksum, 21332)   /* 1: handle */                                            \
    X(DwgCheckObjectHandle, 21333)     /* 1: handle */                                            \
    X(DwgCheckObjectsOverlap, 21334)   /* 1: handle */                                            \
    X(DwgCheckSeedTooLow, 21335)                                                                  \
    X(DwgCheckUnknownPart, 21336)      /* 1: section */                                           \
    /* host/db: the drawing database */                                                            \
    X(DbErasedInUse, 21351)        /* 1: handle of the erased object, 2: of one that needs it */ \
    /* host/dxf: drawings as text. They are told about a drawing that the caller names */         \
    X(DxfNotGroups, 21401)         /* 1: line that is neither code nor value */                   \
    X(DxfTruncated, 21402)                                                                        \
    X(DxfVersion, 21403)           /* 1: version */                                               \
    X(DxfTooLarge, 21404)                                                                         \
    X(DxfObjectDamaged, 21405)     /* 1: handle */                                                \
    X(DxfObjectMissing, 21406)     /* 1: handle */                                                \
    X(DxfNotUnderstood, 21407)     /* 1: class */                                                 \
    X(DxfRecordInvalid, 21408)     /* 1: handle */                                                \
    X(DxfClassesNotWritten, 21409) /* 1: classes */                                               \
    X(DxfVerifyFailed, 21410)      /* 1: handle */                                                \
    X(DxfDoubleHandle, 21411)      /* 1: handle */                                              \
    /* host/rx: modules. %ls 1: the path or name */                                               \
    X(ModuleNameWrong, 21501)      /* a name is needed, not a path */                             \
    X(ModuleNotFound, 21502)       /* in none of the program's folders */                         \
    X(ModuleNotSafe, 21503)        /* 2: the file or folder that others may write */              \
    X(ModuleNotLoaded, 21504)      /* 2: the system's own text */                                 \
    X(ModuleWithoutEntry, 21505)                                                                  \
    X(ModuleOfOtherVersion, 21506) /* 2: its version, 3: ours */                                  \
    X(ModuleNotStarted, 21507)     /* 2: what its start answered */

// clang-format on

namespace base {

enum class Reason : int {
    None = 0,
#define KV_ENUMERATOR(name, number) name = number,
    KV_REASONS(KV_ENUMERATOR)
#undef KV_ENUMERATOR
};

} // namespace base
