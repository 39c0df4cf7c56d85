#pragma once

#include "base/progress.h"

namespace marlowen {

/// Shows long work on standard error when that is a terminal; an interrupt (Ctrl+C) cancels it, so
/// that the temporary file is removed, and a second one ends the program.
class TerminalProgress : public Progress
{
public:
    TerminalProgress();
    ~TerminalProgress() override;
    void advance(double fraction) override;
    void describe(const QString &state) override;
    bool cancelled() const override;
    /// Removes the progress line.
    void clear();

private:
    void show() const;

    bool m_terminal;
    int m_shownPercent = -1;
    QString m_state;
};

} // namespace marlowen
