#pragma once

#include <QDir>
#include <QProcess>
#include <QString>
#include <QStringList>
#include <QtTest>

// Test media is generated at test time with the ffmpeg command-line tool and checked with
// ffprobe; nothing is committed.
namespace TestMedia {

// Runs ffmpeg quietly with the given arguments (output path last); true when it succeeded.
inline bool ffmpeg(const QStringList& args, int timeoutMs = 120000)
{
    QProcess p;
    p.setProcessChannelMode(QProcess::MergedChannels);
    p.start(QStringLiteral("ffmpeg"), QStringList{"-hide_banner", "-loglevel", "error", "-y"} + args);
    if (!p.waitForFinished(timeoutMs)) {
        p.kill();
        return false;
    }
    if (p.exitStatus() != QProcess::NormalExit || p.exitCode() != 0) {
        qWarning().noquote() << "ffmpeg failed:" << args.join(' ') << "\n" << p.readAll();
        return false;
    }
    return true;
}

// A test-pattern video (testsrc) of the given length, size and rate, with a sine tone unless
// withAudio is false. Codec choices follow the container's extension unless given.
inline bool makeVideo(const QString& path, double seconds, int width = 320, int height = 240, int fps = 25,
                      bool withAudio = true, const QStringList& extra = {})
{
    QStringList args{"-f", "lavfi", "-i",
                     QStringLiteral("testsrc=size=%1x%2:rate=%3:duration=%4").arg(width).arg(height).arg(fps).arg(seconds)};
    if (withAudio)
        args << "-f" << "lavfi" << "-i" << QStringLiteral("sine=frequency=440:sample_rate=44100:duration=%1").arg(seconds);
    args << "-pix_fmt" << "yuv420p" << extra << path;
    return ffmpeg(args);
}

// ffprobe's answer for one entry, e.g. probe(path, "format=duration") or
// probe(path, "stream=codec_name", "v:0"). Returns the text of the value(s), one per line.
inline QString probe(const QString& path, const QString& entries, const QString& streams = QString())
{
    QProcess p;
    QStringList args{"-v", "error"};
    if (!streams.isEmpty())
        args << "-select_streams" << streams;
    args << "-show_entries" << entries << "-of" << "default=noprint_wrappers=1:nokey=1" << path;
    p.start(QStringLiteral("ffprobe"), args);
    p.waitForFinished(60000);
    return QString::fromUtf8(p.readAllStandardOutput()).trimmed();
}

// A temporary folder for one test function's files (under the test's private TMPDIR).
inline QString scratchDir(const QString& name)
{
    const QString dir = QDir::tempPath() + "/" + name;
    QDir(dir).removeRecursively();
    QDir().mkpath(dir);
    return dir;
}

} // namespace TestMedia
