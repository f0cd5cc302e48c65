#include "audit_damages.h"
#include "drawing_changes.h"

using namespace audit_damages;

TEST(DrawingAudit, FindsEachDamage)
{
    for (const Damage& damage : kDamages) {
        const auto drawing = openBytes(minimalDrawing("line-ac1032.dwg"));
        ASSERT_EQ(listOf(db::auditDrawing(*drawing)), "");
        damage.make(*drawing);
        const auto findings = db::auditDrawing(*drawing);
        EXPECT_TRUE(hasFinding(findings, damage.rule, damage.severity))
            << db::auditCode(damage.rule).utf8() << " not among: " << listOf(findings);
    }
}

TEST(DrawingAudit, FindsWrongNeighboursInChains)
{
    const auto origin = minimal("line", db::Version::Ac1015);
    for (const auto& [handle, field, rule] :
         {std::tuple(kLine, "next", DrawingRule::ChainBroken),
          std::tuple(kOtherLine, "prev", DrawingRule::ChainDisagrees)}) {
        DrawingChanges changes(*origin);
        ASSERT_TRUE(changes.edit(handle).setFlag("nolinks", false));
        ASSERT_TRUE(changes.edit(kLine).setHandle("next", kOtherLine));
        ASSERT_TRUE(changes.edit(kOtherLine).setHandle("prev", kLine));
        ASSERT_TRUE(changes.edit(handle).setHandle(field, kLayerZero));
        const auto bytes = changes.write();
        ASSERT_TRUE(bytes);
        const auto drawing = openBytes(*bytes);
        const auto findings = db::auditDrawing(*drawing);
        EXPECT_TRUE(hasFinding(findings, rule, AuditSeverity::Error))
            << db::auditCode(rule).utf8() << " not among: " << listOf(findings);
    }
}

TEST(DrawingAudit, FindsDamagedFiles)
{
    const std::vector<std::uint8_t> sound = minimalDrawing("line-ac1015.dwg");
    dwg::install();
    std::set<DrawingRule> found;
    for (std::size_t at = 0x100; at < sound.size(); at += 37) {
        std::vector<std::uint8_t> bytes = sound;
        bytes[at] ^= 0x10;
        TvDbDatabase drawing(false, true);
        if (drawing.readDwgBytes(std::move(bytes)) != TvStatus::Ok)
            continue;
        for (const DrawingFinding& finding : db::auditDrawing(drawing))
            found.insert(finding.rule);
    }
    for (const DrawingRule rule : {DrawingRule::FileWrong, DrawingRule::ObjectDamaged})
        EXPECT_TRUE(found.count(rule)) << db::auditCode(rule).utf8();
}

TEST(DrawingAudit, NotesClassesThatAreNotKnown)
{
    forEachDrawing("mixed", [](TvDbDatabase& drawing, const nlohmann::json&) {
        EXPECT_TRUE(
            hasFinding(db::auditDrawing(drawing), DrawingRule::ClassUnknown, AuditSeverity::Note));
    });
}
