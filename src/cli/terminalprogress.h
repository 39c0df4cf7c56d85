#pragma once

#include "base/progress.h"

namespace marlowen {

/// Shows long work on standard error when that is a terminal; an interrupt (Ctrl+C) cancels it, so
/// that no temporary file stays behind, and a second one ends the program.
class TerminalProgress : public Progress
{
public:
    TerminalProgress();
    ~TerminalProgress() override;
    void advance(double fraction) override;
    bool cancelled() const override;
    /// Wipes what is shown.
    void clear();

private:
    bool m_terminal;
    int m_shownPercent = -1;
};

} // namespace marlowen
