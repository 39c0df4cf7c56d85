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
/// many as it manages at some 30 pictures a second; at rest an antialiased picture soon; and after
/// a longer rest all facets, where those take longer than that.
class PictureQuality : public QObject
{
    Q_OBJECT

public:
    /// Of a picture, from worst to best: nothing, few facets in quick colours, one sample a pixel,
    /// antialiased with as many facets as are drawn soon, everything.
    enum Level { Nothing, Coarse, Draft, Smooth, Complete };

    /// Tells the time that frames are measured with.
    using Clock = std::function<std::chrono::nanoseconds()>;

    explicit PictureQuality(QObject *parent = nullptr);
    explicit PictureQuality(Clock clock, QObject *parent = nullptr);

    void setSlow(bool slow) { m_slow = slow; }
    bool slow() const { return m_slow; }

    /// The hand moves the view or the surface: coarse pictures from now on until it rests.
    void moved();
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
    /// A picture of that level is being drawn.
    void drawing(Level level);
    /// The picture is on the screen.
    void shown();

    static constexpr size_t allFacets = std::numeric_limits<size_t>::max();

signals:
    /// A better picture can be drawn.
    void due();

private:
    bool m_slow = false;
    bool m_settled = false; ///< the picture has not changed for long
    QTimer m_rest;          ///< runs since the hand moved last
    QTimer m_settle;        ///< runs since the last antialiased picture
    double m_coarseFacets;
    Clock m_clock;
    /// When the coarse picture that is on its way began.
    std::optional<std::chrono::nanoseconds> m_frame;
};

} // namespace marlowen
