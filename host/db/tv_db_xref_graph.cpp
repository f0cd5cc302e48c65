#include <db/tv_db_xref_graph.h>

#include <unordered_map>

#include <base/path_rules.h>
#include <db/attached_drawings.h>

#include "xref_paths.h"

namespace {

constexpr int kDeepest = 100;               // references within each other
constexpr std::size_t kMostLookedAt = 1000; // when only those are wanted that are not shown

struct Named {
    TvString name, savedPath;
    TvDbObjectId block;
    bool isOverlay, isUnloaded;
};

std::vector<Named> referencesOf(const TvDbDatabase& database)
{
    std::vector<Named> all;
    const TvDbObjectPointer<TvDbBlockTable> blocks(database.symbolTableId(TvDb::SymbolTable::Block),
                                                   TvDb::kForNotify);
    if (!blocks)
        return all;
    for (const TvDbObjectId id : blocks->recordIds()) {
        const TvDbObjectPointer<TvDbBlockTableRecord> block(id, TvDb::kForNotify);
        // What came with a reference is that one's, and is found there.
        if (block && block->isFromExternalReference() && !block->isDependent())
            all.push_back({block->getName(), block->pathName(), id, block->isFromOverlayReference(),
                           block->isUnloaded()});
    }
    return all;
}

TvString keyOf(const TvString& path)
{
    return base::PathRules::native().keyOf(path.view());
}

} // namespace

/// Walks along the references, each file once.
class XrefGraphMaker
{
public:
    /// @param most  drawings that the graph may have.
    XrefGraphMaker(TvDbXrefGraph& graph, bool includeGhosts, db::AttachedDrawings& attached,
                   std::size_t most)
        : m_graph(graph), m_includesGhosts(includeGhosts), m_attached(attached), m_most(most)
    {
    }

    void make(TvDbDatabase& host)
    {
        m_graph.m_nodes.clear();
        m_graph.m_hadCircles = false;
        m_host = host.getFilename();
        TvDbXrefGraphNode& node = add();
        node.m_name = base::PathRules::native().stemOf(m_host.view());
        node.m_path = m_host;
        if (!m_host.isEmpty())
            m_byPath.emplace(keyOf(base::PathRules::native().normalise(m_host.view())), &node);
        follow(host, node, 0);
    }

private:
    TvDbXrefGraphNode& add()
    {
        return *m_graph.m_nodes.emplace_back(std::make_unique<TvDbXrefGraphNode>());
    }

    void follow(TvDbDatabase& database, TvDbXrefGraphNode& from, int depth)
    {
        m_open[&from] = true;
        const bool isHost = depth == 0;
        for (const Named& named : referencesOf(database))
            if (isHost || !named.isOverlay || m_includesGhosts)
                refer(named, from, depth);
        m_open[&from] = false;
    }

    void refer(const Named& named, TvDbXrefGraphNode& from, int depth)
    {
        const db::XrefPlace place = db::findXref(named.savedPath, from.m_path, m_host);
        TvDbXrefGraphNode*& known = m_byPath[keyOf(place.path)];
        if (known && m_open[known]) {
            m_graph.m_hadCircles = true;
            return;
        }
        const bool isNew = !known;
        if (isNew && m_graph.m_nodes.size() >= m_most)
            return;
        TvDbXrefGraphNode& node = isNew ? add() : *known;
        known = &node;
        if (isNew)
            describe(node, named, place, depth);
        else if (depth == 0 && node.m_block.isNull())
            takeOver(node, named);
        link(from, node);
        if (isNew && node.m_status == TvDb::kXrfResolved)
            look(node, depth + 1);
    }

    static void describe(TvDbXrefGraphNode& node, const Named& named, const db::XrefPlace& place,
                         int depth)
    {
        node.m_name = named.name;
        node.m_savedPath = named.savedPath;
        node.m_path = place.path;
        node.m_block = depth == 0 ? named.block : TvDbObjectId();
        node.m_isNested = depth > 0;
        node.m_isOverlay = named.isOverlay;
        node.m_isGhost = depth > 0 && named.isOverlay;
        node.m_status = named.isUnloaded ? TvDb::kXrfUnloaded : db::statusOf(place);
    }

    /// The host names it itself, too.
    static void takeOver(TvDbXrefGraphNode& node, const Named& named)
    {
        node.m_name = named.name;
        node.m_savedPath = named.savedPath;
        node.m_block = named.block;
        node.m_isNested = false;
        node.m_isOverlay = named.isOverlay;
        node.m_isGhost = false;
    }

    static void link(TvDbXrefGraphNode& from, TvDbXrefGraphNode& to)
    {
        for (const TvDbXrefGraphNode* already : from.m_out)
            if (already == &to)
                return;
        from.m_out.push_back(&to);
        to.m_in.push_back(&from);
    }

    void look(TvDbXrefGraphNode& node, int depth)
    {
        const std::shared_ptr<TvDbDatabase> file =
            m_attached.open(node.m_path, node.m_path, m_host).database;
        if (!file)
            node.m_status = TvDb::kXrfUnresolved;
        else if (depth < kDeepest)
            follow(*file, node, depth);
    }

    TvDbXrefGraph& m_graph;
    const bool m_includesGhosts;
    db::AttachedDrawings& m_attached;
    const std::size_t m_most;
    TvString m_host;
    std::unordered_map<TvString, TvDbXrefGraphNode*> m_byPath;
    std::unordered_map<const TvDbXrefGraphNode*, bool> m_open; // on the way to where we are
};

TvDbXrefGraphNode* TvDbXrefGraph::node(int index) const
{
    return index >= 0 && index < numNodes() ? m_nodes[static_cast<std::size_t>(index)].get()
                                            : nullptr;
}

TvDbXrefGraphNode* TvDbXrefGraph::xrefNode(const TvString& name) const
{
    for (std::size_t i = 1; i < m_nodes.size(); ++i)
        if (m_nodes[i]->name().compareNoCase(name) == 0)
            return m_nodes[i].get();
    return nullptr;
}

TvDbXrefGraphNode* TvDbXrefGraph::xrefNode(TvDbObjectId block) const
{
    for (const auto& node : m_nodes)
        if (!block.isNull() && node->btrId() == block)
            return node.get();
    return nullptr;
}

TvStatusCode tvdbGetHostDwgXrefGraph(TvDbDatabase* host, TvDbXrefGraph& graph, bool includeGhosts)
{
    if (!host)
        return TvStatus::NoDatabase;
    db::AttachedDrawings attached({0, 0});
    XrefGraphMaker(graph, includeGhosts, attached, SIZE_MAX).make(*host);
    return TvStatus::Ok;
}

std::vector<db::LostReference> db::lostReferences(TvDbDatabase& host, AttachedDrawings& attached)
{
    TvDbXrefGraph graph;
    XrefGraphMaker(graph, false, attached, kMostLookedAt).make(host);
    std::vector<LostReference> lost;
    for (int i = 1; i < graph.numNodes(); ++i) {
        const TvDbXrefGraphNode& node = *graph.node(i);
        base::Status why =
            whyNotShown(node.xrefStatus(), node.name(), node.savedPath(), node.path());
        if (!why)
            lost.push_back({node.name(), node.savedPath(), std::move(why)});
    }
    return lost;
}

TvStatusCode tvdbOriginalXrefFullPathFor(TvDbDatabase* database, TvDbObjectId block, TvString& out)
{
    out = TvString();
    if (!database || block.database() != database)
        return database ? TvStatus::InvalidInput : TvStatus::NoDatabase;
    const TvDbObjectPointer<TvDbBlockTableRecord> record(block, TvDb::kForNotify);
    if (!record || !record->isFromExternalReference())
        return TvStatus::InvalidInput;
    const TvString host = database->getFilename();
    const db::XrefPlace place = db::findXref(record->pathName(), host, host);
    out = place.path;
    return place.isThere ? TvStatus::Ok : TvStatus::FileNotFound;
}
