#pragma once

#include <QObject>
#include <QString>
#include <QStringList>
#include <functional>

class QLocalServer;

// Single-instance hand-off over a local socket named by the application id, one per user:
// each user's players find each other and nobody else's. The probe runs before any window;
// the server lives on the GUI thread for the whole run.
namespace SingleInstance {

inline const char* const kApplicationId = "org.vidora.vidora";

// The socket's full path: in the session's runtime folder (XDG_RUNTIME_DIR, which only its
// user may enter) when there is one, else a name carrying the user id in the temporary
// folder, where the socket itself admits only its owner.
QString serverName();

// Connects to a running instance (500 ms). When one answers, sends the words joined by
// "\n" as UTF-8 (waiting at most 1000 ms) and returns true: the caller must exit with 0.
bool handOffToRunningInstance(const QStringList& words);

// Splits a hand-off message into its words: UTF-8, "\n" separated, empty pieces dropped.
QStringList decodeHandOff(const QByteArray& bytes);

// Removes a stale server left by a crashed instance and listens. Each received message is
// decoded and passed to onWords on the GUI thread. The server is owned by parent.
QLocalServer* listen(QObject* parent, std::function<void(const QStringList&)> onWords);

} // namespace SingleInstance
