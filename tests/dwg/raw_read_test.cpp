#include "drawings.h"

using dwg::RawDrawing;

namespace {

const char* const kReadable[] = {"ac1015", "ac1018", "ac1021", "ac1024", "ac1027", "ac1032"};

struct KnownDrawing {
    std::string name;
    nlohmann::json facts;
};

std::vector<KnownDrawing> knownDrawings()
{
    std::vector<KnownDrawing> known;
    for (const char* version : kReadable)
        for (auto& [name, facts] : realDrawings(version))
            known.push_back({name, facts});
    return known;
}

RawDrawing opened(const std::string& name)
{
    auto drawing = RawDrawing::open(readFile(drawingsFolder() / name));
    if (!drawing)
        throw std::runtime_error(name + " " + std::to_string(int(drawing.status().reason())));
    return std::move(*drawing);
}

std::string textOf(const dwg::HeaderVariables& header, const char* name)
{
    const auto text = std::get<dwg::RawText>(*header.find(name));
    std::string plain = text.narrow;
    plain.append(text.wide.begin(), text.wide.end());
    return plain.substr(0, plain.find('\0'));
}

std::vector<std::uint32_t> dateOf(const dwg::HeaderVariables& header, const char* name)
{
    const auto date = std::get<dwg::DateStamp>(*header.find(name));
    return {date.day, date.milliseconds};
}

} // namespace

TEST(RawDrawing, TellsWhatIsKnownOfRealDrawings)
{
    const auto known = knownDrawings();
    if (known.empty())
        GTEST_SKIP() << "no real drawings here";
    for (const auto& [name, facts] : known) {
        SCOPED_TRACE(name);
        const RawDrawing drawing = opened(name);

        EXPECT_EQ(nameOf(drawing.version()), facts["version"]);
        EXPECT_EQ(drawing.objects().size(), facts["objects"]);
        EXPECT_EQ(drawing.objects().back().handle, hexValue(facts["highest_handle"]));
        EXPECT_EQ(drawing.header().handSeed(), hexValue(facts["handseed"]));
        for (const char* variable : {"INSUNITS", "TILEMODE", "PSLTSCALE"})
            EXPECT_EQ(drawing.header().integer(variable), facts[variable]) << variable;
        for (const char* variable : {"FINGERPRINTGUID", "VERSIONGUID"})
            EXPECT_EQ(textOf(drawing.header(), variable), facts[variable]);
        EXPECT_EQ(dateOf(drawing.header(), "TDCREATE"), facts["created"]);
        EXPECT_EQ(dateOf(drawing.header(), "TDUPDATE"), facts["updated"]);
    }
}

TEST(RawDrawing, TellsTheClassesOfRealDrawings)
{
    for (const auto& [name, facts] : knownDrawings()) {
        SCOPED_TRACE(name);
        const RawDrawing drawing = opened(name);
        nlohmann::json classes = nlohmann::json::array();
        for (const auto& record : drawing.classes().records())
            classes.push_back({record.number, record.dxfNameText()});
        EXPECT_EQ(classes, facts["classes"]);
    }
}

TEST(RawDrawing, FindsNothingWrongWithRealDrawings)
{
    for (const auto& [name, facts] : knownDrawings()) {
        const auto findings = opened(name).check();
        for (const auto& finding : findings)
            ADD_FAILURE() << name << ": " << static_cast<int>(finding.kind) << " "
                          << finding.section << " " << std::hex << finding.number;
    }
}

TEST(RawDrawing, HeaderVariablesAndClassesGoBackBitForBit)
{
    for (const auto& [name, facts] : knownDrawings()) {
        SCOPED_TRACE(name);
        const RawDrawing drawing = opened(name);
        const auto classes = *drawing.section("AcDb:Classes");
        const auto classesAgain = drawing.classes().section();
        EXPECT_EQ(classesAgain.size(), classes.size());
        const auto rereadClasses = dwg::ClassTable::read(drawing.version(), classesAgain);
        ASSERT_TRUE(rereadClasses);
        EXPECT_TRUE(rereadClasses->checksumRight());
        EXPECT_EQ(rereadClasses->records(), drawing.classes().records());

        // There and back: both times the record is spelt out anew.
        dwg::HeaderVariables header = drawing.header();
        const auto before = header.section();
        const std::int64_t units = header.integer("INSUNITS");
        ASSERT_TRUE(header.set("INSUNITS", units + 300));
        EXPECT_NE(header.section(), before);
        ASSERT_TRUE(header.set("INSUNITS", units));
        const auto again = header.section();
        auto reread = dwg::HeaderVariables::read(drawing.version(), again);
        ASSERT_TRUE(reread);
        EXPECT_TRUE(reread->checksumRight());
        for (const auto variable : header.names())
            EXPECT_EQ(*reread->find(variable), *drawing.header().find(variable)) << variable;
        // Some programs write a needless byte behind the last handle.
        EXPECT_LE(again.size(), before.size());
        EXPECT_GE(again.size() + 1, before.size());
    }
}

TEST(RawDrawing, AnUnknownHandleIsNotFound)
{
    const auto drawing = RawDrawing::open(minimalDrawing("empty-ac1015.dwg"));
    ASSERT_TRUE(drawing);
    EXPECT_EQ(drawing->objectBytes(0x4).status().failure(), base::Failure::NotFound);
    EXPECT_EQ(drawing->section("AcDb:Nothing").status().failure(), base::Failure::NotFound);
    EXPECT_TRUE(drawing->object(0x10));
}

TEST(RawDrawing, OtherFilesAreNoDrawings)
{
    for (const std::string text :
         {"", "AC10", "AC1014 and more of it", "hello, this is no drawing"}) {
        const auto drawing = RawDrawing::open({text.begin(), text.end()});
        EXPECT_EQ(drawing.status().reason(), base::Reason::DwgNotDrawing) << text;
        EXPECT_EQ(drawing.status().failure(), base::Failure::Unsupported) << text;
    }
}
