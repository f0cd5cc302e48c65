#!/usr/bin/python3
"""Makes drawings of every kind that an independent program can, in every version, into the folder given.

Beside each NAME.dxf lies NAME.json: the objects that are in it, by handle, with what a reader must find.
Ends with 2 when the program is not there.
"""
import json
import math
import os
import sys

try:
    import ezdxf
    from ezdxf.enums import TextEntityAlignment
except ImportError:
    sys.exit(2)

VERSIONS = ["R2000", "R2004", "R2007", "R2010", "R2013", "R2018"]
UMLAUTS = "Größe Übung äöüß"
MIXED = "Plan 平面図 план ☃ end"


def sheet_layer(doc):
    # Other letters than Latin ones are escapes in the older versions, which it does not take for names.
    return "図面" if doc.dxfversion >= "AC1021" else "Pläne"


def add_tables(doc):
    doc.layers.add("Wände", color=3, linetype="DASHED", lineweight=35)
    doc.layers.add(sheet_layer(doc), color=5)
    off = doc.layers.add("OFF", color=2)
    off.off()
    frozen = doc.layers.add("FROZEN")
    frozen.freeze()
    locked = doc.layers.add("LOCKED")
    locked.lock()
    doc.styles.add("Schrift", font="arial.ttf")
    doc.linetypes.add("ZICK", [1.0, 0.5, -0.25, 0.0, -0.25], description="Zick . Zack")
    doc.appids.add("KV_TEST")
    doc.dimstyles.duplicate_entry("EZDXF", "MASS")
    doc.ucs.add("SCHIEF", dxfattribs={"origin": (1, 2, 3), "xaxis": (0, 1, 0), "yaxis": (-1, 0, 0)})
    view = doc.views.add("ANSICHT")
    view.dxf.center = (10, 20)
    view.dxf.height = 30


def add_simple(space):
    space.add_line((0, 0, 1), (10, 5, 2), dxfattribs={"layer": "Wände", "color": 1})
    space.add_line((0, 0), (10, 0), dxfattribs={"layer": sheet_layer(space.doc), "linetype": "ZICK", "ltscale": 2.5})
    space.add_point((1, 2, 3))
    space.add_circle((5, 5), 2.5, dxfattribs={"lineweight": 50, "thickness": 1.5})
    space.add_arc((5, 5), 3, 30, 210)
    space.add_ellipse((0, 0), major_axis=(4, 1), ratio=0.4, start_param=0.5, end_param=math.pi)
    space.add_solid([(0, 0), (1, 0), (0, 1), (1, 1)])
    space.add_trace([(0, 0), (1, 0), (0, 1), (1, 1)])
    space.add_3dface([(0, 0, 1), (1, 0, 2), (1, 1, 3), (0, 1, 4)])
    space.add_ray((0, 0), (1, 1))
    space.add_xline((0, 0), (1, -1))


def add_curves(space):
    space.add_lwpolyline([(0, 0, 0, 0, 0.5), (5, 0, 0.1, 0.2, 0), (5, 5)], close=True)
    space.add_lwpolyline([(0, 0), (1, 1), (2, 0)], dxfattribs={"const_width": 0.25, "elevation": 7})
    space.add_polyline2d([(0, 0), (3, 1), (4, 4)])
    space.add_polyline3d([(0, 0, 0), (3, 1, 5), (4, 4, 9)])
    mesh = space.add_polymesh((3, 2))
    for m in range(3):
        for n in range(2):
            mesh.set_mesh_vertex((m, n), (m, n, m * n))
    face = space.add_polyface()
    face.append_faces([[(0, 0, 0), (1, 0, 0), (1, 1, 0), (0, 1, 0)], [(0, 0, 0), (1, 0, 0), (0, 0, 1)]])
    space.add_open_spline([(0, 0, 0), (1, 2, 0), (3, 3, 0), (5, 0, 0), (7, 1, 0)], degree=3)
    space.add_rational_spline([(0, 0, 0), (1, 2, 0), (3, 3, 0), (5, 0, 0)], weights=[1, 2, 2, 1])
    space.add_spline(fit_points=[(0, 0, 0), (2, 4, 1), (6, 1, 2)])


def add_texts(space, is_wide):
    text = MIXED if is_wide else UMLAUTS
    space.add_text(UMLAUTS, dxfattribs={"height": 2.5, "style": "Schrift", "rotation": 30, "oblique": 10})
    space.add_text(MIXED).set_placement((3, 4), align=TextEntityAlignment.MIDDLE_CENTER)
    space.add_mtext(text + r"\P{\C1;rot} ende", dxfattribs={"char_height": 0.7, "width": 12, "rotation": 45})
    space.add_mtext("lang " * 200, dxfattribs={"insert": (1, 2, 3)})


def add_blocks(doc, space):
    block = doc.blocks.new("Tür")
    block.add_line((0, 0), (1, 0))
    block.add_attdef("NUMMER", (0, 1), text="0", dxfattribs={"prompt": "Türnummer?", "height": 0.3})
    block.add_attdef("ART", (0, 2), text="Holz", dxfattribs={"height": 0.3})
    insert = space.add_blockref("Tür", (7, 8), dxfattribs={"xscale": 2, "rotation": 90})
    insert.add_auto_attribs({"NUMMER": "4711", "ART": "Öffnung"})
    space.add_blockref("Tür", (0, 0), dxfattribs={"row_count": 2, "column_count": 3, "row_spacing": 5,
                                                "column_spacing": 6})
    outer = doc.blocks.new("HAUS", base_point=(1, 1))
    outer.add_blockref("Tür", (0, 0))


def add_fills(space):
    hatch = space.add_hatch(color=2)
    hatch.paths.add_polyline_path([(0, 0), (10, 0), (10, 10), (0, 10)], is_closed=True)
    hatch = space.add_hatch(color=4)
    hatch.set_pattern_fill("ANSI31", scale=0.5, angle=15)
    path = hatch.paths.add_edge_path()
    path.add_line((0, 0), (4, 0))
    path.add_arc((4, 2), radius=2, start_angle=-90, end_angle=90)
    path.add_line((4, 4), (0, 0))
    gradient = space.add_hatch()
    if space.doc.dxfversion > "AC1015":
        gradient.set_gradient((10, 20, 30), (200, 100, 50), rotation=30)
    gradient.paths.add_polyline_path([(0, 0, 0.3), (10, 0), (10, 10)])
    space.add_wipeout([(0, 0), (3, 0), (3, 3), (0, 3)])


def add_dimensions(space):
    space.add_linear_dim(base=(0, 2), p1=(0, 0), p2=(3, 0), angle=0).render()
    space.add_aligned_dim(p1=(0, 0), p2=(3, 4), distance=1).render()
    space.add_diameter_dim(center=(0, 0), radius=3, angle=45).render()
    space.add_radius_dim(center=(0, 0), radius=3, angle=45).render()
    space.add_angular_dim_2l(base=(0, 2), line1=((0, 0), (1, 1)), line2=((0, 0), (-1, 1))).render()
    space.add_angular_dim_3p(base=(0, 2), center=(0, 0), p1=(1, 1), p2=(-1, 1)).render()
    space.add_ordinate_x_dim(feature_location=(3, 4), offset=(1, 1)).render()
    space.add_leader([(0, 0), (3, 3), (6, 3)])


def add_data(doc, space):
    line = space.add_line((0, 0), (1, 1))
    line.set_xdata("KV_TEST", [(1000, UMLAUTS), (1002, "{"), (1040, 1.5), (1070, 7), (1071, 70000),
                               (1010, (1, 2, 3)), (1005, line.dxf.handle), (1002, "}")])
    extension = line.new_extension_dict()
    record = extension.add_xrecord("DATEN")
    record.reset([(1, UMLAUTS), (40, 3.25), (90, 100000), (10, (1, 2, 3)), (290, 1), (330, line.dxf.handle)])
    folder = doc.rootdict.get_required_dict("KV_ORDNER")
    inner = folder.add_new_dict("INNEN")
    inner.add_xrecord("X").reset([(1, "tief"), (70, 5)])
    folder.add_dict_var("VAR", "wert")
    group = doc.groups.new("GRUPPE", description="zwei Linien")
    with group.edit_data() as data:
        data.extend([line, space.add_line((2, 2), (3, 3))])


def add_layouts(doc):
    sheet = doc.layout("Layout1")
    sheet.page_setup(size=(420, 297), margins=(5, 5, 5, 5), units="mm")
    sheet.add_viewport(center=(150, 150), size=(200, 150), view_center_point=(5, 5), view_height=30)
    second = doc.layouts.new("Blatt Süd")
    second.page_setup(size=(297, 210), margins=(5, 5, 5, 5), units="mm")
    second.add_viewport(center=(100, 100), size=(100, 80), view_center_point=(0, 0), view_height=20)
    second.add_text("auf dem Blatt", dxfattribs={"height": 5})


def add_images(doc, space):
    image = doc.add_image_def(filename="bild/foto.png", size_in_pixel=(640, 480), name="FOTO")
    space.add_image(image, insert=(2, 1), size_in_units=(6.4, 4.8), rotation=30)
    underlay = doc.add_underlay_def(filename="plan.pdf", name="1")
    space.add_underlay(underlay, insert=(2, 1), scale=0.05)


# Plain values of an entity that a reader must find.
FACTS = ["layer", "text", "tag", "name", "color", "height", "radius", "ltscale"]


def facts_of(entity):
    facts = {"type": entity.dxftype()}
    for name in FACTS:
        if entity.dxf.hasattr(name) and isinstance(entity.dxf.get(name), (str, int, float)):
            facts[name] = entity.dxf.get(name)
    if entity.dxftype() == "MTEXT":
        facts["text"] = entity.text
    return facts


def save(doc, folder, name):
    path = os.path.join(folder, name + ".dxf")
    doc.saveas(path)
    # As they are now in the file: what is left out of it is no object.
    doc = ezdxf.readfile(path)
    objects = {}
    for handle, entity in doc.entitydb.items():
        # Ends of sequences are added when a file is read.
        if entity.is_alive and entity.dxftype() != "SEQEND":
            objects[handle] = facts_of(entity)
    with open(os.path.join(folder, name + ".json"), "w", encoding="utf-8") as out:
        json.dump({"version": doc.dxfversion, "layouts": doc.layout_names_in_taborder(), "objects": objects}, out)


def main(folder):
    for version in VERSIONS:
        doc = ezdxf.new(version, setup=True)
        space = doc.modelspace()
        add_tables(doc)
        add_simple(space)
        add_curves(space)
        add_texts(space, version >= "R2007")
        add_blocks(doc, space)
        add_fills(space)
        add_dimensions(space)
        add_data(doc, space)
        add_layouts(doc)
        add_images(doc, space)
        save(doc, folder, version)
    small = ezdxf.new("R2010")
    small.modelspace().add_line((0, 0), (1, 1))
    save(small, folder, "small")


main(sys.argv[1])
