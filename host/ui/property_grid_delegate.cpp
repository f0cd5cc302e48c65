#include "property_grid_delegate.h"

#include <QAbstractItemView>
#include <QComboBox>
#include <QKeyEvent>
#include <QLineEdit>
#include <QMouseEvent>
#include <QPainter>
#include <QTimer>
#include <QTreeWidget>

#include "ui/qt_text.h"
#include "ui/theme.h"

namespace ui {

namespace {

constexpr int kNoText = 23347, kYesText = 23348, kDialogText = 23349;
constexpr int kRowPaddingPx = 6;

QStringList choicesOf(const ed::PropertyRow& row)
{
    QStringList names;
    for (const TvString& name : row.choices())
        names.append(toQt(name));
    if (names.isEmpty() && row.kind() == ed::PropertyKind::Flag)
        names = {textOf(kNoText), textOf(kYesText)};
    return names;
}

QRect buttonOf(const QRect& cell)
{
    return QRect(cell).adjusted(cell.width() - cell.height(), 1, -1, -2);
}

} // namespace

QString shownValue(const ed::PropertyRow& row)
{
    return row.kind() == ed::PropertyKind::Text ? toQt(row.text())
                                                : choicesOf(row).value(row.choice());
}

void PropertyDelegate::watch(QTreeWidget& tree, std::function<void(Wish)> wished)
{
    m_tree = &tree;
    m_viewport = tree.viewport();
    m_wished = std::move(wished);
    tree.installEventFilter(this);
    tree.viewport()->installEventFilter(this);
}

bool PropertyDelegate::isButton(const QPoint& at) const
{
    const QModelIndex index = m_tree->indexAt(at);
    const ed::PropertyRow* row = index.column() == 1 ? rowAt(index) : nullptr;
    return row && row->hasDialog() && !row->isReadOnly() &&
           buttonOf(m_tree->visualRect(index)).contains(at);
}

bool PropertyDelegate::eventFilter(QObject* watched, QEvent* event)
{
    if (!m_tree || (watched != m_tree && watched != m_viewport))
        return QStyledItemDelegate::eventFilter(watched, event); // an editor
    if (watched == m_tree && event->type() == QEvent::KeyPress)
        return takesKey(static_cast<QKeyEvent&>(*event));
    const bool isButtonClick = watched == m_viewport &&
                               event->type() == QEvent::MouseButtonRelease &&
                               isButton(static_cast<QMouseEvent&>(*event).pos());
    if (isButtonClick)
        m_wished(Wish::Dialog);
    return isButtonClick;
}

/// Keys that an editor left over come here too; those are its own affair.
bool PropertyDelegate::takesKey(const QKeyEvent& key)
{
    if (m_editor || !rowAt(m_tree->currentIndex()))
        return false;
    const bool isEnter = key.key() == Qt::Key_Return || key.key() == Qt::Key_Enter;
    if (isEnter && (key.modifiers() & Qt::ControlModifier)) {
        m_wished(Wish::Dialog);
        return true;
    }
    const QString typed = key.text();
    const bool isTyping =
        !typed.isEmpty() && typed.at(0).isPrint() && typed.at(0) != QLatin1Char(' ');
    if (!isEnter && key.key() != Qt::Key_F2 && !isTyping)
        return false;
    m_wished(Wish::Edit);
    if (auto* edit = dynamic_cast<QLineEdit*>(m_editor.data()); isTyping && edit)
        edit->setText(typed);
    return true;
}

QWidget* PropertyDelegate::createEditor(QWidget* parent, const QStyleOptionViewItem&,
                                        const QModelIndex& index) const
{
    const ed::PropertyRow* row = rowAt(index);
    if (!row || index.column() != 1 || row->isReadOnly())
        return nullptr;
    if (row->kind() == ed::PropertyKind::Text) {
        auto* edit = new QLineEdit(parent);
        edit->setFrame(false);
        edit->setAutoFillBackground(true);
        m_editor = edit;
        return edit;
    }
    auto* box = new QComboBox(parent);
    box->addItems(choicesOf(*row));
    connect(box, &QComboBox::activated, this, [this, box] {
        auto* self = const_cast<PropertyDelegate*>(this);
        emit self->commitData(box);
        emit self->closeEditor(box);
    });
    m_editor = box;
    QTimer::singleShot(0, box, &QComboBox::showPopup);
    return box;
}

void PropertyDelegate::setEditorData(QWidget* editor, const QModelIndex& index) const
{
    const ed::PropertyRow* row = rowAt(index);
    if (auto* edit = dynamic_cast<QLineEdit*>(editor); edit && row)
        edit->setText(toQt(row->text()));
    else if (auto* box = dynamic_cast<QComboBox*>(editor); box && row)
        box->setCurrentIndex(row->choice());
}

void PropertyDelegate::setModelData(QWidget* editor, QAbstractItemModel*,
                                    const QModelIndex& index) const
{
    ed::PropertyRow* row = rowAt(index);
    if (!row)
        return;
    if (const auto* edit = dynamic_cast<QLineEdit*>(editor)) {
        const TvString text = fromQt(edit->text());
        if (text == row->text())
            return;
        row->setText(text);
    } else if (const auto* box = dynamic_cast<QComboBox*>(editor)) {
        if (box->currentIndex() == row->choice())
            return;
        row->setChoice(box->currentIndex());
    }
    written();
}

void PropertyDelegate::paint(QPainter* painter, const QStyleOptionViewItem& option,
                             const QModelIndex& index) const
{
    const ed::PropertyRow* row = index.column() == 1 ? rowAt(index) : nullptr;
    const bool hasButton = row && row->hasDialog() && !row->isReadOnly();
    QStyleOptionViewItem item = option;
    item.textElideMode = row ? Qt::ElideMiddle : Qt::ElideRight;
    QStyledItemDelegate::paint(painter, item, index);
    if (hasButton) {
        const QRect button = buttonOf(option.rect);
        painter->save();
        painter->setPen(color(ColorRole::Edge));
        painter->setBrush(color(ColorRole::Raised));
        painter->drawRect(button);
        painter->setPen(color(ColorRole::Text));
        painter->drawText(button, Qt::AlignCenter, textOf(kDialogText));
        painter->restore();
    }
    if (rowAt(index)) {
        painter->setPen(color(ColorRole::Border));
        painter->drawLine(option.rect.bottomLeft(), option.rect.bottomRight());
    }
}

QSize PropertyDelegate::sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const
{
    const QSize size = QStyledItemDelegate::sizeHint(option, index);
    return {size.width(), option.fontMetrics.height() + kRowPaddingPx};
}

} // namespace ui
