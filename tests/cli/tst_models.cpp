#include "cli/clifiles.h"
#include "cli/convertjob.h"
#include "cli/scriptrunner.h"
#include "cli/scriptstate.h"
#include "files/heightmaps.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QTemporaryDir>
#include <QtTest>

using namespace marlowen;

/// Meshes on the command line and in scripts.
class TestModels : public QObject
{
    Q_OBJECT

    QTemporaryDir m_folder;
    QString _path(const char *name) const { return m_folder.filePath(QLatin1String(name)); }
    void _write(const char *name, const QByteArray &bytes) const
    {
        QFile file(_path(name));
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(bytes);
    }
    /// Columns, rows and highest height of the relief that the options make of wedge.obj; empty on
    /// failure.
    QList<double> _converted(const QStringList &options) const
    {
        Progress silent;
        const Result<ConvertJob> job =
            parseConvert(QStringList{_path("wedge.obj"), _path("out.pfm")} + options);
        if (!job || !runConvert(job.value(), silent))
            return {};
        const Result<FloatGrid> map = loadPfm(_path("out.pfm"));
        if (!map)
            return {};
        const auto &values = map.value().values;
        return {double(map.value().width), double(map.value().height),
                double(*std::max_element(values.begin(), values.end()))};
    }

private slots:
    void init()
    {
        // 2 x 1 units, rising to 0.5; one face has an index that is not there.
        _write("wedge.obj", "v 1 1 1\nv 3 1 1.5\nv 3 2 1.5\nv 1 2 1\nf 1 2 3 4\nf 1 2 9\n");
        _write("relative.obj", "v 0 0 0\nv 1 0 0\nv 0 1 1\nf -3 -2 -1\n");
    }

    void convertOrients_data()
    {
        QTest::addColumn<QStringList>("options");
        QTest::addColumn<QList<double>>("result");
        const auto row = [](const char *name, const char *options, const QList<double> &result) {
            QTest::newRow(name) << QString(options).split(' ', Qt::SkipEmptyParts) << result;
        };
        row("inches", "--units in", {257, 129, 64});
        row("millimetres unless told", "--scale 25.4", {257, 129, 64});
        row("turned", "--units in --rotate ccw", {129, 257, 64});
        row("turned in order", "--units in --rotate up,ccw", {65, 257, 128});
        row("scaled along the axes as turned", "--units in --rotate cw --scale 1,2,3",
            {129, 513, 192});
        row("import options apply", "--units in --depth 7", {257, 129, 7});
        row("too big as scaled", "--units in --scale 100", {});
        row("hardly any extent in y", "--units in --scale 1,1e-12,1", {257, 2, 64});
    }

    void convertOrients()
    {
        QFETCH(QStringList, options);
        QTEST(_converted(options), "result");
    }

    void tooBigIsShrunkUnlessScaled()
    {
        _write("wedge.obj", "v 0 0 0\nv 100 0 0\nv 100 100 50\nv 0 100 50\nf 1 2 3 4\n");
        const QList<double> shrunk = _converted({"--units", "in"});
        QCOMPARE(shrunk[0], std::round(128.0 * std::sqrt(999.0)) + 1.0);
        QVERIFY(std::abs(shrunk[2] - 64.0 * std::sqrt(999.0)) < 1.0);
        QVERIFY(_converted({"--units", "in", "--scale", "1"}).isEmpty());
    }

    void wrongOptions()
    {
        const auto refused = [](const QStringList &arguments) { return !parseConvert(arguments); };
        for (const char *option : {"--units=ft", "--rotate=sideways", "--rotate=", "--scale=0",
                                   "--scale=1,2", "--scale=-1", "--scale=nan"})
            QVERIFY2(refused({"a.stl", "a.scp", option}), option);
        QVERIFY(refused({"a.png", "a.scp", "--units=in"}));
        QVERIFY(refused({"a.scp", "b.scp", "--relative-indices"}));
    }

    void scriptOrientsAndRasterizes()
    {
        Progress silent;
        ScriptState state(silent);
        const auto run = [&](QByteArray line) {
            line.replace('\'', '"').replace("FOLDER", m_folder.path().toUtf8());
            return bool(runScriptLine(state, line));
        };
        QVERIFY(!run("{'do':'orient','rotate':['up']}"));
        QVERIFY(!run("{'do':'rasterize'}"));
        QVERIFY(run("{'do':'new','width':5,'height':4}"));
        QVERIFY(run("{'do':'open','file':'FOLDER/wedge.obj','import':{'invertZ':true}}"));
        for (const char *line :
             {"{'do':'orient','rotate':['sideways']}", "{'do':'orient','scale':[1,2]}",
              "{'do':'orient','scale':[1,2,0]}", "{'do':'orient','units':'ft'}"})
            QVERIFY2(!run(line), line);
        QVERIFY(run("{'do':'orient','rotate':['flip'],'scale':[2,1,4],'units':'in'}"));

        QCOMPARE(state.relief()->width(), 5);
        const QJsonObject mesh = describe(*state.bench.model)["mesh"].toObject();
        const QByteArray expected(
            "{'area':4,'facets':2,'high':[-2,2,-4],'low':[-6,1,-6],'problems':1,"
            "'tooBig':false,'units':'in','vertices':4}");
        QCOMPARE(QJsonDocument(mesh).toJson(QJsonDocument::Compact).replace('"', '\''), expected);

        QVERIFY(run("{'do':'rasterize'}"));
        QVERIFY(!state.bench.model);
        QCOMPARE(state.relief()->width(), 513);
        QCOMPARE(state.relief()->heightAt(512, 64), 0.0F);
        QVERIFY(run("{'do':'import','invertZ':false}"));
        QCOMPARE(state.relief()->heightAt(512, 64), 256.0F);
        QVERIFY(run("{'do':'accept'}"));
    }

    void relativeIndicesAreAnOption()
    {
        Progress silent;
        ScriptState state(silent);
        const QByteArray open = "{\"do\":\"open\",\"file\":\"" + _path("relative.obj").toUtf8();
        QVERIFY(!runScriptLine(state, open + "\"}"));
        QVERIFY(runScriptLine(state, open + "\",\"relativeIndices\":true}"));
        QVERIFY(state.bench.model && !state.relief());
    }
};

QTEST_GUILESS_MAIN(TestModels)
#include "tst_models.moc"
