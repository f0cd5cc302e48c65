#include "object_reader.h"

#include <algorithm>

#include "hooks.h"

namespace dxf {

namespace {

constexpr std::size_t kDeepest = 16; // elements within elements

base::Status unsupported(const db::ClassDef& classDef)
{
    return {
        base::Failure::Unsupported, base::Reason::DxfNotUnderstood, {TvString(classDef.name())}};
}

} // namespace

base::Status ObjectReader::read(const db::ClassDef& classDef, std::string_view text,
                                const ObjectPlace& place, db::Record& record)
{
    m_record = &record;
    m_form = formOf(classDef, version());
    if (!m_form)
        return unsupported(classDef);
    begin(classDef, place);
    readTags(text);
    return finish();
}

base::Status ObjectReader::readMore(std::string_view text)
{
    m_current = -1;
    m_inUnknown = false;
    m_stack.clear();
    readTags(text);
    return finish();
}

void ObjectReader::begin(const db::ClassDef& classDef, const ObjectPlace& place)
{
    m_record->reset(classDef, 32);
    if (m_form->fillsArrays)
        db::fillFixedArrays(*m_record, classDef.layout(), 0);
    m_record->setVersion(version());
    m_record->setHandle(place.handle);
    m_segments.resize(m_form->segments.size());
    for (std::size_t i = 0; i < m_segments.size(); ++i)
        m_segments[i] = {.scope = &m_form->segments[i].scope};
    m_stack.clear();
    m_unknown.clear();
    m_scratch = {};
    m_bytesItem = nullptr;
    m_bytes.clear();
    m_current = m_last = -1;
    m_inUnknown = m_failed = m_tooLong = m_isBehindAll = false;
    m_group = 0;
    m_sawHandle = m_sawOwner = m_knowsApplication = false;
    static const db::FieldId kEntityMode = db::fieldId("entmode"), kOwner = db::fieldId("owner");
    const bool ownsNothing = classDef.isEntity() && place.entityMode != 0;
    if (!ownsNothing)
        root().setHandle(kOwner, place.owner);
    if (classDef.isEntity())
        root().setInteger(kEntityMode, place.entityMode);
}

void ObjectReader::readTags(std::string_view text)
{
    TagScanner scanner(text);
    Tag tag;
    scanner.next(tag); // the name of its kind
    for (m_tagBegin = scanner.at(); scanner.next(tag) && !m_failed; m_tagBegin = scanner.at()) {
        m_tagEnd = scanner.at();
        readGroup(tag);
    }
}

base::Status ObjectReader::finish()
{
    flushBytes();
    for (const Segment& segment : m_form->segments)
        for (const Item& item : segment.scope.items)
            if (item.hook && item.hook->finish) {
                m_hookItem = &item;
                m_hookBase = 0;
                item.hook->finish(*this);
            }
    if (m_failed)
        return {base::Failure::Damaged,
                base::Reason::DxfObjectDamaged,
                {TvString().format(u"%X", static_cast<std::int64_t>(m_record->handle()))}};
    return m_tooLong ? unsupported(*m_record->classDef()) : base::Status();
}

void ObjectReader::readGroup(const Tag& tag)
{
    if (tag.code == 999) // a comment: kept where it stands
        return note(tag);
    m_isBehindAll = m_isBehindAll || tag.code == 1001;
    if (takesAll() && !m_isBehindAll) {
        if (!assign(tag))
            note(tag);
        return;
    }
    if (m_group != 0 || tag.code == 102) {
        if (!readBracedGroup(tag))
            note(tag);
        return;
    }
    if (tag.code >= 1000 && readExtendedData(tag))
        return;
    if (tag.code == 100 || tag.code == 101)
        return enterSegment(tag);
    if (m_inUnknown)
        return note(tag);
    if (m_current < 0 && readPreamble(tag))
        return;
    if (!assign(tag))
        note(tag);
}

// Whether this part of the object is a list in which markers and braces have no meaning.
bool ObjectReader::takesAll() const
{
    if (m_current < 0 || m_inUnknown)
        return false;
    const Scope& scope = m_form->segments[static_cast<std::size_t>(m_current)].scope;
    return scope.wildcard && scope.items[scope.wildcard - 1u].hook->takesAll;
}

// Markers may repeat (a text has two parts of the same name): each use is the next part.
void ObjectReader::enterSegment(const Tag& tag)
{
    m_stack.clear();
    for (std::size_t i = static_cast<std::size_t>(m_current + 1); i < m_segments.size(); ++i) {
        const Segment& segment = m_form->segments[i];
        if (segment.markerCode != tag.code || segment.marker != tag.value)
            continue;
        m_current = m_last = static_cast<int>(i);
        m_inUnknown = false;
        return;
    }
    m_inUnknown = true;
    note(tag);
}

// A neighbour of what is unknown is told in one piece with it.
void ObjectReader::note(const Tag&)
{
    const auto size = static_cast<std::size_t>(m_tagEnd - m_tagBegin);
    if (!m_unknown.empty()) {
        UnknownGroups& before = m_unknown.back();
        if (before.segment == m_last && before.text.data() + before.text.size() == m_tagBegin) {
            before.text = {before.text.data(), before.text.size() + size};
            return;
        }
    }
    m_unknown.push_back({m_last, {m_tagBegin, size}});
}

// ---- which part of the form a group is

bool ObjectReader::assign(const Tag& tag)
{
    for (std::size_t level = m_stack.size(); level > 0; --level) {
        if (assignAt(level, tag))
            return true;
        const Level& open = m_stack[level - 1];
        if (open.closingCode == 0)
            continue;
        if (open.closingCode == tag.code) {
            m_stack.resize(level - 1);
            return true;
        }
        return false; // nothing leads out of braces but their end
    }
    if (m_current >= 0)
        return assignAt(0, tag);
    // No markers: whichever part knows the code.
    for (std::size_t i = 0; i < m_segments.size(); ++i) {
        m_current = static_cast<int>(i);
        const bool done = assignAt(0, tag);
        if (m_stack.empty())
            m_current = -1; // an open element keeps to its part until the next one
        if (done)
            return true;
    }
    return false;
}

// Level 0 is the segment.
bool ObjectReader::assignAt(std::size_t level, const Tag& tag)
{
    Level& open = level ? m_stack[level - 1] : m_segments[static_cast<std::size_t>(m_current)];
    const Scope::Target* target = choose(open, tag);
    if (target) {
        m_stack.resize(level);
        return take(level, *target, tag);
    }
    if (!open.scope->wildcard)
        return false;
    m_stack.resize(level);
    return callHook(open, open.scope->items[open.scope->wildcard - 1u], tag);
}

const Scope::Target* ObjectReader::choose(Level& level, const Tag& tag) const
{
    const Scope::Target* second = nullptr; // free, but its condition does not hold yet
    const Scope::Target* color = nullptr;  // the last one that was begun, else the first
    for (auto* target = level.scope->targetOf(tag.code); target;
         target = level.scope->nextOf(*target)) {
        const Item& item = level.scope->items[target->item];
        if (target->component > 0) {
            if (level.last == &item)
                return target;
            if (item.convert == Convert::Color && (!color || level.used[target->item]))
                color = target;
            continue;
        }
        if (!isFree(level, item, target->item))
            continue;
        if (guardsHold(level, item))
            return target;
        if (!second)
            second = target;
    }
    return second ? second : color;
}

bool ObjectReader::isFree(const Level& level, const Item& item, std::uint16_t at) const
{
    switch (item.kind) {
    case Item::Kind::Hook: return !item.hook->isSingle || !level.used[at];
    case Item::Kind::Zip:
    case Item::Kind::Ignored: return true;
    case Item::Kind::Array:
    case Item::Kind::List: {
        if (item.field->fixedCount == 0)
            return true;
        return !level.used[at];
    }
    case Item::Kind::Field:
        if (item.field->storage == db::Storage::Bytes || item.isAlias)
            return true;
        return !level.used[at];
    default: return !level.used[at];
    }
}

bool ObjectReader::guardsHold(const Level& level, const Item& item) const
{
    if (!item.field)
        return true;
    for (const db::Guard& guard : item.field->guards) {
        const std::uint64_t word =
            m_record->words().data()[level.base + item.holderBase + guard.slot];
        const auto value = static_cast<std::uint64_t>(guard.value);
        const bool holds = guard.rule == db::Guard::Rule::Equal     ? word == value
                           : guard.rule == db::Guard::Rule::SetBits ? (word & value) != 0
                                                                    : (word & value) == 0;
        if (!holds)
            return false;
    }
    return true;
}

bool ObjectReader::take(std::size_t level, const Scope::Target& target, const Tag& tag)
{
    Level& open = level ? m_stack[level - 1] : m_segments[static_cast<std::size_t>(m_current)];
    const Item& item = open.scope->items[target.item];
    const bool isLong = item.field && item.field->fixedCount != 0;
    const bool isUsedUp = item.kind != Item::Kind::Hook || item.hook->isSingle;
    if (!isLong && isUsedUp && target.item < open.used.size())
        open.used.set(target.item);
    open.last = &item;
    switch (item.kind) {
    case Item::Kind::Constant:
    case Item::Kind::Ignored:
    case Item::Kind::Count: return true;
    case Item::Kind::Hook: return callHook(open, item, tag);
    case Item::Kind::Zip: return takeZip(open, item, tag);
    case Item::Kind::Array: return takeArray(open, item, target.component, tag);
    case Item::Kind::List:
    case Item::Kind::In: return beginElement(level, item, tag);
    default: return takeField(open, item, target.component, tag);
    }
}

bool ObjectReader::beginElement(std::size_t level, const Item& item, const Tag& tag)
{
    Level& open = level ? m_stack[level - 1] : m_segments[static_cast<std::size_t>(m_current)];
    const bool isOpened = item.closingCode != 0 || item.kind == Item::Kind::In;
    if (m_stack.size() >= kDeepest || (isOpened && trimmed(tag.value) != item.text))
        return false;
    flushBytes(); // before the element that they belong to is moved
    Level inner{.scope = item.scope.get(), .base = open.base, .closingCode = item.closingCode};
    if (item.kind == Item::Kind::List) {
        const auto at = static_cast<std::size_t>(&item - open.scope->items.data());
        std::uint32_t index = 0;
        if (item.field->fixedCount) {
            // The elements are there; how many were read stands beside them.
            index = open.counts[item.counter]++;
            if (index + 1 >= item.field->fixedCount)
                open.used.set(at);
        } else {
            db::ArrayEditor array(*m_record, *item.holder, open.base + item.holderBase,
                                  *item.field);
            index = array.size();
            if (!array.resize(index + 1))
                return false;
        }
        const db::Run run = db::arrayOf(words()[open.base + item.slot]);
        inner.base = run.offset + index * item.field->stride();
        inner.index = index;
    }
    m_stack.push_back(inner);
    return isOpened || assignAt(m_stack.size(), tag);
}

bool ObjectReader::callHook(const Level& level, const Item& item, const Tag& tag)
{
    m_hookItem = &item;
    m_hookBase = level.base;
    return item.hook->read && item.hook->read(*this, tag);
}

db::RecordEditor ObjectReader::frame()
{
    return {*m_record, *m_hookItem->holder, m_hookBase + m_hookItem->holderBase};
}

const std::u16string& ObjectReader::text(const Tag& tag)
{
    m_context.coding().decode(tag.value, m_text);
    return m_text;
}

} // namespace dxf
