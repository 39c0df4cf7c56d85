#include "cli/terminalprogress.h"

#include <csignal>
#include <cstdio>

#include <unistd.h>

namespace marlowen {

namespace {

volatile std::sig_atomic_t interrupted = 0;

void interrupt(int signal)
{
    interrupted = 1;
    std::signal(signal, SIG_DFL);
}

} // namespace

TerminalProgress::TerminalProgress()
    : m_terminal(isatty(STDERR_FILENO) != 0)
{
    std::signal(SIGINT, interrupt);
    std::signal(SIGTERM, interrupt);
}

TerminalProgress::~TerminalProgress()
{
    clear();
}

void TerminalProgress::advance(double fraction)
{
    if (fraction >= 1.0) {
        clear(); // the next output begins on an empty line
        return;
    }
    const int percent = static_cast<int>(fraction * 100.0);
    if (!m_terminal || percent == m_shownPercent)
        return;
    m_shownPercent = percent;
    show();
}

void TerminalProgress::describe(const QString &state)
{
    m_state = state;
    if (m_terminal && m_shownPercent >= 0)
        show();
}

void TerminalProgress::show() const
{
    std::fprintf(stderr, "\r%3d %%  %s\033[K", m_shownPercent, m_state.toLocal8Bit().constData());
    std::fflush(stderr);
}

bool TerminalProgress::cancelled() const
{
    return interrupted != 0;
}

void TerminalProgress::clear()
{
    if (m_shownPercent < 0)
        return;
    m_shownPercent = -1;
    m_state.clear();
    std::fputs("\r\033[K", stderr);
    std::fflush(stderr);
}

} // namespace marlowen
