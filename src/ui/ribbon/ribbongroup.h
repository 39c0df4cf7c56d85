#pragma once

#include <QIcon>
#include <QWidget>

#include <vector>

class QLabel;

namespace marlowen {

class RibbonButton;

/// A titled group of controls on a ribbon page. Large buttons and tall widgets fill the height of
/// the page; everything else stacks in columns of three rows. With less room the group gives way in
/// steps: large buttons become small ones, then icons, then the whole group becomes one drop-down
/// button whose popup shows the group in full.
class RibbonGroup : public QWidget
{
    Q_OBJECT

public:
    enum State { Full, Medium, Icons, Collapsed };

    explicit RibbonGroup(const QString &title, QWidget *parent = nullptr);

    QString title() const { return m_title; }
    /// Icon of the drop-down button; without one the first button's icon is used.
    void setIcon(const QIcon &icon);

    RibbonButton *addLargeButton(QAction *action);
    RibbonButton *addSmallButton(QAction *action);
    /// A row with a control and, before it, its label. The group takes the control over. Labels
    /// of one column align.
    void addRow(QWidget *control, const QString &label = QString());
    /// A control as high as the group.
    void addTall(QWidget *control);
    /// The next row starts a new column.
    void breakColumn() { m_breakNext = true; }
    /// A hair line before what is added next, which starts a new column.
    void addSeparator();

    State state() const { return m_state; }
    void setState(State state);
    /// Width the group needs in a state.
    int widthIn(State state);
    /// Height of the controls; the title comes below.
    static int contentHeight(const QWidget *widget);

    QSize sizeHint() const override;

    /// Whether the popup of a collapsed group is open.
    bool isPopupOpen() const;

public slots:
    void openPopup();
    void closePopup();

protected:
    void paintEvent(QPaintEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    bool eventFilter(QObject *watched, QEvent *event) override;
    void changeEvent(QEvent *event) override;

private:
    struct Item
    {
        QWidget *control = nullptr;
        QLabel *label = nullptr;
        RibbonButton *button = nullptr; ///< the control, when it is one
        bool large = false;             ///< fills the height in the full state
        bool tall = false;              ///< fills the height in every state
        bool breakBefore = false;
        bool separatorBefore = false;
    };
    struct Column
    {
        std::vector<Item *> items;
        bool tall = false;
        bool separatorBefore = false;
        size_t rows = 0; ///< of the longest of the columns side by side with it
    };

    Item &_add(QWidget *control);
    RibbonButton *_addButton(QAction *action, bool large);
    std::vector<Column> _columns(State state);
    static void _levelRows(std::vector<Column> &columns);
    void _setForms(State state);
    int _layOutContent(State state, bool place);
    int _placeColumn(const Column &column, int left, bool place);
    int _placeRows(const Column &column, int left, bool place);

    QString m_title;
    QIcon m_icon;
    bool m_breakNext = false;
    bool m_separatorNext = false;
    State m_state = Full;
    std::vector<Item> m_items;
    std::vector<int> m_separators; ///< x of the hair lines in the content
    QWidget *m_content = nullptr;
    RibbonButton *m_drop = nullptr;
    QWidget *m_popup = nullptr;
};

} // namespace marlowen
