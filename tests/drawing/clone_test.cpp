// Copies between drawings: parts of one into a new one, one into another, and within one.

#include <db/tv_db_block_reference.h>
#include <db/tv_db_curves.h>
#include <db/tv_db_dictionary.h>
#include <db/tv_db_id_mapping.h>
#include <db/tv_db_object_context.h>
#include <db/tv_db_symbol_table.h>
#include <db/tv_db_text.h>
#include <db/tv_db_viewport.h>
#include <db/tv_db_xrecord.h>

#include "real_drawing.h"

namespace {

TvDbObjectId recordNamed(TvDbDatabase& drawing, TvDb::SymbolTable table, const TvString& name)
{
    const TvDbObjectPointer<TvDbSymbolTable> records(drawing.symbolTableId(table),
                                                     TvDb::kForNotify);
    TvDbObjectId id;
    if (records)
        records->getIdAt(name, id);
    return id;
}

TvDbObjectId blockNamed(TvDbDatabase& drawing, const TvString& name)
{
    return recordNamed(drawing, TvDb::SymbolTable::Block, name);
}

TvDbObjectId addBlock(TvDbDatabase& drawing, const TvString& name)
{
    TvDbObjectPointer<TvDbBlockTable> blocks(drawing.symbolTableId(TvDb::SymbolTable::Block),
                                             TvDb::kForWrite);
    auto* block = new TvDbBlockTableRecord;
    block->setName(name);
    TvDbObjectId id;
    EXPECT_EQ(blocks->add(id, block), TvStatus::Ok);
    block->close();
    return id;
}

TvDbObjectId addLayer(TvDbDatabase& drawing, const TvString& name, int color)
{
    TvDbObjectPointer<TvDbLayerTable> layers(drawing.symbolTableId(TvDb::SymbolTable::Layer),
                                             TvDb::kForWrite);
    auto* layer = new TvDbLayerTableRecord;
    layer->setName(name);
    TvDbObjectId id;
    EXPECT_EQ(layers->add(id, layer), TvStatus::Ok);
    EXPECT_EQ(layer->setColorIndex(color), TvStatus::Ok);
    layer->edit().setHandle("ltype", drawing.headerRecord().handle("LTCONTINUOUS"));
    layer->close();
    return id;
}

int colorOfLayer(TvDbDatabase& drawing, const TvString& name)
{
    const TvDbObjectPointer<TvDbLayerTableRecord> layer(
        recordNamed(drawing, TvDb::SymbolTable::Layer, name));
    return layer ? layer->colorIndex() : -1;
}

template <class T>
TvDbObjectId append(TvDbObjectId block, T* entity)
{
    TvDbObjectPointer<TvDbBlockTableRecord> record(block, TvDb::kForWrite);
    TvDbObjectId id;
    EXPECT_EQ(record->appendTvDbEntity(id, entity), TvStatus::Ok);
    entity->close();
    return id;
}

std::vector<TvDbObjectId> entitiesOf(TvDbObjectId block)
{
    const TvDbObjectPointer<TvDbBlockTableRecord> record(block, TvDb::kForNotify);
    return record ? record->entityIds() : std::vector<TvDbObjectId>();
}

TvDbObjectId itemRecord(TvDbDatabase& drawing, TvDbObjectId dictionary, const TvChar* key,
                        const TvResbufPtr& items)
{
    const TvDbObjectPointer<TvDbDictionary> entries(dictionary, TvDb::kForWrite);
    auto* record = new TvDbXrecord;
    TvDbObjectId id;
    EXPECT_EQ(entries->setAt(key, record, id), TvStatus::Ok);
    EXPECT_EQ(record->setFromRbChain(*items.get()), TvStatus::Ok);
    record->close();
    (void)drawing;
    return id;
}

/// Every reference of the drawing leads somewhere, and what is listed knows its owner.
void expectSound(TvDbDatabase& drawing)
{
    for (const TvDbObjectId id : drawing.objectIds()) {
        const TvDbObjectPointer<TvDbObject> object(id, TvDb::kForNotify);
        ASSERT_TRUE(object);
        EXPECT_TRUE(object->ownerId().isNull() || object->ownerId().isValid()) << textOf(id);
    }
    const TvDbObjectPointer<TvDbBlockTable> blocks(drawing.symbolTableId(TvDb::SymbolTable::Block));
    std::set<TvString> names;
    for (const TvDbObjectId id : blocks->recordIds()) {
        const TvDbObjectPointer<TvDbBlockTableRecord> block(id);
        ASSERT_TRUE(block);
        EXPECT_TRUE(names.insert(block->getName()).second) << block->getName().utf8();
        EXPECT_EQ(block->ownerId(), blocks->objectId());
        EXPECT_TRUE(block->blockBeginId().isValid());
        for (const TvDbObjectId entity : block->entityIds())
            EXPECT_EQ(TvDbObjectPointer<TvDbObject>(entity, TvDb::kForNotify)->ownerId(), id);
    }
}

bool hasViewports(const TvDbBlockTableRecord& block)
{
    for (const TvDbObjectId id : block.entityIds())
        if (TvDbObjectPointer<TvDbViewport>(id, TvDb::kForNotify))
            return true;
    return false;
}

class CloneTest : public testing::TestWithParam<std::string>
{
protected:
    CloneTest() : source(openBytes(minimalDrawing("line-" + GetParam() + ".dwg")))
    {
        line = entitiesOf(source->modelSpaceId()).front();
        layer = addLayer(*source, u"Wall", 3);
        inner = addBlock(*source, u"Handle");
        append(inner, new TvDbLine({0, 0, 0}, {1, 0, 0}));
        outer = addBlock(*source, u"Door");
        append(outer, new TvDbBlockReference({5, 5, 0}, inner));
        auto* circle = new TvDbCircle;
        circle->setRadius(2);
        circle->edit().setHandle("layer", layer.handle().value());
        append(outer, circle);
        TvDbObjectPointer<TvDbBlockTableRecord>(outer, TvDb::kForWrite)
            ->edit()
            .setPoint("base_pt", {1, 2, 0});
    }
    std::unique_ptr<TvDbDatabase> written(TvStatusCode expected, TvDbObjectId block)
    {
        TvDbDatabase* out = nullptr;
        EXPECT_EQ(source->wblock(out, block), expected);
        return std::unique_ptr<TvDbDatabase>(out);
    }

    std::unique_ptr<TvDbDatabase> source;
    TvDbObjectId line, layer, inner, outer;
};
INSTANTIATE_TEST_SUITE_P(Versions, CloneTest, testing::ValuesIn(versionNames()),
                         [](const auto& version) { return version.param; });

} // namespace

// --- a block into a new drawing

TEST_P(CloneTest, ABlockBecomesADrawingWithAllThatItNeeds)
{
    const auto made = written(TvStatus::Ok, outer);
    ASSERT_TRUE(made);
    EXPECT_EQ(made->originalFileVersion(), source->originalFileVersion());
    const auto read = savedAndRead(*made);
    ASSERT_TRUE(read);
    expectSound(*read);
    const auto entities = entitiesOf(read->modelSpaceId());
    ASSERT_EQ(entities.size(), 2u);
    const TvDbObjectPointer<TvDbBlockReference> reference(entities[0]);
    ASSERT_TRUE(reference) << "in the order of the block";
    EXPECT_EQ(reference->blockTableRecord(), blockNamed(*read, u"Handle"));
    EXPECT_EQ(TvDbObjectPointer<TvDbBlockTableRecord>(reference->blockTableRecord())
                  ->getBlockReferenceIds(),
              std::vector<TvDbObjectId>{entities[0]});
    EXPECT_EQ(entitiesOf(reference->blockTableRecord()).size(), 1u);
    const TvDbObjectPointer<TvDbCircle> circle(entities[1]);
    ASSERT_TRUE(circle);
    EXPECT_EQ(circle->layer(), u"Wall");
    EXPECT_EQ(colorOfLayer(*read, u"Wall"), 3);
    EXPECT_TRUE(blockNamed(*read, u"Door").isNull()) << "it is the drawing itself";
    EXPECT_EQ(read->headerRecord().point("INSBASE"), (db::Point{1, 2, 0}));
    EXPECT_EQ(read->insunits(), source->insunits());
    EXPECT_FALSE(source->hasUndo() && source->find(line.handle().value()).isErased());
}

TEST_P(CloneTest, SingleEntitiesTakeTheLayerZeroOfTheirDrawingAlong)
{
    TvDbObjectPointer<TvDbLayerTableRecord>(recordNamed(*source, TvDb::SymbolTable::Layer, u"0"),
                                            TvDb::kForWrite)
        ->setColorIndex(5);
    TvDbDatabase* out = nullptr;
    ASSERT_EQ(source->wblock(out, {line}, {7, 8, 9}), TvStatus::Ok);
    const std::unique_ptr<TvDbDatabase> made(out);
    const auto read = savedAndRead(*made);
    ASSERT_TRUE(read);
    expectSound(*read);
    EXPECT_EQ(entitiesOf(read->modelSpaceId()).size(), 1u);
    EXPECT_EQ(read->headerRecord().point("INSBASE"), (db::Point{7, 8, 9}));
    EXPECT_EQ(colorOfLayer(*read, u"0"), 5);
    EXPECT_TRUE(blockNamed(*read, u"Handle").isNull()) << "nobody needs it";
}

TEST_P(CloneTest, TheWholeDrawingIsTheSameAgain)
{
    TvDbDatabase* out = nullptr;
    ASSERT_EQ(source->wblock(out), TvStatus::Ok);
    const std::unique_ptr<TvDbDatabase> made(out);
    const auto saved = savedAndRead(*source); // chains of entities are made then
    ASSERT_TRUE(saved);
    EXPECT_EQ(differences(*saved, *made), std::set<std::uint64_t>());
}

TEST_P(CloneTest, WhatIsNotThereOrNotOursIsRefused)
{
    TvDbDatabase other(true, true);
    EXPECT_FALSE(written(TvStatus::InvalidInput, TvDbObjectId()));
    EXPECT_FALSE(written(TvStatus::InvalidInput, line));
    EXPECT_FALSE(written(TvStatus::InvalidInput, other.modelSpaceId()));
    TvDbDatabase* out = &other;
    EXPECT_EQ(source->wblock(out, std::vector<TvDbObjectId>(), {}), TvStatus::InvalidInput);
    EXPECT_EQ(out, nullptr);
    EXPECT_EQ(source->wblock(out, {layer}, {}), TvStatus::InvalidInput);
    TvDbObjectId id;
    EXPECT_EQ(source->insert(id, u"X", nullptr), TvStatus::InvalidInput);
    EXPECT_EQ(source->insert(id, u"X", source.get()), TvStatus::InvalidInput);
    EXPECT_EQ(source->insert(id, u"", &other), TvStatus::InvalidName);
    EXPECT_EQ(source->insert(id, nullptr, &other), TvStatus::InvalidName);
    EXPECT_EQ(source->insert(id, u"*Model_Space", &other), TvStatus::InvalidName);
    EXPECT_TRUE(id.isNull());
}

// --- a drawing into another

TEST_P(CloneTest, ADrawingBecomesABlockAndNamedThingsOfTheTargetStay)
{
    const auto made = written(TvStatus::Ok, outer);
    ASSERT_TRUE(made);
    const auto target = openBytes(minimalDrawing("line-" + GetParam() + ".dwg"));
    addLayer(*target, u"WALL", 6);
    const TvDbObjectId handle = addBlock(*target, u"Handle");
    const std::size_t lines = entitiesOf(target->modelSpaceId()).size();
    target->startUndoRecord();

    TvDbObjectId block;
    ASSERT_EQ(target->insert(block, u"Door", made.get(), true), TvStatus::Ok);

    const auto read = savedAndRead(*target);
    ASSERT_TRUE(read);
    expectSound(*read);
    const TvDbObjectPointer<TvDbBlockTableRecord> door(blockNamed(*read, u"door"));
    ASSERT_TRUE(door);
    EXPECT_EQ(door->handle(), block.handle());
    EXPECT_EQ(door->origin(), (db::Point{1, 2, 0}));
    const auto entities = door->entityIds();
    ASSERT_EQ(entities.size(), 2u);
    const TvDbObjectPointer<TvDbBlockReference> reference(entities[0]);
    EXPECT_EQ(reference->blockTableRecord().handle(), handle.handle()) << "the one that was there";
    EXPECT_TRUE(entitiesOf(reference->blockTableRecord()).empty());
    EXPECT_EQ(TvDbObjectPointer<TvDbBlockTableRecord>(reference->blockTableRecord())
                  ->getBlockReferenceIds(),
              std::vector<TvDbObjectId>{entities[0]});
    EXPECT_EQ(TvDbObjectPointer<TvDbCircle>(entities[1])->layer(), u"WALL");
    EXPECT_EQ(colorOfLayer(*read, u"Wall"), 6);
    EXPECT_EQ(entitiesOf(read->modelSpaceId()).size(), lines);
    EXPECT_EQ(entitiesOf(made->modelSpaceId()).size(), 2u) << "the source stays";

    ASSERT_EQ(target->undo(), TvStatus::Ok);
    EXPECT_TRUE(blockNamed(*target, u"Door").isNull());
    EXPECT_TRUE(TvDbObjectPointer<TvDbBlockTableRecord>(handle)->getBlockReferenceIds().empty());
    ASSERT_EQ(target->redo(), TvStatus::Ok);
    EXPECT_EQ(entitiesOf(blockNamed(*target, u"Door")).size(), 2u);
}

TEST_P(CloneTest, ABlockThatIsThereGetsTheContentAndItsReferencesStay)
{
    const auto made = written(TvStatus::Ok, outer);
    const TvDbObjectId old = addBlock(*source, u"Gate");
    append(old, new TvDbLine({0, 0, 0}, {9, 9, 0}));
    const TvDbObjectId shown = append(source->modelSpaceId(), new TvDbBlockReference({}, old));
    TvDbObjectId block;
    ASSERT_EQ(source->insert(block, u"GATE", made.get(), false), TvStatus::Ok);
    EXPECT_EQ(block, old);
    const auto read = savedAndRead(*source);
    ASSERT_TRUE(read);
    expectSound(*read);
    const TvDbObjectPointer<TvDbBlockTableRecord> gate(read->find(old.handle().value()));
    EXPECT_EQ(gate->getName(), u"Gate");
    ASSERT_EQ(gate->entityIds().size(), 2u);
    EXPECT_TRUE(TvDbObjectPointer<TvDbCircle>(gate->entityIds()[1]));
    ASSERT_EQ(gate->getBlockReferenceIds().size(), 1u);
    EXPECT_EQ(gate->getBlockReferenceIds()[0].handle(), shown.handle());
}

TEST_P(CloneTest, ABlockThatWouldHoldItselfIsRefusedAndNothingChanges)
{
    const auto made = written(TvStatus::Ok, outer); // shows "Handle"
    TvDbDatabase target(true, true);
    const std::size_t objects = target.objectIds().size();
    TvDbObjectId block;
    EXPECT_EQ(target.insert(block, u"handle", made.get()), TvStatus::InvalidInput);
    EXPECT_TRUE(block.isNull());
    EXPECT_EQ(target.objectIds().size(), objects);
    EXPECT_FALSE(target.isModified());
    // The same by a block of the target that shows the one to be filled.
    const TvDbObjectId yard = addBlock(target, u"Yard");
    append(addBlock(target, u"Handle"), new TvDbBlockReference({}, yard));
    EXPECT_EQ(target.insert(block, u"Yard", made.get()), TvStatus::InvalidInput);
    EXPECT_TRUE(entitiesOf(yard).empty());
}

TEST_P(CloneTest, ADrawingOfEveryVersionGoesIntoOneOfEveryOther)
{
    const auto made = written(TvStatus::Ok, outer);
    for (const std::string& version : versionNames()) {
        SCOPED_TRACE(version);
        const auto target = openBytes(minimalDrawing("empty-" + version + ".dwg"));
        TvDbObjectId block;
        ASSERT_EQ(target->insert(block, u"Door", made.get()), TvStatus::Ok);
        const auto read = savedAndRead(*target);
        ASSERT_TRUE(read);
        expectSound(*read);
        const auto entities = entitiesOf(blockNamed(*read, u"Door"));
        ASSERT_EQ(entities.size(), 2u);
        EXPECT_TRUE(TvDbObjectPointer<TvDbCircle>(entities[1])->layer() == u"Wall");
        EXPECT_EQ(colorOfLayer(*read, u"Wall"), 3);
        EXPECT_EQ(entitiesOf(blockNamed(*read, u"Handle")).size(), 1u);
    }
}

// --- what hangs on an object

TEST_P(CloneTest, AttributesExtensionsAndHandlesInDataComeAlong)
{
    auto* reference = new TvDbBlockReference({1, 1, 0}, outer);
    TvDbObjectId id, attributeId;
    {
        TvDbObjectPointer<TvDbBlockTableRecord> model(source->modelSpaceId(), TvDb::kForWrite);
        ASSERT_EQ(model->appendTvDbEntity(id, reference), TvStatus::Ok);
        auto* attribute = new TvDbAttribute;
        attribute->setTag(u"NUMBER");
        attribute->setTextString(u"12");
        attribute->setTextStyle(source->textstyle());
        ASSERT_EQ(reference->appendAttribute(attributeId, attribute), TvStatus::Ok);
        attribute->close();
        ASSERT_EQ(reference->createExtensionDictionary(), TvStatus::Ok);
        const TvResbufPtr data(tvutBuildList(1001, u"MY_APP", 1000, u"text", 1005, line.handle(),
                                             1005, layer.handle()));
        ASSERT_EQ(reference->setXData(data.get()), TvStatus::Ok);
        reference->close();
    }
    const TvDbObjectId extension = TvDbObjectPointer<TvDbObject>(id)->extensionDictionary();
    itemRecord(*source, extension, u"NOTE",
               TvResbufPtr(tvutBuildList(1, u"kept", 330, id.handle(), 330,
                                         source->clayer().handle(), 340, layer.handle())));

    TvDbDatabase* out = nullptr;
    ASSERT_EQ(source->wblock(out, {id}, {}), TvStatus::Ok);
    const std::unique_ptr<TvDbDatabase> made(out);
    const auto read = savedAndRead(*made);
    ASSERT_TRUE(read);
    expectSound(*read);
    ASSERT_EQ(entitiesOf(read->modelSpaceId()).size(), 1u);
    const TvDbObjectPointer<TvDbBlockReference> copy(entitiesOf(read->modelSpaceId())[0]);
    ASSERT_TRUE(copy);
    EXPECT_EQ(copy->blockTableRecord(), blockNamed(*read, u"Door"));
    ASSERT_EQ(copy->attributeIds().size(), 1u);
    const TvDbObjectPointer<TvDbAttribute> attribute(copy->attributeIds()[0]);
    EXPECT_EQ(attribute->textString(), u"12");
    EXPECT_EQ(attribute->ownerId(), copy->objectId());
    EXPECT_EQ(attribute->textStyle(), read->textstyle());

    const TvResbufPtr data(copy->xData(u"MY_APP"));
    ASSERT_TRUE(data);
    EXPECT_EQ(TvString(data->rbnext->resval.rstring), u"text");
    EXPECT_EQ(data->rbnext->rbnext->resval.rhandle, 0u) << "the line did not come along";
    EXPECT_EQ(TvDbHandle(data->rbnext->rbnext->rbnext->resval.rhandle),
              recordNamed(*read, TvDb::SymbolTable::Layer, u"Wall").handle());

    const TvDbObjectPointer<TvDbDictionary> entries(copy->extensionDictionary());
    ASSERT_TRUE(entries);
    EXPECT_EQ(entries->ownerId(), copy->objectId());
    TvDbObjectId noteId;
    ASSERT_EQ(entries->getAt(u"NOTE", noteId), TvStatus::Ok);
    const TvDbObjectPointer<TvDbXrecord> note(noteId);
    resbuf* chain = nullptr;
    ASSERT_EQ(note->rbChain(&chain), TvStatus::Ok);
    const TvResbufPtr items(chain);
    EXPECT_EQ(TvString(items->resval.rstring), u"kept");
    EXPECT_EQ(TvDbHandle(items->rbnext->resval.rhandle), copy->handle());
    EXPECT_EQ(TvDbHandle(items->rbnext->rbnext->rbnext->resval.rhandle),
              recordNamed(*read, TvDb::SymbolTable::Layer, u"Wall").handle());
}

TEST_P(CloneTest, LayersThatOnlyDataNamesComeAlong)
{
    addLayer(*source, u"Named", 4);
    ASSERT_EQ(TvDbObjectPointer<TvDbObject>(line, TvDb::kForWrite)
                  ->setXData(TvResbufPtr(tvutBuildList(1001, u"APP", 1003, u"Named")).get()),
              TvStatus::Ok);
    TvDbDatabase* out = nullptr;
    ASSERT_EQ(source->wblock(out, {line}, {}), TvStatus::Ok);
    const std::unique_ptr<TvDbDatabase> made(out);
    const TvDbObjectPointer<TvDbObject> copy(entitiesOf(made->modelSpaceId())[0]);
    const TvResbufPtr data(copy->xData(u"APP"));
    ASSERT_TRUE(data && data->rbnext);
    EXPECT_EQ(TvString(data->rbnext->resval.rstring), u"Named");
    EXPECT_EQ(colorOfLayer(*made, u"Named"), 4);
}

TEST_P(CloneTest, WithinOneDrawingOnlyWhatIsOwnedIsCopied)
{
    const TvDbObjectId id =
        append(source->modelSpaceId(), new TvDbBlockReference({1, 1, 0}, outer));
    {
        const TvDbObjectPointer<TvDbObject> object(id, TvDb::kForWrite);
        object->createExtensionDictionary();
    }
    itemRecord(*source, TvDbObjectPointer<TvDbObject>(id)->extensionDictionary(), u"NOTE",
               TvResbufPtr(tvutBuildList(330, id.handle(), 330, line.handle())));
    const std::size_t blocks =
        TvDbObjectPointer<TvDbBlockTable>(source->symbolTableId(TvDb::SymbolTable::Block))
            ->recordIds()
            .size();
    const TvDbObjectId target = addBlock(*source, u"Copies");
    TvDbIdMapping mapping;
    ASSERT_EQ(source->wblockCloneObjects({id, line}, target, mapping), TvStatus::Ok);
    EXPECT_EQ(mapping.origDb(), source.get());
    EXPECT_EQ(mapping.destDb(), source.get());
    const auto copies = entitiesOf(target);
    ASSERT_EQ(copies.size(), 2u);
    EXPECT_EQ(mapping.target(id), copies[0]);
    EXPECT_EQ(mapping.target(line), copies[1]);
    EXPECT_TRUE(mapping.entries()[0].isPrimary && mapping.entries()[0].isCloned);
    const TvDbObjectPointer<TvDbBlockReference> copy(copies[0]);
    EXPECT_EQ(copy->blockTableRecord(), outer);
    EXPECT_EQ(TvDbObjectPointer<TvDbBlockTableRecord>(outer)->getBlockReferenceIds().size(), 2u);
    EXPECT_NE(copy->extensionDictionary(),
              TvDbObjectPointer<TvDbObject>(id)->extensionDictionary());
    const TvDbObjectPointer<TvDbDictionary> entries(copy->extensionDictionary());
    TvDbObjectId noteId;
    ASSERT_EQ(entries->getAt(u"NOTE", noteId), TvStatus::Ok);
    resbuf* chain = nullptr;
    TvDbObjectPointer<TvDbXrecord>(noteId)->rbChain(&chain);
    const TvResbufPtr items(chain);
    EXPECT_EQ(TvDbHandle(items->resval.rhandle), copies[0].handle());
    EXPECT_EQ(TvDbHandle(items->rbnext->resval.rhandle), copies[1].handle());
    EXPECT_EQ(TvDbObjectPointer<TvDbBlockTable>(source->symbolTableId(TvDb::SymbolTable::Block))
                  ->recordIds()
                  .size(),
              blocks + 1);
    EXPECT_EQ(source->wblockCloneObjects({id}, outer, mapping), TvStatus::InvalidInput)
        << "the block would hold itself";
    const auto read = savedAndRead(*source);
    ASSERT_TRUE(read);
    expectSound(*read);
}

TEST_P(CloneTest, WithinOneDrawingBlocksWithoutANameAreShared)
{
    const TvDbObjectId anonymous = addBlock(*source, u"*U");
    append(anonymous, new TvDbLine({0, 0, 0}, {1, 1, 0}));
    const TvDbObjectId shown =
        append(source->modelSpaceId(), new TvDbBlockReference({1, 1, 0}, anonymous));
    TvDbIdMapping mapping;
    ASSERT_EQ(source->wblockCloneObjects({shown}, source->modelSpaceId(), mapping), TvStatus::Ok);
    const TvDbObjectPointer<TvDbBlockReference> copy(mapping.target(shown));
    ASSERT_TRUE(copy);
    EXPECT_EQ(copy->blockTableRecord(), anonymous);
    EXPECT_EQ(TvDbObjectPointer<TvDbBlockTableRecord>(anonymous)->getBlockReferenceIds().size(),
              2u);
    // Into another drawing it comes along, under a number that is free there.
    const auto target = openBytes(minimalDrawing("line-" + GetParam() + ".dwg"));
    ASSERT_EQ(target->wblockCloneObjects({shown}, target->modelSpaceId(), mapping), TvStatus::Ok);
    ASSERT_EQ(target->wblockCloneObjects({shown}, target->modelSpaceId(), mapping), TvStatus::Ok);
    const auto read = savedAndRead(*target);
    ASSERT_TRUE(read);
    expectSound(*read);
    EXPECT_EQ(entitiesOf(blockNamed(*read, u"*U0")).size(), 1u);
    EXPECT_EQ(entitiesOf(blockNamed(*read, u"*U1")).size(), 1u);
}

TEST_P(CloneTest, EntitiesOfAnotherDrawingComeToTheEndOfABlock)
{
    const auto target = openBytes(minimalDrawing("line-" + GetParam() + ".dwg"));
    const TvDbObjectId wall = addLayer(*target, u"WALL", 6);
    const auto before = entitiesOf(target->modelSpaceId());
    TvDbIdMapping mapping;
    const TvDbObjectId circle = entitiesOf(outer)[1];
    ASSERT_EQ(target->wblockCloneObjects({circle}, target->modelSpaceId(), mapping), TvStatus::Ok);
    EXPECT_EQ(mapping.origDb(), source.get());
    EXPECT_EQ(mapping.destDb(), target.get());
    const auto after = entitiesOf(target->modelSpaceId());
    ASSERT_EQ(after.size(), before.size() + 1);
    EXPECT_EQ(mapping.target(circle), after.back());
    EXPECT_EQ(mapping.target(layer), wall) << "it was there";
    for (const TvDbIdMapping::Entry& entry : mapping.entries())
        EXPECT_EQ(entry.isCloned, entry.key == circle);
    TvDbObjectId none;
    EXPECT_FALSE(mapping.compute(line, none));
    EXPECT_TRUE(none.isNull());
    const TvDbObjectPointer<TvDbCircle> copy(after.back());
    EXPECT_EQ(copy->radius(), 2);
    EXPECT_EQ(copy->ownerId(), target->modelSpaceId());
    // From several drawings at once, or into what is no block, nothing goes.
    EXPECT_EQ(target->wblockCloneObjects({circle, before[0]}, target->modelSpaceId(), mapping),
              TvStatus::InvalidInput);
    EXPECT_EQ(target->wblockCloneObjects({circle}, wall, mapping), TvStatus::InvalidInput);
    EXPECT_EQ(target->wblockCloneObjects({circle}, outer, mapping), TvStatus::InvalidInput);
    const auto read = savedAndRead(*target);
    ASSERT_TRUE(read);
    expectSound(*read);
}

// --- real drawings

TEST(Clones, BlocksOfRealDrawingsGoIntoNewDrawingsAndOthersOrAreRefusedByName)
{
    forEachDrawing("ac10", [](TvDbDatabase& drawing, const nlohmann::json&) {
        TvDbDatabase target(true, true);
        int copied = 0, inserted = 0;
        const TvDbObjectPointer<TvDbBlockTable> blocks(
            drawing.symbolTableId(TvDb::SymbolTable::Block));
        for (const TvDbObjectId id : blocks->recordIds()) {
            const TvDbObjectPointer<TvDbBlockTableRecord> block(id);
            SCOPED_TRACE(block->getName().utf8());
            TvDbDatabase* out = nullptr;
            const TvStatusCode status = drawing.wblock(out, id);
            const std::unique_ptr<TvDbDatabase> made(out);
            if (status != TvStatus::Ok) {
                EXPECT_FALSE(made);
                // Sheets have viewports; elsewhere it is what nobody understands.
                EXPECT_EQ(status, block->isLayout() && id != drawing.modelSpaceId()
                                      ? TvStatus::NotApplicable
                                      : TvStatus::NotUnderstood);
                EXPECT_FALSE(drawing.lastFailure().arguments().empty());
                continue;
            }
            ++copied;
            ASSERT_TRUE(made);
            EXPECT_FALSE(hasViewports(*block)) << "there is no sheet for them";
            expectSound(*made);
            EXPECT_EQ(entitiesOf(made->modelSpaceId()).size(), block->entityIds().size());
            TvDbObjectId copy;
            const TvString name =
                u"Inserted" + TvString(base::utf16FromUtf8(std::to_string(copied)));
            if (const TvStatusCode insertion = target.insert(copy, name.kwszPtr(), made.get());
                insertion == TvStatus::Ok) {
                ++inserted;
                EXPECT_EQ(entitiesOf(copy).size(), block->entityIds().size());
            } else {
                EXPECT_EQ(insertion, TvStatus::VersionNotWritable);
            }
            if (copied == 1) {
                const auto read = savedAndRead(*made);
                ASSERT_TRUE(read);
                expectSound(*read);
                std::string more; // what the save made beside what was copied
                for (const TvDbObjectId added : read->objectIds())
                    if (made->find(added.handle().value()).isNull())
                        more += TvDbObjectPointer<TvDbObject>(added)->record().classDef()->name();
                EXPECT_EQ(more, "");
            }
        }
        EXPECT_GT(inserted, 0);
        EXPECT_GE(inserted, copied - 1);
        EXPECT_FALSE(drawing.isModified());
        const auto read = savedAndRead(target);
        ASSERT_TRUE(read);
        expectSound(*read);
        std::set<TvString> scales; // many annotations, and each scale once
        for (const TvDbAnnotationScale& scale :
             read->objectContextManager()
                 ->contextCollection(TvString(tvdbAnnotationScaleCollectionName))
                 ->contexts())
            EXPECT_TRUE(scales.insert(scale.getName()).second) << scale.getName().utf8();
    });
}

TEST(Clones, OfWhatIsKeptAsBytesAreRefusedByItsHandle)
{
    forEachDrawing("mixed", [&](TvDbDatabase& drawing, const nlohmann::json&) {
        int refused = 0;
        const TvDbObjectPointer<TvDbBlockTable> blocks(
            drawing.symbolTableId(TvDb::SymbolTable::Block));
        for (const TvDbObjectId id : blocks->recordIds()) {
            TvDbDatabase* out = nullptr;
            if (drawing.wblock(out, id) == TvStatus::NotUnderstood) {
                const auto arguments = drawing.lastFailure().arguments();
                ASSERT_EQ(arguments.size(), 1u);
                const TvDbObjectPointer<TvDbObject> obstacle(
                    drawing.find(hexValue(arguments[0].utf8())), TvDb::kForNotify);
                ASSERT_TRUE(obstacle);
                EXPECT_TRUE(obstacle->isRaw() || obstacle->fields().flag("has_binary"));
                EXPECT_EQ(out, nullptr);
                ++refused;
                // Nor into its own drawing.
                TvDbIdMapping mapping;
                const auto inserts =
                    TvDbObjectPointer<TvDbBlockTableRecord>(id, TvDb::kForNotify)->entityIds();
                for (const TvDbObjectId entity : inserts)
                    if (TvDbObjectPointer<TvDbObject>(entity, TvDb::kForNotify)->isRaw()) {
                        EXPECT_EQ(drawing.wblockCloneObjects({entity}, id, mapping),
                                  TvStatus::NotUnderstood);
                    }
            }
            delete out;
        }
        EXPECT_GT(refused, 0);
        EXPECT_FALSE(drawing.isModified());
    });
}
