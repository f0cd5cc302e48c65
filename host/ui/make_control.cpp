#include "make_control.h"

#include <QCheckBox>
#include <QComboBox>
#include <QFrame>
#include <QGroupBox>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPlainTextEdit>
#include <QProgressBar>
#include <QPushButton>
#include <QRadioButton>
#include <QTreeWidget>

#include "ui/kv_preview_static.h"
#include "ui/path_label.h"
#include "ui/property_grid.h"
#include "ui/qt_text.h"

namespace ui {

namespace {

using text::Control;
using Row = text::ControlTemplate;

constexpr int kOneLine = 14; // dialog units: a label of this height has one line

QWidget* makeLabel(const Row& row, QWidget* parent)
{
    QLabel* label = (row.style & text::kElided) ? new PathLabel(parent) : new QLabel(parent);
    label->setText(textOf(row.text));
    label->setTextFormat(Qt::PlainText); // texts from files are no markup
    const bool hasLines = row.height > kOneLine;
    label->setWordWrap(hasLines);
    label->setAlignment(((row.style & text::kRightText) ? Qt::AlignRight : Qt::AlignLeft) |
                        (hasLines ? Qt::AlignTop : Qt::AlignVCenter));
    return label;
}

QWidget* makeEdit(const Row& row, QWidget* parent)
{
    auto* edit = new QLineEdit(textOf(row.text), parent);
    edit->setReadOnly(row.style & text::kReadOnly);
    return edit;
}

QWidget* makeMultiEdit(const Row& row, QWidget* parent)
{
    auto* edit = new QPlainTextEdit(textOf(row.text), parent);
    edit->setReadOnly(row.style & text::kReadOnly);
    edit->setTabChangesFocus(true);
    return edit;
}

QWidget* makeButton(const Row& row, QWidget* parent)
{
    auto* button = new QPushButton(parent);
    const QString words = textOf(row.text);
    if (row.style & text::kIconOnly) {
        button->setToolTip(words);
        button->setAccessibleName(words);
    } else {
        button->setText(words);
    }
    button->setAutoDefault(false);
    button->setDefault(row.style & text::kDefault);
    return button;
}

QWidget* makeCombo(const Row& row, QWidget* parent)
{
    auto* combo = new QComboBox(parent);
    combo->setEditable(row.style & text::kEditable);
    combo->setInsertPolicy(QComboBox::NoInsert);
    combo->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    return combo;
}

void choose(QAbstractItemView& view, const Row& row)
{
    view.setSelectionMode((row.style & text::kSeveral) ? QAbstractItemView::ExtendedSelection
                                                       : QAbstractItemView::SingleSelection);
}

QWidget* makeTree(const Row& row, QWidget* parent)
{
    auto* tree = new QTreeWidget(parent);
    const bool isTable = row.kind == Control::Table;
    tree->setRootIsDecorated(!isTable);
    tree->setHeaderHidden(!isTable);
    tree->setUniformRowHeights(true);
    tree->setAllColumnsShowFocus(true);
    choose(*tree, row);
    return tree;
}

QWidget* makeList(const Row& row, QWidget* parent)
{
    auto* list = new QListWidget(parent);
    list->setUniformItemSizes(true);
    choose(*list, row);
    return list;
}

QWidget* makeLine(QWidget* parent)
{
    auto* line = new QFrame(parent);
    line->setFrameShape(QFrame::HLine);
    line->setFrameShadow(QFrame::Sunken);
    return line;
}

QWidget* make(const Row& row, QWidget* parent)
{
    switch (row.kind) {
    case Control::Label: return makeLabel(row, parent);
    case Control::Edit: return makeEdit(row, parent);
    case Control::MultiEdit: return makeMultiEdit(row, parent);
    case Control::Button: return makeButton(row, parent);
    case Control::CheckBox: return new QCheckBox(textOf(row.text), parent);
    case Control::Radio: return new QRadioButton(textOf(row.text), parent);
    case Control::Group: return new QGroupBox(textOf(row.text), parent);
    case Control::Combo: return makeCombo(row, parent);
    case Control::List: return makeList(row, parent);
    case Control::Table:
    case Control::Tree: return makeTree(row, parent);
    case Control::Picture: return new CKvPreviewStatic(parent);
    case Control::Line: return makeLine(parent);
    case Control::Progress: return new QProgressBar(parent);
    case Control::Inspector: return new PropertyGrid(parent);
    default: return new QWidget(parent);
    }
}

} // namespace

QWidget* makeControl(const Row& row, QWidget* parent)
{
    QWidget* control = make(row, parent);
    if (row.style & text::kNoTab)
        control->setFocusPolicy(control->focusPolicy() & Qt::ClickFocus ? Qt::ClickFocus
                                                                        : Qt::NoFocus);
    control->setEnabled(!(row.style & text::kDisabled));
    control->setVisible(!(row.style & text::kHidden));
    return control;
}

} // namespace ui
