#include "JobRunner.h"

#include "CliCommand.h"
#include "CommonTool.h"
#include "ProgressBar.h"
#include "SignalWatcher.h"
#include "Terminal.h"

#include <QEventLoop>
#include <cstdlib>

JobRunner::JobRunner(CliContext& context, const QString& label) : m_context(context), m_label(label) {}

int JobRunner::run(const std::function<void()>& start)
{
    CommonTool& tool = m_context.tool;
    QEventLoop loop;
    SignalWatcher watcher;
    ProgressBar bar(m_label, !m_context.quiet && Terminal::instance().isInteractive());
    bool finished = false;
    bool interrupted = false;
    int exitCode = CliExit::Failure;

    // The loop object is the context: the job's signals arrive queued from the pool thread.
    QObject::connect(&tool, &CommonTool::videoCompressionFrameTotal, &loop,
                     [&bar](int total) { bar.setTotal(total); });
    QObject::connect(&tool, &CommonTool::videoCompressionProgress, &loop,
                     [&bar](int done) { bar.setDone(done); });
    QObject::connect(&tool, &CommonTool::videoCompressionFinished, &loop, [&](bool success) {
        finished = true;
        bar.finish();
        exitCode = interrupted ? CliExit::Interrupted : success ? CliExit::Success : CliExit::Failure;
        loop.quit();
    });
    QObject::connect(&watcher, &SignalWatcher::interrupted, &loop, [&](int) {
        if (interrupted) {
            // Asked twice: the user no longer wants to wait for a clean end.
            Terminal::instance().printLine("vidora-cli: stopped");
            std::_Exit(CliExit::Interrupted);
        }
        interrupted = true;
        tool.cancelVideoOperation();
        if (!m_context.quiet)
            Terminal::instance().printLine(
                "vidora-cli: interrupted, stopping the job (again to quit at once)");
    });

    start();
    if (!finished)
        loop.exec();
    return exitCode;
}
