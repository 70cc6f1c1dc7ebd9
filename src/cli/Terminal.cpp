#include "Terminal.h"

#include "ProcessWide.h"

#include <cerrno>
#include <sys/ioctl.h>
#include <unistd.h>

Terminal& Terminal::instance()
{
    return processWide<Terminal>();
}

Terminal::Terminal() : m_interactive(isatty(STDERR_FILENO) == 1) {}

int Terminal::columns() const
{
    winsize size{};
    if (m_interactive && ioctl(STDERR_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0)
        return size.ws_col;
    return 80;
}

void Terminal::writeAll(const std::string& bytes)
{
    size_t done = 0;
    while (done < bytes.size()) {
        const ssize_t n = ::write(STDERR_FILENO, bytes.data() + done, bytes.size() - done);
        if (n < 0 && errno == EINTR)
            continue;
        if (n <= 0)
            return;
        done += static_cast<size_t>(n);
    }
}

void Terminal::wipeBarLocked()
{
    if (m_barShown) {
        writeAll("\r\033[K");
        m_barShown = false;
    }
}

void Terminal::printLine(const std::string& line)
{
    std::lock_guard<std::mutex> lock(m_mutex);
    wipeBarLocked();
    if (!line.empty() && line.back() == '\n')
        writeAll(line);
    else
        writeAll(line + '\n');
}

void Terminal::printFragment(const std::string& text)
{
    std::lock_guard<std::mutex> lock(m_mutex);
    m_pending += text;
    const size_t end = m_pending.rfind('\n');
    if (end == std::string::npos)
        return;
    wipeBarLocked();
    writeAll(m_pending.substr(0, end + 1));
    m_pending.erase(0, end + 1);
}

void Terminal::drawBar(const std::string& text)
{
    std::lock_guard<std::mutex> lock(m_mutex);
    writeAll("\r" + text + "\033[K");
    m_barShown = true;
}

void Terminal::clearBar()
{
    std::lock_guard<std::mutex> lock(m_mutex);
    wipeBarLocked();
}
