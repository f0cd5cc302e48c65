#include "whole_file.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    useWholeFile("AC1032", data, size);
    return 0;
}
