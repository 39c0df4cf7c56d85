#pragma once

#include <QDockWidget>

class QLabel;
class QToolButton;

namespace marlowen {

/// A dock at the side of the window whose title carries a button that folds it to a narrow strip
/// and back. Each side has one: a dock that is moved to the side of another sends it to the side
/// that it leaves, because docks in tabs or on top of each other could not be folded to a strip.
class CollapsibleDock : public QDockWidget
{
    Q_OBJECT

public:
    CollapsibleDock(const QString &title, const QString &name, QWidget *parent);

    bool isCollapsed() const { return m_collapsed; }
    /// Width in pixels that it has open.
    int openWidth() const { return m_collapsed ? m_openWidth : width(); }
    /// Folds it and remembers the width to open with.
    void fold(int openWidth);
    /// Width the dock starts with, in pixels.
    void setContent(QWidget *content, int width);

public slots:
    void setCollapsed(bool on);
    void toggleCollapsed() { setCollapsed(!m_collapsed); }
    /// Back to the width it started with, or had before it was folded.
    void takeOpenWidth();

private:
    void _showState();
    void _takeSide();

    QLabel *m_title;
    QToolButton *m_button;
    QWidget *m_content = nullptr;
    int m_openWidth = 0;
    bool m_collapsed = false;
};

} // namespace marlowen
