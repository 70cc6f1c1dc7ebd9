#include "ProgressBar.h"

#include "CommonTool.h"
#include "Terminal.h"

#include <algorithm>

namespace {
constexpr int kRedrawMs = 200; // five frames a second: lively, yet cheap over slow links
}

ProgressBar::ProgressBar(const QString& label, bool enabled, QObject* parent)
    : QObject(parent), m_label(label), m_enabled(enabled)
{
    m_clock.start();
    if (!m_enabled)
        return;
    m_timer.setInterval(kRedrawMs);
    connect(&m_timer, &QTimer::timeout, this, &ProgressBar::redraw);
    m_timer.start();
}

ProgressBar::~ProgressBar()
{
    finish();
}

void ProgressBar::setTotal(int total)
{
    m_total = total;
}

void ProgressBar::setDone(int done)
{
    m_done = done;
}

void ProgressBar::finish()
{
    if (!m_enabled)
        return;
    m_timer.stop();
    Terminal::instance().clearBar();
    m_enabled = false;
}

void ProgressBar::redraw()
{
    // The clock moves even when the counts do not, so every tick redraws.
    Terminal& terminal = Terminal::instance();
    terminal.drawBar(render(m_label, m_done, m_total, m_clock.elapsed(), terminal.columns()).toStdString());
}

QString ProgressBar::render(const QString& label, int done, int total, qint64 elapsedMs, int columns)
{
    CommonTool* tool = CommonTool::instance();
    const double elapsed = elapsedMs / 1000.0;
    QString left = QStringLiteral("--:--:--");
    if (done > 0 && total > 0 && done < total)
        left = QLatin1Char('~') + tool->formatTime(elapsed * (total - done) / done + 0.5);
    else if (total > 0 && done >= total)
        left = tool->formatTime(0);
    const int percent = total > 0 ? static_cast<int>(std::min<qint64>(100, qint64(done) * 100 / total)) : 0;
    // Fixed-width fields, so the bar does not jump as the numbers grow.
    const QString totalText = QString::number(total);
    const QString counts = total > 0 ? QStringLiteral("%1/%2").arg(done, totalText.size()).arg(totalText)
                                     : QString::number(done);
    const QString tail = QStringLiteral(" %1 %2% elapsed %3 left %4")
                             .arg(counts)
                             .arg(percent, 3)
                             .arg(tool->formatTime(elapsed))
                             .arg(left, 9);

    // The bar takes what the terminal leaves, within sensible bounds; one column stays free so
    // the cursor never wraps.
    const int room = columns - 1 - label.size() - tail.size() - 3;
    if (room < 5)
        return (label + tail).left(std::max(0, columns - 1));
    const int width = std::min(room, 40);
    const int filled = total > 0 ? static_cast<int>(qint64(width) * std::min(done, total) / total) : 0;
    return label + QStringLiteral(" [") + QString(filled, QLatin1Char('#')) +
           QString(width - filled, QLatin1Char('-')) + QLatin1Char(']') + tail;
}
