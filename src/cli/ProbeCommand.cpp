#include "ProbeCommand.h"

#include "CommonTool.h"

#include <QLocale>
#include <cstdio>

ProbeCommand::ProbeCommand()
    : CliCommand(QStringLiteral("probe"),
                 QStringLiteral("Print a file's video info and duration as one line of JSON"))
{
}

void ProbeCommand::configure(QCommandLineParser& parser) const
{
    parser.setApplicationDescription(
        QStringLiteral("Prints one JSON line with codecId, width, height, bitrate, fps, audioCodecId,\n"
                       "audioBitrate (bit rates in bit/s, codec ids as FFmpeg numbers) and duration\n"
                       "(seconds, 0 when unknown). Exit status 1 when the file cannot be opened."));
    parser.addPositionalArgument(QStringLiteral("FILE"), QStringLiteral("Media file to describe."));
}

int ProbeCommand::run(const QCommandLineParser& parser, const QStringList& arguments,
                      CliContext& context) const
{
    if (arguments.size() != 1)
        return usageError(parser, QStringLiteral("probe takes exactly one FILE"));
    const QString file = arguments.first();
    const QVariantMap info = context.tool.getVideoInfo(file);
    if (info.isEmpty())
        return CliExit::Failure;
    const double duration = context.tool.getVideoDuration(file);

    // Keys in the order the service documents them, which a QJsonObject would sort away.
    QString json = QStringLiteral("{");
    for (const char* key : {"codecId", "width", "height", "bitrate", "fps", "audioCodecId", "audioBitrate"})
        json += QStringLiteral("\"%1\":%2,")
                    .arg(QLatin1String(key))
                    .arg(info.value(QLatin1String(key)).toLongLong());
    json += QStringLiteral("\"duration\":%1}\n")
                .arg(QLocale::c().toString(duration, 'g', QLocale::FloatingPointShortest));
    const QByteArray bytes = json.toUtf8();
    std::fwrite(bytes.constData(), 1, static_cast<size_t>(bytes.size()), stdout);
    std::fflush(stdout);
    return CliExit::Success;
}
