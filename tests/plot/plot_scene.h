#pragma once

#include <array>
#include <cstdio>
#include <cstdlib>
#include <string>

#include <db/tv_db_curves.h>
#include <db/tv_db_layout.h>
#include <db/tv_db_text.h>
#include <dwg/dwg_codec.h>
#include <plot/job.h>
#include <plot/page.h>

#include "scene_tools.h"
#include "temp_folder.h"

/// A drawing with one sheet of A3, margins of 10 mm, in millimetres.
class PlotScene : public DrawingScene
{
public:
    explicit PlotScene(const TvChar* name = u"Plan")
    {
        static const bool isInstalled = (dwg::install(), true);
        EXPECT_TRUE(isInstalled);
        EXPECT_EQ(db::addLayout(database(), name, layout), TvStatus::Ok);
        set([](db::RecordEditor& fields) {
            fields.setReal("paper_width", 420);
            fields.setReal("paper_height", 297);
            for (const char* margin :
                 {"margin_left", "margin_bottom", "margin_right", "margin_top"})
                fields.setReal(margin, 10);
            fields.setPoint("plot_origin", {0, 0, 0});
            fields.setInteger("paper_units", 1);
            fields.setInteger("rotation", 0);
            fields.setInteger("plot_type", TvDbPlotSettings::kLayout);
            fields.setInteger("plot_flags", 0x80);
            fields.setReal("scale_numerator", 1);
            fields.setReal("scale_denominator", 1);
        });
    }

    template <class Change>
    void set(Change change)
    {
        TvDbObjectPointer<TvDbLayout> open(layout, TvDb::kForWrite);
        db::RecordEditor fields = open->edit();
        change(fields);
    }
    TvDbObjectId paper()
    {
        return TvDbObjectPointer<TvDbLayout>(layout, TvDb::kForNotify)->getBlockTableRecordId();
    }
    void line(double x1, double y1, double x2, double y2)
    {
        addTo(paper(), new TvDbLine({x1, y1, 0}, {x2, y2, 0}));
    }
    void text(const TvChar* shown, double x, double y)
    {
        auto* text = new TvDbText;
        text->setTextString(shown);
        text->setPosition({x, y, 0});
        text->setHeight(5);
        addTo(paper(), text);
    }
    std::shared_ptr<const std::vector<std::uint8_t>> bytes()
    {
        auto made = database().toBytes(db::FileFormat::Dwg);
        EXPECT_TRUE(made);
        return std::make_shared<std::vector<std::uint8_t>>(std::move(*made));
    }

    TvDbObjectId layout;
};

/// What a program of the machine prints; "" when it is not there. Its answer goes to @p code.
inline std::string printed(const std::string& command, int* code = nullptr)
{
    std::string out;
    FILE* const pipe = popen((command + " 2>&1").c_str(), "r");
    if (!pipe)
        return out;
    std::array<char, 4096> buffer;
    while (const std::size_t got = fread(buffer.data(), 1, buffer.size(), pipe))
        out.append(buffer.data(), got);
    const int status = pclose(pipe);
    if (code)
        *code = status;
    return out;
}

inline bool hasProgram(const char* name)
{
    return std::system((std::string("command -v ") + name + " >/dev/null 2>&1").c_str()) == 0;
}
