#pragma once

#include <QDialog>

#include <rx/tv_user_messages.h>

class QBoxLayout;
class QButtonGroup;
class QCheckBox;

namespace ui {

/// A task dialog: the question in large letters, its answers as large buttons below each other.
class TaskWindow : public QDialog
{
public:
    TaskWindow(const TvUserMessages::TaskDialog& dialog, QWidget* parent);

    /// Runs it until it is answered.
    TvUserMessages::TaskAnswer ask();
    void reject() override;

private:
    void addTexts(const TvUserMessages::TaskDialog& dialog, QBoxLayout& column);
    void addChoices(const TvUserMessages::TaskDialog& dialog, QBoxLayout& column);
    void addCommands(const TvUserMessages::TaskDialog& dialog, QBoxLayout& column);
    void addFoot(const TvUserMessages::TaskDialog& dialog, QBoxLayout& column);
    void answer(int button);

    bool m_mayBeCancelled;
    TvUserMessages::TaskAnswer m_answer;
    QButtonGroup* m_choices; // owned by the toolkit
    QCheckBox* m_check = nullptr;
};

} // namespace ui
