#include <algorithm>

#include "drawing_auditor.h"

namespace db {

namespace {

/// The data that a drawing keeps of its sheet set, and its entries with their group codes.
constexpr char16_t kSheetData[] = u"AcSheetSetData";
struct SheetDataEntry {
    const char16_t* key;
    int code;
};
constexpr SheetDataEntry kSheetDataEntries[] = {
    {u"LayoutHandle", 1},  {u"LayoutName", 1},   {u"SheetDwgName", 1}, {u"ShSetFileName", 1},
    {u"ShSetVersion", 90}, {u"UpdateCount", 90}, {u"UpdateTime", 1},
};

/// The first item of that group code.
bool hasItem(const Record& record, int code, std::u16string& text)
{
    const ArrayView items = record.structure("content").array("items");
    for (std::uint32_t i = 0; i < items.size(); ++i)
        if (items[i].integer("code") == code) {
            text = items[i].text("text");
            return true;
        }
    return false;
}

} // namespace

void DrawingAuditor::checkRequired()
{
    for (const RequiredTable& table : kRequiredTables)
        if (!isOfClass(m_impl.header().handle(table.variable), table.className))
            add(DrawingRule::TableMissing, AuditSeverity::Error, 0,
                {TvString(std::string_view(table.className))});
    const std::uint64_t layers = m_impl.header().handle("LAYERCTL");
    const bool hasLayerZero =
        std::any_of(m_objects.begin(), m_objects.end(), [&](const AuditedObject& object) {
            return object.listedBy == layers && object.classDef->kind() == ClassKind::Table &&
                   m_names[object.handle] == u"0";
        });
    if (!hasLayerZero)
        add(DrawingRule::LayerZeroMissing, AuditSeverity::Error, 0);
    if (!isOfClass(m_modelSpace, "BLOCK_HEADER"))
        add(DrawingRule::ModelSpaceMissing, AuditSeverity::Error, 0);
    if (!isOfClass(m_paperSpace, "BLOCK_HEADER"))
        add(DrawingRule::PaperSpaceMissing, AuditSeverity::Error, 0);
    if (!isOfClass(m_impl.header().handle("DNAMEDOBJ"), "DICTIONARY"))
        add(DrawingRule::NamedObjectsMissing, AuditSeverity::Error, 0);
}

std::vector<std::pair<TvString, std::uint64_t>> DrawingAuditor::entriesOf(std::uint64_t dictionary)
{
    std::vector<std::pair<TvString, std::uint64_t>> entries;
    const Record* record = lookAgain(dictionary);
    if (!record)
        return entries;
    const ArrayView keys = record->array("keys"), values = record->array("values");
    for (std::uint32_t i = 0; i < keys.size(); ++i)
        entries.emplace_back(TvString(keys.text(i)), values.handle(i));
    return entries;
}

// --- layouts

void DrawingAuditor::checkLayouts()
{
    std::uint64_t modelLayout = 0;
    std::map<std::int64_t, const Layout*> places;
    for (const auto& [handle, layout] : m_layouts) {
        checkBlockOf(layout);
        if (layout.block == m_modelSpace && modelLayout != 0)
            add(DrawingRule::ModelLayoutTwice, AuditSeverity::Error, handle,
                {base::hexText(modelLayout)});
        else if (layout.block == m_modelSpace)
            modelLayout = handle;
        const auto [first, isNew] = places.emplace(layout.tabOrder, &layout);
        if (!isNew)
            add(DrawingRule::TabOrderTwice, AuditSeverity::Note, handle,
                {layout.name, TvString(std::to_string(layout.tabOrder)), first->second->name});
    }
    if (modelLayout == 0)
        add(DrawingRule::ModelLayoutMissing, AuditSeverity::Error, 0);
    for (const auto& [block, layout] : m_layoutOfBlock) {
        const auto named = m_layouts.find(layout);
        if (named == m_layouts.end() || named->second.block != block)
            add(DrawingRule::BlockLayoutDisagrees, AuditSeverity::Error, block,
                {base::hexText(layout)});
    }
    checkLayoutNames();
}

void DrawingAuditor::checkBlockOf(const Layout& layout)
{
    if (!isOfClass(layout.block, "BLOCK_HEADER"))
        return add(DrawingRule::LayoutBlockMissing, AuditSeverity::Error, layout.handle,
                   {layout.name});
    const auto back = m_layoutOfBlock.find(layout.block);
    if (back == m_layoutOfBlock.end() || back->second != layout.handle)
        add(DrawingRule::LayoutBlockDisagrees, AuditSeverity::Error, layout.handle,
            {layout.name, base::hexText(layout.block)});
}

void DrawingAuditor::checkLayoutNames()
{
    const TvDbObjectId dictionary = m_database.layoutDictionaryId();
    if (dictionary.isNull() || !isOfClass(dictionary.handle().value(), "DICTIONARY"))
        return add(DrawingRule::LayoutDictionaryMissing, AuditSeverity::Error, 0);
    std::map<std::uint64_t, TvString> keys;
    for (auto& [key, handle] : entriesOf(dictionary.handle().value()))
        keys.emplace(handle, key);
    for (const auto& [handle, layout] : m_layouts) {
        const auto key = keys.find(handle);
        if (key == keys.end())
            add(DrawingRule::LayoutNotListed, AuditSeverity::Error, handle, {layout.name});
        else if (key->second != layout.name)
            add(DrawingRule::LayoutNameDisagrees, AuditSeverity::Warning, handle,
                {layout.name, key->second});
    }
}

// --- the data of the sheet set

void DrawingAuditor::checkSheetData()
{
    std::uint64_t data = 0;
    for (const auto& [key, handle] : entriesOf(m_impl.header().handle("DNAMEDOBJ")))
        if (key.compareNoCase(kSheetData) == 0)
            data = handle;
    if (!find(data)) // none, or told as a reference that leads nowhere
        return;
    if (!isOfClass(data, "DICTIONARY"))
        return add(DrawingRule::SheetDataNoDictionary, AuditSeverity::Warning, data);
    std::map<TvString, std::uint64_t> entries;
    for (const auto& [key, handle] : entriesOf(data))
        entries.emplace(key.toLower(), handle);
    std::map<std::u16string, std::u16string> texts;
    for (const SheetDataEntry& wanted : kSheetDataEntries) {
        const auto entry = entries.find(TvString(wanted.key).toLower());
        const Record* record = entry == entries.end() ? nullptr : lookAgain(entry->second);
        std::u16string& text = texts[wanted.key];
        if (!record || !hasItem(*record, wanted.code, text))
            add(DrawingRule::SheetDataEntryMissing, AuditSeverity::Warning, data,
                {TvString(wanted.key)});
    }
    checkSheetDataLayout(texts);
}

void DrawingAuditor::checkSheetDataLayout(const std::map<std::u16string, std::u16string>& texts)
{
    const TvString handle(texts.at(u"LayoutHandle"));
    const TvString name(texts.at(u"LayoutName"));
    const bool isThere = std::any_of(m_layouts.begin(), m_layouts.end(), [&](const auto& each) {
        return base::hexText(each.first).compareNoCase(handle) == 0 ||
               each.second.name.compareNoCase(name) == 0;
    });
    if (!isThere)
        add(DrawingRule::SheetDataLayoutGone, AuditSeverity::Warning, 0, {handle, name});
}

} // namespace db
