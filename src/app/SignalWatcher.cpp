#include "SignalWatcher.h"

#include <QSocketNotifier>
#include <cerrno>
#include <fcntl.h>
#include <unistd.h>

namespace {
int g_pipe[2] = {-1, -1};
}

SignalWatcher::SignalWatcher(QObject* parent) : QObject(parent)
{
    if (pipe2(g_pipe, O_CLOEXEC | O_NONBLOCK) != 0)
        return;
    m_notifier = new QSocketNotifier(g_pipe[0], QSocketNotifier::Read, this);
    connect(m_notifier, &QSocketNotifier::activated, this, &SignalWatcher::drain);

    struct sigaction action
    {
    };
    action.sa_handler = &SignalWatcher::handle;
    sigemptyset(&action.sa_mask);
    action.sa_flags = SA_RESTART;
    sigaction(SIGINT, &action, &m_previousInt);
    sigaction(SIGTERM, &action, &m_previousTerm);
}

SignalWatcher::~SignalWatcher()
{
    if (!m_notifier)
        return;
    sigaction(SIGINT, &m_previousInt, nullptr);
    sigaction(SIGTERM, &m_previousTerm, nullptr);
    delete m_notifier;
    ::close(g_pipe[0]);
    ::close(g_pipe[1]);
    g_pipe[0] = g_pipe[1] = -1;
}

void SignalWatcher::handle(int signalNumber)
{
    const int savedErrno = errno;
    const unsigned char byte = static_cast<unsigned char>(signalNumber);
    // A full pipe only drops a repeat of a signal that is already pending.
    [[maybe_unused]] const ssize_t ignored = ::write(g_pipe[1], &byte, 1);
    errno = savedErrno;
}

void SignalWatcher::drain()
{
    unsigned char bytes[16];
    ssize_t n = 0;
    while ((n = ::read(g_pipe[0], bytes, sizeof(bytes))) > 0) {
        for (ssize_t i = 0; i < n; ++i)
            emit interrupted(bytes[i]);
    }
}
