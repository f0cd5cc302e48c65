#include <gtest/gtest.h>

#include "shape_painter.h"
#include "text_samples.h"

namespace {

// With everything in it at once; what each code does is asked elsewhere. KV_SAMPLES=folder keeps
// the picture for looking at.
TEST(TextSample, ShowsEverythingAtOnce)
{
    const std::u16string contents =
        u"{\\H1.5x;\\fDejaVu Sans|b1|i0;Title in bold} and {\\fDejaVu Serif|b0|i1;italics}\\P"
        u"Plain text of the stroke font that is so long that it has to be wrapped at the width of "
        u"the frame, with {\\C1;red}, {\\c65280;green} and {\\C5;\\Lblue underlined text\\l}, "
        u"\\Ooverlined\\o, \\Kstruck\\k.\\P"
        u"Fractions: \\A1;1{\\H0.7x;\\S1/2;} and {\\H0.7x;\\S3#4;} and 20{\\H0.7x;\\S+0.1^-0.2;} "
        u"mm.\\A0;\\P"
        u"\\pqc;Centred \\W1.6;wide\\W1; \\Q20;oblique\\Q0; \\T2;tracked\\T1;\\P"
        u"\\pqr;on the right %%c50 %%p0.5 45%%d \\U+03B1\\U+00E9\\P"
        u"\\pi-2,l2,t2,qj;1.^IA numbered paragraph with a hanging indent, whose lines are "
        u"justified on both sides of the frame, the last one is not.\\P"
        u"\\pi0,l0,ql,t8,r20,c26;left^Itab^Iright^Icentre\\P"
        u"\\pql,t;{\\Fgdt;j}{\\Fgdt;n} \\{braces\\} \\\\ \\U+4E2D end";
    TvDbMText text;
    setMText(text, contents, 34);
    db::RecordEditor edit = text.edit();
    edit.setInteger("bg_flags", 17);
    edit.setReal("bg_scale", 1.5);
    const gs::TextShape shape = shapeOf(text, testFonts());

    ShapePainter painter(shape.extents.grown(0.5), 24);
    painter.paint(shape);
    painter.save("mtext");
    EXPECT_GT(shape.parts.size(), 4u);
}

TEST(TextSample, ShowsColumnsAndAttachments)
{
    ShapePainter painter({-2, -42, 62, 24}, 16);
    const std::u16string contents = u"Left words\\Psecond line gy\\Pthird";
    for (int point = 1; point <= 9; ++point) {
        TvDbMText text;
        setMText(text, contents, point % 2 ? 12 : 0);
        text.setAttachment(static_cast<TvDbMText::AttachmentPoint>(point));
        const TvGePoint3d at(10.0 + (point - 1) % 3 * 20, 15.0 - (point - 1) / 3 * 8, 0);
        text.setLocation(at);
        painter.paint(shapeOf(text, testFonts()));
        gs::Path cross;
        cross.moveTo({at.x - 1, at.y}), cross.lineTo({at.x + 1, at.y});
        cross.moveTo({at.x, at.y - 1}), cross.lineTo({at.x, at.y + 1});
        painter.setColor(1, 0, 0);
        painter.stroke(cross);
    }
    TvDbMText columns;
    std::u16string words;
    for (int i = 0; i < 60; ++i)
        words += u"word" + std::u16string(static_cast<std::size_t>(i % 4), u'x') + u" ";
    setMText(columns, words, 50);
    columns.setLocation({0, -15, 0});
    db::RecordEditor edit = columns.edit();
    edit.setInteger("n_heights", 3);
    edit.setReal("col_width", 16);
    edit.setReal("gutter", 3);
    db::ArrayEditor heights = edit.array("heights");
    heights.resize(3);
    heights.setReal(0, 12), heights.setReal(1, 6), heights.setReal(2, 0);
    edit.setInteger("columns", 2);
    painter.paint(shapeOf(columns, testFonts()));
    painter.save("mtext_attachment");
}

TEST(TextSample, ShowsLines)
{
    ShapePainter painter({-2, -14, 62, 14}, 20);
    const auto show = [&](std::u16string_view contents, double x, double y, auto change) {
        TvDbText text;
        setText(text, contents);
        text.setPosition({x, y, 0});
        text.setAlignmentPoint({x, y, 0});
        change(text);
        painter.paint(shapeOf(text, testFonts()));
        gs::Path cross;
        cross.moveTo({x - 0.5, y}), cross.lineTo({x + 0.5, y});
        cross.moveTo({x, y - 0.5}), cross.lineTo({x, y + 0.5});
        painter.setColor(1, 0, 0);
        painter.stroke(cross);
    };
    show(u"Left %%c12%%p0.1 %%uunder%%u %%oover%%o %%kstruck", 0, 12, [](TvDbText&) {});
    show(u"Centre gy", 10, 9, [](TvDbText& t) { t.setHorizontalMode(TvDbText::kTextCenter); });
    show(u"Right gy", 25, 9, [](TvDbText& t) { t.setHorizontalMode(TvDbText::kTextRight); });
    show(u"Middle gy", 35, 9, [](TvDbText& t) { t.setHorizontalMode(TvDbText::kTextMid); });
    show(u"Top gy", 45, 9, [](TvDbText& t) { t.setVerticalMode(TvDbText::kTextTop); });
    show(u"Bottom gy", 52, 9, [](TvDbText& t) { t.setVerticalMode(TvDbText::kTextBottom); });
    show(u"Aligned", 0, 4, [](TvDbText& t) {
        t.setHorizontalMode(TvDbText::kTextAlign);
        t.setAlignmentPoint({12, 6, 0});
    });
    show(u"Fit between", 16, 4, [](TvDbText& t) {
        t.setHorizontalMode(TvDbText::kTextFit);
        t.setAlignmentPoint({32, 4, 0});
    });
    show(u"Backwards", 45, 4, [](TvDbText& t) { t.edit().setInteger("generation", 2); });
    show(u"Upside down", 48, 4, [](TvDbText& t) { t.edit().setInteger("generation", 4); });
    show(u"Turned", 2, -4, [](TvDbText& t) { t.setRotation(0.5); });
    show(u"Oblique 15", 12, -4, [](TvDbText& t) { t.setOblique(0.26); });
    show(u"Wide 2", 24, -4, [](TvDbText& t) { t.setWidthFactor(2); });
    show(u"The quick brown fox jumps over the lazy dog 0123456789", 0, -7, [](TvDbText&) {});
    show(u"DRAWING No. 47-11  SCALE 1:50  M12 x 1.75  \u00D8 25 H7/g6", 0, -10, [](TvDbText&) {});
    show(
        u"Gr\u00F6\u00DFe \u0160koda \u041F\u043B\u0430\u043D \u03A3\u03C7\u03AD\u03B4\u03B9\u03BF",
        0, -13, [](TvDbText&) {});
    painter.save("lines");
}

TEST(TextSample, ShowsTolerances)
{
    TvDbFcf tolerance;
    tolerance.setText(TvString(u"{\\Fgdt;j}%%v{\\Fgdt;n}0.5{\\Fgdt;m}%%vA%%vB{\\Fgdt;m}%%vC^J"
                               u"{\\Fgdt;f}%%v0.1%%v%%vA"));
    const gs::TextShape shape = shapeOf(tolerance, testFonts());

    ShapePainter painter(shape.extents.grown(0.1), 150);
    painter.paint(shape);
    painter.save("tolerance");
    EXPECT_FALSE(shape.isEmpty());
}

} // namespace
