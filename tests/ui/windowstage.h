#pragma once

#include "base/qevsettings.h"
#include "files/workspacefile.h"
#include "personathand.h"
#include "relief/grid/relief.h"
#include "relief/operations/operationtable.h"
#include "render/views/flatwin.h"
#include "render/views/sculptwin.h"
#include "ui/commandset.h"
#include "ui/mainwindow.h"
#include "ui/ribbon/office2013style.h"
#include "ui/ribbon/ribbonbackstage.h"
#include "ui/ribbon/ribbonbar.h"
#include "ui/ribbon/ribbonbutton.h"
#include "ui/ribbon/ribbonpage.h"

#include <QtTest>
#include <QtWidgets>

using namespace marlowen;

/// The real window with a folder that holds the workspace dome.scp and the picture plate.PNG, and a
/// person's hand on it. Each test function has the files anew and no settings. The window stays
/// from function to function, because making and showing one takes longer than most functions do; a
/// function that changes what no other expects makes a new one with makeWindow() or drops it.
class WindowStage : public QObject
{
protected:
    static constexpr int side = 96; ///< cells of the dome's relief

    void prepare()
    {
        QevSettings().clear();
        m_folder = std::make_unique<QTemporaryDir>();
        QVERIFY(saveWorkspace(*dome(), path("dome.scp")));
        QImage picture(80, 60, QImage::Format_RGB32);
        picture.fill(Qt::black);
        QPainter(&picture).fillRect(20, 15, 40, 30, Qt::gray);
        QVERIFY(picture.save(path("plate.PNG"), "PNG"));
        if (!m_window)
            return makeWindow();
        if (m_window->backstage()->isVisible())
            m_window->toggleBackStage();
        m_window->commands()["deposit_tool"]->trigger();
    }
    void makeWindow()
    {
        QApplication::setStyle(new Office2013Style);
        m_window.reset();
        m_window = std::make_unique<MainWindow>();
    }
    void dropAfterFailure()
    {
        if (QTest::currentTestFailed())
            m_window.reset();
    }

    void show()
    {
        if (m_window->isVisible())
            return;
        m_window->resize(1100, 700);
        m_window->show();
        QVERIFY(QTest::qWaitForWindowExposed(m_window.get()));
        m_window->activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(m_window.get()));
        QTest::qWait(200); // the docks take their widths a moment later
    }
    /// Without the work that is open. Waits until both views have drawn the relief, then fits it.
    void open(const char *name)
    {
        const auto pictures = [this](int before3d, int before2d) {
            return m_window->sculptWin()->counters().pictures > before3d &&
                   m_window->flatWin()->counters().pictures > before2d;
        };
        const int before3d = m_window->sculptWin()->counters().pictures;
        const int before2d = m_window->flatWin()->counters().pictures;
        PersonAtHand person;
        person.answers = {QMessageBox::Discard};
        QVERIFY(m_window->openFile(path(name), 0));
        m_window->ribbonBar()->setCurrentPage(WindowPages::SculptingTools);
        QTRY_VERIFY(pictures(before3d, before2d));
        m_window->zoomAll();
    }
    void openDome()
    {
        show();
        open("dome.scp");
    }

    RibbonButton *buttonOf(const QAction *action) const
    {
        for (RibbonButton *button : m_window->findChildren<RibbonButton *>()) {
            if (button->defaultAction() == action)
                return button;
        }
        return nullptr;
    }
    /// Goes to the page of the command's button and presses it.
    void click(const char *command)
    {
        RibbonButton *button = buttonOf(m_window->commands()[command]);
        QVERIFY2(button, command);
        for (int page = 0; page < m_window->ribbonBar()->pageCount(); ++page) {
            if (m_window->ribbonBar()->page(page)->isAncestorOf(button))
                m_window->ribbonBar()->setCurrentPage(page);
        }
        if (m_window->backstage()->isAncestorOf(button) && !m_window->backstage()->isVisible())
            m_window->toggleBackStage();
        QTRY_VERIFY2(button->isVisible(), command);
        QVERIFY2(button->isEnabled(), command);
        QTest::mouseClick(button, Qt::LeftButton);
    }
    void stroke(ReliefView &view, QPoint from, QPoint to)
    {
        QTest::mousePress(&view, Qt::LeftButton, {}, from);
        for (int step = 1; step <= 4; ++step)
            QTest::mouseMove(&view, from + (to - from) * step / 4);
        QTest::mouseRelease(&view, Qt::LeftButton, {}, to);
    }
    void modify() { QVERIFY(bench().apply(operation("zScale", {{relief().zScale + 0.5}}))); }

    Workbench &bench() { return m_window->workbench(); }
    Relief &relief() { return *bench().relief(); }
    QByteArray heights() { return bytesOf(relief().heights()); }
    static QByteArray bytesOf(const GridLayer &layer)
    {
        return QByteArray(reinterpret_cast<const char *>(layer.constData()),
                          layer.size() * qsizetype(sizeof(float)));
    }
    QString path(const char *name) const { return m_folder->filePath(QLatin1String(name)); }
    template <typename T>
    T *child(const char *name = "") const
    {
        return m_window->findChild<T *>(QLatin1String(name));
    }

    std::unique_ptr<QTemporaryDir> m_folder;
    std::unique_ptr<MainWindow> m_window;

private:
    /// A dome on an empty ground.
    static std::unique_ptr<Relief> dome()
    {
        auto relief = std::make_unique<Relief>(side, side);
        float *height = relief->heights().data();
        const int middle = side / 2;
        for (int row = 0; row < side; ++row) {
            for (int column = 0; column < side; ++column) {
                const double x = (column - middle) / (side * 0.45);
                const double y = (row - middle) / (side * 0.45);
                const double rest = 1.0 - x * x - y * y;
                *height++ = rest > 0.0 ? float(20.0 * std::sqrt(rest) + 1.0) : 0.0F;
            }
        }
        relief->referenceLayer().copyFrom(relief->heights());
        return relief;
    }
};
