#include <cstdio>
#include <cstring>
#include <exception>

#include <base/path_rules.h>
#include <dwg/dwg_codec.h>

#include "sample_maker/templates.h"

/// make_samples templates FOLDER
int main(int argc, char** argv)
{
    if (argc != 3 || std::strcmp(argv[1], "templates") != 0) {
        std::fputs("usage: make_samples templates FOLDER\n", stderr);
        return 2;
    }
    try {
        dwg::install();
        samples::makeTemplates(base::pathFromNative(argv[2]));
    } catch (const std::exception& failure) {
        std::fprintf(stderr, "make_samples: %s\n", failure.what());
        return 1;
    }
    return 0;
}
