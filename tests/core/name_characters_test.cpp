#include <core/name_characters.h>

TEST(NameCharacters, EachOfTheThirteenIsRefusedAndACommaOnlyForSheets)
{
    for (const TvChar unit : std::u16string_view(u"\\<>/?\":;*|=`")) {
        EXPECT_TRUE(HasUnsupportedSheetChar(TvString(u"A") + std::u16string_view(&unit, 1)));
        EXPECT_TRUE(HasUnsupportedNameChar(TvString(u"A") + std::u16string_view(&unit, 1)));
    }
    EXPECT_TRUE(HasUnsupportedSheetChar(u"A, B"));
    EXPECT_FALSE(HasUnsupportedNameChar(u"A, B"));
}

TEST(NameCharacters, OthersAreAllowed)
{
    for (const TvChar* text : {u"", u"A-101 (ground) 'x' & y.z_+#~", u"Erdgeschoß", u"平面図"}) {
        EXPECT_FALSE(HasUnsupportedSheetChar(text));
        EXPECT_FALSE(HasUnsupportedNameChar(text));
    }
}
