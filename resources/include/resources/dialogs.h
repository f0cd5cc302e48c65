#pragma once

#include <span>

/// Dialogs as plain data, by number: which controls stand where, in which order, and what they say.
/// Windows are made from them elsewhere.
///
/// Lengths are dialog units: across a quarter of a character's mean width, down an eighth of a
/// character's height, so that a dialog grows with the font.
namespace text {

/// What a row stands for.
enum class Control {
    Dialog,    ///< opens a dialog; its controls follow
    Label,     ///< an & in its text leads to the next control
    Edit,      ///< one line
    MultiEdit, ///< several lines
    Button,
    CheckBox,
    Radio, ///< of one group with the radios around it, from kGroup on
    Group, ///< a frame with a title around others
    Combo,
    List,  ///< lines of text
    Table, ///< lines with columns
    Tree,
    Picture, ///< a preview
    Line,    ///< across, between parts
    Progress,
    Inspector, ///< rows of properties
    Place,     ///< for a window that the dialog makes itself
};

/// Flags of a row, put together by |.
enum ControlStyle : unsigned {
    kPlain = 0,
    kDefault = 1, ///< the button that Enter presses
    kDisabled = 2,
    kHidden = 4,
    kReadOnly = 8,
    kGroup = 16,    ///< the first radio of a group
    kEditable = 32, ///< a combo box into which one may type
    kSeveral = 64,  ///< several lines may be chosen
    kNoTab = 128,   ///< Tab passes it over
    kRightText = 256,
    kElided = 512,    ///< a label that shows the ends of what is too long for it: a path
    kChecks = 1024,   ///< a tree or list with check boxes
    kIconOnly = 2048, ///< a button whose text is its tip
    // How a control follows when the dialog grows.
    kMovesX = 4096,
    kMovesY = 8192,
    kGrowsX = 16384,
    kGrowsY = 32768,
    // Of a dialog.
    kFixedSize = 65536,
    kChild = 131072, ///< a page within another window
};

struct ControlTemplate {
    Control kind = Control::Label;
    int id = 0;   ///< of a dialog: its number; 0: nobody asks for the control
    int text = 0; ///< the number of its text; 0: none
    int x = 0, y = 0, width = 0, height = 0;
    unsigned style = kPlain;
};

/// A dialog: number, title and size, and its controls in the order of Tab.
struct DialogTemplate {
    int number = 0;
    int title = 0;
    int width = 0, height = 0;
    unsigned style = kPlain;
    std::span<const ControlTemplate> controls;
};

/// What OK and Cancel are called among ids and results.
constexpr int kIdOk = 1, kIdCancel = 2;

/// Null when there is no dialog of that number.
const DialogTemplate* findDialog(int number);
/// Every dialog there is, ascending by number.
std::span<const DialogTemplate> allDialogs();

} // namespace text
