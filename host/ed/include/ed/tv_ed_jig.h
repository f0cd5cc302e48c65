#pragma once

#include <ed/jig_input.h>

#include <db/tv_db_object_id.h>
#include <rx/tv_rx_object.h>

/// Drags something until the user has chosen a point, a distance, an angle or a text.
///
/// Whoever drags derives from it: sampler() asks by one of the acquire functions and keeps the
/// answer, update() makes the entity fit it, entity() gives what is shown. drag() calls them over
/// and over, for each move of the pointer, until the answer is final.
///
/// What was posted or scripted comes first, then the window is asked; without one what the user
/// types counts, as at any prompt, and without anybody to ask the jig is cancelled.
class TvEdJig : public TvRxObject
{
    TVRX_DECLARE_MEMBERS(TvEdJig)

    /// The numbers are part of the interface.
    enum DragStatus : int {
        kModeless = -17,
        kNoChange = -6, ///< of a sampler: the same answer as before
        kCancel = -4,   ///< the user gave up, or nobody can be asked
        kOther = -3,    ///< another text was typed: otherInput()
        kNull = -1,     ///< Enter alone
        kNormal = 0,
        kKW1, ///< the first of the keywords, and so on
        kKW2,
        kKW3,
        kKW4,
        kKW5,
        kKW6,
        kKW7,
        kKW8,
        kKW9,
    };
    /// Bits of setUserInputControls().
    enum UserInputControls : int {
        kGovernedByOrthoMode = 1,
        kNullResponseAccepted = 2,
        kDontEchoCancelForCtrlC = 4,
        kDontUpdateLastPoint = 8,
        kNoDwgLimitsChecking = 16,
        kNoZeroResponseAccepted = 32,
        kNoNegativeResponseAccepted = 64,
        kAccept3dCoordinates = 128, ///< otherwise points lie in the plane of the base point's z
        kAcceptMouseUpAsPoint = 256,
        kAnyBlankTerminatesInput = 512,
        kInitialBlankTerminatesInput = 1024,
        kAcceptOtherInputString = 2048,
    };

    /// Asks by an acquire function; hands its status on. kNoChange skips the update.
    virtual DragStatus sampler();
    /// Makes the entity fit the answer. False: it is not shown anew.
    virtual bool update();
    /// What is shown; null: nothing. Stays the jig's.
    virtual TvDbEntity* entity() const;

    /// Runs it. kNormal when the answer is final; the image is gone in any case, and a jig that was
    /// cancelled has changed nothing by itself. A command that runs is told of a cancel.
    DragStatus drag();
    /// Puts entity() into the space that is shown; it belongs to the drawing then.
    /// @return null, and the entity is still the jig's, when that fails.
    TvDbObjectId append();

    /// As ed::keywordFor() reads them; at most nine.
    void setKeywordList(const TvString& keywords) { m_keywords = keywords; }
    const TvString& keywordList() const { return m_keywords; }
    void setDispPrompt(const TvString& prompt) { m_prompt = prompt; }
    const TvString& dispPrompt() const { return m_prompt; }
    void setUserInputControls(int controls) { m_controls = controls; }
    int userInputControls() const { return m_controls; }
    /// What was typed, after kOther.
    const TvString& otherInput() const { return m_other; }

    // Each waits for the next move or answer; @p out is set for kNormal and kNoChange. kNoChange:
    // the answer is the last one, or what was typed made no sense (which was told).

    /// In the coordinates of the world, as all points here.
    DragStatus acquirePoint(TvGePoint3d& out);
    DragStatus acquirePoint(TvGePoint3d& out, const TvGePoint3d& base);
    /// From the base point to the pointer; without one from the last point. Not negative.
    DragStatus acquireDist(double& out);
    DragStatus acquireDist(double& out, const TvGePoint3d& base);
    /// Of the line from the base point to the pointer, in radians from the x axis, 0 to 2 pi.
    DragStatus acquireAngle(double& out);
    DragStatus acquireAngle(double& out, const TvGePoint3d& base);
    DragStatus acquireString(TvString& out);

protected:
    TvEdJig() = default;

private:
    DragStatus run();
    DragStatus fetch(ed::JigQuestion::Kind kind, const std::optional<TvGePoint3d>& base);
    bool nextEvent(const ed::JigQuestion& question);
    DragStatus statusOfText();
    template <class T, class FromPoint, class FromText>
    DragStatus acquire(ed::JigQuestion::Kind kind, const std::optional<TvGePoint3d>& base, T& out,
                       FromPoint fromPoint, FromText fromText);
    DragStatus acquirePoint(TvGePoint3d& out, const std::optional<TvGePoint3d>& base);
    DragStatus acquireDist(double& out, const std::optional<TvGePoint3d>& base);
    DragStatus acquireAngle(double& out, const std::optional<TvGePoint3d>& base);

    TvString m_keywords, m_prompt, m_other;
    int m_controls = 0;
    ed::JigEvent m_event;
    bool m_hasAsked = false;   // the sampler called an acquire function
    bool m_isFinal = false;    // the answer is not just a move
    bool m_isRejected = false; // it makes no sense
    std::optional<TvGePoint3d> m_lastPoint;
    std::optional<double> m_lastNumber;
};
