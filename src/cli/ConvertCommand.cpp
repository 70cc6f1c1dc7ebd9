#include "ConvertCommand.h"

#include "CommonTool.h"
#include "JobRunner.h"

extern "C" {
#include <libavcodec/avcodec.h>
}

#include <QFileInfo>
#include <QHash>

namespace {

// The names the convert page offers, with the codec ids it sends for them.
const QHash<QString, int>& videoCodecNames()
{
    static const QHash<QString, int> names{{QStringLiteral("copy"), 0},
                                           {QStringLiteral("h264"), AV_CODEC_ID_H264},
                                           {QStringLiteral("hevc"), AV_CODEC_ID_HEVC}};
    return names;
}

const QHash<QString, int>& audioCodecNames()
{
    static const QHash<QString, int> names{{QStringLiteral("copy"), 0},
                                           {QStringLiteral("aac"), AV_CODEC_ID_AAC},
                                           {QStringLiteral("mp3"), AV_CODEC_ID_MP3},
                                           {QStringLiteral("flac"), AV_CODEC_ID_FLAC},
                                           {QStringLiteral("m4a"), AV_CODEC_ID_AAC},
                                           {QStringLiteral("wav"), AV_CODEC_ID_PCM_S16LE},
                                           {QStringLiteral("ogg"), AV_CODEC_ID_VORBIS}};
    return names;
}

// A codec given by one of the offered names, by its numeric id, or by the library's own
// name for a codec of the right kind ("mpeg4", "opus").
bool parseCodec(const QString& text, const QHash<QString, int>& names, AVMediaType type, int* id)
{
    const QString key = text.trimmed().toLower();
    if (names.contains(key)) {
        *id = names.value(key);
        return true;
    }
    bool ok = false;
    const int number = key.toInt(&ok);
    if (ok) {
        *id = number;
        return number >= 0;
    }
    const AVCodecDescriptor* descriptor = avcodec_descriptor_get_by_name(key.toUtf8().constData());
    if (!descriptor || descriptor->type != type)
        return false;
    *id = descriptor->id;
    return true;
}

// A whole number of at least 0 and at most `limit`.
bool parseCount(const QString& text, qint64 limit, qint64* value)
{
    bool ok = false;
    const qint64 number = text.trimmed().toLongLong(&ok);
    if (!ok || number < 0 || number > limit)
        return false;
    *value = number;
    return true;
}

} // namespace

ConvertCommand::ConvertCommand()
    : CliCommand(QStringLiteral("convert"),
                 QStringLiteral("Write a video into another container, codec, size or frame rate"))
{
}

void ConvertCommand::configure(QCommandLineParser& parser) const
{
    parser.setApplicationDescription(
        QStringLiteral("Writes IN into the container of OUT's extension. Streams are copied unless a\n"
                       "codec is asked for; size, frame rate and bit rates apply when the video is\n"
                       "re-encoded and default to the source's. Width and height are rounded down to\n"
                       "even numbers. A higher frame rate repeats frames, a lower one drops them.\n"
                       "Codecs: the names listed, a numeric FFmpeg codec id, or an FFmpeg codec name.\n"
                       "Ctrl-C stops the job (exit status 130)."));
    parser.addPositionalArgument(QStringLiteral("IN"), QStringLiteral("Media file to convert."));
    parser.addPositionalArgument(QStringLiteral("OUT"), QStringLiteral("File to write."));
    parser.addOption({QStringLiteral("codec"),
                      QStringLiteral("Video codec: copy (default), h264, hevc or ID."),
                      QStringLiteral("CODEC")});
    parser.addOption(
        {QStringLiteral("width"), QStringLiteral("Video width in pixels."), QStringLiteral("W")});
    parser.addOption(
        {QStringLiteral("height"), QStringLiteral("Video height in pixels."), QStringLiteral("H")});
    parser.addOption({QStringLiteral("fps"), QStringLiteral("Frames per second."), QStringLiteral("N")});
    parser.addOption(
        {QStringLiteral("bitrate"), QStringLiteral("Video bit rate in kbit/s."), QStringLiteral("KBPS")});
    parser.addOption(
        {QStringLiteral("audio-codec"),
         QStringLiteral(
             "Audio codec: copy (default), aac, mp3, flac, m4a (AAC), wav (16-bit PCM), ogg (Vorbis) or ID."),
         QStringLiteral("CODEC")});
    parser.addOption({QStringLiteral("audio-bitrate"), QStringLiteral("Audio bit rate in kbit/s."),
                      QStringLiteral("KBPS")});
}

bool ConvertCommand::buildSettings(const QCommandLineParser& parser, QVariantMap* settings, QString* error)
{
    int codecId = 0;
    int audioCodecId = 0;
    if (parser.isSet(QStringLiteral("codec")) &&
        !parseCodec(parser.value(QStringLiteral("codec")), videoCodecNames(), AVMEDIA_TYPE_VIDEO, &codecId)) {
        *error = QStringLiteral("unknown video codec: %1").arg(parser.value(QStringLiteral("codec")));
        return false;
    }
    if (parser.isSet(QStringLiteral("audio-codec")) &&
        !parseCodec(parser.value(QStringLiteral("audio-codec")), audioCodecNames(), AVMEDIA_TYPE_AUDIO,
                    &audioCodecId)) {
        *error = QStringLiteral("unknown audio codec: %1").arg(parser.value(QStringLiteral("audio-codec")));
        return false;
    }

    // Sizes and rates fit the request's 32-bit fields; bit rates are multiplied by 1000 later.
    struct Number
    {
        const char* option;
        const char* key;
        qint64 limit;
        qint64 value;
    };
    Number numbers[] = {{"width", "width", 16384, 0},
                        {"height", "height", 16384, 0},
                        {"fps", "fps", 1000, 0},
                        {"bitrate", "bitrate", 10000000, 0},
                        {"audio-bitrate", "audioBitrate", 10000000, 0}};
    for (Number& n : numbers) {
        const QString option = QString::fromLatin1(n.option);
        if (parser.isSet(option) && !parseCount(parser.value(option), n.limit, &n.value)) {
            *error = QStringLiteral("--%1 must be a whole number from 0 to %2: %3")
                         .arg(option)
                         .arg(n.limit)
                         .arg(parser.value(option));
            return false;
        }
    }

    // The keys and value types of the convert page's map.
    settings->clear();
    settings->insert(QStringLiteral("codecId"), codecId);
    settings->insert(QStringLiteral("width"), static_cast<int>(numbers[0].value));
    settings->insert(QStringLiteral("height"), static_cast<int>(numbers[1].value));
    settings->insert(QStringLiteral("fps"), static_cast<int>(numbers[2].value));
    settings->insert(QStringLiteral("bitrate"), numbers[3].value);
    settings->insert(QStringLiteral("audioCodecId"), audioCodecId);
    settings->insert(QStringLiteral("audioBitrate"), numbers[4].value);
    return true;
}

int ConvertCommand::run(const QCommandLineParser& parser, const QStringList& arguments,
                        CliContext& context) const
{
    if (arguments.size() != 2)
        return usageError(parser, QStringLiteral("convert takes IN and OUT"));
    QVariantMap settings;
    QString error;
    if (!buildSettings(parser, &settings, &error))
        return usageError(parser, error);
    const QString in = arguments.at(0);
    const QString out = arguments.at(1);
    if (sameFile(in, out))
        return usageError(parser, QStringLiteral("OUT must not be the input file"));

    JobRunner runner(context, name());
    return runner.run([&]() { context.tool.convertVideoFormatAsync(in, out, settings); });
}
