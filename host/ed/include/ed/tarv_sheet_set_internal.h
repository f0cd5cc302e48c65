#pragma once

#include <base/tv_string.h>

/// What the host asks of the sheet-set module.
class TarvSheetSetInternal
{
public:
    virtual ~TarvSheetSetInternal() = default;
    /// The file of the open sheet set in which the current layout is a sheet; empty when it is
    /// none.
    virtual void GetCurrentLayoutSheetSetFile(TvString& out) = 0;
    /// The variable SSMPOLLTIME has another value. @param seconds  the new one.
    virtual void OnSheetStatusPollTimeChanged(short seconds) = 0;
    /// The variable SSMSHEETSTATUS has another value. @param mode  the new one.
    virtual void OnSheetStatusModeChanged(short mode) = 0;
    /// Opens a sheet set in the panel. @param path  null is nothing.
    virtual void OpenSheetSetFile(const TvChar* path) = 0;
    virtual void OpenSheetSetByDialog() = 0;
    virtual void RunNewSheetSetWizard() = 0;
};

/// Null while the module is not there.
TarvSheetSetInternal* tarvGetSheetSetInternal();
/// The module gives itself, and takes itself back with null. Not owned.
void tarvSetSheetSetInternal(TarvSheetSetInternal* module);
