#pragma once

#include "keptview.h"
#include "relief/grid/relief.h"
#include "relief/history/sculptundo.h"
#include "relief/strokes/sculptengine.h"
#include "render/views/sculptwin.h"

#include <QApplication>
#include <QImage>
#include <QMouseEvent>
#include <QTest>
#include <QWheelEvent>

#include <cmath>
#include <memory>

using namespace marlowen;

/// A relief of an egg-shaped bump on a plate, with an empty margin that shows the floor.
inline std::unique_ptr<Relief> medal(int width, int height)
{
    auto relief = std::make_unique<Relief>(width, height);
    const double cx = width / 2.0;
    const double cy = height / 2.0;
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            const double r = std::hypot((x - cx) / cx, (y - cy) / cy);
            const double bump = r < 0.6 ? std::sqrt(0.36 - r * r) : 0.0;
            const double z = r < 0.9 ? (0.04 + 0.35 * bump) * height : 0.0;
            relief->heights().data()[relief->index(x, y)] = static_cast<float>(z);
        }
    }
    return relief;
}

/// A shown 3D view with relief, tool, engine and history, and a hand on the mouse.
class SculptBench
{
public:
    explicit SculptBench(std::unique_ptr<Relief> document,
                         QSize size = KeptView<SculptWin>::usualSize)
        : relief(std::move(document))
        , m_kept(size)
        , view(m_kept.view())
    {
        engine.attach(relief.get(), &undo);
        view.setTool(&tool);
        view.setEngine(&engine);
        view.setRelief(relief.get());
        paint();
        // The camera of the test before this one may not have come to rest.
        while (!view.pictureComplete()) {
            QTest::qWait(1);
            paint();
        }
    }
    ~SculptBench()
    {
        view.setEngine(nullptr);
        engine.attach(nullptr, nullptr);
    }

    QImage paint() { return view.grabFramebuffer().convertToFormat(QImage::Format_RGB32); }

    /// Of a painted image at a logical position.
    QColor colorAt(const QImage &image, QPoint at) const
    {
        return image.pixelColor((QPointF(at) * view.devicePixelRatioF()).toPoint());
    }

    void press(QPoint at, Qt::MouseButton button = Qt::LeftButton, Qt::KeyboardModifiers keys = {})
    {
        held = button;
        send(QEvent::MouseButtonPress, at, button, button, keys);
    }
    bool moveTo(QPoint at, Qt::KeyboardModifiers keys = {})
    {
        return send(QEvent::MouseMove, at, Qt::NoButton, held, keys);
    }
    void release(QPoint at, Qt::KeyboardModifiers keys = {})
    {
        send(QEvent::MouseButtonRelease, at, held, Qt::NoButton, keys);
        held = Qt::NoButton;
    }
    void drag(const QList<QPoint> &way, Qt::MouseButton button = Qt::LeftButton,
              Qt::KeyboardModifiers keys = {})
    {
        press(way.first(), button, keys);
        for (const QPoint &at : way.mid(1))
            moveTo(at, keys);
        release(way.last(), keys);
    }
    void doubleClick(QPoint at)
    {
        press(at);
        release(at);
        held = Qt::LeftButton;
        send(QEvent::MouseButtonDblClick, at, held, held, {});
        release(at);
    }
    void wheel(QPoint at, QPoint delta, Qt::KeyboardModifiers keys = {})
    {
        QWheelEvent event(at, view.mapToGlobal(at), {}, delta, Qt::NoButton, keys,
                          Qt::NoScrollPhase, false);
        QApplication::sendEvent(&view, &event);
    }

    QPoint centre() const { return view.rect().center(); }

    std::unique_ptr<Relief> relief;
    ToolParams tool;
    SculptUndo undo;
    SculptEngine engine;

private:
    KeptView<SculptWin> m_kept;

public:
    SculptWin &view;
    Qt::MouseButton held = Qt::NoButton;

private:
    bool send(QEvent::Type type, QPoint at, Qt::MouseButton button, Qt::MouseButtons buttons,
              Qt::KeyboardModifiers keys)
    {
        QMouseEvent event(type, at, view.mapToGlobal(QPointF(at)), button, buttons, keys);
        QApplication::sendEvent(&view, &event);
        return event.isAccepted();
    }
};
