#include <algorithm>
#include <map>
#include <mutex>
#include <set>
#include <span>
#include <stdexcept>
#include <string>

#include "form.h"
#include "form_text.h"
#include "hooks.h"

namespace dxf {

namespace {

[[noreturn]] void formError(const db::ClassDef& classDef, std::string_view what)
{
    throw std::logic_error(std::string(classDef.name()) + ": " + std::string(what));
}

Convert convertNamed(std::string_view name)
{
    if (name.empty())
        return Convert::None;
    if (name == "color")
        return Convert::Color;
    if (name == "index")
        return Convert::PlainColor;
    if (name == "color32")
        return Convert::WideColor;
    return name == "lineweight" ? Convert::Lineweight : Convert::Name;
}

bool isColor(const db::FieldDef& field)
{
    return field.structure && (field.structure->name == "CMC" || field.structure->name == "TC");
}

// Points have their y ten codes on, pairs of numbers one.
std::uint8_t strideOf(int code)
{
    const bool isPoint =
        (code >= 10 && code < 20) || (code >= 110 && code < 120) || (code >= 210 && code < 220);
    return isPoint ? 10 : 1;
}

/// A range of a program's ops, all at one frame.
struct OpRange {
    const db::Program* program;
    std::uint32_t from, to;
};

/// Where a name leads from a struct: a field, and its slot in the frame.
struct Place {
    const db::FieldDef* field = nullptr;
    const db::StructDef* def = nullptr; // that holds it
    std::uint32_t base = 0;             // of that struct in the frame
    std::uint32_t slot() const { return base + field->slot; }
};

Place findPlace(const db::StructDef& def, std::string_view path, std::uint32_t base = 0)
{
    const auto dot = path.find('.');
    const db::FieldDef* field = def.find(db::fieldId(path.substr(0, dot)));
    if (!field || dot == path.npos)
        return {field, &def, base};
    if (field->storage != db::Storage::Struct)
        return {};
    return findPlace(*field->structure, path.substr(dot + 1), base + field->slot);
}

/// The field of a struct that covers a slot of the frame.
Place fieldAt(const db::StructDef& def, std::uint32_t slot, std::uint32_t base = 0)
{
    for (const db::FieldDef& field : def.fields) {
        const std::uint32_t begin = base + field.slot;
        const std::uint32_t size =
            field.storage == db::Storage::Struct ? field.structure->size() : field.width;
        if (slot < begin || slot >= begin + size)
            continue;
        if (field.storage == db::Storage::Struct && !isColor(field))
            return fieldAt(*field.structure, slot, begin);
        return {&field, &def, base};
    }
    return {};
}

// What files tell in ways of their own, or not completely: it stays groups.
constexpr std::string_view kWithoutForm[] = {
    "PROXY_OBJECT",
    "PROXY_ENTITY",
    "VPENT_HDR",
};

// From 2013 on bodies lie in a section of their own.
constexpr std::string_view kBodies[] = {"REGION", "3DSOLID", "BODY"};

bool isListed(std::span<const std::string_view> names, const db::ClassDef& classDef)
{
    return std::find(names.begin(), names.end(), classDef.name()) != names.end();
}

class FormCompiler
{
public:
    FormCompiler(const db::ClassDef& classDef, db::Version version, Form& form)
        : m_class(classDef), m_program(classDef.program(version)), m_form(form)
    {
    }

    void compile()
    {
        const OpRange all{&m_program, 0, static_cast<std::uint32_t>(m_program.ops.size())};
        if (m_class.isEntity())
            addLines(*formLines("ENTITY"), all);
        const auto* lines = formLines(m_class.name());
        if (m_class.name().starts_with("RAW_")) {
            // Only what all objects have in common is known of it.
        } else if (lines) {
            addLines(*lines, all);
        } else {
            beginSegment(100, m_class.marker());
            deriveRest(m_form.segments.back().scope, m_class.layout(), all, 0);
        }
        dropLeftOut();
        for (Segment& segment : m_form.segments)
            index(segment.scope);
        m_form.fillsArrays = hasFixedArrays(m_class.layout());
        for (const db::Op& op : m_program.ops)
            m_form.hasConditions |= op.code >= db::OpCode::Jump;
    }

private:
    void beginSegment(int code, std::string_view marker)
    {
        Segment segment{.marker = marker, .markerCode = code};
        segment.scope.def = &m_class.layout();
        m_form.segments.push_back(std::move(segment));
        m_hasLines.push_back(false);
    }

    // A part of which this version has nothing has no marker either.
    void dropLeftOut()
    {
        std::size_t at = 0;
        std::erase_if(m_form.segments, [&](const Segment& segment) {
            return m_hasLines[at++] && segment.scope.items.empty();
        });
    }

    void addLines(const std::vector<FormLine>& lines, const OpRange& ops)
    {
        for (const FormLine& line : lines) {
            if (line.kind == FormLine::Kind::Marker) {
                beginSegment(line.code, line.target);
                continue;
            }
            if (m_form.segments.empty())
                beginSegment(100, {});
            m_hasLines.back() = true;
            addLine(m_form.segments.back().scope, line, m_class.layout(), ops, 0);
        }
    }

    // Adds to @p scope what a line says about the struct at @p base of its frame. Fields that this
    // version does not store are left out.
    void addLine(Scope& scope, const FormLine& line, const db::StructDef& def, const OpRange& ops,
                 std::uint32_t base)
    {
        Item item;
        item.code = static_cast<std::int16_t>(line.code);
        item.isOptional = line.isOptional;
        item.isAlias = line.isAlias;
        item.addsIndex = line.addsIndex != 0;
        item.text = line.target;
        switch (line.kind) {
        case FormLine::Kind::Constant: item.kind = Item::Kind::Constant; break;
        case FormLine::Kind::Ignored: item.kind = Item::Kind::Ignored; break;
        case FormLine::Kind::Hook:
            item.kind = Item::Kind::Hook;
            item.holder = &def;
            item.holderBase = base;
            addHook(scope, std::move(item), line);
            return;
        case FormLine::Kind::Bits: return addBits(scope, std::move(item), line, def, ops, base);
        case FormLine::Kind::Zip: return addZip(scope, line, def, ops, base);
        case FormLine::Kind::Derived: return deriveRest(scope, def, ops, base);
        case FormLine::Kind::In: return addStruct(scope, std::move(item), line, def, ops, base);
        default: return addNamed(scope, std::move(item), line, def, ops, base);
        }
        scope.items.push_back(std::move(item));
    }

    void addHook(Scope& scope, Item item, const FormLine& line)
    {
        item.hook = hookNamed(line.target);
        if (!item.hook)
            formError(m_class, line.target);
        const auto at = static_cast<std::uint16_t>(scope.items.size());
        scope.items.push_back(std::move(item));
        if (line.codes.empty())
            scope.wildcard = static_cast<std::uint16_t>(at + 1);
        for (const int code : line.codes)
            addTarget(scope, code, at, 0);
    }

    void addBits(Scope& scope, Item item, const FormLine& line, const db::StructDef& def,
                 const OpRange& ops, std::uint32_t base)
    {
        item.kind = Item::Kind::Bits;
        for (const FormLine::Bit& bit : line.bits) {
            const Place place = placeOf(def, bit.field, base);
            if (isStored(ops, place))
                item.bits.push_back({place.slot(), bit.value});
            claim(place);
        }
        scope.items.push_back(std::move(item));
    }

    void addZip(Scope& scope, const FormLine& line, const db::StructDef& def, const OpRange& ops,
                std::uint32_t base)
    {
        Item item;
        item.kind = Item::Kind::Zip;
        item.scope = std::make_unique<Scope>();
        item.scope->def = scope.def;
        for (const FormLine& inner : line.inner)
            addLine(*item.scope, inner, def, ops, base);
        scope.items.push_back(std::move(item));
    }

    // Behind a group that opens it, it is a scope of its own; else its fields are of this scope.
    void addStruct(Scope& scope, Item item, const FormLine& line, const db::StructDef& def,
                   const OpRange& ops, std::uint32_t base)
    {
        const Place place = placeOf(def, line.target, base);
        if (!line.code) {
            for (const FormLine& inner : line.inner)
                addLine(scope, inner, *place.field->structure, ops, place.slot());
            return;
        }
        item.kind = Item::Kind::In;
        brace(item, line);
        item.scope = std::make_unique<Scope>();
        item.scope->def = scope.def;
        for (const FormLine& inner : line.inner)
            addLine(*item.scope, inner, *place.field->structure, ops, place.slot());
        scope.items.push_back(std::move(item));
    }

    static void brace(Item& item, const FormLine& line)
    {
        item.text = line.convert;
        item.closing = line.closing;
        item.closingCode = static_cast<std::int16_t>(line.closingCode);
    }

    void addNamed(Scope& scope, Item item, const FormLine& line, const db::StructDef& def,
                  const OpRange& ops, std::uint32_t base)
    {
        const Place place = placeOf(def, line.target, base);
        claim(place);
        if (!isStored(ops, place))
            return;
        setPlace(item, place);
        if (!line.elevation.empty()) {
            const Place z = placeOf(def, line.elevation, base);
            claim(z);
            item.elevation = static_cast<std::int32_t>(z.slot());
        }
        if (line.kind == FormLine::Kind::List)
            return addList(scope, std::move(item), line, place, ops);
        item.kind = line.kind == FormLine::Kind::Count ? Item::Kind::Count : Item::Kind::Field;
        item.convert = convertNamed(line.convert);
        if (item.convert == Convert::Name) {
            item.table = tableNamed(line.convert);
            if (item.table == Table::None)
                formError(m_class, line.convert);
        }
        describe(item, place, ops);
        scope.items.push_back(std::move(item));
    }

    static void setPlace(Item& item, const Place& place)
    {
        item.field = place.field;
        item.holder = place.def;
        item.holderBase = place.base;
        item.slot = place.slot();
    }

    // What the record and the table say about a plain field.
    void describe(Item& item, const Place& place, const OpRange& ops)
    {
        const db::FieldDef& field = *place.field;
        const bool isArray = field.storage == db::Storage::Array;
        if (isArray && item.kind == Item::Kind::Field)
            item.kind = Item::Kind::Array;
        if (isColor(field) && item.convert == Convert::None)
            item.convert = Convert::Color;
        const auto storage = isArray ? field.element : field.storage;
        if (storage == db::Storage::Real) {
            const bool hasElevation = item.elevation >= 0;
            item.components = static_cast<std::uint8_t>(field.width + (hasElevation ? 1 : 0));
            item.stride = strideOf(item.code);
        }
        if (storage == db::Storage::Integer)
            item.op = integerOp(ops, place);
    }

    void addList(Scope& scope, Item item, const FormLine& line, const Place& place,
                 const OpRange& ops)
    {
        item.kind = Item::Kind::List;
        if (line.closingCode)
            brace(item, line);
        const db::StructDef& element = *place.field->structure;
        item.scope = std::make_unique<Scope>();
        item.scope->def = &element;
        const OpRange body = bodyOf(ops, place.slot());
        const auto outer = std::exchange(m_claimed, {});
        for (const FormLine& inner : line.inner)
            addLine(*item.scope, inner, element, body, 0);
        m_claimed = outer;
        index(*item.scope);
        scope.items.push_back(std::move(item));
    }

    // ---- what no line names

    // Every field with a group code, in the order of the table.
    void deriveRest(Scope& scope, const db::StructDef& def, const OpRange& ops, std::uint32_t base)
    {
        for (std::uint32_t at = ops.from; at < ops.to;) {
            const db::Op& op = ops.program->ops[at];
            const bool isLoop = op.code == db::OpCode::Loop;
            if (op.code < db::OpCode::Jump && op.slot >= base) {
                const Place place = fieldAt(def, op.slot, base);
                if (place.field && !m_claimed.contains(place.slot()))
                    deriveField(scope, place, ops, isLoop ? at : ops.to);
            }
            at = isLoop ? op.b : at + 1;
        }
    }

    void deriveField(Scope& scope, const Place& place, const OpRange& ops, std::uint32_t loop)
    {
        const db::FieldDef& field = *place.field;
        if (isCommonField(place))
            return;
        claim(place);
        Item item;
        setPlace(item, place);
        item.code = field.dxf;
        if (loop != ops.to && field.structure && !isColor(field)) {
            item.kind = Item::Kind::List;
            item.code = 0;
            item.scope = std::make_unique<Scope>();
            item.scope->def = field.structure;
            const auto outer = std::exchange(m_claimed, {});
            deriveRest(*item.scope, *field.structure,
                       {ops.program, loop + 1, ops.program->ops[loop].b}, 0);
            m_claimed = outer;
            index(*item.scope);
            if (!item.scope->items.empty())
                scope.items.push_back(std::move(item));
            return;
        }
        if (field.dxf < 0)
            return;
        item.kind = isCount(place) ? Item::Kind::Count : Item::Kind::Field;
        if (item.kind == Item::Kind::Count) {
            const db::FieldDef* counted = countedBy(place);
            setPlace(item, {counted, place.def, place.base});
        } else {
            describe(item, place, ops);
        }
        scope.items.push_back(std::move(item));
    }

    static const db::FieldDef* countedBy(const Place& place)
    {
        for (const db::FieldDef& field : place.def->fields)
            if (field.count == place.field->id && field.storage == db::Storage::Array)
                return &field;
        return nullptr;
    }
    static bool isCount(const Place& place) { return countedBy(place) != nullptr; }

    // The part that all objects begin with is told outside of forms.
    bool isCommonField(const Place& place) const
    {
        if (place.def != &m_class.layout())
            return false;
        const auto& fields = m_class.layout().fields;
        const db::StructDef& raw =
            db::classNamed(m_class.isEntity() ? "RAW_ENTITY" : "RAW_OBJECT")->layout();
        const auto index = static_cast<std::size_t>(place.field - fields.data());
        return index < raw.fields.size() && raw.fields[index].id == place.field->id &&
               place.field->id != db::fieldId("data");
    }

    // ---- tables and programs

    Place placeOf(const db::StructDef& def, std::string_view path, std::uint32_t base) const
    {
        const Place place = findPlace(def, path, base);
        if (!place.field)
            formError(m_class, path);
        return place;
    }

    // Taken by slot: a field of a struct may be there several times.
    void claim(const Place& place) { m_claimed.insert(place.slot()); }

    bool isStored(const OpRange& ops, const Place& place) const
    {
        const std::uint32_t begin = place.slot();
        const std::uint32_t size = place.field->storage == db::Storage::Struct
                                       ? place.field->structure->size()
                                       : place.field->width;
        for (std::uint32_t at = ops.from; at < ops.to;) {
            const db::Op& op = ops.program->ops[at];
            if (op.code < db::OpCode::Jump && op.slot >= begin && op.slot < begin + size)
                return true;
            at = op.code == db::OpCode::Loop ? op.b : at + 1;
        }
        return false;
    }

    static OpRange bodyOf(const OpRange& ops, std::uint32_t slot)
    {
        for (std::uint32_t at = ops.from; at < ops.to;) {
            const db::Op& op = ops.program->ops[at];
            const bool isLoop = op.code == db::OpCode::Loop;
            if (isLoop && op.slot == slot)
                return {ops.program, at + 1, op.b};
            at = isLoop ? op.b : at + 1;
        }
        return {ops.program, 0, 0};
    }

    static db::OpCode integerOp(const OpRange& ops, const Place& place)
    {
        for (std::uint32_t at = ops.from; at < ops.to;) {
            const db::Op& op = ops.program->ops[at];
            const bool isLoop = op.code == db::OpCode::Loop;
            if (op.slot == place.slot() && op.code < db::OpCode::Jump)
                return isLoop ? ops.program->ops[at + 1].code : op.code;
            at = isLoop ? op.b : at + 1;
        }
        return db::OpCode::BitLong;
    }

    static bool hasFixedArrays(const db::StructDef& def)
    {
        return std::any_of(def.fields.begin(), def.fields.end(), [](const db::FieldDef& field) {
            return field.fixedCount != 0 ||
                   (field.storage == db::Storage::Struct && hasFixedArrays(*field.structure));
        });
    }

    // ---- ways from codes to items

    void index(Scope& scope)
    {
        if (!scope.items.empty() && scope.def != &m_class.layout())
            scope.firstCode = firstCode(scope);
        for (std::uint16_t at = 0; at < scope.items.size(); ++at)
            indexItem(scope, at);
        std::uint8_t counters = 0;
        for (Item& item : scope.items)
            if (item.field && item.field->fixedCount != 0)
                item.counter = counters++;
        if (counters > kMaxCounters)
            formError(m_class, "too many arrays of fixed length");
    }

    void indexItem(Scope& scope, std::uint16_t at)
    {
        const Item& item = scope.items[at];
        switch (item.kind) {
        case Item::Kind::Hook: return;
        case Item::Kind::Zip:
            index(*item.scope);
            for (const Item& part : item.scope->items)
                addTarget(scope, part.code, at, 0);
            return;
        case Item::Kind::In: index(*item.scope); return addTarget(scope, item.code, at, 0);
        case Item::Kind::List:
            if (item.closingCode)
                return addTarget(scope, item.code, at, 0);
            for (int i = 0; i < (item.scope->items[0].addsIndex ? 6 : 1); ++i)
                addTarget(scope, item.scope->firstCode + i, at, 0);
            return;
        default: break;
        }
        if (item.convert == Convert::Color) {
            if (item.code >= 70)
                return addTarget(scope, item.code, at, 0);
            addTarget(scope, item.code, at, 0);
            addTarget(scope, item.code + kTrueColor, at, 1);
            return addTarget(scope, item.code + kColorName, at, 2);
        }
        for (std::uint8_t i = 0; i < item.components; ++i)
            addTarget(scope, item.code + i * item.stride, at, i);
        if (item.addsIndex)
            for (int i = 1; i < 6; ++i)
                addTarget(scope, item.code + i, at, 0);
    }

    // What an element begins with.
    int firstCode(const Scope& scope) const
    {
        for (const Item& item : scope.items) {
            if (item.kind == Item::Kind::List && !item.closingCode)
                return firstCode(*item.scope);
            if (item.kind == Item::Kind::Zip)
                return firstCode(*item.scope);
            if (item.kind != Item::Kind::Hook)
                return item.code;
        }
        formError(m_class, "a list without a first code");
    }

    static void addTarget(Scope& scope, int code, std::uint16_t item, std::uint8_t component)
    {
        if (code < 0 || code >= static_cast<int>(scope.first.size()))
            return;
        scope.targets.push_back({item, component, 0});
        const auto made = static_cast<std::uint16_t>(scope.targets.size());
        std::uint16_t* link = &scope.first[static_cast<std::size_t>(code)];
        while (*link)
            link = &scope.targets[*link - 1u].next;
        *link = made;
    }

    const db::ClassDef& m_class;
    const db::Program& m_program;
    Form& m_form;
    std::vector<bool> m_hasLines;      // by segment
    std::set<std::uint32_t> m_claimed; // slots of the frame that have their lines
};

} // namespace

bool hasForm(const db::ClassDef& classDef, db::Version version)
{
    if (isListed(kWithoutForm, classDef))
        return false;
    if (version >= db::Version::Ac1027 && isListed(kBodies, classDef))
        return false;
    return classDef.kind() != db::ClassKind::Control && classDef.kind() != db::ClassKind::Header;
}

const Form* formOf(const db::ClassDef& classDef, db::Version version)
{
    if (!hasForm(classDef, version) && classDef.kind() != db::ClassKind::Control)
        return nullptr;
    static std::mutex mutex;
    static auto* const forms = new std::map<std::pair<const db::ClassDef*, db::Version>, Form>;
    const std::scoped_lock lock(mutex);
    const auto [found, isNew] = forms->try_emplace({&classDef, version});
    if (isNew)
        FormCompiler(classDef, version, found->second).compile();
    return &found->second;
}

} // namespace dxf
