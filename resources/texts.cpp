#include "resources/texts.h"

#include <array>
#include <cstring>

#include "text_rows.h"

namespace {

using text::Row;

// clang-format off
constexpr auto kEnglish = text::sortedRows(std::to_array<Row>({
#include "en/module.inc"
#include "en/panel_windows.inc"
#include "en/new_sheet.inc"
#include "en/import.inc"
#include "en/rename.inc"
#include "en/publish.inc"
#include "en/reasons.inc"
#include "en/tool.inc"
#include "en/tool_drawings.inc"
#include "en/tool_sheets.inc"
#include "en/tool_publish.inc"
#include "en/workspace.inc"
#include "en/commands.inc"
#include "en/windows.inc"
#include "en/program.inc"
#include "en/plot.inc"
#include "en/xrefs.inc"
}));
// clang-format on

struct Language {
    const char* tag;
    const Row* rows;
    std::size_t count;
};

constexpr Language kLanguages[] = {
    {"en", kEnglish.data(), kEnglish.size()},
};

const Language* g_language = &kLanguages[0];

const char16_t* findIn(const Language& language, int number)
{
    return text::findRow(language.rows, language.count, number);
}

} // namespace

namespace text {

const char16_t* find(int number)
{
    const char16_t* found = findIn(*g_language, number);
    return found ? found : findIn(kLanguages[0], number);
}

bool setLanguage(const char* tag)
{
    for (const Language& language : kLanguages) {
        if (std::strcmp(language.tag, tag) == 0) {
            g_language = &language;
            return true;
        }
    }
    return false;
}

int count()
{
    return static_cast<int>(kEnglish.size());
}

int numberAt(int index)
{
    return kEnglish[index].number;
}

} // namespace text
