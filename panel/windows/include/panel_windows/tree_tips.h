#pragma once

#include <memory>

#include <QObject>
#include <QTimer>

#include <panel_windows/sheet_set_tool_tip_ctrl.h>

class CDragTreeCtrl;

namespace panel {

class TreeItem;

/// When the tip of a tree comes and goes: it comes kRestMs after the mouse came to rest on another
/// item than before, and goes with the mouse, with any press, key or turn of the wheel, and by
/// itself after kStayMs.
class TreeTips : public QObject
{
public:
    static constexpr int kRestMs = 1000, kStayMs = 32767;

    /// @param tree  not owned; outlives this.
    TreeTips(CDragTreeCtrl& tree, std::unique_ptr<CTarvSheetSetToolTipCtrl> tip);

    /// False hides the tip at once.
    void SetShowTips(bool showTips);
    CTarvSheetSetToolTipCtrl& tip() { return *m_tip; }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void mouseIsOn(const TreeItem* item);
    void mouseRests();
    void hide();

    CDragTreeCtrl& m_tree;
    std::unique_ptr<CTarvSheetSetToolTipCtrl> m_tip;
    TvString m_hovered; // handle; empty: none
    bool m_showTips = true;
    bool m_isDue = false; // the mouse has not rested on that item yet
    QTimer m_rest, m_stay;
};

} // namespace panel
