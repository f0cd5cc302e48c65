#pragma once

#include <QLineEdit>
#include <QPushButton>
#include <QTest>

#include <ui/tv_ui_dialog.h>

/// What a user does with the controls of a dialog.

inline void type(CTvUiDialog& dialog, int id, const char* text)
{
    auto* edit = dialog.Item<QLineEdit>(id);
    edit->setFocus();
    edit->clear();
    QTest::keyClicks(edit, QString::fromLatin1(text));
}

inline void press(CTvUiDialog& dialog, int id)
{
    QTest::mouseClick(dialog.Item<QPushButton>(id), Qt::LeftButton);
}
