#pragma once

#include <QWidget>

#include <vector>

class QStackedWidget;
class QTabBar;

namespace marlowen {

class RibbonButton;
class RibbonPage;
class RibbonQuickAccessBar;

/// Quick access buttons and tabs in one row, the chosen page below. Minimised, only the row stays:
/// choosing a tab then lays its page over the window until the user clicks elsewhere.
class RibbonBar : public QWidget
{
    Q_OBJECT

public:
    explicit RibbonBar(QWidget *parent = nullptr);

    RibbonQuickAccessBar *quickAccessBar() const { return m_quickAccess; }
    QTabBar *tabBar() const { return m_tabs; }

    /// A new page after the others; its number is its place in the order of adding.
    RibbonPage *addPage(const QString &title);
    RibbonPage *page(int number) const;
    int pageCount() const { return static_cast<int>(m_pages.size()); }
    int currentPage() const;
    bool isPageVisible(int number) const;
    /// Hiding the current page goes to the first visible one.
    void setPageVisible(int number, bool visible);

    bool isMinimized() const { return m_minimized; }
    /// Whether a page lies over the window of a minimised ribbon.
    bool isPageFloating() const { return m_floating; }

public slots:
    void setCurrentPage(int number);
    void setMinimized(bool on);
    void toggleMinimized() { setMinimized(!m_minimized); }
    /// Gives the keyboard to the tabs; from there Left and Right choose a page, Down enters it.
    void takeFocus();

signals:
    void currentPageChanged(int number);
    /// The user chose the tab, be it the current one.
    void pageActivated(int number);
    void minimizedChanged(bool on);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;
    void paintEvent(QPaintEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void changeEvent(QEvent *event) override;

private:
    void _tabChanged(int tab);
    void _drawArrow();
    void _floatPage(bool on);
    bool _tabKey(int key);
    int _tabOf(int number) const;

    RibbonQuickAccessBar *m_quickAccess;
    QTabBar *m_tabs;
    RibbonButton *m_minimize;
    QStackedWidget *m_stack;
    std::vector<RibbonPage *> m_pages;
    bool m_minimized = false;
    bool m_floating = false;
    bool m_clickWasDouble = false;
};

} // namespace marlowen
