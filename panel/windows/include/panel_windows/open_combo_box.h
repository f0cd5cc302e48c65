#pragma once

#include <QWidget>

/// The field with the name of the current sheet set; a lock stands before it while somebody has the
/// set. It opens the menu of sets.
class COpenComboBox : public QWidget
{
public:
    explicit COpenComboBox(QWidget* parent);

    /// What it shows, as of the session.
    static QString text();
    static bool isLocked();
    /// The file, and who has it while somebody has; empty without a set.
    static QString tip();
    void openMenu();
    QSize sizeHint() const override;

protected:
    bool event(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
};
