#include <nlohmann/json.hpp>

#include "cli/components.h"
#include "cli/session.h"
#include "cli/verbs.h"

namespace cli {

namespace {

// --- the document

/// Every node has every field; null says that the kind has none or that none was set.
Json nodeOf(const TvSmComponent& component)
{
    const auto* sheet = tvrxCast<TvSmSheet>(&component);
    const auto* subset = tvrxCast<TvSmSubset>(&component);
    const auto* layout = sheet ? sheet->getLayoutReference() : nullptr;
    Json node = {{"kind", kindName(kindOf(component))},
                 {"handle", jsonText(handleOf(component))},
                 {"name", jsonText(component.getName())},
                 {"number", nullptr},
                 {"title", nullptr},
                 {"desc", jsonText(component.getDesc())},
                 {"excluded", sheet ? sheet->getExcludeFromPublish()
                                    : subset && subset->getExcludeFromPublish()},
                 {"drawing", nullptr},
                 {"layout", nullptr},
                 {"layoutHandle", nullptr},
                 {"children", Json::array()}};
    if (sheet) {
        node["number"] = jsonText(sheet->getNumber());
        node["title"] = jsonText(sheet->getTitle());
    }
    if (layout) {
        node["drawing"] = jsonText(layout->getFileName());
        node["layout"] = jsonText(layout->getName());
        node["layoutHandle"] = jsonText(layout->getHandle());
    }
    return node;
}

/// @param depth levels below that are shown; below 0: all.
Json treeOf(const TvSmComponent& component, int depth)
{
    Json node = nodeOf(component);
    const auto* subset = tvrxCast<TvSmSubset>(&component);
    if (!subset)
        return node;
    Json& children = node["children"];
    if (depth == 0) {
        const Counts below = countBelow(*subset);
        if (below.subsets + below.sheets > 0)
            node["truncated"] = true;
        return node;
    }
    for (const TvSmComponent* child : sm::each(subset->getSheetEnumerator()))
        children.push_back(treeOf(*child, depth - 1));
    return node;
}

// --- the picture

/// Handles first: whatever scripts and widths the titles have, the columns stand.
class Picture
{
public:
    Picture(const TvSmSheetSet& set, Console& console) : m_console(console)
    {
        m_handleWidth = widestHandle(set);
    }
    void draw(const TvSmSubset& subset, int depth);

private:
    static int widestHandle(const TvSmSubset& subset);
    void drawChildren(const TvSmSubset& subset, const TvString& indent, int depth);
    void drawLine(const TvSmComponent& component, const TvString& branch, const TvString& hidden);
    static TvString hiddenBelow(const TvSmComponent& component, int depth);

    Console& m_console; // not owned
    int m_handleWidth = 0;
};

int Picture::widestHandle(const TvSmSubset& subset)
{
    int width = handleOf(subset).length();
    for (const TvSmComponent* child : sm::each(subset.getSheetEnumerator())) {
        const auto* below = tvrxCast<TvSmSubset>(child);
        width = std::max(width, below ? widestHandle(*below) : handleOf(*child).length());
    }
    return width;
}

/// "(2 subsets, 12 sheets)" for a subset whose children are not shown.
TvString Picture::hiddenBelow(const TvSmComponent& component, int depth)
{
    const auto* subset = tvrxCast<TvSmSubset>(&component);
    if (!subset || depth != 0)
        return {};
    const Counts below = countBelow(*subset);
    return below.subsets + below.sheets == 0 ? TvString()
                                             : words(Word::TreeHidden, below.subsets, below.sheets);
}

void Picture::drawLine(const TvSmComponent& component, const TvString& branch,
                       const TvString& hidden)
{
    TvString handle = handleOf(component);
    while (handle.length() < m_handleWidth + 2)
        handle += u' ';
    const auto* sheet = tvrxCast<TvSmSheet>(&component);
    const auto* subset = tvrxCast<TvSmSubset>(&component);
    const Kind kind = kindOf(component);
    const bool isExcluded = sheet ? sheet->getExcludeFromPublish()
                                  : kind == Kind::Subset && subset->getExcludeFromPublish();
    std::vector<Piece> pieces = {{handle, Tone::Faint},
                                 {branch, Tone::Faint},
                                 {labelOf(component), sheet ? Tone::Plain : Tone::Strong}};
    if (!hidden.isEmpty())
        pieces.push_back({TvString(u"  ") + hidden, Tone::Faint});
    if (isExcluded)
        pieces.push_back({TvString(u"  ") + words(Word::TreeExcluded), Tone::Alert});
    m_console.line(pieces);
}

void Picture::draw(const TvSmSubset& subset, int depth)
{
    drawLine(subset, {}, hiddenBelow(subset, depth));
    drawChildren(subset, {}, depth);
}

void Picture::drawChildren(const TvSmSubset& subset, const TvString& indent, int depth)
{
    if (depth == 0)
        return;
    std::vector<const TvSmComponent*> children;
    for (const TvSmComponent* child : sm::each(subset.getSheetEnumerator()))
        children.push_back(child);
    for (std::size_t at = 0; at < children.size(); ++at) {
        const bool isLast = at + 1 == children.size();
        drawLine(*children[at], indent + (isLast ? u"└─ " : u"├─ "),
                 hiddenBelow(*children[at], depth - 1));
        if (const auto* below = tvrxCast<TvSmSubset>(children[at]))
            drawChildren(*below, indent + (isLast ? u"   " : u"│  "), depth - 1);
    }
}

ExitCode show(const TreeRequest& request, Console& console)
{
    const OpenedSet opened(request.file, console);
    const int depth = request.depth.value_or(-1);
    if (console.isJson()) {
        console.document()["file"] = jsonText(opened.database().getFileName());
        console.document()["root"] = treeOf(opened.set(), depth);
    } else {
        Picture(opened.set(), console).draw(opened.set(), depth);
    }
    return ExitCode::Ok;
}

} // namespace

Outcome run(const TreeRequest& request, Console& console)
{
    return attempt(console, [&] { return show(request, console); });
}

} // namespace cli
