#include "explore_file.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDesktopServices>
#include <QFileInfo>
#include <QUrl>

#include <ui/qt_text.h>

namespace panel {

namespace {

void showFolderOf(const QString& path)
{
    QDesktopServices::openUrl(QUrl::fromLocalFile(QFileInfo(path).absolutePath()));
}

} // namespace

void exploreFile(const TvString& path)
{
    if (path.isEmpty())
        return;
    const QString file = ui::toQt(path);
    const QDBusConnection bus = QDBusConnection::sessionBus();
    if (!bus.isConnected())
        return showFolderOf(file);
    QDBusMessage call = QDBusMessage::createMethodCall(
        QStringLiteral("org.freedesktop.FileManager1"),
        QStringLiteral("/org/freedesktop/FileManager1"),
        QStringLiteral("org.freedesktop.FileManager1"), QStringLiteral("ShowItems"));
    call << QStringList{QUrl::fromLocalFile(file).toString(QUrl::FullyEncoded)} << QString();
    auto* answer = new QDBusPendingCallWatcher(bus.asyncCall(call)); // deletes itself when it is in
    QObject::connect(answer, &QDBusPendingCallWatcher::finished, answer, [answer, file] {
        if (QDBusPendingReply<>(*answer).isError())
            showFolderOf(file);
        answer->deleteLater();
    });
}

} // namespace panel
