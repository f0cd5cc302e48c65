#pragma once

#include <functional>
#include <memory>

#include <QObject>

#include <app/handover.h>

class QLocalServer;
class QLocalSocket;

namespace window {

/// One program a user: a second start hands its files to the first.
///
/// They meet at a socket in a folder that only the user can enter. Whoever connects says one
/// bounded message in bounded time.
class SingleInstance : public QObject
{
public:
    /// @param folder  for the socket; made when it is not there. Empty: everybody is alone.
    explicit SingleInstance(const TvString& folder);
    ~SingleInstance() override;

    /// Hands over to the program that runs already. False when there is none: then this one is it
    /// from now on, as far as listening works.
    bool handOver(const app::Handover& handover);
    /// Begins to listen. False when that does not work, or another one does.
    bool listen();
    std::function<void(const app::Handover&)> onHandover;

private:
    void receive(QLocalSocket* socket);
    QString socketPath() const;

    TvString m_folder;
    std::unique_ptr<QLocalServer> m_server;
};

} // namespace window
