#pragma once

#include <sm/tv_sm_component.h>
#include <sm/tv_sm_file_reference.h>

/// How a sheet set is published.
class TvSmPublishOptions : public TvSmComponent
{
    TVRX_DECLARE_MEMBERS(TvSmPublishOptions)

    TvSmPublishOptions() = default;
    ~TvSmPublishOptions() override;

    /// The output folder; null when none was set. Setting null drops it.
    TvSmFileReference* getDefaultOutputdir() const;
    bool setDefaultOutputdir(TvSmFileReference* reference);
    bool getDwfType() const;
    bool setDwfType(bool type);
    long getEplotFormat() const;
    bool setEplotFormat(long format);
    bool getPromptForName() const;
    bool setPromptForName(bool prompt);
    TvString getDefaultFileName() const;
    bool setDefaultFileName(TvString name);
    bool getLayerInfo() const;
    bool setLayerInfo(bool include);
    bool getLinesMerge() const;
    bool setLinesMerge(bool merge);
    bool getIncludeSheetData() const;
    bool setIncludeSheetData(bool include);
    bool getIncludeSheetSetData() const;
    bool setIncludeSheetSetData(bool include);

private:
    friend struct sm::Internals;
    TvSmFileReference* m_outputFolder = nullptr; // the database's
    sm::StoredText m_fileName;
    long m_format = 0;
    bool m_dwfType = false;
    bool m_promptForName = false;
    bool m_layerInfo = false;
    bool m_linesMerge = false;
    bool m_sheetData = false;
    bool m_sheetSetData = false;
};
