#pragma once

#include "import/importsession.h"
#include "relief/history/sculptundo.h"
#include "relief/strokes/sculptengine.h"
#include "render/views/reliefchanges.h"

#include <QObject>
#include <QString>

#include <memory>

namespace marlowen {

/// The one relief being worked on with everything that belongs to it: history, stroke engine,
/// changes for the views, open import, the workspace it is saved in and whether it differs from it.
class Document : public QObject
{
    Q_OBJECT

public:
    explicit Document(QObject *parent = nullptr);
    ~Document() override;

    /// Null before the first relief.
    Relief *relief() const { return m_relief.get(); }
    SculptUndo &history() { return m_history; }
    SculptEngine &engine() { return m_engine; }
    ReliefChanges &changes() { return m_changes; }
    ImportSession &session() { return m_session; }
    bool importOpen() const { return m_session.active(); }

    /// Makes this the relief: ends a stroke in progress, forgets the history, follows its import if
    /// it has one. `file` is where it came from, empty for a new one. Emits replaced() while the
    /// old relief still lives.
    void take(std::unique_ptr<Relief> relief, const QString &file);

    /// Where Save writes without asking; empty when the relief came from something else.
    QString workspaceFile() const;
    /// File name without folder for the title; empty for a new relief.
    QString name() const;
    /// Saved under this name: the workspace is this file from now on, and unmodified.
    void savedAs(const QString &file);

    bool isModified() const { return m_relief && m_modified; }
    void setModified(bool modified);

    /// Ends the stroke in progress, if any, as a release off the relief does.
    void endStroke();
    /// One step back or forward, after ending a stroke in progress.
    void undo();
    void redo();
    /// Tells the views that the relief changed outside a stroke and marks it modified.
    void edited();
    /// Ends the import; the heights stay.
    void acceptImport();

signals:
    /// Another relief is there. Views take it over now; the old one goes afterwards.
    void replaced();
    void modifiedChanged(bool modified);
    /// Size, heights or selection may be others than before.
    void changed();
    void importAccepted();

private:
    std::unique_ptr<Relief> m_relief;
    SculptUndo m_history;
    SculptEngine m_engine;
    ReliefChanges m_changes;
    ImportSession m_session;
    QString m_file;
    bool m_modified = false;
};

} // namespace marlowen
