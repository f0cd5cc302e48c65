#pragma once

#include <vector>

#include <plot/page_setup.h>
#include <plot/publish_request.h>
#include <plot/sheet_list.h>
#include <ui/tv_ui_dialog.h>

class QTreeWidget;

namespace plotcmds {

/// Which sheets are published, as what and where to.
class PublishDialog : public CTvUiDialog
{
public:
    enum Control : int {
        kSheets = 10,
        kAll = 11,
        kNone = 12,
        kFormat = 13,
        kTarget = 14,
        kBrowse = 15,
        kStamp = 16,
    };

    /// @param sheets  outlive the dialog; none is null.
    PublishDialog(const std::vector<TvSmSheet*>& sheets, const TvSmSheetSet& set,
                  plot::OutputKind kind, bool isStamped);

    /// What was wanted: those that are checked, in their order.
    std::vector<TvSmSheet*> chosen() const;
    plot::OutputKind kind() const;
    TvString target() const { return GetDlgItemText(kTarget); }
    bool isStamped() const { return IsDlgButtonChecked(kStamp); }

protected:
    bool OnInitDialog() override;
    void OnOK() override;
    void OnCommand(int id) override;

private:
    void showTarget();
    void checkAll(bool isChecked);

    const std::vector<TvSmSheet*>& m_sheets; // not owned
    const TvSmSheetSet& m_set;               // not owned
    plot::OutputKind m_kind;
    bool m_isStamped;
};

/// What the stamp tells, and where it stands.
class StampDialog : public CTvUiDialog
{
public:
    enum Control : int {
        kFirstPart = 10, ///< and five more
        kNote = 16,
        kCorner = 17,
        kHeight = 18,
        kSample = 19,
    };

    explicit StampDialog(const plot::Stamp& stamp);
    const plot::Stamp& stamp() const { return m_stamp; }

protected:
    bool OnInitDialog() override;
    void OnOK() override;
    void OnCommand(int id) override;

private:
    bool read();
    void showSample();

    plot::Stamp m_stamp;
};

/// The page setups of a drawing, and what they say.
class PageSetupDialog : public CTvUiDialog
{
public:
    enum Control : int { kSetups = 10, kDetails = 11, kNote = 12 };

    /// @param name  of the sheet set, for the title.
    PageSetupDialog(std::vector<plot::PageSetup> setups, const TvString& name, bool isOpen);

protected:
    bool OnInitDialog() override;

private:
    void showDetails(int row);

    std::vector<plot::PageSetup> m_setups;
    TvString m_name;
    bool m_isOpen;
};

/// What a PDF holds.
class PdfOptionsDialog : public CTvUiDialog
{
public:
    enum Control : int { kLayers = 10, kOutline = 11, kText = 12, kBlack = 13, kMixed = 14 };

    explicit PdfOptionsDialog(const plot::PdfOptions& options);
    const plot::PdfOptions& options() const { return m_options; }

protected:
    bool OnInitDialog() override;
    void OnOK() override;

private:
    plot::PdfOptions m_options;
};

/// What a page setup says, a line for each thing.
TvString describe(const plot::PageSetup& setup);

} // namespace plotcmds
