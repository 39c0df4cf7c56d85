#pragma once

#include "base/progress.h"
#include "base/result.h"
#include "import/importsession.h"
#include "import/mesh/openmodel.h"
#include "relief/grid/relief.h"
#include "relief/history/sculptundo.h"
#include "relief/strokes/sculptengine.h"
#include "relief/tools/toolparams.h"

#include <QByteArray>

#include <memory>

namespace marlowen {

/// What one script works on: one relief, one tool record, one history, as the window has them.
class ScriptState
{
public:
    /// `progress` is told of long work and outlives the state.
    explicit ScriptState(Progress &progress)
        : m_progress(progress)
    {
    }
    ~ScriptState();

    /// Null until the script makes or opens one.
    Relief *relief() const { return m_relief.get(); }
    /// The new document: history, flags and selection start fresh; an import it brings is open.
    void install(std::unique_ptr<Relief> relief);

    SculptUndo &undo() { return m_undo; }
    SculptEngine &engine() { return m_engine; }
    ImportSession &import() { return m_import; }
    Progress &progress() { return m_progress; }

    ToolParams tool;
    /// A mesh that is being oriented; the relief stays beside it until it is rasterised.
    std::unique_ptr<OpenedModel> model;
    QString modelFile;
    ImportSettings modelSettings; ///< of the import that the mesh will open

    /// One line on standard output, at once. False when it could not be written.
    bool print(const QByteArray &line);

private:
    std::unique_ptr<Relief> m_relief;
    SculptUndo m_undo;
    SculptEngine m_engine;
    ImportSession m_import;
    Progress &m_progress;
};

/// What went wrong in an action, in one sentence.
Failure scriptFailure(const QString &sentence);

} // namespace marlowen
