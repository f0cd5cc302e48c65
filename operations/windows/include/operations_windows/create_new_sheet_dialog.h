#pragma once

#include <operations/new_sheet.h>
#include <ui/tv_ui_dialog.h>

/// Asks for number, title and file name of a new sheet, and makes its drawing and then the sheet,
/// which has no place in the set yet. Whoever runs it holds the set's lock, and keeps the change
/// when it ends with OK.
class CCreateNewSheetDialog : public CTvUiDialog, private operations::NewSheetWindow
{
public:
    static constexpr int kNumber = 86;
    static constexpr int kSheetNumber = 87, kTitle = 88, kFileName = 89, kOpen = 90, kFolder = 91,
                         kTemplate = 92;

    /// @param subset  where the sheet will stand: a subset or the set itself; outlives the dialog.
    CCreateNewSheetDialog(QWidget* parent, TvSmSubset* subset);

    /// The sheet that was made; null until it ended with OK.
    TvSmSheet* GetSheet() const { return m_sheet.sheet(); }

protected:
    bool OnInitDialog() override;
    void OnOK() override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    bool chooseTemplate(operations::SheetTemplate& out) override;
    void tellUnsupportedCharacters() override;
    void composeFileName();

    operations::NewSheet m_sheet;
};
