#include <core/palette_state.h>

#include <base/kv_file_system.h>
#include <base/path_rules.h>
#include <core/session_host.h>
#include <ed/tarv_xml.h>
#include <rx/tv_user_messages.h>

namespace {

constexpr TvChar kFileName[] = u"SheetSetPaletteSet.xml";
constexpr TvChar kElement[] = u"PS";
constexpr TvChar kRoot[] = u"SheetSetPaletteSet"; // of a file that is made

std::function<std::unique_ptr<TarvXmlParser>()>& maker()
{
    static std::function<std::unique_ptr<TarvXmlParser>()> make;
    return make;
}

/// Null when there is none that starts.
std::unique_ptr<TarvXmlParser> startedParser()
{
    std::unique_ptr<TarvXmlParser> parser = maker() ? maker()() : tarvMakeXmlParser();
    return parser && parser->start() ? std::move(parser) : nullptr;
}

ed::PaletteSet* paletteSet()
{
    core::SessionHost* host = core::sessionHost();
    return host ? host->paletteSet() : nullptr;
}

/// Empty when the user has no such folder.
TvString stateFolder()
{
    core::SessionHost* host = core::sessionHost();
    return host ? host->GetUserRoamingDataPath() : TvString();
}

std::unique_ptr<TarvXmlDocument> loadState(TarvXmlParser& parser)
{
    const TvString folder = stateFolder();
    return folder.isEmpty() ? nullptr
                            : parser.load(base::PathRules::native().join(folder, kFileName));
}

void tellThatParserIsMissing()
{
    TvUserMessages::Message message;
    message.text = 8033;
    message.icon = TvUserMessages::Icon::Warning;
    tvrxShowMessage(message);
}

} // namespace

void LoadPaletteState()
{
    ed::PaletteSet* palettes = paletteSet();
    if (!palettes)
        return;
    const std::unique_ptr<TarvXmlParser> parser = startedParser();
    if (!parser)
        return tellThatParserIsMissing();
    const std::unique_ptr<TarvXmlDocument> state = loadState(*parser);
    if (const TarvXmlElement* element = FindChildElement(state.get(), kElement))
        palettes->Restore(*element);
    else
        palettes->RestoreControlBar(static_cast<int>(ed::DockSide::Right), nullptr);
}

void SavePaletteState()
{
    const ed::PaletteSet* palettes = paletteSet();
    const TvString folder = stateFolder();
    if (!palettes || folder.isEmpty())
        return;
    const std::unique_ptr<TarvXmlParser> parser = startedParser();
    if (!parser || !KvFileSystem::createDirectory(folder))
        return;
    std::unique_ptr<TarvXmlDocument> state = loadState(*parser);
    if (!state)
        state = parser->makeDocument();
    palettes->Save(*FindOrCreateChildElement(state.get(), kElement, kRoot));
    state->save(base::PathRules::native().join(folder, kFileName));
}

void core::setPaletteStateParser(std::function<std::unique_ptr<TarvXmlParser>()> make)
{
    maker() = std::move(make);
}
