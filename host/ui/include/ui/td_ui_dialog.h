#pragma once

#include "ui/tv_ui_dialog.h"

/// A dialog that can be a page within another window as well, as in a palette or a wizard.
///
/// As a page it has no OK and no Escape of its own, fills what holds it, and is remembered nowhere.
class CTdUiDialog : public CTvUiDialog
{
public:
    using CTvUiDialog::Create;
    using CTvUiDialog::CTvUiDialog;

    /// Makes it a page of @p holder, which owns it from here on: it must have been made with new.
    /// False, and it stays the caller's, when there is no template.
    bool CreateIn(QWidget* holder);
    bool IsPage() const { return m_isPage; }

    void reject() override;

protected:
    void keyPressEvent(QKeyEvent* event) override;

private:
    bool m_isPage = false;
};
