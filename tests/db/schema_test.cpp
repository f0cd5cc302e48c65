#include <set>

#include <db/schema.h>

namespace {

// "LAYER.color", as a failure names it.
std::string nameOf(const db::ClassDef& classDef, const db::FieldDef& field)
{
    return std::string(classDef.name()) + "." + std::string(db::fieldName(field.id));
}

} // namespace

TEST(Schema, EveryTableIsReadAndCompiledForEveryVersion)
{
    for (const db::ClassDef* each : db::allClasses()) {
        EXPECT_EQ(each->layout().name, each->name());
        for (const db::Version version : db::kVersions) {
            const db::Program& program = each->program(version);
            EXPECT_EQ(program.ops.size(), program.info.size()) << each->name();
        }
    }
    EXPECT_GT(db::allClasses().size(), 120u);
}

TEST(Schema, JumpsStayInsideTheirProgram)
{
    for (const db::ClassDef* each : db::allClasses())
        for (const db::Version version : db::kVersions) {
            const db::Program& program = each->program(version);
            for (std::size_t at = 0; at < program.ops.size(); ++at) {
                const db::Op& op = program.ops[at];
                const bool jumps = op.code == db::OpCode::Loop || op.code >= db::OpCode::Jump;
                if (jumps) {
                    EXPECT_GT(op.b, at) << each->name();
                    EXPECT_LE(op.b, program.ops.size()) << each->name();
                }
            }
        }
}

TEST(Schema, SlotsOfAStructDoNotOverlap)
{
    for (const db::ClassDef* each : db::allClasses()) {
        std::set<std::uint32_t> taken;
        for (const db::FieldDef& field : each->layout().fields) {
            std::uint32_t words = field.width;
            if (field.storage == db::Storage::Struct)
                words = field.structure->size();
            else if (field.storage == db::Storage::Array)
                words = 1;
            for (std::uint32_t i = 0; i < words; ++i)
                EXPECT_TRUE(taken.insert(field.slot + i).second) << nameOf(*each, field);
        }
        EXPECT_EQ(taken.size(), each->layout().size()) << each->name();
    }
}

TEST(Schema, FindsClassesByNameAndByNumber)
{
    const db::ClassDef* const layout = db::classNamed("LAYOUT");
    ASSERT_NE(layout, nullptr);
    EXPECT_EQ(layout->typeNumber(), 82);
    EXPECT_EQ(layout->kind(), db::ClassKind::Object);
    EXPECT_EQ(layout->marker(), "AcDbLayout");
    EXPECT_EQ(db::classNumbered(82), layout);
    EXPECT_EQ(db::classNumbered(80), db::classNamed("ACDBPLACEHOLDER"));
    EXPECT_TRUE(db::classNamed("3DFACE")->isEntity());
    EXPECT_EQ(db::classNamed("DICTIONARYVAR")->typeNumber(), 0);
}

TEST(Schema, KnowsNothingOfOtherNamesAndNumbers)
{
    EXPECT_EQ(db::classNamed("layout"), nullptr);
    EXPECT_EQ(db::classNamed("ACAD_EVALUATION_GRAPH"), nullptr);
    EXPECT_EQ(db::classNamed(""), nullptr);
    for (const int number : {-1, 0, 9, 0x2B, 0x4B, 500, 100000})
        EXPECT_EQ(db::classNumbered(number), nullptr) << number;
}

TEST(Schema, TwoNamesOfOneTableAreTwoClasses)
{
    const db::ClassDef* const pdf = db::classNamed("PDFDEFINITION");
    const db::ClassDef* const dwf = db::classNamed("DWFDEFINITION");
    ASSERT_NE(pdf, nullptr);
    ASSERT_NE(dwf, nullptr);
    EXPECT_NE(pdf, dwf);
    EXPECT_TRUE(dwf->layout().find(db::fieldId("path")));
}

TEST(Schema, KeepsTheGroupCodesOfDxf)
{
    const db::StructDef& layer = db::classNamed("LAYER")->layout();
    EXPECT_EQ(layer.find(db::fieldId("color"))->dxf, 62);
    EXPECT_EQ(layer.find(db::fieldId("flags"))->dxf, -1);
    const db::FieldDef* const start = db::classNamed("ARC")->layout().find(db::fieldId("start"));
    EXPECT_EQ(start->dxf, 50);
    EXPECT_TRUE(start->angle);
}

TEST(Schema, AProgramTellsTheGroupCodeOfItsVersion)
{
    const auto sizeCode = [](db::Version version) {
        const db::Program& program = db::classNamed("LINE")->program(version);
        for (const db::OpInfo& info : program.info)
            if (info.field && info.field->id == db::fieldId("graphics_size"))
                return static_cast<int>(info.dxf);
        return 0;
    };
    EXPECT_EQ(sizeCode(db::Version::Ac1021), 92);
    EXPECT_EQ(sizeCode(db::Version::Ac1024), 160);
}

TEST(Schema, LeavesOutWhatAVersionDoesNotHave)
{
    const auto has = [](db::Version version, const char* name) {
        const db::Program& program = db::classNamed("LAYER")->program(version);
        return std::any_of(program.info.begin(), program.info.end(),
                           [name](const db::OpInfo& info) {
                               return info.field && info.field->id == db::fieldId(name);
                           });
    };
    EXPECT_FALSE(has(db::Version::Ac1018, "material"));
    EXPECT_TRUE(has(db::Version::Ac1021, "material"));
    EXPECT_FALSE(has(db::Version::Ac1024, "visualstyle"));
    EXPECT_TRUE(has(db::Version::Ac1032, "visualstyle"));
    EXPECT_FALSE(has(db::Version::Ac1021, "xref_ref"));
}

TEST(FieldId, IsTheSameForTheSameNameOnly)
{
    EXPECT_EQ(db::fieldId("owner"), db::fieldId(std::string("owner")));
    EXPECT_NE(db::fieldId("owner"), db::fieldId("layer"));
    EXPECT_EQ(db::fieldName(db::fieldId("owner")), "owner");
    EXPECT_EQ(db::fieldId(""), db::FieldId::None);
    EXPECT_EQ(db::fieldName(db::FieldId::None), "");
}
