#pragma once

#include <vector>

#include <rx/tv_rx_class.h>

/// What a module shows in the property inspector: the names of its property sources, known as long
/// as the manager lives. One without entries shows nothing.
class TvRxDynPropManager
{
public:
    struct Entry {
        const TvChar* sourceName = nullptr; ///< literal
        const TvRxClass* ofClass = nullptr; ///< objects of which have the rows; static
        bool isPropertySource = false;      ///< otherwise rows of their own
    };

    explicit TvRxDynPropManager(std::vector<Entry> entries = {}) : m_entries(std::move(entries)) {}
    virtual ~TvRxDynPropManager();
    TvRxDynPropManager(const TvRxDynPropManager&) = delete;
    TvRxDynPropManager& operator=(const TvRxDynPropManager&) = delete;

    const std::vector<Entry>& entries() const { return m_entries; }

private:
    std::vector<Entry> m_entries;
};

/// Tells that classes came or went: what was worked out from the tree of classes is out of date.
void tvrxBuildClassHierarchy();
/// How often that was told; whoever keeps something compares it.
unsigned tvrxClassHierarchyVersion();
