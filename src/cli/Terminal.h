#pragma once

#include <mutex>
#include <string>

// The one writer of stderr in vidora-cli. Log lines (from any thread) and the progress bar
// (GUI thread) share one terminal line: a line printed while the bar is shown wipes the bar
// first, and the bar is drawn again on its next tick. All members are thread-safe.
class Terminal
{
public:
    static Terminal& instance();

    // True when stderr is a terminal (progress is drawn only then).
    bool isInteractive() const { return m_interactive; }
    // Width of the terminal in columns, 80 when unknown.
    int columns() const;

    // A complete line; a trailing newline is added when missing.
    void printLine(const std::string& line);
    // Library log text arriving in pieces: complete lines go out, the rest waits.
    void printFragment(const std::string& text);
    // Draws the bar text in place of the previous one.
    void drawBar(const std::string& text);
    // Removes the bar from the screen.
    void clearBar();

private:
    template <typename T> friend T& processWide();
    Terminal();
    void writeAll(const std::string& bytes);
    void wipeBarLocked();

    std::mutex m_mutex;
    bool m_interactive = false;
    bool m_barShown = false;
    std::string m_pending;
};
