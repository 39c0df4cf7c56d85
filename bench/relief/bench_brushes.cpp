#include "baseline.h"
#include "relief/grid/relief.h"
#include "relief/strokes/sculptengine.h"
#include "relief/tools/alphabrush.h"
#include "relief/tools/tooltable.h"

#include <cmath>
#include <string>

using namespace marlowen;

namespace {

constexpr int side = 4047;

Relief &sharedRelief()
{
    static Relief relief(side, side);
    if (relief.heights().written())
        return relief;
    float *heights = relief.heights().data();
    for (int row = 0; row < side; ++row)
        for (int column = 0; column < side; ++column)
            *heights++ =
                static_cast<float>(50.0 + 20.0 * std::sin(row * 0.01) * std::cos(column * 0.02));
    relief.referenceLayer().copyFrom(relief.heights());
    relief.sampleHeight = 3.0F;
    return relief;
}

/// An alpha image of soft waves, or none.
void setAlpha(bool on, int mode)
{
    constexpr int size = 256;
    std::vector<float> image(size * size);
    for (size_t i = 0; i < image.size(); ++i)
        image[i] = static_cast<float>(0.5 + 0.5 * std::sin(static_cast<double>(i % size) * 0.1));
    AlphaBrush::instance().setImage(on ? GridView{image.data(), size, size} : GridView{});
    AlphaBrush::instance().mode = mode;
}

ToolParams paramsFor(int type, double radiusCells)
{
    ToolParams params;
    params.type = type;
    params.size = radiusCells / (0.1 * sharedRelief().diagonal());
    return params;
}

/// A dab in the middle of a stroke, against copying the cells of its box. The dab goes to and fro,
/// so that Move has a way to go.
void dab(benchmark::State &state, const ToolParams &params)
{
    Relief &relief = sharedRelief();
    SculptEngine engine;
    engine.attach(&relief, nullptr);
    engine.beginStroke(params, {100.3, 50.6});
    const double boxSide = 2.0 * Tool::radiusCells(params, relief.diagonal()) + 1.0;
    const auto bytes = static_cast<size_t>(boxSide * boxSide) * sizeof(float);
    bool there = false;
    baseline::measure(
        state, bytes, [&] { there = !there; },
        [&] { engine.applyAt(there ? QPointF(104.5, 53.2) : QPointF(100.3, 50.6)); });
    engine.endStroke({}, false);
    // Brushes that empty or level the cells leave the next one a relief like theirs.
    relief.heights().copyFrom(relief.referenceLayer());
    relief.maskLayer().clear();
}

/// The begin of a stroke of the largest size, against copying the grid.
void firstTouch(benchmark::State &state, const ToolParams &params)
{
    Relief &relief = sharedRelief();
    SculptEngine engine;
    engine.attach(&relief, nullptr);
    const auto bytes = static_cast<size_t>(relief.cells()) * sizeof(float);
    engine.beginStroke(params, {1.0, 2.0});
    baseline::measure(
        state, bytes, [&] { engine.endStroke({}, false); },
        [&] {
            engine.beginStroke(params, {1.0, 2.0});
        });
    engine.endStroke({}, false);
}

template <typename Function>
void add(const std::string &name, int iterations, Function function)
{
    benchmark::RegisterBenchmark(name.c_str(), function)
        ->UseManualTime()
        ->Iterations(iterations)
        ->Unit(benchmark::kMillisecond);
}

void addDabs()
{
    for (const ToolRow &row : toolTable()) {
        if (!row.dab)
            continue;
        for (const int radius : {50, 300}) {
            const std::string tail = std::string(row.id) + "/radius:" + std::to_string(radius);
            add("dab/" + tail, 101, [&row, radius](benchmark::State &state) {
                setAlpha(false, AlphaBrush::Shape);
                dab(state, paramsFor(row.type, radius));
            });
            if (!row.stamp)
                continue;
            add("stamp/" + tail, 101, [&row, radius](benchmark::State &state) {
                setAlpha(true, AlphaBrush::Stamp);
                dab(state, paramsFor(row.type, radius));
                setAlpha(false, AlphaBrush::Shape);
            });
        }
    }
}

void addFirstTouches()
{
    struct Case
    {
        const char *name;
        int form;
        double aspect;
        double angle;
        bool alpha;
        int alphaMode;
    };
    static const Case cases[] = {
        {"round", Tool::Round, 1.0, 0.0, false, 0},
        {"square", Tool::Square, 1.0, 0.0, false, 0},
        {"roundAspectAngle", Tool::Round, 3.0, 30.0, false, 0},
        {"squareAspectAngle", Tool::Square, 1.5, 45.0, false, 0},
        {"alphaShape", Tool::Round, 1.0, 30.0, true, AlphaBrush::Shape},
        {"alphaTile", Tool::Square, 1.5, 30.0, true, AlphaBrush::Tile},
        {"alphaStamp", Tool::Round, 1.0, 30.0, true, AlphaBrush::Stamp},
    };
    for (const Case &c : cases) {
        add(std::string("firstTouch/") + c.name, 9, [&c](benchmark::State &state) {
            setAlpha(c.alpha, c.alphaMode);
            ToolParams params;
            params.size = 1.0;
            params.form = c.form;
            params.aspect = c.aspect;
            params.angle = c.angle;
            firstTouch(state, params);
            setAlpha(false, AlphaBrush::Shape);
        });
    }
}

const bool added = [] {
    addDabs();
    addFirstTouches();
    return true;
}();

} // namespace
