#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include <base/status.h>

class TvDbDatabase;

namespace db {

enum class AuditSeverity {
    Error,   ///< Something is lost, or does not work as it looks.
    Warning, ///< Other programs may stumble over it.
    Note,    ///< Worth knowing; real drawings are like that.
};

/// What an audit of a drawing can find. Each number is that of a text in the resources, and the
/// rule is shown as "D" and its last two digits (D07). Numbers are forever: add, never renumber or
/// reuse. The texts' arguments are told beside each; the finding's own handle is none of them.
enum class DrawingRule : int {
    FileWrong = 22601,            ///< The finding's status tells what.
    SaveRefused = 22602,          ///< The finding's status tells why.
    MoreOfTheSame = 22603,        ///< 1: code of the rule, 2: how many more there are.
    ClassUnknown = 22604,         ///< 1: how many objects, 2: class.
    FormUnknown = 22605,          ///< 1: how many objects, 2: class.
    ObjectDamaged = 22606,        ///< 1: class, or empty.
    HandleBeyondSeed = 22607,     ///< 1: the seed.
    HardReferenceMissing = 22608, ///< 1: handle that is not there.
    SoftReferenceMissing = 22609, ///< 1: how many references, 2: handle of the first.
    OwnerMissing = 22610,         ///< 1: handle of the owner.
    OwnerNone = 22611,
    OwnersInARing = 22612,
    NotListed = 22613,       ///< 1: the owner, whose list lacks it.
    ListedByAnother = 22614, ///< 1: who lists it, 2: whom it names as its owner.
    ListedTwice = 22615,     ///< 1: who lists it, 2: who lists it again.
    NotOfTheTable = 22616,   ///< 1: the table that lists it, 2: its class.
    NameTwice = 22617,       ///< 1: name, 2: the record that has it first.
    KeyTwice = 22618,        ///< 1: the key in the dictionary.
    TableMissing = 22619,    ///< 1: class of the table.
    LayerZeroMissing = 22620,
    ModelSpaceMissing = 22621,
    PaperSpaceMissing = 22622,
    NamedObjectsMissing = 22623,
    LayoutDictionaryMissing = 22624,
    ModelLayoutMissing = 22625,
    ModelLayoutTwice = 22626,     ///< 1: the first one.
    LayoutBlockMissing = 22627,   ///< 1: name of the layout.
    LayoutBlockDisagrees = 22628, ///< 1: name of the layout, 2: its block.
    BlockLayoutDisagrees = 22629, ///< 1: the layout that the block names.
    LayoutNotListed = 22630,      ///< 1: name of the layout.
    LayoutNameDisagrees = 22631,  ///< 1: name of the layout, 2: its key in the dictionary.
    TabOrderTwice = 22632,        ///< 1: name, 2: place, 3: the layout that has it first.
    LayerMissing = 22633,         ///< 1: handle of the layer.
    ChainBroken = 22634,
    ChainDisagrees = 22635, ///< 1: the owner.
    SheetDataNoDictionary = 22636,
    SheetDataEntryMissing = 22637, ///< 1: the entry.
    SheetDataLayoutGone = 22638,   ///< 1: handle as it stands there, 2: name.
};

/// "D07".
TvString auditCode(DrawingRule rule);

struct DrawingFinding {
    DrawingRule rule;
    AuditSeverity severity;
    std::uint64_t handle = 0; ///< Of the object that it is about; 0: the drawing as a whole.
    std::vector<TvString> arguments;
    base::Status status;   ///< Of rules that tell one.
    std::string className; ///< Of the object, where it is known.
    bool isFixed = false;  ///< A repair has put it right.
};

struct DrawingAuditOptions {
    /// Also tries, in memory, whether the drawing could be saved as it is.
    bool trySave = false;
    /// Of one rule no more findings are told than that, but how many more there are; 0: all.
    int mostOfOneRule = 100;
};

/// Looks through a whole drawing, as it is in memory, for what its reader lets pass.
///
/// Repairs nothing. Reads every object once without keeping it; memory and time grow with the
/// number of objects.
/// @return errors, warnings, notes, each in the order of the handles.
std::vector<DrawingFinding> auditDrawing(TvDbDatabase& database,
                                         const DrawingAuditOptions& options = {});

/// What a repair found and did.
struct DrawingRepair {
    /// All that was found, in the order of an audit; what is fixed says so. Of one rule at most 100
    /// of each kind are told, and how many more there are.
    std::vector<DrawingFinding> findings;
    int fixed = 0; ///< Findings that are no more; also those that are not told.
    int left = 0;  ///< Findings that nobody could put right without losing something.
};

/// Puts right what an audit finds, as far as nothing is lost by it.
///
/// Lists and those that they name are made to agree, references that lead nowhere are taken out or
/// lead to the drawing's own style, layer or linetype, what nobody lists gets into the list where
/// it belongs, what has a name twice gets another. Entities of a block that is gone come into a
/// block of their own, "Recovered-" and the old one's handle. What only its maker could understand
/// stays as it is. Objects that no finding is about are not changed. Belongs to the undo step that
/// runs; only chains of entities that were completed stay so, since nothing of the drawing went
/// through that but what could not be reached before.
/// @note  Audits the drawing a few times; grows with the number of objects.
DrawingRepair repairDrawing(TvDbDatabase& database);

} // namespace db
