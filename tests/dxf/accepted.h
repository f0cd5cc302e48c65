#pragma once

#include <string_view>

/// A field that a text file does not tell, and why nothing is lost by it.
struct Accepted {
    std::string_view className; ///< "*" for all; a name may end in "*"
    std::string_view field;     ///< the same; without the numbers of elements
    std::string_view why;
};

// clang-format off
inline constexpr Accepted kAccepted[] = {
    {"*", "nolinks", "how the chain of entities is stored; the chain itself is compared"},
    {"*", "next", "the chain, which follows from the order in the file"},
    {"*", "prev", "the chain, which follows from the order in the file"},
    {"*", "xref_ref", "a hint that is always set"},
    {"*", "has_binary", "whether a preview of the object is kept in a section of its own"},
    {"BLOCK", "entmode", "0 with the owner named, or the space without: the same place"},
    {"BLOCK", "owner", "the same"},
    {"ENDBLK", "entmode", "the same"},
    {"ENDBLK", "owner", "the same"},
    {"BLOCK", "name", "a block's name is told once, by its record"},
    {"BLOCK_HEADER", "inserts", "listed anew; lists of real drawings name some that are gone"},
    {"BLOCK_HEADER", "inserts[]", "the same, in the order of the file"},
    {"3DFACE", "z_zero", "a shorter form of the same points"},
    {"DIMENSION_*", "flags", "bit 8 has no meaning in files"},
    {"DIMSTYLE", "DIMCLRD.value", "files have the index of colours of dimension styles only"},
    {"DIMSTYLE", "DIMCLRE.value", "the same"},
    {"DIMSTYLE", "DIMCLRT.value", "the same"},
    {"DIMSTYLE", "DIMTFILLCLR.value", "the same"},
    {"LTYPE", "dashes[].scale", "of a dash that has neither shape nor text"},
    {"SPLINE", "scenario", "follows from the method below"},
    {"SPLINE", "knot_param", "of knots that are computed from the fit points"},
    {"SPLINE", "spline_flags", "bit 8 has no meaning in files"},
    {"VIEWPORT", "vp_ent_hdr", "the oldest version's second list of viewports, made when needed"},
    {"LAYOUT", "viewports", "follows from the block; not filled in layouts never looked at"},
    {"LAYOUT", "n_viewports", "the same"},
    {"3DSOLID", "has_wire", "lines to draw a body with, which follow from it"},
    {"3DSOLID", "wires[]", "the same"},
    {"ATT*", "emb.ltype_flags", "the lines of an attribute look like the attribute"},
    {"ATT*", "emb.ltype", "the same"},
    {"ATT*", "emb.plotstyle_flags", "the same"},
    {"ATT*", "emb.plotstyle", "the same"},
};
// clang-format on
