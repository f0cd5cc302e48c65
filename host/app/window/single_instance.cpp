#include "window/single_instance.h"

#include <QFile>
#include <QLocalServer>
#include <QLocalSocket>
#include <QTimer>

#include <base/kv_file_system.h>
#include <ui/qt_text.h>

namespace window {

namespace {

constexpr int kPatienceMs = 3000; // with one that does not answer
constexpr int kMostWaiting = 8;
constexpr char kAccepted[] = "ok\n";
constexpr qint64 kAcceptedBytes = 3;

bool makePrivate(const TvString& folder)
{
    return KvFileSystem::createDirectory(folder) &&
           QFile::setPermissions(ui::toQt(folder),
                                 QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
}

} // namespace

SingleInstance::SingleInstance(const TvString& folder)
    : m_folder(!folder.isEmpty() && makePrivate(folder) ? folder : TvString())
{
}

SingleInstance::~SingleInstance() = default;

QString SingleInstance::socketPath() const
{
    return ui::toQt(base::PathRules::native().join(m_folder, u"instance"));
}

bool SingleInstance::handOver(const app::Handover& handover)
{
    if (m_folder.isEmpty())
        return false;
    QLocalSocket socket;
    socket.connectToServer(socketPath());
    if (!socket.waitForConnected(kPatienceMs))
        return false;
    const std::string bytes = app::handoverBytes(handover);
    socket.write(bytes.data(), static_cast<qint64>(bytes.size()));
    while (socket.bytesToWrite() > 0)
        if (!socket.waitForBytesWritten(kPatienceMs))
            return false;
    // One that hangs does not take our files: the user gets a program of his own.
    return socket.waitForReadyRead(kPatienceMs) && socket.readAll().startsWith(kAccepted);
}

bool SingleInstance::listen()
{
    if (m_folder.isEmpty())
        return false;
    m_server = std::make_unique<QLocalServer>();
    m_server->setSocketOptions(QLocalServer::UserAccessOption);
    m_server->setMaxPendingConnections(kMostWaiting);
    if (!m_server->listen(socketPath())) {
        QLocalSocket probe; // a program that crashed leaves its socket behind
        probe.connectToServer(socketPath());
        if (probe.waitForConnected(kPatienceMs))
            return false;
        QLocalServer::removeServer(socketPath());
        if (!m_server->listen(socketPath()))
            return false;
    }
    QObject::connect(m_server.get(), &QLocalServer::newConnection, this, [this] {
        while (QLocalSocket* socket = m_server->nextPendingConnection())
            receive(socket);
    });
    return true;
}

void SingleInstance::receive(QLocalSocket* socket)
{
    auto reader = std::make_shared<app::HandoverReader>();
    socket->setReadBufferSize(app::HandoverReader::kMostBytes);
    QObject::connect(socket, &QLocalSocket::disconnected, socket, &QObject::deleteLater);
    QTimer::singleShot(kPatienceMs, socket, [socket] { socket->abort(); });
    QObject::connect(socket, &QLocalSocket::readyRead, this, [this, socket, reader] {
        using State = app::HandoverReader::State;
        if (reader->state() != State::Reading)
            return static_cast<void>(socket->readAll());
        const QByteArray bytes = socket->readAll();
        const State state = reader->feed({bytes.data(), static_cast<std::size_t>(bytes.size())});
        if (state == State::Refused)
            return socket->abort();
        if (state != State::Done)
            return;
        socket->write(kAccepted, kAcceptedBytes);
        socket->flush();
        if (onHandover)
            onHandover(reader->handover());
    });
}

} // namespace window
