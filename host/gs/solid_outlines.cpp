#include "solid_outlines.h"

#include <cmath>
#include <numbers>

namespace gs {

namespace {

constexpr double kTurn = 2 * std::numbers::pi;
constexpr double kClose = 1e-6;

TvGePoint3d pointAt(const std::vector<double>& numbers, std::size_t at)
{
    return {numbers[at], numbers[at + 1], numbers[at + 2]};
}

TvGeVector3d vectorAt(const std::vector<double>& numbers, std::size_t at)
{
    return {numbers[at], numbers[at + 1], numbers[at + 2]};
}

bool isUnit(const TvGeVector3d& vector)
{
    return std::abs(vector.length() - 1) < kClose;
}

} // namespace

void SolidOutlines::addFace(SpacePath& path, std::size_t face)
{
    ModelerRecords& records = m_model.records();
    if (records.kindOf(face) != ModelerKind::Face || !records.read(face, m_read))
        return;
    const std::size_t surface = surfaceOf(m_read);
    if (surface >= records.size())
        return;
    readRims(records.pointedTo(m_read, ModelerKind::Loop));
    if (!records.read(surface, m_read))
        return;
    const std::vector<double> numbers = m_read.numbers();
    switch (records.kindOf(surface)) {
    case ModelerKind::ConeSurface: return addConeLines(path, numbers);
    case ModelerKind::SphereSurface: return addSphere(path, numbers);
    case ModelerKind::TorusSurface: return addTorus(path, numbers);
    default: break;
    }
}

std::size_t SolidOutlines::surfaceOf(const ModelerRecord& face) const
{
    ModelerRecords& records = m_model.records();
    for (const ModelerKind kind :
         {ModelerKind::ConeSurface, ModelerKind::SphereSurface, ModelerKind::TorusSurface})
        if (const std::size_t surface = records.pointedTo(face, kind); surface < records.size())
            return surface;
    return records.size();
}

void SolidOutlines::readRims(std::size_t loop)
{
    ModelerRecords& records = m_model.records();
    m_rims.clear();
    m_isWhole = loop >= records.size();
    const auto isNew = [&](std::size_t record) {
        return record < records.size() && !m_isSeen[record];
    };
    while (isNew(loop)) {
        m_isSeen[loop] = true;
        if (!records.read(loop, m_read))
            return;
        std::size_t coedge = records.pointedTo(m_read, ModelerKind::Coedge);
        loop = records.pointedTo(m_read, ModelerKind::Loop);
        while (isNew(coedge)) {
            m_isSeen[coedge] = true;
            if (!records.read(coedge, m_read))
                return;
            coedge = records.pointedTo(m_read, ModelerKind::Coedge);
            readRim(records.pointedTo(m_read, ModelerKind::Edge));
        }
    }
}

void SolidOutlines::readRim(std::size_t record)
{
    const auto edge = m_model.edge(record);
    if (!edge || !(edge->start == edge->end))
        return;
    Rim rim;
    rim.corner = edge->start;
    if (edge->curveKind == ModelerKind::EllipseCurve)
        rim.ellipse = m_model.ellipse(edge->curve);
    if (rim.ellipse || edge->curveKind == ModelerKind::Other)
        m_rims.push_back(rim);
}

/// @param cone  a point on the axis, the axis, the longer radius there, the shorter one by it; how
///              it widens: the sine of an angle, its cosine.
void SolidOutlines::addConeLines(SpacePath& path, const std::vector<double>& cone) const
{
    constexpr std::size_t kNumbers = 10;
    if (cone.size() < kNumbers || m_rims.size() != 2)
        return;
    const TvGePoint3d center = pointAt(cone, 0);
    const TvGeVector3d axis = vectorAt(cone, 3), u = vectorAt(cone, 6);
    const TvGeVector3d v = axis.crossProduct(u) * cone[9];
    const bool isPipe = cone.size() > kNumbers && std::abs(cone[kNumbers]) < kClose;
    if (!isUnit(axis) || !(u.length() > 0))
        return;
    const auto onRim = [&](const Rim& rim, const TvGeVector3d& way) -> std::optional<TvGePoint3d> {
        if (!rim.ellipse)
            return rim.corner;
        const double along = rim.ellipse->normal.dotProduct(axis);
        if (std::abs(along) > 1 - kClose)
            return rim.ellipse->center + way * (rim.ellipse->u.length() / u.length());
        if (!isPipe || std::abs(along) < kClose)
            return std::nullopt;
        const TvGePoint3d foot = center + way; // the pipe is cut at a slant
        const TvGeVector3d rest = rim.ellipse->center - foot;
        return foot + axis * (rest.dotProduct(rim.ellipse->normal) / along);
    };
    for (const TvGeVector3d& way : {u, v, u * -1, v * -1}) {
        const auto from = onRim(m_rims[0], way), to = onRim(m_rims[1], way);
        if (!from || !to)
            continue;
        path.moveTo(*from);
        path.lineTo(*to);
    }
}

/// @param sphere  middle, radius, two directions: of the equator's begin, and of a pole.
void SolidOutlines::addSphere(SpacePath& path, const std::vector<double>& sphere) const
{
    constexpr std::size_t kNumbers = 10;
    if (!m_isWhole || sphere.size() < kNumbers)
        return;
    const TvGePoint3d center = pointAt(sphere, 0);
    const TvGeVector3d x = vectorAt(sphere, 4), z = vectorAt(sphere, 7);
    if (!isUnit(x) || !isUnit(z))
        return;
    const double radius = sphere[3];
    const TvGeVector3d y = z.crossProduct(x);
    path.bow(center, x * radius, y * radius, 0, kTurn);
    path.bow(center, x * radius, z * radius, 0, kTurn);
    path.bow(center, y * radius, z * radius, 0, kTurn);
}

/// @param torus  middle, axis, radius of the ring, radius of its pipe, a direction across the axis.
void SolidOutlines::addTorus(SpacePath& path, const std::vector<double>& torus) const
{
    constexpr std::size_t kNumbers = 11;
    if (torus.size() < kNumbers)
        return;
    const TvGePoint3d center = pointAt(torus, 0);
    const TvGeVector3d axis = vectorAt(torus, 3), x = vectorAt(torus, 8);
    if (!isUnit(axis) || !isUnit(x))
        return;
    const double ring = torus[6], pipe = torus[7];
    const TvGeVector3d y = axis.crossProduct(x);
    double from = 0, to = kTurn;
    if (!m_isWhole) {
        // A bend, from one of its ends to the other: the shorter way.
        if (m_rims.size() != 2 || !m_rims[0].ellipse || !m_rims[1].ellipse)
            return;
        const auto angleOf = [&](const SolidEllipse& end) {
            const TvGeVector3d way = end.center - center;
            return std::atan2(way.dotProduct(y), way.dotProduct(x));
        };
        for (const Rim& rim : m_rims)
            if (std::abs(rim.ellipse->normal.dotProduct(axis)) > kClose)
                return; // runs along the ring
        from = angleOf(*m_rims[0].ellipse);
        to = from + std::remainder(angleOf(*m_rims[1].ellipse) - from, kTurn);
    }
    const auto addRing = [&](double radius, double height) {
        path.bow(center + axis * height, x * radius, y * radius, from, to);
    };
    addRing(ring + pipe, 0);
    addRing(ring - pipe, 0);
    addRing(ring, pipe);
    addRing(ring, -pipe);
    if (m_isWhole)
        for (const TvGeVector3d& way : {x, y, x * -1, y * -1})
            path.bow(center + way * ring, way * pipe, axis * pipe, 0, kTurn);
}

} // namespace gs
