#include <nlohmann/json.hpp>

#include <sm/limits.h>

#include "cli/components.h"
#include "cli/property_words.h"
#include "cli/session.h"
#include "cli/verbs.h"

namespace cli {

namespace {

using Value = TvSmCustomPropertyValue;

struct Assignment {
    TvString name, value;
};

std::vector<Assignment> parseAll(const PropSetRequest& request)
{
    requireHandle(request.handle);
    std::vector<Assignment> all;
    for (const TvString& text : request.assignments) {
        Assignment parsed;
        if (!splitAssignment(text, parsed.name, parsed.value))
            refuseUsage(Word::NotAProperty, text);
        requireFits(words(Word::FieldPropertyName), parsed.name, sm::kMaxPropertyNameLength);
        all.push_back(std::move(parsed));
    }
    return all;
}

/// What a property's flags are to be: as asked, else as they are, else as suits the object.
unsigned short flagsFor(const Value* existing, const TvSmComponent& component, PropertyScope scope)
{
    if (scope != PropertyScope::Keep)
        return flagsOf(scope);
    if (existing)
        return existing->getFlags();
    return flagsOf(kindOf(component) == Kind::Sheet ? PropertyScope::Sheets
                                                    : PropertyScope::SheetSet);
}

struct Change {
    TvString name;
    std::optional<TvString> from; ///< None: it is new.
    TvString to;
};

Change setOne(TvSmComponent& component, const Assignment& each, PropertyScope scope)
{
    TvSmCustomPropertyBag& bag = *component.getCustomProperties();
    const Value* existing = bag.getProperty(each.name);
    Change change{each.name, std::nullopt, each.value};
    if (existing)
        change.from = valueText(*existing);
    if (!sm::setTextProperty(&bag, each.name, each.value, flagsFor(existing, component, scope)))
        refuse(ExitCode::Internal, Word::SetterRefused, each.name);
    return change;
}

void printLine(const TvSmComponent& component, const TvString& name, const TvString& rest,
               Console& console)
{
    console.line({{handleOf(component), Tone::Faint},
                  {u"  "},
                  {name, Tone::Strong},
                  {rest.isEmpty() ? rest : TvString(u"  ") + rest}});
}

/// What every change of properties tells besides its own.
void tellObject(const TvString& file, const TvSmComponent& component, bool dryRun, Console& console)
{
    console.document()["file"] = jsonText(fullPath(file));
    console.document()["object"] = jsonOf(component);
    console.document()["dryRun"] = dryRun;
}

ExitCode set(const PropSetRequest& request, Console& console)
{
    const std::vector<Assignment> assignments = parseAll(request);
    ChangedSet changed(request.file, request.change, console);
    TvSmComponent& component = componentAt(changed.database(), request.handle);
    std::vector<Change> changes;
    for (const Assignment& each : assignments)
        changes.push_back(setOne(component, each, request.scope));
    changed.commit();
    tellObject(request.file, component, request.change.dryRun, console);
    Json& list = console.document()["changes"] = Json::array();
    for (const Change& change : changes) {
        printLine(component, change.name,
                  change.from ? words(Word::ChangedFromTo, *change.from, change.to) : change.to,
                  console);
        list.push_back({{"name", jsonText(change.name)},
                        {"from", change.from ? Json(jsonText(*change.from)) : Json()},
                        {"to", jsonText(change.to)}});
    }
    return ExitCode::Ok;
}

/// Removes what is there, and tells of what is not.
ExitCode remove(const PropRemoveRequest& request, Console& console)
{
    requireHandle(request.handle);
    ChangedSet changed(request.file, request.change, console);
    TvSmComponent& component = componentAt(changed.database(), request.handle);
    std::vector<TvString> removed;
    std::vector<TvString> missing;
    for (const TvString& name : request.names)
        (component.getCustomProperties()->removeProperty(name) ? removed : missing).push_back(name);
    if (removed.empty())
        refuse(ExitCode::NoInput, Word::NoneOfTheProperties, handleOf(component));
    changed.commit();
    tellObject(request.file, component, request.change.dryRun, console);
    Json done = Json::array();
    Json notThere = Json::array();
    for (const TvString& name : removed) {
        printLine(component, name, {}, console);
        done.push_back(jsonText(name));
    }
    for (const TvString& name : missing) {
        console.warn(messageOf(Word::NoSuchProperty, handleOf(component), name));
        notThere.push_back(jsonText(name));
    }
    console.document()["removed"] = std::move(done);
    console.document()["missing"] = std::move(notThere);
    return missing.empty() ? ExitCode::Ok : ExitCode::PartlyFailed;
}

ExitCode list(const PropListRequest& request, Console& console)
{
    requireHandle(request.handle);
    const OpenedSet opened(request.file, console);
    const TvSmComponent& component = componentAt(opened.database(), request.handle);
    listProperties(*component.getCustomProperties(), console);
    console.document()["file"] = jsonText(opened.database().getFileName());
    console.document()["object"] = jsonOf(component);
    console.document()["properties"] = jsonOf(*component.getCustomProperties());
    return ExitCode::Ok;
}

} // namespace

Outcome run(const PropSetRequest& request, Console& console)
{
    return attempt(console, [&] { return set(request, console); });
}

Outcome run(const PropRemoveRequest& request, Console& console)
{
    return attempt(console, [&] { return remove(request, console); });
}

Outcome run(const PropListRequest& request, Console& console)
{
    return attempt(console, [&] { return list(request, console); });
}

} // namespace cli
