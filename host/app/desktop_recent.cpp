#include "app/desktop_recent.h"

#include <chrono>
#include <cstdio>
#include <sstream>

#include <base/atomic_replace.h>
#include <base/content_hash.h>
#include <base/kv_file_system.h>
#include <base/path_rules.h>
#include <pugixml.hpp>

namespace app {

namespace {

constexpr std::int64_t kLargestList = 8 << 20;
constexpr int kMostTries = 3; // others write it, too
constexpr char kProgram[] = "tarvik";
constexpr char kOwner[] = "http://freedesktop.org";

/// As the list has its times: UTC, with microseconds.
std::string timeText(std::int64_t utcNs)
{
    using namespace std::chrono;
    const sys_time<microseconds> now(microseconds(utcNs / 1000));
    const auto day = floor<days>(now);
    const year_month_day date(day);
    const hh_mm_ss time(now - day);
    char text[64];
    std::snprintf(
        text, sizeof text, "%04d-%02u-%02uT%02d:%02d:%02d.%06dZ", static_cast<int>(date.year()),
        static_cast<unsigned>(date.month()), static_cast<unsigned>(date.day()),
        static_cast<int>(time.hours().count()), static_cast<int>(time.minutes().count()),
        static_cast<int>(time.seconds().count()), static_cast<int>(time.subseconds().count()));
    return text;
}

void set(pugi::xml_node node, const char* name, const std::string& value)
{
    pugi::xml_attribute attribute = node.attribute(name);
    if (!attribute)
        attribute = node.append_attribute(name);
    attribute.set_value(value.c_str());
}

pugi::xml_node childOf(pugi::xml_node node, const char* name)
{
    const pugi::xml_node found = node.child(name);
    return found ? found : node.append_child(name);
}

pugi::xml_node withAttribute(pugi::xml_node node, const char* name, const char* attribute,
                             const std::string& value)
{
    pugi::xml_node found = node.find_child_by_attribute(name, attribute, value.c_str());
    if (!found) {
        found = node.append_child(name);
        set(found, attribute, value);
    }
    return found;
}

void makeList(pugi::xml_document& document)
{
    pugi::xml_node declaration = document.append_child(pugi::node_declaration);
    set(declaration, "version", "1.0");
    set(declaration, "encoding", "UTF-8");
    pugi::xml_node list = document.append_child("xbel");
    set(list, "version", "1.0");
    set(list, "xmlns:bookmark", "http://www.freedesktop.org/standards/desktop-bookmarks");
    set(list, "xmlns:mime", "http://www.freedesktop.org/standards/shared-mime-info");
}

void note(pugi::xml_node list, const std::string& address, const std::string& type,
          const std::string& now)
{
    pugi::xml_node bookmark = list.find_child_by_attribute("bookmark", "href", address.c_str());
    if (!bookmark) {
        bookmark = list.append_child("bookmark");
        set(bookmark, "href", address);
        set(bookmark, "added", now);
    }
    set(bookmark, "modified", now);
    set(bookmark, "visited", now);
    const pugi::xml_node metadata =
        withAttribute(childOf(bookmark, "info"), "metadata", "owner", kOwner);
    set(childOf(metadata, "mime:mime-type"), "type", type);
    const pugi::xml_node application = withAttribute(childOf(metadata, "bookmark:applications"),
                                                     "bookmark:application", "name", kProgram);
    set(application, "exec", "'tarvik %f'");
    set(application, "modified", now);
    set(application, "count",
        std::to_string(std::min(application.attribute("count").as_uint(), 1'000'000U) + 1));
}

} // namespace

TvString mimeTypeOf(const TvString& path)
{
    constexpr struct {
        const TvChar *extension, *type;
    } kTypes[] = {{u".dwg", u"image/vnd.dwg"},
                  {u".dwt", u"image/vnd.dwg"},
                  {u".dxf", u"image/vnd.dxf"},
                  {u".dst", u"application/x-tarvik-sheet-set+xml"}};
    const TvString extension = base::PathRules::native().extensionOf(path);
    for (const auto& each : kTypes)
        if (extension.compareNoCase(each.extension) == 0)
            return TvString(each.type);
    return {};
}

std::string fileAddress(const TvString& path)
{
    constexpr std::string_view kPlain = "-._~/", kDigits = "0123456789ABCDEF";
    std::string address = "file://";
    for (const char each : base::nativePath(path)) {
        const auto byte = static_cast<unsigned char>(each);
        const bool isLetter = (byte >= 'a' && byte <= 'z') || (byte >= 'A' && byte <= 'Z') ||
                              (byte >= '0' && byte <= '9');
        if (isLetter || kPlain.find(each) != std::string_view::npos)
            address += each;
        else
            (address += '%') += {kDigits[byte >> 4], kDigits[byte & 15]};
    }
    return address;
}

base::Status noteRecentFile(base::FileOps& files, base::Clock& clock, const TvString& list,
                            const TvString& path)
{
    const TvString type = mimeTypeOf(path);
    if (list.isEmpty() || type.isEmpty() || !base::PathRules::native().isAbsolute(path))
        return {};
    base::Status status;
    for (int tries = 0; tries < kMostTries; ++tries) {
        pugi::xml_document document;
        base::ReplaceRequest request;
        if (KvFileSystem::pathFileExists(list)) {
            const auto before = KvFileSystem::readFile(list, kLargestList);
            if (!before)
                return before.status();
            if (!document.load_buffer(before->data(), before->size(), pugi::parse_full) ||
                !document.child("xbel"))
                return {base::Failure::Damaged, base::Reason::ConfigDamaged, {list, u"xbel"}};
            request.expected = base::hashOf(*before);
        } else {
            makeList(document);
            request.mustNotExist = true;
        }
        note(document.child("xbel"), fileAddress(path), type.utf8(), timeText(clock.utcNs()));
        std::ostringstream text;
        document.save(text, "  ");
        const std::string bytes = std::move(text).str();
        request.bytes = std::as_bytes(std::span(bytes));
        status = base::replaceFile(files, list, request);
        if (status || (status.failure() != base::Failure::Conflict &&
                       status.failure() != base::Failure::Exists))
            break;
    }
    return status;
}

} // namespace app
