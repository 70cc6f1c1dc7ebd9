#pragma once

#include <QCommandLineParser>
#include <QString>
#include <QStringList>
#include <utility>

class CommonTool;

// Exit codes that scripts rely on.
namespace CliExit {
constexpr int Success = 0;
constexpr int Failure = 1;
constexpr int Usage = 2;
constexpr int Interrupted = 130;
} // namespace CliExit

// What every command gets besides its own arguments.
struct CliContext
{
    CommonTool& tool;
    bool quiet = false;   // no progress display
    bool verbose = false; // info-level log lines
};

// One vidora-cli command. A command declares its arguments on its own parser (the global
// options are already there), then runs with the parsed result and returns an exit code.
// Jobs go through CommonTool's asynchronous invokables and signals (see JobRunner), the way
// the tool windows run them.
class CliCommand
{
public:
    // name: the command word, e.g. "clip"; summary: one line for the program's command list.
    CliCommand(QString name, QString summary) : m_name(std::move(name)), m_summary(std::move(summary)) {}
    virtual ~CliCommand() = default;

    QString name() const { return m_name; }
    QString summary() const { return m_summary; }
    // Positional arguments (after the command word) and options.
    virtual void configure(QCommandLineParser& parser) const = 0;
    // `arguments` are the positional arguments after the command word. A usage problem is
    // reported with usageError() so the user sees the command's help.
    virtual int run(const QCommandLineParser& parser, const QStringList& arguments,
                    CliContext& context) const = 0;

    // Prints "vidora-cli: message" and the command's help on stderr; returns CliExit::Usage.
    static int usageError(const QCommandLineParser& parser, const QString& message);
    // A decimal number of seconds ("12", "12.5"); false for anything else, NaN or infinity.
    static bool parseSeconds(const QString& text, double* seconds);
    // Whether out names the same existing file as in. Opening the output truncates it, so
    // writing over an input would destroy it mid-read.
    static bool sameFile(const QString& in, const QString& out);

private:
    QString m_name;
    QString m_summary;
};
