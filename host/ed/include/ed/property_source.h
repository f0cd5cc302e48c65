#pragma once

#include <vector>

#include <base/tv_string.h>

namespace ed {

/// What a row of properties holds.
enum class PropertyKind {
    Text,
    Flag,   ///< choice 0 is no, 1 is yes
    Choice, ///< one of named values
};

/// One row of the property inspector: it reads from its object and writes into it at once.
class PropertyRow
{
public:
    virtual ~PropertyRow() = default;

    virtual TvString name() const = 0;
    virtual TvString description() const { return {}; }
    /// Rows of one category stand together, below its name, in the order of their first rows.
    virtual int categoryId() const { return 0; }
    virtual TvString categoryName() const { return {}; }
    virtual PropertyKind kind() const { return PropertyKind::Text; }
    /// It may change with the value of another row.
    virtual bool isReadOnly() const { return false; }

    /// Of a text.
    virtual TvString text() const { return {}; }
    /// False when it was refused: the former value is shown again.
    virtual bool setText(const TvString&) { return false; }

    /// Of a choice: the names of its values. A flag without names is shown as no and yes.
    virtual std::vector<TvString> choices() const { return {}; }
    virtual int choice() const { return 0; } ///< below 0: none
    virtual bool setChoice(int) { return false; }

    /// Whether a button opens a dialog for it, which writes by itself.
    virtual bool hasDialog() const { return false; }
    virtual void runDialog() {}
};

} // namespace ed
