#pragma once

#include <exception>
#include <functional>
#include <memory>
#include <optional>

#include <QDialog>

#include <base/tv_string.h>
#include <resources/dialogs.h>

/// A dialog made from its template.
///
/// Each control is found by its id. Enter presses the default button and so, as the button with id
/// 1 does, calls OnOK(); Escape, the window's cross and the button with id 2 call OnCancel(). What
/// a handler throws comes out of DoModal().
class CTvUiDialog : public QDialog
{
public:
    /// What DoModal() gives when there is no template of that number.
    static constexpr int kFailed = -1;

    /// @param number  of the template.
    /// @param parent  in front of which it stands; null: in front of the dialog that runs, else the
    ///                frame.
    explicit CTvUiDialog(int number, QWidget* parent = nullptr);
    /// The same with a template that need not be one of the resources; its rows outlive the dialog.
    explicit CTvUiDialog(const text::DialogTemplate& plan, QWidget* parent = nullptr);
    ~CTvUiDialog() override;

    /// Makes the controls and calls OnInitDialog(); DoModal() does it where nobody did. False when
    /// there is no template, true when it was made before too.
    bool Create();
    /// Runs it until it ends.
    /// @return kIdOk, kIdCancel, or what EndDialog() was given; kFailed.
    int DoModal();
    /// Ends it, with that as the result; called by OnInitDialog(), before it is ever shown.
    void EndDialog(int result);

    /// The control of that id; null for 0, for an unknown one, and before Create().
    QWidget* GetDlgItem(int id) const;
    /// The same as what it is; null when it is something else.
    template <class T>
    T* Item(int id) const
    {
        return dynamic_cast<T*>(GetDlgItem(id));
    }
    /// The text of a label, edit, button or combo box; empty for anything else.
    TvString GetDlgItemText(int id) const;
    void SetDlgItemText(int id, const TvString& text);
    void EnableDlgItem(int id, bool isEnabled);
    void ShowDlgItem(int id, bool isShown);
    bool IsDlgButtonChecked(int id) const;
    void CheckDlgButton(int id, bool isChecked);
    /// Gives it the focus, and marks the text of an edit.
    void FocusDlgItem(int id);

    /// What F1 opens; empty: nothing.
    void SetHelpTopic(const TvString& topic) { m_helpTopic = topic; }
    const TvString& GetHelpTopic() const { return m_helpTopic; }
    /// Under which its size and place are remembered; by default its number, empty: not at all.
    void SetStateName(const TvString& name) { m_stateName = name; }

    QSize sizeHint() const override;
    /// As the window's cross: OnCancel().
    void reject() override;

protected:
    /// The controls are there. @return false when it gave the focus to a control of its choice.
    virtual bool OnInitDialog();
    /// Ends it with kIdOk; override to refuse.
    virtual void OnOK();
    virtual void OnCancel();
    /// A button, check box or radio of that id was pressed; not for ids 1 and 2.
    virtual void OnCommand(int id);
    /// Makes the control of that id in another way than the usual one. Null: the usual one.
    virtual QWidget* MakeControl(const text::ControlTemplate& row, QWidget* parent);

    /// Calls it, and keeps what it throws until DoModal() can throw it again.
    void Guarded(const std::function<void()>& step);

    void resizeEvent(QResizeEvent* event) override;
    void changeEvent(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    struct Controls;
    void prepare(const text::DialogTemplate* plan);
    void makeControls();
    void scaleToFont();
    std::unique_ptr<Controls> m_controls;
    TvString m_helpTopic, m_stateName;
    std::exception_ptr m_thrown;
    std::optional<int> m_ended; // before it ran
};

namespace ui {

/// Who opens a help topic; an empty function: nobody.
void setHelpOpener(std::function<void(const TvString& topic)> opener);
void openHelp(const TvString& topic);

} // namespace ui
