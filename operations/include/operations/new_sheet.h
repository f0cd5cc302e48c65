#pragma once

#include <optional>

#include <operations/sheet_drawing.h>
#include <operations/sheet_template.h>

class TvSmComponent;
class TvSmSheet;
class TvSmSubset;

/// A new sheet: a drawing made from a template, and then the sheet that leads to it. A drawing that
/// cannot be made leaves the set as it was.
namespace operations {

/// What is typed for a new sheet; nothing is trimmed.
struct NewSheetFields {
    TvString number, title;
    TvString fileName; ///< of the drawing, ".dwg" or not; the layout is called so, too
};

/// Where a field of the new sheet is wrong.
enum class NewSheetField { None, Number, Title, FileName };

/// What is wrong with what was typed, in the order in which it is looked for.
enum class NewSheetProblem {
    None,
    NumberCharacters,
    TitleMissing, ///< or nothing but blanks
    TitleCharacters,
    Duplicate, ///< a sheet with that number and title stands beside it
    FileNameMissing,
    FileNameCharacters,
    PathNotPossible, ///< too long, or a name that no file may have
};
NewSheetField fieldOf(NewSheetProblem problem);

/// What the typed texts mean.
struct NewSheetPlan {
    NewSheetProblem problem = NewSheetProblem::None;
    TvString layout; ///< the file name without ".dwg"
    TvString path;   ///< of the drawing; empty while there is a problem
};
/// Looks at the texts alone, but for the duplicate, not at the disk.
NewSheetPlan planNewSheet(const NewSheetFields& fields, const TvSmSubset& subset,
                          const TvString& folder);

/// "A-01 Plan": number, a blank, title; one of them alone when the other is empty.
TvString composedFileName(const TvString& number, const TvString& title);

/// Makes the sheet that leads to the drawing; it has no place yet.
/// @param handle  of its layout, as text.
/// @return null when the database refuses changes.
TvSmSheet* makeNewSheet(TvSmSubset& subset, const NewSheetFields& fields, const NewSheetPlan& plan,
                        const TvString& handle);
/// Gives it the custom properties that the set has for sheets, and puts it in front of @p before;
/// with null, at the end. False when the database refuses changes.
bool placeNewSheet(TvSmSubset& subset, TvSmSheet& sheet, TvSmComponent* before);
/// From now on the sheets of this subset are made from that template.
bool rememberTemplate(TvSmSubset& subset, const SheetTemplate& which);

/// What the new sheet needs of its window.
class NewSheetWindow
{
public:
    virtual ~NewSheetWindow() = default;
    /// Lets the user choose a template. False when he gives up.
    virtual bool chooseTemplate(SheetTemplate& out) = 0;
    virtual void tellUnsupportedCharacters() = 0;
};

/// The dialog without its window: what is asked before, what the fields do to each other, and what
/// OK does.
class NewSheet
{
public:
    /// @param subset  where the sheet will stand; both outlive this.
    NewSheet(TvSmSubset& subset, NewSheetWindow& window) : m_subset(subset), m_window(window) {}

    /// Looks for the template and the folder, and asks for what is missing.
    /// @return false: there will be no new sheet, and the user knows why.
    bool begin();
    const SheetTemplate& sheetTemplate() const { return m_template; }
    const TvString& folder() const { return m_folder; }

    /// What the file name becomes when number or title change; nullopt when it stays as it is.
    std::optional<TvString> fileNameFor(const TvString& number, const TvString& title) const;
    /// The user has turned to the file name: it is his own from now on.
    void fileNameIsOwn() { m_composesFileName = false; }

    struct Answer {
        bool isDone = false;
        NewSheetField focus = NewSheetField::None; ///< what the user has to look at
    };
    /// OK: makes drawing and sheet, unless something is wrong, which the user is told.
    /// @param opensInEditor  is remembered for the next time when it works.
    /// @pre the subset's database is locked.
    Answer accept(const NewSheetFields& fields, bool opensInEditor);
    /// The sheet that OK has made, which has no place yet; null before.
    TvSmSheet* sheet() const { return m_sheet; }

    /// Whether new sheets are opened in the editor, as it was left the last time.
    static bool opensInEditor();

private:
    bool findTemplate();
    bool chooseInstead(int text);
    Answer refuse(NewSheetProblem problem, const NewSheetFields& fields);

    TvSmSubset& m_subset;
    NewSheetWindow& m_window;
    SheetTemplate m_template;
    TvString m_folder;
    TvSmSheet* m_sheet = nullptr; // the database's
    bool m_composesFileName = true;
    bool m_remembersTemplate = false;
};

} // namespace operations
