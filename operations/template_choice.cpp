#include "operations/template_choice.h"

#include <algorithm>
#include <array>

#include <base/kv_file_system.h>
#include <core/session_host.h>
#include <db/resbuf.h>
#include <db/tv_status.h>
#include <ed/user_prompts.h>
#include <resources/texts.h>
#include <rx/tv_user_messages.h>

#include "operations/import_layouts.h"

namespace operations {

namespace {

constexpr int kUnreadable = 409, kNothingOnPaper = 496, kTitle = 410;
constexpr int kFileMissing = 515, kNoTemplate = 516, kNoLayout = 403;
constexpr int kBrowseTitle = 407;

void say(int text, int caption)
{
    TvUserMessages::Message message;
    message.text = text;
    message.caption = caption;
    if (text == kUnreadable)
        message.arguments = {TvString()}; // which one is plain: there is one only
    tvrxShowMessage(message);
}

bool isTemplateName(const TvString& path)
{
    constexpr std::array kExtensions{u".dwg", u".dwt", u".dws"};
    return std::ranges::any_of(
        kExtensions, [&path](const TvChar* extension) { return path.endsWithNoCase(extension); });
}

} // namespace

void TemplateChoice::clear()
{
    m_layouts.clear();
    m_selected.reset();
    m_chosen = {};
}

void TemplateChoice::select(std::optional<std::size_t> layout)
{
    m_selected = layout && *layout < m_layouts.size() ? layout : std::nullopt;
}

void TemplateChoice::load(const TvString& drawing)
{
    clear();
    if (!KvFileSystem::isFileExisting(drawing))
        return;
    DrawingLayouts found;
    if (!readDrawingLayouts(drawing, LayoutOrder::Dictionary, found))
        return say(kUnreadable, kTitle);
    if (found.layouts.empty())
        return say(kNothingOnPaper, kTitle);
    for (const DrawingLayouts::Layout& layout : found.layouts)
        m_layouts.push_back(layout.name);
    m_selected = 0;
    m_chosen.drawing = drawing;
}

void TemplateChoice::begin(const SheetTemplate& preset)
{
    if (!preset.drawing.isEmpty())
        load(preset.drawing);
    m_selected.reset();
    for (std::size_t i = 0; i < m_layouts.size() && !m_selected; ++i)
        if (m_layouts[i].compareNoCase(preset.layout) == 0)
            m_selected = i;
}

std::optional<TvString> TemplateChoice::browse(const TvString& shown)
{
    // Without a drawing that is there, the user's templates are where to begin.
    core::SessionHost* host = core::sessionHost();
    const TvString start = KvFileSystem::isFileExisting(shown) || !host
                               ? shown
                               : host->GetUserLocalApplicationDataTemplatePath();
    resbuf* answer = nullptr;
    if (tvedGetFileNavDialog(text::find(kBrowseTitle), start.kwszPtr(), u"dwt;dwg;dws",
                             u"TvSmSelectTemplateDialog", 0, answer) != TvStatus::Normal)
        return std::nullopt;
    const TvResbufPtr owned(answer);
    const TvString path(answer->resval.rstring);
    load(path);
    return path;
}

bool TemplateChoice::refuse(int text)
{
    clear();
    say(text, 0);
    return false;
}

bool TemplateChoice::accept(const TvString& drawing)
{
    if (!KvFileSystem::isFileExisting(drawing))
        return refuse(kFileMissing);
    if (!isTemplateName(drawing))
        return refuse(kNoTemplate);
    if (drawing.compareNoCase(m_chosen.drawing) != 0) {
        load(drawing);
        return false;
    }
    if (!m_selected) {
        say(kNoLayout, 0);
        return false;
    }
    m_chosen.layout = m_layouts[*m_selected];
    return true;
}

} // namespace operations
