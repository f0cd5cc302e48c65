#include <bit>
#include <stdexcept>

#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QVBoxLayout>

#include <resources/resource_dialogs.h>
#include <resources/texts.h>
#include <rx/resource_module.h>
#include <ui/qt_text.h>
#include <ui/td_ui_dialog.h>

#include "program.h"

using text::Control;

namespace {

constexpr int kName = 101, kCheck = 102, kFirst = 103, kSecond = 104, kOther = 105, kThird = 106,
              kMore = 107, kPath = 108, kFrame = 109;

// clang-format off
constexpr text::ControlTemplate kRows[] = {
    {Control::Label,    0,       23341,   8,   8, 150,  9},
    {Control::Edit,     kName,   0,     164,   6,  58, 14, text::kGrowsX},
    {Control::CheckBox, kCheck,  23342,   8,  26, 200, 11},
    {Control::Group,    kFrame,  23340,   8,  40, 212, 46, text::kGrowsX},
    {Control::Radio,    kFirst,  23347,  16,  52, 60, 11, text::kGroup},
    {Control::Radio,    kSecond, 23348,  16,  66, 60, 11},
    {Control::Radio,    kOther,  23347, 110,  52, 60, 11, text::kGroup},
    {Control::Radio,    kThird,  23348, 110,  66, 60, 11},
    {Control::Label,    kPath,   0,       8,  90, 212, 9, text::kElided | text::kGrowsX},
    {Control::Button,   kMore,   23346,   8, 106, 52, 15, text::kMovesY},
    {Control::Button,   1,       23300, 112, 106, 52, 15, text::kDefault | text::kMovesX | text::kMovesY},
    {Control::Button,   2,       23301, 170, 106, 52, 15, text::kMovesX | text::kMovesY},
};
// clang-format on
constexpr text::DialogTemplate kPlan = {9999, 23340, 230, 126, text::kPlain, kRows};

class Dialog : public CTvUiDialog
{
public:
    std::vector<int> commands;
    std::string steps;
    bool refuses = false, throwsAtOk = false, throwsAtStart = false;

    Dialog() : CTvUiDialog(kPlan) {}
    using CTvUiDialog::CTvUiDialog;

protected:
    bool OnInitDialog() override
    {
        steps += "init ";
        if (throwsAtStart)
            throw std::runtime_error("start");
        return true;
    }
    void OnOK() override
    {
        steps += "ok ";
        if (throwsAtOk)
            throw std::runtime_error("ok");
        if (!refuses)
            CTvUiDialog::OnOK();
    }
    void OnCancel() override
    {
        steps += "cancel ";
        CTvUiDialog::OnCancel();
    }
    void OnCommand(int id) override { commands.push_back(id); }
};

class EndsAtOnce : public CTvUiDialog
{
public:
    EndsAtOnce() : CTvUiDialog(kPlan) {}
    bool wasShown = false;

protected:
    bool OnInitDialog() override
    {
        EndDialog(text::kIdCancel);
        return true;
    }
    void showEvent(QShowEvent* event) override
    {
        wasShown = true;
        CTvUiDialog::showEvent(event);
    }
};

class DialogTest : public Program
{
};

QPushButton* button(const CTvUiDialog& dialog, int id)
{
    return dialog.Item<QPushButton>(id);
}

/// One module, with dialogs of its own.
class DialogModule : public rx::ModuleLoader
{
public:
    DialogModule() { rx::setModuleLoader(this); }
    ~DialogModule() override { rx::setModuleLoader(nullptr); }
    Handle loaded(const TvString& name) override { return name == u"Own.dll" ? this : nullptr; }
    base::Result<Handle> load(const TvString& name) override { return loaded(name); }
    void free(Handle) override {}
    void* symbol(Handle module, const char* symbol) override
    {
        const bool isAsked = module && std::string_view(symbol) == text::kResourceDialogName;
        return isAsked ? std::bit_cast<void*>(&dialogOf) : nullptr;
    }
    static const text::DialogTemplate* dialogOf(int number)
    {
        return number == kPlan.number ? &kPlan : nullptr;
    }
};

TEST_F(DialogTest, OfAModuleIsMadeWhileThatModulesResourcesAreCurrent)
{
    const DialogModule module;
    EXPECT_FALSE(Dialog(kPlan.number, nullptr).Create());
    {
        const rx::ResourceContext ours(u"Own.dll");
        EXPECT_TRUE(Dialog(kPlan.number, nullptr).Create());
        const int known = text::allDialogs().front().number; // the module lacks it
        EXPECT_TRUE(Dialog(known, nullptr).Create());
    }
    const rx::ResourceContext missing(u"Missing.dll");
    EXPECT_FALSE(Dialog(kPlan.number, nullptr).Create());
}

} // namespace

TEST_F(DialogTest, ControlsAreFoundByTheirIds)
{
    Dialog dialog;
    EXPECT_FALSE(dialog.GetDlgItem(kName));
    ASSERT_TRUE(dialog.Create());
    EXPECT_EQ(dialog.steps, "init ");
    EXPECT_TRUE(dialog.Item<QLineEdit>(kName));
    EXPECT_FALSE(dialog.Item<QComboBox>(kName));
    EXPECT_FALSE(dialog.GetDlgItem(0));
    EXPECT_FALSE(dialog.GetDlgItem(12345));
    EXPECT_EQ(ui::textOf(23301), button(dialog, 2)->text());
    EXPECT_EQ(dialog.windowTitle(), ui::textOf(23340));
    EXPECT_TRUE(dialog.Create());
    EXPECT_EQ(dialog.steps, "init ");
}

TEST_F(DialogTest, WithoutATemplateItFails)
{
    CTvUiDialog dialog(424242);
    EXPECT_FALSE(dialog.Create());
    EXPECT_EQ(dialog.DoModal(), CTvUiDialog::kFailed);
    EXPECT_FALSE(dialog.GetDlgItem(1));
}

TEST_F(DialogTest, EnterPressesTheDefaultButton)
{
    Dialog dialog;
    whenWaiting([&] { QTest::keyClick(dialog.GetDlgItem(kName), Qt::Key_Return); });
    EXPECT_EQ(dialog.DoModal(), text::kIdOk);
    EXPECT_EQ(dialog.steps, "init ok ");
}

TEST_F(DialogTest, EscapeAndTheCrossCancel)
{
    Dialog escaped;
    whenWaiting([&] { QTest::keyClick(&escaped, Qt::Key_Escape); });
    EXPECT_EQ(escaped.DoModal(), text::kIdCancel);
    Dialog closed;
    whenWaiting([&] { closed.close(); });
    EXPECT_EQ(closed.DoModal(), text::kIdCancel);
    EXPECT_EQ(closed.steps, "init cancel ");
}

TEST_F(DialogTest, OkMayBeRefused)
{
    Dialog dialog;
    dialog.refuses = true;
    whenWaiting([&] {
        QTest::mouseClick(button(dialog, 1), Qt::LeftButton);
        EXPECT_TRUE(dialog.isVisible());
        QTest::mouseClick(button(dialog, 2), Qt::LeftButton);
    });
    EXPECT_EQ(dialog.DoModal(), text::kIdCancel);
    EXPECT_EQ(dialog.steps, "init ok cancel ");
}

TEST_F(DialogTest, EndsWithTheResultItIsGiven)
{
    Dialog dialog;
    whenWaiting([&] { dialog.EndDialog(21); });
    EXPECT_EQ(dialog.DoModal(), 21);
}

TEST_F(DialogTest, OtherButtonsAreCommands)
{
    Dialog dialog;
    dialog.Create();
    dialog.show();
    QTest::mouseClick(button(dialog, kMore), Qt::LeftButton);
    QTest::keyClick(dialog.GetDlgItem(kCheck), Qt::Key_Space);
    EXPECT_EQ(dialog.commands, (std::vector<int>{kMore, kCheck}));
    EXPECT_TRUE(dialog.IsDlgButtonChecked(kCheck));
}

TEST_F(DialogTest, RadiosOfAGroupExcludeEachOther)
{
    Dialog dialog;
    dialog.Create();
    dialog.CheckDlgButton(kFirst, true);
    dialog.CheckDlgButton(kThird, true);
    dialog.CheckDlgButton(kSecond, true);
    EXPECT_FALSE(dialog.IsDlgButtonChecked(kFirst));
    EXPECT_TRUE(dialog.IsDlgButtonChecked(kSecond));
    EXPECT_TRUE(dialog.IsDlgButtonChecked(kThird));
}

TEST_F(DialogTest, TabGoesInTheOrderOfTheTemplate)
{
    Dialog dialog;
    dialog.Create();
    dialog.CheckDlgButton(kFirst, true);
    dialog.CheckDlgButton(kOther, true);
    dialog.show();
    QApplication::setActiveWindow(&dialog);
    std::vector<QWidget*> order;
    for (int at = 0; at < 7; ++at) {
        order.push_back(dialog.focusWidget());
        QTest::keyClick(dialog.focusWidget(), Qt::Key_Tab);
    }
    std::vector<QWidget*> expected;
    for (const int id : {kName, kCheck, kFirst, kOther, kMore, 1, 2})
        expected.push_back(dialog.GetDlgItem(id));
    EXPECT_EQ(order, expected);
}

TEST_F(DialogTest, ALabelsLetterLeadsToTheControlBehindIt)
{
    Dialog dialog;
    dialog.Create();
    dialog.show();
    QApplication::setActiveWindow(&dialog);
    dialog.FocusDlgItem(2);
    QTest::keyClick(&dialog, Qt::Key_P, Qt::AltModifier);
    EXPECT_EQ(dialog.focusWidget(), dialog.GetDlgItem(kName));
    EXPECT_FALSE(dialog.GetDlgItem(kName)->accessibleName().isEmpty());
}

TEST_F(DialogTest, TextsOfControlsAreReadAndSet)
{
    Dialog dialog;
    dialog.Create();
    dialog.SetDlgItemText(kName, u"A & <b>B</b>");
    EXPECT_EQ(dialog.GetDlgItemText(kName), u"A & <b>B</b>");
    dialog.SetDlgItemText(kPath, u"/projects/a/very/long/path");
    EXPECT_EQ(dialog.GetDlgItemText(kPath), u"/projects/a/very/long/path");
    dialog.EnableDlgItem(kName, false);
    EXPECT_FALSE(dialog.GetDlgItem(kName)->isEnabled());
    dialog.ShowDlgItem(kName, false);
    EXPECT_TRUE(dialog.GetDlgItem(kName)->isHidden());
    // Nobody is there: nothing happens.
    dialog.SetDlgItemText(777, u"x");
    dialog.EnableDlgItem(777, true);
    dialog.CheckDlgButton(777, true);
    EXPECT_EQ(dialog.GetDlgItemText(777), TvString());
}

TEST_F(DialogTest, ControlsFollowItsSizeAsTheirFlagsSay)
{
    Dialog dialog;
    dialog.Create();
    dialog.show();
    const QRect edit = dialog.GetDlgItem(kName)->geometry(), ok = button(dialog, 1)->geometry(),
                check = dialog.GetDlgItem(kCheck)->geometry();
    dialog.resize(dialog.size() + QSize(50, 30));
    EXPECT_EQ(dialog.GetDlgItem(kName)->geometry(), edit.adjusted(0, 0, 50, 0));
    EXPECT_EQ(button(dialog, 1)->geometry(), ok.translated(50, 30));
    EXPECT_EQ(dialog.GetDlgItem(kCheck)->geometry(), check);
}

TEST_F(DialogTest, GrowsWithTheFont)
{
    Dialog dialog;
    dialog.Create();
    dialog.show();
    const QSize before = dialog.size();
    QFont font = dialog.font();
    font.setPixelSize(font.pixelSize() > 0 ? font.pixelSize() * 2
                                           : QFontInfo(font).pixelSize() * 2);
    dialog.setFont(font);
    EXPECT_GT(dialog.width(), before.width() * 3 / 2);
    EXPECT_GT(dialog.height(), before.height() * 3 / 2);
    EXPECT_GT(button(dialog, 1)->x(), before.width() * 3 / 4);
}

TEST_F(DialogTest, RemembersItsSizeInTheState)
{
    QSize left;
    {
        Dialog dialog;
        whenWaiting([&] {
            dialog.resize(dialog.width() + 70, dialog.height() + 40);
            left = dialog.size();
            dialog.EndDialog(1);
        });
        dialog.DoModal();
    }
    Dialog again;
    QSize found;
    whenWaiting([&] {
        found = again.size();
        again.EndDialog(1);
    });
    again.DoModal();
    EXPECT_EQ(found, left);
    TarvikConfigValue value;
    EXPECT_TRUE(m_state.getValue(1, u"Windows\\Dialog9999", value));
    EXPECT_FALSE(m_config.getValue(1, u"Windows\\Dialog9999", value));
}

TEST_F(DialogTest, ARememberedPlaceIsBroughtBackOntoTheScreen)
{
    for (const TvChar* kept : {u"-5000 -5000 400 300", u"90000 90000 99999 99999", u"1 2 3",
                               u"a b c d", u"0 0 0 0", u"1 2 3 4 5", u"1 2 3 99999999999"}) {
        ui::rememberText(u"Windows\\Dialog9999", kept);
        Dialog dialog;
        QRect place;
        whenWaiting([&] {
            place = dialog.geometry();
            dialog.EndDialog(1);
        });
        dialog.DoModal();
        bool isSeen = false;
        for (const QRect& screen : ui::availableScreens())
            isSeen |= screen.adjusted(-4, -4, 4, 4).contains(place); // but for the frame
        EXPECT_TRUE(isSeen) << TvString(kept).utf8() << ": " << place.x() << " " << place.y() << " "
                            << place.width() << " " << place.height();
    }
}

TEST_F(DialogTest, WhatAHandlerThrowsComesOutOfIt)
{
    Dialog dialog;
    dialog.throwsAtOk = true;
    whenWaiting([&] { QTest::mouseClick(button(dialog, 1), Qt::LeftButton); });
    EXPECT_THROW(dialog.DoModal(), std::runtime_error);
    EXPECT_FALSE(dialog.isVisible());
}

TEST_F(DialogTest, TheResourcesAreRestoredOnEveryWayOut)
{
    const auto run = [](bool throwsAtStart, bool throwsAtOk) {
        const rx::ResourceContext context(u"KvSheetSetRes.dll");
        EXPECT_EQ(rx::currentResourceName(), u"KvSheetSetRes.dll");
        Dialog dialog;
        dialog.throwsAtStart = throwsAtStart;
        dialog.throwsAtOk = throwsAtOk;
        whenWaiting([] {
            if (auto* running = runningDialog<CTvUiDialog>())
                QTest::mouseClick(running->GetDlgItem(1), Qt::LeftButton);
        });
        return dialog.DoModal();
    };
    EXPECT_EQ(run(false, false), text::kIdOk);
    EXPECT_EQ(rx::currentResourceName(), TvString());
    EXPECT_THROW(run(true, false), std::runtime_error);
    EXPECT_EQ(rx::currentResourceName(), TvString());
    QCoreApplication::processEvents();
    EXPECT_THROW(run(false, true), std::runtime_error);
    EXPECT_EQ(rx::currentResourceName(), TvString());
}

TEST_F(DialogTest, F1OpensItsTopic)
{
    TvString opened;
    ui::setHelpOpener([&](const TvString& topic) { opened = topic; });
    Dialog dialog;
    dialog.SetHelpTopic(u"SHEETSET_DIA03");
    dialog.Create();
    dialog.show();
    QTest::keyClick(dialog.GetDlgItem(kName), Qt::Key_F1);
    ui::setHelpOpener({});
    EXPECT_EQ(opened, u"SHEETSET_DIA03");
    ui::openHelp(u"nobody");
}

TEST_F(DialogTest, APageFillsWhatHoldsIt)
{
    QWidget holder;
    auto* page = new CTdUiDialog(kPlan);
    ASSERT_TRUE(page->CreateIn(&holder));
    holder.resize(500, 400);
    holder.show();
    QCoreApplication::processEvents();
    EXPECT_EQ(page->size(), holder.size());
    EXPECT_FALSE(page->isWindow());
    QTest::keyClick(page->GetDlgItem(kName), Qt::Key_Escape);
    QTest::keyClick(page->GetDlgItem(kName), Qt::Key_Return);
    EXPECT_TRUE(page->isVisible());
}

TEST_F(DialogTest, APageWithoutTemplateStaysTheCallers)
{
    QWidget holder;
    CTdUiDialog page(424242);
    EXPECT_FALSE(page.CreateIn(&holder));
    EXPECT_EQ(page.parentWidget(), nullptr);
}

TEST_F(DialogTest, AllTemplatesOfTheResourcesCanBeMade)
{
    for (const text::DialogTemplate& plan : text::allDialogs()) {
        CTvUiDialog dialog(plan.number);
        ASSERT_TRUE(dialog.Create()) << plan.number;
        for (const text::ControlTemplate& row : plan.controls) {
            const auto* words = dialog.Item<QAbstractButton>(row.id);
            EXPECT_TRUE(row.id == 0 || dialog.GetDlgItem(row.id)) << plan.number << ": " << row.id;
            EXPECT_TRUE(!words || (row.style & text::kIconOnly) ||
                        words->minimumSizeHint().width() <= words->width())
                << plan.number << ": " << words->text().toStdString();
        }
        for (const QLabel* label : dialog.findChildren<QLabel*>()) {
            EXPECT_LE(label->sizeHint().width(), label->width())
                << plan.number << ": " << label->text().toStdString();
        }
    }
}

TEST_F(DialogTest, LooksWellInBothThemes)
{
    for (const ui::Theme theme : {ui::Theme::Dark, ui::Theme::Light}) {
        switchTo(theme);
        Dialog dialog;
        dialog.Create();
        dialog.SetDlgItemText(kName, u"45");
        dialog.SetDlgItemText(kPath,
                              u"/projects/town hall/east wing/drawings/first floor/plan of the "
                              u"first floor.dwg");
        dialog.CheckDlgButton(kCheck, true);
        dialog.CheckDlgButton(kSecond, true);
        dialog.EnableDlgItem(kOther, false);
        dialog.show();
        QApplication::setActiveWindow(&dialog);
        QCoreApplication::processEvents();
        EXPECT_EQ(dialog.grab().toImage().pixelColor(2, 2), ui::color(ui::ColorRole::Window));
        keepPicture(dialog, QStringLiteral("dialog-%1").arg(static_cast<int>(theme)));
    }
}

TEST_F(DialogTest, OneThatEndsWhileItIsMadeIsNeverShown)
{
    EndsAtOnce dialog;
    EXPECT_EQ(dialog.DoModal(), text::kIdCancel);
    EXPECT_FALSE(dialog.wasShown);
    whenWaiting([&] { dialog.Item<QPushButton>(text::kIdOk)->click(); });
    EXPECT_EQ(dialog.DoModal(), text::kIdOk) << "the next time it is asked";
    EXPECT_TRUE(dialog.wasShown);
}
