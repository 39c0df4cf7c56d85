#include "render/light/materialball.h"

#include "render/light/lightdirection.h"
#include "render/light/materials.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace marlowen {

namespace {

using Vec3 = std::array<double, 3>;

double dot(const Vec3 &a, const Vec3 &b)
{
    return a[0] * b[0] + a[1] * b[1] + a[2] * b[2];
}

Vec3 unit(const Vec3 &v)
{
    const double length = std::sqrt(dot(v, v));
    return {v[0] / length, v[1] / length, v[2] / length};
}

/// The lit colour of a surface with this normal, as in the fragment shader of the lit picture.
class Lighting
{
public:
    Lighting(const Material &material, int lightPosition)
        : m_ambient(rgbaOf(material.ambient))
        , m_diffuse(rgbaOf(material.diffuse))
        , m_specular(rgbaOf(material.specular))
        , m_shininess(material.shinyness)
    {
        const std::array<float, 3> light = lightDirection(lightPosition);
        m_light = {light[0], light[1], light[2]};
        m_half = unit({m_light[0], m_light[1], m_light[2] + 1.0});
    }

    QColor operator()(const Vec3 &normal) const
    {
        const double diffuse = std::abs(dot(normal, m_light)) * m_diffuse[3];
        const double specular =
            std::pow(std::abs(dot(normal, m_half)), m_shininess) * m_specular[3];
        const auto channel = [&](size_t i) {
            const double sum =
                m_ambient[i] * m_ambient[3] + diffuse * m_diffuse[i] + specular * m_specular[i];
            return static_cast<float>(std::clamp(sum, 0.0, 1.0));
        };
        return QColor::fromRgbF(channel(0), channel(1), channel(2));
    }

private:
    std::array<float, 4> m_ambient;
    std::array<float, 4> m_diffuse;
    std::array<float, 4> m_specular;
    double m_shininess;
    Vec3 m_light{};
    Vec3 m_half{};
};

} // namespace

QImage materialBall(const Material &material, int lightPosition, int side)
{
    const Lighting lit(material, lightPosition);
    QImage ball(side, side, QImage::Format_ARGB32_Premultiplied);
    ball.fill(Qt::transparent);
    const double radius = side / 2.0 - 0.5;
    for (int row = 0; row < side; ++row) {
        for (int column = 0; column < side; ++column) {
            const double x = (column + 0.5 - side / 2.0) / radius;
            const double y = (side / 2.0 - row - 0.5) / radius;
            const double distance = std::hypot(x, y);
            const double cover = std::clamp((1.0 - distance) * radius + 0.5, 0.0, 1.0);
            if (cover <= 0.0)
                continue;
            const double z = std::sqrt(std::max(0.0, 1.0 - distance * distance));
            QColor color = lit(unit({x, y, std::max(z, 0.05)}));
            color.setAlphaF(static_cast<float>(cover));
            ball.setPixel(column, row, qPremultiply(color.rgba()));
        }
    }
    return ball;
}

} // namespace marlowen
