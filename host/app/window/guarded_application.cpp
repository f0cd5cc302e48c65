#include "window/guarded_application.h"

#include <exception>

#include <base/kv_error_status.h>
#include <ed/command_line.h>

namespace window {

bool GuardedApplication::notify(QObject* receiver, QEvent* event)
{
    constexpr int kMostTold = 20;
    try {
        return QApplication::notify(receiver, event);
    } catch (...) {
        if (onFailure && m_told++ < kMostTold)
            onFailure(ed::wordsOfFailure(std::current_exception()));
    }
    return false;
}

} // namespace window
