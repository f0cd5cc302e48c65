#pragma once

#include "solid_model.h"

namespace gs {

/// Lines on round faces, of which edges alone show too little: a whole sphere or ring has none, a
/// pipe has but its two ends.
class SolidOutlines
{
public:
    /// @param model  must outlive this.
    explicit SolidOutlines(SolidModel& model) : m_model(model), m_isSeen(model.records().size()) {}

    /// Adds those of a face: circles on a whole sphere or ring, four lines along a pipe or a cone,
    /// four bows along a bent pipe; nothing for any other record. In the body's coordinates.
    void addFace(SpacePath& path, std::size_t face);

private:
    /// A closed edge: a round one, or the point of a cone.
    struct Rim {
        std::optional<SolidEllipse> ellipse;
        TvGePoint3d corner;
    };
    void readRims(std::size_t loop);
    void readRim(std::size_t edge);
    std::size_t surfaceOf(const ModelerRecord& face) const;
    void addConeLines(SpacePath& path, const std::vector<double>& cone) const;
    void addSphere(SpacePath& path, const std::vector<double>& sphere) const;
    void addTorus(SpacePath& path, const std::vector<double>& torus) const;

    SolidModel& m_model;
    std::vector<bool> m_isSeen; // loops and coedges; each belongs to one face
    std::vector<Rim> m_rims;    // of the face
    bool m_isWhole = false;     // the face has no edges at all
    ModelerRecord m_read;
};

} // namespace gs
