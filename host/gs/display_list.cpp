#include "gs/display_list.h"

#include <cmath>
#include <mutex>

namespace gs {

namespace {

constexpr std::uint32_t kFanOut = 16;
constexpr std::size_t kIndexBytes = 8; // of an item in the index, about

template <class Row>
std::size_t bytesOf(const Row& values)
{
    return values.size() * sizeof(*values.begin());
}

/// An item by a place on one axis.
struct Placed {
    float at;
    std::uint32_t item;

    friend bool operator<(const Placed& a, const Placed& b) { return a.at < b.at; }
};

} // namespace

struct DisplayList::Index {
    /// A box around 16 nodes of the level below, or items.
    struct Node {
        Box box;
        std::uint32_t first = 0, count = 0;
        bool isLeaf = true;
    };

    void build(std::span<const Item> items);
    void mark(std::span<const Item> items, const Node& node, const Box& window,
              std::vector<std::uint64_t>& marks) const;

    std::once_flag isBuilt;
    Box around;                            // all items that a box holds
    std::vector<Node> nodes;               // the root is the last one
    std::vector<std::uint32_t> order;      // item numbers, in the order of the leaves
    std::vector<std::uint32_t> everywhere; // items that no box holds
};

// Leaves are strips: items by x, those of a strip by y, sixteen beside each other in a leaf.
void DisplayList::Index::build(std::span<const Item> items)
{
    for (std::uint32_t i = 0; i < items.size(); ++i)
        (items[i].box.isEmpty() ? everywhere : order).push_back(i);
    std::vector<Placed> placed(order.size());
    for (std::size_t i = 0; i < placed.size(); ++i)
        placed[i] = {static_cast<float>(items[order[i]].box.center().x), order[i]};
    std::sort(placed.begin(), placed.end());
    const std::size_t leaves = (placed.size() + kFanOut - 1) / kFanOut;
    const auto strips = static_cast<std::size_t>(std::ceil(std::sqrt(static_cast<double>(leaves))));
    const std::size_t perStrip = std::max<std::size_t>(strips, 1) * kFanOut;
    for (Placed& one : placed)
        one.at = static_cast<float>(items[one.item].box.center().y);
    for (std::size_t at = 0; at < placed.size(); at += perStrip)
        std::sort(placed.begin() + static_cast<std::ptrdiff_t>(at),
                  placed.begin() +
                      static_cast<std::ptrdiff_t>(std::min(at + perStrip, placed.size())));
    for (std::size_t i = 0; i < placed.size(); ++i)
        order[i] = placed[i].item;
    for (std::uint32_t at = 0; at < order.size(); at += kFanOut) {
        Node& leaf = nodes.emplace_back();
        leaf.first = at;
        leaf.count =
            std::min<std::uint32_t>(kFanOut, static_cast<std::uint32_t>(order.size()) - at);
        for (std::uint32_t i = 0; i < leaf.count; ++i)
            leaf.box.addBox(items[order[at + i]].box);
    }
    std::size_t first = 0;
    while (nodes.size() - first > 1) {
        const std::size_t end = nodes.size();
        for (std::size_t at = first; at < end; at += kFanOut) {
            Node above;
            above.isLeaf = false;
            above.first = static_cast<std::uint32_t>(at);
            above.count = static_cast<std::uint32_t>(std::min<std::size_t>(kFanOut, end - at));
            for (std::uint32_t i = 0; i < above.count; ++i)
                above.box.addBox(nodes[at + i].box);
            nodes.push_back(above);
        }
        first = end;
    }
}

void DisplayList::Index::mark(std::span<const Item> items, const Node& node, const Box& window,
                              std::vector<std::uint64_t>& marks) const
{
    if (!node.box.touches(window))
        return;
    for (std::uint32_t i = node.first; i < node.first + node.count; ++i)
        if (!node.isLeaf)
            mark(items, nodes[i], window, marks);
        else if (items[order[i]].box.touches(window))
            marks[order[i] / 64] |= std::uint64_t(1) << order[i] % 64;
}

void DisplayList::startIndex()
{
    m_index = std::make_shared<Index>();
    for (const Item& item : m_items)
        m_index->around.addBox(item.box);
}

const DisplayList::Index& DisplayList::index() const
{
    std::call_once(m_index->isBuilt, [this] { m_index->build(items()); });
    return *m_index;
}

void DisplayList::mark(const Box& window, std::vector<std::uint64_t>& marks) const
{
    marks.assign((m_items.size() + 63) / 64, 0);
    if (m_items.size() == 0)
        return;
    const Box& all = m_index->around;
    if (window.lowX <= all.lowX && window.lowY <= all.lowY && window.highX >= all.highX &&
        window.highY >= all.highY) {
        std::fill(marks.begin(), marks.end(), ~std::uint64_t(0));
        if (m_items.size() % 64 != 0)
            marks.back() = ~(~std::uint64_t(0) << m_items.size() % 64);
        return;
    }
    const Index& where = index();
    for (const std::uint32_t item : where.everywhere)
        marks[item / 64] |= std::uint64_t(1) << item % 64;
    if (!where.nodes.empty())
        where.mark(items(), where.nodes.back(), window, marks);
}

std::size_t DisplayList::memory() const
{
    std::size_t texts = 0;
    for (const PlacedText& run : m_texts)
        texts += static_cast<std::size_t>(run.text.length()) * sizeof(TvChar);
    return bytesOf(m_rowLetters) + bytesOf(m_rows) + bytesOf(m_letterPaths) + bytesOf(m_verbs) +
           bytesOf(m_points) + bytesOf(m_items) + bytesOf(m_clips) + bytesOf(m_layers) +
           bytesOf(m_texts) + bytesOf(m_pictures) + texts + m_items.size() * kIndexBytes;
}

} // namespace gs
