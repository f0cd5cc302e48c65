#include "wait_for_disk.h"

#include <QEventLoop>
#include <QPointer>
#include <QProgressDialog>
#include <QTimer>

#include <base/kv_file_system.h>
#include <core/apart_work.h>
#include <core/drawing_look.h>
#include <ui/qt_text.h>

namespace panel {

bool waitForDisk(QWidget* parent, const TvString& file, const std::function<bool()>& isThere)
{
    constexpr int kWaiting = 8931, kCancel = 8905; // texts
    constexpr int kLookMs = 50;
    if (isThere())
        return true;
    QEventLoop loop;
    const QPointer<QProgressDialog> dialog =
        new QProgressDialog(ui::textOf(kWaiting, std::vector<TvString>{file}), ui::textOf(kCancel),
                            0, 0, parent); // goes with the parent at latest
    dialog->setWindowModality(Qt::ApplicationModal);
    dialog->setMinimumDuration(0);
    QObject::connect(dialog, &QProgressDialog::canceled, &loop, &QEventLoop::quit);
    QObject::connect(dialog, &QObject::destroyed, &loop, &QEventLoop::quit);
    QTimer look;
    bool isAnswered = false;
    QObject::connect(&look, &QTimer::timeout, &loop, [&] {
        if ((isAnswered = isThere()) || !dialog || dialog->wasCanceled())
            loop.quit();
    });
    look.start(kLookMs);
    dialog->show();
    loop.exec();
    delete dialog.data();
    return isAnswered;
}

bool waitForFile(QWidget* parent, const TvString& file)
{
    const core::ApartWork look(1, [file](std::size_t, const core::ApartWork::GivenUp&) {
        KvFileSystem::pathFileExists(file);
    });
    return look.hasDone(1, core::kPatienceMs) ||
           waitForDisk(parent, file, [&look] { return look.hasDone(1, 0); });
}

} // namespace panel
