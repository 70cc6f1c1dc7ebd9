// vidora-cli: the media tools of Vidora from a terminal. Commands run the same CommonTool jobs
// as the tool windows, through the asynchronous invokables and signals on an event loop.

#include "CliCommand.h"
#include "CliLog.h"
#include "CommandTable.h"
#include "CommonTool.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <cstdio>

namespace {

QCommandLineOption quietOption()
{
    return {{QStringLiteral("q"), QStringLiteral("quiet")}, QStringLiteral("Show no progress.")};
}

QCommandLineOption verboseOption()
{
    return {QStringLiteral("verbose"), QStringLiteral("Also show info-level log lines.")};
}

int usage(const QCommandLineParser& parser, const QString& message)
{
    return CliCommand::usageError(parser, message);
}

} // namespace

int main(int argc, char* argv[])
{
    QCoreApplication app(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("vidora-cli"));
    QCoreApplication::setApplicationVersion(QStringLiteral(VIDORA_VERSION));

    const auto commands = allCommands();

    // First pass: global options and the command word; everything after the word is the
    // command's to parse.
    QCommandLineParser global;
    QString description = QStringLiteral("Vidora's video tools from a terminal.\n\nCommands:\n");
    for (const auto& command : commands)
        description += QStringLiteral("  %1  %2\n").arg(command->name(), -10).arg(command->summary());
    description += QStringLiteral("\n'vidora-cli COMMAND --help' describes a command.\n"
                                  "Exit status: 0 success, 1 failure, 2 usage error, 130 interrupted.");
    global.setApplicationDescription(description);
    global.addHelpOption();
    global.addVersionOption();
    global.addOption(quietOption());
    global.addOption(verboseOption());
    global.addPositionalArgument(QStringLiteral("command"), QStringLiteral("One of the commands above."),
                                 QStringLiteral("COMMAND [ARGUMENTS...]"));
    global.setOptionsAfterPositionalArgumentsMode(QCommandLineParser::ParseAsPositionalArguments);
    if (!global.parse(app.arguments()))
        return usage(global, global.errorText());
    if (global.isSet(QStringLiteral("version")))
        global.showVersion();
    if (global.positionalArguments().isEmpty()) {
        if (global.isSet(QStringLiteral("help")))
            global.showHelp(CliExit::Success);
        return usage(global, QStringLiteral("no command given"));
    }

    const QString word = global.positionalArguments().first();
    CliCommand* command = nullptr;
    for (const auto& candidate : commands)
        if (candidate->name() == word)
            command = candidate.get();
    if (!command)
        return usage(global, QStringLiteral("unknown command: %1").arg(word));

    // Second pass: the whole line again with the command's parser, so options may stand
    // anywhere and its --help shows its own arguments.
    QCommandLineParser parser;
    parser.addHelpOption();
    parser.addOption(quietOption());
    parser.addOption(verboseOption());
    parser.addPositionalArgument(command->name(), command->summary() + QLatin1Char('.'), command->name());
    command->configure(parser);
    if (!parser.parse(app.arguments()))
        return usage(parser, parser.errorText());
    if (parser.isSet(QStringLiteral("help")))
        parser.showHelp(CliExit::Success);

    CliContext context{*CommonTool::instance(), parser.isSet(QStringLiteral("quiet")),
                       parser.isSet(QStringLiteral("verbose"))};
    CliLog::install(context.verbose);
    // The command word is the first positional argument of this parser too.
    return command->run(parser, parser.positionalArguments().mid(1), context);
}
