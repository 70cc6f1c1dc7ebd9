#pragma once

#include <QByteArray>
#include <QDebug>
#include <QElapsedTimer>
#include <QProcess>
#include <QString>

namespace ProcessOutput {

// Reads a program's output until a line holding needle appears; on a miss the output so far
// goes to the test log, which is what one needs to read the failure.
inline bool waitForLine(QProcess* p, const QString& needle, int timeoutMs)
{
    QElapsedTimer t;
    t.start();
    QByteArray seen;
    while (t.elapsed() < timeoutMs) {
        p->waitForReadyRead(100);
        seen += p->readAll();
        if (QString::fromUtf8(seen).contains(needle))
            return true;
    }
    qWarning().noquote() << "output so far:" << seen;
    return false;
}

} // namespace ProcessOutput
