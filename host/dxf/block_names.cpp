#include "block_names.h"

#include <base/tv_string.h>

namespace dxf {

bool isNumberedBlock(std::u16string_view baseName)
{
    return baseName.size() > 1 && baseName[0] == u'*' &&
           !base::equalNoCase(baseName, u"*Model_Space");
}

std::u16string_view baseBlockName(std::u16string_view name)
{
    if (!isNumberedBlock(name))
        return name;
    std::size_t size = name.size();
    while (size > 2 && name[size - 1] >= u'0' && name[size - 1] <= u'9')
        --size;
    return name.substr(0, size);
}

} // namespace dxf
