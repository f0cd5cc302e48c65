#include "sm/tv_sm_publish_options.h"

#include "database_state.h"

using sm::Internals;

TVRX_DEFINE_MEMBERS(TvSmPublishOptions, TvSmComponent)

TvSmPublishOptions::~TvSmPublishOptions() = default;

TvSmFileReference* TvSmPublishOptions::getDefaultOutputdir() const
{
    return m_outputFolder;
}

bool TvSmPublishOptions::setDefaultOutputdir(TvSmFileReference* reference)
{
    return Internals::changeReference(*this, m_outputFolder, reference);
}

bool TvSmPublishOptions::getDwfType() const
{
    return m_dwfType;
}

bool TvSmPublishOptions::setDwfType(bool type)
{
    return Internals::change(*this, m_dwfType, type);
}

long TvSmPublishOptions::getEplotFormat() const
{
    return m_format;
}

bool TvSmPublishOptions::setEplotFormat(long format)
{
    return Internals::change(*this, m_format, format);
}

bool TvSmPublishOptions::getPromptForName() const
{
    return m_promptForName;
}

bool TvSmPublishOptions::setPromptForName(bool prompt)
{
    return Internals::change(*this, m_promptForName, prompt);
}

TvString TvSmPublishOptions::getDefaultFileName() const
{
    return m_fileName.text();
}

bool TvSmPublishOptions::setDefaultFileName(TvString name)
{
    return Internals::changeText(*this, m_fileName, name);
}

bool TvSmPublishOptions::getLayerInfo() const
{
    return m_layerInfo;
}

bool TvSmPublishOptions::setLayerInfo(bool include)
{
    return Internals::change(*this, m_layerInfo, include);
}

bool TvSmPublishOptions::getLinesMerge() const
{
    return m_linesMerge;
}

bool TvSmPublishOptions::setLinesMerge(bool merge)
{
    return Internals::change(*this, m_linesMerge, merge);
}

bool TvSmPublishOptions::getIncludeSheetData() const
{
    return m_sheetData;
}

bool TvSmPublishOptions::setIncludeSheetData(bool include)
{
    return Internals::change(*this, m_sheetData, include);
}

bool TvSmPublishOptions::getIncludeSheetSetData() const
{
    return m_sheetSetData;
}

bool TvSmPublishOptions::setIncludeSheetSetData(bool include)
{
    return Internals::change(*this, m_sheetSetData, include);
}
