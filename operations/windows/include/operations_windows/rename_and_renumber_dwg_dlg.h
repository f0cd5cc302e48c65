#pragma once

#include <operations/rename_sheet.h>
#include <ui/tv_ui_dialog.h>

/// Changes number and title of one sheet, the name of its layout and of its drawing, and walks to
/// the sheets beside it.
///
/// The fields and their rules are operations::SheetRename's. Ends with kIdOk, kIdCancel, kNext or
/// kPrevious; a walk button tries to apply what was typed and leaves in any case.
/// @pre the database is locked by whoever shows it, and stays so.
class CRenameAndRenumberDwgDlg : public CTvUiDialog
{
public:
    static constexpr int kNumber = 66;
    /// Results.
    static constexpr int kNext = 21, kPrevious = 22;
    enum Control : int {
        kNumberEdit = 10,
        kTitleEdit = 11,
        kLayoutEdit = 12,
        kFileEdit = 13,
        kFolderEdit = 14,
        kRenameLayout = 15,
        kLayoutPrefix = 16,
        kRenameDrawing = 17,
        kDrawingPrefix = 18,
        kPreviousButton = 19,
        kNextButton = 20,
    };

    /// Loads the sheet. Both may be null; then there is nothing to be done in it.
    CRenameAndRenumberDwgDlg(TvSmSheet* sheet, TvSmDatabase* database, QWidget* parent = nullptr);

    /// False when there is no sheet with a layout, no database, or no document manager.
    virtual bool LoadSheet(TvSmSheet* sheet, TvSmDatabase* database);
    /// Checks what stands in the fields, does it, and keeps the options. False on every refusal,
    /// which the user was told.
    virtual bool ApplyChanges();
    /// Sets what can be changed, and the check marks, and the texts that were loaded.
    virtual void RefreshControls();

    const operations::SheetRename& sheet() const { return m_sheet; }

protected:
    bool OnInitDialog() override;
    void OnOK() override;
    void OnCommand(int id) override;

private:
    void enableControls();
    void limitEdits();
    operations::RenameNames typed() const;
    void showNames(const operations::RenameNames& names);
    void follow(void (*rule)(operations::RenameNames&, const operations::RenameOptions&));
    void toggle(int check);
    void leave(int result);

    operations::SheetRename m_sheet;
    operations::RenameOptions m_options;
    bool m_isLoaded = false;
    bool m_isFilling = false; ///< fields are set by us, not by the user
};
