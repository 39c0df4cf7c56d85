#pragma once

#include <QMainWindow>

namespace marlowen {

class RibbonBackstage;
class RibbonBar;
class RibbonQuickAccessBar;

/// A main window whose commands are on a ribbon. Pressing and releasing Alt alone, or F10,
/// gives the keyboard to the ribbon's tabs; Ctrl+F1 minimises the ribbon.
class RibbonMainWindow : public QMainWindow
{
    Q_OBJECT

public:
    explicit RibbonMainWindow(QWidget *parent = nullptr);

    RibbonBar *ribbonBar() const { return m_bar; }
    RibbonQuickAccessBar *quickAccessBar() const;
    /// The page over the whole window, made on first use.
    RibbonBackstage *backstage();

protected:
    bool event(QEvent *event) override;
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    RibbonBar *m_bar;
    RibbonBackstage *m_backstage = nullptr;
    bool m_altAlone = false;
};

} // namespace marlowen
