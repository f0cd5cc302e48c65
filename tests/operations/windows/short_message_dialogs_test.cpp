// The two dialogs that only tell what is wrong with a name.

#include <QLabel>
#include <QPushButton>

#include <operations_windows/tarv_text_length_dlg.h>
#include <operations_windows/tarv_un_supported_char_dlg.h>
#include <ui/qt_text.h>

#include "program.h"

namespace {

class ShortMessageDialogTest : public Program
{
};

TEST_F(ShortMessageDialogTest, AMissingNameIsToldInAPaintedPanel)
{
    CTarvTextLengthDlg dialog;
    ASSERT_TRUE(dialog.Create());
    QWidget* panel = dialog.GetDlgItem(10);
    ASSERT_TRUE(panel);
    EXPECT_EQ(panel->accessibleName(), ui::textOf(332));
    EXPECT_FALSE(dynamic_cast<QLabel*>(panel)) << "it paints itself";
    dialog.show();
    const QColor behind = panel->grab().toImage().pixelColor(3, 3);
    EXPECT_EQ(behind.name(), ui::color(ui::ColorRole::Base).name());
    keepPicture(dialog, QStringLiteral("dialog-118"));
}

TEST_F(ShortMessageDialogTest, UnsupportedCharactersAreToldUnderAHeading)
{
    CTarvUnSupportedCharDlg dialog;
    ASSERT_TRUE(dialog.Create());
    QStringList words;
    for (const QLabel* label : dialog.findChildren<QLabel*>())
        words << label->text();
    EXPECT_EQ(words, (QStringList{ui::textOf(344), ui::textOf(345)}));
    EXPECT_TRUE(dialog.GetDlgItem(10)->font().bold());
    dialog.show();
    keepPicture(dialog, QStringLiteral("dialog-119"));
}

TEST_F(ShortMessageDialogTest, NeitherHasAnythingToFillInAndBothEndWithOk)
{
    for (const int number : {CTarvTextLengthDlg::kNumber, CTarvUnSupportedCharDlg::kNumber}) {
        const text::DialogTemplate* plan = text::findDialog(number);
        ASSERT_TRUE(plan) << number;
        for (const text::ControlTemplate& row : plan->controls)
            EXPECT_TRUE(row.kind == text::Control::Label || row.kind == text::Control::Place ||
                        row.kind == text::Control::Button);
    }
    CTarvTextLengthDlg dialog;
    ASSERT_TRUE(dialog.Create());
    whenWaiting([&] { dialog.Item<QPushButton>(text::kIdOk)->click(); });
    EXPECT_EQ(dialog.DoModal(), text::kIdOk);
}

} // namespace
