#include "sheet_tree_delegate.h"

#include <ui/theme.h>

#include "panel_windows/sheet_tree_model.h"

namespace panel {

void SheetTreeDelegate::initStyleOption(QStyleOptionViewItem* option,
                                        const QModelIndex& index) const
{
    QStyledItemDelegate::initStyleOption(option, index);
    const TreeItem* item = SheetTreeModel::itemAt(index);
    if (!item)
        return;
    const core::SheetImage image = item->image();
    if (image == core::SheetImage::ImageSubsetBad || image == core::SheetImage::ImageSheetMissing)
        option->palette.setColor(QPalette::Text, ui::styleRecord(u"SheetSetPalette").line);
}

} // namespace panel
