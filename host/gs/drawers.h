#pragma once

#include "scene.h"

namespace gs::draw {

// draw_curves.cpp
void line(Scene&, const TvDbEntity&);
void circle(Scene&, const TvDbEntity&);
void arc(Scene&, const TvDbEntity&);
void ellipse(Scene&, const TvDbEntity&);
void xline(Scene&, const TvDbEntity&);
void ray(Scene&, const TvDbEntity&);
void point(Scene&, const TvDbEntity&);
// draw_splines.cpp
void spline(Scene&, const TvDbEntity&);
// draw_polylines.cpp
void polyline(Scene&, const TvDbEntity&);
void polyline2d(Scene&, const TvDbEntity&);
void polyline3d(Scene&, const TvDbEntity&);
// draw_faces.cpp
void solid(Scene&, const TvDbEntity&);
void face(Scene&, const TvDbEntity&);
void polygonMesh(Scene&, const TvDbEntity&);
void polyFaceMesh(Scene&, const TvDbEntity&);
void subdivisionMesh(Scene&, const TvDbEntity&);
void modelerWires(Scene&, const TvDbEntity&);
// draw_inserts.cpp
void insert(Scene&, const TvDbEntity&);
void insertArray(Scene&, const TvDbEntity&);
void dimension(Scene&, const TvDbEntity&);
void table(Scene&, const TvDbEntity&);
// draw_leaders.cpp
void leader(Scene&, const TvDbEntity&);
void multileader(Scene&, const TvDbEntity&);
// draw_mlines.cpp
void mline(Scene&, const TvDbEntity&);
// draw_images.cpp
void image(Scene&, const TvDbEntity&);
void wipeout(Scene&, const TvDbEntity&);
void underlay(Scene&, const TvDbEntity&);
// draw_texts.cpp
void text(Scene&, const TvDbEntity&);
void attribute(Scene&, const TvDbEntity&);
void attributeDefinition(Scene&, const TvDbEntity&);
void mtext(Scene&, const TvDbEntity&);
void tolerance(Scene&, const TvDbEntity&);
// draw_hatches.cpp
void hatch(Scene&, const TvDbEntity&);
// draw_foreign.cpp
void oleFrame(Scene&, const TvDbEntity&);
void shape(Scene&, const TvDbEntity&);
void sectionLine(Scene&, const TvDbEntity&);
void light(Scene&, const TvDbEntity&);
// draw_viewports.cpp
void viewport(Scene&, const TvDbEntity&);

} // namespace gs::draw
