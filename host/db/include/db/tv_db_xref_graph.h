#pragma once

#include <memory>
#include <vector>

#include <db/tv_db_symbol_table.h>

/// One drawing of a graph of external references: the host, or a drawing that is shown in another.
class TvDbXrefGraphNode
{
public:
    /// The name of its block in the drawing that names it first; for the host, its file name.
    TvString name() const { return m_name; }
    /// The block of the host drawing; null for the host itself and for nested references.
    TvDbObjectId btrId() const { return m_block; }
    /// The full path of its file, as far as it could be told; empty for a host without a file.
    TvString path() const { return m_path; }
    /// The path as the drawing that names it has it.
    TvString savedPath() const { return m_savedPath; }
    TvDb::XrefStatus xrefStatus() const { return m_status; }
    /// Only drawings that the host refers to name it.
    bool isNested() const { return m_isNested; }
    /// Shown in the drawing that names it only, not in one that shows that.
    bool isOverlay() const { return m_isOverlay; }
    /// An overlay of a reference: the host does not show it.
    bool isGhost() const { return m_isGhost; }

    /// The drawings that it refers to.
    int numOut() const { return static_cast<int>(m_out.size()); }
    /// Null out of range.
    TvDbXrefGraphNode* out(int index) const { return at(m_out, index); }
    /// The drawings that refer to it.
    int numIn() const { return static_cast<int>(m_in.size()); }
    TvDbXrefGraphNode* in(int index) const { return at(m_in, index); }

private:
    friend class TvDbXrefGraph;
    friend class XrefGraphMaker;

    static TvDbXrefGraphNode* at(const std::vector<TvDbXrefGraphNode*>& nodes, int index)
    {
        return index >= 0 && index < static_cast<int>(nodes.size())
                   ? nodes[static_cast<std::size_t>(index)]
                   : nullptr;
    }

    TvString m_name, m_path, m_savedPath;
    TvDbObjectId m_block;
    TvDb::XrefStatus m_status = TvDb::kXrfNotAnXref;
    bool m_isNested = false, m_isOverlay = false, m_isGhost = false;
    std::vector<TvDbXrefGraphNode*> m_out, m_in; // the graph's
};

/// Which drawings a drawing shows, and which those show. Has no circles: a reference back to a
/// drawing that leads here is left out, so walking along out() ends.
class TvDbXrefGraph
{
public:
    /// 0 before it was filled.
    int numNodes() const { return static_cast<int>(m_nodes.size()); }
    /// The host drawing is number 0; null out of range.
    TvDbXrefGraphNode* node(int index) const;
    TvDbXrefGraphNode* hostNode() const { return node(0); }
    /// By the name of a block, in any case; null when there is none.
    TvDbXrefGraphNode* xrefNode(const TvString& name) const;
    TvDbXrefGraphNode* xrefNode(TvDbObjectId block) const;
    /// References back to a drawing that leads to them were left out.
    bool hadCircles() const { return m_hadCircles; }

private:
    friend class XrefGraphMaker;

    std::vector<std::unique_ptr<TvDbXrefGraphNode>> m_nodes;
    bool m_hadCircles = false;
};

/// Fills @p graph with the references of @p host, and with theirs; their files are opened for
/// looking, one after the other, each once.
///
/// Relative paths begin at the drawing that names them, then at the host; a file that is not where
/// the path says is looked for by its name in the host's folder. Nothing on a network host is
/// touched unless the user agreed to it.
/// @param includeGhosts  also overlays of references, which the host does not show.
/// @return NoDatabase for null.
TvStatusCode tvdbGetHostDwgXrefGraph(TvDbDatabase* host, TvDbXrefGraph& graph, bool includeGhosts);

/// The full path of the file that an external reference of @p database means.
/// @return FileNotFound when there is no such file (or nobody may look); then @p out is the path
///         where it should be. InvalidInput, with @p out empty, for what is no external reference.
TvStatusCode tvdbOriginalXrefFullPathFor(TvDbDatabase* database, TvDbObjectId block, TvString& out);
