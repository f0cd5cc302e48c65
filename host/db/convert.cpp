#include "db/convert.h"

#include <base/tv_db_handle.h>

#include "convert_data.h"
#include "db/entity_chain.h"
#include "db/summary_record.h"

namespace db {

namespace {

constexpr std::string_view kViewportHeaders = "VPENT_HDR_CONTROL";

void surveyEntries(const Record& table, std::vector<std::uint64_t>& out)
{
    const ArrayView entries = table.array("entries");
    for (std::uint32_t i = 0; i < entries.size(); ++i)
        out.push_back(entries.handle(i));
}

void surveyOwner(const Record& owner, FieldId list, Conversion::Data& data)
{
    const ArrayView owned = owner.array(list);
    if (data.to == Version::Ac1015 && owner.version() != Version::Ac1015)
        for (std::uint32_t i = 0; i < owned.size(); ++i)
            data.neighbours[owned.handle(i)] = {i > 0 ? owned.handle(i - 1) : 0,
                                                owned.handle(i + 1)};
    if (owner.handle("layout") == 0)
        return;
    std::vector<std::uint64_t>& content = data.content[owner.handle()];
    for (std::uint32_t i = 0; i < owned.size(); ++i)
        content.push_back(owned.handle(i));
}

std::vector<std::uint64_t> viewportsOf(std::uint64_t block, const Conversion::Data& data)
{
    std::vector<std::uint64_t> viewports;
    const auto content = data.content.find(block);
    if (content != data.content.end())
        for (const std::uint64_t entity : content->second)
            if (data.viewports.count(entity))
                viewports.push_back(entity);
    return viewports;
}

Record newRecord(const char* className, std::uint64_t handle, Version version)
{
    const ClassDef& classDef = *classNamed(className);
    Record record(classDef);
    record.setHandle(handle);
    record.setTypeNumber(classDef.typeNumber());
    record.setVersion(version);
    return record;
}

// AC1015 keeps a second record of each viewport of the active layout, in a table and in a chain.
void addViewportHeaders(Conversion::Data& data, std::uint64_t& nextHandle)
{
    data.viewportTable = nextHandle++;
    Record table = newRecord("VPENT_HDR_CONTROL", data.viewportTable, Version::Ac1015);
    ArrayEditor entries = RecordEditor(table).array("entries");
    const std::vector<std::uint64_t> viewports = viewportsOf(data.paperSpace, data);
    const std::uint64_t first = nextHandle;
    nextHandle += viewports.size();
    for (std::size_t i = 0; i < viewports.size(); ++i) {
        const bool isLast = i + 1 == viewports.size();
        Record header = newRecord("VPENT_HDR", first + i, Version::Ac1015);
        RecordEditor edit(header);
        edit.setHandle("owner", data.viewportTable);
        edit.setText("name", i == 0 ? u"1" : u"");
        edit.setFlag("xref_ref", true);
        edit.setHandle("viewport", viewports[i]);
        edit.setHandle("previous", isLast ? 0 : first + i + 1);
        entries.setHandle(entries.add(), first + i);
        data.viewportHeaders[viewports[i]] = first + i;
        data.additions.push_back(std::move(header));
    }
    data.additions.push_back(std::move(table));
}

} // namespace

Conversion::Conversion(Version to) : m_data(std::make_unique<Data>(to)) {}
Conversion::~Conversion() = default;

void Conversion::surveyHeader(const Record& header)
{
    m_data->namedObjects = header.handle("DNAMEDOBJ");
    m_data->paperSpace = header.handle("BRPSPACE");
}

void Conversion::survey(const Record& record)
{
    if (!record.classDef())
        return;
    Data& data = *m_data;
    const std::string_view name = record.classDef()->name();
    if (const FieldId list = ownedListOf(record.fields()); list != FieldId::None)
        surveyOwner(record, list, data);
    else if (name == "XRECORD" && record.version() == Version::Ac1015 && summaryFromRecord(record))
        data.summaries.insert(record.handle());
    else if (name == "VIEWPORT")
        data.viewports.insert(record.handle());
    else if (name == "VIEW")
        data.views[record.handle()] = record.text("name");
    else if (name == "APPID" && record.text("name") == u"ACAD")
        data.acadApplication = record.handle();
    else if (name == "BLOCK_CONTROL")
        surveyEntries(record, data.blocks);
    else if (name == "LTYPE_CONTROL") {
        surveyEntries(record, data.linetypes);
        data.byLayer = record.handle("bylayer");
        data.byBlock = record.handle("byblock");
    } else if (record.version() == Version::Ac1015 && data.to != Version::Ac1015 &&
               (name == "VPENT_HDR" || name == kViewportHeaders))
        data.superseded.insert(record.handle());
    else if (record.version() == Version::Ac1015 && name == kViewportHeaders)
        data.viewportTable = record.handle(); // it has its own already
    else if (record.handle() == data.namedObjects && name == "DICTIONARY") {
        const ArrayView keys = record.array("keys"), values = record.array("values");
        for (std::uint32_t i = 0; i < keys.size(); ++i)
            data.namedEntries[std::u16string(keys.text(i))] = values.handle(i);
        data.summaryRecord = entryOf(record, kSummaryKey);
    }
}

void Conversion::finishSurvey(std::uint64_t& nextHandle)
{
    if (m_data->to == Version::Ac1015) {
        if (m_data->viewportTable == 0)
            addViewportHeaders(*m_data, nextHandle);
    } else if (m_data->summaries.count(m_data->summaryRecord))
        m_data->superseded.insert(m_data->summaryRecord);
}

std::string Conversion::obstacle(const Record& record) const
{
    if (record.version() == m_data->to || !record.classDef())
        return {};
    const Step step{record.version(), m_data->to};
    return hasObstacle(record, step) ? std::string(record.classDef()->name()) : std::string();
}

bool Conversion::isSuperseded(std::uint64_t handle) const
{
    return m_data->superseded.count(handle) != 0;
}

base::Status Conversion::convert(Record& record)
{
    if (record.version() == m_data->to)
        return {};
    const Step step{record.version(), m_data->to};
    if (!record.classDef() || hasObstacle(record, step))
        return {base::Failure::Unsupported,
                base::Reason::DwgRecordInvalid,
                {base::hexText(record.handle())}};
    convertClass(record, step, *m_data);
    convertCommon(record, step, *m_data);
    convertFields(record, step);
    record.setPadding({});
    record.setVersion(step.to);
    return {};
}

const std::vector<Record>& Conversion::additions() const
{
    return m_data->additions;
}

void Conversion::convertHeader(Record& header)
{
    const Step step{header.version(), m_data->to};
    if (step.from == step.to)
        return;
    RecordEditor edit(header);
    const auto named = [&](std::u16string_view key) {
        const auto found = m_data->namedEntries.find(std::u16string(key));
        return found == m_data->namedEntries.end() ? 0 : found->second;
    };
    if (step.reaches(Version::Ac1018)) {
        edit.setHandle("DMATERIAL", named(u"ACAD_MATERIAL"));
        edit.setHandle("DCOLOR", named(u"ACAD_COLOR"));
    }
    if (step.reaches(kWideTexts))
        edit.setHandle("DVISUALSTYLE", named(u"ACAD_VISUALSTYLE"));
    edit.setHandle("VXCTL", m_data->viewportTable);
    const auto paper = viewportsOf(m_data->paperSpace, *m_data);
    edit.setHandle("VPENTHDR", m_data->viewportTable == 0 || paper.empty()
                                   ? 0
                                   : m_data->viewportHeaders[paper.front()]);
    convertFields(header, step);
    header.setVersion(step.to);
}

} // namespace db
