#include <core/name_characters.h>

bool HasUnsupportedSheetChar(const TvString& text)
{
    return HasUnsupportedNameChar(text) || text.find(u',') != TvString::npos;
}

bool HasUnsupportedNameChar(const TvString& text)
{
    return text.findLastOneOf(u"\\<>/?\":;*|=`") != TvString::npos;
}
