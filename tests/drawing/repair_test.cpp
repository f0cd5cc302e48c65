// Each damage that an audit finds is put right, and nothing else is touched.

#include <dwg/raw_drawing.h>

#include <db/tv_db_symbol_table.h>

#include "audit_damages.h"
#include "drawing_changes.h"

using namespace audit_damages;

namespace {

/// What cannot be put right without knowing more than the drawing tells.
const std::set<DrawingRule> kLeftAlone{
    DrawingRule::SheetDataNoDictionary,
    DrawingRule::SheetDataEntryMissing,
    DrawingRule::SheetDataLayoutGone,
};

std::vector<std::uint8_t> bytesOf(TvDbDatabase& drawing)
{
    auto bytes = drawing.toBytes(db::FileFormat::Dwg, 0);
    EXPECT_TRUE(bytes) << static_cast<int>(bytes.status().reason());
    return bytes ? std::move(*bytes) : std::vector<std::uint8_t>();
}

/// The objects whose bytes are not the same in the two files.
std::set<std::uint64_t> changedBytes(const std::vector<std::uint8_t>& a,
                                     const std::vector<std::uint8_t>& b)
{
    const auto before = dwg::RawDrawing::open(a), after = dwg::RawDrawing::open(b);
    EXPECT_TRUE(before && after);
    std::set<std::uint64_t> changed;
    for (const auto* one : {&*before, &*after})
        for (const dwg::ObjectLocation& object : one->objects()) {
            const auto old = before->objectBytes(object.handle);
            const auto now = after->objectBytes(object.handle);
            if (!old || !now || !std::ranges::equal(*old, *now))
                changed.insert(object.handle);
        }
    return changed;
}

/// The objects that findings are about, and their owners and lists: all that a repair may touch.
std::set<std::uint64_t> concerned(TvDbDatabase& drawing,
                                  const std::vector<DrawingFinding>& findings)
{
    std::set<std::uint64_t> handles;
    for (const DrawingFinding& finding : findings) {
        handles.insert(finding.handle);
        for (const TvString& argument : finding.arguments)
            if (std::uint64_t handle = 0; base::parseHex(argument.view(), handle))
                handles.insert(handle);
    }
    for (const TvDbObjectId id : {drawing.layoutDictionaryId(), drawing.namedObjectsDictionaryId(),
                                  drawing.symbolTableId(TvDb::SymbolTable::Layer),
                                  drawing.symbolTableId(TvDb::SymbolTable::Block)})
        handles.insert(id.handle().value());
    // Places among the tabs are those of all layouts.
    handles.insert(kPaperLayout);
    handles.insert(kModelLayout);
    return handles;
}

} // namespace

TEST(DrawingRepair, PutsEachDamageRightAndTouchesNothingElse)
{
    for (const Damage& damage : kDamages) {
        SCOPED_TRACE(db::auditCode(damage.rule).utf8());
        const auto broken = openBytes(minimalDrawing("line-ac1032.dwg"));
        damage.make(*broken);
        const auto before = db::auditDrawing(*broken);
        auto origin = broken->toBytes(db::FileFormat::Dwg, 0);
        const bool isSavable = static_cast<bool>(origin);
        broken->startUndoRecord();
        const db::DrawingRepair repair = db::repairDrawing(*broken);
        if (kLeftAlone.count(damage.rule)) {
            EXPECT_EQ(repair.fixed, 0) << listOf(repair.findings);
            EXPECT_TRUE(hasFinding(repair.findings, damage.rule, damage.severity));
            continue;
        }
        EXPECT_EQ(listOf(db::auditDrawing(*broken)), "");
        EXPECT_EQ(repair.left, 0);
        EXPECT_GE(repair.fixed, 1);
        for (const DrawingFinding& finding : repair.findings)
            EXPECT_TRUE(finding.isFixed);
        if (isSavable) {
            const auto now = bytesOf(*broken);
            EXPECT_EQ(listOf(db::auditDrawing(*openBytes(now))), "");
            const auto touchable = concerned(*broken, before);
            const auto old = dwg::RawDrawing::open(*origin);
            for (const std::uint64_t handle : changedBytes(*origin, now))
                EXPECT_TRUE(touchable.count(handle) || !old->objectBytes(handle))
                    << std::hex << handle;
        }
        EXPECT_EQ(broken->undo(), TvStatus::Ok);
        EXPECT_EQ(listOf(db::auditDrawing(*broken)), listOf(before));
    }
}

TEST(DrawingRepair, CompletesChainsAndLeavesNoneBehindAtASave)
{
    const auto origin = minimal("line", db::Version::Ac1015);
    for (const auto& [handle, field, target] :
         {std::tuple(kLine, "next", kLayerZero), std::tuple(kOtherLine, "prev", kLayerZero)}) {
        DrawingChanges changes(*origin);
        ASSERT_TRUE(changes.edit(handle).setFlag("nolinks", false));
        ASSERT_TRUE(changes.edit(kLine).setHandle("next", kOtherLine));
        ASSERT_TRUE(changes.edit(kOtherLine).setHandle("prev", kLine));
        ASSERT_TRUE(changes.edit(handle).setHandle(field, target));
        const auto bytes = changes.write();
        ASSERT_TRUE(bytes);
        const auto drawing = openBytes(*bytes);
        drawing->startUndoRecord();
        const db::DrawingRepair repair = db::repairDrawing(*drawing);
        EXPECT_EQ(repair.left, 0) << listOf(repair.findings);
        EXPECT_GE(repair.fixed, 1);
        EXPECT_EQ(listOf(db::auditDrawing(*savedAndRead(*drawing))), "");
        // Undone: whole all the same, for a save with half a chain would lose the rest.
        drawing->undo();
        const auto undone = savedAndRead(*drawing);
        const TvDbObjectPointer<TvDbBlockTableRecord> model(undone->modelSpaceId());
        EXPECT_EQ(model->entityIds().size(), 2u);
    }
}

TEST(DrawingRepair, EntitiesOfABlockThatIsGoneComeIntoOneOfTheirOwn)
{
    const auto drawing = openBytes(minimalDrawing("line-ac1032.dwg"));
    for (const std::uint64_t line : {kLine, kOtherLine})
        edit(*drawing, line, [](db::RecordEditor record) {
            record.setHandle("owner", kNobody);
            record.setInteger("entmode", 0);
        });
    edit(*drawing, kModelSpace, [](db::RecordEditor record) { listOf(record).resize(0); });
    const db::DrawingRepair repair = db::repairDrawing(*drawing);
    EXPECT_EQ(repair.left, 0) << listOf(repair.findings);
    const auto saved = savedAndRead(*drawing);
    EXPECT_EQ(listOf(db::auditDrawing(*saved)), "");
    const TvDbObjectPointer<TvDbBlockTable> blocks(saved->symbolTableId(TvDb::SymbolTable::Block));
    TvDbObjectId id;
    ASSERT_EQ(blocks->getIdAt(u"Recovered-ABC", id), TvStatus::Ok);
    const TvDbObjectPointer<TvDbBlockTableRecord> block(id);
    EXPECT_EQ(block->entityIds(), (std::vector{saved->find(kLine), saved->find(kOtherLine)}));
}

TEST(DrawingRepair, WhatHasAKeyTwiceGetsAnotherAndTheFirstKeepsIt)
{
    const auto drawing = openBytes(minimalDrawing("line-ac1032.dwg"));
    const TvDbObjectId id = drawing->namedObjectsDictionaryId();
    for (const TvChar* key : {u"ZA", u"ZB", u"ZC"}) {
        const TvDbObjectPointer<TvDbDictionary> named(id, TvDb::kForWrite);
        auto* record = new TvDbXrecord;
        TvDbObjectId entry;
        ASSERT_EQ(named->setAt(key, record, entry), TvStatus::Ok);
        record->close();
    }
    edit(*drawing, id, [](db::RecordEditor record) {
        auto keys = record.array("keys");
        keys.setText(keys.size() - 2, u"za");
        keys.setText(keys.size() - 1, u"ZA-2");
    });
    EXPECT_EQ(db::repairDrawing(*drawing).left, 0);
    const TvDbObjectPointer<TvDbDictionary> named(id);
    const auto entries = named->entries();
    std::vector<TvString> keys;
    for (std::size_t i = entries.size() - 3; i < entries.size(); ++i)
        keys.push_back(entries[i].first);
    EXPECT_EQ(keys, (std::vector<TvString>{u"ZA", u"za-3", u"ZA-2"}));
}

TEST(DrawingRepair, KeysThatTheHeaderKnowsGoBackToTheirDictionaries)
{
    const auto drawing = openBytes(minimalDrawing("line-ac1032.dwg"));
    const TvDbObjectId layouts = drawing->layoutDictionaryId();
    edit(*drawing, drawing->namedObjectsDictionaryId(), [](db::RecordEditor record) {
        auto keys = record.array("keys");
        for (std::uint32_t i = 0; i < keys.size(); ++i)
            if (keys.text(i) == u"ACAD_GROUP")
                keys.setText(i, u"ACAD_LAYOUT");
    });
    EXPECT_EQ(db::repairDrawing(*drawing).left, 0);
    EXPECT_EQ(drawing->layoutDictionaryId(), layouts);
    const TvDbObjectPointer<TvDbDictionary> named(drawing->namedObjectsDictionaryId());
    EXPECT_TRUE(named->has(u"ACAD_GROUP"));
}

TEST(DrawingRepair, RealDrawingsKeepEverythingThatNoFindingIsAbout)
{
    forEachDrawing("mixed", [](TvDbDatabase& drawing, const nlohmann::json&) {
        const auto before = bytesOf(drawing);
        std::set<std::uint64_t> allowed;
        const db::DrawingRepair repair = db::repairDrawing(drawing);
        for (const DrawingFinding& finding : repair.findings)
            EXPECT_TRUE(finding.isFixed || finding.severity != AuditSeverity::Error)
                << db::auditCode(finding.rule).utf8() << " "
                << base::hexText(finding.handle).utf8();
        const auto after = bytesOf(drawing);
        const auto fresh = openBytes(before);
        allowed = concerned(*fresh, repair.findings);
        const auto old = dwg::RawDrawing::open(before);
        for (const std::uint64_t handle : changedBytes(before, after))
            EXPECT_TRUE(allowed.count(handle) || !old->objectBytes(handle)) << std::hex << handle;
        EXPECT_EQ(db::repairDrawing(*openBytes(after)).fixed, 0);
    });
}

TEST(DrawingRepair, DamagedFilesAreRepairedOrLeftButNeverMadeWorse)
{
    const std::vector<std::uint8_t> sound = minimalDrawing("line-ac1015.dwg");
    dwg::install();
    for (std::size_t at = 0x100; at < sound.size(); at += 53) {
        std::vector<std::uint8_t> bytes = sound;
        bytes[at] ^= 0x10;
        TvDbDatabase drawing(false, true);
        if (drawing.readDwgBytes(std::move(bytes)) != TvStatus::Ok)
            continue;
        const std::size_t found = db::auditDrawing(drawing).size();
        EXPECT_LE(static_cast<std::size_t>(db::repairDrawing(drawing).left), found) << at;
        EXPECT_LE(db::auditDrawing(drawing).size(), found) << at;
    }
}
