#pragma once

#include <QElapsedTimer>
#include <QObject>
#include <QString>
#include <QTimer>

// The one-line progress display of a running job on stderr: bar, done/total, percent,
// elapsed time and an estimate of the time left. Redrawn in place a few times a second,
// only when enabled (stderr is a terminal and --quiet was not given). GUI thread only.
class ProgressBar : public QObject
{
    Q_OBJECT
public:
    ProgressBar(const QString& label, bool enabled, QObject* parent = nullptr);
    ~ProgressBar() override;

    void setTotal(int total);
    void setDone(int done);
    // Takes the bar off the screen for good.
    void finish();

    // The text of one frame of the display, fitted to `columns`.
    static QString render(const QString& label, int done, int total, qint64 elapsedMs, int columns);

private:
    void redraw();

    QString m_label;
    bool m_enabled;
    int m_total = 0;
    int m_done = 0;
    QElapsedTimer m_clock;
    QTimer m_timer;
};
