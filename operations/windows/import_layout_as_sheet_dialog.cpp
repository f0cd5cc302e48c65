#include "operations_windows/import_layout_as_sheet_dialog.h"

#include <QHeaderView>
#include <QKeyEvent>
#include <QPainter>
#include <QStyledItemDelegate>
#include <QTreeWidget>

#include <db/resbuf.h>
#include <db/tv_status.h>
#include <ed/user_prompts.h>
#include <resources/texts.h>
#include <ui/qt_text.h>

namespace {

using operations::ImportLayoutList;
using operations::ImportSettings;

constexpr int kFirstHeading = 400;
constexpr int kBrowseTitle = 407, kSingleTitle = 8844; // texts
constexpr int kSeveralFiles = 4104;                    // flags of the file dialog: several, there

/// Columns keep their turns from dialog to dialog.
operations::SortDirections& directions()
{
    static operations::SortDirections all;
    return all;
}

/// Rows and columns with lines between them.
class GridDelegate : public QStyledItemDelegate
{
public:
    static constexpr float kLineStrength = 0.15F; // of the text's color
    using QStyledItemDelegate::QStyledItemDelegate;
    void paint(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override
    {
        QStyledItemDelegate::paint(painter, option, index);
        painter->save();
        QColor line = option.palette.color(QPalette::Text);
        line.setAlphaF(kLineStrength);
        painter->setPen(line);
        painter->drawLine(option.rect.topRight(), option.rect.bottomRight());
        painter->drawLine(option.rect.bottomLeft(), option.rect.bottomRight());
        painter->restore();
    }
};

void showFaint(QTreeWidgetItem& item, const QPalette& palette)
{
    const QBrush faint = palette.brush(QPalette::Disabled, QPalette::Text);
    for (int column = 0; column < ImportLayoutList::kColumns; ++column)
        item.setForeground(column, faint);
}

/// The files that the user chooses; empty when he gives up.
std::vector<TvString> chosenDrawings()
{
    resbuf* chain = nullptr;
    std::vector<TvString> paths;
    if (tvedGetFileNavDialog(text::find(kBrowseTitle), u"", u"dwg", u"TvSmImportLayoutDialog",
                             kSeveralFiles, chain) != TvStatus::Normal)
        return paths;
    const TvResbufPtr chosen(chain);
    for (const resbuf* item = chosen.get(); item; item = item->rbnext)
        paths.emplace_back(item->resval.rstring);
    return paths;
}

} // namespace

CImportLayoutAsSheetDialog::CImportLayoutAsSheetDialog(QWidget* parent, TvSmSubset* subset)
    : CTvUiDialog(kNumber, parent), m_list(subset)
{
    SetHelpTopic(u"SHEETSET_DIA04");
}

CImportLayoutAsSheetDialog::CImportLayoutAsSheetDialog(QWidget* parent, TvSmSheet* sheet)
    : CTvUiDialog(kNumber, parent), m_list(sheet)
{
    SetHelpTopic(u"SHEETSET_DIA04");
    setWindowTitle(ui::textOf(kSingleTitle));
}

QTreeWidget& CImportLayoutAsSheetDialog::table() const
{
    return *Item<QTreeWidget>(kList);
}

bool CImportLayoutAsSheetDialog::OnInitDialog()
{
    m_sheets.clear();
    makeColumns();
    CheckDlgButton(kPrefix, ImportSettings::read().withPrefix);
    ShowDlgItem(kPrefix, m_list.isMultiple()); // it is about new sheets
    connect(&table(), &QTreeWidget::itemChanged, this,
            [this](QTreeWidgetItem* item) { Guarded([&] { ticked(*item); }); });
    connect(table().header(), &QHeaderView::sectionClicked, this,
            [this](int column) { Guarded([&] { sortBy(column); }); });
    if (m_drawing.isEmpty()) {
        FocusDlgItem(kBrowse);
        return false;
    }
    m_list.load({&m_drawing, 1});
    m_list.tickOnly(m_layouts);
    m_layouts.clear();
    showRows();
    return true;
}

void CImportLayoutAsSheetDialog::makeColumns()
{
    QStringList headings;
    for (int column = 0; column < ImportLayoutList::kColumns; ++column)
        headings << ui::textOf(kFirstHeading + column);
    table().setHeaderLabels(headings);
    table().setItemDelegate(new GridDelegate(&table())); // owned by the table
    table().setSelectionMode(m_list.isMultiple() ? QAbstractItemView::ExtendedSelection
                                                 : QAbstractItemView::SingleSelection);
    QHeaderView& header = *table().header();
    header.setSectionsMovable(false);
    header.setSectionsClickable(true);
    header.setStretchLastSection(false);
    const ImportSettings settings = ImportSettings::read();
    for (int column = 0; column < ImportLayoutList::kColumns; ++column)
        header.resizeSection(column, settings.widths[column]);
}

void CImportLayoutAsSheetDialog::OnCommand(int id)
{
    if (id == kBrowse)
        browse();
}

void CImportLayoutAsSheetDialog::browse()
{
    const std::vector<TvString> drawings = chosenDrawings();
    if (drawings.empty())
        return;
    m_list.load(drawings);
    showRows();
}

void CImportLayoutAsSheetDialog::showRows()
{
    const QSignalBlocker quiet(table());
    table().clear();
    QList<QTreeWidgetItem*> items;
    for (std::size_t row = 0; row < m_list.rows().size(); ++row) {
        auto* item = new QTreeWidgetItem; // the table's
        for (int column = 0; column < ImportLayoutList::kColumns; ++column)
            item->setText(column, ui::toQt(m_list.textAt(row, column)));
        item->setToolTip(0, ui::toQt(m_list.rows()[row].drawing));
        if (!m_list.rows()[row].isImportable())
            showFaint(*item, table().palette());
        item->setFlags(Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemIsUserCheckable);
        item->setCheckState(0, Qt::Unchecked);
        items << item;
    }
    table().addTopLevelItems(items);
    table().header()->setSortIndicatorShown(false); // the new rows are in the order of the files
    showTicks();
}

void CImportLayoutAsSheetDialog::showTicks()
{
    const QSignalBlocker quiet(table());
    for (std::size_t row = 0; row < m_list.rows().size(); ++row)
        table()
            .topLevelItem(static_cast<int>(row))
            ->setCheckState(0, m_list.rows()[row].isTicked ? Qt::Checked : Qt::Unchecked);
    table().viewport()->update();
}

/// What is done to one of several selected rows is done to all of them.
void CImportLayoutAsSheetDialog::ticked(QTreeWidgetItem& item)
{
    const bool isTicked = item.checkState(0) == Qt::Checked;
    const bool isForAll = m_list.isMultiple() && item.isSelected();
    for (int row = 0; row < table().topLevelItemCount(); ++row) {
        const QTreeWidgetItem* each = table().topLevelItem(row);
        if (each == &item || (isForAll && each->isSelected()))
            m_list.setTicked(static_cast<std::size_t>(row), isTicked);
    }
    showTicks();
}

void CImportLayoutAsSheetDialog::sortBy(int column)
{
    const std::vector<std::size_t> order = m_list.sort(column, directions());
    const QSignalBlocker quiet(table());
    QTreeWidgetItem* current = table().currentItem();
    const QList<QTreeWidgetItem*> selected = table().selectedItems();
    const QList<QTreeWidgetItem*> before = table().invisibleRootItem()->takeChildren();
    QList<QTreeWidgetItem*> items;
    for (const std::size_t former : order)
        items << before[static_cast<int>(former)];
    table().addTopLevelItems(items);
    table().setCurrentItem(current, 0, QItemSelectionModel::NoUpdate);
    for (QTreeWidgetItem* item : selected)
        item->setSelected(true);
    table().header()->setSortIndicatorShown(true);
    table().header()->setSortIndicator(
        column, directions().isAscending(column) ? Qt::AscendingOrder : Qt::DescendingOrder);
}

void CImportLayoutAsSheetDialog::OnOK()
{
    ImportSettings settings;
    settings.withPrefix = IsDlgButtonChecked(kPrefix);
    if (!m_list.accept(settings.withPrefix, m_sheets))
        return showTicks();
    for (int column = 0; column < ImportLayoutList::kColumns; ++column)
        settings.widths[column] = table().columnWidth(column);
    settings.write();
    EndDialog(text::kIdOk);
}

void CImportLayoutAsSheetDialog::keyPressEvent(QKeyEvent* event)
{
    if (!event->matches(QKeySequence::SelectAll))
        return CTvUiDialog::keyPressEvent(event);
    table().selectAll();
    table().setFocus();
}
