#pragma once

#include <QObject>
#include <csignal>

class QSocketNotifier;

// Turns SIGINT and SIGTERM into a Qt signal on the thread that created the watcher. The
// handler only writes the signal number into a pipe (async-signal-safe); a socket notifier on
// the other end emits interrupted() from the event loop. One watcher at a time; the previous
// dispositions come back when it is destroyed.
class SignalWatcher : public QObject
{
    Q_OBJECT
public:
    explicit SignalWatcher(QObject* parent = nullptr);
    ~SignalWatcher() override;

signals:
    void interrupted(int signalNumber);

private:
    static void handle(int signalNumber);
    void drain();

    QSocketNotifier* m_notifier = nullptr;
    struct sigaction m_previousInt
    {
    };
    struct sigaction m_previousTerm
    {
    };
};
