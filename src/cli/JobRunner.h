#pragma once

#include <QString>
#include <functional>

struct CliContext;

// Runs one asynchronous CommonTool job to its end on the event loop: shows its progress,
// turns SIGINT/SIGTERM into cancelVideoOperation() and waits for the job's own finish.
// Exit code: 0 when the job finished with success, 1 when it failed, 130 when it was
// interrupted (whatever it then reported). A second signal while waiting ends the process
// at once with 130. GUI thread only.
class JobRunner
{
public:
    JobRunner(CliContext& context, const QString& label);
    // `start` calls one of the *Async invokables; the runner is listening before it runs.
    int run(const std::function<void()>& start);

private:
    CliContext& m_context;
    QString m_label;
};
