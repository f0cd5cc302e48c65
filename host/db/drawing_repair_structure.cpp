#include <algorithm>

#include "block_names.h"
#include "drawing_repairer.h"

namespace db {

// --- what a drawing must have

void DrawingRepairer::repairRequired()
{
    if (has(DrawingRule::HandleBeyondSeed))
        setHeader("HANDSEED", m_impl.handseed());
    if (has(DrawingRule::TableMissing))
        for (const RequiredTable& table : kRequiredTables)
            if (!isOfClass(m_impl.header().handle(table.variable), table.className))
                setHeader(table.variable, onlyOne([&](const AuditedObject& object) {
                              return object.classDef->name() == table.className;
                          }));
    if (has(DrawingRule::NamedObjectsMissing))
        setHeader("DNAMEDOBJ", onlyOne([](const AuditedObject& object) {
                      return object.owner == 0 && object.classDef->name() == "DICTIONARY";
                  }));
    repairSpace(DrawingRule::ModelSpaceMissing, "model_space", "BRMSPACE", u"*model_space");
    repairSpace(DrawingRule::PaperSpaceMissing, "paper_space", "BRPSPACE", u"*paper_space");
    if (has(DrawingRule::LayerZeroMissing))
        addLayerZero();
    if (has(DrawingRule::LayoutDictionaryMissing))
        repairLayoutDictionary();
}

void DrawingRepairer::repairSpace(DrawingRule rule, const char* field, const char* variable,
                                  std::u16string_view name)
{
    const std::uint64_t table = m_impl.header().handle("BLOCKCTL");
    if (!has(rule) || !isOfClass(table, "BLOCK_CONTROL"))
        return;
    std::uint64_t space = m_impl.header().handle(variable);
    if (!isOfClass(space, "BLOCK_HEADER"))
        space = onlyOne([&](const AuditedObject& object) {
            const auto of = m_audit.m_names.find(object.handle);
            return object.classDef->name() == "BLOCK_HEADER" && m_listers[object.handle].empty() &&
                   of != m_audit.m_names.end() && TvString(of->second).toLower() == TvString(name);
        });
    if (space != 0)
        change(table, [&](RecordEditor edit) { return edit.setHandle(field, space); });
}

void DrawingRepairer::addLayerZero()
{
    const std::uint64_t linetype = m_impl.header().handle("LTCONTINUOUS");
    const TvDbObjectPointer<TvDbLayerTable> layers(
        m_database.symbolTableId(TvDb::SymbolTable::Layer), TvDb::kForWrite);
    if (!layers || !isOfClass(linetype, "LTYPE"))
        return;
    auto layer = std::make_unique<TvDbLayerTableRecord>();
    if (layer->setName(u"0") != TvStatus::Ok || layers->add(layer.get()) != TvStatus::Ok)
        return;
    TvDbLayerTableRecord* added = layer.release(); // the drawing's now
    added->edit().setHandle("ltype", linetype);
    added->close();
    m_hasChanged = true;
}

void DrawingRepairer::repairLayoutDictionary()
{
    std::set<std::uint64_t> candidates;
    for (const OwnedList& list : m_audit.m_lists)
        if (list.kind == ListKind::Dictionary && isOfClass(list.owner, "DICTIONARY") &&
            std::any_of(list.members.begin(), list.members.end(),
                        [&](std::uint64_t each) { return isOfClass(each, "LAYOUT"); }))
            candidates.insert(list.owner);
    const std::uint64_t named = m_impl.header().handle("DNAMEDOBJ");
    if (candidates.size() != 1 || !isOfClass(named, "DICTIONARY"))
        return;
    const std::uint64_t layouts = *candidates.begin();
    setHeader("DLAYOUT", layouts);
    bool isEntry = false;
    change(named, [&](RecordEditor edit) {
        ArrayEditor keys = edit.array("keys"), values = edit.array("values");
        bool isDone = false;
        for (std::uint32_t i = 0; i < keys.size(); ++i) {
            const bool isKey = TvString(keys.text(i)).compareNoCase(u"ACAD_LAYOUT") == 0;
            isEntry |= isKey || values.handle(i) == layouts;
            if (isKey && isMissing(values.handle(i)))
                isDone |= values.setHandle(i, layouts);
            else if (!isKey && values.handle(i) == layouts)
                isDone |= keys.setText(i, u"ACAD_LAYOUT");
        }
        return isDone;
    });
    if (!isEntry)
        addEntries(named, {{layouts, u"ACAD_LAYOUT"}});
}

// --- layouts

void DrawingRepairer::repairLayouts()
{
    for (const auto& [block, layout] : m_audit.m_layoutOfBlock)
        m_claims.emplace(layout, block);
    for (const DrawingRule rule :
         {DrawingRule::LayoutBlockMissing, DrawingRule::LayoutBlockDisagrees})
        for (const std::uint64_t layout : about(rule))
            pairWithBlock(layout);
    for (const std::uint64_t block : about(DrawingRule::BlockLayoutDisagrees))
        if (const Record* record = look(block); record && isMissing(record->handle("layout")))
            change(block, [](RecordEditor edit) { return edit.setHandle("layout", 0); });
    repairLayoutNames();
    if (has(DrawingRule::TabOrderTwice))
        repairTabOrder();
}

/// Layout and block name each other; where one of the two does not, the other is believed, unless
/// a third one is agreed with.
void DrawingRepairer::pairWithBlock(std::uint64_t handle)
{
    const auto layout = m_audit.m_layouts.find(handle);
    if (layout == m_audit.m_layouts.end())
        return;
    const auto [claiming, end] = m_claims.equal_range(handle);
    const auto claims = std::distance(claiming, end);
    if (claims == 1) {
        change(handle, [at = claiming](RecordEditor edit) {
            return edit.setHandle("block_record", at->second);
        });
        return;
    }
    const std::uint64_t block = layout->second.block;
    if (claims > 1 || !isOfClass(block, "BLOCK_HEADER"))
        return;
    const auto other = m_audit.m_layoutOfBlock.find(block);
    const auto agreed = other == m_audit.m_layoutOfBlock.end()
                            ? m_audit.m_layouts.end()
                            : m_audit.m_layouts.find(other->second);
    if (agreed == m_audit.m_layouts.end() || agreed->second.block != block)
        change(block, [&](RecordEditor edit) { return edit.setHandle("layout", handle); });
}

void DrawingRepairer::repairLayoutNames()
{
    const std::uint64_t dictionary = m_database.layoutDictionaryId().handle().value();
    if (!isOfClass(dictionary, "DICTIONARY"))
        return;
    std::map<std::uint64_t, TvString> unlisted;
    for (const std::uint64_t layout : about(DrawingRule::LayoutNotListed))
        if (m_placed.insert(layout).second)
            unlisted.emplace(layout, m_audit.m_layouts.at(layout).name);
    if (!unlisted.empty())
        addEntries(dictionary, unlisted);
    // The key is what a layout is found by.
    std::map<std::uint64_t, TvString> keyOf;
    if (const Record* record = look(dictionary); record && has(DrawingRule::LayoutNameDisagrees)) {
        const ArrayView values = record->array("values"), keys = record->array("keys");
        for (std::uint32_t i = 0; i < values.size(); ++i)
            keyOf.emplace(values.handle(i), TvString(keys.text(i)));
    }
    for (const std::uint64_t handle : about(DrawingRule::LayoutNameDisagrees))
        if (const auto key = keyOf.find(handle); key != keyOf.end())
            change(handle,
                   [&](RecordEditor edit) { return edit.setText("name", key->second.view()); });
}

/// Each its place, in the order in which they stand; the model first.
void DrawingRepairer::repairTabOrder()
{
    std::vector<std::tuple<bool, std::int64_t, std::uint64_t>> order;
    for (const auto& [handle, layout] : m_audit.m_layouts)
        order.emplace_back(layout.block != m_audit.m_modelSpace, layout.tabOrder, handle);
    std::sort(order.begin(), order.end());
    std::int64_t place = -1;
    for (const auto& [isPaper, before, handle] : order) {
        place = std::max(place + 1, before);
        if (place != before && place <= INT16_MAX)
            change(handle,
                   [&, place](RecordEditor edit) { return edit.setInteger("tab_order", place); });
    }
}

} // namespace db
