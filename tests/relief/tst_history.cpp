#include "relief/grid/relief.h"
#include "relief/history/sculptundo.h"
#include "relief/operations/operations.h"
#include "relief/strokes/sculptengine.h"
#include "relief/tools/alphabrush.h"
#include "relief/tools/tooltable.h"

#include <QLoggingCategory>
#include <QTest>

#include <cmath>
#include <cstring>
#include <functional>
#include <random>
#include <set>

using namespace marlowen;

namespace {

constexpr int firstWidth = 57;
constexpr int firstHeight = 41;

/// The random numbers of one run: they depend on the seed alone.
class Dice
{
public:
    explicit Dice(uint seed)
        : m_engine(seed)
    {
    }
    double real(double low, double high)
    {
        return std::uniform_real_distribution<double>(low, high)(m_engine);
    }
    int whole(int low, int high) { return std::uniform_int_distribution<int>(low, high)(m_engine); }
    bool chance(double share) { return real(0.0, 1.0) < share; }
    QPointF point(const Relief &relief)
    {
        return {real(-0.6, 0.6) * relief.width(), real(-0.6, 0.6) * relief.height()};
    }

private:
    std::mt19937 m_engine;
};

std::vector<float> valuesOf(const GridLayer &layer)
{
    return {layer.constData(), layer.constData() + layer.size()};
}

/// The state that undo restores: size, heights, mask, Z scale. Compared byte for byte.
struct State
{
    explicit State(const Relief &relief)
        : rect(relief.rect())
        , heights(valuesOf(relief.heights()))
        , mask(valuesOf(relief.maskLayer()))
        , zScale(relief.zScale)
    {
    }
    bool operator==(const State &other) const
    {
        return rect == other.rect && zScale == other.zScale && same(heights, other.heights) &&
               same(mask, other.mask);
    }
    static bool same(const std::vector<float> &a, const std::vector<float> &b)
    {
        return a.size() == b.size() &&
               std::memcmp(a.data(), b.data(), a.size() * sizeof(float)) == 0;
    }

    QRect rect;
    std::vector<float> heights;
    std::vector<float> mask;
    double zScale;
};

/// The inputs of operations, except heights and mask, that undo does not restore.
struct Surroundings
{
    static Surroundings of(const Relief &relief)
    {
        const AlphaBrush &brush = AlphaBrush::instance();
        return {valuesOf(relief.selectionLayer()),
                relief.selectionActive,
                relief.symmetryX,
                relief.symmetryY,
                relief.invert,
                relief.sampleHeight,
                brush.loaded(),
                brush.mode};
    }
    void apply(Relief &relief) const
    {
        std::ranges::copy(selection, relief.selectionLayer().data());
        relief.selectionActive = selectionActive;
        relief.symmetryX = symmetryX;
        relief.symmetryY = symmetryY;
        relief.invert = invert;
        relief.sampleHeight = sampleHeight;
        applyAlpha(alpha, alphaMode);
    }
    static void applyAlpha(bool loaded, int mode)
    {
        const std::array values{0.0F, 0.5F, 1.0F, 0.25F, 1.0F, 0.75F, 0.5F, 0.25F, 1.0F};
        AlphaBrush::instance().setImage(loaded ? GridView{values.data(), 3, 3} : GridView{});
        AlphaBrush::instance().mode = mode;
    }

    std::vector<float> selection;
    bool selectionActive;
    bool symmetryX;
    bool symmetryY;
    bool invert;
    float sampleHeight;
    bool alpha;
    int alphaMode;
};

struct Action
{
    std::function<void(Relief &relief, SculptEngine &engine, SculptUndo *undo)> run;
    int brush = -1; ///< the type of a stroke's tool
};

/// One operation in the history: its values, its inputs, and the resulting state.
struct Step
{
    Action operation;
    Surroundings surroundings;
    State after;
};

void buildFirst(Relief &relief)
{
    float *heights = relief.heights().data();
    for (int row = 0; row < relief.height(); ++row) {
        for (int column = 0; column < relief.width(); ++column) {
            const double away = std::hypot(column - 28.0, row - 20.0);
            const bool hole = (column / 7 + row / 5) % 6 == 0;
            *heights++ = hole ? 0.0F : static_cast<float>(std::max(0.0, 12.0 - away * 0.4));
        }
    }
    relief.referenceLayer().copyFrom(relief.heights());
    relief.rangeMaximum = 12.0;
}

ToolParams randomTool(Dice &dice)
{
    ToolParams tool;
    do
        tool.type = dice.whole(Tool::Smooth, Tool::Mask);
    while (toolRow(tool.type)->kind != ToolKind::Brush);
    tool.mode = dice.whole(0, 2);
    tool.form = dice.whole(0, 1);
    tool.falloff = dice.whole(0, 3);
    tool.size = dice.real(0.01, 1.0);
    tool.strength = dice.real(0.0, 1.0);
    tool.hardness = dice.real(0.0, 1.0);
    tool.aspect = dice.real(1.0, 3.0);
    tool.angle = dice.real(-90.0, 90.0);
    tool.useDecay = dice.chance(0.3);
    tool.decayLength = dice.real(0.0, 0.1);
    tool.keepTransparency = dice.chance(0.5);
    tool.smoothToolPaths = dice.chance(0.3);
    tool.smoothLength = dice.whole(1, 12);
    tool.ceilingOrFloor = dice.chance(0.3);
    return tool;
}

Action randomStroke(Dice &dice, const Relief &relief)
{
    const ToolParams tool = randomTool(dice);
    std::vector<QPointF> points;
    for (int count = dice.whole(1, 4); count > 0; --count)
        points.push_back(dice.point(relief));
    const auto stroke = [tool, points](Relief &, SculptEngine &engine, SculptUndo *) {
        engine.beginStroke(tool, points.front());
        for (const QPointF &point : points) {
            engine.addStrokePoint(point);
            engine.flush();
        }
        engine.endStroke(points.back());
    };
    return {stroke, tool.type};
}

void fill(Relief &, SculptEngine &engine, SculptUndo *)
{
    ToolParams tool;
    tool.type = Tool::Fill;
    engine.beginStroke(tool, {});
    engine.endStroke({});
}

Action maskOperation(void (*operation)(Relief &, const EditRun &))
{
    return {
        [operation](Relief &target, SculptEngine &, SculptUndo *undo) { operation(target, undo); }};
}

/// Any operation that history records.
Action randomOperation(Dice &dice, const Relief &relief)
{
    const int kind = dice.whole(0, 99);
    if (kind < 70)
        return randomStroke(dice, relief);
    if (kind < 82)
        return {fill};
    if (kind < 86)
        return maskOperation(invertMask);
    if (kind < 90)
        return maskOperation(clearMask);
    const QSize size(dice.whole(2, 70), dice.whole(2, 60));
    const QList<QPointF> outline{dice.point(relief), dice.point(relief), dice.point(relief)};
    return {[=](Relief &target, SculptEngine &, SculptUndo *undo) {
        if (kind < 95)
            resize(target, size.width(), size.height(), undo);
        else if (kind < 98)
            setZScale(target, size.width() % 3 + 1, undo);
        else
            cropApply(target, outline, undo);
    }};
}

/// Changes a part of the surroundings: the selection, a flag, the sampled height or the alpha
/// brush.
void changeSurroundings(Dice &dice, Relief &relief)
{
    const auto modifier = static_cast<SelectionModifier>(dice.whole(0, 2));
    const QPoint a(dice.whole(-9, 60), dice.whole(-9, 50));
    const QPoint b(dice.whole(-9, 60), dice.whole(-9, 50));
    const QPoint c(dice.whole(-9, 60), dice.whole(-9, 50));
    switch (dice.whole(0, 8)) {
    case 0:
        return selectRectangle(relief, a, b, modifier);
    case 1:
        return selectEllipse(relief, a, b, modifier);
    case 2:
        return selectPolygon(relief, {a, b, c}, modifier);
    case 3:
        return magicSelect(relief, {dice.point(relief), dice.real(0.01, 0.9), dice.chance(0.5)},
                           modifier);
    case 4:
        relief.symmetryX = dice.chance(0.4);
        relief.symmetryY = dice.chance(0.4);
        return;
    case 5:
        relief.invert = dice.chance(0.3);
        return;
    case 6:
        relief.sampleHeight = static_cast<float>(dice.real(0.0, 15.0));
        return;
    case 7:
        return Surroundings::applyAlpha(dice.chance(0.4), dice.whole(0, 2));
    default:
        return selectNone(relief);
    }
}

/// A relief that is worked on at random, with the steps that its history should hold.
class Session
{
public:
    explicit Session(uint seed)
        : m_dice(seed)
        , m_relief(firstWidth, firstHeight)
    {
        buildFirst(m_relief);
        m_first = std::make_unique<State>(m_relief);
        m_engine.attach(&m_relief, &m_undo);
    }

    void act()
    {
        if (m_dice.chance(0.2))
            changeSurroundings(m_dice, m_relief);
        if (m_dice.chance(0.12))
            _move(-m_dice.whole(1, 6));
        else if (m_dice.chance(0.15))
            _move(m_dice.whole(1, 9));
        else
            _operate();
    }

    bool inStep() const
    {
        return m_undo.cursor() == static_cast<int>(m_cursor) && State(m_relief) == _expected();
    }

    /// The operations in force, one after the other, on a fresh relief without a history.
    bool equalsReplay() const
    {
        const Surroundings here = Surroundings::of(m_relief);
        Relief fresh(firstWidth, firstHeight);
        buildFirst(fresh);
        SculptEngine engine;
        engine.attach(&fresh, nullptr);
        for (size_t i = 0; i < m_cursor; ++i) {
            m_steps[i].surroundings.apply(fresh);
            m_steps[i].operation.run(fresh, engine, nullptr);
        }
        Surroundings::applyAlpha(here.alpha, here.alphaMode);
        return State(fresh) == State(m_relief);
    }

    /// Operations that changed something, undone or not.
    int stepsTaken() const { return m_taken; }
    bool everyBrushTookPart() const
    {
        return std::ranges::all_of(toolTable(), [this](const ToolRow &row) {
            return row.kind != ToolKind::Brush || m_brushes.contains(row.type);
        });
    }

private:
    const State &_expected() const
    {
        return m_cursor == 0 ? *m_first : m_steps[m_cursor - 1].after;
    }

    void _operate()
    {
        const Action operation = randomOperation(m_dice, m_relief);
        const Surroundings surroundings = Surroundings::of(m_relief);
        const int before = m_undo.cursor();
        operation.run(m_relief, m_engine, &m_undo);
        if (m_undo.cursor() == before)
            return; // nothing changed, nothing recorded
        m_steps.erase(m_steps.begin() + static_cast<std::ptrdiff_t>(m_cursor), m_steps.end());
        m_steps.push_back({operation, surroundings, State(m_relief)});
        ++m_cursor;
        ++m_taken;
        m_brushes.insert(operation.brush);
    }

    void _move(int steps)
    {
        for (; steps < 0; ++steps) {
            m_undo.undo();
            m_cursor -= m_cursor > 0 ? 1 : 0;
        }
        for (; steps > 0; --steps) {
            m_undo.redo();
            m_cursor += m_cursor < m_steps.size() ? 1 : 0;
        }
    }

    Dice m_dice;
    Relief m_relief;
    SculptUndo m_undo;
    SculptEngine m_engine;
    std::unique_ptr<State> m_first;
    std::vector<Step> m_steps;
    size_t m_cursor = 0;
    int m_taken = 0;
    std::set<int> m_brushes;
};

} // namespace

class TestHistory : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { QLoggingCategory::setFilterRules(QStringLiteral("*.debug=false")); }
    void cleanup() { AlphaBrush::instance().setImage({}); }

    void neverDiverges_data();
    void neverDiverges();
};

void TestHistory::neverDiverges_data()
{
    QTest::addColumn<uint>("seed");
    for (const uint seed : {1U, 2U, 3U})
        QTest::addRow("seed %u", seed) << seed;
}

void TestHistory::neverDiverges()
{
    QFETCH(uint, seed);
    Session session(seed);
    for (int action = 1; session.stepsTaken() < 1000; ++action) {
        session.act();
        QVERIFY2(session.inStep(), qPrintable(QString::number(action)));
        if (action % 250 == 0)
            QVERIFY2(session.equalsReplay(), qPrintable(QString::number(action)));
        QVERIFY(action < 10000);
    }
    QVERIFY(session.equalsReplay());
    QVERIFY(session.everyBrushTookPart());
}

QTEST_GUILESS_MAIN(TestHistory)
#include "tst_history.moc"
