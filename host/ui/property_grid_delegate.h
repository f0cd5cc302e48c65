#pragma once

#include <functional>

#include <QPointer>
#include <QStyledItemDelegate>
#include <QWidget>

#include <ed/property_source.h>

class QKeyEvent;
class QTreeWidget;

namespace ui {

/// The value of a row as it is shown while nobody edits it.
QString shownValue(const ed::PropertyRow& row);

/// Edits the values of a property grid: lines of text, boxes of choices, and buttons for dialogs.
class PropertyDelegate : public QStyledItemDelegate
{
public:
    enum class Wish { Edit, Dialog };

    using QStyledItemDelegate::QStyledItemDelegate;

    /// Keys and clicks in the tree that ask for editing or for the row's dialog.
    void watch(QTreeWidget& tree, std::function<void(Wish)> wished);

    QWidget* createEditor(QWidget* parent, const QStyleOptionViewItem& option,
                          const QModelIndex& index) const override;
    void setEditorData(QWidget* editor, const QModelIndex& index) const override;
    void setModelData(QWidget* editor, QAbstractItemModel* model,
                      const QModelIndex& index) const override;
    void paint(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override;
    QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    /// Null for what is no row.
    virtual ed::PropertyRow* rowAt(const QModelIndex& index) const = 0;
    /// A row took a value, or refused it.
    virtual void written() const = 0;

private:
    bool isButton(const QPoint& at) const;
    bool takesKey(const QKeyEvent& key);
    QTreeWidget* m_tree = nullptr;       // not owned; owns us
    const QObject* m_viewport = nullptr; // of the tree; at its end it is asked no more
    mutable QPointer<QWidget> m_editor;  // not owned; the one that is open
    std::function<void(Wish)> m_wished;
};

} // namespace ui
