#include "ui/td_ui_dialog.h"

#include <QKeyEvent>
#include <QVBoxLayout>

bool CTdUiDialog::CreateIn(QWidget* holder)
{
    SetStateName({});
    m_isPage = true;
    setWindowFlags(Qt::Widget);
    setParent(holder);
    if (!Create()) {
        setParent(nullptr);
        return false;
    }
    setMinimumSize(0, 0);
    if (holder) {
        if (!holder->layout()) {
            auto* column = new QVBoxLayout(holder);
            column->setContentsMargins(0, 0, 0, 0);
        }
        holder->layout()->addWidget(this);
    }
    show();
    return true;
}

void CTdUiDialog::reject()
{
    if (!m_isPage)
        CTvUiDialog::reject();
}

void CTdUiDialog::keyPressEvent(QKeyEvent* event)
{
    const int key = event->key();
    if (m_isPage && (key == Qt::Key_Return || key == Qt::Key_Enter || key == Qt::Key_Escape))
        event->ignore(); // whoever holds the page may want it
    else
        CTvUiDialog::keyPressEvent(event);
}
