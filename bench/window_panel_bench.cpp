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

/// The toolkit, without a screen.
void start()
{
    static int count = 1;
    static char name[] = "window_panel_bench";
    static char* arguments[] = {name, nullptr};
    qputenv("QT_QPA_PLATFORM", "offscreen");
    static QApplication application(count, arguments);
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
        tree.ExpandAll(true);
        tree.RestoreSelection(selected);
        window->doItemsLayout();
    }

    TvSmDatabase database;
    std::set<TvString> selected;
    TvSmSheet* last = nullptr;
    panel::SheetTree tree;
    std::unique_ptr<CDragTreeCtrl> window;
};

Scene& scene()
{
    static Scene& made = *new Scene; // the toolkit may be gone before statics are
    return made;
}

/// As many rows, and nothing in them.
class BareModel : public QAbstractItemModel
{
public:
    void fillAnew()
    {
        beginResetModel();
        endResetModel();
    }
    QModelIndex index(int row, int column, const QModelIndex& parent) const override
    {
        return createIndex(row, column, parent.isValid() ? quintptr(parent.row() + 1) : 0);
    }
    QModelIndex parent(const QModelIndex& index) const override
    {
        const auto group = static_cast<int>(index.internalId());
        return group ? createIndex(group - 1, 0, quintptr(0)) : QModelIndex();
    }
    int rowCount(const QModelIndex& parent) const override
    {
        return !parent.isValid() ? kSubsets : parent.internalId() == 0 ? kInEach : 0;
    }
    int columnCount(const QModelIndex&) const override { return 1; }
    QVariant data(const QModelIndex&, int) const override { return {}; }
};

void BareView(benchmark::State& state)
{
    start();
    BareModel model;
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
BENCHMARK(BareView)->Unit(benchmark::kMillisecond);

void RebuildTree(benchmark::State& state)
{
    Scene& shown = scene();
    for (auto _ : state)
        shown.rebuild();
}
BENCHMARK(RebuildTree)->Unit(benchmark::kMillisecond);

void MergeOneTitle(benchmark::State& state)
{
    Scene& shown = scene();
    shown.rebuild();
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
        {"3a tree of 10,000 rows filled, opened, 1,000 selected / a bare model reset",
         "RebuildTree", "BareView", 1, 8, 2},
        {"3b tree after a one-sheet commit / filling it anew", "MergeOneTitle", "RebuildTree", 1,
         1.0 / 20, 1.0 / 1000},
    };
    return rows;
}
