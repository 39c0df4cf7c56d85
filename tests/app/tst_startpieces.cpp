#include "app/brindlemarkstyle.h"
#include "app/launch.h"
#include "app/openglprobe.h"
#include "ui/themeswitcher.h"

#include <QApplication>
#include <QPointer>
#include <QTest>

using namespace marlowen;

using Kind = LaunchStep::Kind;

class TestStartPieces : public QObject
{
    Q_OBJECT

private slots:
    void versionNumber_data()
    {
        QTest::addColumn<QByteArray>("text");
        QTest::addColumn<double>("number");
        QTest::newRow("vendor word") << QByteArray("2.1 Mesa 22.3.6") << 2.1;
        QTest::newRow("too old") << QByteArray("2.0") << 2.0;
        QTest::newRow("second point ends it") << QByteArray("1.1.0") << 1.1;
        QTest::newRow("profile") << QByteArray("4.5 (Compatibility Profile) Mesa") << 4.5;
        QTest::newRow("two digits") << QByteArray("10.25") << 10.25;
        QTest::newRow("no fraction") << QByteArray("3") << 3.0;
        QTest::newRow("embedded system") << QByteArray("OpenGL ES 3.2") << 0.0;
        QTest::newRow("words that read as numbers") << QByteArray("nan") << 0.0;
        QTest::newRow("no exponent") << QByteArray("1e5") << 1.0;
        QTest::newRow("lone point") << QByteArray(".") << 0.0;
        QTest::newRow("empty") << QByteArray("") << 0.0;
    }

    void versionNumber()
    {
        QFETCH(QByteArray, text);
        QFETCH(double, number);
        QCOMPARE(leadingVersionNumber(text), number);
    }

    void arguments_data()
    {
        QTest::addColumn<QStringList>("given");
        QTest::addColumn<QList<LaunchStep>>("steps");
        const QString there = QCoreApplication::applicationFilePath();
        const LaunchStep open{Kind::OpenFile, there};
        const LaunchStep path{Kind::ExportPath, "out"};
        using Steps = QList<LaunchStep>;

        QTest::newRow("none") << QStringList{} << Steps{};
        QTest::newRow("file") << QStringList{there} << Steps{open};
        const LaunchStep missing{Kind::MissingFile, "no"};
        QTest::newRow("missing file") << QStringList{"no"} << Steps{missing};
        QTest::newRow("export path") << QStringList{there, "out"} << Steps{path, open};
        QTest::newRow("missing file, export path")
            << QStringList{"no", "out"} << Steps{path, missing};
        QTest::newRow("second string")
            << QStringList{there, "out", "text"}
            << Steps{{Kind::SecondIntegrationString, "text"}, path, open};
        const Steps integration{{Kind::IntegrationString, "first"},
                                {Kind::ImportFile, "model.stl"},
                                path,
                                {Kind::SecondIntegrationString, "text"},
                                {Kind::Raise, {}}};
        QTest::newRow("integration")
            << QStringList{"first", "model.stl", "out", "text"} << integration;
        QTest::newRow("more is ignored")
            << QStringList{"first", "model.stl", "out", "text", "x", "y"} << integration;
    }

    void arguments()
    {
        QFETCH(QStringList, given);
        QFETCH(QList<LaunchStep>, steps);
        QCOMPARE(launchSteps(QStringList{"marlowen"} + given), steps);
    }

    void themeSwitchChangesStyleAndPalette()
    {
        themeSwitcher::setStyleFactory([](int mode) { return new BrindlemarkStyle(mode); });
        themeSwitcher::applyTheme(1);
        const QPointer<QStyle> dark = QApplication::style();
        QVERIFY(qApp->palette().color(QPalette::Window).lightness() < 100);
        themeSwitcher::applyTheme(1);
        QCOMPARE(QApplication::style(), dark.data());
        themeSwitcher::applyTheme(0);
        QVERIFY(qApp->palette().color(QPalette::Window).lightness() > 150);
        QVERIFY(QApplication::style() != dark.data());
    }
};

QTEST_MAIN(TestStartPieces)
#include "tst_startpieces.moc"
