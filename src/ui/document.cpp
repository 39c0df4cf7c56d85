#include "ui/document.h"

#include "files/formats.h"
#include "relief/grid/relief.h"

#include <QFileInfo>

#include <utility>

namespace marlowen {

Document::Document(QObject *parent)
    : QObject(parent)
{
}

Document::~Document()
{
    m_engine.attach(nullptr, nullptr);
    m_session.attach(nullptr);
    m_changes.setRelief(nullptr);
}

void Document::take(std::unique_ptr<Relief> relief, const QString &file)
{
    endStroke();
    m_engine.attach(nullptr, nullptr);
    m_history.clear();
    const std::unique_ptr<Relief> old = std::exchange(m_relief, std::move(relief));
    m_file = file;
    m_engine.attach(m_relief.get(), &m_history);
    m_session.attach(m_relief.get());
    m_changes.setRelief(m_relief.get());
    m_modified = false;
    emit replaced();
    emit modifiedChanged(false);
    emit changed();
}

QString Document::workspaceFile() const
{
    return isWorkspace(m_file) ? m_file : QString();
}

QString Document::name() const
{
    return QFileInfo(m_file).fileName();
}

void Document::savedAs(const QString &file)
{
    m_file = file;
    setModified(false);
    emit modifiedChanged(false);
}

void Document::setModified(bool modified)
{
    if (std::exchange(m_modified, modified) != modified)
        emit modifiedChanged(modified);
}

void Document::endStroke()
{
    if (!m_engine.stroking())
        return;
    m_engine.endStroke(QPointF(), false);
    edited();
}

void Document::undo()
{
    endStroke();
    if (!m_history.canUndo())
        return;
    m_history.undo();
    edited();
}

void Document::redo()
{
    endStroke();
    if (!m_history.canRedo())
        return;
    m_history.redo();
    edited();
}

void Document::edited()
{
    m_changes.notify();
    setModified(true);
    emit changed();
}

void Document::acceptImport()
{
    if (!importOpen())
        return;
    m_session.accept();
    edited();
    emit importAccepted();
}

} // namespace marlowen
