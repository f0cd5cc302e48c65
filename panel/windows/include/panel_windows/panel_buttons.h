#pragma once

#include <functional>

#include <QToolButton>

/// A button with a picture alone.
class CIconButton : public QToolButton
{
public:
    explicit CIconButton(QWidget* parent);
    /// @param name  of a picture. @param words  the tip, and what is read aloud.
    void setLook(const char16_t* name, const QString& words);
};

/// A button with a menu: all of it opens it, or the arrow at its right alone.
class CDropMenuButton : public CIconButton
{
public:
    static constexpr int kArrowPx = 16;

    enum class Opens { ByArrow, Always };
    CDropMenuButton(Opens opens, QWidget* parent);

    /// Shows the menu. @param at  of the desktop: the button's lower left corner.
    std::function<void(const QPoint& at)> onMenu;
    void openMenu();

protected:
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    Opens m_opens;
};

/// A thin line between what stands above it and below.
class CStaticBar : public QWidget
{
public:
    using QWidget::QWidget;

protected:
    void paintEvent(QPaintEvent* event) override;
};
