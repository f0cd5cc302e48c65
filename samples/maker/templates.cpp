#include "sample_maker/templates.h"

#include <cmath>

#include <base/path_rules.h>

#include "sample_maker/title_block.h"

namespace samples {

namespace {

constexpr double kInch = 1 / 25.4; // a millimetre in inches

SheetForm wideForm(const Paper& paper, double unit)
{
    constexpr double kLeft = 20, kMargin = 10, kGap = 5; // millimetres
    SheetForm form;
    form.paper = paper;
    form.titleCorner = {paper.width - kMargin * unit, kMargin * unit};
    form.low = {(kLeft + kGap) * unit, (kMargin + kGap) * unit};
    form.high = {paper.width - (kMargin + kGap) * unit, paper.height - (kMargin + kGap) * unit};
    return form;
}

std::vector<SheetForm> metricForms(Sketch& sketch)
{
    addWideTitleBlock(sketch, u"Title Block ISO", 1);
    std::vector<SheetForm> forms = {
        wideForm({u"ISO A1", 841, 594, u"ISO_A1_(841.00_x_594.00_MM)"}, 1),
        wideForm({u"ISO A3", 420, 297, u"ISO_A3_(420.00_x_297.00_MM)"}, 1)};
    for (SheetForm& form : forms)
        form.titleBlock = u"Title Block ISO";
    forms[0].high.x -= kWideTitleWidth;      // beside the title block
    forms[1].low.y += kWideTitleHeight + 35; // above it and its list of changes
    return forms;
}

std::vector<SheetForm> imperialForms(Sketch& sketch)
{
    addWideTitleBlock(sketch, u"Title Block ANSI", kInch);
    const Paper ansi{u"ANSI D", 34, 22, u"ANSI_D_(34.00_x_22.00_Inches)"};
    const Paper arch{u"ARCH D", 36, 24, u"ARCH_D_(36.00_x_24.00_Inches)"};
    std::vector<SheetForm> forms = {wideForm(ansi, kInch), wideForm(arch, kInch)};
    forms[0].titleBlock = u"Title Block ANSI";
    forms[0].high.x -= kWideTitleWidth * kInch;
    forms[1].titleBlock = u"Title Block ARCH";
    forms[1].high.x -= kTallTitleWidth * kInch;
    constexpr double kMargins = 20; // millimetres, top and bottom
    addTallTitleBlock(sketch, u"Title Block ARCH", kInch, arch.height - kMargins * kInch);
    return forms;
}

/// The same room, in four windows.
void drawFourViews(Pen& sheet, const SheetForm& form, double gap, double scale)
{
    const double wide = (form.high.x - form.low.x - gap) / 2;
    const double tall = (form.high.y - form.low.y - gap) / 2;
    for (const double x : {form.low.x, form.low.x + wide + gap})
        for (const double y : {form.low.y, form.low.y + tall + gap})
            sheet.viewport({x, y}, {x + wide, y + tall}, {}, scale);
}

void makeTemplate(Units units, const TvString& path, const TvString& title, double scale,
                  const TvString& scaleText)
{
    const Attributes texts{{tag::kScale, scaleText}};
    Sketch sketch(units);
    const std::vector<SheetForm> forms = addSheetForms(sketch);
    for (const SheetForm& form : forms)
        newSheet(sketch, form, form.paper.layout, texts)
            .on(u"Viewports")
            .viewport(form.low, form.high, {}, scale);
    const SheetForm& large = units == Units::Millimetres ? forms.front() : forms.back();
    Pen four = newSheet(sketch, large, large.paper.layout + TvString(u" Four Views"), texts);
    drawFourViews(four.on(u"Viewports"), large, units == Units::Millimetres ? 10 : 0.5, scale);
    sketch.describe(title, u"TARVIK", u"A template for new sheets.");
    sketch.showModel(false);
    sketch.save(path);
}

} // namespace

std::vector<SheetForm> addSheetForms(Sketch& sketch)
{
    addSheetStyles(sketch);
    return sketch.units() == Units::Millimetres ? metricForms(sketch) : imperialForms(sketch);
}

Pen newSheet(Sketch& sketch, const SheetForm& form, const TvString& layout, const Attributes& texts)
{
    const double unit = sketch.units() == Units::Millimetres ? 1 : kInch;
    Paper paper = form.paper;
    paper.layout = layout;
    Pen pen = sketch.newPaper(paper);
    Frame frame;
    frame.low = {20 * unit, 10 * unit};
    frame.high = {paper.width - 10 * unit, paper.height - 10 * unit};
    frame.zone = 5 * unit;
    // Zones are about 5 cm wide, and there is an even number of them.
    const auto zonesIn = [unit](double length) {
        return 2 * static_cast<int>(std::lround(length / unit / 104));
    };
    frame.columns = zonesIn(paper.width);
    frame.rows = zonesIn(paper.height);
    drawFrame(pen, paper, frame, unit);
    pen.on(u"Sheet Frame").insert(form.titleBlock, form.titleCorner, texts);
    return pen;
}

void makeTemplates(const TvString& folder)
{
    const auto in = [&folder](const TvChar* name) {
        return base::PathRules::native().join(folder, name);
    };
    makeTemplate(Units::Millimetres, in(u"ISO sheets.dwt"), u"Sheets of ISO sizes", 1.0 / 100,
                 u"1:100");
    constexpr double kQuarterInchToFoot = 1.0 / 48;
    makeTemplate(Units::Inches, in(u"Imperial sheets.dwt"), u"Sheets of ANSI and ARCH sizes",
                 kQuarterInchToFoot, u"1/4\" = 1'-0\"");
}

} // namespace samples
