#pragma once

#include "import/mesh/openmodel.h"
#include "ui/pages/sizerows.h"

#include <QObject>

class QShortcut;
class QWidget;

namespace marlowen {

class FacetWin;
class OrientPage;
class Workbench;

/// The model that is being oriented, from its file to the relief that it becomes: reads it, shows
/// it, turns and sizes it as the page asks. The relief on the workbench is not changed until the
/// model is accepted. Dialogs belong to the window.
class ModelController : public QObject
{
    Q_OBJECT

public:
    struct Parts
    {
        OrientPage *page;
        FacetWin *view;
    };
    ModelController(Workbench &bench, const Parts &parts, QWidget *window);

    /// Reads the file and shows it, in place of a model that was open. False when it could not be
    /// read or the user cancelled; the open work stays. It does not ask about unsaved work.
    bool open(const QString &path);

public slots:
    /// Makes the relief and opens its import.
    void accept();
    /// Puts the model away.
    void cancel();

signals:
    /// A model was opened, or there is none any more.
    void shownChanged();

private:
    bool _read(const QString &path, const ModelOptions &options);
    void _turn(ModelTurn turn);
    void _reset();
    void _setUnit(int unit);
    void _setSizes(const AxisSizes &sizes);
    void _invert(bool on);
    void _setRelativeIndices(bool on);
    void _escape();
    void _replaced();
    void _show();
    FacetShape *_shape() const;

    Workbench &m_bench;
    Parts m_parts;
    QWidget *m_window;
    QShortcut *m_escape;
    ModelOptions m_options; ///< the open model was read with
};

} // namespace marlowen
