#pragma once

#include <ui/tv_ui_dialog.h>

class TvSmDatabase;
class TvSmPublishOptions;

namespace ui {
class PropertyGrid;
}

/// The publish options of a set. Each row writes at once; the lock, and whether the change stays,
/// are the caller's. (sic)
class CTarvDWFPublishOptionsDialg : public CTvUiDialog
{
public:
    static constexpr int kNumber = 230;
    enum Control : int {
        kInspector = 231,
        kInspectorPlace = 232, ///< hidden: where the inspector stands
        kPicture = 233,
        kSetName = 235
    };

    /// @param parent  null: the program's window. @param database, options  not null; locked by the
    /// caller, or nothing can be changed.
    CTarvDWFPublishOptionsDialg(QWidget* parent, TvSmDatabase* database,
                                TvSmPublishOptions* options);

    ui::PropertyGrid& inspector() { return *m_inspector; }

protected:
    QWidget* MakeControl(const text::ControlTemplate& row, QWidget* parent) override;
    bool OnInitDialog() override;
    void OnOK() override;

private:
    TvSmDatabase& m_database;
    TvSmPublishOptions& m_options;
    ui::PropertyGrid* m_inspector = nullptr; // owned by the toolkit
};
