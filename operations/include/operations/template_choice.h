#pragma once

#include <optional>
#include <vector>

#include <operations/sheet_template.h>

namespace operations {

/// The dialog that lets the user choose a template drawing and one of its layouts, without its
/// window. Messages go to the user as they come up.
class TemplateChoice
{
public:
    /// The layouts on which something stands, in the order of the drawing.
    const std::vector<TvString>& layouts() const { return m_layouts; }
    /// What was chosen; its drawing is the one whose layouts are listed, empty when none are.
    const SheetTemplate& chosen() const { return m_chosen; }
    /// Which of the layouts is selected.
    std::optional<std::size_t> selected() const { return m_selected; }
    void select(std::optional<std::size_t> layout);

    /// Begins with what was chosen before: its drawing is listed, if there is one, and its layout
    /// selected, if it is listed.
    void begin(const SheetTemplate& preset);
    /// Lists the layouts of a drawing and selects the first one. A file that is not there lists
    /// nothing, and nothing is said.
    void load(const TvString& drawing);
    /// Asks for a drawing and lists its layouts. @param shown  what stands in the window.
    /// @return its path; nullopt when the user gives up.
    std::optional<TvString> browse(const TvString& shown);

    /// OK, with what stands in the window as the drawing.
    /// @return true when layout and drawing are chosen; otherwise the user has been told, or sees
    /// the layouts of the drawing that he has typed.
    bool accept(const TvString& drawing);

private:
    bool refuse(int text);
    void clear();

    std::vector<TvString> m_layouts;
    std::optional<std::size_t> m_selected;
    SheetTemplate m_chosen;
};

} // namespace operations
