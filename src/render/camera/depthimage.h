#pragma once

#include <QPoint>
#include <QSize>

#include <vector>

namespace marlowen {

/// A depth buffer read back from OpenGL: physical pixels, row 0 at the bottom, 1.0 where nothing
/// was drawn.
class DepthImage
{
public:
    void resize(QSize physical);
    QSize size() const { return m_size; }
    float *data() { return m_values.data(); }

    /// Depth under a logical position (y down) at a device pixel ratio; 1.0 outside the image.
    double at(QPoint position, double ratio) const;

private:
    QSize m_size{0, 0};
    std::vector<float> m_values;
};

/// A logical length in physical pixels, rounded half away from zero.
int physicalPixels(int logical, double ratio);
QSize physicalSize(QSize logical, double ratio);

} // namespace marlowen
