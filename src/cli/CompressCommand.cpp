#include "CompressCommand.h"

#include "CommonTool.h"
#include "JobRunner.h"

#include <QFileInfo>

CompressCommand::CompressCommand()
    : CliCommand(QStringLiteral("compress"), QStringLiteral("Re-encode a video into a smaller file"))
{
}

void CompressCommand::configure(QCommandLineParser& parser) const
{
    parser.setApplicationDescription(
        QStringLiteral("Re-encodes the video of IN with its own codec at a share of its bit rate and a\n"
                       "constant-quality factor, and copies the first audio stream; the container\n"
                       "follows OUT's extension.\n"
                       "  level 0: 90% of the bit rate, crf 18 (largest file, best quality)\n"
                       "  level 1: 70%, crf 23 (also used for any other number)\n"
                       "  level 2: 30%, crf 28 (smallest file)\n"
                       "Ctrl-C stops the job; the unfinished OUT is left as it stands, without its\n"
                       "index (exit status 130)."));
    parser.addPositionalArgument(QStringLiteral("IN"), QStringLiteral("Video to compress."));
    parser.addPositionalArgument(QStringLiteral("OUT"), QStringLiteral("File to write."));
    parser.addOption({QStringLiteral("level"), QStringLiteral("Compression level, 0 (default), 1 or 2."),
                      QStringLiteral("LEVEL"), QStringLiteral("0")});
}

int CompressCommand::run(const QCommandLineParser& parser, const QStringList& arguments,
                         CliContext& context) const
{
    if (arguments.size() != 2)
        return usageError(parser, QStringLiteral("compress takes IN and OUT"));
    bool ok = false;
    const int level = parser.value(QStringLiteral("level")).trimmed().toInt(&ok);
    if (!ok)
        return usageError(parser,
                          QStringLiteral("--level is not a whole number: %1").arg(parser.value("level")));
    const QString in = arguments.at(0);
    const QString out = arguments.at(1);
    if (sameFile(in, out))
        return usageError(parser, QStringLiteral("OUT must not be the input file"));

    JobRunner runner(context, name());
    return runner.run([&]() { context.tool.compressVideoAsync(in, out, level); });
}
