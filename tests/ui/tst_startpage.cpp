#include "ui/startpage.h"

#include "base/qevsettings.h"
#include "files/filethumbnail.h"
#include "files/workspacefile.h"
#include "files/workspacethumbnail.h"
#include "relief/grid/relief.h"
#include "theme.h"
#include "ui/aboutbox.h"

#include <QCheckBox>
#include <QLabel>
#include <QPushButton>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QToolButton>
#include <QtTest>

using namespace marlowen;

namespace {

/// A dome on empty ground, its centre in the upper half of the picture (high row numbers).
std::unique_ptr<Relief> dome(int width, int height)
{
    auto relief = std::make_unique<Relief>(width, height);
    const double radius = height * 0.2;
    float *heights = relief->heights().data();
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            const double r = std::hypot(x - width * 0.5, y - height * 0.75) / radius;
            heights[relief->index(x, y)] = r < 1 ? float(radius * std::sqrt(1 - r * r)) : 0.0F;
        }
    }
    return relief;
}

} // namespace

class TestStartPage : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { wearTheme(false); }

    void init()
    {
        QevSettings settings;
        settings.clear();
        settings.sync();
        m_folder = std::make_unique<QTemporaryDir>();
        m_page = std::make_unique<StartPage>();
        m_page->resize(760, 560);
    }

    void cleanup() { m_page.reset(); }

    void newAndOpenEmitTheirSignals()
    {
        _show();
        QSignalSpy made(m_page.get(), &StartPage::NewClicked);
        QSignalSpy opened(m_page.get(), &StartPage::OpenClicked);
        auto buttons = m_page->findChildren<QPushButton *>();
        buttons.removeIf([](const QPushButton *button) { return button->isHidden(); });
        QCOMPARE(buttons.size(), 2);
        QTest::keyClick(buttons[0], Qt::Key_Space);
        QTest::mouseClick(buttons[1], Qt::LeftButton);
        QCOMPARE(made.size(), 1);
        QCOMPARE(opened.size(), 1);
    }

    void showOnStartupIsRemembered()
    {
        QVERIFY(StartPage::shownAtStartup());
        _show();
        auto *box = m_page->findChild<QCheckBox *>();
        QCOMPARE(box->text(), QStringLiteral("Show on Startup"));
        QVERIFY(box->isChecked());
        QTest::keyClick(box, Qt::Key_Space);
        QVERIFY(!StartPage::shownAtStartup());
        QCOMPARE(QevSettings().value("/startwizard/startup").toBool(), false);
    }

    void recentFilesAreListedNewestFirstAndOpen()
    {
        const QString older = _savedDome(QStringLiteral("older.scp"));
        const QString newer = _savedDome(QStringLiteral("newer.scp"));
        _show();
        QCOMPARE(_names(), (QStringList{"newer.scp", "older.scp"}));
        QSignalSpy recent(m_page.get(), &StartPage::RecentClicked);
        QTest::mouseClick(_cards()[1], Qt::LeftButton);
        QCOMPARE(recent[0][0].toString(), QFileInfo(older).canonicalFilePath());
        QTest::keyClick(_cards()[0], Qt::Key_Space);
        QCOMPARE(recent[1][0].toString(), QFileInfo(newer).canonicalFilePath());
    }

    void missingFileIsMarkedAndCannotBeOpened()
    {
        const QString path = _savedDome(QStringLiteral("gone.scp"));
        QVERIFY(QFile::remove(path));
        QevSettings().setLastFile(path); // its canonical path is empty now
        _show();
        QCOMPARE(_names(), QStringList{"gone.scp"});
        QVERIFY(!_cards()[0]->isEnabled());
        QVERIFY(_cards()[0]->toolTip().contains("no longer there"));
        QSignalSpy recent(m_page.get(), &StartPage::RecentClicked);
        QTest::mouseClick(_cards()[0], Qt::LeftButton);
        QCOMPARE(recent.size(), 0);
    }

    void theListFollowsWhatWasOpenedMeanwhile()
    {
        _show();
        QVERIFY(m_page->findChild<QLabel *>(QStringLiteral("nothing"))->isVisible());
        QVERIFY(_names().isEmpty());
        _savedDome(QStringLiteral("later.scp"));
        m_page->hide();
        _show();
        QCOMPARE(_names(), QStringList{"later.scp"});
    }

    void cardsWrapInANarrowPage()
    {
        for (int i = 0; i < 5; ++i)
            _savedDome(QStringLiteral("a rather long name of a relief %1.scp").arg(i));
        m_page->resize(420, 560);
        _show();
        for (const QToolButton *card : _cards())
            QVERIFY(card->mapTo(m_page.get(), card->rect().topRight()).x() < m_page->width());
        QCOMPARE(_cards()[2]->x(), _cards()[0]->x());
        m_page->resize(1100, 560);
        QCoreApplication::processEvents();
        QCOMPARE(_cards()[4]->y(), _cards()[0]->y());
    }

    void theMaterialInUseIsMarked()
    {
        m_page->showMaterial(QStringLiteral("gold"));
        m_page->showMaterial(QStringLiteral("obsidian"));
        QStringList marked;
        for (const QToolButton *ball : m_page->findChildren<QToolButton *>()) {
            if (ball->isChecked())
                marked << ball->accessibleName();
        }
        QCOMPARE(marked, QStringList{"obsidian"});
    }

    void thumbnailsShowTheReliefRowZeroAtTheBottom()
    {
        const QString path = _savedDome(QStringLiteral("dome.scp"), 300, 200);
        const QImage image = workspaceThumbnail(path, 60);
        QCOMPARE(image.size(), QSize(60, 40));
        QCOMPARE(qAlpha(image.pixel(30, 10)), 255);
        QCOMPARE(qAlpha(image.pixel(30, 32)), 0);
        QCOMPARE(qAlpha(image.pixel(2, 2)), 0);
        // Lit from the top left.
        QVERIFY(qGray(image.pixel(26, 7)) > qGray(image.pixel(34, 13)) + 30);
    }

private:
    QString _savedDome(const QString &name, int width = 120, int height = 80)
    {
        const QString path = m_folder->filePath(name);
        const bool saved = bool(saveWorkspace(*dome(width, height), path));
        QevSettings().setLastFile(path);
        return saved ? path : QString();
    }

    void _show()
    {
        m_page->show();
        QVERIFY(QTest::qWaitForWindowExposed(m_page.get()));
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }

    QList<QToolButton *> _cards()
    {
        return m_page->findChildren<QToolButton *>(QStringLiteral("recentFile"));
    }

    QStringList _names()
    {
        QStringList names;
        for (const QToolButton *card : _cards())
            names << card->accessibleName();
        return names;
    }

    std::unique_ptr<QTemporaryDir> m_folder;
    std::unique_ptr<StartPage> m_page;
};

QTEST_MAIN(TestStartPage)
#include "tst_startpage.moc"
