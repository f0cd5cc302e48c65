#include <db/tv_db_block_begin.h>
#include <db/tv_db_block_reference.h>
#include <db/tv_db_curves.h>
#include <db/tv_db_symbol_table.h>
#include <db/tv_db_text.h>
#include <ge/ocs.h>

#include "real_drawing.h"

namespace {

class BlockTest : public testing::TestWithParam<std::string>
{
protected:
    BlockTest() : drawing(openBytes(minimalDrawing("line-" + GetParam() + ".dwg"))) {}

    TvDbObjectId addBlock(const TvChar* name)
    {
        TvDbObjectPointer<TvDbBlockTable> blocks(drawing->symbolTableId(TvDb::SymbolTable::Block),
                                                 TvDb::kForWrite);
        auto* block = new TvDbBlockTableRecord;
        block->setName(name);
        TvDbObjectId id;
        EXPECT_EQ(blocks->add(id, block), TvStatus::Ok);
        block->close();
        return id;
    }
    TvDbObjectId append(TvDbObjectId block, TvDbEntity* entity)
    {
        TvDbObjectPointer<TvDbBlockTableRecord> record(block, TvDb::kForWrite);
        TvDbObjectId id;
        EXPECT_EQ(record->appendTvDbEntity(id, entity), TvStatus::Ok);
        entity->close();
        return id;
    }
    TvDbObjectId addLine(TvDbObjectId block, double to)
    {
        return append(block, new TvDbLine({0, 0, 0}, {to, 0, 0}));
    }

    std::unique_ptr<TvDbDatabase> drawing;
};

INSTANTIATE_TEST_SUITE_P(Versions, BlockTest, testing::ValuesIn(versionNames()),
                         [](const auto& version) { return version.param; });

std::vector<std::string> entityHandles(TvDbObjectId block)
{
    std::vector<std::string> all;
    for (const TvDbObjectId id : TvDbObjectPointer<TvDbBlockTableRecord>(block)->entityIds())
        all.push_back(textOf(id));
    return all;
}

} // namespace

// --- as files have them

TEST(Blocks, OfRealDrawingsAreAsExpected)
{
    forEachDrawing("", [](TvDbDatabase& drawing, const nlohmann::json& expected) {
        for (const nlohmann::json& facts : expected["blocks"]) {
            const TvDbObjectPointer<TvDbBlockTableRecord> block(
                drawing.find(hexValue(facts["handle"])));
            ASSERT_TRUE(block) << facts["handle"];
            const std::string name = facts["name"];
            EXPECT_TRUE(block->getName().utf8().starts_with(name)) << block->getName().utf8();
            EXPECT_EQ(block->entityIds().size(), facts["entities"]) << name;
            std::vector<std::string> handles = entityHandles(block->objectId());
            handles.resize(std::min<std::size_t>(handles.size(), 400));
            EXPECT_EQ(handles, facts["entity_handles"].get<std::vector<std::string>>()) << name;
            EXPECT_EQ(block->isLayout(), !facts["layout"].is_null());
            EXPECT_EQ(block->isAnonymous(), facts["anonymous"] != 0);
            EXPECT_EQ(block->hasAttributeDefinitions(), facts["has_attdefs"] != 0);
            EXPECT_EQ(block->comments().utf8(), facts["description"]);
        }
    });
}

TEST(Blocks, OfRealDrawingsAllHaveNamesOfTheirOwn)
{
    forEachDrawing("", [](TvDbDatabase& drawing, const nlohmann::json&) {
        const TvDbObjectPointer<TvDbBlockTable> blocks(
            drawing.symbolTableId(TvDb::SymbolTable::Block));
        for (const TvDbObjectId id : blocks->recordIds()) {
            const TvString name = TvDbObjectPointer<TvDbBlockTableRecord>(id)->getName();
            TvDbObjectId found;
            EXPECT_EQ(blocks->getIdAt(name, found), TvStatus::Ok);
            EXPECT_EQ(found, id) << name.utf8();
        }
    });
}

TEST(SymbolTables, OfRealDrawingsAreAsExpected)
{
    forEachDrawing("", [](TvDbDatabase& drawing, const nlohmann::json& expected) {
        const std::pair<TvDb::SymbolTable, const char*> kTables[] = {
            {TvDb::SymbolTable::Layer, "layers"},
            {TvDb::SymbolTable::TextStyle, "text_styles"},
            {TvDb::SymbolTable::Linetype, "linetypes"},
            {TvDb::SymbolTable::DimStyle, "dimension_styles"},
            {TvDb::SymbolTable::RegApp, "application_ids"}};
        for (const auto& [which, key] : kTables) {
            const TvDbObjectPointer<TvDbSymbolTable> table(drawing.symbolTableId(which));
            ASSERT_TRUE(table) << key;
            std::set<std::pair<std::string, std::string>> found, wanted;
            for (const TvDbObjectId id : table->recordIds()) {
                const TvDbObjectPointer<TvDbSymbolTableRecord> record(id);
                ASSERT_TRUE(record) << key;
                found.emplace(record->getName().utf8(), textOf(id));
                TvDbObjectId byName;
                EXPECT_EQ(table->getIdAt(record->getName().toUpper(), byName), TvStatus::Ok);
            }
            for (const nlohmann::json& one : expected[key])
                wanted.emplace(one[0], one[1]);
            EXPECT_EQ(found, wanted) << key;
        }
    });
}

// --- new blocks

TEST_P(BlockTest, NewOneBeginsAndEndsAndKeepsItsEntitiesInOrder)
{
    const TvDbObjectId block = addBlock(u"Türe");
    std::vector<std::string> lines;
    for (int i = 1; i <= 5; ++i)
        lines.push_back(textOf(addLine(block, i)));
    const auto read = savedAndRead(*drawing);
    const TvDbObjectPointer<TvDbBlockTableRecord> record(read->find(block.handle().value()));
    ASSERT_TRUE(record);
    EXPECT_EQ(record->getName(), u"Türe");
    EXPECT_EQ(entityHandles(record->objectId()), lines);
    const TvDbObjectPointer<TvDbBlockBegin> begin(record->blockBeginId());
    ASSERT_TRUE(begin);
    EXPECT_EQ(begin->name(), u"Türe");
    EXPECT_EQ(begin->ownerId(), record->objectId());
    EXPECT_EQ(begin->layer(), u"0");
    EXPECT_TRUE(TvDbObjectPointer<TvDbBlockEnd>(record->blockEndId()));
    EXPECT_EQ(TvDbObjectPointer<TvDbLine>(record->entityIds()[4])->endPoint(),
              TvGePoint3d(5, 0, 0));
    EXPECT_FALSE(record->isAnonymous());
    const TvDbObjectPointer<TvDbBlockTable> blocks(read->symbolTableId(TvDb::SymbolTable::Block));
    EXPECT_TRUE(blocks->has(u"TÜRE"));
}

TEST_P(BlockTest, NamesAreTakenOnceAndNotEmpty)
{
    addBlock(u"Door");
    TvDbObjectPointer<TvDbBlockTable> blocks(drawing->symbolTableId(TvDb::SymbolTable::Block),
                                             TvDb::kForWrite);
    auto block = std::make_unique<TvDbBlockTableRecord>();
    EXPECT_EQ(blocks->add(block.get()), TvStatus::InvalidName);
    block->setName(u"DOOR");
    EXPECT_EQ(blocks->add(block.get()), TvStatus::DuplicateName);
    TvDbLayerTableRecord layer;
    layer.setName(u"Layer");
    EXPECT_EQ(blocks->add(&layer), TvStatus::NotApplicable);
    EXPECT_EQ(blocks->recordIds().size(), 3u);
    blocks.close();
    EXPECT_TRUE(savedAndRead(*drawing));
}

TEST_P(BlockTest, AnonymousOnesGetNumbersThatAreFree)
{
    std::set<std::string> found;
    for (int i = 0; i < 4; ++i) {
        const TvDbObjectPointer<TvDbBlockTableRecord> block(addBlock(u"*U"));
        EXPECT_TRUE(block->isAnonymous());
        EXPECT_EQ(block->fields().text("name"), u"*U") << "as drawings keep it";
        found.insert(block->getName().utf8());
    }
    EXPECT_EQ(found.size(), 4u);
    EXPECT_FALSE(found.count("*U"));
    const auto read = savedAndRead(*drawing);
    const TvDbObjectPointer<TvDbBlockTable> blocks(read->symbolTableId(TvDb::SymbolTable::Block));
    for (const std::string& name : found)
        EXPECT_TRUE(blocks->has(TvString(name)));
}

TEST_P(BlockTest, IsRenamedWithItsBegin)
{
    const TvDbObjectId block = addBlock(u"Door");
    {
        TvDbObjectPointer<TvDbBlockTableRecord> record(block, TvDb::kForWrite);
        EXPECT_EQ(record->setName(u"*Odd"), TvStatus::InvalidName);
        EXPECT_EQ(record->setName(u"Gate"), TvStatus::Ok);
    }
    TvDbObjectPointer<TvDbBlockTableRecord> paper(drawing->paperSpaceId(), TvDb::kForWrite);
    EXPECT_EQ(paper->setName(u"Paper"), TvStatus::InvalidName);
    paper.close();
    const auto read = savedAndRead(*drawing);
    const TvDbObjectPointer<TvDbBlockTable> blocks(read->symbolTableId(TvDb::SymbolTable::Block));
    EXPECT_FALSE(blocks->has(u"Door"));
    TvDbObjectId id;
    ASSERT_EQ(blocks->getIdAt(u"gate", id), TvStatus::Ok);
    const TvDbObjectPointer<TvDbBlockTableRecord> record(id);
    EXPECT_EQ(TvDbObjectPointer<TvDbBlockBegin>(record->blockBeginId())->name(), u"Gate");
}

// --- entities in blocks

TEST_P(BlockTest, EntitiesOfTheSpacesKnowWhereTheyStand)
{
    const TvDbObjectId model = addLine(drawing->modelSpaceId(), 7);
    const TvDbObjectId paper = addLine(drawing->paperSpaceId(), 8);
    const auto read = savedAndRead(*drawing);
    for (const auto& [id, mode, owner] :
         {std::tuple(model, 2, read->modelSpaceId()), {paper, 1, read->paperSpaceId()}}) {
        const TvDbObjectPointer<TvDbLine> line(read->find(id.handle().value()));
        ASSERT_TRUE(line);
        EXPECT_EQ(line->fields().integer("entmode"), mode);
        EXPECT_EQ(line->blockId(), owner);
        EXPECT_EQ(entityHandles(owner).back(), textOf(id));
    }
}

TEST_P(BlockTest, ErasedEntitiesLeaveTheBlockAndTheOthersStayInOrder)
{
    std::vector<TvDbObjectId> lines;
    for (int i = 0; i < 6; ++i)
        lines.push_back(addLine(drawing->modelSpaceId(), i + 1));
    std::vector<std::string> expected = entityHandles(drawing->modelSpaceId());
    for (const int gone : {0, 3, 5}) {
        const TvDbObjectId id = lines[static_cast<std::size_t>(gone)];
        std::erase(expected, textOf(id));
        EXPECT_EQ(TvDbObjectPointer<TvDbLine>(id, TvDb::kForWrite)->erase(), TvStatus::Ok);
    }
    EXPECT_EQ(entityHandles(drawing->modelSpaceId()), expected);
    const auto read = savedAndRead(*drawing);
    EXPECT_EQ(entityHandles(read->modelSpaceId()), expected);
}

TEST_P(BlockTest, WhatStandsInNoBlockIsRefused)
{
    TvDbObjectPointer<TvDbBlockTableRecord> block(drawing->modelSpaceId(), TvDb::kForWrite);
    TvDbBlockEnd end;
    TvDbAttribute attribute;
    EXPECT_EQ(block->appendTvDbEntity(&end), TvStatus::NotApplicable);
    EXPECT_EQ(block->appendTvDbEntity(&attribute), TvStatus::NotApplicable);
    EXPECT_EQ(block->appendTvDbEntity(nullptr), TvStatus::InvalidInput);
    TvDbObjectPointer<TvDbBlockTableRecord> paper(drawing->paperSpaceId());
    TvDbLine line;
    EXPECT_EQ(paper->appendTvDbEntity(&line), TvStatus::NotOpenForWrite);
    EXPECT_EQ(block->entityIds().size(), 2u);
}

// --- what is needed stays

TEST_P(BlockTest, IsNotErasedWhileItIsInsertedAndLayersWhileTheyAreUsed)
{
    const TvDbObjectId block = addBlock(u"Door");
    const TvDbObjectId insert =
        append(drawing->modelSpaceId(), new TvDbBlockReference({1, 2, 3}, block));
    const auto eraseRecord = [&](TvDbObjectId id) {
        TvDbObjectPointer<TvDbSymbolTableRecord> record(id, TvDb::kForWrite);
        return record->erase();
    };
    EXPECT_EQ(eraseRecord(block), TvStatus::StillInUse);
    EXPECT_EQ(eraseRecord(drawing->clayer()), TvStatus::StillInUse);
    EXPECT_EQ(eraseRecord(drawing->modelSpaceId()), TvStatus::StillInUse);
    EXPECT_EQ(eraseRecord(drawing->textstyle()), TvStatus::StillInUse);
    EXPECT_EQ(TvDbObjectPointer<TvDbEntity>(insert, TvDb::kForWrite)->erase(), TvStatus::Ok);
    EXPECT_EQ(eraseRecord(block), TvStatus::Ok);
    const auto read = savedAndRead(*drawing);
    ASSERT_TRUE(read);
    EXPECT_FALSE(TvDbObjectPointer<TvDbBlockTable>(read->symbolTableId(TvDb::SymbolTable::Block))
                     ->has(u"Door"));
}

// --- references and attributes

TEST_P(BlockTest, ReferencesAreListedWithTheirBlock)
{
    const TvDbObjectId block = addBlock(u"Door");
    std::set<std::string> inserts;
    for (int i = 0; i < 3; ++i)
        inserts.insert(textOf(
            append(drawing->modelSpaceId(), new TvDbBlockReference({1.0 * i, 0, 0}, block))));
    const auto read = savedAndRead(*drawing);
    const TvDbObjectPointer<TvDbBlockTableRecord> record(read->find(block.handle().value()));
    std::set<std::string> found;
    for (const TvDbObjectId id : record->getBlockReferenceIds())
        found.insert(textOf(id));
    EXPECT_EQ(found, inserts);
    EXPECT_EQ(TvDbObjectPointer<TvDbBlockReference>(read->find(hexValue(*inserts.rbegin())))
                  ->blockTableRecord(),
              record->objectId());
}

TEST_P(BlockTest, AttributesFollowTheirDefinitionsAndEndWithASeqend)
{
    const TvDbObjectId block = addBlock(u"Label");
    auto* definition = new TvDbAttributeDefinition;
    definition->setTag(u"NUMBER");
    definition->setPrompt(u"Number?");
    definition->setTextString(u"0");
    definition->setPosition({2, 1, 0});
    definition->setHeight(0.5);
    definition->setHorizontalMode(TvDbText::kTextCenter);
    definition->setAlignmentPoint({3, 1, 0});
    definition->setTextStyle(drawing->textstyle());
    const TvDbObjectId definitionId = append(block, definition);
    EXPECT_TRUE(TvDbObjectPointer<TvDbBlockTableRecord>(block)->hasAttributeDefinitions());

    auto* reference = new TvDbBlockReference({10, 20, 0}, block);
    reference->setScaleFactors({2, 2, 2});
    reference->setRotation(std::acos(0.0));
    TvDbObjectPointer<TvDbBlockTableRecord> model(drawing->modelSpaceId(), TvDb::kForWrite);
    TvDbObjectId id, attributeId;
    ASSERT_EQ(model->appendTvDbEntity(id, reference), TvStatus::Ok);
    {
        const TvDbObjectPointer<TvDbAttributeDefinition> from(definitionId);
        auto* attribute = new TvDbAttribute;
        EXPECT_EQ(attribute->setAttributeFromBlock(from.object(), reference->blockTransform()),
                  TvStatus::Ok);
        EXPECT_EQ(attribute->setTextString(u"A-101"), TvStatus::Ok);
        EXPECT_EQ(reference->appendAttribute(attributeId, attribute), TvStatus::Ok);
        attribute->close();
    }
    reference->close();
    model.close();

    const auto read = savedAndRead(*drawing);
    const TvDbObjectPointer<TvDbBlockReference> back(read->find(id.handle().value()));
    ASSERT_TRUE(back);
    ASSERT_EQ(back->attributeIds().size(), 1u);
    const std::unique_ptr<TvDbObjectIterator> iterator(back->attributeIterator());
    EXPECT_EQ(iterator->objectId().handle(), attributeId.handle());
    iterator->step();
    EXPECT_TRUE(iterator->done());
    const TvDbObjectPointer<TvDbAttribute> attribute(back->attributeIds()[0]);
    ASSERT_TRUE(attribute);
    EXPECT_EQ(attribute->tag(), u"NUMBER");
    EXPECT_EQ(attribute->textString(), u"A-101");
    EXPECT_EQ(attribute->ownerId(), back->objectId());
    EXPECT_NEAR(attribute->height(), 1, 1e-12);
    EXPECT_NEAR(attribute->rotation(), std::acos(0.0), 1e-12);
    EXPECT_TRUE(attribute->position().isEqualTo({8, 24, 0}));
    EXPECT_TRUE(attribute->alignmentPoint().isEqualTo({8, 26, 0}));
    EXPECT_EQ(attribute->textStyle(), read->textstyle());
    EXPECT_TRUE(TvDbObjectPointer<TvDbSequenceEnd>(read->find(back->fields().handle("seqend"))));
}

TEST_P(BlockTest, ReferenceIsErasedWithItsAttributes)
{
    const TvDbObjectId block = addBlock(u"Label");
    const TvDbObjectId id = append(drawing->modelSpaceId(), new TvDbBlockReference({}, block));
    TvDbObjectId attributeId;
    {
        TvDbObjectPointer<TvDbBlockReference> reference(id, TvDb::kForWrite);
        auto* attribute = new TvDbAttribute;
        ASSERT_EQ(reference->appendAttribute(attributeId, attribute), TvStatus::Ok);
        attribute->close();
        EXPECT_EQ(reference->erase(), TvStatus::Ok);
    }
    EXPECT_TRUE(attributeId.isErased());
    const auto read = savedAndRead(*drawing);
    EXPECT_FALSE(read->find(attributeId.handle().value()));
    EXPECT_TRUE(TvDbObjectPointer<TvDbBlockTableRecord>(read->find(block.handle().value()))
                    ->getBlockReferenceIds()
                    .empty());
}

TEST(BlockReferences, OfRealDrawingsAreAsExpected)
{
    forEachDrawing("", [](TvDbDatabase& drawing, const nlohmann::json& expected) {
        for (const nlohmann::json& facts : expected["inserts"]) {
            const TvDbObjectPointer<TvDbBlockReference> reference(
                drawing.find(hexValue(facts["handle"])));
            ASSERT_TRUE(reference) << facts["handle"];
            const TvDbObjectPointer<TvDbBlockTableRecord> block(reference->blockTableRecord());
            if (block && facts["block"].is_string()) {
                EXPECT_TRUE(block->getName().utf8().starts_with(facts["block"].get<std::string>()));
            }
            EXPECT_EQ(reference->fields().point("ins_pt").x, facts["point"][0]);
            EXPECT_EQ(reference->layer().utf8(), facts["layer"]);
        }
        for (const nlohmann::json& facts : expected["attribs"]) {
            const TvDbObjectPointer<TvDbAttribute> attribute(
                drawing.find(hexValue(facts["handle"])));
            ASSERT_TRUE(attribute) << facts["handle"];
            EXPECT_EQ(attribute->tag().utf8(), facts["tag"]);
            EXPECT_EQ(textOf(attribute->ownerId()), facts["owner"]);
            const TvDbObjectPointer<TvDbBlockReference> reference(attribute->ownerId());
            ASSERT_TRUE(reference);
            const auto ids = reference->attributeIds();
            EXPECT_EQ(std::count(ids.begin(), ids.end(), attribute->objectId()), 1);
        }
    });
}

// The attributes of a real drawing stand where their definitions lead.
TEST(BlockReferences, MoveDefinitionsToWhereAttributesStand)
{
    int compared = 0;
    forEachDrawing("mixed", [&](TvDbDatabase& drawing, const nlohmann::json& expected) {
        for (const nlohmann::json& facts : expected["attribs"]) {
            const TvDbObjectPointer<TvDbAttribute> attribute(
                drawing.find(hexValue(facts["handle"])));
            const TvDbObjectPointer<TvDbBlockReference> reference(attribute->ownerId());
            const TvDbObjectPointer<TvDbBlockTableRecord> block(reference->blockTableRecord());
            ASSERT_TRUE(block);
            for (const TvDbObjectId id : block->entityIds()) {
                const TvDbObjectPointer<TvDbAttributeDefinition> definition(id);
                if (!definition || definition->tag() != attribute->tag())
                    continue;
                TvDbAttribute made;
                ASSERT_EQ(
                    made.setAttributeFromBlock(definition.object(), reference->blockTransform()),
                    TvStatus::Ok);
                EXPECT_LT(made.position().distanceTo(attribute->position()), 1e-6);
                EXPECT_NEAR(made.height(), attribute->height(), 1e-9);
                EXPECT_NEAR(made.rotation(), attribute->rotation(), 1e-9);
                ++compared;
            }
        }
    });
    if (!realDrawings("mixed").empty()) {
        EXPECT_GE(compared, 6);
    }
}
