#pragma once

#include <ed/tarv_sheet_set_internal.h>

/// What the host asks of this module.
class TarvSheetSetInternalImp : public TarvSheetSetInternal
{
public:
    void GetCurrentLayoutSheetSetFile(TvString& out) override;
    void OnSheetStatusPollTimeChanged(short seconds) override;
    void OnSheetStatusModeChanged(short mode) override;
    void OpenSheetSetFile(const TvChar* path) override;
    void OpenSheetSetByDialog() override;
    void RunNewSheetSetWizard() override;
};
