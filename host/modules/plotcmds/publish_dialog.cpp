#include <QComboBox>
#include <QHeaderView>
#include <QTreeWidget>

#include <base/path_rules.h>
#include <resources/texts.h>
#include <sm/tv_sm_database.h>
#include <sm/tv_sm_sheet.h>
#include <sm/tv_sm_sheet_set.h>
#include <ui/qt_text.h>

#include "dialogs.h"
#include "plotcmds_ids.h"
#include "publisher.h"

namespace plotcmds {

namespace {

/// The formats, in the order of the box.
struct Format {
    plot::OutputKind kind;
    int text;
};
constexpr Format kFormats[] = {
    {plot::kOnePdf, kAsOnePdf},
    {plot::kPdfPerSheet, kAsPdfs},
    {plot::kSvgPerSheet, kAsSvgs},
    {plot::kToPrinter, kAsPrinter},
};

QStringList columnsOf(const TvSmSheet& sheet)
{
    QStringList columns{ui::toQt(sheet.getNumber()), ui::toQt(sheet.getTitle())};
    if (const TvSmTvDbLayoutReference* const layout = sheet.getLayoutReference()) {
        columns << ui::toQt(layout->getName());
        columns << ui::toQt(base::PathRules::native().fileNameOf(layout->getFileName()));
    }
    return columns;
}

} // namespace

PublishDialog::PublishDialog(const std::vector<TvSmSheet*>& sheets, const TvSmSheetSet& set,
                             plot::OutputKind kind, bool isStamped)
    : CTvUiDialog(kPublishDialog), m_sheets(sheets), m_set(set), m_kind(kind),
      m_isStamped(isStamped)
{
}

bool PublishDialog::OnInitDialog()
{
    if (auto* tree = Item<QTreeWidget>(kSheets)) {
        tree->setRootIsDecorated(false);
        tree->setHeaderLabels({ui::textOf(kColumnNumber), ui::textOf(kColumnTitle),
                               ui::textOf(kColumnLayout), ui::textOf(kColumnDrawing)});
        for (const TvSmSheet* const sheet : m_sheets) {
            auto* row = new QTreeWidgetItem(tree, columnsOf(*sheet)); // owned by the tree
            row->setFlags(row->flags() | Qt::ItemIsUserCheckable);
            row->setCheckState(0, Qt::Checked);
        }
        tree->header()->setSectionResizeMode(1, QHeaderView::Stretch);
        tree->header()->setStretchLastSection(false);
        for (const int column : {0, 2, 3})
            tree->resizeColumnToContents(column);
    }
    if (auto* box = Item<QComboBox>(kFormat)) {
        for (const Format& format : kFormats) {
            box->addItem(ui::textOf(format.text));
            if (format.kind == m_kind)
                box->setCurrentIndex(box->count() - 1);
        }
        connect(box, &QComboBox::currentIndexChanged, this, [this] { showTarget(); });
    }
    CheckDlgButton(kStamp, m_isStamped);
    showTarget();
    return true;
}

std::vector<TvSmSheet*> PublishDialog::chosen() const
{
    std::vector<TvSmSheet*> sheets;
    if (const auto* tree = Item<QTreeWidget>(kSheets))
        for (std::size_t i = 0; i < m_sheets.size(); ++i)
            if (tree->topLevelItem(static_cast<int>(i))->checkState(0) == Qt::Checked)
                sheets.push_back(m_sheets[i]);
    return sheets;
}

plot::OutputKind PublishDialog::kind() const
{
    const auto* box = Item<QComboBox>(kFormat);
    return box && box->currentIndex() >= 0 ? kFormats[box->currentIndex()].kind : m_kind;
}

void PublishDialog::showTarget()
{
    const plot::OutputKind wanted = kind();
    TvString path = plot::targetOf(m_set, wanted);
    if (path.isEmpty() && m_set.database()) {
        const base::PathRules& rules = base::PathRules::native();
        path = rules.folderOf(m_set.database()->getFileName());
        if (wanted == plot::kOnePdf)
            path = rules.join(path, plot::fileNameOf(m_set) + u".pdf");
    }
    const bool isPrinter = wanted == plot::kToPrinter;
    SetDlgItemText(kTarget, isPrinter ? TvString() : path);
    EnableDlgItem(kTarget, !isPrinter);
    EnableDlgItem(kBrowse, !isPrinter);
}

void PublishDialog::checkAll(bool isChecked)
{
    if (auto* tree = Item<QTreeWidget>(kSheets))
        for (int i = 0; i < tree->topLevelItemCount(); ++i)
            tree->topLevelItem(i)->setCheckState(0, isChecked ? Qt::Checked : Qt::Unchecked);
}

void PublishDialog::OnCommand(int id)
{
    if (id == kAll || id == kNone)
        checkAll(id == kAll);
    if (id != kBrowse)
        return;
    if (const TvString path = askTarget(kind(), target()); !path.isEmpty())
        SetDlgItemText(kTarget, path);
}

void PublishDialog::OnOK()
{
    if (chosen().empty()) {
        FocusDlgItem(kSheets);
        return;
    }
    if (target().isEmpty() && kind() != plot::kToPrinter) {
        FocusDlgItem(kTarget);
        return;
    }
    EndDialog(text::kIdOk);
}

} // namespace plotcmds
