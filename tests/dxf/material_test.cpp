#include "object_text.h"

namespace {

TEST(Material, IsReadWithItsMapsAndWrittenAsItWas)
{
    std::string text = groups({{0, "MATERIAL"},
                               {5, "2A"},
                               {330, "C"},
                               {100, "AcDbMaterial"},
                               {1, "Oak"},
                               {2, "a wood"},
                               {70, "1"},
                               {40, "0.5"},
                               {90, "-1023410177"},
                               {71, "0"},
                               {41, "1.0"},
                               {42, "0.25"},
                               {72, "1"},
                               {3, "oak.png"},
                               {73, "2"},
                               {74, "3"},
                               {75, "4"}});
    for (const char* code : {"43", "47", "49", "142", "144", "147"})
        for (int i = 0; i < 16; ++i)
            text += std::string(code) + "\n" + code + "." + std::to_string(i) + "\n";
    text += groups({{44, "0.75"},
                    {76, "1"},
                    {92, "-1040187392"},
                    {77, "2"},
                    {401, "1"},
                    {373, "1"},
                    {122, "0.125"},
                    {442, "77"},
                    {374, "0"},
                    {123, "2.5"},
                    {179, "1"},
                    {8, "bump.png"},
                    {145, "1.5"}});
    for (const NamedVersion& version : kVersions) {
        const db::Record material = readTwice(version, "OBJECTS", text);

        EXPECT_EQ(material.text("name"), u"Oak");
        EXPECT_EQ(material.structure("ambient").integer("rgb"), -1023410177);
        const db::RecordView map = material.structure("diffuse_map");
        EXPECT_EQ(map.text("file"), u"oak.png");
        EXPECT_EQ(map.integer("autotransform"), 4);
        EXPECT_EQ(map.array("matrix").real(3), 43.3);
        EXPECT_EQ(material.structure("bump_map").text("file"), u"bump.png");
        EXPECT_EQ(material.structure("refraction_map").array("matrix").real(9), 147.9);
        const db::RecordView wood = material.structure("specular_map");
        EXPECT_EQ(wood.structure("c1").integer("rgb"), 77);
        EXPECT_EQ(wood.structure("c2").real("factor"), 2.5);
    }
}

} // namespace
