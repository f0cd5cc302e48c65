#include "ui/property_grid.h"

#include <QEvent>
#include <QHeaderView>
#include <QLabel>
#include <QShortcut>
#include <QTreeWidget>
#include <QVBoxLayout>

#include <ed/system_variables.h>

#include "property_grid_delegate.h"
#include "ui/qt_text.h"
#include "ui/theme.h"

namespace ui {

namespace {

constexpr int kNameText = 23345, kValueText = 23346;
constexpr std::int16_t kDialogStyle = 2;
constexpr int kDescriptionLines = 2, kColumnRoomPx = 12;

bool wantsDialogStyle()
{
    return ed::variable(u"_KV_INSPECTORCONTROLSTYLES") == ed::VariableValue(kDialogStyle);
}

} // namespace

class PropertyGrid::Delegate : public PropertyDelegate
{
public:
    explicit Delegate(PropertyGrid& grid) : PropertyDelegate(&grid), m_grid(grid) {}

protected:
    ed::PropertyRow* rowAt(const QModelIndex& index) const override
    {
        const QVariant number = index.siblingAtColumn(0).data(Qt::UserRole);
        const int at = number.isValid() ? number.toInt() : -1;
        return at >= 0 && at < m_grid.rowCount() ? m_grid.m_rows[static_cast<std::size_t>(at)].get()
                                                 : nullptr;
    }
    void written() const override { m_grid.refresh(); }

private:
    PropertyGrid& m_grid;
};

PropertyGrid::PropertyGrid(QWidget* parent)
    : QWidget(parent), m_isDialogStyle(wantsDialogStyle()), m_tree(new QTreeWidget(this)),
      m_description(new QLabel(this))
{
    build();
}

PropertyGrid::~PropertyGrid() = default;

void PropertyGrid::build()
{
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->addWidget(m_tree, 1);
    column->addWidget(m_description);
    setFocusProxy(m_tree);
    m_tree->setColumnCount(2);
    m_tree->setHeaderLabels({textOf(kNameText), textOf(kValueText)});
    m_tree->setHeaderHidden(!m_isDialogStyle);
    m_tree->setFrameShape(m_isDialogStyle ? QFrame::StyledPanel : QFrame::NoFrame);
    m_tree->setUniformRowHeights(true);
    m_tree->setAllColumnsShowFocus(true);
    m_tree->setItemDelegate(new Delegate(*this));
    m_tree->setEditTriggers(QAbstractItemView::NoEditTriggers);
    m_tree->setTabKeyNavigation(false);
    m_tree->header()->setSectionResizeMode(0, QHeaderView::Interactive);
    m_tree->header()->setStretchLastSection(true);
    m_description->setVisible(m_isDialogStyle);
    m_description->setTextFormat(Qt::PlainText);
    m_description->setWordWrap(true);
    m_description->setAlignment(Qt::AlignTop | Qt::AlignLeft);
    m_description->setMinimumHeight(fontMetrics().lineSpacing() * kDescriptionLines);
    connect(m_tree, &QTreeWidget::currentItemChanged, this, [this] { describeCurrent(); });
    connect(m_tree, &QTreeWidget::itemDoubleClicked, this, [this] { editRow(currentRow()); });
    static_cast<Delegate*>(m_tree->itemDelegate())
        ->watch(*m_tree, [this](PropertyDelegate::Wish wish) {
            if (wish == PropertyDelegate::Wish::Dialog)
                runDialog(currentRow());
            else
                editRow(currentRow());
        });
    dress();
}

void PropertyGrid::setRows(std::vector<std::unique_ptr<ed::PropertyRow>> rows)
{
    std::erase(rows, nullptr);
    m_tree->clear(); // before the rows that its items stand for
    m_items.clear();
    m_rows = std::move(rows);
    fill();
}

void PropertyGrid::fill()
{
    std::map<int, QTreeWidgetItem*> categories;
    for (std::size_t at = 0; at < m_rows.size(); ++at) {
        const ed::PropertyRow& row = *m_rows[at];
        QTreeWidgetItem*& category = categories[row.categoryId()];
        if (!category) {
            category = new QTreeWidgetItem(m_tree, {toQt(row.categoryName())});
            category->setFirstColumnSpanned(true);
            category->setFlags(Qt::ItemIsEnabled | Qt::ItemIsSelectable);
            category->setExpanded(true);
        }
        auto* item = new QTreeWidgetItem(category);
        item->setData(0, Qt::UserRole, static_cast<int>(at));
        m_items.push_back(item);
        showRow(*item, row);
    }
    dress();
    m_tree->resizeColumnToContents(0);
    m_tree->setColumnWidth(0, m_tree->columnWidth(0) + kColumnRoomPx);
    if (!m_items.empty())
        m_tree->setCurrentItem(m_items.front());
}

void PropertyGrid::showRow(QTreeWidgetItem& item, const ed::PropertyRow& row)
{
    item.setText(0, toQt(row.name()));
    item.setText(1, shownValue(row));
    item.setToolTip(0, toQt(row.description()).toHtmlEscaped());
    Qt::ItemFlags flags = Qt::ItemIsEnabled | Qt::ItemIsSelectable;
    if (!row.isReadOnly())
        flags |= Qt::ItemIsEditable;
    item.setFlags(flags);
    item.setForeground(1, row.isReadOnly() ? QBrush(color(ColorRole::DimText)) : QBrush());
}

void PropertyGrid::refresh()
{
    for (std::size_t at = 0; at < m_rows.size(); ++at)
        showRow(*m_items[at], *m_rows[at]);
    describeCurrent();
    m_tree->viewport()->update();
}

int PropertyGrid::rowCount() const
{
    return static_cast<int>(m_rows.size());
}

int PropertyGrid::currentRow() const
{
    const QTreeWidgetItem* item = m_tree->currentItem();
    const QVariant number = item ? item->data(0, Qt::UserRole) : QVariant();
    return number.isValid() ? number.toInt() : -1;
}

void PropertyGrid::setCurrentRow(int index)
{
    if (index >= 0 && index < rowCount())
        m_tree->setCurrentItem(m_items[static_cast<std::size_t>(index)]);
}

bool PropertyGrid::editRow(int index)
{
    if (index < 0 || index >= rowCount() || m_rows[static_cast<std::size_t>(index)]->isReadOnly())
        return false;
    setCurrentRow(index);
    m_tree->editItem(m_items[static_cast<std::size_t>(index)], 1);
    return true;
}

bool PropertyGrid::runDialog(int index)
{
    if (index < 0 || index >= rowCount())
        return false;
    ed::PropertyRow& row = *m_rows[static_cast<std::size_t>(index)];
    if (!row.hasDialog() || row.isReadOnly())
        return false;
    row.runDialog();
    refresh();
    return true;
}

ed::PropertyRow* PropertyGrid::rowOf(const QTreeWidgetItem* item) const
{
    const QVariant number = item ? item->data(0, Qt::UserRole) : QVariant();
    return number.isValid() ? m_rows[static_cast<std::size_t>(number.toInt())].get() : nullptr;
}

void PropertyGrid::describeCurrent()
{
    const ed::PropertyRow* row = rowOf(m_tree->currentItem());
    m_description->setText(row ? toQt(row->description()) : QString());
}

void PropertyGrid::changeEvent(QEvent* event)
{
    if (event->type() == QEvent::PaletteChange)
        dress();
    QWidget::changeEvent(event);
}

void PropertyGrid::dress()
{
    QFont bold = m_tree->font();
    bold.setBold(true);
    for (int at = 0; at < m_tree->topLevelItemCount(); ++at) {
        QTreeWidgetItem* category = m_tree->topLevelItem(at);
        category->setFont(0, bold);
        category->setBackground(0, color(ColorRole::Raised));
        category->setBackground(1, color(ColorRole::Raised));
    }
    for (std::size_t at = 0; at < m_rows.size() && at < m_items.size(); ++at)
        showRow(*m_items[at], *m_rows[at]);
}

} // namespace ui
