#include "gs/display_list.h"

#include <cmath>

namespace gs {

namespace {

constexpr std::uint32_t kFanOut = 16;

template <class Row>
std::size_t bytesOf(const Row& values)
{
    return values.capacity() * sizeof(*values.begin());
}

/// An item by a place on one axis.
struct Placed {
    float at;
    std::uint32_t item;

    friend bool operator<(const Placed& a, const Placed& b) { return a.at < b.at; }
};

} // namespace

std::size_t DisplayList::memory() const
{
    std::size_t texts = 0;
    for (const PlacedText& run : m_texts)
        texts += static_cast<std::size_t>(run.text.length()) * sizeof(TvChar);
    return bytesOf(m_verbs) + bytesOf(m_points) + bytesOf(m_items) + bytesOf(m_clips) +
           bytesOf(m_layers) + bytesOf(m_texts) + bytesOf(m_pictures) + bytesOf(m_nodes) +
           bytesOf(m_order) + texts;
}

// Leaves are strips: items by x, those of a strip by y, sixteen beside each other in a leaf.
void DisplayList::buildIndex()
{
    for (std::uint32_t i = 0; i < m_items.size(); ++i)
        (m_items[i].box.isEmpty() ? m_everywhere : m_order).push_back(i);
    std::vector<Placed> placed(m_order.size());
    for (std::size_t i = 0; i < placed.size(); ++i)
        placed[i] = {static_cast<float>(m_items[m_order[i]].box.center().x), m_order[i]};
    std::sort(placed.begin(), placed.end());
    const std::size_t leaves = (placed.size() + kFanOut - 1) / kFanOut;
    const auto strips = static_cast<std::size_t>(std::ceil(std::sqrt(static_cast<double>(leaves))));
    const std::size_t perStrip = std::max<std::size_t>(strips, 1) * kFanOut;
    for (Placed& one : placed)
        one.at = static_cast<float>(m_items[one.item].box.center().y);
    for (std::size_t at = 0; at < placed.size(); at += perStrip)
        std::sort(placed.begin() + static_cast<std::ptrdiff_t>(at),
                  placed.begin() +
                      static_cast<std::ptrdiff_t>(std::min(at + perStrip, placed.size())));
    for (std::size_t i = 0; i < placed.size(); ++i)
        m_order[i] = placed[i].item;
    for (std::uint32_t at = 0; at < m_order.size(); at += kFanOut) {
        Node& leaf = m_nodes.emplace_back();
        leaf.first = at;
        leaf.count =
            std::min<std::uint32_t>(kFanOut, static_cast<std::uint32_t>(m_order.size()) - at);
        for (std::uint32_t i = 0; i < leaf.count; ++i)
            leaf.box.addBox(m_items[m_order[at + i]].box);
    }
    std::size_t first = 0;
    while (m_nodes.size() - first > 1) {
        const std::size_t end = m_nodes.size();
        for (std::size_t at = first; at < end; at += kFanOut) {
            Node above;
            above.isLeaf = false;
            above.first = static_cast<std::uint32_t>(at);
            above.count = static_cast<std::uint32_t>(std::min<std::size_t>(kFanOut, end - at));
            for (std::uint32_t i = 0; i < above.count; ++i)
                above.box.addBox(m_nodes[at + i].box);
            m_nodes.push_back(above);
        }
        first = end;
    }
}

void DisplayList::mark(const Node& node, const Box& window, std::vector<std::uint64_t>& marks) const
{
    if (!node.box.touches(window))
        return;
    for (std::uint32_t i = node.first; i < node.first + node.count; ++i)
        if (!node.isLeaf)
            mark(m_nodes[i], window, marks);
        else if (m_items[m_order[i]].box.touches(window))
            marks[m_order[i] / 64] |= std::uint64_t(1) << m_order[i] % 64;
}

void DisplayList::mark(const Box& window, std::vector<std::uint64_t>& marks) const
{
    marks.assign((m_items.size() + 63) / 64, 0);
    for (const std::uint32_t item : m_everywhere)
        marks[item / 64] |= std::uint64_t(1) << item % 64;
    if (!m_nodes.empty())
        mark(m_nodes.back(), window, marks);
}

} // namespace gs
