#include "SingleInstance.h"

#include <QLocalServer>
#include <QLocalSocket>
#include <memory>
#include <spdlog/spdlog.h>

namespace SingleInstance {

bool handOffToRunningInstance(const QStringList& words)
{
    QLocalSocket socket;
    socket.connectToServer(QString::fromLatin1(kApplicationId));
    if (!socket.waitForConnected(500))
        return false;
    if (!words.isEmpty()) {
        socket.write(words.join(QLatin1Char('\n')).toUtf8());
        socket.flush();
        socket.waitForBytesWritten(1000);
    }
    return true;
}

QStringList decodeHandOff(const QByteArray& bytes)
{
    // Invalid sequences decode to replacement characters; such words then name no file
    // and are ignored by the word classification.
    return QString::fromUtf8(bytes).split(QLatin1Char('\n'), Qt::SkipEmptyParts);
}

QLocalServer* listen(QObject* parent, std::function<void(const QStringList&)> onWords)
{
    const QString name = QString::fromLatin1(kApplicationId);
    QLocalServer::removeServer(name);
    auto* server = new QLocalServer(parent);
    if (!server->listen(name))
        spdlog::error("Could not listen for other instances: {}", server->errorString().toStdString());
    QObject::connect(server, &QLocalServer::newConnection, server, [server, onWords]() {
        while (QLocalSocket* socket = server->nextPendingConnection()) {
            // A message may arrive in several reads; it is complete when the peer leaves.
            auto buffer = std::make_shared<QByteArray>();
            QObject::connect(socket, &QLocalSocket::readyRead, socket,
                             [socket, buffer]() { buffer->append(socket->readAll()); });
            QObject::connect(socket, &QLocalSocket::disconnected, socket, [socket, buffer, onWords]() {
                buffer->append(socket->readAll());
                const QStringList words = decodeHandOff(*buffer);
                socket->deleteLater();
                if (!words.isEmpty())
                    onWords(words);
            });
        }
    });
    return server;
}

} // namespace SingleInstance
