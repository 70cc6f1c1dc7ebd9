#include "ClipCommand.h"

#include "CommonTool.h"
#include "JobRunner.h"

#include <QFileInfo>

ClipCommand::ClipCommand()
    : CliCommand(QStringLiteral("clip"), QStringLiteral("Copy a time range of a video into a new file"))
{
}

void ClipCommand::configure(QCommandLineParser& parser) const
{
    parser.setApplicationDescription(
        QStringLiteral("Copies the packets between --start and --end into OUT without re-encoding; the\n"
                       "container follows OUT's extension. The cut begins at the key frame at or before\n"
                       "the start. An end past the file's duration is moved to the end of the file.\n"
                       "Ctrl-C stops the copy and keeps what was written (exit status 130)."));
    parser.addPositionalArgument(QStringLiteral("IN"), QStringLiteral("Media file to cut from."));
    parser.addPositionalArgument(QStringLiteral("OUT"), QStringLiteral("File to write."));
    parser.addOption({QStringLiteral("start"),
                      QStringLiteral("Start of the range, seconds (decimals allowed)."),
                      QStringLiteral("SECONDS")});
    parser.addOption({QStringLiteral("end"), QStringLiteral("End of the range, seconds (decimals allowed)."),
                      QStringLiteral("SECONDS")});
}

int ClipCommand::run(const QCommandLineParser& parser, const QStringList& arguments,
                     CliContext& context) const
{
    if (arguments.size() != 2)
        return usageError(parser, QStringLiteral("clip takes IN and OUT"));
    if (!parser.isSet(QStringLiteral("start")) || !parser.isSet(QStringLiteral("end")))
        return usageError(parser, QStringLiteral("clip needs --start and --end"));
    double start = 0;
    double end = 0;
    if (!parseSeconds(parser.value(QStringLiteral("start")), &start))
        return usageError(
            parser, QStringLiteral("--start is not a number of seconds: %1").arg(parser.value("start")));
    if (!parseSeconds(parser.value(QStringLiteral("end")), &end))
        return usageError(parser,
                          QStringLiteral("--end is not a number of seconds: %1").arg(parser.value("end")));
    const QString in = arguments.at(0);
    const QString out = arguments.at(1);
    if (sameFile(in, out))
        return usageError(parser, QStringLiteral("OUT must not be the input file"));

    JobRunner runner(context, name());
    return runner.run([&]() { context.tool.cropVideoAsync(in, out, start, end); });
}
