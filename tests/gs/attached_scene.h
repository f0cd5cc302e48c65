#pragma once

#include <db/tv_db_block_reference.h>
#include <db/tv_db_curves.h>
#include <db/tv_db_text.h>
#include <dwg/dwg_codec.h>

#include "attach_drawing.h"
#include "scene_tools.h"
#include "temp_folder.h"

/// A new drawing that shows others.
class AttachedScene : public DrawingScene
{
public:
    AttachedScene() { dwg::install(); }

    TvDbObjectId insert(TvDbObjectId block, const TvGePoint3d& at = {})
    {
        return add(new TvDbBlockReference(at, block));
    }
    /// Attaches it and inserts it at the origin.
    TvDbObjectId show(const TvChar* name, const TvChar* path, bool isOverlay = false,
                      bool isUnloaded = false)
    {
        return insert(attachDrawing(database(), name, path, isOverlay, isUnloaded));
    }
    /// A line on a layer, which is made when it is new.
    TvDbObjectId line(const TvGePoint3d& from, const TvGePoint3d& to, const TvChar* layer = nullptr,
                      int color = 1)
    {
        const TvDbObjectId id = add(new TvDbLine(from, to));
        if (layer)
            TvDbObjectPointer<TvDbEntity>(id, TvDb::kForWrite)->setLayer(layerOf(layer, color));
        return id;
    }
    TvDbObjectId layerOf(const TvChar* name, int color)
    {
        TvDbObjectId id;
        TvDbObjectPointer<TvDbLayerTable> layers(
            database().symbolTableId(TvDb::SymbolTable::Layer));
        const bool isThere = layers->getIdAt(name, id) == TvStatus::Ok;
        layers.close();
        return isThere ? id : addLayer(name, color);
    }
    void save(const TempFolder& folder, const std::string& name)
    {
        EXPECT_EQ(database().saveAs(folder.file(name)), TvStatus::Ok);
    }
};

inline std::unique_ptr<TvDbDatabase> openFile(const TempFolder& folder, const std::string& name)
{
    auto drawing = std::make_unique<TvDbDatabase>(false, true);
    EXPECT_EQ(drawing->readDwgFile(folder.file(name)), TvStatus::Ok) << name;
    return drawing;
}
