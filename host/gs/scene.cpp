#include "attachments.h"

#include "lens.h"
#include "underlay_pages.h"

#include <cmath>
#include <cstring>

#include <db/tv_db_symbol_table.h>
#include <ge/ocs.h>
#include <gs/fonts.h>
#include <gs/linetype.h>
#include <gs/own_color.h>

namespace gs {

namespace {

constexpr std::size_t kMostDashes = 20'000; // of one line; beyond, it is drawn without its pattern

} // namespace

Scene::Scene(TvDbDatabase& database, ListWriter& writer, db::AttachedDrawings* attached)
    : m_database(database), m_writer(writer), m_attached(attached), m_looks(database, writer),
      m_textTools(fonts(), true), m_shapes(database),
      m_linetypeScale(database.headerRecord().real("LTSCALE"))
{
    if (!(m_linetypeScale > 0))
        m_linetypeScale = 1;
}

// Dashes are as long as those of the drawing that shows it.
Scene::Scene(TvDbDatabase& database, Scene& host, const TvString& name)
    : m_database(database), m_writer(host.m_writer), m_host(&host),
      m_looks(database, host.m_writer, host.m_looks, name), m_textTools(fonts(), true),
      m_shapes(database), m_linetypeScale(host.m_linetypeScale)
{
}

Scene::~Scene() = default;

Fonts& Scene::fonts() const
{
    return Fonts::ofThread();
}

const LinePattern& Scene::patternOf(TvDbObjectId linetype)
{
    const auto [at, isNew] = m_patterns.try_emplace(linetype);
    if (isNew)
        at->second = gs::patternOf(linetype, &m_shapes);
    return at->second;
}

Color Scene::colorOf(const OwnColor& own) const
{
    switch (own.kind) {
    case OwnColor::Kind::ByLayer: return m_looks.layerAt(m_look.layer).look.color;
    case OwnColor::Kind::ByBlock: return m_frame->by ? m_frame->by->color : Color::foreground();
    case OwnColor::Kind::Index: return StoredColor::ofIndex(own.value).within(m_look.color);
    case OwnColor::Kind::Rgb: return Color::given(own.value);
    case OwnColor::Kind::None: break;
    }
    return m_look.color;
}

const std::vector<TvDbObjectId>& Scene::contentOf(TvDbObjectId block)
{
    const auto [at, isNew] = m_contents.try_emplace(block);
    if (isNew)
        if (const TvDbObjectPointer<TvDbBlockTableRecord> record(block, TvDb::kForNotify); record)
            at->second = record->entityIdsInDrawOrder();
    return at->second;
}

void Scene::drawBlock(TvDbObjectId block, const Frame& frame)
{
    if (m_depth + m_openBlocks.size() >= kDeepest || !m_openBlocks.insert(block).second)
        return;
    const std::vector<TvDbObjectId>& content = contentOf(block);
    if (m_depth + m_openBlocks.size() == 1)
        m_writer.expect(content.size());
    for (const TvDbObjectId id : content) {
        if (m_writer.isFull())
            break;
        drawEntity(id, frame);
    }
    m_openBlocks.erase(block);
}

void Scene::drawEntity(TvDbObjectId id, const Frame& frame)
{
    if (!m_writer.mayVisit())
        return;
    const db::PassingEntities::Look entity = m_entities.at(id);
    if (!entity || !entity->record().classDef())
        return;
    const Kind& kind =
        m_kinds.of(*entity->record().classDef(), [](const db::ClassDef& of) { return Kind(of); });
    constexpr std::int64_t kIsInvisible = 1;
    if (!kind.draw || (kind.looks.invisible.integer(entity->record()) & kIsInvisible) != 0)
        return;
    // What is drawn within this one leaves everything as it was.
    const Frame* const outerFrame = std::exchange(m_frame, &frame);
    const std::uint64_t outerHandle =
        std::exchange(m_handle, frame.handle ? frame.handle : id.handle().value());
    const Look outerLook = m_look;
    drawOpen(*entity, kind);
    m_look = outerLook;
    m_handle = outerHandle;
    m_frame = outerFrame;
}

void Scene::drawOpen(const TvDbEntity& entity, const Kind& kind)
{
    m_look = m_looks.resolve(entity.record(), kind.looks, m_frame->by);
    const Looks::LayerLook& layer = m_looks.layerAt(m_look.layer);
    if (layer.isFrozen || m_frame->isFrozen(m_look.layer))
        return;
    kind.draw(*this, entity);
}

TvGeMatrix3d Scene::placed(const TvGeMatrix3d& place) const
{
    static const TvGeMatrix3d kNowhere;
    // Most flat entities lie in the plane of the world.
    const bool isNowhere = std::memcmp(place.entry, kNowhere.entry, sizeof place.entry) == 0;
    return isNowhere ? m_frame->map : m_frame->map * place;
}

ItemLook Scene::itemLook() const
{
    ItemLook look;
    look.color = m_look.color;
    look.alpha = m_look.alpha;
    look.weightMm = m_look.weightMm;
    look.plotStyle = m_look.plotStyle;
    look.layer = m_look.layer;
    look.clip = m_frame->clip;
    look.handle = m_handle;
    return look;
}

bool Scene::keepOutline(const TvGeMatrix3d& place)
{
    if (!m_outline)
        return false;
    SpacePath placed = m_path;
    placed.transform(place);
    m_outline->append(placed);
    return true;
}

void Scene::outlineOf(TvDbObjectId id)
{
    SpacePath outline;
    const SpacePath former = m_path;
    Frame here = *m_frame;
    here.frozen = nullptr;
    SpacePath* const outer = std::exchange(m_outline, &outline);
    drawEntity(id, here);
    m_outline = outer;
    m_path = outline.isEmpty() ? former : outline;
}

void Scene::stroke(const TvGeMatrix3d& place, double widthUnits, bool restarts)
{
    if (keepOutline(place) || !isShown())
        return;
    ItemLook look = itemLook();
    const TvGeMatrix3d map = placed(place);
    look.widthUnits = static_cast<float>(widthUnits > 0 ? widthUnits * scaleOf(place) : 0);
    if (m_look.linetype.isNull() || !strokeDashed(look, map, restarts))
        m_writer.add(look, m_path, map);
}

// Dashes are laid out in the list's plane, where they are seen.
bool Scene::strokeDashed(const ItemLook& look, const TvGeMatrix3d& map, bool restarts)
{
    const LinePattern& pattern = patternOf(m_look.linetype);
    if (pattern.isContinuous())
        return false;
    DashOptions options;
    options.scale = m_linetypeScale * m_look.linetypeScale * m_frame->linetypeFactor;
    options.continuesOverCorners = !restarts;
    options.mostDashes = kMostDashes;
    SpacePath solid = m_path;
    solid.transform(map);
    const Lens* const lens = m_writer.lens();
    const Path flat = lens ? lens->seenLines(solid, {}) : solid.seenFromAbove();
    const DashedPath pieces = dashed(flat, pattern, options, &fonts());
    if (pieces.isWhole)
        return false;
    if (lens) {
        solid.clear();
        solid.append(flat, 0);
        m_writer.setLens(nullptr); // they are as they are seen
    }
    ItemLook lines = look;
    lines.detail = static_cast<float>(pattern.length() * options.scale);
    m_writer.add(lines, pieces.lines, {}, &solid);
    for (const TextPart& part : pieces.texts) {
        ItemLook letters = lines;
        letters.kind = part.isFilled ? Item::Kind::Fill : Item::Kind::Stroke;
        m_writer.add(letters, part.path, {});
    }
    m_writer.setLens(lens);
    return true;
}

void Scene::add(const ItemLook& look, const Path& flat, const TvGeMatrix3d& place,
                const SpacePath* coarse)
{
    m_writer.add(look, flat, placed(place), coarse);
}

std::shared_ptr<const Picture> Scene::pictureOf(std::uint64_t handle, const PictureReader& read,
                                                const PictureTone& tone)
{
    const auto [at, isNew] = m_pictures.try_emplace({handle, tone});
    if (!isNew)
        return at->second;
    if (tone.isPlain()) {
        at->second = read();
    } else if (const auto plain = pictureOf(handle, read); plain) {
        auto toned = std::make_shared<Picture>(*plain);
        applyTone(*toned, tone);
        at->second = std::move(toned);
    }
    return at->second;
}

void Scene::fill(const TvGeMatrix3d& place, Item::Kind kind)
{
    add(kind, place, m_look.color);
}

void Scene::add(Item::Kind kind, const TvGeMatrix3d& place, const Color& color, double detail)
{
    if (keepOutline(place) || !isShown())
        return;
    ItemLook look = itemLook();
    look.kind = kind;
    look.color = color;
    look.detail = static_cast<float>(detail);
    m_writer.add(look, m_path, placed(place));
}

void Scene::addMarker(const TvGePoint3d& place)
{
    if (isShown())
        m_writer.addMarker(itemLook(), place, m_frame->map, m_path);
}

double flatScale(const TvGeMatrix3d& map)
{
    const auto& e = map.entry;
    return std::sqrt(std::abs(e[0][0] * e[1][1] - e[0][1] * e[1][0]));
}

double Scene::scaleOf(const TvGeMatrix3d& place) const
{
    return flatScale(placed(place));
}

void Scene::insert(TvDbObjectId block, const TvGeMatrix3d& place, std::uint32_t clip)
{
    const Look by = m_look;
    drawBlock(block, frameWithin(by, place, clip));
}

Scene::Frame Scene::frameWithin(const Look& by, const TvGeMatrix3d& place, std::uint32_t clip) const
{
    Frame inner = *m_frame;
    inner.map = m_frame->map * place;
    inner.by = &by;
    inner.handle = m_handle;
    if (clip != Item::kNoClip)
        inner.clip = clip;
    return inner;
}

Attachments& Scene::attachments()
{
    if (m_host)
        return m_host->attachments();
    if (!m_attachments)
        m_attachments = std::make_unique<Attachments>(m_database, m_writer, m_attached);
    return *m_attachments;
}

UnderlayPages& Scene::pages()
{
    if (m_host)
        return m_host->pages();
    if (!m_pages)
        m_pages = std::make_unique<UnderlayPages>(m_writer.stop());
    return *m_pages;
}

const AttachedReference& Scene::referenceOf(TvDbObjectId block)
{
    return attachments().of(block, *this);
}

void Scene::insert(const AttachedReference& reference, const TvGeMatrix3d& place,
                   std::uint32_t clip)
{
    const Attachments::Opening opening(attachments(), reference);
    if (!opening || m_outline)
        return;
    const Look by = m_look;
    Scene& inner = *reference.scene;
    inner.m_depth = m_depth + m_openBlocks.size();
    inner.drawBlock(reference.drawing->modelSpaceId(), frameWithin(by, place, clip));
}

void Scene::drawPart(TvDbObjectId id)
{
    Frame inner = *m_frame;
    const Look by = m_look;
    inner.by = &by;
    inner.handle = m_handle;
    drawEntity(id, inner);
}

TvGeMatrix3d viewAxes(const TvGeVector3d& direction, double twist)
{
    return TvGeMatrix3d::rotation(twist, TvGeVector3d::zAxis()) * ge::wcsToOcs(direction);
}

} // namespace gs
