// Publishing from the command line: which sheets, in which order, where to, and what is said.

#include <filesystem>
#include <fstream>

#include <qpdf/QPDF.hh>
#include <qpdf/QPDFOutlineDocumentHelper.hh>
#include <qpdf/QPDFPageDocumentHelper.hh>
#include <qpdf/QPDFPageLabelDocumentHelper.hh>

#include <db/record_editor.h>
#include <db/tv_db_dictionary.h>
#include <db/tv_db_layout.h>
#include <dwg/dwg_codec.h>

#include "tool_scene.h"

namespace {

using Texts = std::vector<std::string>;

/// A copy of the sample project. Handles are those of its file.
class PublishVerb : public testing::Test
{
protected:
    void SetUp() override
    {
        dwg::install();
        for (const auto& entry : std::filesystem::directory_iterator(KV_LAKE_HOUSE))
            std::filesystem::copy(entry.path(), folder.path() / entry.path().filename(),
                                  std::filesystem::copy_options::recursive);
        // In its own folder nothing may be there already, and nothing may be written elsewhere.
        std::filesystem::permissions(folder.path(), std::filesystem::perms::owner_write,
                                     std::filesystem::perm_options::add);
        for (const auto& entry : std::filesystem::directory_iterator(folder.path()))
            std::filesystem::permissions(entry.path(), std::filesystem::perms::owner_write,
                                         std::filesystem::perm_options::add);
    }
    std::string at(const std::string& name) const { return (folder.path() / name).string(); }
    Said publish(Texts arguments, bool isJson = false)
    {
        arguments.insert(arguments.begin(), {"publish", at("lake-house.dst")});
        if (isJson)
            arguments.push_back("--json");
        return runLine(arguments);
    }
    /// The same with one that is quick to be drawn.
    Said publishOne(Texts arguments, bool isJson = false)
    {
        arguments.insert(arguments.end(), {"--select", kEast});
        return publish(arguments, isJson);
    }
    std::string bytesOf(const std::string& name) const
    {
        std::ifstream file(at(name), std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }
    static Texts numbersIn(const Said& said)
    {
        Texts numbers;
        const auto document = said.json();
        for (const auto& sheet : document["sheets"])
            numbers.push_back(sheet["number"]);
        return numbers;
    }
    Texts pdfsIn(const std::string& name) const
    {
        Texts names;
        for (const auto& entry : std::filesystem::directory_iterator(folder.path() / name))
            names.push_back(entry.path().filename().string());
        std::ranges::sort(names);
        return names;
    }

    static constexpr char kElevations[] = "g17", kSouth[] = "g18", kEast[] = "g1A";
    static constexpr char kSite[] = "g8";
    static constexpr char kGeneral[] = "g5", kStructure[] = "g23", kSet[] = "g1";
    TempFolder folder;
};

/// What a PDF says of its pages.
struct Pdf {
    explicit Pdf(const std::string& path)
    {
        file.processFile(path.c_str());
        QPDFPageLabelDocumentHelper labelsOf(file);
        const auto pages = QPDFPageDocumentHelper(file).getAllPages();
        for (std::size_t i = 0; i < pages.size(); ++i)
            labels.push_back(
                labelsOf.getLabelForPage(static_cast<long long>(i)).getKey("/P").getUTF8Value());
        for (auto& top : QPDFOutlineDocumentHelper(file).getTopLevelOutlines())
            note(top, 0);
        title = file.getTrailer().getKey("/Info").getKey("/Title").getUTF8Value();
    }
    void note(QPDFOutlineObjectHelper& item, int depth)
    {
        outline.push_back(std::string(static_cast<std::size_t>(depth), ' ') + item.getTitle());
        for (auto& kid : item.getKids())
            note(kid, depth + 1);
    }

    QPDF file;
    Texts labels, outline;
    std::string title;
};

} // namespace

TEST_F(PublishVerb, AllSheetsBecomeOnePdfBesideTheSet)
{
    const Said said = publish({});
    EXPECT_EQ(said.code, cli::ExitCode::PartlyFailed);
    EXPECT_EQ(said.out, at("lake-house.pdf") + "\n");
    const Pdf pdf(at("lake-house.pdf"));
    EXPECT_EQ(pdf.labels, (Texts{"A-001", "A-101", "A-201", "A-202", "A-203", "A-301", "A-302",
                                 "A-401", "A-402", "A-501", "A-502", "A-503"}));
    EXPECT_EQ(pdf.outline,
              (Texts{"General", " A-001 - Cover", " A-101 - Site Plan", "Architecture", " Plans",
                     "  A-201 - Ground Floor", "  A-202 - Upper Floor", "  A-203 - Roof Plan",
                     " Sections", "  A-301 - Section A-A", "  A-302 - Section B-B", " Elevations",
                     "  A-401 - South and North", "  A-402 - East and West", " Details",
                     "  A-501 - Eaves and Window", "  A-502 - Foundation",
                     "  A-503 - Windows and Doors"}));
    EXPECT_EQ(pdf.title, "House at the Lake");
    EXPECT_NE(said.err.find("S-101 - Foundation Plan"), std::string::npos) << said.err;
    EXPECT_NE(said.err.find("12 of 13 sheets published, files: 1"), std::string::npos) << said.err;
}

TEST_F(PublishVerb, SelectedSheetsComeInTheOrderOfTheHandles)
{
    const Said said = publish({"--select", kEast, kGeneral, "--out", at("some")}, true);
    EXPECT_EQ(said.code, cli::ExitCode::Ok);
    EXPECT_EQ(numbersIn(said), (Texts{"A-402", "A-001", "A-101"}));
    EXPECT_EQ(Pdf(at("some.pdf")).labels, (Texts{"A-402", "A-001", "A-101"}));
    EXPECT_EQ(said.json()["files"], nlohmann::ordered_json({at("some.pdf")}));
    EXPECT_EQ(said.json()["published"], 3);
    EXPECT_EQ(said.json()["failed"], 0);
    EXPECT_EQ(said.json()["format"], "pdf");
}

TEST_F(PublishVerb, InReverseTheLastSheetIsTheFirst)
{
    EXPECT_EQ(numbersIn(publish({"--select", kElevations, "--reverse"}, true)),
              (Texts{"A-402", "A-401"}));
    EXPECT_EQ(Pdf(at("lake-house.pdf")).labels, (Texts{"A-402", "A-401"}));
}

TEST_F(PublishVerb, ExcludedSheetsAreLeftOut)
{
    runLine({"set", at("lake-house.dst"), kSouth, "excluded=yes"});
    EXPECT_EQ(numbersIn(publish({"--select", kElevations}, true)), Texts{"A-402"});
    runLine({"set", at("lake-house.dst"), kElevations, "excluded=yes"});
    const Said said = publish({"--select", kElevations});
    EXPECT_EQ(said.code, cli::ExitCode::NoInput);
    EXPECT_NE(said.err.find("E24423"), std::string::npos) << said.err;
}

TEST_F(PublishVerb, EachSheetMayGetItsOwnFile)
{
    const Said pdfs = publish(
        {"--select", kElevations, "--format", "pdf-per-sheet", "--out", at("sheets")}, true);
    EXPECT_EQ(pdfs.code, cli::ExitCode::Ok);
    EXPECT_EQ(pdfsIn("sheets"), (Texts{"A-401 South and North.pdf", "A-402 East and West.pdf"}));
    EXPECT_EQ(pdfs.json()["sheets"][0]["file"], at("sheets/A-401 South and North.pdf"));
    EXPECT_EQ(publishOne({"--format", "svg"}).code, cli::ExitCode::Ok);
    EXPECT_EQ(pdfsIn("lake-house"), Texts{"A-402 East and West.svg"}) << "beside the set";
}

TEST_F(PublishVerb, TheBytesDoNotDependOnTheJobs)
{
    publish({"--select", kElevations, kGeneral, "--jobs", "1", "--out", at("one.pdf")});
    publish({"--select", kElevations, kGeneral, "--jobs", "2", "--out", at("two.pdf")});
    EXPECT_GT(bytesOf("one.pdf").size(), 1000u);
    EXPECT_TRUE(bytesOf("one.pdf") == bytesOf("two.pdf"));
}

TEST_F(PublishVerb, MissingDrawingsAloneGiveNoFile)
{
    const Said said = publish({"--select", kStructure}, true);
    EXPECT_EQ(said.code, cli::ExitCode::NoInput);
    EXPECT_FALSE(std::filesystem::exists(at("lake-house.pdf")));
}

TEST_F(PublishVerb, AMissingLayoutIsToldAndTheRestGoesOn)
{
    std::string text = bytesOf("lake-house.dst");
    const std::string name = "A-401 South and North\"";
    const std::size_t place = text.find("objectName=\"" + name);
    ASSERT_NE(place, std::string::npos);
    text.replace(place, 12 + name.size(), "objectName=\"Gone\"");
    const std::size_t handle = text.rfind("object=\"", place);
    text.replace(handle, text.find('"', handle + 8) + 1 - handle, "object=\"FFFF\"");
    std::ofstream(at("lake-house.dst"), std::ios::binary) << text;
    const Said said = publish({"--select", kElevations}, true);
    EXPECT_EQ(said.code, cli::ExitCode::PartlyFailed);
    EXPECT_FALSE(said.json()["sheets"][0]["ok"]);
    EXPECT_TRUE(said.json()["sheets"][0]["file"].is_null());
    EXPECT_FALSE(said.json()["sheets"][0]["error"]["code"].empty());
    EXPECT_TRUE(said.json()["sheets"][1]["ok"]);
    EXPECT_EQ(said.json()["warnings"].size(), 1u);
}

TEST_F(PublishVerb, WhatASheetLacksIsRemarkedAndTheSheetIsPublished)
{
    EXPECT_EQ(publish({"--select", kSite}, true).json()["sheets"][0]["remarks"],
              nlohmann::ordered_json::array());
    std::filesystem::remove(at("drawings/surroundings.dwg"));
    const Said said = publish({"--select", kSite}, true);
    EXPECT_EQ(said.code, cli::ExitCode::Ok);
    const auto sheet = said.json()["sheets"][0];
    EXPECT_EQ(sheet["number"], "A-101");
    EXPECT_EQ(sheet["handle"], kSite);
    EXPECT_TRUE(sheet["ok"]);
    EXPECT_TRUE(sheet["error"].is_null());
    EXPECT_EQ(sheet["file"], at("lake-house.pdf"));
    ASSERT_EQ(sheet["remarks"].size(), 1u);
    EXPECT_EQ(sheet["remarks"][0]["code"], "E23930");
    EXPECT_EQ(sheet["remarks"][0]["message"], "The external reference surroundings is not shown: "
                                              "there is no drawing surroundings.dwg.");
    ASSERT_EQ(said.json()["warnings"].size(), 1u);
    const std::string warning = said.json()["warnings"][0]["message"];
    EXPECT_TRUE(warning.starts_with("A-101 - Site Plan: The external reference")) << warning;
}

TEST_F(PublishVerb, NothingButAPdfIsEverReplaced)
{
    const std::string before = bytesOf("lake-house.dst");
    const Said said = publishOne({"--out", at("lake-house.dst")});
    EXPECT_EQ(said.code, cli::ExitCode::Usage);
    EXPECT_NE(said.err.find("E24424"), std::string::npos);
    EXPECT_TRUE(bytesOf("lake-house.dst") == before);
}

TEST_F(PublishVerb, AFolderGetsAFileWithTheNameOfTheSet)
{
    std::filesystem::create_directory(folder.path() / "out");
    EXPECT_EQ(publishOne({"--out", at("out")}).out, at("out/House at the Lake.pdf") + "\n");
}

TEST_F(PublishVerb, WrongWordsAreUsage)
{
    const Texts wrong[] = {{"--format", "dwf"},
                           {"--progress", "loud"},
                           {"--jobs", "0"},
                           {"--jobs", "17"},
                           {"--select", "no handle"}};
    for (const Texts& arguments : wrong)
        EXPECT_EQ(publish(arguments).code, cli::ExitCode::Usage) << arguments[1];
    EXPECT_EQ(publish({"--select", "gFFF"}).code, cli::ExitCode::NoInput);
    EXPECT_EQ(runLine({"publish", at("gone.dst")}).code, cli::ExitCode::NoInput);
}

TEST_F(PublishVerb, ProgressIsToldAsAsked)
{
    const std::string line = "1/1  A-402 East and West";
    EXPECT_NE(publishOne({}).err.find(line), std::string::npos);
    EXPECT_EQ(publishOne({"--progress", "none"}).err.find(line), std::string::npos);
    EXPECT_EQ(publishOne({}, true).err, "");
    const Said events = publish({"--select", kElevations, "--progress", "json", "--quiet"});
    std::istringstream lines(events.err);
    std::vector<nlohmann::json> parsed;
    for (std::string text; std::getline(lines, text);)
        parsed.push_back(nlohmann::json::parse(text));
    ASSERT_EQ(parsed.size(), 2u);
    EXPECT_EQ(parsed[1]["event"], "sheet");
    EXPECT_EQ(parsed[1]["index"], 2);
    EXPECT_EQ(parsed[1]["count"], 2);
    EXPECT_EQ(parsed[1]["number"], "A-402");
    EXPECT_TRUE(parsed[1]["ok"]);
}

TEST_F(PublishVerb, PageSetupsComeFromTheDrawingThatTheSetNames)
{
    const Said without = publishOne({"--page-setup", "A4"});
    EXPECT_EQ(without.code, cli::ExitCode::NoInput);
    EXPECT_NE(without.err.find("E24425"), std::string::npos);
    const auto name = [&](const std::string& drawing) {
        return runLine({"set", at("lake-house.dst"), kSet, "pageSetups=" + drawing, "--json"});
    };
    EXPECT_EQ(name(at("gone.dwt")).code, cli::ExitCode::NoInput);
    const Said named = name(at("drawings/details.dwg"));
    EXPECT_EQ(named.code, cli::ExitCode::Ok);
    EXPECT_EQ(named.json()["changes"][0]["to"], at("drawings/details.dwg"));
    EXPECT_EQ(publishOne({"--page-setup", "A4"}).code, cli::ExitCode::NoInput)
        << "it has none of that name";
    EXPECT_EQ(name("").json()["changes"][0]["to"], "");
    EXPECT_NE(publishOne({"--page-setup", "A4"}).err.find("E24425"), std::string::npos);
}

TEST_F(PublishVerb, APageSetupGivesAllSheetsItsPaper)
{
    {
        TvDbDatabase drawing(true, true);
        const TvDbObjectPointer<TvDbDictionary> all(drawing.plotSettingsDictionaryId(),
                                                    TvDb::kForWrite);
        auto* setup = new TvDbPlotSettings;
        setup->edit().setText("page_setup_name", u"Draft");
        setup->edit().setReal("paper_width", 210);
        setup->edit().setReal("paper_height", 148);
        setup->edit().setInteger("plot_type", TvDbPlotSettings::kLayout);
        TvDbObjectId id;
        ASSERT_EQ(all->setAt(u"Draft", setup, id), TvStatus::Ok);
        setup->close();
        ASSERT_EQ(drawing.saveAs(TvString(at("setups.dwg"))), TvStatus::Ok);
    }
    ASSERT_EQ(runLine({"set", at("lake-house.dst"), kSet, "pageSetups=" + at("setups.dwg")}).code,
              cli::ExitCode::Ok);
    const Texts sheets = {"--select", kElevations, "--format", "svg", "--out", at("sheets")};
    const auto widths = [&](Texts arguments) {
        arguments.insert(arguments.end(), sheets.begin(), sheets.end());
        EXPECT_EQ(publish(arguments).code, cli::ExitCode::Ok);
        Texts all;
        for (const std::string& name : pdfsIn("sheets")) {
            const std::string text = bytesOf("sheets/" + name);
            const std::size_t from = text.find("width=");
            all.push_back(text.substr(from, text.find(' ', from) - from));
        }
        return all;
    };
    EXPECT_EQ(widths({}), (Texts{"width=\"594.00mm\"", "width=\"594.00mm\""}));
    EXPECT_EQ(widths({"--page-setup", "draft"}),
              (Texts{"width=\"210.00mm\"", "width=\"210.00mm\""}));
}
