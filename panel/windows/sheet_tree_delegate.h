#pragma once

#include <QStyledItemDelegate>

namespace panel {

/// Paints the items: what is missing in its own colour.
class SheetTreeDelegate : public QStyledItemDelegate
{
public:
    using QStyledItemDelegate::QStyledItemDelegate;

protected:
    void initStyleOption(QStyleOptionViewItem* option, const QModelIndex& index) const override;
};

} // namespace panel
