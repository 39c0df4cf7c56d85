#include "base/datafolder.h"
#include "base/qevsettings.h"
#include "net/testserver.h"
#include "ui/commandset.h"
#include "ui/controllers/updatecontroller.h"

#include <QtTest>
#include <QtWidgets>

using namespace marlowen;

namespace {

/// The visible dialog over the window; waits for it.
template <typename Dialog>
Dialog *shown(QWidget &window)
{
    Dialog *found = nullptr;
    const auto look = [&] {
        for (Dialog *dialog : window.findChildren<Dialog *>())
            found = dialog->isVisible() ? dialog : found;
        return found != nullptr;
    };
    if (!QTest::qWaitFor(look))
        qWarning("no dialog came up");
    return found;
}

void click(QWidget *dialog, const QString &text)
{
    for (auto *button : dialog->findChildren<QPushButton *>()) {
        if (button->text().remove(QLatin1Char('&')) == text)
            return QTest::mouseClick(button, Qt::LeftButton);
    }
    QFAIL(qPrintable(text));
}

} // namespace

class TestUpdateController : public QObject
{
    Q_OBJECT

    TestServer m_server;
    std::unique_ptr<QMainWindow> m_window;
    CommandSet *m_commands = nullptr;
    UpdateController *m_updates = nullptr;

    void _offer(const QByteArray &version)
    {
        m_server.answer("/checkmarlowen.php",
                        jsonReply("{\"status\":\"OK\",\"version\":[\"" + version + "\"]}"));
    }

private slots:
    void init()
    {
        QDir(downloadFolder()).removeRecursively();
        QevSettings().clear();
        m_server.requests.clear();
        m_window = std::make_unique<QMainWindow>();
        m_commands = new CommandSet(m_window.get());
        UpdateController::addCommands(*m_commands);
        m_updates = new UpdateController(*m_commands, m_window.get(), m_server.url());
        m_window->show();
        QVERIFY(QTest::qWaitForWindowExposed(m_window.get()));
    }

    void anUpdateIsFetchedAndOffered()
    {
        _offer("3.001");
        m_server.act("/getmarlowen.php", [this](QTcpSocket &socket) {
            const bool readme = m_server.requests.last().contains("name=readme");
            socket.write(fileReply("x", readme ? "What is new" : "MZ program"));
        });
        QVERIFY(!(*m_commands)["installUpdate"]->isEnabled());
        (*m_commands)["checkForUpdates"]->trigger();
        auto *prompt = shown<QMessageBox>(*m_window);
        QVERIFY(prompt);
        QCOMPARE(prompt->windowTitle(), QStringLiteral("Update Available"));
        QCOMPARE(prompt->text(), QStringLiteral("A Marlowen 3 update is available."));
        click(prompt, QStringLiteral("Upgrade Now"));
        QTRY_VERIFY(m_window->findChild<QPlainTextEdit *>());
        auto *readme = m_window->findChild<QPlainTextEdit *>();
        QCOMPARE(readme->toPlainText(), QStringLiteral("What is new"));
        QVERIFY(QFile::exists(downloadFolder() + QStringLiteral("/marlowen_3_001.exe")));
        QVERIFY((*m_commands)["installUpdate"]->isEnabled());
        QVERIFY((*m_commands)["checkForUpdates"]->isEnabled());
        click(readme->window(), QStringLiteral("Later"));
    }

    void cancelEndsTheDownload()
    {
        _offer("3.001");
        m_server.act("/getmarlowen.php", [](QTcpSocket &) {}); // never answers
        (*m_commands)["checkForUpdates"]->trigger();
        click(shown<QMessageBox>(*m_window), QStringLiteral("Upgrade Now"));
        auto *progress = shown<QProgressDialog>(*m_window);
        QVERIFY(progress);
        QTRY_COMPARE(m_server.requests.size(), 2);
        QVERIFY(!(*m_commands)["checkForUpdates"]->isEnabled());
        click(progress, QStringLiteral("Cancel"));
        QVERIFY((*m_commands)["checkForUpdates"]->isEnabled());
        QCOMPARE(QDir(downloadFolder()).entryList(QDir::Files | QDir::Hidden), QStringList());
    }

    void theSameVersionSaysSoQuietly()
    {
        _offer("3.000.00019");
        QSignalSpy status(m_updates, &UpdateController::said);
        m_updates->checkForUpdates();
        QCOMPARE(status.last()[0].toString(), QStringLiteral("There is no newer version."));
        QVERIFY(m_window->findChildren<QDialog *>().isEmpty());
    }

    void failuresAreShownOnlyOnRequest()
    {
        m_server.answer("/checkmarlowen.php", jsonReply("{\"status\":\"BUSY\"}"));
        QevSettings().setValue(QStringLiteral("updates/daily"), true);
        m_updates->start();
        QCOMPARE(m_server.requests.size(), 1);
        QVERIFY(m_window->findChildren<QDialog *>().isEmpty());
        m_updates->start(); // the day has not passed
        QCOMPARE(m_server.requests.size(), 1);
        m_updates->checkForUpdates();
        auto *box = shown<QMessageBox>(*m_window);
        QCOMPARE(box->windowTitle(), QStringLiteral("Failed"));
        QCOMPARE(box->text(), QStringLiteral("Check for update failed"));
    }

    void agreementIsAskedOnce()
    {
        m_updates->start();
        click(shown<QMessageBox>(*m_window), QStringLiteral("No"));
        QTRY_VERIFY(m_window->findChildren<QDialog *>().isEmpty());
        m_updates->start();
        QVERIFY(m_window->findChildren<QDialog *>().isEmpty());
        QVERIFY(m_server.requests.isEmpty());
        (*m_commands)["dailyUpdates"]->setChecked(true);
        _offer("3.000");
        m_updates->start();
        QCOMPARE(m_server.requests.size(), 1);
    }
};

QTEST_MAIN(TestUpdateController)
#include "tst_updatecontroller.moc"
