#include "resources/dialogs.h"

#include <algorithm>
#include <iterator>
#include <vector>

namespace text {

namespace {

// clang-format off
constexpr ControlTemplate kRows[] = {
#include "dialogs/sheet_panel.inc"
#include "dialogs/host.inc"
};
// clang-format on

/// The dialogs that the rows are: each from its own row to before the next one's.
std::vector<DialogTemplate> dialogsOf(std::span<const ControlTemplate> rows)
{
    std::vector<DialogTemplate> dialogs;
    for (std::size_t at = 0; at < rows.size();) {
        const ControlTemplate& head = rows[at];
        std::size_t end = at + 1;
        while (end < rows.size() && rows[end].kind != Control::Dialog)
            ++end;
        dialogs.push_back({head.id, head.text, head.width, head.height, head.style,
                           rows.subspan(at + 1, end - at - 1)});
        at = end;
    }
    std::ranges::stable_sort(dialogs, {}, &DialogTemplate::number);
    return dialogs;
}

const std::vector<DialogTemplate>& dialogs()
{
    static const std::vector<DialogTemplate> all = dialogsOf(kRows);
    return all;
}

} // namespace

const DialogTemplate* findDialog(int number)
{
    const auto found = std::ranges::lower_bound(dialogs(), number, {}, &DialogTemplate::number);
    return found != dialogs().end() && found->number == number ? &*found : nullptr;
}

std::span<const DialogTemplate> allDialogs()
{
    return dialogs();
}

} // namespace text
