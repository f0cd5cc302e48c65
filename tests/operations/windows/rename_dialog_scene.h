#pragma once

#include <QCheckBox>
#include <QLineEdit>
#include <QPushButton>

#include <operations_windows/rename_and_renumber_dwg_dlg.h>

#include "program.h"
#include "rename_scene.h"

/// The sheets of RenameTest, and what the dialog's window stands on.
class RenameDialogScene : public RenameTest
{
protected:
    using Dlg = CRenameAndRenumberDwgDlg;

    void SetUp() override
    {
        RenameTest::SetUp();
        ui::setStateStore(&m_state);
        ui::rememberText(u"Theme\\Chosen", u"1");
        m_theme = std::make_unique<ui::ThemeManager>();
    }
    void TearDown() override
    {
        RenameTest::TearDown();
        m_theme.reset();
        ui::setStateStore(nullptr);
    }
    static QLineEdit* edit(const Dlg& dlg, int id) { return dlg.Item<QLineEdit>(id); }
    static void type(const Dlg& dlg, int id, const char* text)
    {
        edit(dlg, id)->clear();
        QTest::keyClicks(edit(dlg, id), QString::fromUtf8(text));
    }
    /// "1|Plan|A1|plan.dwg"
    static std::string texts(const Dlg& dlg)
    {
        std::string all;
        for (const int id : {Dlg::kNumberEdit, Dlg::kTitleEdit, Dlg::kLayoutEdit, Dlg::kFileEdit})
            all += (id == Dlg::kNumberEdit ? "" : "|") + edit(dlg, id)->text().toStdString();
        return all;
    }
    static void press(const Dlg& dlg, int id) { dlg.Item<QAbstractButton>(id)->click(); }

private:
    TarvikConfig m_state{folder.file("state")};
    std::unique_ptr<ui::ThemeManager> m_theme;
};
