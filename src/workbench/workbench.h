#pragma once

#include "base/result.h"
#include "import/importsession.h"
#include "import/mesh/openmodel.h"
#include "relief/grid/reliefchanges.h"
#include "relief/history/sculptundo.h"
#include "relief/operations/operation.h"
#include "relief/strokes/sculptengine.h"
#include "relief/tools/toolparams.h"
#include "workbench/livepreview.h"
#include "workbench/step.h"

#include <QObject>
#include <QString>

#include <memory>

namespace marlowen {

class Progress;

/// A mesh that is being oriented before it becomes a relief.
struct ModelOnBench : OpenedModel
{
    QString file;
    ImportSettings settings; ///< of the import that it will open
};

/// The one relief being worked on with everything that belongs to it: history, stroke engine, tool
/// record, changes for the views, open import, the workspace it is saved in and whether it differs
/// from it. The window and the command line both work through it. It opens no
/// dialogs.
///
/// Every change of the relief ends in one announcement: the views' changes are notified, the
/// modified flag follows, changed() and, when it was a step, stepDone() are emitted. Calls that
/// need a relief do nothing without one.
class Workbench : public QObject
{
    Q_OBJECT

public:
    explicit Workbench(QObject *parent = nullptr);

    /// The tool record; it outlives the relief.
    ToolParams tool;
    /// Null for none. The relief is kept meanwhile; take() drops the model.
    std::unique_ptr<ModelOnBench> model;

    /// Null before the first relief.
    Relief *relief() const { return m_relief.get(); }
    SculptUndo &history() { return m_history; }
    /// The caller that runs a stroke through the engine calls strokeEnded() afterwards.
    SculptEngine &engine() { return m_engine; }
    ReliefChanges &changes() { return m_changes; }
    /// Active while an import is open. Its hooks are the workbench's, which emits importChanged()
    /// and changed().
    ImportSession &session() { return m_session; }
    LivePreview &preview() { return m_preview; }

    /// Makes this the relief: ends a stroke in progress, forgets the history, follows the relief's
    /// import if it has one. `file` is where it came from, empty for a new one. Emits replaced()
    /// while the old relief still exists. Recovered work comes with its history, which is
    /// emptied; it counts as modified until it is saved.
    void take(std::unique_ptr<Relief> relief, QString file = {}, SculptUndo *recovered = nullptr);

    /// Where the relief came from or was saved last; empty for a new one.
    const QString &file() const { return m_file; }
    /// Ends a stroke in progress and writes a workspace: it is the relief's from now on, and the
    /// relief is unmodified.
    Outcome save(const QString &file);
    /// False again when undo or redo returns to the state that was opened or saved.
    bool isModified() const { return m_modified; }

    /// Ends a stroke in progress, runs the operation and announces what it changed. Work that it
    /// changed without recording it counts as modified until it is saved. Fails with the operation,
    /// or when memory is short.
    Outcome apply(const Operation &operation, Progress *progress = nullptr);
    /// Ends the stroke in progress, if any, as a release off the relief does.
    void endStroke();
    /// One step back or forward, after ending a stroke in progress.
    void undo();
    void redo();
    /// Ends the import; the heights stay.
    void acceptImport();

public slots:
    /// A stroke that ran through the engine is over.
    void strokeEnded();

signals:
    /// The relief was replaced. Views take the new one over now; the old one is deleted afterwards.
    void replaced();
    /// Also emitted when only the name changed.
    void modifiedChanged(bool modified);
    /// Size, heights, mask or selection may have changed.
    void changed();
    /// The selection alone may have changed, which is not a step.
    void selectionEdited();
    /// The import's settings or heights changed, or it was accepted.
    void importChanged();
    /// Once for each step, after changed().
    void stepDone(const marlowen::Step &step);

private:
    friend class LivePreview;
    Outcome _run(const Operation &operation, const EditRun &run);
    static Failure _shortOfMemory();
    void _importEdited();
    void _settle();
    void _show();
    void _announce(Step::Kind kind);
    bool _touched() const;
    void _setModified(bool modified);

    std::unique_ptr<Relief> m_relief;
    SculptUndo m_history;
    SculptEngine m_engine;
    ReliefChanges m_changes;
    ImportSession m_session;
    LivePreview m_preview{*this};
    QString m_file;
    uint64_t m_announced = 0;  ///< state of the history at the last announcement
    uint64_t m_saved = 0;      ///< state of the history that the file holds
    bool m_unrecorded = false; ///< a change without an undo event since the save
    bool m_modified = false;
    bool m_accepting = false;
};

} // namespace marlowen
