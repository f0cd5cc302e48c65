#pragma once

class TvSmPersist;
class TvSmDatabase;
class TvSmComponent;
class TvSmSubset;
class TvSmSheetSet;
class TvSmSheet;
class TvSmSheetView;
class TvSmSheetViews;
class TvSmViewCategory;
class TvSmViewCategories;
class TvSmSheetSelection;
class TvSmSheetSelections;
class TvSmCustomPropertyBag;
class TvSmCustomPropertyValue;
class TvSmFileReference;
class TvSmDbObjectReference;
class TvSmTvDbLayoutReference;
class TvSmTvDbViewReference;
class TvSmTvDbBlockRecordReference;
class TvSmReferenceCollection;
class TvSmPublishOptions;
class TvSmEvents;
class TvSmSheetSetMgr;

namespace sm {
class DatabaseState;
struct Internals;
struct Extras;
} // namespace sm
