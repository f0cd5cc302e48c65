#pragma once

#include <functional>

#include <QWidget>

class QToolButton;

namespace ui {

/// What a palette set shows above its palettes: its title, and buttons for its menu, for rolling in
/// and for closing. Whoever presses the mouse on the title itself drags the set.
class PaletteTitleBar : public QWidget
{
public:
    struct Actions {
        std::function<void()> showMenu, toggleRollup, close;
    };
    PaletteTitleBar(QWidget* parent, Actions actions);

    void setTitle(const QString& title);
    void setRollup(bool isOn);
    /// Takes no room; for a set that is a strip.
    void setFolded(bool isFolded);
    /// Below which the menu opens.
    QPoint menuPoint() const;

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;
    void changeEvent(QEvent* event) override;

private:
    QToolButton* addButton(const QString& icon, int text, std::function<void()> pressed);
    QString m_title;
    bool m_isFolded = false;
    QToolButton *m_menu, *m_pin, *m_close; // owned by the toolkit
};

} // namespace ui
