#pragma once

#include <memory>
#include <vector>

#include <db/tv_db_database.h>

/// A scale at which annotations show their size: "1:50".
class TvDbScale : public TvDbObject
{
    TVRX_DECLARE_MEMBERS(TvDbScale)

    TvDbScale() : TvDbObject("SCALE") {}

    TvString getName() const;
    double paperUnits() const;
    double drawingUnits() const;
    /// Paper units by drawing units; 0 for a damaged one.
    double getScale() const;
    /// It is 1:1 for ever.
    bool isUnitScale() const;
};

/// One scale of a drawing, as it is now: a value, which stays when the drawing goes.
class TvDbAnnotationScale
{
public:
    TvDbAnnotationScale() = default;
    TvDbAnnotationScale(TvString name, double paperUnits, double drawingUnits,
                        TvDbObjectId id = {});

    TvString getName() const { return m_name; }
    /// Ok and the quotient; InvalidInput when one of its units is 0 or less.
    TvStatusCode getScale(double& out) const;
    TvStatusCode getPaperUnits(double& out) const;
    TvStatusCode getDrawingUnits(double& out) const;
    /// The object that keeps it; null for one that is in no drawing.
    TvDbObjectId objectId() const { return m_id; }
    /// It came with an external reference: such scales are told by their names ("1:50_XREF").
    bool isXref() const;

private:
    TvString m_name;
    double m_paperUnits = 1, m_drawingUnits = 1;
    TvDbObjectId m_id;
};

/// The name of the collection of annotation scales.
extern const TvChar* const tvdbAnnotationScaleCollectionName;

/// The contexts of one kind that a drawing has; so far that is its annotation scales.
class TvDbObjectContextCollection
{
public:
    explicit TvDbObjectContextCollection(TvDbDatabase& database) : m_database(database) {}

    TvString name() const { return TvString(tvdbAnnotationScaleCollectionName); }
    /// In the order of the drawing's list.
    std::vector<TvDbAnnotationScale> contexts() const;
    /// KeyNotFound when there is none of that name, in any case.
    TvStatusCode getContext(const TvString& name, TvDbAnnotationScale& out) const;
    bool hasContext(const TvString& name) const;
    /// The one that new annotations get: CANNOSCALE. In a drawing that does not say, 1:1.
    /// KeyNotFound when the drawing does not have it.
    TvStatusCode currentContext(TvDbAnnotationScale& out) const;
    /// Makes the scale of that name the current one. KeyNotFound when there is none.
    TvStatusCode setCurrentContext(const TvString& name);
    /// Adds a scale; the list is made when the drawing has none.
    /// @return DuplicateName; InvalidName; InvalidInput for units that are not above 0.
    TvStatusCode addContext(const TvDbAnnotationScale& scale, TvDbObjectId* out = nullptr);

private:
    TvDbDatabase& m_database;
};

/// What objects of a drawing may look different in.
class TvDbObjectContextManager
{
public:
    explicit TvDbObjectContextManager(TvDbDatabase& database) : m_scales(database) {}
    /// Null for a name that is no collection's.
    TvDbObjectContextCollection* contextCollection(const TvString& name);

private:
    TvDbObjectContextCollection m_scales;
};

/// The current annotation scale of a drawing; KeyNotFound when it has none, NoDatabase for null.
TvStatusCode tvdbGetCurAnnoScale(const TvDbDatabase* database, TvDbAnnotationScale& out);
