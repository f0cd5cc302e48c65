#include "dst_reader.h"

#include <charconv>
#include <unordered_set>

#include <pugixml.hpp>

#include "dst_names.h"

namespace sm {

using base::Failure;
using base::Reason;
using base::Status;

namespace {

using Life = Internals::Life;

bool is(const char* left, const char* right)
{
    return std::strcmp(left, right) == 0;
}

bool isBlank(pugi::xml_node node)
{
    return node.type() == pugi::node_pcdata &&
           node.value()[std::strspn(node.value(), " \t\r\n")] == '\0';
}

class TextWriter : public pugi::xml_writer
{
public:
    void write(const void* data, std::size_t size) override
    {
        text.append(static_cast<const char*>(data), size);
    }
    std::string text;
};

std::string onOneLine(pugi::xml_node node)
{
    TextWriter writer;
    node.print(writer, "", pugi::format_raw | pugi::format_no_declaration, pugi::encoding_utf8);
    return std::move(writer.text);
}

/// Reads one document into one state; one use.
class Reader
{
public:
    Reader(const DstDocument& document, DatabaseState& state) : m_document(document), m_state(state)
    {
    }
    Status read();

private:
    /// What to do with one child element of an object: read it, or say that it is unknown.
    using ChildReader = bool (Reader::*)(TvSmPersist& owner, pugi::xml_node node);

    bool failed() const { return !m_status; }
    bool fail(Reason reason, std::vector<TvString> arguments = {});
    void readVersion(pugi::xml_node root);
    void readAroundRoot(pugi::xml_node root);
    std::uint64_t readHandle(pugi::xml_node node);
    template <class T>
    T* object(pugi::xml_node node, TvSmPersist* owner);
    void readAttributes(TvSmPersist& object, pugi::xml_node node, bool hasHandle);
    const Attribute* rowOf(std::span<const Attribute> rows, std::size_t& expected,
                           const char* name) const;
    void setAttribute(TvSmPersist& object, const Attribute& row, pugi::xml_attribute attribute);
    bool isReserved(const TvSmPersist& object, const char* name, bool hasHandle) const;
    void checkDuplicates(pugi::xml_node node);
    void readChildren(TvSmPersist& object, pugi::xml_node node, ChildReader readChild);
    void keepElement(TvSmPersist& owner, pugi::xml_node node);

    bool readFileChild(TvSmPersist& owner, pugi::xml_node node);
    bool readComponentChild(TvSmPersist& owner, pugi::xml_node node);
    bool readSubsetChild(TvSmPersist& owner, pugi::xml_node node);
    bool readSetChild(TvSmPersist& owner, pugi::xml_node node);
    bool readSheetChild(TvSmPersist& owner, pugi::xml_node node);
    bool readViewsChild(TvSmPersist& owner, pugi::xml_node node);
    bool readViewChild(TvSmPersist& owner, pugi::xml_node node);
    bool readCategoriesChild(TvSmPersist& owner, pugi::xml_node node);
    bool readCategoryChild(TvSmPersist& owner, pugi::xml_node node);
    bool readSelectionsChild(TvSmPersist& owner, pugi::xml_node node);
    bool readSelectionChild(TvSmPersist& owner, pugi::xml_node node);
    bool readReferenceListChild(TvSmPersist& owner, pugi::xml_node node);
    bool readOptionsChild(TvSmPersist& owner, pugi::xml_node node);
    bool readNoChild(TvSmPersist&, pugi::xml_node) { return false; }

    void readSet(pugi::xml_node node);
    void readProperty(TvSmComponent& owner, pugi::xml_node node);
    void readPropertyValue(TvSmCustomPropertyValue& value, pugi::xml_node node);
    template <class T>
    void readReference(T*& slot, TvSmPersist& owner, pugi::xml_node node);
    template <class T>
    bool readListed(TvSmReferenceCollection& list, pugi::xml_node node);
    void readContainer(TvSmPersist& container, pugi::xml_node node, ChildReader readChild);
    void linkUses();

    const DstDocument& m_document;
    DatabaseState& m_state;
    Status m_status;
    bool m_setSeen = false;
    int m_depth = 0;
    std::unordered_set<const TvSmPersist*> m_containersSeen;
    std::unordered_set<std::uint64_t>
        m_reused; // objects of an earlier read that this one filled anew
    struct Use {
        TvSmReferenceCollection* list;
        std::uint64_t handle;
    };
    std::vector<Use> m_uses; // pointed at once everything is read
    std::uint64_t m_highest = 0;
    const bool m_isFirst = m_state.isUntouched();
};

bool Reader::fail(Reason reason, std::vector<TvString> arguments)
{
    if (!failed()) {
        arguments.insert(arguments.begin(), m_document.path());
        m_status = Status(Failure::Damaged, reason, std::move(arguments));
    }
    return true;
}

Status Reader::read()
{
    const pugi::xml_node root = m_document.tree().document_element();
    if (!is(root.name(), dst::kFile)) {
        fail(Reason::DstNotSheetSet);
        return m_status;
    }
    readVersion(root);
    checkDuplicates(root);
    readAroundRoot(root);
    readChildren(m_state.database(), root, &Reader::readFileChild);
    for (pugi::xml_attribute attribute : root.attributes())
        if (!is(attribute.name(), dst::kVersion) && !is(attribute.name(), dst::kNextHandle))
            Internals::makeExtras(m_state.database())
                .attributes.push_back({attribute.name(), attribute.value()});
    if (!failed() && !m_setSeen)
        fail(Reason::DstMissingPart, {TvString(dst::kSheetSet)});
    if (!failed())
        linkUses();
    if (!failed())
        m_state.setNextHandle(
            std::max(handleNumber(std::string_view(root.attribute(dst::kNextHandle).value())),
                     m_highest + 1));
    return m_status;
}

/// Comments and the like before and behind the root: kept where they stand.
void Reader::readAroundRoot(pugi::xml_node root)
{
    bool before = true;
    for (pugi::xml_node child : m_document.tree().children()) {
        if (child == root)
            before = false;
        else if (child.type() != pugi::node_declaration && !isBlank(child))
            m_state.aroundRoot(before).push_back(onOneLine(child));
    }
}

void Reader::readVersion(pugi::xml_node root)
{
    const std::string_view version = root.attribute(dst::kVersion).value();
    int major = 0;
    const auto parsed = std::from_chars(version.data(), version.data() + version.size(), major);
    if (parsed.ec != std::errc()) {
        fail(Reason::DstNotSheetSet);
        return;
    }
    m_state.setVersion(TvString(version), major > dst::kMajor);
}

std::uint64_t Reader::readHandle(pugi::xml_node node)
{
    const char* text = node.attribute(dst::kHandle).value();
    const std::uint64_t handle = handleNumber(std::string_view(text));
    if (handle == 0)
        fail(Reason::DstBadHandle, {TvString(node.name()), TvString(text)});
    m_highest = std::max(m_highest, handle);
    return handle;
}

/// The object of @p node: the one that has its handle already, filled anew, or a new one.
template <class T>
T* Reader::object(pugi::xml_node node, TvSmPersist* owner)
{
    const std::uint64_t handle = readHandle(node);
    TvSmPersist* known = m_state.find(handle);
    if (m_isFirst) {
        if (known)
            fail(Reason::DstDuplicateHandle, {TvString(node.attribute(dst::kHandle).value())});
        known = nullptr;
    } else if (!m_reused.insert(handle).second) {
        fail(Reason::DstDuplicateHandle, {TvString(node.attribute(dst::kHandle).value())});
    }
    if (failed())
        return nullptr;
    T* result = nullptr;
    if (known && known->isA() == T::desc() && Internals::isDatabaseOwned(*known)) {
        result = static_cast<T*>(known);
        Internals::reset(*result);
        Internals::bind(*result, &m_state.database(), owner, Life::Attached);
    } else {
        if (known)
            m_state.giveNewHandle(*known);
        result = m_state.make<T>(handle, owner, Life::Attached);
    }
    readAttributes(*result, node, true);
    return result;
}

const Attribute* Reader::rowOf(std::span<const Attribute> rows, std::size_t& expected,
                               const char* name) const
{
    // Our own writer keeps the order of the table, so the next row is nearly always the right one.
    for (std::size_t at = expected; at < rows.size(); ++at) {
        if (is(rows[at].name, name)) {
            expected = at + 1;
            return &rows[at];
        }
    }
    for (std::size_t at = 0; at < expected; ++at)
        if (is(rows[at].name, name))
            return &rows[at];
    return nullptr;
}

bool Reader::isReserved(const TvSmPersist& object, const char* name, bool hasHandle) const
{
    if (hasHandle && is(name, dst::kHandle))
        return true;
    if (object.isA() == TvSmCustomPropertyValue::desc())
        return is(name, dst::kPropertyName) || is(name, dst::kPropertyType) ||
               is(name, dst::kPropertyValue);
    return object.isA() == TvSmSheetView::desc() && is(name, dst::kViewCategory);
}

void Reader::readAttributes(TvSmPersist& object, pugi::xml_node node, bool hasHandle)
{
    const std::span<const Attribute> rows = Internals::attributesOf(object);
    std::size_t expected = 0;
    std::size_t last = 0;
    bool inOrder = true;
    for (pugi::xml_attribute attribute = node.first_attribute(); attribute;
         attribute = attribute.next_attribute()) {
        const char* name = attribute.name();
        if (hasHandle && attribute == node.first_attribute() && is(name, dst::kHandle))
            continue;
        if (const Attribute* row = rowOf(rows, expected, name)) {
            setAttribute(object, *row, attribute);
            const auto place = static_cast<std::size_t>(row - rows.data()) + 1;
            inOrder = inOrder && place > last;
            last = place;
            continue;
        }
        inOrder = false;
        if (!isReserved(object, name, hasHandle))
            Internals::makeExtras(object).attributes.push_back({name, attribute.value()});
    }
    // In the table's order nothing can stand twice.
    if (!inOrder)
        checkDuplicates(node);
}

void Reader::setAttribute(TvSmPersist& object, const Attribute& row, pugi::xml_attribute attribute)
{
    void* field = row.field(object);
    const std::string_view value = attribute.value();
    switch (row.kind) {
    case AttributeKind::Text:
        static_cast<StoredText*>(field)->setSlice(value.data(), value.size());
        return;
    case AttributeKind::Flag: *static_cast<bool*>(field) = value == "1"; return;
    case AttributeKind::Word:
        *static_cast<std::uint16_t*>(field) = static_cast<std::uint16_t>(attribute.as_uint());
        return;
    case AttributeKind::Long:
        *static_cast<long*>(field) = static_cast<long>(attribute.as_llong());
        return;
    }
}

void Reader::checkDuplicates(pugi::xml_node node)
{
    std::array<const char*, dst::kMaxAttributes> names;
    std::size_t count = 0;
    for (pugi::xml_attribute attribute : node.attributes()) {
        for (std::size_t at = 0; at < count; ++at)
            if (is(names[at], attribute.name()))
                fail(Reason::DstDuplicateAttribute,
                     {TvString(node.name()), TvString(attribute.name())});
        if (failed())
            return;
        if (count == names.size()) {
            fail(Reason::DstTooManyAttributes, {TvString(node.name())});
            return;
        }
        names[count++] = attribute.name();
    }
}

void Reader::readChildren(TvSmPersist& object, pugi::xml_node node, ChildReader readChild)
{
    if (++m_depth > dst::kMaxDepth)
        fail(Reason::DstTooDeep);
    for (pugi::xml_node child = node.first_child(); child && !failed();
         child = child.next_sibling()) {
        // "Unknown" goes for comments and text as well: what somebody wrote there is his. Blanks
        // are layout.
        if (child.type() == pugi::node_element ? !(this->*readChild)(object, child)
                                               : !isBlank(child))
            keepElement(object, child);
    }
    --m_depth;
}

namespace {

/// Whether the tree below @p node is nested more than @p limit deep; walks without recursion.
bool isDeeperThan(pugi::xml_node node, int limit)
{
    int depth = 0;
    for (pugi::xml_node at = node; at;) {
        if (at.first_child()) {
            at = at.first_child();
            if (++depth > limit)
                return true;
            continue;
        }
        while (at != node && !at.next_sibling()) {
            at = at.parent();
            --depth;
        }
        if (at == node)
            break;
        at = at.next_sibling();
    }
    return false;
}

} // namespace

void Reader::keepElement(TvSmPersist& owner, pugi::xml_node node)
{
    if (isDeeperThan(node, dst::kMaxDepth)) {
        fail(Reason::DstTooDeep);
        return;
    }
    std::uint64_t before = 0;
    for (pugi::xml_node next = node.next_sibling(); next && before == 0; next = next.next_sibling())
        if (next.type() == pugi::node_element)
            before = handleNumber(std::string_view(next.attribute(dst::kHandle).value()));
    Internals::makeExtras(owner).elements.push_back({before, onOneLine(node)});
}

// --- one function for each kind of parent: which children it knows
// ----------------------------------------------

bool Reader::readFileChild(TvSmPersist&, pugi::xml_node node)
{
    if (!is(node.name(), dst::kSheetSet))
        return false;
    if (m_setSeen)
        return fail(Reason::DstRepeatedPart, {TvString(node.name())});
    m_setSeen = true;
    readSet(node);
    return true;
}

void Reader::readSet(pugi::xml_node node)
{
    TvSmSheetSet& set = m_state.set();
    const std::uint64_t handle = readHandle(node);
    m_reused.insert(handle);
    if (failed())
        return;
    m_state.setPartHandle(set, handle);
    readAttributes(set, node, true);
    readChildren(set, node, &Reader::readSetChild);
}

bool Reader::readSetChild(TvSmPersist& owner, pugi::xml_node node)
{
    auto& set = static_cast<TvSmSheetSet&>(owner);
    const char* name = node.name();
    if (is(name, dst::kPageSetups))
        readReference(Internals::pageSetupsOf(set), set, node);
    else if (is(name, dst::kLabelBlock))
        readReference(Internals::labelBlockOf(set), set, node);
    else if (is(name, dst::kResources))
        readContainer(*set.getResourceLocations(), node, &Reader::readReferenceListChild);
    else if (is(name, dst::kCallouts))
        readContainer(*set.getCalloutBlocks(), node, &Reader::readReferenceListChild);
    else if (is(name, dst::kCategories))
        readContainer(*set.getViewCategories(), node, &Reader::readCategoriesChild);
    else if (is(name, dst::kSelections))
        readContainer(*set.getSheetSelections(), node, &Reader::readSelectionsChild);
    else if (is(name, dst::kPublishOptions)) {
        const std::uint64_t handle = readHandle(node);
        if (m_isFirst ? m_state.find(handle) != nullptr : !m_reused.insert(handle).second)
            return fail(Reason::DstDuplicateHandle,
                        {TvString(node.attribute(dst::kHandle).value())});
        if (!failed())
            m_state.setPartHandle(*set.getPublishOptions(), handle);
        readContainer(*set.getPublishOptions(), node, &Reader::readOptionsChild);
    } else {
        return readSubsetChild(owner, node);
    }
    return true;
}

bool Reader::readSubsetChild(TvSmPersist& owner, pugi::xml_node node)
{
    auto& subset = static_cast<TvSmSubset&>(owner);
    const char* name = node.name();
    if (is(name, dst::kSheet)) {
        if (auto* sheet = object<TvSmSheet>(node, &subset)) {
            Internals::appendChildUnchecked(subset, *sheet);
            readChildren(*sheet, node, &Reader::readSheetChild);
        }
    } else if (is(name, dst::kSubset)) {
        if (auto* child = object<TvSmSubset>(node, &subset)) {
            Internals::appendChildUnchecked(subset, *child);
            readChildren(*child, node, &Reader::readSubsetChild);
        }
    } else if (is(name, dst::kNewSheetLocation)) {
        readReference(Internals::locationOf(subset), subset, node);
    } else if (is(name, dst::kDefaultTemplate)) {
        readReference(Internals::templateOf(subset), subset, node);
    } else {
        return readComponentChild(owner, node);
    }
    return true;
}

bool Reader::readComponentChild(TvSmPersist& owner, pugi::xml_node node)
{
    if (!is(node.name(), dst::kProperty))
        return false;
    readProperty(static_cast<TvSmComponent&>(owner), node);
    return true;
}

bool Reader::readSheetChild(TvSmPersist& owner, pugi::xml_node node)
{
    auto& sheet = static_cast<TvSmSheet&>(owner);
    if (is(node.name(), dst::kProperty))
        readProperty(sheet, node);
    else if (is(node.name(), dst::kLayout))
        readReference(Internals::layoutOf(sheet), sheet, node);
    else if (is(node.name(), dst::kViews))
        readContainer(Internals::viewsOf(sheet), node, &Reader::readViewsChild);
    else
        return false;
    return true;
}

bool Reader::readViewsChild(TvSmPersist& owner, pugi::xml_node node)
{
    if (!is(node.name(), dst::kView))
        return readComponentChild(owner, node);
    if (auto* view = object<TvSmSheetView>(node, &owner)) {
        if (const pugi::xml_attribute category = node.attribute(dst::kViewCategory))
            Internals::categoryOf(*view) = handleNumber(std::string_view(category.value()));
        Internals::entries(static_cast<TvSmSheetViews&>(owner)).push_back(view);
        readChildren(*view, node, &Reader::readViewChild);
    }
    return true;
}

bool Reader::readViewChild(TvSmPersist& owner, pugi::xml_node node)
{
    if (!is(node.name(), dst::kViewReference))
        return readComponentChild(owner, node);
    readReference(Internals::referenceOf(static_cast<TvSmSheetView&>(owner)), owner, node);
    return true;
}

bool Reader::readCategoriesChild(TvSmPersist& owner, pugi::xml_node node)
{
    if (!is(node.name(), dst::kCategory))
        return readComponentChild(owner, node);
    if (auto* category = object<TvSmViewCategory>(node, &owner)) {
        Internals::entries(static_cast<TvSmViewCategories&>(owner)).push_back(category);
        readChildren(*category, node, &Reader::readCategoryChild);
    }
    return true;
}

bool Reader::readCategoryChild(TvSmPersist& owner, pugi::xml_node node)
{
    if (!is(node.name(), dst::kCallouts))
        return readComponentChild(owner, node);
    readContainer(Internals::calloutsOf(static_cast<TvSmViewCategory&>(owner)), node,
                  &Reader::readReferenceListChild);
    return true;
}

bool Reader::readSelectionsChild(TvSmPersist& owner, pugi::xml_node node)
{
    if (!is(node.name(), dst::kSelection))
        return readComponentChild(owner, node);
    if (auto* selection = object<TvSmSheetSelection>(node, &owner)) {
        Internals::entries(static_cast<TvSmSheetSelections&>(owner)).push_back(selection);
        readChildren(*selection, node, &Reader::readSelectionChild);
    }
    return true;
}

bool Reader::readSelectionChild(TvSmPersist& owner, pugi::xml_node node)
{
    if (!is(node.name(), dst::kMember))
        return readComponentChild(owner, node);
    const std::uint64_t handle = handleNumber(std::string_view(node.attribute(dst::kUse).value()));
    if (handle == 0)
        return fail(Reason::DstBadHandle,
                    {TvString(node.name()), TvString(node.attribute(dst::kUse).value())});
    Internals::entries(static_cast<TvSmSheetSelection&>(owner)).push_back(handle);
    return true;
}

bool Reader::readOptionsChild(TvSmPersist& owner, pugi::xml_node node)
{
    if (!is(node.name(), dst::kOutputFolder))
        return readComponentChild(owner, node);
    readReference(Internals::outputFolderOf(static_cast<TvSmPublishOptions&>(owner)), owner, node);
    return true;
}

template <class T>
bool Reader::readListed(TvSmReferenceCollection& list, pugi::xml_node node)
{
    if (T* reference = object<T>(node, &list)) {
        Internals::entries(list).push_back(reference);
        readChildren(*reference, node, &Reader::readNoChild);
    }
    return true;
}

bool Reader::readReferenceListChild(TvSmPersist& owner, pugi::xml_node node)
{
    auto& list = static_cast<TvSmReferenceCollection&>(owner);
    const char* name = node.name();
    if (is(name, dst::kUse)) {
        m_uses.push_back(
            {&list, handleNumber(std::string_view(node.attribute(dst::kUse).value()))});
        // Its place in the list is held, and filled when the reference is known.
        Internals::entries(list).push_back(nullptr);
        return true;
    }
    if (is(name, dst::kFileReference))
        return readListed<TvSmFileReference>(list, node);
    if (is(name, dst::kBlockReference))
        return readListed<TvSmTvDbBlockRecordReference>(list, node);
    if (is(name, dst::kLayoutReference))
        return readListed<TvSmTvDbLayoutReference>(list, node);
    if (is(name, dst::kViewReference))
        return readListed<TvSmTvDbViewReference>(list, node);
    if (is(name, dst::kObjectReference))
        return readListed<TvSmDbObjectReference>(list, node);
    return false;
}

// --- pieces
// ---------------------------------------------------------------------------------------------------------

void Reader::readContainer(TvSmPersist& container, pugi::xml_node node, ChildReader readChild)
{
    if (!m_containersSeen.insert(&container).second) {
        fail(Reason::DstRepeatedPart, {TvString(node.name())});
        return;
    }
    readAttributes(container, node, container.isA() == TvSmPublishOptions::desc());
    readChildren(container, node, readChild);
}

template <class T>
void Reader::readReference(T*& slot, TvSmPersist& owner, pugi::xml_node node)
{
    if (slot) {
        fail(Reason::DstRepeatedPart, {TvString(node.name())});
        return;
    }
    slot = object<T>(node, &owner);
    if (slot)
        readChildren(*slot, node, &Reader::readNoChild);
}

void Reader::readProperty(TvSmComponent& owner, pugi::xml_node node)
{
    TvSmCustomPropertyBag& bag = Internals::bagOf(owner);
    auto* value = object<TvSmCustomPropertyValue>(node, &bag);
    if (!value)
        return;
    readPropertyValue(*value, node);
    auto& entry = Internals::entries(bag).emplace_back();
    const std::string_view name = node.attribute(dst::kPropertyName).value();
    entry.name.setSlice(name.data(), name.size());
    entry.value = value;
    readChildren(*value, node, &Reader::readNoChild);
}

void Reader::readPropertyValue(TvSmCustomPropertyValue& value, pugi::xml_node node)
{
    const std::string_view text = node.attribute(dst::kPropertyValue).value();
    const char* type = node.attribute(dst::kPropertyType).value();
    Internals::typeOf(value) = TvVariant::kString;
    for (const dst::ValueType& row : dst::kValueTypes)
        if (is(row.name, type))
            Internals::typeOf(value) = row.type;
    const bool known = *type == '\0' || Internals::typeOf(value) != TvVariant::kString;
    if (!known) // of a newer program: shown as text, written back with its type
        Internals::makeExtras(value).attributes.push_back({dst::kPropertyType, type});
    if (Internals::typeOf(value) == TvVariant::kString)
        Internals::textOf(value).setSlice(text.data(), text.size());
    else
        std::from_chars(text.data(), text.data() + text.size(), Internals::numberOf(value));
}

void Reader::linkUses()
{
    std::unordered_map<TvSmReferenceCollection*, std::size_t> places;
    for (const Use& use : m_uses) {
        auto& entries = Internals::entries(*use.list);
        std::size_t& at = places[use.list];
        while (entries[at])
            ++at;
        auto* reference = tvrxCast<TvSmFileReference>(m_state.find(use.handle));
        const bool stands = reference && Internals::isInSet(*reference);
        entries[at] = stands ? reference : nullptr;
        ++at;
    }
    // One that points at nothing says nothing.
    for (const auto& [list, place] : places)
        std::erase(Internals::entries(*list), nullptr);
}

} // namespace

Status readObjects(const DstDocument& document, DatabaseState& state)
{
    return Reader(document, state).read();
}

} // namespace sm
