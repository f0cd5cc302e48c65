#include "publish_windows/edit_subset_and_sheet_publish_tree_ctrl.h"

CEditSubsetAndSheetPublishTreeCtrl::CEditSubsetAndSheetPublishTreeCtrl(
    panel::SheetTree& tree, publish::PublishChecks& checks, QWidget* parent)
    : CDragTreeCtrl(tree, parent)
{
    setSelectionMode(SingleSelection);
    shownItems().usePictures(ui::Theme::Light);
    shownItems().isChecked = [&checks](const panel::TreeItem& item) {
        return checks.isChecked(item);
    };
    shownItems().onCheck = [&checks](const panel::TreeItem& item) { checks.click(item); };
    expandAll();
    setCurrentIndex(shownItems().indexOf(tree.root()));
}
