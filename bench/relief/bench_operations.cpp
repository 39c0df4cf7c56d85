#include "baseline.h"
#include "relief/grid/relief.h"
#include "relief/history/sculptundo.h"
#include "relief/history/undoevents.h"
#include "relief/operations/operations.h"
#include "relief/selection/selections.h"

#include <cmath>
#include <functional>
#include <random>

using namespace marlowen;

namespace {

constexpr int side = 4047;

size_t bytesOf(const Relief &relief)
{
    return static_cast<size_t>(relief.cells()) * sizeof(float);
}

/// A dome over the whole grid; with noise every height is random instead, with empty cells strewn
/// in.
void raise(Relief &relief, bool noisy)
{
    std::minstd_rand random(3);
    float *heights = relief.heights().data();
    const double middle = relief.width() * 0.5;
    for (int row = 0; row < relief.height(); ++row) {
        for (int column = 0; column < relief.width(); ++column) {
            const double away = std::hypot(column - middle, row - middle) / middle;
            const double dome = 100.0 * std::cos(away);
            const double noise = static_cast<double>(random() % 1000) * 0.1;
            *heights++ = static_cast<float>(noisy ? noise : dome);
        }
    }
    relief.rangeMaximum = 100.0;
}

/// A relief with something in every layer that a resize has to carry along.
void fill(Relief &relief)
{
    raise(relief, false);
    // Empty beyond the dome, as most reliefs are.
    cropApply(relief,
              {{-0.4 * relief.width(), -0.4 * relief.width()},
               {0.4 * relief.width(), 0.4 * relief.width()}},
              nullptr);
    relief.referenceLayer().copyFrom(relief.heights());
    selectEllipse(relief, {0.0, 0.0}, QPointF(relief.width(), relief.height()),
                  SelectionModifier::Normal);
    relief.maskLayer().copyFrom(relief.selectionLayer());
}

Relief &sharedRelief(bool noisy)
{
    static Relief smooth(side, side);
    static Relief rough(side, side);
    Relief &relief = noisy ? rough : smooth;
    if (!relief.heights().written())
        raise(relief, noisy);
    return relief;
}

struct Magic
{
    bool noisy;
    bool continuous;
    double tolerance;
};

void magic(benchmark::State &state, Magic row, SelectionModifier modifier)
{
    Relief &relief = sharedRelief(row.noisy);
    const MagicSelection selection{{0.5, 0.5}, row.tolerance, row.continuous};
    relief.heights().data()[relief.index(side / 2 + 1, side / 2 + 1)] = 50.0F;
    magicSelect(relief, selection, modifier);
    baseline::measure(state, bytesOf(relief), [&] { magicSelect(relief, selection, modifier); });
}

void shape(benchmark::State &state, const std::function<void(Relief &)> &select)
{
    Relief &relief = sharedRelief(false);
    select(relief);
    baseline::measure(state, bytesOf(relief), [&] { select(relief); });
}

void rectangle(Relief &relief)
{
    selectRectangle(relief, {0, 0}, {side - 1, side - 1}, SelectionModifier::Normal);
}

void ellipse(Relief &relief)
{
    selectEllipse(relief, {0.0, 0.0}, {side - 1.0, side - 1.0}, SelectionModifier::Normal);
}

void polygon(Relief &relief)
{
    QPolygon corners;
    for (int i = 0; i < 500; ++i) {
        const double reach = i % 2 == 0 ? side * 0.5 : side * 0.3;
        const double angle = i * 0.0125664;
        corners << QPoint(static_cast<int>(side * 0.5 + reach * std::cos(angle)),
                          static_cast<int>(side * 0.5 + reach * std::sin(angle)));
    }
    selectPolygon(relief, corners, SelectionModifier::Normal);
}

/// The event's two patches are fresh memory: the counter "patches_x" is their cost alone.
void maskOperation(benchmark::State &state, void (*operation)(Relief &, const EditRun &))
{
    Relief &relief = sharedRelief(false);
    relief.maskLayer().data()[0] = 0.5F;
    invertMask(relief, nullptr);
    SculptUndo undo;
    baseline::measure(
        state, bytesOf(relief), [&] { undo.clear(); }, [&] { operation(relief, &undo); });
    undo.clear();
    std::vector<double> fresh;
    for (int i = 0; i < 3; ++i) {
        const double start = baseline::now();
        const Patch patches[] = {copyPatch(relief.heights(), side, relief.rect()),
                                 copyPatch(relief.heights(), side, relief.rect())};
        benchmark::DoNotOptimize(patches);
        fresh.push_back(baseline::now() - start);
    }
    state.counters["patches_x"] = 1e3 * baseline::median(fresh) / state.counters["copy_ms"];
}

void resizeAll(benchmark::State &state, int from, int to)
{
    Relief relief(from, from);
    fill(relief);
    const Relief result(std::max(from, to), std::max(from, to));
    SculptUndo undo;
    baseline::measure(
        state, bytesOf(result),
        [&] {
            undo.undo();
            undo.clear();
        },
        [&] { resize(relief, to, to, &undo); });
}

void historyStep(benchmark::State &state, bool redo)
{
    Relief &relief = sharedRelief(false);
    SculptUndo undo;
    const auto patch = [&] { return copyPatch(relief.heights(), side, relief.rect()); };
    undo.push(std::make_unique<SculptModifyEvent>(relief, patch(), patch()));
    undo.markGroupEnd();
    const auto there = [&] { redo ? undo.undo() : undo.redo(); };
    const auto back = [&] { redo ? undo.redo() : undo.undo(); };
    baseline::measure(state, bytesOf(relief), there, back);
}

void crop(benchmark::State &state)
{
    Relief relief(side, side);
    raise(relief, false);
    relief.snapshotLayer().copyFrom(relief.heights());
    SculptUndo undo;
    baseline::measure(
        state, bytesOf(relief), [&] { undo.clear(); },
        [&] {
            cropApply(relief, {{-900.0, -900.0}, {900.0, 900.0}}, &undo);
        });
}

template <typename Function, typename... Arguments>
void add(const char *name, Function function, Arguments... arguments)
{
    benchmark::RegisterBenchmark(name, function, arguments...)
        ->UseManualTime()
        ->Unit(benchmark::kMillisecond)
        ->Iterations(7);
}

const bool registered = [] {
    constexpr auto normal = SelectionModifier::Normal;
    add("magic/continuous smooth", magic, Magic{false, true, 0.9}, normal);
    add("magic/continuous noisy", magic, Magic{true, true, 0.33}, normal);
    add("magic/not continuous", magic, Magic{false, false, 0.3}, normal);
    add("magic/not continuous noisy additive", magic, Magic{true, false, 0.3},
        SelectionModifier::Additive);
    add("select/rectangle", shape, rectangle);
    add("select/ellipse", shape, ellipse);
    add("select/polygon 500 corners", shape, polygon);
    add("mask/invert with event", maskOperation, invertMask);
    add("mask/clear with event", maskOperation, clearMask);
    add("resize/4047 to 1365", resizeAll, side, 1365);
    add("resize/1024 to 4047", resizeAll, 1024, side);
    add("history/undo whole relief", historyStep, false);
    add("history/redo whole relief", historyStep, true);
    add("crop/whole relief", crop);
    return true;
}();

} // namespace
