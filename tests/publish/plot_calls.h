#pragma once

#include <string>
#include <vector>

#include <plot/publish_request.h>

/// What the plot module of the tests was asked for.
struct PlotCalls {
    struct Publishing {
        std::vector<std::string> titles;
        TvSmSheetSet* set;
        PublishRequest request;
        int lockStatus; ///< of the set meanwhile
    };
    struct Dialog {
        TvSmPublishOptions* options;
        TvSmDatabase* database;
        std::vector<std::string> titles;
    };
    struct PageSetups {
        TvDbDatabase* drawing;
        TvString setName;
        bool isOpen;
        std::vector<TvString> names; ///< of the page setups that the drawing has
    };
    std::vector<Publishing> published;
    std::vector<Dialog> dialogs;
    std::vector<PageSetups> pageSetups;
    std::vector<int> pdfLocks;
    int stampSettings = 0;
};
