#pragma once

#include "base/progress.h"

#include <QElapsedTimer>
#include <QString>

#include <memory>

class QProgressDialog;
class QWidget;

namespace marlowen {

/// Shows long work as a dialog over a window, with Cancel, once it has taken half a second. Until
/// then there is no dialog and no events are handled.
class ProgressBox : public Progress
{
public:
    ProgressBox(const QString &label, QWidget *window);
    ~ProgressBox() override;
    ProgressBox(const ProgressBox &) = delete;
    ProgressBox &operator=(const ProgressBox &) = delete;

    void advance(double fraction) override;
    /// A second line, shown with the next advance().
    void describe(const QString &state) override { m_state = state; }
    bool cancelled() const override;

    /// Whether any box of the process is at work; commands that would disturb the work wait.
    static bool anyAtWork();

private:
    QString m_label;
    QString m_state;
    QWidget *m_window;
    QElapsedTimer m_since;
    qint64 m_lastShownMs = 0;
    std::unique_ptr<QProgressDialog> m_dialog;
    static int s_atWork;
};

} // namespace marlowen
