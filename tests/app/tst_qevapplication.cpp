#include "app/qef.h"
#include "app/qevapplication.h"
#include "base/datafolder.h"
#include "base/sessionlog.h"
#include "ui/mainwindow.h"
#include "ui/personathand.h"

#include <QDir>
#include <QFile>
#include <QFileOpenEvent>
#include <QMessageBox>
#include <QTest>
#include <QTimer>

#include <functional>
#include <stdexcept>

using namespace marlowen;

namespace {

QByteArray sessionLog()
{
    logFlush();
    QFile file(dataFolder() +
               QStringLiteral("/marlowen3_%1.log").arg(QCoreApplication::applicationPid(), 0, 16));
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

/// Runs a function when it gets a user event.
class Receiver : public QObject
{
public:
    explicit Receiver(std::function<void()> act)
        : m_act(std::move(act))
    {
    }

    bool event(QEvent *event) override
    {
        if (event->type() == QEvent::User)
            m_act();
        return QObject::event(event);
    }

private:
    std::function<void()> m_act;
};

QStringList debugMessages;

} // namespace

class TestQevApplication : public QObject
{
    Q_OBJECT

private slots:
    void fileOpenBeforeTheWindowIsDropped()
    {
        QFileOpenEvent request(QStringLiteral("/tmp/early.xyz"));
        QVERIFY(!QCoreApplication::sendEvent(qApp, &request));
        QVERIFY(!sessionLog().contains("early.xyz"));
    }

    void fileOpenReachesTheWindow()
    {
        {
            MainWindow window;
            _application()->setMainWindow(&window);
            PersonAtHand person;
            QFileOpenEvent request(QStringLiteral("/tmp/while.xyz"));
            QVERIFY(!QCoreApplication::sendEvent(qApp, &request));
            QTRY_COMPARE(person.titles.size(), 1); // the window is not shown yet
            QVERIFY(sessionLog().contains("Warning: Unknown file type"));
            QVERIFY(sessionLog().contains("/tmp/while.xyz"));
        }
        QFileOpenEvent request(QStringLiteral("/tmp/after.xyz"));
        QVERIFY(!QCoreApplication::sendEvent(qApp, &request));
        QVERIFY(!sessionLog().contains("after.xyz"));
    }

    void fileOpenDuringADialogWaitsForItsEnd()
    {
        MainWindow window;
        _application()->setMainWindow(&window);
        QMessageBox box;
        box.open();
        QFileOpenEvent request(QStringLiteral("/tmp/later.xyz"));
        QCoreApplication::sendEvent(qApp, &request);
        QVERIFY(!sessionLog().contains("later.xyz"));
        PersonAtHand person;
        box.close();
        QTRY_VERIFY(sessionLog().contains("later.xyz"));
    }

    void traceNamesClassAndEventButNoTimers()
    {
        QEF trace;
        QObject receiver;
        receiver.installEventFilter(&trace);
        const auto previous =
            qInstallMessageHandler([](QtMsgType, const QMessageLogContext &,
                                      const QString &message) { debugMessages.append(message); });
        QEvent user(QEvent::User);
        QTimerEvent timer(1);
        QCoreApplication::sendEvent(&receiver, &user);
        QCoreApplication::sendEvent(&receiver, &timer);
        qInstallMessageHandler(previous);
        QCOMPARE(debugMessages, QStringList{"class = QObject event is User"});
    }

    void otherExceptionsPassThrough()
    {
        Receiver receiver([] { throw std::runtime_error("other"); });
        QEvent user(QEvent::User);
        QVERIFY_THROWS_EXCEPTION(std::runtime_error, QCoreApplication::sendEvent(&receiver, &user));
    }

    // Closes the session log: the last one.
    void thrownTextIsShownAndClosesEverything()
    {
        QWidget window;
        window.show();
        QString title;
        QString text;
        QTimer poll;
        connect(&poll, &QTimer::timeout, this, [&] {
            if (auto *box = qobject_cast<QMessageBox *>(QApplication::activeModalWidget())) {
                title = box->windowTitle();
                text = box->text();
                box->accept();
            }
        });
        poll.start(20);
        Receiver receiver([] { throw "Out of wax"; });
        QEvent user(QEvent::User);
        QVERIFY(!QCoreApplication::sendEvent(&receiver, &user));
        QCOMPARE(title, QStringLiteral("Fatal Error"));
        QCOMPARE(text, QStringLiteral("Out of wax"));
        QVERIFY(!window.isVisible());
        const auto lines = sessionLog().trimmed().split('\n');
        QCOMPARE(lines.value(lines.size() - 2), QByteArray("Critical: Out of wax"));
        QVERIFY(lines.last().startsWith("Closing Marlowen 3 log: "));
    }

private:
    static QevApplication *_application() { return qobject_cast<QevApplication *>(qApp); }
};

int main(int argc, char **argv)
{
    QevApplication app(argc, argv);
    TestQevApplication test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_qevapplication.moc"
