#include <algorithm>
#include <deque>
#include <iterator>
#include <numbers>

#include <db/default_drawing.h>
#include <db/record_editor.h>

namespace db {

namespace {

// Handles are a convention of new drawings; 4 is left free by custom.
enum Handle : std::uint64_t {
    kBlocks = 0x1,
    kLayers = 0x2,
    kStyles = 0x3,
    kLinetypes = 0x5,
    kViews = 0x6,
    kUcss = 0x7,
    kViewports = 0x8,
    kApplications = 0x9,
    kDimensionStyles = 0xA,
    kViewportHeaders = 0xB,
    kNamedObjects = 0xC,
    kGroups = 0xD,
    kPlotStyles = 0xE,
    kNormalPlotStyle = 0xF,
    kLayer0 = 0x10,
    kStandardStyle = 0x11,
    kAcad = 0x12,
    kByBlock = 0x14,
    kByLayer = 0x15,
    kContinuous = 0x16,
    kMlineStyles = 0x17,
    kStandardMline = 0x18,
    kPlotSettings = 0x19,
    kLayouts = 0x1A,
    kPaperSpace = 0x1B, // and its BLOCK and ENDBLK behind it
    kLayout1 = 0x1E,
    kModelSpace = 0x1F,
    kModelLayout = 0x22,
    kPaperSpace0 = 0x23,
    kLayout2 = 0x26,
    kStandardDimension = 0x27,
    kActiveViewport = 0x29,
    kFirstFree = 0x30,
};

class Maker
{
public:
    Maker(Version version, Measurement measurement) : m_version(version), m_measurement(measurement)
    {
    }

    DrawingContent make()
    {
        tables();
        dictionaries();
        records();
        spaces();
        variables();
        m_content.objects.assign(std::make_move_iterator(m_objects.begin()),
                                 std::make_move_iterator(m_objects.end()));
        std::sort(m_content.objects.begin(), m_content.objects.end(),
                  [](const Record& a, const Record& b) { return a.handle() < b.handle(); });
        return std::move(m_content);
    }

private:
    Record& add(const char* className, std::uint64_t handle, std::uint64_t owner)
    {
        Record& record = m_objects.emplace_back(*classNamed(className));
        record.setVersion(m_version);
        record.setHandle(handle);
        record.setTypeNumber(record.classDef()->typeNumber());
        RecordEditor edit(record);
        if (owner)
            edit.setHandle("owner", owner);
        return record;
    }

    void table(const char* className, std::uint64_t handle, std::vector<std::uint64_t> entries)
    {
        RecordEditor edit(add(className, handle, 0));
        for (const std::uint64_t entry : entries) {
            ArrayEditor list = edit.array("entries");
            list.setHandle(list.add(), entry);
        }
    }

    void tables()
    {
        table("BLOCK_CONTROL", kBlocks, {kPaperSpace0});
        RecordEditor blocks(m_objects.back());
        blocks.setHandle("model_space", kModelSpace);
        blocks.setHandle("paper_space", kPaperSpace);
        table("LAYER_CONTROL", kLayers, {kLayer0});
        table("STYLE_CONTROL", kStyles, {kStandardStyle});
        table("LTYPE_CONTROL", kLinetypes, {kContinuous});
        RecordEditor linetypes(m_objects.back());
        linetypes.setHandle("byblock", kByBlock);
        linetypes.setHandle("bylayer", kByLayer);
        table("VIEW_CONTROL", kViews, {});
        table("UCS_CONTROL", kUcss, {});
        table("VPORT_CONTROL", kViewports, {kActiveViewport});
        table("APPID_CONTROL", kApplications, {kAcad});
        table("DIMSTYLE_CONTROL", kDimensionStyles, {kStandardDimension});
        if (m_version == Version::Ac1015)
            table("VPENT_HDR_CONTROL", kViewportHeaders, {});
    }

    struct Entry {
        const char16_t* key;
        std::uint64_t value;
    };
    RecordEditor dictionary(const char* className, std::uint64_t handle, std::uint64_t owner,
                            std::vector<Entry> entries)
    {
        RecordEditor edit(add(className, handle, owner));
        if (owner)
            addReactor(edit, owner);
        for (const Entry& entry : entries) {
            ArrayEditor keys = edit.array("keys");
            const std::uint32_t at = keys.add();
            keys.setText(at, entry.key);
            edit.array("values").setHandle(at, entry.value);
        }
        return edit;
    }
    static void addReactor(RecordEditor& edit, std::uint64_t reactor)
    {
        ArrayEditor reactors = edit.array("reactors");
        reactors.setHandle(reactors.add(), reactor);
    }

    void dictionaries()
    {
        dictionary("DICTIONARY", kNamedObjects, 0,
                   {{u"ACAD_GROUP", kGroups},
                    {u"ACAD_LAYOUT", kLayouts},
                    {u"ACAD_MLINESTYLE", kMlineStyles},
                    {u"ACAD_PLOTSETTINGS", kPlotSettings},
                    {u"ACAD_PLOTSTYLENAME", kPlotStyles}});
        dictionary("DICTIONARY", kGroups, kNamedObjects, {});
        RecordEditor plotStyles = dictionary("ACDBDICTIONARYWDFLT", kPlotStyles, kNamedObjects,
                                             {{u"Normal", kNormalPlotStyle}});
        plotStyles.setInteger("hard_owner", 1);
        plotStyles.setHandle("default", kNormalPlotStyle);
        RecordEditor normal(add("ACDBPLACEHOLDER", kNormalPlotStyle, kPlotStyles));
        addReactor(normal, kPlotStyles);
        dictionary("DICTIONARY", kMlineStyles, kNamedObjects, {{u"Standard", kStandardMline}});
        dictionary("DICTIONARY", kPlotSettings, kNamedObjects, {});
        dictionary("DICTIONARY", kLayouts, kNamedObjects,
                   {{u"Layout1", kLayout1}, {u"Layout2", kLayout2}, {u"Model", kModelLayout}});
    }

    RecordEditor named(const char* className, std::uint64_t handle, std::uint64_t table,
                       const char16_t* name)
    {
        RecordEditor edit(add(className, handle, table));
        edit.setText("name", name);
        return edit;
    }

    void records()
    {
        RecordEditor layer = named("LAYER", kLayer0, kLayers, u"0");
        setIndexed(layer.structure("color"), 7);
        layer.setHandle("plotstyle", kNormalPlotStyle);
        layer.setHandle("ltype", kContinuous);
        RecordEditor style = named("STYLE", kStandardStyle, kStyles, u"Standard");
        style.setReal("last_height", 0.2);
        style.setText("font", u"txt");
        named("APPID", kAcad, kApplications, u"ACAD");
        named("LTYPE", kByBlock, kLinetypes, u"ByBlock");
        named("LTYPE", kByLayer, kLinetypes, u"ByLayer");
        named("LTYPE", kContinuous, kLinetypes, u"Continuous")
            .setText("description", u"Solid line");
        named("DIMSTYLE", kStandardDimension, kDimensionStyles, u"Standard")
            .setHandle("DIMTXSTY", kStandardStyle);
        mlineStyle();
        viewport();
    }

    /// A colour by its index in the table of 255 (256: by layer).
    void setIndexed(RecordEditor color, std::int64_t index) const
    {
        constexpr std::int64_t kByLayerColor = 256;
        if (m_version == Version::Ac1015)
            color.setInteger("index", index);
        color.setInteger("value", static_cast<std::int32_t>(
                                      index == kByLayerColor
                                          ? 0xC0000000u
                                          : 0xC3000000u | static_cast<std::uint32_t>(index)));
    }

    void mlineStyle()
    {
        RecordEditor edit = named("MLINESTYLE", kStandardMline, kMlineStyles, u"Standard");
        addReactor(edit, kMlineStyles);
        setIndexed(edit.structure("fill"), 256);
        edit.setReal("start_angle", std::numbers::pi / 2);
        edit.setReal("end_angle", std::numbers::pi / 2);
        edit.array("lines").resize(2);
        for (const std::uint32_t i : {0u, 1u}) {
            constexpr std::int64_t kLinetypeByLayer = 32767;
            RecordEditor line = edit.array("lines")[i];
            line.setReal("offset", i == 0 ? 0.5 : -0.5);
            setIndexed(line.structure("color"), 256);
            line.setInteger("ltype_index", kLinetypeByLayer);
            line.setHandle("ltype", kByLayer);
        }
    }

    void viewport()
    {
        RecordEditor edit = named("VPORT", kActiveViewport, kViewports, u"*Active");
        const Point limits = sheetLimits();
        edit.setReal("height", limits.y);
        edit.setReal("width", limits.y * 2);
        edit.setPoint("center", {limits.x / 2, limits.y / 2});
        edit.setPoint("upper_right", {1, 1});
        const double spacing = m_measurement == Measurement::Metric ? 10 : 0.5;
        edit.setPoint("grid_spacing", {spacing, spacing});
        edit.setPoint("snap_spacing", {spacing, spacing});
    }

    Point sheetLimits() const
    {
        return m_measurement == Measurement::Metric ? Point{420, 297} : Point{12, 9};
    }

    void space(std::uint64_t block, const char16_t* name, int entmode, std::uint64_t layout)
    {
        const std::uint64_t begin = block + 1, end = block + 2;
        RecordEditor record = named("BLOCK_HEADER", block, kBlocks, name);
        record.setHandle("block_entity", begin);
        record.setHandle("endblk_entity", end);
        record.setHandle("layout", layout);
        RecordEditor first(add("BLOCK", begin, 0));
        first.setText("name", name);
        RecordEditor last(add("ENDBLK", end, 0));
        for (RecordEditor* entity : {&first, &last}) {
            entity->setInteger("entmode", entmode);
            entity->setHandle("owner", block);
            entity->setHandle("layer", kLayer0);
            entity->setInteger("nolinks", 1);
        }
    }

    void layout(std::uint64_t handle, const char16_t* name, int order, std::uint64_t block)
    {
        RecordEditor edit(add("LAYOUT", handle, kLayouts));
        addReactor(edit, kLayouts);
        edit.setText("name", name);
        edit.setInteger("tab_order", order);
        edit.setHandle("block_record", block);
        edit.setInteger("flags", 1);
        edit.setPoint("limmax", sheetLimits());
        edit.setInteger("paper_units", m_measurement == Measurement::Metric ? 1 : 0);
        if (order == 0) {
            constexpr std::int64_t kModelFlags = 0x2EB0; // "model" among them
            edit.setInteger("plot_flags", kModelFlags);
            edit.setText("plotter_config", u"none_device");
            edit.setInteger("std_scale_type", 0);
            edit.setInteger("plot_type", 0);
            if (m_version >= Version::Ac1018)
                edit.setHandle("active_viewport", kActiveViewport);
        } else {
            edit.setText("plotter_config", u"None");
        }
    }

    void spaces()
    {
        // An explicit owner is right whichever space is shown.
        space(kPaperSpace, u"*Paper_Space", 0, kLayout1);
        space(kModelSpace, u"*Model_Space", 0, kModelLayout);
        space(kPaperSpace0, u"*Paper_Space0", 0, kLayout2);
        layout(kModelLayout, u"Model", 0, kModelSpace);
        layout(kLayout1, u"Layout1", 1, kPaperSpace);
        layout(kLayout2, u"Layout2", 2, kPaperSpace0);
    }

    void variables()
    {
        Record& header = m_content.header = Record(*classNamed("HEADER_VARIABLES"));
        header.setVersion(m_version);
        RecordEditor edit(header);
        struct Row {
            const char* name;
            std::uint64_t handle;
        };
        // clang-format off
        static constexpr Row kRows[] = {
            {"BLOCKCTL", kBlocks}, {"LAYERCTL", kLayers}, {"STYLECTL", kStyles}, {"LTYPECTL", kLinetypes},
            {"VIEWCTL", kViews}, {"UCSCTL", kUcss}, {"VPORTCTL", kViewports}, {"APPIDCTL", kApplications},
            {"DIMSTYLECTL", kDimensionStyles}, {"DNAMEDOBJ", kNamedObjects}, {"DGROUP", kGroups},
            {"DPLOTSTYLE", kPlotStyles}, {"CLAYER", kLayer0}, {"TEXTSTYLE", kStandardStyle},
            {"DIMTXSTY", kStandardStyle}, {"LTBYBLOCK", kByBlock}, {"LTBYLAYER", kByLayer}, {"CELTYPE", kByLayer},
            {"LTCONTINUOUS", kContinuous}, {"DMLINESTYLE", kMlineStyles}, {"CMLSTYLE", kStandardMline},
            {"DPLOTSETTINGS", kPlotSettings}, {"DLAYOUT", kLayouts}, {"BRPSPACE", kPaperSpace},
            {"BRMSPACE", kModelSpace}, {"DIMSTYLE", kStandardDimension}, {"HANDSEED", kFirstFree},
        };
        // clang-format on
        for (const Row& row : kRows)
            edit.setHandle(row.name, row.handle);
        if (m_version == Version::Ac1015)
            edit.setHandle("VXCTL", kViewportHeaders);
        for (const char* name : {"EXTMIN", "PEXTMIN"})
            edit.setPoint(name, {1e20, 1e20, 1e20});
        for (const char* name : {"EXTMAX", "PEXTMAX"})
            edit.setPoint(name, {-1e20, -1e20, -1e20});
        for (const char* name : {"LIMMAX", "PLIMMAX"})
            edit.setPoint(name, sheetLimits());
        const bool metric = m_measurement == Measurement::Metric;
        constexpr std::int64_t kInches = 1, kMillimetres = 4;
        edit.setInteger("INSUNITS", metric ? kMillimetres : kInches);
        edit.setInteger("MEASUREMENT", metric ? 1 : 0);
    }

    const Version m_version;
    const Measurement m_measurement;
    std::deque<Record> m_objects; // at one address while they are filled
    DrawingContent m_content;
};

} // namespace

DrawingContent makeDefaultDrawing(Version version, Measurement measurement)
{
    return Maker(version, measurement).make();
}

} // namespace db
