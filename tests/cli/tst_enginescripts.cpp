#include "cli/scriptrunner.h"
#include "cli/scriptstate.h"
#include "cli/toolrecord.h"
#include "relief/selection/selections.h"
#include "relief/tools/alphabrush.h"
#include "relief/tools/tool.h"
#include "relief/tools/toolfields.h"

#include <QBuffer>
#include <QImage>
#include <QLoggingCategory>
#include <QTemporaryDir>
#include <QTest>

using namespace marlowen;

namespace {

/// One script's state, fed line by line.
class Script
{
public:
    /// Runs lines; the failure's sentence, or "" when all went well.
    QString run(const QStringList &lines)
    {
        QByteArray text = lines.join(u'\n').toUtf8();
        QBuffer buffer(&text);
        buffer.open(QIODevice::ReadOnly);
        const Outcome done = runScript(m_state, buffer, QStringLiteral("s"));
        return done ? QString() : done.failure().sentence;
    }
    ScriptState &state() { return m_state; }
    Relief &relief() { return *m_state.relief(); }
    SculptUndo &undo() { return m_state.bench.history(); }

private:
    Progress m_progress;
    ScriptState m_state{m_progress};
};

QList<float> valuesOf(const GridLayer &layer)
{
    return {layer.constData(), layer.constData() + layer.size()};
}

/// Rows of '#' for selected cells.
QStringList selectionOf(Relief &relief)
{
    QStringList rows;
    for (int row = 0; row < relief.height(); ++row) {
        rows << QString();
        for (int column = 0; column < relief.width(); ++column) {
            const float value = relief.selectionLayer().constData()[relief.index(column, row)];
            rows.back() += value != 0.0F ? u'#' : u'.';
        }
    }
    return rows;
}

const QString fresh = QStringLiteral(R"({"do":"new","width":6,"height":4,"level":2})");

} // namespace

class TestEngineScripts : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { QLoggingCategory::setFilterRules(QStringLiteral("*.debug=false")); }
    void cleanup() { AlphaBrush::instance().setImage({}); }

    void mistakes_data();
    void mistakes();
    void withoutARelief();
    void toolRecord();
    void strokeEqualsTheEngine();
    void selections_data();
    void selections();
    void sampleAndFill();
    void historySteps();
    void wholeReliefSteps();
    void alphaImage();
    void thirdNumberOfAPointIsItsPressure();
    void newReliefStartsFresh();
    void patternIsPlaced();
};

void TestEngineScripts::mistakes_data()
{
    QTest::addColumn<QString>("line");
    QTest::addColumn<QString>("sentence");
    const auto row = [](const char *line, const char *sentence) {
        QTest::newRow(line) << QString::fromLatin1(line) << QString::fromLatin1(sentence);
    };
    row(R"({"do":"carve"})", "unknown action \"carve\"");
    row(R"({"do":"tool","colour":1})", "tool: unknown key \"colour\"");
    row(R"({"do":"tool","mode":"Raise","size":1.5})",
        "tool: \"size\" must be a number from 0.01 to 1");
    row(R"({"do":"tool","type":"deposit"})", "tool: \"type\" must be one of Smooth, Smudge, ");
    row(R"({"do":"tool","smoothLength":2.5})", "tool: \"smoothLength\" must be a whole number");
    row(R"({"do":"stroke"})", "stroke: the key \"points\" is missing");
    row(R"({"do":"stroke","points":[[1,2],[3]]})", "stroke: \"points\" must be a list");
    row(R"({"do":"sample","point":[1,"2"]})", "sample: \"point\" must be a pair of numbers");
    row(R"({"do":"setSample","height":-1})", "setSample: \"height\" must be a number from 0");
    row(R"({"do":"select","shape":"circle"})", "select: \"shape\" must be one of rectangle, ");
    row(R"({"do":"select","shape":"magic"})", "select: the shape \"magic\" needs \"point\"");
    row(R"({"do":"select","shape":"none","cells":[[1,1]]})",
        "select: the shape \"none\" takes no \"cells\"");
    row(R"({"do":"select","shape":"ellipse","cells":[[1,1]]})",
        "select: the shape \"ellipse\" needs two corners in \"cells\"");
    row(R"({"do":"select","shape":"polygon","cells":[[1,1.5]]})",
        "select: \"cells\" must be a list of one or more pairs of whole numbers");
    row(R"({"do":"mask","op":"blur"})", "mask: \"op\" must be one of clear, invert");
    row(R"({"do":"resize","width":1,"height":9})",
        "resize: \"width\" must be a whole number of 2 or more");
    row(R"({"do":"resize","width":2000000000,"height":2000000000})",
        "resize: the relief would have too many cells");
    row(R"({"do":"zscale","value":0})", "zscale: \"value\" must be a number from");
    row(R"({"do":"alpha","file":"nowhere.png"})", "nowhere.png: ");
    row(R"({"do":"save","file":"a.scp\u0000.txt"})", "save: \"file\" must be a text without NUL");
    row(R"({"do":"alpha","file":3})",
        "alpha: \"file\" must be a text without NUL characters, or null");
    row(R"({"do":"alpha","mode":"Stamped"})", "alpha: \"mode\" must be one of Shape, Tile, Stamp");
}

void TestEngineScripts::mistakes()
{
    QFETCH(QString, line);
    QFETCH(QString, sentence);
    Script script;
    const QString spoil = QStringLiteral(R"({"do":"setSample","height":99})");
    const QString said = script.run({fresh, QStringLiteral("# a remark"), line, spoil});
    QVERIFY2(said.startsWith(QStringLiteral("s:3: ") + sentence), qPrintable(said));
    QVERIFY(!said.contains(u'\n'));
    // Nothing of the line took hold, and nothing after it ran.
    QCOMPARE(script.relief().rect(), QRect(0, 0, 6, 4));
    QCOMPARE(valuesOf(script.relief().heights()), QList<float>(24, 2.0F));
    QCOMPARE(script.relief().sampleHeight, 0.0F);
    QVERIFY(!script.relief().selectionActive);
    QCOMPARE(script.undo().count(), 0);
    QCOMPARE(script.state().bench.tool.mode, static_cast<int>(Tool::Normal));
}

void TestEngineScripts::withoutARelief()
{
    for (const char *line :
         {R"({"do":"stroke","points":[[0,0]]})", R"({"do":"undo"})", R"({"do":"fill"})",
          R"({"do":"select","shape":"none"})", R"({"do":"resize","width":5,"height":5})"}) {
        Script script;
        QVERIFY(script.run({QString::fromLatin1(line)}).endsWith(u": there is no relief"));
    }
    // The tool and the alpha brush exist before any relief.
    Script script;
    QCOMPARE(script.run({R"({"do":"tool","size":0.5})", R"({"do":"alpha","file":null})"}), "");
    QCOMPARE(script.state().bench.tool.size, 0.5);
}

void TestEngineScripts::toolRecord()
{
    Script script;
    QCOMPARE(
        script.run({R"({"do":"tool","type":"Undo","form":"Square","size":0.2,"useDecay":true})",
                    R"({"do":"tool","smoothLength":12,"tolerance":0.5})"}),
        "");
    ToolParams expected;
    expected.type = Tool::UndoBrush;
    expected.form = Tool::Square;
    expected.size = 0.2;
    expected.useDecay = true;
    expected.smoothLength = 12;
    expected.tolerance = 0.5;
    for (const Field<ToolParams> &field : toolFields())
        QCOMPARE(field.value(script.state().bench.tool), field.value(expected));
    const QString help = toolRecordHelp();
    QVERIFY(help.contains(QStringLiteral("type               Deposit\n")));
    QVERIFY(help.contains(QStringLiteral("strength           0.25\n")));
}

void TestEngineScripts::strokeEqualsTheEngine()
{
    Script script;
    QCOMPARE(script.run({R"({"do":"new","width":60,"height":50,"level":3})",
                         R"({"do":"tool","type":"Remove","size":0.7,"strength":0.8})",
                         R"({"do":"symmetry","x":true,"y":false})", R"({"do":"invert","on":true})",
                         R"({"do":"stroke","points":[[-9.5,2],[4,8],[12.25,-7]]})"}),
             "");
    Relief relief(60, 50);
    std::fill_n(relief.heights().data(), relief.cells(), 3.0F);
    relief.symmetryX = true;
    relief.invert = true;
    SculptUndo undo;
    SculptEngine engine;
    engine.attach(&relief, &undo);
    ToolParams tool;
    tool.type = Tool::Remove;
    tool.size = 0.7;
    tool.strength = 0.8;
    engine.beginStroke(tool, {-9.5, 2.0});
    engine.addStrokePoint({4.0, 8.0});
    engine.flush();
    engine.addStrokePoint({12.25, -7.0});
    engine.flush();
    engine.endStroke({12.25, -7.0});
    QCOMPARE(valuesOf(script.relief().heights()), valuesOf(relief.heights()));
    QVERIFY(script.relief().heightAt(42, 18) > 3.0F); // inverted, Remove raises
    QCOMPARE(script.undo().count(), 1);
    QVERIFY(!script.state().bench.engine().stroking());
}

void TestEngineScripts::selections_data()
{
    QTest::addColumn<QStringList>("lines");
    QTest::addColumn<QStringList>("selected");
    const QString square = R"({"do":"select","shape":"rectangle","cells":[[3,2],[1,1]]})";
    QTest::newRow("rectangle") << QStringList{square}
                               << QStringList{"......", ".###..", ".###..", "......"};
    QTest::newRow("corners off the grid are clipped")
        << QStringList{R"({"do":"select","shape":"rectangle","cells":[[4,-9],[99,0]]})"}
        << QStringList{"....##", "......", "......", "......"};
    QTest::newRow("a polygon keeps its form beyond the grid")
        << QStringList{R"({"do":"select","shape":"polygon","cells":[[-6,0],[5,0],[5,3]]})"}
        << QStringList{"######", "######", ".#####", ".....#"};
    QTest::newRow("subtractive ellipse")
        << QStringList{square, R"({"do":"select","shape":"ellipse","cells":[[2,2],[2,2]],)"
                               R"("modifier":"Subtractive"})"}
        << QStringList{"......", ".###..", ".#.#..", "......"};
}

void TestEngineScripts::selections()
{
    QFETCH(QStringList, lines);
    Script script;
    QCOMPARE(script.run(QStringList{fresh} + lines), "");
    QTEST(selectionOf(script.relief()), "selected");
    QVERIFY(script.relief().selectionActive);
    QCOMPARE(script.run({R"({"do":"select","shape":"none"})"}), "");
    QVERIFY(!script.relief().selectionActive);
    QCOMPARE(script.undo().count(), 0);
}

void TestEngineScripts::sampleAndFill()
{
    Script script;
    QCOMPARE(script.run({fresh, R"({"do":"sample","point":[1,1]})"}), "");
    QCOMPARE(script.relief().sampleHeight, 2.0F);
    QCOMPARE(script.run({R"({"do":"sample","point":[50,1]})"}), "");
    QCOMPARE(script.relief().sampleHeight, 0.0F);
    QCOMPARE(script.run({R"({"do":"setSample","height":5.5})", R"({"do":"fill"})"}), "");
    QCOMPARE(script.undo().count(), 0); // nothing is selected
    QCOMPARE(script.run({R"({"do":"select","shape":"rectangle","cells":[[1,1],[2,3]]})",
                         R"({"do":"fill"})"}),
             "");
    QCOMPARE(script.relief().heightAt(2, 3), 5.5F);
    QCOMPARE(script.relief().heightAt(3, 3), 2.0F);
    QCOMPARE(script.undo().count(), 1);
    QCOMPARE(script.state().bench.tool.type, static_cast<int>(Tool::Deposit));
}

void TestEngineScripts::historySteps()
{
    Script script;
    QStringList lines{fresh};
    for (int scale = 2; scale <= 6; ++scale)
        lines << QStringLiteral(R"({"do":"zscale","value":%1})").arg(scale);
    QCOMPARE(script.run(lines), "");
    const auto scaleAfter = [&](const char *line) {
        return script.run({QString::fromLatin1(line)}).isEmpty() ? script.relief().zScale : -1.0;
    };
    QCOMPARE(scaleAfter(R"({"do":"undo"})"), 5.0);
    QCOMPARE(scaleAfter(R"({"do":"undo","steps":3})"), 2.0);
    QCOMPARE(scaleAfter(R"({"do":"redo","steps":2})"), 4.0);
    QCOMPARE(scaleAfter(R"({"do":"redo","steps":2000000000})"), 6.0);
    QCOMPARE(scaleAfter(R"({"do":"undo","steps":2000000000})"), 1.0);
}

void TestEngineScripts::wholeReliefSteps()
{
    Script script;
    QCOMPARE(script.run({fresh, R"({"do":"resize","width":6,"height":4})",
                         R"({"do":"zscale","value":1})"}),
             "");
    QCOMPARE(script.undo().count(), 0); // already so
    QCOMPARE(
        script.run({R"({"do":"resize","width":12,"height":3})", R"({"do":"mask","op":"invert"})",
                    R"({"do":"crop","points":[[-2,0],[1,0]]})"}),
        "");
    QCOMPARE(script.undo().count(), 3);
    QCOMPARE(script.relief().rect(), QRect(0, 0, 12, 3));
    QCOMPARE(script.relief().maskLayer().constData()[0], 1.0F);
    QCOMPARE(script.relief().heightAt(4, 1), 2.0F);
    QCOMPARE(script.relief().heightAt(3, 1), 0.0F);
    QCOMPARE(script.run({R"({"do":"mask","op":"clear"})", R"({"do":"undo","steps":4})"}), "");
    QCOMPARE(script.relief().rect(), QRect(0, 0, 6, 4));
    QCOMPARE(script.relief().maskLayer().constData()[0], 0.0F);
}

void TestEngineScripts::alphaImage()
{
    QTemporaryDir folder;
    QImage image(2, 2, QImage::Format_RGB32);
    image.fill(Qt::black);
    image.setPixelColor(1, 0, Qt::white);
    image.setPixelColor(0, 1, QColor(32, 0, 0));
    const QString square = folder.filePath(QStringLiteral("square.png"));
    QVERIFY(image.save(square));
    const QString oblong = folder.filePath(QStringLiteral("oblong.png"));
    QVERIFY(image.scaled(2, 3).save(oblong));

    Script script;
    AlphaBrush &brush = AlphaBrush::instance();
    const QString line = R"({"do":"alpha","file":"%1","mode":"Tile","repeat":5})";
    QCOMPARE(script.run({line.arg(square)}), "");
    QCOMPARE(brush.side(), 2);
    QCOMPARE(brush.values()[1], 1.0F);
    QCOMPARE(brush.values()[2], 11.0F / 255.0F);
    QCOMPARE(brush.mode, static_cast<int>(AlphaBrush::Tile));
    QCOMPARE(brush.repeatCount, 5);
    QCOMPARE(script.run({R"({"do":"alpha","mode":"Stamp"})"}), "");
    QCOMPARE(brush.side(), 2);
    QCOMPARE(brush.repeatCount, 5);
    const QString said = script.run({line.arg(oblong)});
    QVERIFY2(said.contains(u"oblong.png: an alpha image must be square, not 2 x 3"),
             qPrintable(said));
    // A JPEG that lacks its end would be grey there.
    const QString half = folder.filePath(QStringLiteral("half.jpg"));
    QVERIFY(image.scaled(64, 64).save(half));
    QFile file(half);
    QVERIFY(file.resize(file.size() - 20));
    QVERIFY(script.run({line.arg(half)}).contains(u"half.jpg: "));
    QCOMPARE(brush.side(), 2);
    QCOMPARE(brush.mode, static_cast<int>(AlphaBrush::Stamp));
    QCOMPARE(script.run({R"({"do":"alpha","file":null})"}), "");
    QVERIFY(!brush.loaded());
}

void TestEngineScripts::patternIsPlaced()
{
    const QTemporaryDir folder;
    const QString file = folder.filePath(QStringLiteral("tile.ptr"));
    const QString place = QStringLiteral(R"({"do":"place","file":"%1","centre":[3,2],%2})");
    Script script;
    QCOMPARE(script.run({R"({"do":"new","width":2,"height":2,"level":4})",
                         QStringLiteral(R"({"do":"export","author":"A","file":"%1"})").arg(file),
                         fresh, place.arg(file, R"("join":"replace","strength":0.5)")}),
             "");
    QList<float> expected(24, 2.0F);
    for (const int cell : {8, 9, 14, 15})
        expected[cell] = 3.0F;
    QCOMPARE(valuesOf(script.relief().heights()), expected);
    QVERIFY(script.run({place.arg(file, R"("scale":0)")}).contains(u"\"scale\" must be a number"));
    QVERIFY(QFile::resize(file, 100));
    QVERIFY(script.run({place.arg(file, R"("angle":90)")}).contains(u"damaged"));
    QCOMPARE(valuesOf(script.relief().heights()), expected);
}

void TestEngineScripts::thirdNumberOfAPointIsItsPressure()
{
    const auto raised = [](const char *pressure) {
        Script script;
        script.run(
            {fresh, R"({"do":"tool","type":"Deposit"})",
             QStringLiteral(R"({"do":"stroke","points":[[0,0%1]]})").arg(QLatin1String(pressure))});
        return script.relief().heightAt(3, 2) - 2.0F;
    };
    const float full = raised("");
    QVERIFY(full > 0.0F);
    QCOMPARE(raised(",1"), full);
    QCOMPARE(raised(",0.5"), full / 2.0F);
    QCOMPARE(raised(",0"), 0.0F);
}

void TestEngineScripts::newReliefStartsFresh()
{
    Script script;
    QCOMPARE(script.run({fresh, R"({"do":"symmetry","x":true,"y":true})",
                         R"({"do":"symmetry","y":false})", R"({"do":"invert","on":true})",
                         R"({"do":"tool","size":0.5})", R"({"do":"setSample","height":4})",
                         R"({"do":"select","shape":"rectangle","cells":[[0,0],[1,1]]})",
                         R"({"do":"stroke","points":[[0,0],[2,0]]})"}),
             "");
    QVERIFY(script.relief().symmetryX && !script.relief().symmetryY && script.relief().invert);
    QCOMPARE(script.run({fresh}), "");
    const Relief &relief = script.relief();
    QVERIFY(!relief.symmetryX && !relief.invert && !relief.selectionActive);
    QCOMPARE(relief.sampleHeight, 0.0F);
    QCOMPARE(script.undo().count(), 0);
    QCOMPARE(script.state().bench.tool.size, 0.5);
    // Strokes and history work on the new relief, not on the one that is gone.
    QCOMPARE(script.run({R"({"do":"stroke","points":[[0,0],[2,0]]})", R"({"do":"undo"})"}), "");
    QCOMPARE(valuesOf(script.relief().heights()), QList<float>(24, 2.0F));
}

QTEST_GUILESS_MAIN(TestEngineScripts)
#include "tst_enginescripts.moc"
