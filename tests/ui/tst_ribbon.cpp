#include "ui/ribbon/numberfield.h"
#include "ui/ribbon/office2013style.h"
#include "ui/ribbon/ribbonbackstage.h"
#include "ui/ribbon/ribbonbar.h"
#include "ui/ribbon/ribbonbutton.h"
#include "ui/ribbon/ribbongallery.h"
#include "ui/ribbon/ribbongroup.h"
#include "ui/ribbon/ribbonmainwindow.h"
#include "ui/ribbon/ribbonpage.h"
#include "ui/ribbon/ribbonquickaccessbar.h"
#include "ui/ribbon/sliderfield.h"

#include <QtTest>
#include <QtWidgets>

using namespace marlowen;

namespace {

QIcon dot(const QColor &color)
{
    QPixmap picture(32, 32);
    picture.fill(color);
    return QIcon(picture);
}

/// Two pages: one with four groups of every kind of control, one with a single button.
class Window : public RibbonMainWindow
{
public:
    Window()
    {
        setCentralWidget(new QTextEdit);
        open = _action(QStringLiteral("File"));
        quickAccessBar()->setApplicationCommand(open);
        quickAccessBar()->addCommand(_action(QStringLiteral("Again")));
        page = ribbonBar()->addPage(QStringLiteral("Kitchen"));
        cook = page->addGroup(QStringLiteral("Cook"));
        boil = _action(QStringLiteral("Boil"));
        fry = _action(QStringLiteral("Fry slowly"));
        steam = _action(QStringLiteral("Steam"));
        for (QAction *action : {boil, fry, steam})
            cook->addLargeButton(action);
        RibbonGroup *heat = page->addGroup(QStringLiteral("Heat"));
        slider = new SliderField(QString(), {0, 100, 1, 10, 40, 0, QStringLiteral(" %")});
        slider->setMinimumWidth(180);
        heat->addRow(slider, QStringLiteral("Flame"));
        combo = new QComboBox;
        combo->addItems({QStringLiteral("Gas"), QStringLiteral("Induction")});
        heat->addRow(combo, QStringLiteral("Hob"));
        heat->addRow(new QCheckBox(QStringLiteral("Keep warm")));
        RibbonGroup *spice = page->addGroup(QStringLiteral("Spice"));
        gallery = new RibbonGallery;
        for (int id = 0; id < 6; ++id)
            gallery->addItem(id, QPoint(id % 3, id / 3), dot(Qt::red), QString::number(id));
        spice->addTall(gallery);
        spice->addSeparator();
        spice->addSmallButton(_action(QStringLiteral("Salt")));
        spice->addSmallButton(_action(QStringLiteral("Pepper")));
        RibbonGroup *serve = page->addGroup(QStringLiteral("Serve"));
        serve->addLargeButton(_action(QStringLiteral("Serve")));
        ribbonBar()
            ->addPage(QStringLiteral("Garden"))
            ->addGroup(QStringLiteral("Grow"))
            ->addLargeButton(_action(QStringLiteral("Sow")));
        ribbonBar()->addPage(QStringLiteral("Cellar"));
        resize(1200, 600);
    }

    QAction *open = nullptr;
    QAction *boil = nullptr;
    QAction *fry = nullptr;
    QAction *steam = nullptr;
    RibbonPage *page = nullptr;
    RibbonGroup *cook = nullptr;
    SliderField *slider = nullptr;
    QComboBox *combo = nullptr;
    RibbonGallery *gallery = nullptr;

private:
    QAction *_action(const QString &text) { return new QAction(dot(Qt::blue), text, this); }
};

void show(QWidget &window)
{
    window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&window));
    window.activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(&window));
}

int rightmost(const RibbonPage &page)
{
    int right = 0;
    for (const RibbonGroup *group : page.groups())
        right = qMax(right, group->geometry().right());
    return right;
}

} // namespace

class TestRibbon : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { QApplication::setStyle(new Office2013Style); }

    void groupsCollapseAndExpand();
    void collapsedGroupActsFromItsPopup();
    void hiddenCommandLeavesNoGap();
    void minimisedRibbonFloatsAPage();
    void altAndArrowsReachEveryCommand();
    void hidingThePageLeavesAVisibleOne();
    void backstageClosesOnEscapeAndCommand();
    void sliderTakesWheelTypingAndDoubleClick();
    void numberRefusesInvalidText_data();
    void numberRefusesInvalidText();
    void themeReachesOpenWindows();
    void focusRingComesWithTheKeyboard();
};

void TestRibbon::groupsCollapseAndExpand()
{
    Window window;
    show(window);
    for (const RibbonGroup *group : window.page->groups())
        QCOMPARE(group->state(), RibbonGroup::Full);
    int sumBefore = 0;
    for (int width = 1200; width >= 320; width -= 40) {
        window.resize(width, 600);
        QTRY_COMPARE(window.page->width(), width);
        int sum = 0;
        for (const RibbonGroup *group : window.page->groups())
            sum += group->state();
        QVERIFY2(sum >= sumBefore, "a narrower page never grows a group");
        QVERIFY2(rightmost(*window.page) < width, qPrintable(QString::number(width)));
        sumBefore = sum;
    }
    QCOMPARE(window.page->groups().back()->state(), RibbonGroup::Collapsed);
    window.resize(1200, 600);
    QTRY_COMPARE(window.cook->state(), RibbonGroup::Full);
}

void TestRibbon::collapsedGroupActsFromItsPopup()
{
    Window window;
    show(window);
    window.cook->setState(RibbonGroup::Collapsed);
    QSignalSpy spy(window.boil, &QAction::triggered);
    auto *drop = window.cook->findChild<RibbonButton *>(QString(), Qt::FindDirectChildrenOnly);
    QTest::mouseClick(drop, Qt::LeftButton);
    QVERIFY(window.cook->isPopupOpen());
    QWidget *popup = QApplication::activePopupWidget();
    QVERIFY(popup);
    const QList<RibbonButton *> buttons = popup->findChildren<RibbonButton *>();
    QCOMPARE(buttons.size(), 3);
    QVERIFY(popup->rect().contains(buttons.last()->mapTo(popup, buttons.last()->rect().center())));
    QTest::mouseClick(buttons.first(), Qt::LeftButton);
    QCOMPARE(spy.size(), 1);
    QVERIFY(!window.cook->isPopupOpen());
    window.resize(1100, 600);
    QTRY_COMPARE(window.cook->state(), RibbonGroup::Full);
    QTRY_VERIFY(buttons.first()->isVisible());
}

void TestRibbon::hiddenCommandLeavesNoGap()
{
    Window window;
    show(window);
    const int before = window.cook->width();
    window.steam->setVisible(false);
    QTRY_VERIFY(window.cook->width() < before);
    window.steam->setVisible(true);
    QTRY_COMPARE(window.cook->width(), before);
}

void TestRibbon::minimisedRibbonFloatsAPage()
{
    Window window;
    show(window);
    RibbonBar *bar = window.ribbonBar();
    const int tall = bar->height();
    const QPoint tab = bar->tabBar()->tabRect(0).center();
    QTest::mouseDClick(bar->tabBar(), Qt::LeftButton, {}, tab);
    QVERIFY(bar->isMinimized());
    QTRY_VERIFY(bar->height() < tall / 2);
    QVERIFY(!window.page->isVisible());
    bar->setCurrentPage(1);
    QTest::mouseClick(bar->tabBar(), Qt::LeftButton, {}, tab);
    QVERIFY(bar->isPageFloating());
    QVERIFY(window.page->isVisible());
    QTest::mouseClick(static_cast<QTextEdit *>(window.centralWidget())->viewport(), Qt::LeftButton,
                      {}, QPoint(20, 400));
    QVERIFY(!bar->isPageFloating());
    QVERIFY(!window.page->isVisible());
    QTest::keyClick(&window, Qt::Key_F1, Qt::ControlModifier);
    QVERIFY(!bar->isMinimized());
    QTRY_COMPARE(bar->height(), tall);
    QVERIFY(window.page->isVisible());
}

void TestRibbon::altAndArrowsReachEveryCommand()
{
    Window window;
    show(window);
    QSignalSpy boiled(window.boil, &QAction::triggered);
    QSignalSpy fried(window.fry, &QAction::triggered);
    QTest::keyClick(&window, Qt::Key_Alt);
    QTRY_COMPARE(QApplication::focusWidget(), static_cast<QWidget *>(window.ribbonBar()->tabBar()));
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Right);
    QCOMPARE(window.ribbonBar()->currentPage(), 1);
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Left);
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Down);
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Space);
    QCOMPARE(boiled.size(), 1);
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Right);
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Space);
    QCOMPARE(fried.size(), 1);
    // Tab goes through the whole page and out of it again.
    QSet<QWidget *> met;
    for (int step = 0; step < 60; ++step) {
        met.insert(QApplication::focusWidget());
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
    }
    QVERIFY(met.contains(window.combo));
    QVERIFY(met.contains(window.slider->slider()));
    // Alt with a key or a click between is not Alt alone.
    window.centralWidget()->setFocus();
    QTest::keyPress(&window, Qt::Key_Alt);
    QTest::mouseClick(static_cast<QTextEdit *>(window.centralWidget())->viewport(), Qt::LeftButton);
    QTest::keyRelease(&window, Qt::Key_Alt);
    QCOMPARE(QApplication::focusWidget(), window.centralWidget());
    QTest::keyClick(&window, Qt::Key_F10);
    QCOMPARE(QApplication::focusWidget(), static_cast<QWidget *>(window.ribbonBar()->tabBar()));
}

void TestRibbon::hidingThePageLeavesAVisibleOne()
{
    Window window;
    show(window);
    RibbonBar *bar = window.ribbonBar();
    bar->setCurrentPage(1);
    QSignalSpy spy(bar, &RibbonBar::currentPageChanged);
    bar->setPageVisible(1, false);
    QCOMPARE(bar->currentPage(), 0);
    QCOMPARE(spy.size(), 1);
    bar->setCurrentPage(1);
    QCOMPARE(bar->currentPage(), 0);
    bar->setPageVisible(1, true);
    bar->setCurrentPage(1);
    QCOMPARE(bar->currentPage(), 1);
}

void TestRibbon::backstageClosesOnEscapeAndCommand()
{
    Window window;
    QAction save(QStringLiteral("Save"));
    RibbonButton *button = window.backstage()->addCommand(&save);
    QShortcut other(Qt::Key_Escape, &window);
    QSignalSpy otherSpy(&other, &QShortcut::activated);
    show(window);
    window.backstage()->setOpen(true);
    QCOMPARE(window.backstage()->geometry(), window.rect());
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Escape);
    QVERIFY(!window.backstage()->isVisible() && otherSpy.isEmpty());
    window.backstage()->setOpen(true);
    QSignalSpy spy(&save, &QAction::triggered);
    QTest::mouseClick(button, Qt::LeftButton);
    QCOMPARE(spy.size(), 1);
    QVERIFY(!window.backstage()->isVisible());
}

void TestRibbon::sliderTakesWheelTypingAndDoubleClick()
{
    SliderField field(QStringLiteral("Size"), {0.1, 100, 0.1, 10, 30, 1, {}});
    field.resize(300, 30);
    show(field);
    QSignalSpy spy(&field, &SliderField::valueChanged);
    const QPointF middle = field.slider()->rect().center();
    QWheelEvent wheel(middle, field.slider()->mapToGlobal(middle), {}, QPoint(0, 120), Qt::NoButton,
                      Qt::NoModifier, Qt::NoScrollPhase, false);
    QApplication::sendEvent(field.slider(), &wheel);
    QCOMPARE(field.value(), 30.1);
    QCOMPARE(spy.size(), 1);
    field.number()->setFocus();
    field.number()->selectAll();
    QTest::keyClicks(field.number(), QStringLiteral("12,5"));
    QTest::keyClick(field.number(), Qt::Key_Return);
    QCOMPARE(field.value(), 12.5);
    QCOMPARE(spy.size(), 2);
    QTest::mouseDClick(field.slider(), Qt::LeftButton);
    QCOMPARE(field.value(), 30.0);
    spy.clear();
    field.setValue(30.0);
    field.showValue(50.0);
    QCOMPARE(spy.size(), 0);
    QCOMPARE(field.number()->value(), 50.0);
    field.setValue(std::numeric_limits<double>::quiet_NaN());
    QCOMPARE(field.value(), 50.0);
}

void TestRibbon::numberRefusesInvalidText_data()
{
    QTest::addColumn<QString>("typed");
    QTest::addColumn<double>("value");
    QTest::newRow("comma") << "3,25" << 3.25;
    QTest::newRow("point") << "3.25" << 3.25;
    QTest::newRow("letters") << "abc" << 5.0;
    QTest::newRow("letters inside") << "1a.5" << 1.5;
    QTest::newRow("empty") << "" << 5.0;
    QTest::newRow("sign alone") << "-" << 5.0;
    QTest::newRow("two points") << "1.2.3" << 5.0;
    QTest::newRow("above") << "999" << 10.0;
    QTest::newRow("below") << "-5" << -2.0;
}

void TestRibbon::numberRefusesInvalidText()
{
    QFETCH(QString, typed);
    QFETCH(double, value);
    NumberField field;
    field.setRange(-2, 10);
    field.setDecimals(2);
    field.setSuffix(QStringLiteral(" mm"));
    field.setValue(5);
    show(field);
    field.setFocus();
    field.selectAll();
    QTest::keyClick(&field, Qt::Key_Delete);
    QTest::keyClicks(&field, typed);
    QTest::keyClick(&field, Qt::Key_Return);
    QCOMPARE(field.value(), value);
    QVERIFY(field.text().endsWith(QStringLiteral(" mm")));
}

void TestRibbon::themeReachesOpenWindows()
{
    auto *style = static_cast<Office2013Style *>(QApplication::style());
    Window window;
    show(window);
    style->setTheme(Office2013Style::Dark);
    QTRY_VERIFY(window.palette().color(QPalette::Window).lightness() < 80);
    const QImage dark = window.grab().toImage();
    style->setTheme(Office2013Style::Light);
    style->setAccentColor(Qt::darkGreen);
    QTRY_COMPARE(window.palette().color(QPalette::Highlight), QColor(Qt::darkGreen));
    const QImage light = window.grab().toImage();
    const QPoint chrome(window.width() / 2, 10);
    QVERIFY(dark.pixelColor(chrome).lightness() < 80);
    QVERIFY(light.pixelColor(chrome).lightness() > 200);
}

void TestRibbon::focusRingComesWithTheKeyboard()
{
    QWidget window;
    QVBoxLayout column(&window);
    QCheckBox box(QStringLiteral("Heat"));
    QLineEdit text;
    column.addWidget(&box);
    column.addWidget(&text);
    show(window);
    QTest::mouseClick(&text, Qt::LeftButton);
    const QImage without = box.grab().toImage();
    QTest::mouseClick(&box, Qt::LeftButton);
    QTest::mouseClick(&box, Qt::LeftButton);
    QVERIFY(box.hasFocus());
    QCOMPARE(box.grab().toImage(), without);
    QTest::keyClick(&box, Qt::Key_Tab);
    QTest::keyClick(&text, Qt::Key_Backtab);
    QVERIFY(box.hasFocus());
    QVERIFY(box.grab().toImage() != without);
}

QTEST_MAIN(TestRibbon)
#include "tst_ribbon.moc"
