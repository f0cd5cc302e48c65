#include "config_tree.h"

#include <algorithm>
#include <cstdint>
#include <span>
#include <utility>

namespace {

using base::ConfigValues;
using Json = nlohmann::ordered_json;

constexpr char16_t kKeySeparator = u'\\';
constexpr std::size_t kMaxParts = 60;
constexpr int kMaxDepth = 64;         // a bit more than the longest key: what we write, we can read
constexpr const char* kOwnValue = ""; // name of a value that has others below it

bool isSurrogate(char16_t unit)
{
    return (unit & 0xf800) == 0xd800;
}

bool isPairAt(std::u16string_view text, std::size_t at)
{
    return at + 1 < text.size() && (text[at] & 0xfc00) == 0xd800 &&
           (text[at + 1] & 0xfc00) == 0xdc00;
}

/// Position of the first surrogate without its other half, or the size of the text.
std::size_t findLoneSurrogate(std::u16string_view text)
{
    std::size_t at = 0;
    while (at < text.size() && (!isSurrogate(text[at]) || isPairAt(text, at)))
        at += isSurrogate(text[at]) ? 2 : 1;
    return at;
}

/// "[json.exception.parse_error.101] parse error at line 1..." without what only a programmer
/// reads.
std::string withoutTag(const std::string& message)
{
    const std::size_t end = message.find("] ");
    return message.starts_with('[') && end != std::string::npos ? message.substr(end + 2) : message;
}

/// JSON texts are well-formed Unicode; a text that is not is written as an array of its pieces.
Json jsonOfText(std::u16string_view text)
{
    std::size_t at = findLoneSurrogate(text);
    if (at == text.size())
        return base::utf8FromUtf16(text);
    Json pieces = Json::array();
    for (; at < text.size(); at = findLoneSurrogate(text)) {
        if (at > 0)
            pieces.push_back(base::utf8FromUtf16(text.substr(0, at)));
        pieces.push_back(static_cast<int>(text[at]));
        text.remove_prefix(at + 1);
    }
    if (!text.empty())
        pieces.push_back(base::utf8FromUtf16(text));
    return pieces;
}

bool isSurrogateNumber(const Json& json)
{
    return json.is_number_unsigned() && json.get<std::uint64_t>() >= 0xd800 &&
           json.get<std::uint64_t>() <= 0xdfff;
}

std::optional<TvString> textOfPieces(const Json& pieces)
{
    TvString text;
    bool hasSurrogate = false; // an array of texts alone is somebody else's
    for (const Json& piece : pieces) {
        if (piece.is_string())
            text += TvString(piece.get_ref<const std::string&>());
        else if (isSurrogateNumber(piece))
            text += static_cast<TvChar>(piece.get<unsigned>());
        else
            return std::nullopt;
        hasSurrogate = hasSurrogate || !piece.is_string();
    }
    return hasSurrogate ? std::optional(text) : std::nullopt;
}

std::optional<TvString> textOf(const Json& json)
{
    if (json.is_string())
        return TvString(json.get_ref<const std::string&>());
    return json.is_array() ? textOfPieces(json) : std::nullopt;
}

std::optional<int> wholeNumberOf(const Json& json)
{
    if (!json.is_number_integer())
        return std::nullopt;
    if (json.is_number_unsigned() && json.get<std::uint64_t>() > 0x7fffffff)
        return std::nullopt;
    const auto number = json.get<std::int64_t>();
    return number >= INT32_MIN ? std::optional(static_cast<int>(number)) : std::nullopt;
}

std::optional<TarvikConfigValue> valueOf(const Json& json)
{
    if (const auto number = wholeNumberOf(json))
        return TarvikConfigValue::ofInt(*number);
    if (const auto text = textOf(json))
        return TarvikConfigValue::ofText(*text);
    return std::nullopt;
}

Json jsonOf(const TarvikConfigValue& value)
{
    if (value.type() == TarvikConfigValue::kInt)
        return value.intValue();
    return jsonOfText(value.textValue());
}

Json::iterator findMember(Json& object, const TvString& name, Json::iterator from)
{
    while (from != object.end() && !base::equalNoCase(TvString(from.key()), name))
        ++from;
    return from;
}

/// The member that holds what lies below @p name; made when there is none.
Json& openMember(Json& object, const TvString& name)
{
    const auto found = findMember(object, name, object.begin());
    Json& member = found != object.end() ? *found : object[name.utf8()] = Json::object();
    if (!member.is_object())
        member = Json{{kOwnValue, std::move(member)}};
    return member;
}

/// The place of the value itself.
Json& valueMember(Json& object, const TvString& name)
{
    const auto found = findMember(object, name, object.begin());
    Json& member = found != object.end() ? *found : object[name.utf8()];
    return member.is_object() ? member[kOwnValue] : member;
}

bool removeMember(Json& object, const TvString& name)
{
    const std::size_t before = object.size();
    for (auto at = findMember(object, name, object.begin()); at != object.end();
         at = findMember(object, name, at))
        at = object.erase(at);
    return object.size() != before;
}

/// Takes away what stands under @p parts, and the objects that hold nothing any more.
bool removeBelow(Json& object, std::span<const TvString> parts)
{
    if (parts.size() == 1)
        return removeMember(object, parts.front());
    bool removed = false;
    auto at = findMember(object, parts.front(), object.begin());
    while (at != object.end()) {
        const bool here = at->is_object() && removeBelow(*at, parts.subspan(1));
        at = here && at->empty() ? object.erase(at) : std::next(at);
        at = findMember(object, parts.front(), at);
        removed = removed || here;
    }
    return removed;
}

void collectValues(const Json& json, const TvString& key, ConfigValues& out)
{
    if (!json.is_object()) {
        if (const auto value = valueOf(json))
            out.emplace(key, *value);
        return;
    }
    for (const auto& [name, member] : json.items()) {
        const TvString part = TvString(name).toLower();
        if (part.isEmpty() && !key.isEmpty() && !member.is_object())
            collectValues(member, key, out);
        else if (!part.isEmpty() && part.find(kKeySeparator) == TvString::npos)
            collectValues(member, key.isEmpty() ? part : key + u"\\" + part, out);
    }
}

} // namespace

namespace base {

ConfigKey::ConfigKey(const TvString& key)
{
    std::u16string_view rest = key.view();
    while (!rest.empty()) {
        const std::size_t end = std::min(rest.find(kKeySeparator), rest.size());
        if (end > 0)
            m_parts.emplace_back(rest.substr(0, end));
        rest.remove_prefix(std::min(end + 1, rest.size()));
    }
    m_isValid = !m_parts.empty() && m_parts.size() <= kMaxParts &&
                findLoneSurrogate(key) == key.view().size();
}

TvString ConfigKey::folded() const
{
    TvString folded;
    for (const TvString& part : m_parts)
        folded.append(folded.isEmpty() ? u"" : u"\\").append(part.toLower());
    return folded;
}

std::optional<ConfigTree> ConfigTree::parse(std::string_view text, std::string& problem)
{
    ConfigTree tree;
    if (text.empty())
        return tree; // made, and never written
    bool tooDeep = false;
    const auto watchDepth = [&tooDeep](int depth, Json::parse_event_t, const Json&) {
        tooDeep = tooDeep || depth > kMaxDepth;
        return !tooDeep; // keeps nothing more, so that no later walk goes deep
    };
    try {
        tree.m_root = Json::parse(text, watchDepth);
    } catch (const Json::exception& error) {
        problem = withoutTag(error.what());
        return std::nullopt;
    }
    if (!tooDeep && tree.m_root.is_object())
        return tree;
    problem = tooDeep ? "too deep" : "no object";
    return std::nullopt;
}

std::string ConfigTree::text() const
{
    return m_root.dump(4) + "\n";
}

ConfigValues ConfigTree::values() const
{
    ConfigValues values;
    collectValues(m_root, {}, values);
    return values;
}

bool ConfigTree::set(const ConfigKey& key, const TarvikConfigValue& value)
{
    Json* object = &m_root;
    const auto& parts = key.parts();
    for (std::size_t i = 0; i + 1 < parts.size(); ++i)
        object = &openMember(*object, parts[i]);
    Json& place = valueMember(*object, parts.back());
    Json json = jsonOf(value);
    if (place == json)
        return false;
    place = std::move(json);
    return true;
}

bool ConfigTree::remove(const ConfigKey& key)
{
    return removeBelow(m_root, key.parts());
}

} // namespace base
