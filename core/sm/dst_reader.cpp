#include "dst_reader.h"

#include <charconv>
#include <unordered_set>

#include "dst_names.h"
#include "xml_scanner.h"

namespace sm {

using base::Failure;
using base::Reason;
using base::Status;

namespace {

using Life = Internals::Life;
using Token = XmlScanner::Token;

/// Reads one text into one state; one use.
///
/// One function for each kind of parent knows the child elements that may stand there; what it does
/// not know is kept as it stands. After failing, every function returns quickly and the status
/// tells the first reason.
class Reader
{
public:
    Reader(std::span<char> text, const TvString& path, DatabaseState& state)
        : m_scanner(text.data(), text.data() + text.size()), m_path(path), m_state(state),
          m_isFirst(state.isUntouched())
    {
    }
    Status read();

private:
    /// What to do with a child element whose start was read: read it to its end, or say that it is
    /// unknown.
    using ChildReader = bool (Reader::*)(TvSmPersist& owner);

    bool failed() const { return !m_status; }
    bool fail(Reason reason, std::vector<TvString> arguments = {});
    bool failScan();
    TvString elementName() const { return TvString(m_scanner.name()); }
    bool is(std::string_view name) const { return m_scanner.name() == name; }
    std::string_view value(std::string_view name);

    void readProlog();
    void readRoot();
    void readRootAttributes();
    void readEpilog();
    std::uint64_t readHandle();
    bool claim(std::uint64_t handle);
    void displace(std::uint64_t handle, const TvSmPersist& part);
    template <class T>
    T* object(TvSmPersist* owner);
    template <class T>
    T* reuse(std::uint64_t handle, TvSmPersist* owner);
    void readAttributes(TvSmPersist& object, std::span<const Attribute> rows);
    void readAttributes(TvSmPersist& object)
    {
        readAttributes(object, Internals::attributesOf(object));
    }
    bool readExpected(TvSmPersist& object, std::span<const Attribute> rows);
    void readScanned(TvSmPersist& object, std::span<const Attribute> rows);
    const Attribute* rowOf(std::span<const Attribute> rows, std::size_t& expected,
                           std::string_view name) const;
    void setAttribute(TvSmPersist& object, const Attribute& row, std::string_view text);
    bool takeReserved(TvSmPersist& object, const XmlScanner::Attribute& attribute);
    void readChildren(TvSmPersist& object, ChildReader readChild);
    void readKnownChildren(TvSmPersist& object, std::string_view element, ChildReader readChild);
    void keepUnknown(TvSmPersist& owner);

    bool readFileChild(TvSmPersist& owner);
    bool readComponentChild(TvSmPersist& owner);
    bool readSubsetChild(TvSmPersist& owner);
    bool readSetChild(TvSmPersist& owner);
    bool readSheetChild(TvSmPersist& owner);
    bool readViewsChild(TvSmPersist& owner);
    bool readViewChild(TvSmPersist& owner);
    bool readCategoriesChild(TvSmPersist& owner);
    bool readCategoryChild(TvSmPersist& owner);
    bool readSelectionsChild(TvSmPersist& owner);
    bool readSelectionChild(TvSmPersist& owner);
    bool readReferenceListChild(TvSmPersist& owner);
    bool readOptionsChild(TvSmPersist& owner);
    bool readNoChild(TvSmPersist&) { return false; }

    void readSet();
    void readOptions();
    void readProperty(TvSmComponent& owner);
    template <class T>
    void readReference(T*& slot, TvSmPersist& owner);
    template <class T>
    bool readListed(TvSmReferenceCollection& list);
    void readContainer(TvSmPersist& container, ChildReader readChild);
    std::uint64_t readUse(TvSmPersist& owner);
    void keepUnknownOnUse(TvSmPersist& owner, std::uint64_t handle);
    void readUseContent(TvSmPersist& owner, std::uint64_t handle);
    void checkTwice();
    void linkUses();

    XmlScanner m_scanner;
    const TvString& m_path;
    DatabaseState& m_state;
    const bool m_isFirst; ///< Nothing can be known by its handle yet.
    Status m_status;
    bool m_setSeen = false;
    bool m_isExpecting =
        false; ///< The start tag was read as far as the handle, in the expected way.
    int m_depth = 0;
    std::uint64_t m_highest = 0;
    std::uint64_t m_nextHandle = 0;
    std::uint64_t m_childHandle = 0; ///< Of the child element that was read last, or its place.
    /// Objects whose handle stands for another one in this text: they get new ones once it is known
    /// which are free.
    std::vector<TvSmPersist*> m_displaced;
    std::unordered_set<std::uint64_t>
        m_claimed; ///< Handles of this text; unused while the index itself knows.
    struct Use {
        TvSmReferenceCollection* list;
        std::uint64_t handle;
    };
    std::vector<Use> m_uses; ///< Pointed at once everything is read.
};

bool Reader::fail(Reason reason, std::vector<TvString> arguments)
{
    if (!failed()) {
        arguments.insert(arguments.begin(), m_path);
        m_status = Status(Failure::Damaged, reason, std::move(arguments));
    }
    return true;
}

/// The scanner's problem as the reason.
bool Reader::failScan()
{
    const TvString line = TvString().format(u"%d", m_scanner.line());
    switch (m_scanner.problem()) {
    case XmlScanner::Problem::Doctype: return fail(Reason::DstDoctype);
    case XmlScanner::Problem::Encoding: return fail(Reason::DstBadEncoding, {line});
    case XmlScanner::Problem::TooDeep: return fail(Reason::DstTooDeep);
    case XmlScanner::Problem::TooManyAttributes:
        return fail(Reason::DstTooManyAttributes, {elementName()});
    case XmlScanner::Problem::None:
    case XmlScanner::Problem::Syntax: break;
    }
    return fail(Reason::DstNotXml, {line, base::escapedForDisplay(TvString(m_scanner.excerpt()))});
}

std::string_view Reader::value(std::string_view name)
{
    const XmlScanner::Attribute* attribute = m_scanner.find(name);
    return attribute ? m_scanner.valueOf(*attribute) : std::string_view();
}

// --- the document
// -----------------------------------------------------------------------------------------------------

Status Reader::read()
{
    readProlog();
    if (!failed())
        readRoot();
    if (!failed())
        readEpilog();
    if (!failed() && !m_setSeen)
        fail(Reason::DstMissingPart, {TvString(dst::kSheetSet)});
    if (!failed()) {
        linkUses();
        m_state.setNextHandle(std::max(m_nextHandle, m_highest + 1));
        for (TvSmPersist* object : m_displaced)
            m_state.giveNewHandle(*object);
    }
    return m_status;
}

/// Whether an XML declaration says another encoding than the one we read.
bool namesOtherEncoding(std::string_view declaration)
{
    const std::size_t at = declaration.find("encoding");
    if (declaration.substr(0, 6) != "<?xml " || at == std::string_view::npos)
        return false;
    const std::size_t quote = declaration.find_first_of("\"'", at);
    const std::size_t end =
        quote == std::string_view::npos ? quote : declaration.find(declaration[quote], quote + 1);
    if (end == std::string_view::npos)
        return true;
    return !base::equalNoCase(base::utf16FromUtf8(declaration.substr(quote + 1, end - quote - 1)),
                              u"UTF-8");
}

/// Up to the root's start; comments and the like are kept where they stand.
void Reader::readProlog()
{
    for (;;) {
        switch (m_scanner.next()) {
        case Token::Start: return;
        case Token::Comment: m_state.aroundRoot(true).emplace_back(m_scanner.raw()); break;
        case Token::Instruction:
            if (namesOtherEncoding(m_scanner.raw()))
                fail(Reason::DstBadEncoding, {TvString(u"1")});
            else if (m_scanner.raw().substr(0, 6) != "<?xml ")
                m_state.aroundRoot(true).emplace_back(m_scanner.raw());
            break;
        case Token::Text:
            if (m_scanner.isBlankText())
                break;
            [[fallthrough]];
        case Token::End:
        case Token::EndOfText:
        case Token::Error: failScan();
        }
        if (failed())
            return;
    }
}

void Reader::readEpilog()
{
    while (!failed()) {
        const Token token = m_scanner.next();
        if (token == Token::EndOfText)
            return;
        if (token == Token::Comment || token == Token::Instruction)
            m_state.aroundRoot(false).emplace_back(m_scanner.raw());
        else if (token != Token::Text || !m_scanner.isBlankText())
            failScan();
    }
}

void Reader::readRoot()
{
    if (!is(dst::kFile)) {
        fail(Reason::DstNotSheetSet);
        return;
    }
    if (!m_scanner.scanAttributes())
        failScan();
    if (!failed())
        readRootAttributes();
    readChildren(m_state.database(), &Reader::readFileChild);
}

void Reader::readRootAttributes()
{
    const std::string_view version = value(dst::kVersion);
    int major = 0;
    if (std::from_chars(version.data(), version.data() + version.size(), major).ec != std::errc()) {
        fail(Reason::DstNotSheetSet);
        return;
    }
    m_state.setVersion(TvString(version), major > dst::kMajor);
    m_nextHandle = handleNumber(value(dst::kNextHandle));
    if (m_nextHandle > DatabaseState::kCountedHandles)
        m_nextHandle = 0;
    for (const XmlScanner::Attribute& attribute : m_scanner.attributes())
        if (attribute.name != dst::kVersion && attribute.name != dst::kNextHandle &&
            m_scanner.checkName(attribute))
            Internals::makeExtras(m_state.database())
                .attributes.push_back(
                    {std::string(attribute.name), std::string(m_scanner.valueOf(attribute))});
    if (m_scanner.problem() != XmlScanner::Problem::None)
        failScan();
    checkTwice();
}

/// Refuses an element that has an attribute twice.
void Reader::checkTwice()
{
    if (const XmlScanner::Attribute* twice = m_scanner.duplicate())
        fail(Reason::DstDuplicateAttribute, {elementName(), TvString(twice->name)});
}

// --- objects
// ----------------------------------------------------------------------------------------------------------

std::uint64_t Reader::readHandle()
{
    static constexpr XmlScanner::Opening kOpening(dst::kHandle);
    std::string_view text;
    m_isExpecting = m_scanner.takeExpected(kOpening, text);
    if (!m_isExpecting) {
        if (!m_scanner.scanAttributes())
            failScan();
        text = value(dst::kHandle);
    }
    const std::uint64_t handle = handleNumber(text);
    if (handle == 0)
        fail(Reason::DstBadHandle, {elementName(), TvString(text)});
    if (handle < DatabaseState::kCountedHandles)
        m_highest = std::max(m_highest, handle);
    m_childHandle = handle;
    return handle;
}

/// False when this text has the handle already.
bool Reader::claim(std::uint64_t handle)
{
    const bool isNew =
        m_isFirst ? m_state.find(handle) == nullptr : m_claimed.insert(handle).second;
    if (!isNew)
        fail(Reason::DstDuplicateHandle, {TvSmObjectId(handle).getHandle()});
    return isNew;
}

/// Whoever has the handle gives way to a part that always is there.
void Reader::displace(std::uint64_t handle, const TvSmPersist& part)
{
    TvSmPersist* known = m_state.find(handle);
    if (known && known != &part)
        m_displaced.push_back(known);
}

/// The object that an earlier read made, emptied; null when there is none of that class.
template <class T>
T* Reader::reuse(std::uint64_t handle, TvSmPersist* owner)
{
    TvSmPersist* known = m_state.find(handle);
    if (!known)
        return nullptr;
    if (known->isA() != T::desc() || !m_state.canComeBack(*known, owner)) {
        m_displaced.push_back(known);
        return nullptr;
    }
    Internals::reset(*known);
    Internals::bind(*known, &m_state.database(), owner, Life::Attached);
    return static_cast<T*>(known);
}

/// The object of the element whose start was read.
template <class T>
T* Reader::object(TvSmPersist* owner)
{
    const std::uint64_t handle = readHandle();
    if (failed() || !claim(handle))
        return nullptr;
    T* result = m_isFirst ? nullptr : reuse<T>(handle, owner);
    if (!result)
        result = m_state.make<T>(handle, owner, Life::Attached);
    static const std::span<const Attribute> rows = Internals::attributesOf(T::desc());
    readAttributes(*result, rows);
    return result;
}

const Attribute* Reader::rowOf(std::span<const Attribute> rows, std::size_t& expected,
                               std::string_view name) const
{
    // Our own writer keeps the order of the table, so the row is nearly always at or behind the
    // expected one.
    const std::uint64_t key = nameKey(name);
    const auto matches = [&](const Attribute& row) {
        return row.key == key && row.name.size() == name.size() &&
               (name.size() <= 8 || row.name == name);
    };
    for (std::size_t at = expected; at < rows.size(); ++at) {
        if (matches(rows[at])) {
            expected = at + 1;
            return &rows[at];
        }
    }
    for (std::size_t at = 0; at < expected; ++at)
        if (matches(rows[at]))
            return &rows[at];
    return nullptr;
}

/// The attributes in the order of the table, as our own writer puts them. False, with nothing lost,
/// when they come otherwise.
bool Reader::readExpected(TvSmPersist& object, std::span<const Attribute> rows)
{
    std::string_view text;
    for (const Attribute& row : rows)
        if (m_scanner.takeExpected(row.opening, text))
            setAttribute(object, row, text);
    if (m_scanner.takeEndOfStart())
        return true;
    m_scanner.rewindStart();
    return false;
}

void Reader::readAttributes(TvSmPersist& object, std::span<const Attribute> rows)
{
    if (m_isExpecting && readExpected(object, rows))
        return;
    if (std::exchange(m_isExpecting, false) && !m_scanner.scanAttributes()) {
        failScan();
        return;
    }
    readScanned(object, rows);
}

/// Attributes in any order, known and unknown.
void Reader::readScanned(TvSmPersist& object, std::span<const Attribute> rows)
{
    std::size_t expected = 0;
    const Attribute* last = nullptr;
    bool inOrder = true;
    for (const XmlScanner::Attribute& attribute : m_scanner.attributes()) {
        const Attribute* row = rowOf(rows, expected, attribute.name);
        if (row) {
            setAttribute(object, *row, m_scanner.valueOf(attribute));
            inOrder = inOrder && row > last;
            last = row;
        } else if (attribute.name == dst::kHandle &&
                   &attribute == &m_scanner.attributes().front()) {
            continue;
        } else {
            inOrder = false;
            if (!m_scanner.checkName(attribute))
                break;
            if (!takeReserved(object, attribute))
                Internals::makeExtras(object).attributes.push_back(
                    {std::string(attribute.name), std::string(m_scanner.valueOf(attribute))});
        }
    }
    if (m_scanner.problem() != XmlScanner::Problem::None)
        failScan();
    // In the table's order nothing can stand twice.
    if (!inOrder)
        checkTwice();
}

void Reader::setAttribute(TvSmPersist& object, const Attribute& row, std::string_view text)
{
    void* field = row.field(object);
    switch (row.kind) {
    case AttributeKind::Text:
        static_cast<StoredText*>(field)->setSlice(text.data(), text.size());
        return;
    case AttributeKind::Flag: *static_cast<bool*>(field) = text == "1"; return;
    case AttributeKind::Word:
        std::from_chars(text.data(), text.data() + text.size(),
                        *static_cast<std::uint16_t*>(field));
        return;
    case AttributeKind::Long:
        std::from_chars(text.data(), text.data() + text.size(), *static_cast<long*>(field));
        return;
    case AttributeKind::Handle: *static_cast<std::uint64_t*>(field) = handleNumber(text); return;
    }
}

/// Attributes that are in no table: the handle where it stands late, and the type of a value.
bool Reader::takeReserved(TvSmPersist& object, const XmlScanner::Attribute& attribute)
{
    if (attribute.name == dst::kHandle)
        return Internals::handle(object) != 0;
    return attribute.name == dst::kPropertyType && object.isA() == TvSmCustomPropertyValue::desc();
}

void Reader::readChildren(TvSmPersist& object, ChildReader readChild)
{
    if (failed() || m_scanner.isEmptyElement())
        return;
    if (++m_depth > dst::kMaxDepth)
        fail(Reason::DstTooDeep);
    else
        readKnownChildren(object, m_scanner.name(), readChild);
    --m_depth;
}

/// A text without the line ends and blanks around it, which are layout and not its own.
std::string_view withoutBlanks(std::string_view text)
{
    constexpr char kBlanks[] = " \t\r\n";
    const std::size_t from = std::min(text.find_first_not_of(kBlanks), text.size());
    return text.substr(from, text.find_last_not_of(kBlanks) + 1 - from);
}

void Reader::readKnownChildren(TvSmPersist& object, std::string_view element, ChildReader readChild)
{
    std::size_t unplaced =
        Internals::extras(object) ? Internals::extras(object)->elements.size() : 0;
    while (!failed()) {
        const Token token = m_scanner.next();
        if (token == Token::Start) {
            m_childHandle = 0;
            if (!(this->*readChild)(object)) {
                keepUnknown(object);
                continue;
            }
            // What was unknown so far stood before this child.
            if (Internals::extras(object) && m_childHandle != 0)
                for (auto& unknown = Internals::extras(object)->elements; unplaced < unknown.size();
                     ++unplaced)
                    unknown[unplaced].before = m_childHandle;
        } else if (token == Token::End) {
            if (m_scanner.name() != element)
                failScan();
            return;
        } else if (token == Token::Error || token == Token::EndOfText) {
            failScan();
        } else if (token != Token::Text || !m_scanner.isBlankText()) {
            // What somebody wrote there is his; only blanks are layout.
            Internals::makeExtras(object).elements.push_back(
                {0, std::string(withoutBlanks(m_scanner.raw()))});
        }
    }
}

void Reader::keepUnknown(TvSmPersist& owner)
{
    const std::string_view element = m_scanner.skipElement(dst::kMaxDepth);
    if (element.empty())
        failScan();
    else
        Internals::makeExtras(owner).elements.push_back({0, std::string(element)});
}

// --- one function for each kind of parent
// -------------------------------------------------------------------------------

bool Reader::readFileChild(TvSmPersist&)
{
    if (!is(dst::kSheetSet))
        return false;
    if (m_setSeen)
        return fail(Reason::DstRepeatedPart, {elementName()});
    m_setSeen = true;
    readSet();
    return true;
}

void Reader::readSet()
{
    TvSmSheetSet& set = m_state.set();
    const std::uint64_t handle = readHandle();
    if (failed() || !claim(handle))
        return;
    displace(handle, set);
    m_state.setPartHandle(set, handle);
    readAttributes(set);
    readChildren(set, &Reader::readSetChild);
    m_childHandle = handle;
}

bool Reader::readSetChild(TvSmPersist& owner)
{
    auto& set = static_cast<TvSmSheetSet&>(owner);
    if (is(dst::kPageSetups))
        readReference(Internals::pageSetupsOf(set), set);
    else if (is(dst::kLabelBlock))
        readReference(Internals::labelBlockOf(set), set);
    else if (is(dst::kResources))
        readContainer(*set.getResourceLocations(), &Reader::readReferenceListChild);
    else if (is(dst::kCallouts))
        readContainer(*set.getCalloutBlocks(), &Reader::readReferenceListChild);
    else if (is(dst::kCategories))
        readContainer(*set.getViewCategories(), &Reader::readCategoriesChild);
    else if (is(dst::kSelections))
        readContainer(*set.getSheetSelections(), &Reader::readSelectionsChild);
    else if (is(dst::kPublishOptions))
        readOptions();
    else
        return readSubsetChild(owner);
    return true;
}

void Reader::readOptions()
{
    TvSmPublishOptions& options = *m_state.set().getPublishOptions();
    const std::uint64_t handle = readHandle();
    if (!Internals::markRead(options))
        fail(Reason::DstRepeatedPart, {elementName()});
    if (failed() || !claim(handle))
        return;
    displace(handle, options);
    m_state.setPartHandle(options, handle);
    readAttributes(options);
    readChildren(options, &Reader::readOptionsChild);
    m_childHandle = handle;
}

bool Reader::readSubsetChild(TvSmPersist& owner)
{
    auto& subset = static_cast<TvSmSubset&>(owner);
    if (is(dst::kSheet)) {
        if (auto* sheet = object<TvSmSheet>(&subset)) {
            Internals::appendChildUnchecked(subset, *sheet);
            readChildren(*sheet, &Reader::readSheetChild);
            m_childHandle = Internals::handle(*sheet);
        }
    } else if (is(dst::kSubset)) {
        if (auto* child = object<TvSmSubset>(&subset)) {
            Internals::appendChildUnchecked(subset, *child);
            readChildren(*child, &Reader::readSubsetChild);
            m_childHandle = Internals::handle(*child);
        }
    } else if (is(dst::kNewSheetLocation)) {
        readReference(Internals::locationOf(subset), subset);
    } else if (is(dst::kDefaultTemplate)) {
        readReference(Internals::templateOf(subset), subset);
    } else {
        return readComponentChild(owner);
    }
    return true;
}

bool Reader::readComponentChild(TvSmPersist& owner)
{
    if (!is(dst::kProperty))
        return false;
    readProperty(static_cast<TvSmComponent&>(owner));
    return true;
}

bool Reader::readSheetChild(TvSmPersist& owner)
{
    auto& sheet = static_cast<TvSmSheet&>(owner);
    if (is(dst::kProperty))
        readProperty(sheet);
    else if (is(dst::kLayout))
        readReference(Internals::layoutOf(sheet), sheet);
    else if (is(dst::kViews))
        readContainer(Internals::viewsOf(sheet), &Reader::readViewsChild);
    else
        return false;
    return true;
}

bool Reader::readViewsChild(TvSmPersist& owner)
{
    if (!is(dst::kView))
        return readComponentChild(owner);
    if (auto* view = object<TvSmSheetView>(&owner)) {
        Internals::entries(static_cast<TvSmSheetViews&>(owner)).push_back(view);
        readChildren(*view, &Reader::readViewChild);
        m_childHandle = Internals::handle(*view);
    }
    return true;
}

bool Reader::readViewChild(TvSmPersist& owner)
{
    if (!is(dst::kViewReference))
        return readComponentChild(owner);
    readReference(Internals::referenceOf(static_cast<TvSmSheetView&>(owner)), owner);
    return true;
}

bool Reader::readCategoriesChild(TvSmPersist& owner)
{
    if (!is(dst::kCategory))
        return readComponentChild(owner);
    if (auto* category = object<TvSmViewCategory>(&owner)) {
        Internals::entries(static_cast<TvSmViewCategories&>(owner)).push_back(category);
        readChildren(*category, &Reader::readCategoryChild);
        m_childHandle = Internals::handle(*category);
    }
    return true;
}

bool Reader::readCategoryChild(TvSmPersist& owner)
{
    if (!is(dst::kCallouts))
        return readComponentChild(owner);
    readContainer(Internals::calloutsOf(static_cast<TvSmViewCategory&>(owner)),
                  &Reader::readReferenceListChild);
    return true;
}

/// Each component is in a selection once, where it is named first.
void dropRepeated(std::vector<std::uint64_t>& members)
{
    std::vector<std::uint64_t> sorted = members;
    std::sort(sorted.begin(), sorted.end());
    if (std::adjacent_find(sorted.begin(), sorted.end()) == sorted.end())
        return;
    std::unordered_set<std::uint64_t> seen;
    std::erase_if(members, [&](std::uint64_t handle) { return !seen.insert(handle).second; });
}

bool Reader::readSelectionsChild(TvSmPersist& owner)
{
    if (!is(dst::kSelection))
        return readComponentChild(owner);
    if (auto* selection = object<TvSmSheetSelection>(&owner)) {
        Internals::entries(static_cast<TvSmSheetSelections&>(owner)).push_back(selection);
        readChildren(*selection, &Reader::readSelectionChild);
        dropRepeated(Internals::entries(*selection));
        m_childHandle = Internals::handle(*selection);
    }
    return true;
}

bool Reader::readSelectionChild(TvSmPersist& owner)
{
    if (!is(dst::kMember))
        return readComponentChild(owner);
    if (const std::uint64_t handle = readUse(owner))
        Internals::entries(static_cast<TvSmSheetSelection&>(owner)).push_back(handle);
    return true;
}

bool Reader::readOptionsChild(TvSmPersist& owner)
{
    if (!is(dst::kOutputFolder))
        return readComponentChild(owner);
    readReference(Internals::outputFolderOf(static_cast<TvSmPublishOptions&>(owner)), owner);
    return true;
}

template <class T>
bool Reader::readListed(TvSmReferenceCollection& list)
{
    if (T* reference = object<T>(&list)) {
        Internals::entries(list).push_back(reference);
        readChildren(*reference, &Reader::readNoChild);
        m_childHandle = Internals::handle(*reference);
    }
    return true;
}

bool Reader::readReferenceListChild(TvSmPersist& owner)
{
    auto& list = static_cast<TvSmReferenceCollection&>(owner);
    if (is(dst::kUse)) {
        // Its place in the list is held, and filled when the reference is known.
        m_uses.push_back({&list, readUse(list)});
        Internals::entries(list).push_back(nullptr);
        return true;
    }
    if (is(dst::kFileReference))
        return readListed<TvSmFileReference>(list);
    if (is(dst::kBlockReference))
        return readListed<TvSmTvDbBlockRecordReference>(list);
    if (is(dst::kLayoutReference))
        return readListed<TvSmTvDbLayoutReference>(list);
    if (is(dst::kViewReference))
        return readListed<TvSmTvDbViewReference>(list);
    if (is(dst::kObjectReference))
        return readListed<TvSmDbObjectReference>(list);
    return false;
}

// --- pieces
// -----------------------------------------------------------------------------------------------------------

void Reader::readContainer(TvSmPersist& container, ChildReader readChild)
{
    if (!Internals::markRead(container)) {
        fail(Reason::DstRepeatedPart, {elementName()});
        return;
    }
    const std::uint64_t place = dst::placeOfContainer(m_scanner.name());
    m_isExpecting = true; // it has no handle to begin with
    readAttributes(container);
    readChildren(container, readChild);
    m_childHandle = place;
}

template <class T>
void Reader::readReference(T*& slot, TvSmPersist& owner)
{
    if (slot) {
        fail(Reason::DstRepeatedPart, {elementName()});
        return;
    }
    slot = object<T>(&owner);
    if (!slot)
        return;
    readChildren(*slot, &Reader::readNoChild);
    m_childHandle = Internals::handle(*slot);
}

/// A pointer at another object by its handle. It is no object: what is unknown on it and in it
/// stays with @p owner.
std::uint64_t Reader::readUse(TvSmPersist& owner)
{
    if (!m_scanner.scanAttributes())
        failScan();
    const std::string_view text = value(dst::kUse);
    const std::uint64_t handle = handleNumber(text);
    if (handle == 0)
        fail(Reason::DstBadHandle, {elementName(), TvString(text)});
    if (!failed() && m_scanner.attributes().size() > 1)
        keepUnknownOnUse(owner, handle);
    if (!failed() && !m_scanner.isEmptyElement())
        readUseContent(owner, handle);
    m_childHandle = dst::placeOfUse(handle);
    return handle;
}

void Reader::keepUnknownOnUse(TvSmPersist& owner, std::uint64_t handle)
{
    auto& kept = Internals::makeExtras(owner).pointers[handle].attributes;
    kept.clear(); // of one that says the same: the last stands
    for (const XmlScanner::Attribute& attribute : m_scanner.attributes())
        if (attribute.name != dst::kUse && m_scanner.checkName(attribute))
            kept.push_back(
                {std::string(attribute.name), std::string(m_scanner.valueOf(attribute))});
    if (m_scanner.problem() != XmlScanner::Problem::None)
        failScan();
    checkTwice();
}

void Reader::readUseContent(TvSmPersist& owner, std::uint64_t handle)
{
    const std::string_view element = m_scanner.name();
    const auto keep = [&](std::string_view xml) {
        Internals::makeExtras(owner).pointers[handle].elements.emplace_back(xml);
    };
    while (!failed()) {
        const Token token = m_scanner.next();
        if (token == Token::Start) {
            const std::string_view unknown = m_scanner.skipElement(dst::kMaxDepth);
            unknown.empty() ? failScan() : (keep(unknown), true);
        } else if (token == Token::End) {
            if (m_scanner.name() != element)
                failScan();
            return;
        } else if (token == Token::Error || token == Token::EndOfText) {
            failScan();
        } else if (token != Token::Text || !m_scanner.isBlankText()) {
            keep(withoutBlanks(m_scanner.raw()));
        }
    }
}

void Reader::readProperty(TvSmComponent& owner)
{
    TvSmCustomPropertyBag& bag = Internals::bagOf(owner);
    auto* property = object<TvSmCustomPropertyValue>(&bag);
    if (!property)
        return;
    const std::string_view type = m_isExpecting ? std::string_view() : value(dst::kPropertyType);
    Internals::typeOf(*property) = TvVariant::kString;
    for (const dst::ValueType& row : dst::kValueTypes)
        if (type == row.name)
            Internals::typeOf(*property) = row.type;
    if (Internals::typeOf(*property) != TvVariant::kString) {
        const std::string_view number = value(dst::kPropertyValue);
        std::from_chars(number.data(), number.data() + number.size(),
                        Internals::numberOf(*property));
        Internals::textOf(*property).clear();
    } else if (!type.empty()) { // of a newer program: shown as text, written back with its type
        auto& unknown = Internals::makeExtras(*property).attributes;
        unknown.insert(unknown.begin(), {std::string(dst::kPropertyType), std::string(type)});
    }
    Internals::appendEntryUnchecked(bag, *property);
    readChildren(*property, &Reader::readNoChild);
    m_childHandle = Internals::handle(*property);
}

void Reader::linkUses()
{
    struct Place {
        std::size_t at = 0;
        std::unordered_set<const TvSmFileReference*> listed; ///< Each is in a list once.
    };
    std::unordered_map<TvSmReferenceCollection*, Place> places;
    for (const Use& use : m_uses) {
        auto& entries = Internals::entries(*use.list);
        auto& [at, listed] = places[use.list];
        while (entries[at])
            ++at;
        auto* reference = tvrxCast<TvSmFileReference>(m_state.find(use.handle));
        const bool stands = reference && Internals::isInSet(*reference) &&
                            reference->owner() != use.list && listed.insert(reference).second;
        entries[at++] = stands ? reference : nullptr;
    }
    // One that points at nothing says nothing.
    for (const auto& [list, place] : places)
        std::erase(Internals::entries(*list), nullptr);
}

} // namespace

Status readObjects(std::span<char> text, const TvString& path, DatabaseState& state)
{
    return Reader(text, path, state).read();
}

} // namespace sm
