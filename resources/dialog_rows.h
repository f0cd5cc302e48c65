#pragma once

#include <algorithm>
#include <span>
#include <vector>

#include "resources/dialogs.h"

// How a table of dialogs is read: by the program's own, and by that of a resource module.
namespace text {

/// The dialogs that the rows are, by number: each from its own row to before the next one's.
inline std::vector<DialogTemplate> dialogsOf(std::span<const ControlTemplate> rows)
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

/// Null when there is none of that number.
inline const DialogTemplate* findDialogIn(const std::vector<DialogTemplate>& dialogs, int number)
{
    const auto found = std::ranges::lower_bound(dialogs, number, {}, &DialogTemplate::number);
    return found != dialogs.end() && found->number == number ? &*found : nullptr;
}

} // namespace text
