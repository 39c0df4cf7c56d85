#include "cliprocess.h"
#include "files/formats.h"
#include "files/heightmaps.h"
#include "files/workspacefile.h"

#include <QImage>

#include <algorithm>
#include <csignal>

#include <sys/stat.h>

using namespace marlowen;

namespace {

QImage disc()
{
    QImage image(60, 40, QImage::Format_RGB32);
    image.fill(Qt::black);
    for (int y = 0; y < 40; ++y) {
        for (int x = 0; x < 60; ++x) {
            if ((x - 30) * (x - 30) + (y - 20) * (y - 20) < 150)
                image.setPixel(x, y, qRgb(120 + x, 120 + x, 120 + x));
        }
    }
    return image;
}

} // namespace

class TestCli : public CliProcess
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        QVERIFY(QFile::exists(programPath("marlowen-cli")));
        QVERIFY(disc().save(_path("disc.png")));
        QVERIFY(disc().scaled(30, 20).save(_path("small.bmp")));
        _write("broken.png", _contents("disc.png").left(200));
        _write("precious.scp", "precious");
        QVERIFY(QDir(m_folder.path()).mkdir(QStringLiteral("folder.png")));
        for (const char *name :
             {"full.scp", "full.ptr", "full.stl", "full.obj", "full.pfm", "full.png"})
            QVERIFY(QFile::link(QStringLiteral("/dev/full"), _path(name)));
    }

    void convertWritesEveryFormat()
    {
        for (const char *name : {"out.scp", "out.ptr", "out.stl", "out.pfm", "out.PNG"}) {
            const Ran ran = _run({"convert", "disc.png", name, "--smoothing", "1.5", "--trim=1"});
            QCOMPARE(ran.errors, QByteArray());
            QCOMPARE(ran.status, 0);
        }
        const auto workspace = loadWorkspace(_path("out.scp"));
        const auto map = loadPfm(_path("out.pfm"));
        QVERIFY(workspace && map);
        QVERIFY(std::equal(map.value().values.begin(), map.value().values.end(),
                           workspace.value()->heights().constData()));
        QCOMPARE(_run({"convert", "out.ptr", "back.pfm"}).status, 0);
        QVERIFY(_contents("back.pfm") == _contents("out.pfm"));
        const QByteArray info = _run({"info", "out.ptr", "--json"}).output;
        for (const char *part : {"\"title\":\"out\"", "\"author\":\"\"", "\"units\":\"in.\"",
                                 "\"created\":\"20", "\"width\":60", "\"thumbnail\":\"60 x 40\""})
            QVERIFY2(info.contains(part), info);
        QCOMPARE(QImage(_path("out.PNG")).size(), QSize(60, 40));
        const QByteArray stl = _contents("out.stl");
        QVERIFY(stl.size() > 84 && (stl.size() - 84) % 50 == 0);
    }

    void ambiguousInputsAreErrors()
    {
        const Ran hidden = _script(QByteArray("# a\n# b\0c\n{\"do\":\"info\"}\n", 25));
        QCOMPARE(hidden.status, 1);
        QVERIFY(hidden.errors.contains("-:2: the line contains a NUL byte"));

        QCOMPARE(::mkfifo(qPrintable(_path("pipe.pfm")), 0600), 0);
        const Ran pipe = _run({"info", "pipe.pfm"});
        QCOMPARE(pipe.status, 1);
        QVERIFY(pipe.errors.contains("it is not a regular file"));

        const Ran rude = _run({"info", QString("no\x1b[2J") + QString(400, 'n') + ".scp"});
        QVERIFY(!rude.errors.contains('\x1b'));
        QVERIFY(rude.errors.contains("no\\x1b[2J"));
        QVERIFY(rude.errors.size() < 330);
    }

    void importOptionsShapeTheHeights_data()
    {
        QTest::addColumn<QStringList>("options");
        QTest::addColumn<QByteArray>("settings");
        QTest::newRow("flip") << QStringList{"--flip-y"} << QByteArray(R"("flipY":true)");
        QTest::newRow("invert") << QStringList{"--invert-z"} << QByteArray(R"("invertZ":true)");
        QTest::newRow("filled") << QStringList{"--no-transparency", "--smoothing", "2"}
                                << QByteArray(R"("transparency":false,"smoothing":2)");
        QTest::newRow("raised") << QStringList{"--raise-lower", "-30"}
                                << QByteArray(R"("raiseLower":-30)");
        QTest::newRow("tilted") << QStringList{"--tilt", "40,-20"}
                                << QByteArray(R"("tiltHorizontal":40,"tiltVertical":-20)");
        QTest::newRow("depth") << QStringList{"--depth=12.5"} << QByteArray(R"("depth":12.5)");
    }

    void importOptionsShapeTheHeights()
    {
        QFETCH(QStringList, options);
        QFETCH(QByteArray, settings);
        QCOMPARE(_run(QStringList{"convert", "disc.png", "a.pfm"} + options).status, 0);
        // The same by a script that opens with defaults and then changes the open import.
        const Ran ran =
            _script("{\"do\":\"open\",\"file\":\"disc.png\"}\n{\"do\":\"dump\",\"layer\":"
                    "\"heights\",\"file\":\"plain.pfm\"}\n{\"do\":\"import\"," +
                    settings + "}\n{\"do\":\"dump\",\"layer\":\"reference\",\"file\":\"b.pfm\"}\n");
        QCOMPARE(ran.errors, QByteArray());
        QVERIFY(_contents("a.pfm") == _contents("b.pfm"));
        QVERIFY(_contents("a.pfm") != _contents("plain.pfm"));
    }

    void convertResizesAndScales()
    {
        QCOMPARE(
            _run({"convert", "disc.png", "a.scp", "--size", "31x17", "--z-scale", "2.5"}).status,
            0);
        const QJsonObject info = _json(_run({"info", "a.scp", "--json"}).output);
        QCOMPARE(info["width"].toInt(), 31);
        QCOMPARE(info["height"].toInt(), 17);
        QCOMPARE(info["zScale"].toDouble(), 2.5);
        QCOMPARE(info["rangeMax"].toDouble(), 162.0);
    }

    void thumbnails()
    {
        for (const char *name : {"thumb.scp", "thumb.ptr"})
            QCOMPARE(_run({"convert", "disc.png", name}).status, 0);
        for (const char *name : {"thumb.scp", "thumb.ptr", "disc.png"}) {
            const Ran ran = _run({"thumbnail", name, "thumb.png", "--size", "32"});
            QCOMPARE(ran.errors, QByteArray());
            const QImage picture(_path("thumb.png"));
            QCOMPARE(picture.width(), 32);
            QVERIFY(qGray(picture.pixel(16, picture.height() / 2)) > 20);
            QVERIFY(QFile::remove(_path("thumb.png")));
        }
    }

    void wrongCommandLines_data()
    {
        QTest::addColumn<QString>("line");
        const QStringList lines{"transmogrify",
                                "convert disc.png",
                                "convert disc.png a.scp b.scp",
                                "convert disc.png a.xyz",
                                "convert disc.png a.jpg",
                                "convert disc.png a.scp --shiny",
                                "convert disc.png a.scp --trim",
                                "convert disc.png a.scp --trim 21",
                                "convert disc.png a.scp --smoothing nan",
                                "convert disc.png a.scp --flip-y=1",
                                "convert disc.png a.scp --tilt 5",
                                "convert disc.png a.scp --size 1x9",
                                "convert disc.png a.scp --z-scale 0",
                                "convert disc.png a.scp --z-scale 1e7",
                                "convert disc.png a.obj --solid 0",
                                "convert precious.scp a.scp --flip-y",
                                "info --json",
                                "run",
                                "thumbnail disc.png",
                                "thumbnail disc.png t.png --size 5000"};
        QTest::newRow("nothing") << QString();
        for (const QString &line : lines)
            QTest::newRow(qPrintable(line)) << line;
    }

    void wrongCommandLines()
    {
        QFETCH(QString, line);
        const Ran ran = _run(line.split(' ', Qt::SkipEmptyParts));
        QCOMPARE(ran.status, 2);
        QCOMPARE(ran.errors.count('\n'), 1);
        QVERIFY(ran.output.isEmpty());
    }

    void failedWork_data()
    {
        QTest::addColumn<QString>("line");
        QTest::addColumn<QByteArray>("named");
        const auto row = [](const QString &line, const QByteArray &named) {
            QTest::newRow(qPrintable(line + ", " + named)) << line << named;
        };
        row("convert none.png precious.scp", "none.png: ");
        row("convert none.png x.scp", "No such file or directory");
        row("convert broken.png precious.scp", "broken.png: ");
        row("convert precious.scp x.scp", "precious.scp: ");
        row("convert /dev/null x.scp", "/dev/null: ");
        row("convert . x.scp", ".: ");
        row("convert folder.png x.scp", "folder.png: ");
        row("convert disc.png no/x.scp", "no/x.scp: ");
        for (const char *ending : {"scp", "ptr", "stl", "obj", "pfm", "png"})
            row(QString("convert disc.png full.") + ending, QByteArray("full.") + ending + ": ");
        row("convert disc.png full.stl", "No space left on device");
        row("info none.scp", "none.scp: ");
        row("thumbnail broken.png x.scp", "broken.png: ");
        row("run none.txt", "none.txt: ");
    }

    void failedWork()
    {
        QFETCH(QString, line);
        QFETCH(QByteArray, named);
        const Ran ran = _run(line.split(' '));
        QCOMPARE(ran.status, 1);
        QCOMPARE(ran.errors.count('\n'), 1);
        QVERIFY2(ran.errors.contains(named), ran.errors);
        QCOMPARE(_contents("precious.scp"), QByteArray("precious"));
        QVERIFY(!QFile::exists(_path("x.scp")));
    }

    void interruptedExportLeavesTheOldFile()
    {
        QVERIFY(QDir(m_folder.path()).mkdir(QStringLiteral("export")));
        _write("wide.pfm", "Pf\n2500 2500\n-1\n" + QByteArray(4 * 2500 * 2500, 'A'));
        _write("export/precious.stl", "precious");
        const auto names = [this] { return QDir(_path("export")).entryList(QDir::Files); };
        QProcess process;
        process.setWorkingDirectory(m_folder.path());
        process.start(programPath("marlowen-cli"), {"convert", "wide.pfm", "export/precious.stl"});
        // The temporary has no name yet, but the process has it open.
        const QDir open(QStringLiteral("/proc/%1/fd").arg(process.processId()));
        const auto writes = [&] {
            const auto files = open.entryInfoList(QDir::Files | QDir::System);
            return std::ranges::any_of(files, [](const QFileInfo &file) {
                return file.symLinkTarget().contains(QLatin1String("/export/"));
            });
        };
        QVERIFY(QTest::qWaitFor(writes, 60000));
        QCOMPARE(::kill(static_cast<pid_t>(process.processId()), SIGINT), 0);
        QVERIFY(process.waitForFinished(60000));
        QVERIFY(process.exitStatus() == QProcess::NormalExit && process.exitCode() == 1);
        QCOMPARE(names(), QStringList{"precious.stl"});
        QCOMPARE(_contents("export/precious.stl"), QByteArray("precious"));
    }

    void outputThatCannotBeWrittenIsAFailure_data()
    {
        QTest::addColumn<QStringList>("arguments");
        QTest::newRow("info") << QStringList{"info", "disc.png"};
        QTest::newRow("help") << QStringList{"--help"};
        QTest::newRow("script") << QStringList{"run", "-"};
    }

    void outputThatCannotBeWrittenIsAFailure()
    {
        QFETCH(QStringList, arguments);
        QProcess process;
        process.setWorkingDirectory(m_folder.path());
        process.setStandardOutputFile(QStringLiteral("/dev/full"));
        process.start(programPath("marlowen-cli"), arguments);
        process.write("{\"do\":\"new\",\"width\":3,\"height\":3}\n{\"do\":\"info\"}\n");
        process.closeWriteChannel();
        QVERIFY(process.waitForFinished(60000));
        QCOMPARE(process.exitCode(), 1);
        const QByteArray errors = process.readAllStandardError();
        QCOMPARE(errors.count('\n'), 1);
        QVERIFY2(errors.contains("standard output"), errors);
        QCOMPARE(errors.startsWith("-:2: "), arguments[0] == QLatin1String("run"));
    }

    void scriptsStopAtTheFirstError_data()
    {
        QTest::addColumn<QByteArray>("line");
        QTest::addColumn<QByteArray>("wrong");
        const auto row = [](const char *name, const char *line, const char *wrong) {
            QTest::newRow(name) << QByteArray(line) << QByteArray(wrong);
        };
        row("no JSON", "new 3 4", "not JSON");
        row("no action", R"({"width":3})", "\"do\"");
        row("unknown action", R"({"do":"polish"})", "polish");
        row("unknown key", R"({"do":"new","width":3,"height":3,"depth":1})", "depth");
        row("out of range", R"({"do":"new","width":3,"height":3,"level":-1})", "level");
        row("too many cells", R"({"do":"new","width":2000000000,"height":2000000000})", "cells");
        row("no such layer", R"({"do":"dump","layer":"colour","file":"a.pfm"})", "colour|layer");
        row("no import", R"({"do":"accept"})", "import");
        row("import key", R"({"do":"open","file":"disc.png","import":{"trim":99}})", "trim");
        row("import of a workspace", R"({"do":"open","file":"precious.scp","import":{"trim":9}})",
            "precious.scp");
        row("missing file", R"({"do":"open","file":"none.png"})", "none.png");
        row("size mismatch", R"({"do":"load","layer":"mask","file":"two.pfm"})", "two.pfm");
        row("output folder", R"({"do":"save","file":"no/a.scp"})", "no/a.scp");
        row("output ending", R"({"do":"export","file":"a.xyz"})", "a.xyz");
    }

    void scriptsStopAtTheFirstError()
    {
        QFETCH(QByteArray, line);
        QFETCH(QByteArray, wrong);
        _write("two.pfm", "Pf\n2 1\n-1\n12345678");
        _write("script.txt", "# three lines down\n\n{\"do\":\"new\",\"width\":3,\"height\":3}\n" +
                                 line + "\n{\"do\":\"info\"}\n");
        const Ran ran = _run({"run", "script.txt"});
        QCOMPARE(ran.status, 1);
        QCOMPARE(ran.errors.count('\n'), 1);
        QVERIFY2(ran.errors.startsWith("script.txt:4: "), ran.errors);
        QVERIFY2(ran.errors.contains(wrong.split('|').last()), ran.errors);
        QCOMPARE(ran.output, QByteArray()); // nothing behind the error ran
    }

    void layersTravelThroughScripts()
    {
        const Ran ran =
            _script("\xEF\xBB\xBF{\"do\":\"new\",\"width\":3,\"height\":2,\"level\":0.75}\r\n"
                    "  # a comment\r\n"
                    "{\"do\":\"dump\",\"layer\":\"heights\",\"file\":\"l.pfm\"}\n"
                    "{\"do\":\"load\",\"layer\":\"mask\",\"file\":\"l.pfm\"}\n"
                    "{\"do\":\"dump\",\"layer\":\"mask\",\"file\":\"m.pfm\"}\n"
                    "{\"do\":\"load\",\"layer\":\"selection\",\"file\":\"l.pfm\"}\n"
                    "{\"do\":\"save\",\"file\":\"l.scp\"}\n"
                    "{\"do\":\"info\"}");
        QCOMPARE(ran.errors, QByteArray());
        QCOMPARE(ran.status, 0);
        QVERIFY(!_contents("l.pfm").isEmpty());
        QVERIFY(_contents("m.pfm") == _contents("l.pfm"));
        const QJsonObject info = _json(ran.output);
        QCOMPARE(info["width"].toInt(), 3);
        QCOMPARE(info["max"].toDouble(), 0.75);
        QCOMPARE(info["min"].toDouble(), 0.75);
        QVERIFY(info["selection"].toBool());
        QCOMPARE(info["undo"].toObject()["events"].toInt(-1), 0);
        QCOMPARE(info["sampleHeight"].toDouble(-1), 0.0);
        QCOMPARE(_contents("l.scp").size(), 40 + 96);
    }

    void invalidLayerValuesAreReplaced()
    {
        // -1, NaN, 2 and infinity.
        _write("bad.pfm",
               "Pf\n4 1\n-1\n" + QByteArray::fromHex("000080bf0000c07f000000400000807f"));
        const Ran ran = _script("{\"do\":\"load\",\"layer\":\"heights\",\"file\":\"bad.pfm\"}\n"
                                "{\"do\":\"load\",\"layer\":\"mask\",\"file\":\"bad.pfm\"}\n"
                                "{\"do\":\"dump\",\"layer\":\"heights\",\"file\":\"h.pfm\"}\n"
                                "{\"do\":\"dump\",\"layer\":\"mask\",\"file\":\"m.pfm\"}\n");
        QCOMPARE(ran.status, 0);
        QVERIFY(loadPfm(_path("h.pfm")).value().values == std::vector<float>({0, 0, 2, 0}));
        QVERIFY(loadPfm(_path("m.pfm")).value().values == std::vector<float>({0, 0, 1, 0}));
    }

    void anOpenImportFollowsItsSettings()
    {
        const Ran ran =
            _script("{\"do\":\"open\",\"file\":\"disc.png\",\"import\":{\"invertZ\":true}}\n"
                    "{\"do\":\"import\",\"invertZ\":false,\"depth\":8}\n{\"do\":\"info\"}\n"
                    "{\"do\":\"update\"}\n{\"do\":\"accept\"}\n"
                    "{\"do\":\"open\",\"file\":\"small.bmp\"}\n{\"do\":\"info\"}\n");
        QCOMPARE(ran.errors, QByteArray());
        const QList<QByteArray> lines = ran.output.split('\n');
        QCOMPARE(_json(lines[0])["max"].toDouble(), 8.0);
        QCOMPARE(_json(lines[0])["rangeMax"].toDouble(), 162.0);
        QCOMPARE(_json(lines[1])["width"].toInt(), 30);
    }

    void reducedMeshesSayWhatTheyReached()
    {
        const Ran full = _run({"convert", "disc.png", "all.stl"});
        QVERIFY(full.status == 0 && full.errors.isEmpty());
        const Ran reduced =
            _run({"convert", "disc.png", "low.stl", "--quality", "low", "--standard-stl"});
        QVERIFY(reduced.status == 0 && reduced.errors.count('\n') == 1);
        QVERIFY(reduced.errors.contains(" facets, largest error "));
        const auto bytes = [this](const char *name) { return QFileInfo(_path(name)).size(); };
        QVERIFY(bytes("low.stl") < bytes("all.stl"));
        QCOMPARE(bytes("low.stl"), 84 + 50 * reduced.errors.split(' ')[0].toLongLong());
        const Ran script = _script("{\"do\":\"open\",\"file\":\"disc.png\"}\n"
                                   "{\"do\":\"export\",\"file\":\"wide.stl\",\"tolerance\":0.002,"
                                   "\"facets\":50,\"solid\":0.5}\n");
        QVERIFY(script.status == 0 && script.errors.contains("number of facets is limited"));
        QCOMPARE(bytes("wide.stl"), 88 + 50 * script.errors.split(' ')[0].toLongLong());
        QCOMPARE(_run({"convert", "disc.png", "a.pfm", "--solid", "1"}).status, 1);
    }

    void helpAndVersion()
    {
        QVERIFY(_run({"--help"}).output.contains("--raise-lower"));
        const Ran help = _run({"convert", "--help"});
        QCOMPARE(help.status, 0);
        QVERIFY(help.output.contains("--tilt H,V") && !help.output.contains("SCRIPT"));
        QCOMPARE(_run({"--version"}).status, 0);
        QVERIFY(_run({"--version"}).output.contains("3.000.00019"));
    }
};

QTEST_GUILESS_MAIN(TestCli)
#include "tst_cli.moc"
