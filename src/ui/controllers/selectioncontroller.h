#pragma once

#include "relief/grid/cellbits.h"

#include <QObject>

#include <optional>

namespace marlowen {

class CommandSet;
class EditPage;
class Relief;
class Workbench;

/// The commands on the whole selection: all, none, reselect, invert, grow, shrink.
class SelectionController : public QObject
{
    Q_OBJECT

public:
    SelectionController(Workbench &bench, EditPage *page, QObject *parent);

    /// Runs the commands when they are chosen.
    void connectCommands(const CommandSet &commands);
    /// Enables what can act now; the rest says why it cannot.
    void setupControls(CommandSet &commands) const;

signals:
    /// A line for the status bar, shown for so many milliseconds.
    void said(const QString &text, int milliseconds);

private:
    void _none();
    void _reselect();
    void _change(bool (*edit)(Relief &relief, int cells));
    bool _canReselect() const;

    Workbench &m_bench;
    EditPage *m_page;
    std::optional<CellBits> m_last; ///< the selection before "Select None"
};

} // namespace marlowen
