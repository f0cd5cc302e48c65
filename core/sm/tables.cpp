#include "internals.h"

namespace sm {

namespace {

template <class T>
T& as(TvSmPersist& object)
{
    return static_cast<T&>(object);
}

} // namespace

// The attributes of each class, in the order in which the file has them. Names are forever: add at
// the end of a table, never rename. The handle is not listed: every element of an object that has
// one begins with it.
// clang-format off
struct Internals::Tables {
#define KV_FIELD(Class, member) [](TvSmPersist& o) -> void* { return &as<Class>(o).member; }
#define KV_COMPONENT                                                                              \
    {"name", AttributeKind::Text, KV_FIELD(TvSmComponent, m_name)},                               \
    {"desc", AttributeKind::Text, KV_FIELD(TvSmComponent, m_desc)}
#define KV_SUBSET                                                                                 \
    {"prompt", AttributeKind::Flag, KV_FIELD(TvSmSubset, m_prompt)},                              \
    {"exclude", AttributeKind::Flag, KV_FIELD(TvSmSubset, m_exclude)}
#define KV_FILE_REFERENCE                                                                         \
    {"path", AttributeKind::Text, KV_FIELD(TvSmFileReference, m_path)},                           \
    {"relative", AttributeKind::Text, KV_FIELD(TvSmFileReference, m_relative)}

    static constexpr Attribute kComponent[] = {KV_COMPONENT};
    static constexpr Attribute kSubset[] = {KV_COMPONENT, KV_SUBSET};
    static constexpr Attribute kSheetSet[] = {
        KV_COMPONENT, KV_SUBSET,
        {"text1", AttributeKind::Text, KV_FIELD(TvSmSheetSet, m_texts[0])},
        {"text2", AttributeKind::Text, KV_FIELD(TvSmSheetSet, m_texts[1])},
        {"text3", AttributeKind::Text, KV_FIELD(TvSmSheetSet, m_texts[2])},
        {"text4", AttributeKind::Text, KV_FIELD(TvSmSheetSet, m_texts[3])},
    };
    static constexpr Attribute kSheet[] = {
        {"number", AttributeKind::Text, KV_FIELD(TvSmSheet, m_number)},
        {"title", AttributeKind::Text, KV_FIELD(TvSmSheet, m_title)},
        KV_COMPONENT,
        {"exclude", AttributeKind::Flag, KV_FIELD(TvSmSheet, m_exclude)},
        {"text1", AttributeKind::Text, KV_FIELD(TvSmSheet, m_texts[0])},
        {"text2", AttributeKind::Text, KV_FIELD(TvSmSheet, m_texts[1])},
        {"text3", AttributeKind::Text, KV_FIELD(TvSmSheet, m_texts[2])},
        {"text4", AttributeKind::Text, KV_FIELD(TvSmSheet, m_texts[3])},
    };
    static constexpr Attribute kSheetView[] = {
        {"number", AttributeKind::Text, KV_FIELD(TvSmSheetView, m_number)},
        {"title", AttributeKind::Text, KV_FIELD(TvSmSheetView, m_title)},
        KV_COMPONENT,
        {"category", AttributeKind::Handle, KV_FIELD(TvSmSheetView, m_category)},
    };
    static constexpr Attribute kViewCategory[] = {
        KV_COMPONENT,
        {"default", AttributeKind::Flag, KV_FIELD(TvSmViewCategory, m_isDefault)},
    };
    static constexpr Attribute kPublishOptions[] = {
        KV_COMPONENT,
        {"dwfType", AttributeKind::Flag, KV_FIELD(TvSmPublishOptions, m_dwfType)},
        {"format", AttributeKind::Long, KV_FIELD(TvSmPublishOptions, m_format)},
        {"promptForName", AttributeKind::Flag, KV_FIELD(TvSmPublishOptions, m_promptForName)},
        {"fileName", AttributeKind::Text, KV_FIELD(TvSmPublishOptions, m_fileName)},
        {"layerInfo", AttributeKind::Flag, KV_FIELD(TvSmPublishOptions, m_layerInfo)},
        {"linesMerge", AttributeKind::Flag, KV_FIELD(TvSmPublishOptions, m_linesMerge)},
        {"sheetData", AttributeKind::Flag, KV_FIELD(TvSmPublishOptions, m_sheetData)},
        {"sheetSetData", AttributeKind::Flag, KV_FIELD(TvSmPublishOptions, m_sheetSetData)},
    };
    static constexpr Attribute kFileReference[] = {KV_FILE_REFERENCE};
    static constexpr Attribute kDbObjectReference[] = {
        KV_FILE_REFERENCE,
        {"object", AttributeKind::Text, KV_FIELD(TvSmDbObjectReference, m_objectHandle)},
        {"objectName", AttributeKind::Text, KV_FIELD(TvSmDbObjectReference, m_objectName)},
    };
    // The text of a value; a number stands there with a type beside it.
    static constexpr Attribute kPropertyValue[] = {
        {"name", AttributeKind::Text, KV_FIELD(TvSmCustomPropertyValue, m_name)},
        {"flags", AttributeKind::Word, KV_FIELD(TvSmCustomPropertyValue, m_flags)},
        {"marks", AttributeKind::Word, KV_FIELD(TvSmCustomPropertyValue, m_marks)},
        {"value", AttributeKind::Text, KV_FIELD(TvSmCustomPropertyValue, m_text)},
    };
#undef KV_FIELD
#undef KV_COMPONENT
#undef KV_SUBSET
#undef KV_FILE_REFERENCE
};
// clang-format on

std::span<const Attribute> Internals::attributesOf(const TvSmPersist& object)
{
    return attributesOf(object.isA());
}

std::span<const Attribute> Internals::attributesOf(const TvRxClass* type)
{
    if (type == TvSmSheet::desc())
        return Tables::kSheet;
    if (type == TvSmCustomPropertyValue::desc())
        return Tables::kPropertyValue;
    if (type->isDerivedFrom(TvSmDbObjectReference::desc()))
        return Tables::kDbObjectReference;
    if (type == TvSmFileReference::desc())
        return Tables::kFileReference;
    if (type == TvSmSheetView::desc())
        return Tables::kSheetView;
    if (type == TvSmSubset::desc())
        return Tables::kSubset;
    if (type == TvSmViewCategory::desc())
        return Tables::kViewCategory;
    if (type == TvSmPublishOptions::desc())
        return Tables::kPublishOptions;
    if (type == TvSmSheetSet::desc())
        return Tables::kSheetSet;
    if (type->isDerivedFrom(TvSmComponent::desc()))
        return Tables::kComponent;
    return {};
}

namespace {

void resetAttribute(const Attribute& row, TvSmPersist& object)
{
    void* field = row.field(object);
    switch (row.kind) {
    case AttributeKind::Text: static_cast<StoredText*>(field)->clear(); break;
    case AttributeKind::Flag: *static_cast<bool*>(field) = false; break;
    case AttributeKind::Word: *static_cast<std::uint16_t*>(field) = 0; break;
    case AttributeKind::Long: *static_cast<long*>(field) = 0; break;
    case AttributeKind::Handle: *static_cast<std::uint64_t*>(field) = 0; break;
    }
}

} // namespace

void Internals::reset(TvSmPersist& object)
{
    for (const Attribute& row : attributesOf(object))
        resetAttribute(row, object);
    object.m_extras.reset();
    object.m_wasRead = false;
    if (auto* component = tvrxCast<TvSmComponent>(&object)) {
        forgetSiblings(*component);
        if (hasBag(*component))
            entries(bagOf(*component)).clear();
    }
    if (auto* value = tvrxCast<TvSmCustomPropertyValue>(&object)) {
        value->m_number = 0;
        value->m_type = TvVariant::kEmpty;
    }
    if (auto* reference = tvrxCast<TvSmFileReference>(&object))
        dropResolved(*reference);
    if (auto* sheet = tvrxCast<TvSmSheet>(&object)) {
        sheet->m_layout = nullptr;
        if (hasViews(*sheet))
            resetPart(viewsOf(*sheet));
    }
    if (auto* view = tvrxCast<TvSmSheetView>(&object)) {
        view->m_reference = nullptr;
    }
    if (auto* category = tvrxCast<TvSmViewCategory>(&object))
        if (hasCallouts(*category))
            resetPart(calloutsOf(*category));
    if (auto* selection = tvrxCast<TvSmSheetSelection>(&object))
        selection->m_members.clear();
    if (auto* options = tvrxCast<TvSmPublishOptions>(&object))
        options->m_outputFolder = nullptr;
    if (auto* subset = tvrxCast<TvSmSubset>(&object)) {
        subset->m_location = nullptr;
        subset->m_template = nullptr;
        forgetChildren(*subset);
    }
    if (auto* set = tvrxCast<TvSmSheetSet>(&object)) {
        set->m_altPageSetups = nullptr;
        set->m_labelBlock = nullptr;
        resetPart(set->m_selections);
        resetPart(set->m_resources);
        resetPart(set->m_callouts);
        resetPart(set->m_categories);
        reset(set->m_publishOptions);
    }
}

template <class Container>
void Internals::resetPart(Container& container)
{
    reset(container);
    entries(container).clear();
}

void Internals::ownTexts(TvSmPersist& object)
{
    for (const Attribute& row : attributesOf(object))
        if (row.kind == AttributeKind::Text)
            static_cast<StoredText*>(row.field(object))->own();
    if (auto* sheet = tvrxCast<TvSmSheet>(&object))
        if (hasViews(*sheet))
            ownTexts(viewsOf(*sheet));
}

} // namespace sm
