#pragma once

#include <QImage>
#include <QPointer>
#include <QTimer>
#include <QWidget>

#include <core/sheet_tip.h>

/// The tip of a tree: the name of an item above a line, a picture of its layout, and what is known
/// of it. How much of that is the choice of core::tipStyle().
class CTarvSheetSetToolTipCtrl : public QWidget
{
public:
    static constexpr int kMaxWidth = 350; ///< pixels
    static constexpr int kInset = 5;      ///< left and right of the words

    CTarvSheetSetToolTipCtrl();
    ~CTarvSheetSetToolTipCtrl() override;

    /// The tree; null while there is none.
    virtual QWidget* GetOwnerWnd() const { return m_owner; }
    virtual void SetOwnerWnd(QWidget* window) { m_owner = window; }
    /// The words for the item of SetHandle(), and with them the picture. Empty: no tip.
    ///
    /// The item's drawing is looked at in another thread. Where that takes long the words are what
    /// is known without it, and the tip is made anew when the rest is there, if it is still up.
    virtual void GetTipText(TvString& out);
    virtual void PaintTip();

    /// The item under the mouse.
    void SetHandle(const TvString& handle) { m_handle = handle; }
    const TvString& Handle() const { return m_handle; }
    /// Makes the tip anew and shows it beside that point of the desktop.
    /// @return false when there is nothing to say; it is hidden then.
    bool Update(const QPoint& at);
    /// How it looks with the words and the picture of the last Update().
    QSize sizeHint() const override;
    const core::Tip& tip() const { return m_tip; }
    /// The disk has not told yet what the tip is to show.
    bool isWaiting() const { return m_isWaiting; }

protected:
    void paintEvent(QPaintEvent* event) override;
    void hideEvent(QHideEvent* event) override;

    core::Tip m_tip;  ///< what GetTipText() made
    QImage m_picture; ///< the preview, decoded; null: none

private:
    struct Layout;
    Layout layOut() const;
    QPoint placeBeside(const QPoint& at) const;
    void beginLook(int waitMs);
    void makeWords();
    void place();
    void lookAgain();

    static constexpr int kAgainMs = 50;

    QPointer<QWidget> m_owner;
    TvString m_handle;
    std::optional<core::DrawingLook> m_look; // at the drawing of the item
    bool m_isWaiting = false;                // the look has not answered, or could not begin
    QPoint m_at;                             // the point beside which the tip is
    QTimer m_again;
};
