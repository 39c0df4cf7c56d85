#pragma once

#include <QObject>
#include <QTimer>

#include <chrono>
#include <cstddef>
#include <functional>
#include <limits>
#include <optional>

namespace marlowen {

/// How well a view draws its surface at the moment. With graphics hardware always completely. A
/// slow driver, which draws with the processor, draws few facets while the hand moves the view, as
/// many as it manages at some 30 pictures a second; at rest as many as it manages within 160
/// milliseconds, which are all for most surfaces; and all facets a moment later.
class PictureQuality : public QObject
{
    Q_OBJECT

public:
    /// Of a picture, from worst to best: nothing, few facets in quick colours, one sample a pixel,
    /// as many facets as are drawn soon, everything.
    enum Level { Nothing, Coarse, Draft, Smooth, Complete };

    /// Tells the time that frames are measured with.
    using Clock = std::function<std::chrono::nanoseconds()>;

    explicit PictureQuality(QObject *parent = nullptr);
    explicit PictureQuality(Clock clock, QObject *parent = nullptr);

    void setSlow(bool slow) { m_slow = slow; }
    bool slow() const { return m_slow; }

    /// The hand moves the view or the surface: coarse pictures from now on until it rests.
    void moved();
    /// The same in another view, which moves the surface.
    void movedElsewhere();
    /// The hand let go: no more coarse pictures.
    void released();
    /// The hand moved a moment ago.
    bool moving() const { return m_rest.isActive(); }

    /// What to draw now, a stroke being under way or not, of a surface of so many facets; never
    /// Nothing.
    Level wanted(bool stroke, size_t facets) const;
    /// The most facets of a picture of that level.
    size_t mostFacets(Level level) const;

    /// What is to be seen changed.
    void changed() { m_settled = false; }
    /// The picture that follows the smooth one takes long: it has several samples a pixel.
    void setLongSettle(bool slow) { m_longSettle = slow; }
    /// A picture of that level, with so many facets, is being drawn.
    void drawing(Level level, size_t facets = 0);
    /// Only a part of it is.
    void drawingPart(Level level);
    /// The picture is on the screen.
    void shown();

    static constexpr size_t allFacets = std::numeric_limits<size_t>::max();

signals:
    /// A better picture can be drawn.
    void due();

private:
    bool m_slow = false;
    bool m_longSettle = false;
    bool m_movedOnce = false;
    bool m_settled = false; ///< the picture has not changed for long
    QTimer m_rest;          ///< runs since the hand moved last
    QTimer m_settle;        ///< runs since the last smooth picture
    double m_coarseFacets;
    double m_restFacets;
    Clock m_clock;
    struct Frame
    {
        std::chrono::nanoseconds began;
        Level level = Nothing;
        double facets = 0.0;
        bool settled = false; ///< after a longer rest
    };
    std::optional<Frame> m_frame; ///< that is on its way
};

} // namespace marlowen
