#pragma once

#include <memory>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <dwg/object_codec.h>
#include <dwg/raw_drawing.h>

#include "drawings.h"

/// One of the real drawings, open, with what its objects are coded by.
struct SampleDrawing {
    SampleDrawing(std::string fileName, nlohmann::json known, dwg::RawDrawing opened)
        : name(std::move(fileName)), expected(std::move(known)),
          drawing(std::move(opened)), context{drawing.version(), classes,
                                              dwg::CodePage::numbered(drawing.codePage())}
    {
        for (const dwg::ClassRecord& record : drawing.classes().records())
            classes.add(record.number, record.dxfNameText(), record.isEntity());
    }

    std::string name;
    nlohmann::json expected;
    dwg::RawDrawing drawing;
    dwg::ObjectClasses classes;
    dwg::ObjectContext context;

    /// The class's name as the expected values have it.
    std::string typeName(const dwg::ObjectRecord& object) const
    {
        if (const db::ClassDef* known = classes.find(object.type))
            return std::string(known->name());
        const dwg::ClassRecord* listed = drawing.classes().find(object.type);
        return listed ? listed->dxfNameText() : std::to_string(object.type);
    }

    /// Every object in the order of the map.
    template <class Visit>
    void forEachObject(Visit visit) const
    {
        for (const dwg::ObjectLocation& location : drawing.objects()) {
            const auto object = drawing.object(location);
            ASSERT_TRUE(object) << name << " " << std::hex << location.handle;
            visit(*object);
        }
    }

    /// Decoded; empty, with a failure told, when it cannot be.
    db::Record record(std::uint64_t handle) const
    {
        const auto object = drawing.object(handle);
        if (!object) {
            ADD_FAILURE() << name << ": no object " << std::hex << handle;
            return {};
        }
        auto decoded = dwg::decodeObject(*object, context);
        EXPECT_TRUE(decoded) << name << " " << std::hex << handle;
        return decoded ? std::move(*decoded) : db::Record();
    }
};

/// The real drawings whose name contains @p part, opened once for all tests of a program. None
/// where the folder is absent.
inline const std::vector<std::unique_ptr<SampleDrawing>>& sampleDrawings()
{
    static const auto* const all = [] {
        auto* samples = new std::vector<std::unique_ptr<SampleDrawing>>;
        for (auto& [name, expected] : realDrawings(".dwg")) {
            auto drawing = dwg::RawDrawing::open(readFile(drawingsFolder() / name));
            EXPECT_TRUE(drawing) << name;
            if (drawing)
                samples->push_back(
                    std::make_unique<SampleDrawing>(name, expected, std::move(*drawing)));
        }
        return samples;
    }();
    return *all;
}

/// The texts of the expected values and of records, in the same form.
inline std::string plainText(std::u16string_view text)
{
    return base::utf8FromUtf16(text);
}
