#pragma once

#include <QDir>
#include <QFile>
#include <QMap>
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

// Output of a program, stdout and stderr merged.
inline QString run(const QString& program, const QStringList& args)
{
    QProcess p;
    p.setProcessChannelMode(QProcess::MergedChannels);
    p.start(program, args);
    p.waitForFinished(120000);
    return QString::fromUtf8(p.readAll()).trimmed();
}

inline double seconds(const QString& path)
{
    return probe(path, "format=duration").toDouble();
}

// One field of every packet of one stream, in file order (packets with side data get extra
// empty columns; the field is the first). Equal size lists mean an untouched copy.
inline QStringList packetField(const QString& path, const QString& stream, const QString& field)
{
    QStringList values;
    for (const QString& line : run("ffprobe", {"-v", "error", "-select_streams", stream, "-show_entries",
                                               "packet=" + field, "-of", "csv=p=0", path})
                                   .split('\n', Qt::SkipEmptyParts))
        values << line.section(',', 0, 0).trimmed();
    return values;
}
inline QStringList packetSizes(const QString& path, const QString& stream)
{
    return packetField(path, stream, "size");
}
inline int packetCount(const QString& path, const QString& stream)
{
    return packetField(path, stream, "size").size();
}

// Decodes the selected streams to nowhere; the text is whatever the decoders complained about.
inline QString decodeErrors(const QString& path, const QString& map = "0")
{
    return run("ffmpeg", {"-hide_banner", "-v", "error", "-i", path, "-map", map, "-f", "null", "-"});
}

// The whole file decodes without an error that stops the ffmpeg tool.
inline bool plays(const QString& path)
{
    return ffmpeg({"-xerror", "-i", path, "-f", "null", "-"});
}

// Seconds of audio the whole first audio stream decodes to.
inline double decodedAudioSeconds(const QString& path)
{
    QProcess p;
    p.start("ffmpeg", {"-hide_banner", "-v", "error", "-i", path, "-map", "0:a:0", "-ac", "1", "-ar", "8000",
                       "-f", "s16le", "-"});
    p.waitForFinished(120000);
    return static_cast<double>(p.readAllStandardOutput().size()) / 2.0 / 8000.0;
}

inline QByteArray fileBytes(const QString& path)
{
    QFile f(path);
    return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
}

inline bool writeFile(const QString& path, const QByteArray& bytes)
{
    QFile f(path);
    return f.open(QIODevice::WriteOnly | QIODevice::Truncate) && f.write(bytes) == bytes.size();
}

// A stream copy of the MP4 `source` whose video is shown turned: `rotation` is the angle ffprobe
// then reports (the ffmpeg tool's rotate tag, counterclockwise), and `mirrored` also mirrors
// the shown picture left to right. This ffmpeg cannot write a mirror itself, so it is patched
// into the display matrix the tool wrote (its first column negated).
inline bool makeTurned(const QString& source, const QString& path, int rotation, bool mirrored = false)
{
    if (!ffmpeg({"-i", source, "-map", "0", "-c", "copy", "-metadata:s:v:0",
                 QStringLiteral("rotate=%1").arg(rotation), path}))
        return false;
    if (!mirrored)
        return true;
    // ffprobe prints the matrix as three labelled rows of three numbers.
    QByteArray written;
    QByteArray patched;
    for (const QString& row : probe(path, "stream_side_data=displaymatrix", "v:0").split('\n', Qt::SkipEmptyParts)) {
        const QStringList cells = row.simplified().split(' ');
        for (int i = 1; i < cells.size(); ++i) {
            const qint32 value = cells[i].toInt();
            const qint32 mirroredValue = i == 1 ? -value : value;
            for (int shift = 24; shift >= 0; shift -= 8) {
                written += char((value >> shift) & 0xff);
                patched += char((mirroredValue >> shift) & 0xff);
            }
        }
    }
    QByteArray bytes = fileBytes(path);
    const int at = bytes.indexOf(written);
    if (written.size() != 36 || at < 0 || bytes.indexOf(written, at + 1) >= 0)
        return false;
    return writeFile(path, bytes.replace(at, written.size(), patched));
}

// `size` bytes of repeatable noise: no container recognises them.
inline QByteArray noise(int size)
{
    QByteArray bytes(size, '\0');
    quint32 x = 12345;
    for (char& c : bytes)
        c = char((x = x * 1103515245u + 12345u) >> 24);
    return bytes;
}

// The file's first `fraction` of bytes as a new file, as a copy cut short would leave it.
inline bool writeTruncated(const QString& source, const QString& path, double fraction = 0.5)
{
    const QByteArray whole = fileBytes(source);
    return !whole.isEmpty() && writeFile(path, whole.left(int(whole.size() * fraction)));
}

// Inputs no job can use, made in `dir`, by name: "missing", "empty", "text", "random bytes",
// "truncated" (an MP4 cut in half has lost its index, which the muxer writes last) and
// "audio only".
inline QMap<QString, QString> badInputs(const QString& dir)
{
    const QMap<QString, QString> files{{"missing", dir + "/missing.mp4"},  {"empty", dir + "/empty.mp4"},
                                       {"text", dir + "/text.mp4"},        {"random bytes", dir + "/noise.mkv"},
                                       {"truncated", dir + "/truncated.mp4"}, {"audio only", dir + "/tone.m4a"}};
    const bool made = writeFile(files["empty"], "") && writeFile(files["text"], "this is not a video\n") &&
                      writeFile(files["random bytes"], noise(65536)) &&
                      makeVideo(dir + "/whole.mp4", 2, 160, 120) && writeTruncated(dir + "/whole.mp4", files["truncated"]) &&
                      ffmpeg({"-f", "lavfi", "-i", "sine=duration=1", "-c:a", "aac", files["audio only"]});
    return made ? files : QMap<QString, QString>();
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
