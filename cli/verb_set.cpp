#include <nlohmann/json.hpp>

#include <base/kv_file_system.h>
#include <sm/limits.h>

#include "cli/components.h"
#include "cli/session.h"
#include "cli/verbs.h"

namespace cli {

namespace {

constexpr unsigned bit(Kind kind)
{
    return 1u << static_cast<unsigned>(kind);
}

constexpr unsigned kSet = bit(Kind::SheetSet);
constexpr unsigned kSubset = bit(Kind::Subset);
constexpr unsigned kSheet = bit(Kind::Sheet);
constexpr unsigned kView = bit(Kind::View);
constexpr unsigned kNamed =
    kSet | kSubset | kSheet | kView | bit(Kind::Category) | bit(Kind::Selection);
constexpr int kNoLimit = 0;

/// One key of `set`: which kinds have it, how long its value may be, how it is read and written.
struct Key {
    const char16_t* name;
    unsigned kinds;
    int limit; ///< UTF-16 units.
    TvString (*get)(const TvSmComponent& component);
    bool (*set)(TvSmComponent& component, const TvString& value);
};

template <class T>
const T& as(const TvSmComponent& component)
{
    return static_cast<const T&>(component);
}
template <class T>
T& as(TvSmComponent& component)
{
    return static_cast<T&>(component);
}

bool isView(const TvSmComponent& component)
{
    return kindOf(component) == Kind::View;
}

TvString numberOf(const TvSmComponent& c)
{
    return isView(c) ? as<TvSmSheetView>(c).getNumber() : as<TvSmSheet>(c).getNumber();
}

bool setNumber(TvSmComponent& c, const TvString& value)
{
    return isView(c) ? as<TvSmSheetView>(c).setNumber(value) : as<TvSmSheet>(c).setNumber(value);
}

TvString titleOf(const TvSmComponent& c)
{
    return isView(c) ? as<TvSmSheetView>(c).getTitle() : as<TvSmSheet>(c).getTitle();
}

bool setTitle(TvSmComponent& c, const TvString& value)
{
    return isView(c) ? as<TvSmSheetView>(c).setTitle(value) : as<TvSmSheet>(c).setTitle(value);
}

TvString nameOf(const TvSmComponent& c)
{
    return c.getName();
}

bool setName(TvSmComponent& c, const TvString& value)
{
    return c.setName(value);
}

TvString descOf(const TvSmComponent& c)
{
    return c.getDesc();
}

bool setDesc(TvSmComponent& c, const TvString& value)
{
    return c.setDesc(value);
}

TvString excludedOf(const TvSmComponent& c)
{
    const bool isExcluded = kindOf(c) == Kind::Sheet ? as<TvSmSheet>(c).getExcludeFromPublish()
                                                     : as<TvSmSubset>(c).getExcludeFromPublish();
    return isExcluded ? u"yes" : u"no";
}

/// nullopt when @p text is neither yes nor no.
std::optional<bool> truthOf(const TvString& text)
{
    for (const char16_t* yes : {u"yes", u"true", u"on", u"1"})
        if (text.compareNoCase(yes) == 0)
            return true;
    for (const char16_t* no : {u"no", u"false", u"off", u"0"})
        if (text.compareNoCase(no) == 0)
            return false;
    return std::nullopt;
}

bool setExcluded(TvSmComponent& c, const TvString& value)
{
    const bool isExcluded = *truthOf(value);
    return kindOf(c) == Kind::Sheet ? as<TvSmSheet>(c).setExcludeFromPublish(isExcluded)
                                    : as<TvSmSubset>(c).setExcludeFromPublish(isExcluded);
}

template <TvString (TvSmSheet::*OfSheet)(TvString&) const,
          TvString (TvSmSheetSet::*OfSet)(TvString&) const>
TvString textOf(const TvSmComponent& c)
{
    TvString out;
    return kindOf(c) == Kind::Sheet ? (as<TvSmSheet>(c).*OfSheet)(out)
                                    : (as<TvSmSheetSet>(c).*OfSet)(out);
}

template <bool (TvSmSheet::*OfSheet)(const TvString&), bool (TvSmSheetSet::*OfSet)(const TvString&)>
bool setText(TvSmComponent& c, const TvString& value)
{
    return kindOf(c) == Kind::Sheet ? (as<TvSmSheet>(c).*OfSheet)(value)
                                    : (as<TvSmSheetSet>(c).*OfSet)(value);
}

TvString pageSetupsOf(const TvSmComponent& c)
{
    const TvSmFileReference* reference = as<TvSmSheetSet>(c).getAltPageSetups();
    return reference ? reference->getFileName() : TvString();
}

/// @param value  a path; empty: none.
bool setPageSetups(TvSmComponent& c, const TvString& value)
{
    auto& set = as<TvSmSheetSet>(c);
    if (value.isEmpty())
        return set.setAltPageSetups(nullptr);
    auto reference = std::make_unique<TvSmFileReference>();
    if (!reference->initNew(&set, TvString()) || !reference->setFileName(fullPath(value)) ||
        !set.setAltPageSetups(reference.get()))
        return false;
    reference.release(); // the set's now
    return true;
}

// clang-format off
#define KV_TEXT(n)                                                                                \
    textOf<&TvSmSheet::getSheetText##n, &TvSmSheetSet::getSheetSetText##n>,                       \
    setText<&TvSmSheet::setSheetText##n, &TvSmSheetSet::setSheetSetText##n>

constexpr Key kKeys[] = {
    {u"number",   kSheet | kView,   sm::kMaxNumberLength, numberOf,   setNumber},
    {u"title",    kSheet | kView,   sm::kMaxNameLength,   titleOf,    setTitle},
    {u"name",     kNamed,           sm::kMaxNameLength,   nameOf,     setName},
    {u"desc",     kNamed,           kNoLimit,             descOf,     setDesc},
    {u"excluded", kSheet | kSubset, kNoLimit,             excludedOf, setExcluded},
    {u"text1",    kSheet | kSet,    kNoLimit,             KV_TEXT(1)},
    {u"text2",    kSheet | kSet,    kNoLimit,             KV_TEXT(2)},
    {u"text3",    kSheet | kSet,    kNoLimit,             KV_TEXT(3)},
    {u"text4",    kSheet | kSet,    kNoLimit,             KV_TEXT(4)},
    {u"pageSetups", kSet,           kNoLimit,             pageSetupsOf, setPageSetups},
};
#undef KV_TEXT
// clang-format on

constexpr unsigned kAnyKind = ~0u;

/// The keys that some of @p kinds have, for a sentence.
TvString keyList(unsigned kinds)
{
    TvString list;
    for (const Key& key : kKeys)
        if (key.kinds & kinds)
            list += (list.isEmpty() ? TvString() : TvString(u", ")) + key.name;
    return list;
}

struct Assignment {
    const Key* key;
    TvString value;
};

Assignment parse(const TvString& text)
{
    TvString name;
    Assignment parsed{nullptr, {}};
    if (!splitAssignment(text, name, parsed.value))
        refuseUsage(Word::NotAnAssignment, text, keyList(kAnyKind));
    for (const Key& key : kKeys)
        if (name == key.name)
            parsed.key = &key;
    if (!parsed.key)
        refuseUsage(Word::UnknownKey, name, keyList(kAnyKind));
    if (parsed.key->limit != kNoLimit)
        requireFits(name, parsed.value, parsed.key->limit);
    if (parsed.key->set == setExcluded && !truthOf(parsed.value))
        refuseUsage(Word::NotYesOrNo, name, parsed.value);
    if (parsed.key->set == setPageSetups && !parsed.value.isEmpty() &&
        !KvFileSystem::isFileExisting(fullPath(parsed.value)))
        refuse({base::Failure::NotFound, base::Reason::FileMissing, {fullPath(parsed.value)}},
               Doing::Reading);
    return parsed;
}

std::vector<Assignment> parseAll(const SetRequest& request)
{
    requireHandle(request.handle);
    std::vector<Assignment> all;
    for (const TvString& text : request.assignments) {
        const Assignment parsed = parse(text);
        for (const Assignment& other : all)
            if (other.key == parsed.key)
                refuseUsage(Word::KeyTwice, TvString(parsed.key->name));
        all.push_back(parsed);
    }
    return all;
}

struct Change {
    TvString key, from, to;
};

/// Every key must suit the component before any is set.
std::vector<Change> apply(TvSmComponent& component, const std::vector<Assignment>& assignments)
{
    const unsigned kind = bit(kindOf(component));
    for (const Assignment& each : assignments)
        if (!(each.key->kinds & kind))
            refuseUsage(Word::KeyOfOtherKind, kindWords(kindOf(component)),
                        TvString(each.key->name), keyList(kind));
    std::vector<Change> changes;
    for (const Assignment& each : assignments) {
        const TvString from = each.key->get(component);
        if (!each.key->set(component, each.value))
            refuse(ExitCode::Internal, Word::SetterRefused, TvString(each.key->name));
        const TvString to = each.key->get(component);
        if (from != to)
            changes.push_back({each.key->name, from, to});
    }
    return changes;
}

void report(const SetRequest& request, const TvSmComponent& component,
            const std::vector<Change>& changes, Console& console)
{
    Json list = Json::array();
    for (const Change& change : changes) {
        console.line({{handleOf(component), Tone::Faint},
                      {u"  "},
                      {change.key, Tone::Strong},
                      {u"  "},
                      {words(Word::ChangedFromTo, change.from, change.to)}});
        list.push_back({{"key", jsonText(change.key)},
                        {"from", jsonText(change.from)},
                        {"to", jsonText(change.to)}});
    }
    if (changes.empty())
        console.say(words(Word::NothingToChange));
    console.document()["file"] = jsonText(fullPath(request.file));
    console.document()["object"] = jsonOf(component);
    console.document()["changes"] = std::move(list);
    console.document()["dryRun"] = request.change.dryRun;
}

ExitCode set(const SetRequest& request, Console& console)
{
    const std::vector<Assignment> assignments = parseAll(request);
    ChangedSet changed(request.file, request.change, console);
    TvSmComponent& component = componentAt(changed.database(), request.handle);
    const std::vector<Change> changes = apply(component, assignments);
    changed.commit();
    report(request, component, changes, console);
    return ExitCode::Ok;
}

} // namespace

Outcome run(const SetRequest& request, Console& console)
{
    return attempt(console, [&] { return set(request, console); });
}

} // namespace cli
