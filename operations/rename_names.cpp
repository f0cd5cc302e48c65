#include "operations/rename_names.h"

#include <core/settings.h>

namespace operations {

namespace {

struct KeyRow {
    const TvChar* key;
    bool RenameOptions::*value;
};
constexpr KeyRow kKeys[] = {
    {u"UserInterfaceSettings\\SheetSetWizard\\RenameLayoutToMatchSheet",
     &RenameOptions::layoutMatchesSheet},
    {u"UserInterfaceSettings\\SheetSetWizard\\RenameLayoutWithSheetPrefix",
     &RenameOptions::layoutHasNumber},
    {u"UserInterfaceSettings\\SheetSetWizard\\RenameDwgToMatchSheet",
     &RenameOptions::fileMatchesSheet},
    {u"UserInterfaceSettings\\SheetSetWizard\\RenameDwgWithSheetPrefix",
     &RenameOptions::fileHasNumber},
};

constexpr const TvChar* kExtension = u".dwg";

TvString withNumber(const RenameNames& names)
{
    return names.number + u" " + names.title;
}

} // namespace

RenameOptions RenameOptions::stored()
{
    RenameOptions options;
    for (const KeyRow& row : kKeys) {
        int value = 0;
        options.*row.value = ReadConfigInt(row.key, value) && value == 1;
    }
    return options;
}

void RenameOptions::store() const
{
    for (const KeyRow& row : kKeys)
        WriteConfigInt(row.key, this->*row.value ? 1 : 0);
}

TvString nameOfSheet(const TvString& number, const TvString& title)
{
    return number.isEmpty() ? title : number + u" " + title;
}

void followNumber(RenameNames& names, const RenameOptions& options)
{
    if (options.layoutMatchesSheet && options.layoutHasNumber)
        names.layout = withNumber(names);
    if (options.fileMatchesSheet && options.fileHasNumber)
        names.file = withNumber(names) + kExtension;
}

void followTitle(RenameNames& names, const RenameOptions& options)
{
    const TvString full = nameOfSheet(names.number, names.title);
    if (options.layoutMatchesSheet)
        names.layout = options.layoutHasNumber ? full : names.title;
    if (options.fileMatchesSheet)
        names.file = (options.fileHasNumber ? full : names.title) + kExtension;
}

void followSheet(RenameNames& names, const RenameOptions& options)
{
    followNumber(names, options);
    followTitle(names, options);
}

} // namespace operations
