#include "looks.h"

#include <db/palette.h>
#include <db/resbuf.h>
#include <db/tv_db_database.h>
#include <db/tv_db_symbol_table.h>

namespace gs {

namespace {

constexpr float kDefaultWeightMm = 0.25f;
constexpr int kForegroundIndex = 7;

// The high byte of a colour's value.
enum : std::uint32_t { kByLayer = 0xC0, kByBlock = 0xC1, kTrue = 0xC2, kIndexed = 0xC3 };
// "flags" of an entity's colour.
enum : std::int64_t { kIndexMask = 0x1FF, kHasRgb = 0x8000, kHasBook = 0x4000, kHasAlpha = 0x2000 };
// "ltype_flags"
enum : std::int64_t { kTypeByLayer = 0, kTypeByBlock = 1, kTypeContinuous = 2 };
// "flags" of a layer
enum : std::int64_t { kFrozen = 1, kOff = 2 };
constexpr std::uint32_t kAlphaGiven = 2, kAlphaByBlock = 1; // high byte of a transparency

constexpr const char* kKeepsLayers = "VISRETAIN"; // how layers of references look
bool isOfReference(const TvString& layer)
{
    return layer.view().find(u'|') != std::u16string_view::npos;
}

/// nullopt unless it is given here.
std::optional<std::uint8_t> givenAlpha(std::int64_t transparency)
{
    const auto bits = static_cast<std::uint32_t>(transparency);
    if (bits >> 24 != kAlphaGiven)
        return std::nullopt;
    return static_cast<std::uint8_t>(bits & 0xFF);
}

std::uint8_t alphaOfLayer(const TvDbObject& layer)
{
    constexpr int kLongCode = 1071;
    const TvResbufPtr items(layer.xData(TvString(u"AcCmTransparency")));
    for (const resbuf* item = items.get(); item; item = item->rbnext)
        if (item->restype == kLongCode)
            return givenAlpha(item->resval.rlong).value_or(255);
    return 255;
}

StoredColor ownColor(const db::Record& entity, const LookFields& fields, std::int64_t flags)
{
    if ((flags & kHasRgb) != 0 && (flags & kHasBook) == 0)
        return {StoredColor::Kind::Given,
                Color::given(static_cast<std::uint32_t>(fields.rgb.integer(entity)) & 0xFFFFFF)};
    return StoredColor::ofIndex(flags & kIndexMask);
}

} // namespace

LookFields::LookFields(const db::ClassDef& of)
{
    using db::Storage;
    const db::StructDef& all = of.layout();
    invisible = {all, "invisible", Storage::Integer};
    layer = {all, "layer", Storage::Handle};
    book = {all, "color_ref", Storage::Handle};
    weight = {all, "lineweight", Storage::Integer};
    typeFlags = {all, "ltype_flags", Storage::Integer};
    type = {all, "ltype", Storage::Handle};
    typeScale = {all, "ltype_scale", Storage::Real};
    const db::FieldDef* const color = all.find(db::fieldId("color"));
    if (!color || color->storage != Storage::Struct)
        return;
    colorFlags = {*color->structure, "flags", Storage::Integer, color->slot};
    rgb = {*color->structure, "rgb", Storage::Integer, color->slot};
    transparency = {*color->structure, "transparency", Storage::Integer, color->slot};
}

StoredColor StoredColor::ofIndex(std::int64_t index)
{
    if (index == 0)
        return {Kind::ByBlock, {}};
    if (index == 256)
        return {Kind::ByLayer, {}};
    if (index < 0 || index > 256)
        return {Kind::None, {}};
    if (index == kForegroundIndex)
        return {Kind::Given, Color::foreground()};
    return {Kind::Given, Color::given(db::paletteColor(static_cast<int>(index)))};
}

StoredColor StoredColor::of(const db::RecordView& color, db::Version version)
{
    const auto value = static_cast<std::uint32_t>(color.integer("value"));
    // Old records have the index alone; a few of them the long form, as later ones do.
    if (version == db::Version::Ac1015 && value == kByLayer << 24)
        return ofIndex(color.integer("index"));
    switch (value >> 24) {
    case kByLayer: return {Kind::ByLayer, {}};
    case kByBlock: return {Kind::ByBlock, {}};
    case kTrue: return {Kind::Given, Color::given(value & 0xFFFFFF)};
    case kIndexed: return ofIndex(value & 0xFF);
    default: return {Kind::None, {}};
    }
}

float weightOfValue(std::int64_t value)
{
    switch (value) {
    case -1: return kWeightByLayer;
    case -2: return kWeightByBlock;
    case -3: return kWeightDefault;
    default: return value < 0 || value > 1000 ? kWeightDefault : static_cast<float>(value) / 100;
    }
}

float weightOfCode(std::int64_t code)
{
    constexpr int kValues[] = {0,  5,  9,  13, 15, 18,  20,  25,  30,  35,  40,  50,
                               53, 60, 70, 80, 90, 100, 106, 120, 140, 158, 200, 211};
    if (code >= 0 && code < static_cast<std::int64_t>(std::size(kValues)))
        return weightOfValue(kValues[code]);
    return code == 29 ? kWeightByLayer : code == 30 ? kWeightByBlock : kWeightDefault;
}

Looks::Looks(TvDbDatabase& database, ListWriter& writer)
    : m_layers(m_own), m_database(database), m_plotStyles(database, writer)
{
    readLinetypes();
    const TvDbObjectPointer<TvDbLayerTable> table(database.symbolTableId(TvDb::SymbolTable::Layer),
                                                  TvDb::kForNotify);
    if (table)
        for (const TvDbObjectId id : table->recordIds()) {
            const TvDbObjectPointer<TvDbLayerTableRecord> record(id, TvDb::kForNotify);
            if (record)
                addLayer(writer, *record, record->getName());
        }
    if (m_layers.empty()) {
        LayerLook& only = m_layers.emplace_back();
        only.isZero = true;
        only.look.weightMm = kDefaultWeightMm;
        writer.addLayer({TvString(u"0"), 0, true});
    }
}

Looks::Looks(TvDbDatabase& database, ListWriter& writer, Looks& host, const TvString& name)
    : m_layers(host.m_layers), m_host(host.m_host ? host.m_host : &host), m_zero(m_host->m_zero),
      m_database(database)
{
    readLinetypes();
    m_host->nameLayers(writer);
    const bool keeps = database.headerRecord().flag(kKeepsLayers);
    const TvDbObjectPointer<TvDbLayerTable> table(database.symbolTableId(TvDb::SymbolTable::Layer),
                                                  TvDb::kForNotify);
    if (!table)
        return;
    for (const TvDbObjectId id : table->recordIds()) {
        const TvDbObjectPointer<TvDbLayerTableRecord> record(id, TvDb::kForNotify);
        const TvString own = record ? record->getName() : TvString();
        if (own.isEmpty() || own == TvString(u"0"))
            continue; // that of the host
        // What it took from a reference of its own has that one's name already.
        const bool isTaken = isOfReference(own);
        const TvString full = isTaken ? own : name + u"|" + own;
        const auto known = m_host->m_byName.find(full.toLower());
        if (known != m_host->m_byName.end())
            m_byHandle.emplace(id.handle().value(), known->second);
        else if (const std::uint32_t layer = addLayer(writer, *record, full); keeps || !isTaken)
            m_host->m_byName.emplace(full.toLower(), layer);
    }
}

/// What its references' layers look like, this drawing decides only where it keeps them.
void Looks::nameLayers(const ListWriter& writer)
{
    if (!m_byName.empty())
        return;
    const bool keeps = m_database.headerRecord().flag(kKeepsLayers);
    for (std::uint32_t i = 0; i < m_layers.size(); ++i)
        if (const TvString& name = writer.layers()[i].name; keeps || !isOfReference(name))
            m_byName.emplace(name.toLower(), i);
}

void Looks::readLinetypes()
{
    const db::Record& header = m_database.headerRecord();
    m_byLayer = header.handle("LTBYLAYER");
    m_byBlock = header.handle("LTBYBLOCK");
    m_continuous = header.handle("LTCONTINUOUS");
}

std::uint32_t Looks::addLayer(ListWriter& writer, const TvDbLayerTableRecord& record,
                              const TvString& name)
{
    const std::uint64_t handle = record.objectId().handle().value();
    LayerLook& layer = m_layers.emplace_back();
    layer.look = lookOfLayer(record.objectId());
    layer.isOff = record.isOff();
    layer.isFrozen = record.isFrozen();
    layer.isZero = name == TvString(u"0");
    layer.look.layer = writer.addLayer({name, m_host ? 0 : handle, record.isPlottable()});
    m_byHandle.emplace(handle, layer.look.layer);
    if (layer.isZero)
        m_zero = layer.look.layer;
    return layer.look.layer;
}

Look Looks::lookOfLayer(TvDbObjectId id) const
{
    Look look;
    const TvDbObjectPointer<TvDbLayerTableRecord> layer(id, TvDb::kForNotify);
    if (!layer)
        return look;
    const db::RecordView fields = layer->fields();
    // A colour of a book keeps the colour itself, too.
    look.color = StoredColor::of(fields.structure("color"), layer->record().version())
                     .within(Color::foreground());
    const float weight = weightOfCode(fields.integer("flags") >> 5 & 31);
    look.weightMm = weight < 0 ? kDefaultWeightMm : weight;
    look.alpha = alphaOfLayer(*layer);
    look.plotStyle = m_plotStyles.number(fields.handle("plotstyle"));
    const std::uint64_t type = fields.handle("ltype");
    if (type != 0 && type != m_continuous && type != m_byLayer && type != m_byBlock)
        look.linetype = m_database.find(type);
    return look;
}

const Looks::LayerLook& Looks::layer(std::uint64_t handle) const
{
    if (handle != m_lastHandle || handle == 0) {
        const auto at = m_byHandle.find(handle);
        m_last = at == m_byHandle.end() ? m_zero : at->second;
        m_lastHandle = handle;
    }
    return m_layers[m_last];
}

Look Looks::resolve(const db::Record& entity, const LookFields& fields, const Look* by) const
{
    const LayerLook* own = &layer(fields.layer.handle(entity));
    if (own->isZero && by)
        own = &m_layers[by->layer];
    Look look = own->look;
    const std::int64_t colorFlags = fields.colorFlags.integer(entity);
    StoredColor color = ownColor(entity, fields, colorFlags);
    if ((colorFlags & kHasBook) != 0)
        if (const TvDbObjectPointer<TvDbObject> book(m_database.find(fields.book.handle(entity)),
                                                     TvDb::kForNotify);
            book)
            color = StoredColor::of(book->fields().structure("color"), book->record().version());
    if (color.kind == StoredColor::Kind::ByBlock)
        look.color = by ? by->color : Color::foreground();
    else
        look.color = color.within(look.color);

    if ((colorFlags & kHasAlpha) != 0) {
        const std::int64_t transparency = fields.transparency.integer(entity);
        if (const auto given = givenAlpha(transparency); given)
            look.alpha = *given;
        else if (static_cast<std::uint32_t>(transparency) >> 24 == kAlphaByBlock)
            look.alpha = by ? by->alpha : 255;
    }
    const float weight = weightOfCode(fields.weight.integer(entity));
    if (weight >= 0)
        look.weightMm = weight;
    else if (weight == kWeightByBlock)
        look.weightMm = by ? by->weightMm : kDefaultWeightMm;
    else if (weight == kWeightDefault)
        look.weightMm = kDefaultWeightMm;

    const std::int64_t type = fields.typeFlags.integer(entity);
    if (type == kTypeContinuous)
        look.linetype.setNull();
    else if (type == kTypeByBlock)
        look.linetype = by ? by->linetype : TvDbObjectId();
    else if (type != kTypeByLayer)
        look.linetype = m_database.find(fields.type.handle(entity));
    look.linetypeScale = fields.typeScale.real(entity);
    if (!m_plotStyles.isEmpty())
        look.plotStyle =
            m_plotStyles.ofEntity(entity.fields(), look.plotStyle, by ? by->plotStyle : 0);
    return look;
}

} // namespace gs
