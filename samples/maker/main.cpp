#include <cstdio>
#include <cstring>
#include <exception>
#include <filesystem>

#include <base/path_rules.h>
#include <dwg/dwg_codec.h>

#include "sample_maker/lake_house.h"
#include "sample_maker/templates.h"

namespace {

struct Sample {
    const char* name;
    void (*make)(const TvString& folder);
};
constexpr Sample kSamples[] = {{"templates", samples::makeTemplates},
                               {"lake-house", samples::makeLakeHouse}};

const Sample* find(const char* name)
{
    for (const Sample& each : kSamples)
        if (std::strcmp(each.name, name) == 0)
            return &each;
    return nullptr;
}

} // namespace

/// make_samples templates|lake-house FOLDER
int main(int argc, char** argv)
{
    const Sample* sample = argc == 3 ? find(argv[1]) : nullptr;
    if (!sample) {
        std::fputs("usage: make_samples templates|lake-house FOLDER\n", stderr);
        return 2;
    }
    try {
        dwg::install();
        sample->make(base::pathFromNative(std::filesystem::absolute(argv[2]).string()));
    } catch (const std::exception& failure) {
        std::fprintf(stderr, "make_samples: %s\n", failure.what());
        return 1;
    }
    return 0;
}
