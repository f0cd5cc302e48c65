#include "dst_writer.h"

#include <charconv>

#include <fmt/format.h>

#include <base/kv_file_system.h>
#include <base/path_rules.h>

#include "dst_names.h"

namespace sm {

namespace {

/// The path of a referenced file relative to the .dst, as it goes into the file: with slashes,
/// whatever the system.
///
/// Worked out from the stored path where that leads somewhere. A kept relative path that says
/// something else is right when the stored path leads nowhere: the project moved as a whole. The
/// disk is asked only then, once for each path.
class RelativePaths
{
public:
    explicit RelativePaths(const TvString& folder)
        : m_folder(folder),
          m_prefix(fileUtf8(folder) + static_cast<char>(base::PathRules::native().separator()))
    {
    }

    /// Valid until the next call.
    std::string_view relativeFor(const StoredText& path, const StoredText& kept)
    {
        if (m_folder.isEmpty())
            return kept.fileView(m_keptRoom);
        const std::string_view worked = workOut(path.fileView(m_pathRoom));
        const std::string_view before = kept.fileView(m_keptRoom);
        if (before.empty() || worked == before)
            return worked;
        return !worked.empty() && isThere(path.text()) ? worked : before;
    }

private:
    std::string_view workOut(std::string_view utf8)
    {
        // Nearly all drawings lie at or below the set.
        if (utf8.size() > m_prefix.size() && utf8.compare(0, m_prefix.size(), m_prefix) == 0 &&
            isPlain(utf8))
            return utf8.substr(m_prefix.size());
        // Several sheets stand in one drawing.
        const auto [at, isNew] = m_worked.try_emplace(std::string(utf8));
        if (isNew)
            at->second = workOutByRules(textFromFile(utf8));
        return at->second;
    }
    std::string workOutByRules(const TvString& full) const
    {
        const base::PathRules& rules = base::PathRules::native();
        if (!rules.isAbsolute(full) || rules.isNetwork(full))
            return {};
        return fileUtf8(rules.relativeTo(full, m_folder).replaced(u"\\", u"/"));
    }
    /// No "." or ".." or doubled separator and no backslash: nothing to normalise.
    static bool isPlain(std::string_view utf8)
    {
        for (std::size_t at = 0; at < utf8.size(); ++at)
            if (utf8[at] == '\\' || (utf8[at] == '/' && at + 1 < utf8.size() &&
                                     (utf8[at + 1] == '.' || utf8[at + 1] == '/')))
                return false;
        return true;
    }
    bool isThere(const TvString& path)
    {
        const auto [at, isNew] = m_asked.try_emplace(path, false);
        if (isNew)
            at->second = KvFileSystem::pathFileExists(path);
        return at->second;
    }

    TvString m_folder;
    std::string m_prefix;
    std::string m_pathRoom;
    std::string m_keptRoom;
    std::unordered_map<std::string, std::string> m_worked;
    std::map<TvString, bool> m_asked;
};

class Writer
{
public:
    Writer(DatabaseState& state, std::uint64_t nextHandle)
        : m_state(state), m_nextHandle(nextHandle), m_relative(state.folder())
    {
    }
    std::string write();

private:
    void startLine() { m_out.append(static_cast<std::size_t>(m_depth) * 2, ' '); }
    void open(std::string_view element, TvSmPersist& object);
    void attribute(std::string_view name, std::string_view utf8);
    void attributes(TvSmPersist& object);
    void ownAttributes(TvSmPersist& object);
    void unknownAttributes(const std::vector<Extras::Attribute>& unknown);
    void pointer(std::string_view element, TvSmPersist& owner, std::uint64_t handle);
    void ownAttribute(TvSmPersist& object, const Attribute& row);
    void handleAttribute(std::string_view name, std::uint64_t handle);
    void unknownBefore(TvSmPersist& parent, std::uint64_t handle);
    void unknownRest(TvSmPersist& parent);
    void rawLine(const std::string& xml);
    /// Closes the start tag, and writes the children and the end tag if there are children.
    template <class Children>
    void finish(std::string_view element, TvSmPersist& object, Children children);
    /// A whole container element; nothing at all when it has neither attributes nor children.
    template <class Children>
    void container(std::string_view element, TvSmPersist& object, Children children);

    void set();
    void subset(TvSmSubset& subset);
    void subsetParts(TvSmSubset& subset);
    void children(TvSmSubset& subset);
    void sheet(TvSmSheet& sheet);
    void views(TvSmSheetViews& views);
    void view(TvSmSheetView& view);
    void properties(TvSmComponent& component);
    void property(TvSmCustomPropertyValue& value);
    void reference(std::string_view element, TvSmPersist& parent, TvSmFileReference* reference);
    void referenceList(std::string_view element, TvSmReferenceCollection& list);
    void categories(TvSmViewCategories& categories);
    void selections(TvSmSheetSelections& selections);
    void options(TvSmPublishOptions& options);
    void childStarts(TvSmPersist& parent, TvSmPersist& child)
    {
        unknownBefore(parent, Internals::handle(child));
    }

    DatabaseState& m_state;
    std::uint64_t m_nextHandle;
    RelativePaths m_relative;
    std::string m_out;
    int m_depth = 0;
    /// Unknown elements of a parent by the child they stand before; written ones are taken out.
    using UnknownLines = std::multimap<std::uint64_t, const Extras::Element*>;
    UnknownLines& unknownOf(TvSmPersist& parent);
    std::unordered_map<const TvSmPersist*, UnknownLines> m_unknown;
};

std::string Writer::write()
{
    m_out.reserve(m_state.expectedSize());
    m_out += "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n";
    for (const std::string& line : m_state.aroundRoot(true))
        rawLine(line);
    m_out += fmt::format("<{} {}=\"", dst::kFile, dst::kVersion);
    appendXmlEscaped(m_out, fileUtf8(m_state.version()));
    m_out += fmt::format("\" {}=\"g{:X}\"", dst::kNextHandle, m_nextHandle);
    if (Internals::extras(m_state.database()))
        unknownAttributes(Internals::extras(m_state.database())->attributes);
    m_out += ">\n";
    m_depth = 1;
    childStarts(m_state.database(), m_state.set());
    set();
    unknownRest(m_state.database());
    m_depth = 0;
    m_out += fmt::format("</{}>\n", dst::kFile);
    for (const std::string& line : m_state.aroundRoot(false))
        rawLine(line);
    return std::move(m_out);
}

// --- lines
// --------------------------------------------------------------------------------------------------------

void Writer::rawLine(const std::string& xml)
{
    startLine();
    m_out += xml;
    m_out += '\n';
}

void Writer::attribute(std::string_view name, std::string_view utf8)
{
    m_out += ' ';
    m_out += name;
    m_out += "=\"";
    appendXmlEscaped(m_out, utf8);
    m_out += '"';
}

void Writer::handleAttribute(std::string_view name, std::uint64_t handle)
{
    char digits[16];
    const auto end = std::to_chars(digits, digits + sizeof digits, handle, 16).ptr;
    std::transform(digits, end, digits,
                   [](char c) { return c >= 'a' ? static_cast<char>(c - 'a' + 'A') : c; });
    m_out += ' ';
    m_out += name;
    m_out += "=\"g";
    m_out.append(digits, end);
    m_out += '"';
}

void Writer::open(std::string_view element, TvSmPersist& object)
{
    startLine();
    m_out += '<';
    m_out += element;
    if (Internals::handle(object) != 0)
        handleAttribute(dst::kHandle, Internals::handle(object));
}

void Writer::ownAttribute(TvSmPersist& object, const Attribute& row)
{
    const void* field = row.field(object);
    switch (row.kind) {
    case AttributeKind::Text: {
        const auto& text = *static_cast<const StoredText*>(field);
        if (!text.isSet())
            return;
        m_out.append(row.opening.text, row.opening.size);
        text.appendXml(m_out);
        m_out += '"';
        return;
    }
    case AttributeKind::Flag:
        if (*static_cast<const bool*>(field))
            attribute(row.name, "1");
        return;
    case AttributeKind::Word:
        if (*static_cast<const std::uint16_t*>(field) != 0)
            attribute(row.name, fmt::format_int(*static_cast<const std::uint16_t*>(field)).str());
        return;
    case AttributeKind::Long:
        if (*static_cast<const long*>(field) != 0)
            attribute(row.name, fmt::format_int(*static_cast<const long*>(field)).str());
        return;
    case AttributeKind::Handle:
        if (m_state.findInSet(*static_cast<const std::uint64_t*>(field)))
            handleAttribute(row.name, *static_cast<const std::uint64_t*>(field));
        return;
    }
}

void Writer::ownAttributes(TvSmPersist& object)
{
    for (const Attribute& row : Internals::attributesOf(object))
        ownAttribute(object, row);
}

void Writer::unknownAttributes(const std::vector<Extras::Attribute>& unknown)
{
    for (const Extras::Attribute& each : unknown)
        attribute(each.name, each.value);
}

void Writer::attributes(TvSmPersist& object)
{
    ownAttributes(object);
    if (Internals::extras(object))
        unknownAttributes(Internals::extras(object)->attributes);
}

template <class Children>
void Writer::finish(std::string_view element, TvSmPersist& object, Children children)
{
    const std::size_t start = m_out.size();
    m_out += ">\n";
    ++m_depth;
    children();
    unknownRest(object);
    --m_depth;
    if (m_out.size() == start + 2) {
        m_out.resize(start);
        m_out += "/>\n";
        return;
    }
    startLine();
    m_out += "</";
    m_out += element;
    m_out += ">\n";
}

template <class Children>
void Writer::container(std::string_view element, TvSmPersist& object, Children children)
{
    unknownBefore(*object.owner(), dst::placeOfContainer(element));
    const std::size_t start = m_out.size();
    open(element, object);
    const std::size_t opened = m_out.size();
    attributes(object);
    finish(element, object, children);
    if (m_out.compare(opened, std::string::npos, "/>\n") == 0)
        m_out.resize(start);
}

Writer::UnknownLines& Writer::unknownOf(TvSmPersist& parent)
{
    const auto [at, isNew] = m_unknown.try_emplace(&parent);
    if (isNew)
        for (const Extras::Element& element : Internals::extras(parent)->elements)
            at->second.emplace(element.before, &element);
    return at->second;
}

void Writer::unknownBefore(TvSmPersist& parent, std::uint64_t handle)
{
    if (!Internals::extras(parent))
        return;
    UnknownLines& lines = unknownOf(parent);
    const auto [first, last] = lines.equal_range(handle);
    for (auto line = first; line != last; ++line)
        rawLine(line->second->xml);
    lines.erase(first, last);
}

void Writer::unknownRest(TvSmPersist& parent)
{
    if (!Internals::extras(parent))
        return;
    const UnknownLines& left = unknownOf(parent);
    // In the order in which they were read, whatever child they stood before.
    for (const Extras::Element& element : Internals::extras(parent)->elements) {
        const auto [first, last] = left.equal_range(element.before);
        if (std::any_of(first, last, [&](const auto& line) { return line.second == &element; }))
            rawLine(element.xml);
    }
}

/// An element that points at another object of the file.
void Writer::pointer(std::string_view element, TvSmPersist& owner, std::uint64_t handle)
{
    unknownBefore(owner, dst::placeOfUse(handle));
    startLine();
    m_out += '<';
    m_out += element;
    handleAttribute(dst::kUse, handle);
    static const Extras::Pointer kNone;
    const Extras::Pointer* unknown = &kNone;
    if (const auto& extras = Internals::extras(owner)) {
        const auto at = extras->pointers.find(handle);
        unknown = at == extras->pointers.end() ? &kNone : &at->second;
    }
    unknownAttributes(unknown->attributes);
    if (unknown->elements.empty()) {
        m_out += "/>\n";
        return;
    }
    m_out += ">\n";
    ++m_depth;
    for (const std::string& line : unknown->elements)
        rawLine(line);
    --m_depth;
    startLine();
    m_out += fmt::format("</{}>\n", element);
}

// --- elements
// -------------------------------------------------------------------------------------------------------

void Writer::set()
{
    TvSmSheetSet& set = m_state.set();
    open(dst::kSheetSet, set);
    attributes(set);
    finish(dst::kSheetSet, set, [&] {
        subsetParts(set);
        reference(dst::kPageSetups, set, set.getAltPageSetups());
        reference(dst::kLabelBlock, set, set.getDefaultLabelBlock());
        childStarts(set, *set.getPublishOptions());
        options(*set.getPublishOptions());
        referenceList(dst::kResources, *set.getResourceLocations());
        referenceList(dst::kCallouts, *set.getCalloutBlocks());
        categories(*set.getViewCategories());
        selections(*set.getSheetSelections());
        children(set);
    });
}

void Writer::subset(TvSmSubset& subset)
{
    open(dst::kSubset, subset);
    attributes(subset);
    finish(dst::kSubset, subset, [&] {
        subsetParts(subset);
        children(subset);
    });
}

void Writer::subsetParts(TvSmSubset& subset)
{
    reference(dst::kNewSheetLocation, subset, subset.getNewSheetLocation());
    reference(dst::kDefaultTemplate, subset, subset.getDefaultTemplateLayout());
    properties(subset);
}

void Writer::children(TvSmSubset& parent)
{
    for (TvSmComponent* child = Internals::firstChild(parent); child;
         child = Internals::nextSibling(*child)) {
        childStarts(parent, *child);
        if (child->isA() == TvSmSheet::desc())
            sheet(static_cast<TvSmSheet&>(*child));
        else
            subset(static_cast<TvSmSubset&>(*child));
    }
}

void Writer::sheet(TvSmSheet& sheet)
{
    open(dst::kSheet, sheet);
    attributes(sheet);
    finish(dst::kSheet, sheet, [&] {
        reference(dst::kLayout, sheet, sheet.getLayoutReference());
        properties(sheet);
        if (Internals::hasViews(sheet))
            views(Internals::viewsOf(sheet));
    });
}

void Writer::views(TvSmSheetViews& views)
{
    container(dst::kViews, views, [&] {
        properties(views);
        for (TvSmSheetView* each : Internals::entries(views)) {
            childStarts(views, *each);
            view(*each);
        }
    });
}

void Writer::view(TvSmSheetView& view)
{
    open(dst::kView, view);
    attributes(view);
    finish(dst::kView, view, [&] {
        reference(dst::kViewReference, view, view.getViewReference());
        properties(view);
    });
}

void Writer::properties(TvSmComponent& component)
{
    if (!Internals::hasBag(component))
        return;
    for (TvSmCustomPropertyValue* value : Internals::entries(Internals::bagOf(component))) {
        childStarts(component, *value);
        property(*value);
    }
}

void Writer::property(TvSmCustomPropertyValue& value)
{
    open(dst::kProperty, value);
    ownAttributes(value);
    const std::uint16_t type = Internals::typeOf(value);
    for (const dst::ValueType& row : dst::kValueTypes)
        if (row.type == type)
            attribute(dst::kPropertyType, row.name);
    if (type != TvVariant::kString && type != TvVariant::kEmpty)
        attribute(dst::kPropertyValue, fmt::format("{}", Internals::numberOf(value)));
    // A type that we do not know is only written beside the text that came with it.
    if (Internals::extras(value))
        for (const Extras::Attribute& unknown : Internals::extras(value)->attributes)
            if (type == TvVariant::kString || unknown.name != dst::kPropertyType)
                attribute(unknown.name, unknown.value);
    finish(dst::kProperty, value, [] {});
}

void Writer::reference(std::string_view element, TvSmPersist& parent, TvSmFileReference* reference)
{
    if (!reference)
        return;
    childStarts(parent, *reference);
    open(element, *reference);
    for (const Attribute& row : Internals::attributesOf(*reference)) {
        if (row.field(*reference) != &Internals::relativeOf(*reference)) {
            ownAttribute(*reference, row);
            continue;
        }
        const std::string_view relative = m_relative.relativeFor(Internals::pathOf(*reference),
                                                                 Internals::relativeOf(*reference));
        if (!relative.empty())
            attribute(row.name, relative);
    }
    if (Internals::extras(*reference))
        unknownAttributes(Internals::extras(*reference)->attributes);
    finish(element, *reference, [] {});
}

std::string_view elementOf(const TvSmFileReference& reference)
{
    const TvRxClass* type = reference.isA();
    if (type == TvSmTvDbBlockRecordReference::desc())
        return dst::kBlockReference;
    if (type == TvSmTvDbLayoutReference::desc())
        return dst::kLayoutReference;
    if (type == TvSmTvDbViewReference::desc())
        return dst::kViewReference;
    return type == TvSmDbObjectReference::desc() ? dst::kObjectReference : dst::kFileReference;
}

void Writer::referenceList(std::string_view element, TvSmReferenceCollection& list)
{
    container(element, list, [&] {
        for (TvSmFileReference* entry : Internals::entries(list)) {
            if (entry->owner() == &list) {
                reference(elementOf(*entry), list, entry);
            } else if (Internals::isInSet(*entry)) {
                pointer(dst::kUse, list, Internals::handle(*entry));
            }
        }
    });
}

void Writer::categories(TvSmViewCategories& categories)
{
    container(dst::kCategories, categories, [&] {
        properties(categories);
        for (TvSmViewCategory* category : Internals::entries(categories)) {
            childStarts(categories, *category);
            open(dst::kCategory, *category);
            attributes(*category);
            finish(dst::kCategory, *category, [&] {
                properties(*category);
                if (Internals::hasCallouts(*category))
                    referenceList(dst::kCallouts, Internals::calloutsOf(*category));
            });
        }
    });
}

void Writer::selections(TvSmSheetSelections& selections)
{
    container(dst::kSelections, selections, [&] {
        properties(selections);
        for (TvSmSheetSelection* selection : Internals::entries(selections)) {
            childStarts(selections, *selection);
            open(dst::kSelection, *selection);
            attributes(*selection);
            finish(dst::kSelection, *selection, [&] {
                properties(*selection);
                for (std::uint64_t member : Internals::entries(*selection))
                    if (m_state.findInSet(member))
                        pointer(dst::kMember, *selection, member);
            });
        }
    });
}

void Writer::options(TvSmPublishOptions& options)
{
    open(dst::kPublishOptions, options);
    attributes(options);
    finish(dst::kPublishOptions, options, [&] {
        reference(dst::kOutputFolder, options, options.getDefaultOutputdir());
        properties(options);
    });
}

} // namespace

std::string writeText(DatabaseState& state, std::uint64_t nextHandle)
{
    return Writer(state, nextHandle).write();
}

} // namespace sm
