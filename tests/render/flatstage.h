#pragma once

#include "keptview.h"
#include "relief/grid/relief.h"
#include "relief/history/sculptundo.h"
#include "relief/strokes/sculptengine.h"
#include "relief/tools/tool.h"
#include "render/views/flatwin.h"

#include <QTest>

#include <algorithm>
#include <cmath>

using namespace marlowen;

/// A smooth hill with an empty border of five cells.
inline std::unique_ptr<Relief> hill(QSize size)
{
    auto relief = std::make_unique<Relief>(size.width(), size.height());
    float *heights = relief->heights().data();
    for (int row = 5; row < size.height() - 5; ++row)
        for (int column = 5; column < size.width() - 5; ++column)
            heights[relief->index(column, row)] =
                float(8.0 * std::exp(-std::hypot(column - size.width() / 2.0, row - 40.0) / 30.0));
    return relief;
}

inline std::vector<float> valuesOf(const GridLayer &layer)
{
    return {layer.constData(), layer.constData() + layer.size()};
}

inline int selectedCells(const Relief &relief)
{
    const std::vector<float> values = valuesOf(relief.selectionLayer());
    return int(std::count(values.begin(), values.end(), 1.0F));
}

/// The hill in a shown view, with engine and history, and the pointer's hand on it.
struct Stage
{
    std::unique_ptr<Relief> relief;
    SculptUndo undo;
    SculptEngine engine;
    ToolParams tool;
    ReliefChanges changes;
    KeptView<FlatWin> kept{KeptView<FlatWin>::usualSize};
    FlatWin &view = kept.view();

    explicit Stage(int toolType = Tool::Deposit, QSize grid = {120, 90})
        : relief(hill(grid))
    {
        tool.type = toolType;
        tool.keepTransparency = false;
        engine.attach(relief.get(), &undo);
        view.setTool(&tool);
        view.setEngine(&engine);
        view.setChanges(&changes);
        QObject::connect(&view, &FlatWin::shapeDrawn, &changes, [this](const SelectionEdit &edit) {
            edit(*relief);
            changes.notify();
        });
        view.setRelief(relief.get(), true);
        settle();
    }
    ~Stage()
    {
        view.setRelief(nullptr);
        engine.attach(nullptr, nullptr);
    }

    void setTool(int type)
    {
        tool.type = type;
        view.refresh();
        settle();
    }
    QImage settle()
    {
        QCoreApplication::processEvents();
        return view.grabFramebuffer();
    }
    /// Where the grid position is on the widget.
    QPoint at(double column, double row) const
    {
        const Vector window = project(
            {column - relief->width() / 2.0, row - relief->height() / 2.0, 0.0}, view.matrices());
        return {qRound(window.x), qRound(view.height() - 1 - window.y)};
    }
    void press(QPoint p) { QTest::mousePress(&view, Qt::LeftButton, {}, p); }
    void moveTo(QPoint p) { QTest::mouseMove(&view, p); }
    void release(QPoint p) { QTest::mouseRelease(&view, Qt::LeftButton, {}, p); }
    void drag(QPoint from, QPoint to)
    {
        press(from);
        moveTo((from + to) / 2);
        moveTo(to);
        release(to);
    }
    void click(QPoint p) { QTest::mouseClick(&view, Qt::LeftButton, {}, p); }
    void key(Qt::Key key) { QTest::keyClick(&view, key); }
    QRgb pixel(QPoint p) { return settle().pixel(physical(p)); }
    QPoint physical(QPoint p) const { return (QPointF(p) * view.devicePixelRatioF()).toPoint(); }
};
