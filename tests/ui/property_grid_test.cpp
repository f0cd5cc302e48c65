#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QTreeWidget>

#include <ui/property_grid.h>
#include <ui/qt_text.h>

#include "program.h"

namespace {

struct Sheet {
    TvString title = u"Ground Floor", number = u"A-101";
    bool isPublished = true;
    int dialogs = 0;
};

class Row : public ed::PropertyRow
{
public:
    Row(Sheet& sheet, int at) : m_sheet(sheet), m_at(at) {}

    TvString name() const override
    {
        constexpr const TvChar* kNames[] = {u"Title", u"Number", u"Publish", u"Layout", u"Set"};
        return kNames[m_at];
    }
    TvString description() const override { return TvString(u"What is said of ") + name(); }
    int categoryId() const override { return m_at == 4 ? 2 : 1; }
    TvString categoryName() const override { return m_at == 4 ? u"Other" : u"Sheet"; }
    ed::PropertyKind kind() const override
    {
        return m_at == 2 ? ed::PropertyKind::Flag : ed::PropertyKind::Text;
    }
    bool isReadOnly() const override { return m_at == 4 || (m_at == 1 && !m_sheet.isPublished); }
    TvString text() const override
    {
        return m_at == 0   ? m_sheet.title
               : m_at == 1 ? m_sheet.number
                           : TvString(u"Layout1 (/projects/plan.dwg)");
    }
    bool setText(const TvString& text) override
    {
        if (text.isEmpty())
            return false;
        (m_at == 0 ? m_sheet.title : m_sheet.number) = text;
        return true;
    }
    int choice() const override { return m_sheet.isPublished; }
    bool setChoice(int choice) override
    {
        m_sheet.isPublished = choice == 1;
        return true;
    }
    bool hasDialog() const override { return m_at == 3; }
    void runDialog() override { ++m_sheet.dialogs; }

private:
    Sheet& m_sheet;
    int m_at;
};

class PropertyGridTest : public Program
{
protected:
    Sheet m_sheet;
    std::unique_ptr<ui::PropertyGrid> m_grid;

    void make(std::int16_t style = 2)
    {
        ed::setVariable(u"_KV_INSPECTORCONTROLSTYLES", style);
        m_grid = std::make_unique<ui::PropertyGrid>();
        ed::setVariable(u"_KV_INSPECTORCONTROLSTYLES", std::int16_t(0));
        std::vector<std::unique_ptr<ed::PropertyRow>> rows;
        for (int at = 0; at < 5; ++at)
            rows.push_back(std::make_unique<Row>(m_sheet, at));
        rows.push_back(nullptr);
        m_grid->setRows(std::move(rows));
        m_grid->resize(360, 260);
        m_grid->show();
        QApplication::setActiveWindow(m_grid.get());
    }
    QString shown(int row)
    {
        m_grid->setCurrentRow(row);
        return m_grid->tree().currentItem()->text(1);
    }
    QLineEdit* editor() { return m_grid->tree().viewport()->findChild<QLineEdit*>(); }
    void press(Qt::Key key, Qt::KeyboardModifiers with = {})
    {
        QWidget* at = editor() ? static_cast<QWidget*>(editor()) : &m_grid->tree();
        QTest::keyClick(at, key, with);
        QCoreApplication::processEvents();
    }
};

} // namespace

TEST_F(PropertyGridTest, ShowsRowsBelowTheirCategories)
{
    make();
    EXPECT_EQ(m_grid->rowCount(), 5);
    ASSERT_EQ(m_grid->tree().topLevelItemCount(), 2);
    EXPECT_EQ(m_grid->tree().topLevelItem(0)->childCount(), 4);
    EXPECT_EQ(m_grid->tree().topLevelItem(1)->text(0), QStringLiteral("Other"));
    EXPECT_EQ(shown(0), QStringLiteral("Ground Floor"));
    EXPECT_EQ(shown(2), ui::textOf(23348));
    EXPECT_EQ(m_grid->currentRow(), 2);
}

TEST_F(PropertyGridTest, F2EditsAndEnterWritesAtOnce)
{
    make();
    m_grid->setCurrentRow(0);
    press(Qt::Key_F2);
    ASSERT_TRUE(editor());
    EXPECT_EQ(editor()->text(), QStringLiteral("Ground Floor"));
    editor()->setText(QStringLiteral("First Floor"));
    press(Qt::Key_Return);
    EXPECT_EQ(m_sheet.title, u"First Floor");
    EXPECT_EQ(shown(0), QStringLiteral("First Floor"));
}

TEST_F(PropertyGridTest, EscapeWritesNothing)
{
    make();
    m_grid->setCurrentRow(0);
    press(Qt::Key_Return);
    ASSERT_TRUE(editor());
    editor()->setText(QStringLiteral("First Floor"));
    press(Qt::Key_Escape);
    EXPECT_EQ(m_sheet.title, u"Ground Floor");
    EXPECT_EQ(shown(0), QStringLiteral("Ground Floor"));
    EXPECT_TRUE(m_grid->isVisible());
}

TEST_F(PropertyGridTest, TypingReplacesTheValue)
{
    make();
    m_grid->setCurrentRow(1);
    press(Qt::Key_B);
    ASSERT_TRUE(editor());
    EXPECT_EQ(editor()->text(), QStringLiteral("b"));
    press(Qt::Key_Return);
    EXPECT_EQ(m_sheet.number, u"b");
}

TEST_F(PropertyGridTest, ARefusedValueShowsTheFormerOne)
{
    make();
    m_grid->setCurrentRow(0);
    press(Qt::Key_F2);
    ASSERT_TRUE(editor());
    editor()->clear();
    press(Qt::Key_Return);
    EXPECT_EQ(m_sheet.title, u"Ground Floor");
    EXPECT_EQ(shown(0), QStringLiteral("Ground Floor"));
}

TEST_F(PropertyGridTest, AChoiceMakesOtherRowsReadOnly)
{
    make();
    ASSERT_TRUE(m_grid->editRow(2));
    auto* box = m_grid->tree().viewport()->findChild<QComboBox*>();
    ASSERT_TRUE(box);
    EXPECT_EQ(box->count(), 2);
    box->setCurrentIndex(0);
    emit box->activated(0);
    QCoreApplication::processEvents();
    EXPECT_FALSE(m_sheet.isPublished);
    EXPECT_EQ(shown(2), ui::textOf(23347));
    EXPECT_FALSE(m_grid->editRow(1));
    EXPECT_FALSE(m_grid->editRow(4));
    EXPECT_FALSE(m_grid->editRow(99));
    EXPECT_FALSE(m_grid->editRow(-1));
}

TEST_F(PropertyGridTest, TheButtonAndItsKeyRunTheRowsDialog)
{
    make();
    m_grid->setCurrentRow(3);
    press(Qt::Key_Return, Qt::ControlModifier);
    EXPECT_EQ(m_sheet.dialogs, 1);
    QTreeWidget& tree = m_grid->tree();
    const QRect cell = tree.visualRect(tree.currentIndex().siblingAtColumn(1));
    QTest::mouseClick(tree.viewport(), Qt::LeftButton, {}, cell.center());
    EXPECT_EQ(m_sheet.dialogs, 1);
    QTest::mouseClick(tree.viewport(), Qt::LeftButton, {},
                      QPoint(cell.right() - cell.height() / 2, cell.center().y()));
    EXPECT_EQ(m_sheet.dialogs, 2);
    EXPECT_FALSE(m_grid->runDialog(0));
    EXPECT_FALSE(m_grid->runDialog(-1));
}

TEST_F(PropertyGridTest, ItsStyleFollowsTheVariableAtItsMaking)
{
    make(2);
    EXPECT_TRUE(m_grid->isDialogStyle());
    const auto* description = m_grid->findChild<QLabel*>();
    m_grid->setCurrentRow(1);
    EXPECT_TRUE(description->isVisible());
    EXPECT_EQ(description->text(), QStringLiteral("What is said of Number"));
    make(0);
    EXPECT_FALSE(m_grid->isDialogStyle());
    EXPECT_FALSE(m_grid->findChild<QLabel*>()->isVisible());
}

TEST_F(PropertyGridTest, NewRowsTakeThePlaceOfTheOldOnes)
{
    make();
    m_grid->setRows({});
    EXPECT_EQ(m_grid->rowCount(), 0);
    EXPECT_EQ(m_grid->currentRow(), -1);
    m_grid->refresh();
}

TEST_F(PropertyGridTest, LooksWellInBothThemes)
{
    for (const ui::Theme theme : {ui::Theme::Dark, ui::Theme::Light}) {
        switchTo(theme);
        make();
        m_grid->setCurrentRow(1);
        keepPicture(*m_grid, QStringLiteral("properties-%1").arg(static_cast<int>(theme)));
        EXPECT_EQ(m_grid->tree().palette().color(QPalette::Base), ui::color(ui::ColorRole::Base));
    }
}
