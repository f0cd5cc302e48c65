#include "app/menu_table.h"

namespace app {

namespace {

using W = Word;
using A = WindowAction;

// clang-format off
constexpr MenuRow kRows[] = {
    {W::MenuFile,   W::New,             "new",          "Ctrl+N",         u"_NEW",          A::None, true},
    {W::MenuFile,   W::Open,            "open",         "Ctrl+O",         u"_OPEN",         A::None, true},
    {W::MenuFile,   W::OpenRecent,      nullptr,        nullptr,          nullptr,          A::RecentFiles},
    {W::MenuFile,   kSeparator,         nullptr,        nullptr,          nullptr},
    {W::MenuFile,   W::Save,            "save",         "Ctrl+S",         u"_QSAVE",        A::None, true},
    {W::MenuFile,   W::SaveAs,          nullptr,        "Ctrl+Shift+S",   u"_SAVEAS"},
    {W::MenuFile,   kSeparator,         nullptr,        nullptr,          nullptr},
    {W::MenuFile,   W::Close,           "close",        "Ctrl+W",         u"_CLOSE"},
    {W::MenuFile,   W::Quit,            nullptr,        "Ctrl+Q",         u"_QUIT"},
    {W::MenuEdit,   W::Undo,            "undo",         "Ctrl+Z",         u"_U",            A::None, true},
    {W::MenuEdit,   W::Redo,            "redo",         "Ctrl+Shift+Z",   u"_REDO",         A::None, true},
    {W::MenuEdit,   kSeparator,         nullptr,        nullptr,          nullptr},
    {W::MenuEdit,   W::ToCommandLine,   nullptr,        "Ctrl+L",         nullptr,          A::FocusCommandLine},
    {W::MenuView,   W::ZoomExtents,     "zoom-extents", "Ctrl+0",         nullptr,          A::ZoomExtents, true},
    {W::MenuView,   W::ZoomWindow,      "zoom-window",  "Ctrl+Shift+W",   nullptr,          A::ZoomWindow, true},
    {W::MenuView,   W::ZoomIn,          "zoom-in",      "Ctrl++",         nullptr,          A::ZoomIn, true},
    {W::MenuView,   W::ZoomOut,         "zoom-out",     "Ctrl+-",         nullptr,          A::ZoomOut, true},
    {W::MenuView,   kSeparator,         nullptr,        nullptr,          nullptr},
    {W::MenuView,   W::Regenerate,      "refresh",      "F5",             u"_REGEN"},
    {W::MenuView,   W::SavedViews,      "view",         nullptr,          u"_-VIEW"},
    {W::MenuView,   kSeparator,         nullptr,        nullptr,          nullptr},
    {W::MenuView,   W::SwitchTheme,     "dark",         nullptr,          nullptr,          A::Theme},
    {W::MenuView,   W::NextDrawing,     nullptr,        "Ctrl+Tab",       nullptr,          A::NextDrawing},
    {W::MenuView,   W::PreviousDrawing, nullptr,        "Ctrl+Shift+Tab", nullptr,          A::PreviousDrawing},
    {W::MenuLayout, W::NextLayout,      nullptr,        "Ctrl+PgDown",    nullptr,          A::NextLayout},
    {W::MenuLayout, W::PreviousLayout,  nullptr,        "Ctrl+PgUp",      nullptr,          A::PreviousLayout},
    {W::MenuLayout, kSeparator,         nullptr,        nullptr,          nullptr},
    {W::MenuLayout, W::NewLayout,       "layout",       nullptr,          u"_LAYOUT New"},
    {W::MenuLayout, W::RenameLayout,    nullptr,        nullptr,          u"_LAYOUT Rename"},
    {W::MenuLayout, W::DeleteLayout,    nullptr,        nullptr,          u"_LAYOUT Delete"},
    {W::MenuTools,  W::SheetSets,       "sheet-set",    "Ctrl+4",         u"_SHEETSET",     A::None, true},
    {W::MenuTools,  W::OpenSheetSet,    "folder",       nullptr,          u"_OPENSHEETSET"},
    {W::MenuTools,  W::NewSheetSet,     nullptr,        nullptr,          u"_NEWSHEETSET"},
    {W::MenuTools,  kSeparator,         nullptr,        nullptr,          nullptr},
    {W::MenuTools,  W::RunScript,       nullptr,        nullptr,          u"_SCRIPT"},
    {W::MenuHelp,   W::Help,            "question",     "F1",             u"_HELP"},
    {W::MenuHelp,   W::About,           "information",  nullptr,          nullptr,          A::About},
};
// clang-format on

} // namespace

std::span<const MenuRow> menuRows()
{
    return kRows;
}

} // namespace app
