#pragma once

#include "sheet_set_builder.h"

/// A small set with something of everything.
///
/// House: Ground (1 - Plan, Details (2 - Stair), 3 - Section), Roof (), Cover
struct HouseSheets {
    /// Fills an empty set, which can be changed now.
    void makeSheets(TvSmSheetSet& top)
    {
        top.setName(u"House");
        ground = addSubset(&top, u"Ground");
        plan = addSheet(ground, u"1", u"Plan");
        details = addSubset(ground, u"Details");
        stair = addSheet(details, u"2", u"Stair");
        section = addSheet(ground, u"3", u"Section");
        roof = addSubset(&top, u"Roof");
        cover = addSheet(&top, u"", u"Cover");
    }

    TvSmSubset *ground = nullptr, *details = nullptr, *roof = nullptr;
    TvSmSheet *plan = nullptr, *stair = nullptr, *section = nullptr, *cover = nullptr;
};
