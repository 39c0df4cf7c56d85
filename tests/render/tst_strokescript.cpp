#include "files/heightmaps.h"
#include "relief/tools/tool.h"
#include "relief/tools/tooltable.h"
#include "sculptbench.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QTemporaryDir>

using namespace marlowen;

namespace {

QJsonArray pointOf(const Vector &picked)
{
    return {picked.x, picked.y};
}

QByteArray lineOf(const QJsonObject &action)
{
    return QJsonDocument(action).toJson(QJsonDocument::Compact) + '\n';
}

} // namespace

// A stroke of the pointer, recorded and replayed by the program without a window.
class StrokeScriptTest : public QObject
{
    Q_OBJECT

    QTemporaryDir m_folder;
    QString _path(const char *name) const { return m_folder.filePath(QLatin1String(name)); }

    void _replay(const QByteArray &script) const
    {
        QProcess process;
        process.setWorkingDirectory(m_folder.path());
        process.start(QStringLiteral(MARLOWEN_BIN_DIR "/marlowen-cli"), {"run", "-"});
        process.write(script);
        process.closeWriteChannel();
        QVERIFY(process.waitForFinished(60000));
        QCOMPARE(process.readAllStandardError(), QByteArray());
        QCOMPARE(process.exitCode(), 0);
    }

private slots:
    void replaysToTheSameCells_data()
    {
        QTest::addColumn<int>("type");
        QTest::addColumn<bool>("symmetric");
        QTest::addColumn<bool>("smooth");
        QTest::newRow("Deposit") << int(Tool::Deposit) << false << false;
        QTest::newRow("Smooth") << int(Tool::Smooth) << false << false;
        QTest::newRow("Move mirrored") << int(Tool::Move) << true << false;
        QTest::newRow("Smudge mirrored") << int(Tool::Smudge) << true << false;
        QTest::newRow("Clay on smooth paths") << int(Tool::Clay) << false << true;
        QTest::newRow("Mask") << int(Tool::Mask) << false << false;
    }

    void replaysToTheSameCells()
    {
        QFETCH(int, type);
        QFETCH(bool, symmetric);
        QFETCH(bool, smooth);
        SculptBench b(medal(240, 180));
        b.tool.type = type;
        b.tool.size = 0.37;
        b.tool.strength = 0.6;
        b.tool.smoothToolPaths = smooth;
        b.relief->symmetryX = symmetric;
        b.view.setRotation(rotationAbout({1, 0, 0}, -30));
        const QPoint c = b.centre();
        const QList<QPoint> way = {c + QPoint(-60, 20), c + QPoint(-31, 5), c + QPoint(12, -20),
                                   c + QPoint(40, -31), c + QPoint(55, 8)};
        QJsonArray points;
        for (const QPoint &at : way)
            points.append(pointOf(b.view.pick(at).point));
        QVERIFY(savePfm({b.relief->heights().constData(), 240, 180}, _path("before.pfm")));
        b.drag(way);

        const char *const layer = type == Tool::Mask ? "mask" : "heights";
        _replay(lineOf({{"do", "load"}, {"layer", "heights"}, {"file", "before.pfm"}}) +
                lineOf({{"do", "symmetry"}, {"x", symmetric}, {"y", false}}) +
                lineOf({{"do", "tool"},
                        {"type", toolRow(type)->id},
                        {"size", b.tool.size},
                        {"strength", b.tool.strength},
                        {"smoothToolPaths", smooth}}) +
                lineOf({{"do", "stroke"}, {"points", points}}) +
                lineOf({{"do", "dump"}, {"layer", layer}, {"file", "after.pfm"}}));
        const auto replayed = loadPfm(_path("after.pfm"));
        QVERIFY(replayed);
        const GridLayer &sculpted =
            type == Tool::Mask ? b.relief->maskLayer() : b.relief->heights();
        QVERIFY(std::equal(sculpted.constData(), sculpted.constData() + sculpted.size(),
                           replayed.value().values.begin(), replayed.value().values.end()));
        const auto untouched = loadPfm(_path("before.pfm"));
        QVERIFY(untouched && replayed.value().values != untouched.value().values);
    }
};

QTEST_MAIN(StrokeScriptTest)
#include "tst_strokescript.moc"
