#pragma once

#include <functional>

#include <QApplication>

#include <base/tv_string.h>

namespace window {

/// The application, which outlives what the handling of an event throws.
///
/// An exception that left the toolkit's event loop would end the program, and what was not saved in
/// other drawings would go with it. What was thrown is told, and the next event comes.
class GuardedApplication : public QApplication
{
public:
    using QApplication::QApplication;
    bool notify(QObject* receiver, QEvent* event) override;

    /// What happened, in words. What throws at each painting is told a few times only.
    std::function<void(const TvString& what)> onFailure;

private:
    int m_told = 0;
};

} // namespace window
