#pragma once

#include "CommonTool.h"
#include "FfmpegPtr.h"
#include "LogCapture.h"
#include "TestMedia.h"

#include <QImage>
#include <QObject>
#include <QProcess>
#include <QRegularExpression>
#include <QtTest>

// Records the four job signals in arrival order as "total:N", "progress:N", "cancelled" and
// "finished:true|false". Lives on the test thread: signals of a job on the pool arrive queued.
class JobRecorder : public QObject
{
public:
    explicit JobRecorder(CommonTool& tool)
    {
        connect(&tool, &CommonTool::videoCompressionFrameTotal, this,
                [this](int total) { events << QStringLiteral("total:%1").arg(total); });
        connect(&tool, &CommonTool::videoCompressionProgress, this,
                [this](int value) { events << QStringLiteral("progress:%1").arg(value); });
        connect(&tool, &CommonTool::videoCompressionCancelled, this, [this]() { events << "cancelled"; });
        connect(&tool, &CommonTool::videoCompressionFinished, this,
                [this](bool ok) { events << QStringLiteral("finished:%1").arg(ok ? "true" : "false"); });
    }
    QStringList events;

    int count(const QString& prefix) const { return events.filter(QRegularExpression("^" + prefix)).size(); }
    int finishedCount() const { return count("finished:"); }
    int total() const { return count("total:") ? events.filter("total:").first().mid(6).toInt() : -1; }
    QList<int> progress() const
    {
        QList<int> values;
        for (const QString& e : events.filter(QRegularExpression("^progress:")))
            values << e.mid(9).toInt();
        return values;
    }
    bool waitFinished(int timeoutMs = 120000) const
    {
        return QTest::qWaitFor([this]() { return finishedCount() > 0; }, timeoutMs);
    }

    // The reporting protocol: one total at the start (none when `expectTotal` is false), at most
    // one cancel, directly before the single finished signal, which comes last and carries the
    // value the job returned.
    void checkProtocol(bool returned, bool expectTotal) const
    {
        QCOMPARE(finishedCount(), 1);
        QCOMPARE(events.last(), QStringLiteral("finished:%1").arg(returned ? "true" : "false"));
        QCOMPARE(count("total:"), expectTotal ? 1 : 0);
        if (expectTotal)
            QVERIFY(events.first().startsWith("total:"));
        QVERIFY(count("cancelled") <= 1);
        if (count("cancelled") == 1)
            QCOMPARE(events.at(events.size() - 2), QStringLiteral("cancelled"));
    }
};

// The first picture as the ffmpeg tool shows it (turned by the display matrix), in grey.
inline QImage shownPicture(const QString& path)
{
    const QString png = path + ".shown.png";
    return TestMedia::ffmpeg({"-i", path, "-frames:v", "1", "-pix_fmt", "gray", png}) ? QImage(png) : QImage();
}

// Whether two files show the same first picture, give or take what encoding loses: a picture
// lying on its side or upside down differs by far more, or is of another size.
inline bool showSamePicture(const QString& a, const QString& b)
{
    const QImage x = shownPicture(a);
    const QImage y = shownPicture(b);
    if (x.isNull() || x.size() != y.size())
        return false;
    qint64 sum = 0;
    for (int row = 0; row < x.height(); ++row)
        for (int col = 0; col < x.width(); ++col)
            sum += qAbs(qGray(x.pixel(col, row)) - qGray(y.pixel(col, row)));
    return sum < qint64(x.width()) * x.height() * 8;
}

// vidora-cli from the build's bin folder, run to its end.
struct CliRun
{
    int exitCode = -1; // -2 for a crash, -1 for a time-out
    QString out;
    QString err;
};
inline QString cliPath()
{
    return qEnvironmentVariable("VIDORA_BIN_DIR") + "/vidora-cli";
}
inline CliRun runCli(const QStringList& args, const QString& workingDir = QString(), int timeoutMs = 180000)
{
    QProcess p;
    p.setWorkingDirectory(workingDir);
    p.start(cliPath(), args);
    CliRun r;
    if (!p.waitForFinished(timeoutMs)) {
        p.kill();
        p.waitForFinished();
        return r;
    }
    r.exitCode = p.exitStatus() == QProcess::NormalExit ? p.exitCode() : -2;
    r.out = QString::fromUtf8(p.readAllStandardOutput());
    r.err = QString::fromUtf8(p.readAllStandardError());
    return r;
}
