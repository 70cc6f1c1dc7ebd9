#include "SingleInstance.h"

#include <QDir>
#include <QFileInfo>
#include <QLocalServer>
#include <QLocalSocket>
#include <memory>
#include <spdlog/spdlog.h>
#include <unistd.h>

namespace SingleInstance {

QString serverName()
{
    const QString runtime = qEnvironmentVariable("XDG_RUNTIME_DIR");
    const QFileInfo runtimeInfo(runtime);
    if (!runtime.isEmpty() && runtimeInfo.isDir() && runtimeInfo.ownerId() == ::geteuid())
        return QDir(runtime).filePath(QString::fromLatin1(kApplicationId));
    return QDir(QDir::tempPath()).filePath(QStringLiteral("%1-%2").arg(QLatin1String(kApplicationId)).arg(::geteuid()));
}

bool handOffToRunningInstance(const QStringList& words)
{
    const QString name = serverName();
    // In a shared folder anyone may have made a socket of this name: only our own is
    // trusted with the command line.
    const QFileInfo info(name);
    if (!info.exists() || info.ownerId() != ::geteuid())
        return false;
    QLocalSocket socket;
    socket.connectToServer(name);
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
    const QString name = serverName();
    QLocalServer::removeServer(name);
    auto* server = new QLocalServer(parent);
    server->setSocketOptions(QLocalServer::UserAccessOption);
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
