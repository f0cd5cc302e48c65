#pragma once

#include <vector>

#include <db/record.h>

namespace db {

/// Columns of an MTEXT, as drawings tell them. Lengths in drawing units; numbers as they were read.
struct MTextColumns {
    std::int64_t type = 0; ///< 0 none, 1 a fixed number of equal height, 2 as many as are needed
    std::int64_t count = 0;
    bool hasAutoHeight = false, isReversed = false;
    double width = 0, gutter = 0;
    std::vector<double> heights; ///< of columns that have no automatic height
};

/// The columns of a record of an MTEXT: in its fields, else in its extended data.
MTextColumns mtextColumns(const Record& mtext);
/// The columns in fields alone: of an attribute's paragraphs, say.
MTextColumns mtextColumns(const RecordView& fields);

} // namespace db
