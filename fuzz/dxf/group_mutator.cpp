#include "group_mutator.h"

#include <cstring>
#include <random>
#include <string>
#include <string_view>
#include <vector>

namespace {

struct Group {
    std::string code, value;
};

// What breaks readers: limits, none, another kind of value, markers, ends of what is open.
constexpr std::string_view kValues[] = {
    "",
    "0",
    "-1",
    "1",
    "65535",
    "2147483647",
    "4294967295",
    "1e308",
    "-1e308",
    "nan",
    "1E-320",
    "FFFFFFFFFFFF",
    "2A",
    "0.5",
    "{",
    "}",
    "EOF",
    "SECTION",
    "ENDSEC",
    "TABLE",
    "ENDTAB",
    "BLOCK",
    "ENDBLK",
    "SEQEND",
    "INSERT",
    "POLYLINE",
    "VERTEX",
    "ATTRIB",
    "LINE",
    "HATCH",
    "MTEXT",
    "SPLINE",
    "DICTIONARY",
    "XRECORD",
    "LAYOUT",
    "LAYER",
    "AcDbEntity",
    "\\U+D800",
    "\\M+182",
    "^",
    "ABC",
    "*Model_Space",
    "CLASSES",
    "HEADER",
    "$ACADVER",
    "AC1015",
    "AC1032",
    "MLINE",
    "VIEWPORT",
    "LWPOLYLINE",
    "IMAGE",
    "{ACAD_REACTORS",
    "{ACAD_XDICTIONARY",
    "Embedded Object",
    "MLINESTYLE",
};
constexpr std::string_view kCodes[] = {"0",   "1",    "2",    "5",    "8",    "10",   "20",   "40",
                                       "42",  "62",   "66",   "67",   "70",   "71",   "72",   "73",
                                       "90",  "91",   "92",   "93",   "100",  "101",  "102",  "105",
                                       "280", "290",  "310",  "330",  "340",  "350",  "360",  "420",
                                       "999", "1000", "1001", "1002", "1005", "1010", "1071", "-5"};

std::vector<Group> groupsOf(std::string_view text)
{
    std::vector<Group> groups;
    const auto line = [&] {
        const auto stop = text.find('\n');
        const std::string found(text.substr(0, stop));
        text.remove_prefix(stop == text.npos ? text.size() : stop + 1);
        return found;
    };
    while (!text.empty()) {
        Group group;
        group.code = line();
        group.value = line();
        groups.push_back(std::move(group));
    }
    return groups;
}

void changeOnce(std::vector<Group>& groups, std::minstd_rand& random)
{
    const auto pick = [&](std::size_t count) { return random() % count; };
    const std::size_t at = pick(groups.size());
    const auto place = [&](std::size_t i) {
        return groups.begin() + static_cast<std::ptrdiff_t>(i);
    };
    switch (pick(7)) {
    case 0: groups[at].value = kValues[pick(std::size(kValues))]; break;
    case 1: groups[at].code = kCodes[pick(std::size(kCodes))]; break;
    case 2: groups[at].value = groups[pick(groups.size())].value; break;
    case 3: groups.insert(place(at), Group(groups[pick(groups.size())])); break;
    case 4: std::swap(groups[at], groups[pick(groups.size())]); break;
    case 5: {
        const std::size_t count = std::min<std::size_t>(1 + pick(20), groups.size() - at);
        const std::vector<Group> copied(place(at), place(at + count));
        groups.insert(place(pick(groups.size())), copied.begin(), copied.end());
        break;
    }
    default:
        if (groups.size() > 1)
            groups.erase(place(at));
    }
}

} // namespace

std::size_t mutateGroups(std::uint8_t* data, std::size_t size, std::size_t most, unsigned seed)
{
    std::minstd_rand random(seed);
    std::vector<Group> groups = groupsOf({reinterpret_cast<const char*>(data), size});
    if (groups.empty())
        groups.push_back({"0", "SECTION"});
    for (auto changes = 1 + random() % 4; changes > 0; --changes)
        changeOnce(groups, random);
    std::string text;
    for (const Group& group : groups)
        text += group.code + '\n' + group.value + '\n';
    const std::size_t made = std::min(text.size(), most);
    std::memcpy(data, text.data(), made);
    return made;
}
