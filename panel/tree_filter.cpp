#include "panel/tree_filter.h"

#include <sm/tv_sm_database.h>

namespace panel {

namespace {

std::vector<TvString> wordsOf(const TvString& text)
{
    std::vector<TvString> words;
    TvString word;
    const TvString lower = text.toLower();
    for (const TvChar unit : lower.view()) {
        if (unit != u' ') {
            word += unit;
        } else if (!word.isEmpty()) {
            words.push_back(word);
            word.setEmpty();
        }
    }
    if (!word.isEmpty())
        words.push_back(word);
    return words;
}

/// All that is searched, in lower case; lines keep words of two places apart.
TvString searchedTextOf(const TvSmComponent& component)
{
    TvString text = component.getName();
    const auto add = [&text](const TvString& more) {
        text += u'\n';
        text += more;
    };
    add(component.getDesc());
    if (const auto* sheet = tvrxCast<TvSmSheet>(&component)) {
        add(sheet->getNumber());
        add(sheet->getTitle());
    }
    for (const sm::Property& property : sm::propertiesOf(component.getCustomProperties())) {
        TvVariant value;
        TvString words;
        property.value->getValue(value);
        if (value.getString(words))
            add(words);
    }
    return text.toLower();
}

class Filter
{
public:
    Filter(const SheetTree& tree, const TvString& text, FilteredTree& out)
        : m_tree(tree), m_words(wordsOf(text)), m_out(out)
    {
    }
    /// @param isBelowMatch  something above it was found. @return whether it or anything below was.
    bool walk(const TreeItem& item, bool isBelowMatch)
    {
        const bool isMatch = matches(item);
        m_out.matches += isMatch;
        bool isFoundBelow = false;
        for (const auto& child : item.children())
            isFoundBelow |= walk(*child, isBelowMatch || (isMatch && item.parent()));
        if (isFoundBelow)
            m_out.opened.insert(&item);
        if (isMatch || isFoundBelow || isBelowMatch || !item.parent())
            m_out.shown.insert(&item);
        return isMatch || isFoundBelow;
    }

private:
    bool matches(const TreeItem& item) const
    {
        const TvSmComponent* object = m_tree.GetComponent(&item);
        if (!object)
            return false;
        const TvString text = searchedTextOf(*object);
        for (const TvString& word : m_words)
            if (text.find(word) == TvString::npos)
                return false;
        return true;
    }

    const SheetTree& m_tree;
    const std::vector<TvString> m_words;
    FilteredTree& m_out;
};

} // namespace

FilteredTree filterTree(const SheetTree& tree, const TvString& text)
{
    FilteredTree filtered;
    if (tree.root())
        Filter(tree, text, filtered).walk(*tree.root(), false);
    return filtered;
}

} // namespace panel
