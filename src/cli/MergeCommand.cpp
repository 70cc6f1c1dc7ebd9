#include "MergeCommand.h"

#include "CommonTool.h"
#include "JobRunner.h"

#include <QFileInfo>
#include <QVariantList>

MergeCommand::MergeCommand()
    : CliCommand(QStringLiteral("merge"), QStringLiteral("Join videos end to end into one file"))
{
}

void MergeCommand::configure(QCommandLineParser& parser) const
{
    parser.setApplicationDescription(
        QStringLiteral("Joins the inputs in the order given, without re-encoding; the streams of the\n"
                       "first input set the layout of OUT. The inputs should share codecs and sizes.\n"
                       "Ctrl-C stops the merge and removes the unfinished OUT (exit status 130)."));
    parser.addPositionalArgument(QStringLiteral("OUT"), QStringLiteral("File to write."));
    parser.addPositionalArgument(QStringLiteral("IN"), QStringLiteral("Files to join, in order."),
                                 QStringLiteral("IN1 [IN2 ...]"));
}

int MergeCommand::run(const QCommandLineParser& parser, const QStringList& arguments,
                      CliContext& context) const
{
    if (arguments.size() < 2)
        return usageError(parser, QStringLiteral("merge takes OUT and at least one IN"));
    const QString out = QFileInfo(arguments.first()).absoluteFilePath();
    QVariantList inputs;
    for (const QString& in : arguments.mid(1)) {
        // The list file lives in the temporary folder, so relative names would be read from
        // there: hand over absolute ones.
        const QFileInfo info(in);
        if (sameFile(in, out))
            return usageError(parser, QStringLiteral("OUT must not be one of the inputs"));
        inputs << (in.isEmpty() ? in : info.absoluteFilePath());
    }

    JobRunner runner(context, name());
    return runner.run([&]() { context.tool.mergeVideoAsync(inputs, out); });
}
