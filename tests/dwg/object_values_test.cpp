// What records say about the real drawings, against what is known of them.

#include <base/tv_db_handle.h>

#include "object_samples.h"

namespace {

#define NEEDS_SAMPLES()                                                                            \
    if (sampleDrawings().empty())                                                                  \
    GTEST_SKIP() << "no drawings in " << drawingsFolder()

/// Calls @p check with the drawing, the record and the expected values of each entry of a list.
template <class Check>
void forEachExpected(const char* list, Check check)
{
    for (const auto& sample : sampleDrawings())
        for (const nlohmann::json& entry : sample->expected[list]) {
            SCOPED_TRACE(sample->name + " " + entry["handle"].get<std::string>());
            check(*sample, sample->record(hexValue(entry["handle"])), entry);
        }
}

/// The same where an entry is [name, handle].
void expectNames(const char* list, const char* className)
{
    for (const auto& sample : sampleDrawings())
        for (const nlohmann::json& entry : sample->expected[list]) {
            const db::Record record = sample->record(hexValue(entry[1]));
            ASSERT_TRUE(record.classDef()) << sample->name;
            EXPECT_EQ(record.classDef()->name(), className) << sample->name;
            EXPECT_EQ(plainText(record.text("name")), entry[0]) << sample->name;
        }
}

std::string textOf(const db::RecordView& fields, const char* name)
{
    return plainText(fields.text(name));
}

std::vector<double> planar(const db::Point& point)
{
    return {point.x, point.y};
}
std::vector<double> spatial(const db::Point& point)
{
    return {point.x, point.y, point.z};
}

// The name of the record that a reference points to.
std::string nameBehind(const SampleDrawing& sample, std::uint64_t handle)
{
    return plainText(sample.record(handle).text("name"));
}

std::vector<std::string> handleTexts(const db::ArrayView& handles)
{
    std::vector<std::string> texts;
    for (std::uint32_t i = 0; i < handles.size(); ++i)
        texts.push_back(base::hexText(handles.handle(i)).utf8());
    return texts;
}

// Up to 2000 an owner knows only the ends of the chain of its entities.
std::vector<std::string> entitiesOf(const SampleDrawing& sample, const db::Record& block)
{
    if (sample.drawing.version() > dwg::Version::Ac1015)
        return handleTexts(block.array("owned"));
    std::vector<std::string> texts;
    std::uint64_t at = block.handle("first_entity");
    for (std::size_t i = 0; at != 0 && i < sample.drawing.objects().size(); ++i) {
        texts.push_back(base::hexText(at).utf8());
        if (at == block.handle("last_entity"))
            break;
        const auto object = sample.drawing.object(at);
        const auto entity = dwg::decodeCommonPart(*object, sample.context);
        at = entity->flag("nolinks") ? at + 1 : entity->handle("next");
    }
    return texts;
}

std::vector<std::string> viewportsOf(const SampleDrawing& sample, const db::Record& layout)
{
    std::vector<std::string> viewports;
    for (const std::string& text : entitiesOf(sample, sample.record(layout.handle("block_record"))))
        if (sample.typeName(*sample.drawing.object(hexValue(text))) == "VIEWPORT")
            viewports.push_back(text);
    return viewports;
}

} // namespace

TEST(ObjectValues, Layouts)
{
    NEEDS_SAMPLES();
    forEachExpected("layouts", [](const SampleDrawing& sample, const db::Record& layout,
                                  const nlohmann::json& entry) {
        EXPECT_EQ(textOf(layout.fields(), "name"), entry["name"]);
        EXPECT_EQ(layout.integer("tab_order"), entry["tab_order"]);
        EXPECT_EQ(layout.handle("block_record"), hexValue(entry["block_record"]));
        EXPECT_EQ(textOf(layout.fields(), "paper_size_name"), entry["paper_size"]);
        EXPECT_EQ(nlohmann::json({layout.real("paper_width"), layout.real("paper_height")}),
                  entry["paper_mm"]);
        EXPECT_EQ(textOf(layout.fields(), "plotter_config"), entry["plotter"]);
        EXPECT_EQ(textOf(layout.fields(), "style_sheet"), entry["style_sheet"]);
        EXPECT_EQ(textOf(layout.fields(), "page_setup_name"), entry["page_setup"]);
        const db::Point low = layout.point("limmin");
        const db::Point high = layout.point("limmax");
        EXPECT_EQ(nlohmann::json({low.x, low.y, high.x, high.y}), entry["limits"]);
        EXPECT_EQ(nlohmann::json(viewportsOf(sample, layout)), entry["viewports"]);
        const auto listed = handleTexts(layout.array("viewports")); // not before its first use
        EXPECT_TRUE(listed.empty() || nlohmann::json(listed) == entry["viewports"]);
    });
}

TEST(ObjectValues, Views)
{
    NEEDS_SAMPLES();
    forEachExpected("views",
                    [](const SampleDrawing&, const db::Record& view, const nlohmann::json& entry) {
                        EXPECT_EQ(textOf(view.fields(), "name"), entry["name"]);
                        EXPECT_EQ(view.real("height"), entry["height"]);
                        EXPECT_EQ(view.real("width"), entry["width"]);
                    });
}

TEST(ObjectValues, Viewports)
{
    NEEDS_SAMPLES();
    forEachExpected("viewports", [](const SampleDrawing&, const db::Record& viewport,
                                    const nlohmann::json& entry) {
        EXPECT_EQ(nlohmann::json(spatial(viewport.point("center"))), entry["center"]);
        EXPECT_EQ(viewport.real("width"), entry["width"]);
        EXPECT_EQ(viewport.real("height"), entry["height"]);
        EXPECT_EQ(viewport.real("view_height"), entry["view_height"]);
        EXPECT_EQ(nlohmann::json(planar(viewport.point("view_center"))), entry["view_center"]);
        EXPECT_EQ(viewport.integer("status"), entry["status"]);
    });
}

TEST(ObjectValues, Blocks)
{
    NEEDS_SAMPLES();
    forEachExpected("blocks", [](const SampleDrawing& sample, const db::Record& block,
                                 const nlohmann::json& entry) {
        EXPECT_EQ(textOf(block.fields(), "name"), entry["name"]);
        EXPECT_EQ(block.integer("anonymous"), entry["anonymous"]);
        EXPECT_EQ(block.integer("has_attdefs"), entry["has_attdefs"]);
        EXPECT_EQ(block.integer("is_xref"), entry["is_xref"]);
        EXPECT_EQ(textOf(block.fields(), "xref_path"), entry["xref_path"]);
        EXPECT_EQ(textOf(block.fields(), "description"), entry["description"]);
        if (entry["layout"].is_string()) {
            EXPECT_EQ(block.handle("layout"), hexValue(entry["layout"]));
        }
        std::vector<std::string> entities = entitiesOf(sample, block);
        EXPECT_EQ(entities.size(), entry["entities"]);
        entities.resize(std::min<std::size_t>(entities.size(), 400));
        EXPECT_EQ(nlohmann::json(entities), entry["entity_handles"]);
    });
}

TEST(ObjectValues, NamesOfSymbols)
{
    NEEDS_SAMPLES();
    expectNames("layers", "LAYER");
    expectNames("text_styles", "STYLE");
    expectNames("linetypes", "LTYPE");
    expectNames("dimension_styles", "DIMSTYLE");
    expectNames("application_ids", "APPID");
}

TEST(ObjectValues, InsertsAndAttributes)
{
    NEEDS_SAMPLES();
    forEachExpected("inserts", [](const SampleDrawing& sample, const db::Record& insert,
                                  const nlohmann::json& entry) {
        EXPECT_EQ(nameBehind(sample, insert.handle("block")), entry["block"]);
        EXPECT_EQ(nlohmann::json(spatial(insert.point("ins_pt"))), entry["point"]);
        EXPECT_EQ(nameBehind(sample, insert.handle("layer")), entry["layer"]);
    });
    forEachExpected("attribs", [](const SampleDrawing&, const db::Record& attribute,
                                  const nlohmann::json& entry) {
        EXPECT_EQ(textOf(attribute.fields(), "tag"), entry["tag"]);
        EXPECT_EQ(attribute.handle("owner"), hexValue(entry["owner"]));
    });
    forEachExpected("attdefs", [](const SampleDrawing&, const db::Record& definition,
                                  const nlohmann::json& entry) {
        EXPECT_EQ(textOf(definition.fields(), "tag"), entry["tag"]);
        EXPECT_EQ(textOf(definition.fields(), "prompt"), entry["prompt"]);
    });
}

TEST(ObjectValues, Texts)
{
    NEEDS_SAMPLES();
    for (const char* list : {"texts", "mtexts"})
        forEachExpected(
            list, [](const SampleDrawing&, const db::Record& text, const nlohmann::json& entry) {
                EXPECT_EQ(textOf(text.fields(), "text"), entry["text"]);
            });
    forEachExpected("texts", [](const SampleDrawing& sample, const db::Record& text,
                                const nlohmann::json& entry) {
        EXPECT_EQ(nameBehind(sample, text.handle("layer")), entry["layer"]);
    });
}

TEST(ObjectValues, KeysOfTheRootDictionary)
{
    NEEDS_SAMPLES();
    for (const auto& sample : sampleDrawings()) {
        const nlohmann::json& entry = sample->expected["root_dictionary"];
        const db::Record root = sample->record(hexValue(entry["handle"]));
        std::vector<std::string> keys;
        for (std::uint32_t i = 0; i < root.array("keys").size(); ++i)
            keys.push_back(plainText(root.array("keys").text(i)));
        EXPECT_EQ(nlohmann::json(keys), entry["strings"]) << sample->name;
    }
}

TEST(ObjectValues, ExtendedDataOfEntities)
{
    NEEDS_SAMPLES();
    forEachExpected("entities_with_xdata", [](const SampleDrawing& sample, const db::Record& entity,
                                              const nlohmann::json& entry) {
        std::vector<std::string> apps;
        std::vector<std::string> strings;
        const db::ArrayView groups = entity.array("eed");
        for (std::uint32_t i = 0; i < groups.size(); ++i) {
            apps.push_back(nameBehind(sample, groups[i].handle("app")));
            const db::ArrayView items = groups[i].array("items");
            for (std::uint32_t j = 0; j < items.size(); ++j)
                if (items[j].integer("code") == 1000)
                    strings.push_back(textOf(items[j], "text"));
        }
        EXPECT_EQ(nlohmann::json(apps), entry["apps"]);
        EXPECT_EQ(nlohmann::json(strings), entry["strings"]);
    });
}
