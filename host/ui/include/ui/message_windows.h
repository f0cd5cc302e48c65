#pragma once

#include <rx/tv_user_messages.h>

namespace ui {

/// Messages and questions as windows in front of the program's. Texts are shown as they are:
/// nothing in a file name is taken for markup, and a very long one is shortened in its middle.
class MessageWindows : public TvUserMessages
{
public:
    /// Escape and the window's cross answer Cancel, No where there is no Cancel, else Ok.
    Answer show(const Message& message) override;
    /// Up and Down, Tab and Enter go along the answers. A line feed in a command's text stands
    /// before what explains it; an & is one.
    TaskAnswer showTask(const TaskDialog& dialog) override;
};

} // namespace ui
