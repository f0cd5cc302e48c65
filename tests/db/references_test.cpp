#include <db/group_items.h>
#include <db/record_editor.h>
#include <db/references.h>

namespace {

using Found = std::vector<std::pair<db::ReferenceKind, std::uint64_t>>;

Found referencesOf(const db::Record& record)
{
    Found found;
    EXPECT_TRUE(db::forEachReference(
        record, [&](const db::Reference& one) { found.emplace_back(one.kind, one.target); }));
    return found;
}

db::Record lineOnLayer(std::uint64_t layer)
{
    db::Record line(*db::classNamed("LINE"));
    db::RecordEditor(line).setHandle("layer", layer);
    return line;
}

} // namespace

using Kind = db::ReferenceKind;

TEST(References, AreFoundInFieldsAndArraysWithTheirKind)
{
    db::Record line = lineOnLayer(0x10);
    db::RecordEditor edit(line);
    edit.setHandle("owner", 0x1F);
    edit.setHandle("xdict", 0x30);
    db::ArrayEditor reactors = edit.array("reactors");
    reactors.setHandle(reactors.add(), 0x40);
    EXPECT_EQ(referencesOf(line), (Found{{Kind::SoftPointer, 0x1F},
                                         {Kind::SoftPointer, 0x40},
                                         {Kind::HardOwner, 0x30},
                                         {Kind::HardPointer, 0x10}}));
}

TEST(References, OfFieldsThatAreNotStoredDoNotCount)
{
    db::Record line = lineOnLayer(0x10);
    db::RecordEditor edit(line);
    edit.setHandle("ltype", 0x14);
    EXPECT_EQ(referencesOf(line).size(), 2u);
    edit.setInteger("ltype_flags", 0);
    EXPECT_EQ(referencesOf(line).size(), 1u);
    edit.setHandle("prev", 0x50);
    EXPECT_EQ(referencesOf(line).size(), 1u) << "neighbours are a matter of 2000";
    line.setVersion(db::Version::Ac1015);
    EXPECT_EQ(referencesOf(line).size(), 2u);
}

TEST(References, AreFoundInExtendedDataAndXrecords)
{
    db::Record line = lineOnLayer(0x10);
    db::ArrayEditor groups = db::RecordEditor(line).array("eed");
    db::RecordEditor group = groups[groups.add()];
    group.setHandle("app", 0x12);
    db::ArrayEditor items = group.array("items");
    items.resize(2);
    items[0].setInteger("code", 1005);
    items[0].setHandle("handle", 0x77);
    items[1].setInteger("code", 1070);
    EXPECT_EQ(
        referencesOf(line),
        (Found{{Kind::HardPointer, 0x12}, {Kind::SoftPointer, 0x77}, {Kind::HardPointer, 0x10}}));

    db::Record xrecord(*db::classNamed("XRECORD"));
    db::ArrayEditor list = db::RecordEditor(xrecord).structure("content").array("items");
    for (const int code : {320, 330, 340, 350, 360}) {
        db::RecordEditor item = list[list.add()];
        item.setInteger("code", code);
        item.setHandle("handle", static_cast<std::uint64_t>(code));
    }
    EXPECT_EQ(referencesOf(xrecord), (Found{{Kind::SoftPointer, 330},
                                            {Kind::HardPointer, 340},
                                            {Kind::SoftOwner, 350},
                                            {Kind::HardOwner, 360}}));
}

TEST(References, ARecordThatContradictsItselfIsTold)
{
    db::Record line = lineOnLayer(0x10);
    db::RecordEditor(line).setInteger("n_reactors", 3);
    EXPECT_FALSE(db::forEachReference(line, [](const db::Reference&) {}));
}

TEST(References, CanBeRetargeted)
{
    db::Record line = lineOnLayer(0x10);
    db::RecordEditor edit(line);
    edit.setHandle("owner", 0x1F);
    edit.setHandle("plotstyle", 0x20);
    EXPECT_TRUE(db::retargetReferences(line, [](const db::Reference& one) {
        return one.target == 0x20 ? std::uint64_t(0) : one.target + 0x100;
    }));
    EXPECT_EQ(line.handle("layer"), 0x110u);
    EXPECT_EQ(line.handle("owner"), 0x11Fu);
    EXPECT_EQ(line.handle("plotstyle"), 0u);
    EXPECT_EQ(referencesOf(line).size(), 2u);
}

TEST(GroupItems, KindsFollowFromCodes)
{
    EXPECT_EQ(db::xrecordItemKind(1), db::ItemKind::Text);
    EXPECT_EQ(db::xrecordItemKind(10), db::ItemKind::Point);
    EXPECT_EQ(db::xrecordItemKind(40), db::ItemKind::Real);
    EXPECT_EQ(db::xrecordItemKind(90), db::ItemKind::Long);
    EXPECT_EQ(db::xrecordItemKind(290), db::ItemKind::Byte);
    EXPECT_EQ(db::xrecordItemKind(330), db::ItemKind::Handle);
    EXPECT_EQ(db::xrecordItemKind(80), std::nullopt);
    EXPECT_EQ(db::xrecordItemKind(-5), std::nullopt);
    EXPECT_EQ(db::extendedItemKind(1002), db::ItemKind::Brace);
    EXPECT_EQ(db::extendedItemKind(1003), db::ItemKind::Handle);
    EXPECT_EQ(db::extendedItemKind(1), std::nullopt);
}
