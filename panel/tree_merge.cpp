// Makes a tree that of its database again, and tells only what differs:
// 1. an item is taken out of its old place before it is put into its new one;
// 2. above the item whose children are compared everything has its final place;
// 3. what was taken out and put in nowhere is gone at the end, not before: what stood below it may
//    stand elsewhere now.

#include <algorithm>

#include <sm/tv_sm_database.h>

#include "panel/sheet_tree.h"

namespace panel {

class TreeMerge
{
public:
    explicit TreeMerge(SheetTree& tree) : m_tree(tree) {}

    bool run()
    {
        const SheetTree::Batch batch(m_tree);
        mergeBelow(*m_tree.m_root, *m_tree.m_database->getSheetSet());
        for (auto& [key, item] : m_taken)
            m_tree.leave(*item);
        return m_hasChanged;
    }

private:
    using Children = std::vector<std::unique_ptr<TreeItem>>;
    using Wanted = std::vector<const TvSmComponent*>;

    static std::uint64_t keyOf(TvSmObjectId id) { return sm::handleNumber(id.getHandle().view()); }

    bool isShown(const TreeItem& item) const
    {
        const TreeItem* at = &item;
        while (at->m_parent)
            at = at->m_parent;
        return at == m_tree.m_root.get();
    }

    void mergeBelow(TreeItem& parent, const TvSmSubset& subset)
    {
        m_tree.UpdateSheetLabel(&parent);
        Wanted wanted;
        wanted.reserve(parent.m_children.size());
        std::size_t first = 0; // row that differs; looked for while each object is at hand
        for (const TvSmComponent* child : sm::each(subset.getSheetEnumerator())) {
            if (first == wanted.size() && first < parent.m_children.size() &&
                isSame(parent.m_children[first], child))
                ++first;
            wanted.push_back(child);
        }
        arrange(parent, wanted, first);
        for (std::size_t i = 0; i < wanted.size(); ++i) {
            TreeItem& child = *parent.m_children[i];
            if (child.m_kind == TreeItemData::kSubset)
                mergeBelow(child, *tvrxCast<TvSmSubset>(wanted[i]));
            else if (child.m_hasLabel)
                m_tree.UpdateSheetLabel(&child);
        }
    }

    static bool isSame(const std::unique_ptr<TreeItem>& item, const TvSmComponent* object)
    {
        return item->m_id == object->objectId();
    }

    /// @param first  how many rows at the top are as they are wanted.
    void arrange(TreeItem& parent, const Wanted& wanted, std::size_t first)
    {
        const Children& present = parent.m_children;
        std::size_t kept = 0; // at the end
        while (first + kept < present.size() && first + kept < wanted.size() &&
               isSame(present[present.size() - 1 - kept], wanted[wanted.size() - 1 - kept]))
            ++kept;
        if (first + kept == present.size() && first + kept == wanted.size())
            return;
        m_hasChanged = true;
        takeOutWhatIsElsewhere(parent, wanted, first, wanted.size() - kept, kept);
        putIn(parent, wanted, first, wanted.size() - kept);
    }

    /// From row @p first on, but for the last @p kept rows, leaves only items that are wanted there
    /// and stand in the wanted order.
    void takeOutWhatIsElsewhere(TreeItem& parent, const Wanted& wanted, std::size_t first,
                                std::size_t end, std::size_t kept)
    {
        std::unordered_map<std::uint64_t, std::size_t> placeOf;
        for (std::size_t i = first; i < end; ++i)
            placeOf.emplace(keyOf(wanted[i]->objectId()), i);
        std::vector<std::size_t> places; // of the rows; past the end: not wanted here
        for (std::size_t row = first; row < parent.m_children.size() - kept; ++row) {
            const auto place = placeOf.find(keyOf(parent.m_children[row]->m_id));
            places.push_back(place == placeOf.end() ? end : place->second);
        }
        const std::vector<bool> stays = longestRise(places, end);
        for (std::size_t i = stays.size(); i > 0;) {
            const std::size_t last = --i;
            if (stays[last])
                continue;
            while (i > 0 && !stays[i - 1])
                --i;
            takeOut(parent, first + i, first + last);
        }
    }

    /// Marks the most items that rise; those of @p none are not among them.
    static std::vector<bool> longestRise(const std::vector<std::size_t>& places, std::size_t none)
    {
        constexpr std::size_t kNothing = static_cast<std::size_t>(-1);
        std::vector<std::size_t> tails; // indices of the lowest end of a rise of each length
        std::vector<std::size_t> before(places.size(), kNothing);
        for (std::size_t i = 0; i < places.size(); ++i) {
            if (places[i] >= none)
                continue;
            const auto tail = std::ranges::lower_bound(
                tails, places[i], {}, [&](std::size_t index) { return places[index]; });
            if (tail != tails.begin())
                before[i] = *(tail - 1);
            if (tail == tails.end())
                tails.push_back(i);
            else
                *tail = i;
        }
        std::vector<bool> marks(places.size(), false);
        for (std::size_t at = tails.empty() ? kNothing : tails.back(); at != kNothing;
             at = before[at])
            marks[at] = true;
        return marks;
    }

    void takeOut(TreeItem& parent, std::size_t first, std::size_t last)
    {
        const bool shown = isShown(parent);
        if (shown)
            m_tree.m_listener->aboutToRemove(parent, static_cast<int>(first),
                                             static_cast<int>(last));
        const auto from = parent.m_children.begin() + static_cast<std::ptrdiff_t>(first);
        const auto to = parent.m_children.begin() + static_cast<std::ptrdiff_t>(last) + 1;
        for (auto at = from; at != to; ++at) {
            (*at)->m_parent = nullptr;
            m_taken[keyOf((*at)->m_id)] = std::move(*at);
        }
        parent.m_children.erase(from, to);
        if (shown)
            m_tree.m_listener->wasRemoved();
    }

    /// Puts what is missing into its rows, neighbours together.
    void putIn(TreeItem& parent, const Wanted& wanted, std::size_t first, std::size_t end)
    {
        for (std::size_t row = first; row < end;) {
            std::size_t last = row;
            while (last < end && !standsAt(parent, row, wanted[last]))
                ++last;
            if (last > row)
                putInRun(parent, wanted, row, last);
            row = last + 1;
        }
    }

    static bool standsAt(const TreeItem& parent, std::size_t row, const TvSmComponent* object)
    {
        return row < parent.m_children.size() && parent.m_children[row]->m_id == object->objectId();
    }

    void putInRun(TreeItem& parent, const Wanted& wanted, std::size_t first, std::size_t end)
    {
        Children run;
        for (std::size_t i = first; i < end; ++i)
            run.push_back(itemFor(*wanted[i], parent));
        m_tree.m_listener->aboutToInsert(parent, static_cast<int>(first),
                                         static_cast<int>(end) - 1);
        for (std::unique_ptr<TreeItem>& item : run)
            item->m_parent = &parent;
        parent.m_children.insert(parent.m_children.begin() + static_cast<std::ptrdiff_t>(first),
                                 std::move_iterator(run.begin()), std::move_iterator(run.end()));
        m_tree.m_listener->wasInserted();
    }

    /// The item of the object, from wherever it stood, or a new one.
    std::unique_ptr<TreeItem> itemFor(const TvSmComponent& object, const TreeItem& parent)
    {
        const std::uint64_t key = keyOf(object.objectId());
        const auto known = m_tree.m_itemByHandle.find(key);
        if (known != m_tree.m_itemByHandle.end()) {
            if (TreeItem* stood = known->second->m_parent) {
                const auto row = static_cast<std::size_t>(known->second->row());
                takeOut(*stood, row, row);
            }
            return std::move(m_taken.extract(key).mapped());
        }
        const bool isSheet = object.isA() == TvSmSheet::desc();
        std::unique_ptr<TreeItem> item(new TreeItem(
            isSheet ? TreeItemData::kSheet : TreeItemData::kSubset, object.objectId(), nullptr));
        item->m_isExpanded = !isSheet && &parent == m_tree.m_root.get();
        m_tree.enter(*item);
        return item;
    }

    SheetTree& m_tree;
    std::unordered_map<std::uint64_t, std::unique_ptr<TreeItem>> m_taken;
    bool m_hasChanged = false;
};

bool SheetTree::Merge()
{
    if (!m_database)
        return false;
    const TvSmSheetSet* set = m_database->getSheetSet();
    if (m_root && m_root->m_id == set->objectId())
        return TreeMerge(*this).run();
    TreeItem* root = InsertSheetSetItem(set);
    AddChildrenToTree(root, set);
    return true;
}

} // namespace panel
