#include "drawers.h"

#include <algorithm>

#include <db/tv_db_annotations.h>
#include <db/tv_db_dictionary.h>

#include "frames.h"
#include "picture_sources.h"

namespace gs::draw {

namespace {

constexpr std::int64_t kShown = 1; // "display" of an image

bool showsWipeoutFrames(Scene& scene)
{
    const TvDbObjectPointer<TvDbDictionary> root(scene.database().namedObjectsDictionaryId(),
                                                 TvDb::kForNotify);
    TvDbObjectId id;
    if (!root || root->getAt(TvString(u"ACAD_WIPEOUT_VARS"), id) != TvStatus::Ok)
        return true;
    const TvDbObjectPointer<TvDbObject> variables(id, TvDb::kForNotify);
    return !variables || variables->fields().integer("frame") != 0;
}

/// Pictures are as they are where both are 50, of 100; a record that has neither says nothing.
PictureTone toneOf(const db::RecordView& fields)
{
    constexpr double kMiddle = 50;
    const auto brightness = static_cast<double>(fields.integer("brightness"));
    const auto contrast = static_cast<double>(fields.integer("contrast"));
    PictureTone tone;
    if (brightness == 0 && contrast == 0)
        return tone;
    tone.contrast = std::clamp(contrast / kMiddle, 0.0, 2.0);
    tone.brightness = std::clamp((brightness - kMiddle) / (2 * kMiddle), -0.5, 0.5);
    return tone;
}

} // namespace

void image(Scene& scene, const TvDbEntity& entity)
{
    const auto& self = static_cast<const TvDbRasterImage&>(entity);
    if ((self.fields().integer("display") & kShown) == 0)
        return;
    const TvDbObjectPointer<TvDbRasterImageDef> file(self.imageDefId(), TvDb::kForNotify);
    const TvString name = file ? file->sourceFileName() : TvString();
    scene.path().polygon(self.boundary());
    const auto picture = scene.pictureOf(
        self.imageDefId().handle().value(), [&] { return pictureOfFile(scene.database(), name); },
        toneOf(self.fields()));
    const FrameArea area{self.origin(), self.width(), self.height()};
    PictureLook look;
    look.fade = static_cast<double>(self.fields().integer("fade")) / 100;
    fillWithPicture(scene, area, picture, look);
    scene.path().polygon(self.boundary());
    scene.stroke();
    addPictureFrame(scene, name, area);
}

void wipeout(Scene& scene, const TvDbEntity& entity)
{
    const auto& self = static_cast<const TvDbWipeout&>(entity);
    scene.path().polygon(self.boundary());
    if ((self.fields().integer("display") & kShown) != 0)
        scene.add(Item::Kind::Fill, {}, Color::background());
    if (showsWipeoutFrames(scene))
        scene.stroke();
}

} // namespace gs::draw
