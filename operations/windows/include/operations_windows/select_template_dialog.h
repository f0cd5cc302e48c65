#pragma once

#include <operations/template_choice.h>
#include <ui/tv_ui_dialog.h>

class QListWidget;

/// Lets the user choose a template drawing, and one of its layouts.
class CSelectTemplateDialog : public CTvUiDialog
{
public:
    static constexpr int kNumber = 98, kPath = 99, kBrowse = 100, kLayouts = 101;

    explicit CSelectTemplateDialog(QWidget* parent = nullptr) : CTvUiDialog(kNumber, parent) {}

    /// What is chosen at first; before it runs.
    void SetLayoutName(const TvString& name) { m_preset.layout = name; }
    void SetDrawingPath(const TvString& path) { m_preset.drawing = path; }
    /// What was chosen; after it ended with OK.
    TvString GetLayoutName() const { return m_choice.chosen().layout; }
    TvString GetDrawingPath() const { return m_choice.chosen().drawing; }

protected:
    bool OnInitDialog() override;
    void OnOK() override;
    void OnCommand(int id) override;

private:
    void showLayouts();

    operations::SheetTemplate m_preset;
    operations::TemplateChoice m_choice;
    QListWidget* m_layouts = nullptr; // the dialog's
};
