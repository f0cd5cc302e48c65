#pragma once

#include <db/drawing_audit.h>

#include <db/entity_chain.h>
#include <db/record_editor.h>
#include <db/tv_db_dictionary.h>
#include <db/tv_db_xrecord.h>

#include "real_drawing.h"

// For each rule of the audit a damage that breaks it, made to a drawing that breaks none.

namespace audit_damages {

using db::AuditSeverity;
using db::DrawingFinding;
using db::DrawingRule;

// In line-ac1032.dwg.
constexpr std::uint64_t kLayerZero = 0x10, kTextStyle = 0x11, kContinuous = 0x16,
                        kPaperSpace = 0x1B, kPaperLayout = 0x1E, kModelSpace = 0x1F,
                        kModelLayout = 0x22, kLine = 0x2E, kOtherLine = 0x2F, kNobody = 0xABC;

inline void edit(TvDbDatabase&, TvDbObjectId id, const std::function<void(db::RecordEditor)>& how)
{
    const TvDbObjectPointer<TvDbObject> object(id, TvDb::kForWrite);
    ASSERT_TRUE(object) << id.handle().text().utf8();
    how(object->edit());
}

inline void edit(TvDbDatabase& drawing, std::uint64_t handle,
                 const std::function<void(db::RecordEditor)>& how)
{
    edit(drawing, drawing.find(handle), how);
}

inline void set(TvDbDatabase& drawing, std::uint64_t handle, const char* field,
                std::uint64_t target)
{
    edit(drawing, handle,
         [&](db::RecordEditor record) { EXPECT_TRUE(record.setHandle(field, target)) << field; });
}

inline void setHeader(TvDbDatabase& drawing, const char* variable, std::uint64_t target)
{
    EXPECT_TRUE(drawing.editHeader().setHandle(variable, target)) << variable;
}

inline void setTable(TvDbDatabase& drawing, const char* field, std::uint64_t target)
{
    edit(drawing, drawing.symbolTableId(TvDb::SymbolTable::Block),
         [&](db::RecordEditor record) { EXPECT_TRUE(record.setHandle(field, target)) << field; });
}

/// What model space lists.
inline db::ArrayEditor listOf(db::RecordEditor block)
{
    return block.array(db::ownedListOf(block));
}

/// Puts an object among the named ones under the key of the sheet set's data.
inline void putSheetData(TvDbDatabase& drawing, TvDbObject* data)
{
    const TvDbObjectPointer<TvDbDictionary> named(drawing.namedObjectsDictionaryId(),
                                                  TvDb::kForWrite);
    TvDbObjectId id;
    ASSERT_EQ(named->setAt(u"AcSheetSetData", data, id), TvStatus::Ok);
    data->close();
}

inline void putManyWithoutOwner(TvDbDatabase& drawing)
{
    const TvDbObjectPointer<TvDbDictionary> named(drawing.namedObjectsDictionaryId(),
                                                  TvDb::kForWrite);
    for (int at = 0; at < 101; ++at) {
        auto* record = new TvDbXrecord;
        TvDbObjectId id;
        ASSERT_EQ(named->setAt(TvString().format(u"R%d", at), record, id), TvStatus::Ok);
        record->edit().setHandle("owner", 0);
        record->close();
    }
}

struct Damage {
    DrawingRule rule;
    AuditSeverity severity;
    void (*make)(TvDbDatabase&);
};

using D = TvDbDatabase;
using E = db::RecordEditor;

// clang-format off
inline const Damage kDamages[] = {
    {DrawingRule::MoreOfTheSame, AuditSeverity::Note, putManyWithoutOwner},
    {DrawingRule::HandleBeyondSeed, AuditSeverity::Warning, [](D& d) { setHeader(d, "HANDSEED", kLine); }},
    {DrawingRule::HardReferenceMissing, AuditSeverity::Error, [](D& d) { set(d, kLayerZero, "ltype", kNobody); }},
    {DrawingRule::SoftReferenceMissing, AuditSeverity::Note, [](D& d) {
         edit(d, d.namedObjectsDictionaryId(), [](E e) { e.array("values").setHandle(0, kNobody); }); }},
    {DrawingRule::OwnerMissing, AuditSeverity::Error, [](D& d) { set(d, kLine, "owner", kNobody); }},
    {DrawingRule::OwnerNone, AuditSeverity::Warning, [](D& d) { set(d, kPaperLayout, "owner", 0); }},
    {DrawingRule::OwnersInARing, AuditSeverity::Error, [](D& d) { set(d, kPaperLayout, "owner", kPaperLayout); }},
    {DrawingRule::NotListed, AuditSeverity::Error, [](D& d) { edit(d, kModelSpace, [](E e) { listOf(e).erase(0); }); }},
    {DrawingRule::ListedByAnother, AuditSeverity::Error, [](D& d) { set(d, kLine, "owner", kPaperSpace); }},
    {DrawingRule::ListedTwice, AuditSeverity::Error, [](D& d) {
         edit(d, kModelSpace, [](E e) { auto list = listOf(e); list.setHandle(list.add(), kLine); }); }},
    {DrawingRule::NotOfTheTable, AuditSeverity::Error, [](D& d) {
         edit(d, d.symbolTableId(TvDb::SymbolTable::Layer), [](E e) { auto list = e.array("entries"); list.setHandle(list.add(), kTextStyle); }); }},
    {DrawingRule::NameTwice, AuditSeverity::Error, [](D& d) {
         TvDbObjectId other = d.symbolTableId(TvDb::SymbolTable::Linetype);
         edit(d, other, [](E e) { e.setHandle("bylayer", kContinuous); auto list = e.array("entries"); list.setHandle(list.add(), 0x15); });
         edit(d, 0x15, [](E e) { e.setText("name", u"CONTINUOUS"); }); }},
    {DrawingRule::KeyTwice, AuditSeverity::Error, [](D& d) {
         edit(d, d.namedObjectsDictionaryId(), [](E e) { e.array("keys").setText(0, e.array("keys").text(1)); }); }},
    {DrawingRule::TableMissing, AuditSeverity::Error, [](D& d) { setHeader(d, "VIEWCTL", 0); }},
    {DrawingRule::LayerZeroMissing, AuditSeverity::Error, [](D& d) { edit(d, kLayerZero, [](E e) { e.setText("name", u"1"); }); }},
    {DrawingRule::ModelSpaceMissing, AuditSeverity::Error, [](D& d) { setTable(d, "model_space", 0); }},
    {DrawingRule::PaperSpaceMissing, AuditSeverity::Error, [](D& d) { setTable(d, "paper_space", 0); }},
    {DrawingRule::NamedObjectsMissing, AuditSeverity::Error, [](D& d) { setHeader(d, "DNAMEDOBJ", 0); }},
    {DrawingRule::LayoutDictionaryMissing, AuditSeverity::Error, [](D& d) {
         setHeader(d, "DLAYOUT", 0);
         const TvDbObjectPointer<TvDbDictionary> named(d.namedObjectsDictionaryId(), TvDb::kForWrite);
         EXPECT_EQ(named->setName(u"ACAD_LAYOUT", u"GONE"), TvStatus::Ok); }},
    {DrawingRule::ModelLayoutMissing, AuditSeverity::Error, [](D& d) { set(d, kModelLayout, "block_record", kPaperSpace); }},
    {DrawingRule::ModelLayoutTwice, AuditSeverity::Error, [](D& d) { set(d, kPaperLayout, "block_record", kModelSpace); }},
    {DrawingRule::LayoutBlockMissing, AuditSeverity::Error, [](D& d) { set(d, kPaperLayout, "block_record", 0); }},
    {DrawingRule::LayoutBlockDisagrees, AuditSeverity::Error, [](D& d) { set(d, kPaperSpace, "layout", kModelLayout); }},
    {DrawingRule::BlockLayoutDisagrees, AuditSeverity::Error, [](D& d) { set(d, kPaperSpace, "layout", kModelLayout); }},
    {DrawingRule::LayoutNotListed, AuditSeverity::Error, [](D& d) {
         edit(d, d.layoutDictionaryId(), [](E e) { e.array("keys").erase(0); }); }},
    {DrawingRule::LayoutNameDisagrees, AuditSeverity::Warning, [](D& d) { edit(d, kPaperLayout, [](E e) { e.setText("name", u"Other"); }); }},
    {DrawingRule::TabOrderTwice, AuditSeverity::Note, [](D& d) { edit(d, kPaperLayout, [](E e) { e.setInteger("tab_order", 0); }); }},
    {DrawingRule::LayerMissing, AuditSeverity::Error, [](D& d) { set(d, kLine, "layer", kOtherLine); }},
    {DrawingRule::SheetDataNoDictionary, AuditSeverity::Warning, [](D& d) { putSheetData(d, new TvDbXrecord); }},
    {DrawingRule::SheetDataEntryMissing, AuditSeverity::Warning, [](D& d) { putSheetData(d, new TvDbDictionary); }},
    {DrawingRule::SheetDataLayoutGone, AuditSeverity::Warning, [](D& d) { putSheetData(d, new TvDbDictionary); }},
};
// clang-format on

inline bool hasFinding(const std::vector<DrawingFinding>& findings, DrawingRule rule,
                       AuditSeverity severity)
{
    return std::any_of(findings.begin(), findings.end(), [&](const DrawingFinding& finding) {
        return finding.rule == rule && finding.severity == severity;
    });
}

inline std::string listOf(const std::vector<DrawingFinding>& findings)
{
    std::string all;
    for (const DrawingFinding& finding : findings)
        all += db::auditCode(finding.rule).utf8() + " ";
    return all;
}

} // namespace audit_damages
