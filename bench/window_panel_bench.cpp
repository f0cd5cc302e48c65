// The tree of the panel as its window shows it, against a bare model in a bare view.

#include <QApplication>
#include <QTreeView>

#include <benchmark/benchmark.h>

#include <panel_windows/drag_tree_ctrl.h>
#include <sm/tv_sm_database.h>

#include "ratio.h"

namespace {

constexpr int kSheets = 10'000, kSubsets = 100, kSelected = 1'000;
constexpr int kInEach = kSheets / kSubsets;

/// The toolkit, without a screen. It is not taken down: the window below lives as long as the
/// process.
void start()
{
    static int count = 1;
    static char name[] = "window_panel_bench";
    static char* arguments[] = {name, nullptr};
    qputenv("QT_QPA_PLATFORM", "offscreen");
    static const auto* const application = new QApplication(count, arguments);
    static_cast<void>(application);
}

/// Sheets in subsets, and the handles of some of them.
struct Scene {
    Scene()
    {
        TvSmSheetSet* set = database.getSheetSet();
        for (int i = 0; i < kSubsets; ++i) {
            TvSmSubset* subset = set->createSubset(TvString().format(u"Level %d", i), u"");
            set->insertComponent(subset, nullptr);
            for (int j = 0; j < kInEach; ++j)
                addSheet(*subset, i * kInEach + j);
        }
        tree.setDatabase(&database);
        start();
        window = std::make_unique<CDragTreeCtrl>(tree, nullptr);
        window->resize(300, 800);
        tree.Merge();
        window->show();
        rebuild();
        window->grab(); // labels of rows that were shown are kept
    }
    ~Scene()
    {
        window.reset();
        tree.ClearTree();
    }
    void addSheet(TvSmSubset& subset, int number)
    {
        TvSmSheet* sheet = subset.createSheet(TvString().format(u"Sheet %d", number), u"");
        sheet->setNumber(TvString().format(u"A-%05d", number));
        subset.insertComponent(sheet, nullptr);
        last = sheet;
        if (number % (kSheets / kSelected) == 0)
            selected.insert(sheet->objectId().getHandle());
    }
    /// As the page does, until the view could be painted.
    void rebuild()
    {
        tree.ClearTree();
        tree.Merge();
        tree.setExpanded(tree.root(), true);
        tree.ExpandAll(true);
        tree.RestoreSelection(selected);
        window->doItemsLayout();
    }

    int selectedRows() const
    {
        return static_cast<int>(window->selectionModel()->selectedIndexes().size());
    }
    bool isLastShown()
    {
        return !window->rectOf(tree.itemOf(last->objectId().getHandle())).isEmpty();
    }

    TvSmDatabase database;
    std::set<TvString> selected;
    TvSmSheet* last = nullptr;
    panel::SheetTree tree;
    std::unique_ptr<CDragTreeCtrl> window;
};

Scene& scene()
{
    static Scene& made = *new Scene; // the toolkit's statics may be gone before ours
    return made;
}

/// As many rows in two levels, and nothing in them. Each index has a pointer of its own: with small
/// numbers in their place the toolkit's table of open rows has ten thousand rows under few keys.
class BareModel : public QAbstractItemModel
{
public:
    /// @param tellsLeaves  whether a row says that nothing can stand below it: the view then keeps
    ///                     no record of it when all is opened.
    explicit BareModel(bool tellsLeaves)
        : m_tellsLeaves(tellsLeaves), m_nodes(kSubsets * (1 + kInEach))
    {
        for (int i = 0; i < kSubsets; ++i) {
            Node& group = m_nodes[static_cast<std::size_t>(i) * (1 + kInEach)];
            group.row = i;
            for (int j = 0; j < kInEach; ++j)
                (&group)[1 + j] = {j, &group};
        }
    }
    void fillAnew()
    {
        beginResetModel();
        endResetModel();
    }
    QModelIndex index(int row, int column, const QModelIndex& parent) const override
    {
        const Node* node = parent.isValid()
                               ? nodeAt(parent) + 1 + row
                               : &m_nodes[static_cast<std::size_t>(row) * (1 + kInEach)];
        return createIndex(row, column, node);
    }
    QModelIndex parent(const QModelIndex& index) const override
    {
        const Node* group = index.isValid() ? nodeAt(index)->group : nullptr;
        return group ? createIndex(group->row, 0, group) : QModelIndex();
    }
    int rowCount(const QModelIndex& parent) const override
    {
        return !parent.isValid() ? kSubsets : nodeAt(parent)->group ? 0 : kInEach;
    }
    int columnCount(const QModelIndex&) const override { return 1; }
    QVariant data(const QModelIndex&, int) const override { return {}; }
    Qt::ItemFlags flags(const QModelIndex& index) const override
    {
        const Qt::ItemFlags usual = QAbstractItemModel::flags(index);
        return m_tellsLeaves && index.isValid() && nodeAt(index)->group
                   ? usual | Qt::ItemNeverHasChildren
                   : usual;
    }

private:
    struct Node {
        int row = 0;
        const Node* group = nullptr; // null: a group itself
    };
    static const Node* nodeAt(const QModelIndex& index)
    {
        return static_cast<const Node*>(index.constInternalPointer());
    }
    bool m_tellsLeaves;
    std::vector<Node> m_nodes; // each group, and its rows behind it
};

void openBareView(benchmark::State& state, bool tellsLeaves)
{
    start();
    BareModel model(tellsLeaves);
    QTreeView view;
    view.setUniformRowHeights(true);
    view.setHeaderHidden(true);
    view.setModel(&model);
    view.resize(300, 800);
    view.show();
    for (auto _ : state) {
        model.fillAnew();
        view.expandAll();
    }
}

void BareView(benchmark::State& state)
{
    openBareView(state, false);
}
BENCHMARK(BareView)->Unit(benchmark::kMillisecond);

void BareViewOfLeaves(benchmark::State& state)
{
    openBareView(state, true);
}
BENCHMARK(BareViewOfLeaves)->Unit(benchmark::kMillisecond);

void RebuildTree(benchmark::State& state)
{
    Scene& shown = scene();
    for (auto _ : state)
        shown.rebuild();
    if (shown.selectedRows() != kSelected || !shown.isLastShown())
        state.SkipWithError("not all of it is shown");
}
BENCHMARK(RebuildTree)->Unit(benchmark::kMillisecond);

void MergeOneTitle(benchmark::State& state)
{
    Scene& shown = scene();
    shown.rebuild();
    shown.window->scrollToTop(shown.tree.itemOf(shown.last->objectId().getHandle()));
    shown.window->grab();
    int count = 0;
    for (auto _ : state) {
        state.PauseTiming();
        shown.last->setTitle(TvString().format(u"Roof %d", ++count));
        state.ResumeTiming();
        shown.tree.Merge();
    }
}
BENCHMARK(MergeOneTitle)->Unit(benchmark::kMillisecond);

} // namespace

const std::vector<RatioRow>& ratioRows()
{
    static const std::vector<RatioRow> rows = {
        {"3a 10,000 rows filled, opened, 1,000 selected / a bare reset", "RebuildTree", "BareView",
         1, 8, 2},
        {"   the same / a bare reset, rows told to be leaves", "RebuildTree", "BareViewOfLeaves", 1,
         0, 0},
        {"3b tree after a one-sheet commit / filling it anew", "MergeOneTitle", "RebuildTree", 1,
         1.0 / 20, 1.0 / 1000},
    };
    return rows;
}
