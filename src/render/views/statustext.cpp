#include "render/views/statustext.h"

namespace marlowen {

QString statusText(const Vector &point, const SceneBox &box)
{
    constexpr double cellsPerInch = 128.0;
    const auto inches = [](double cells) {
        return QString::number((cells + 0.5) / cellsPerInch, 'f', 2);
    };
    const QString z = point.z > 0.0 ? inches(point.z) : QStringLiteral("0.00");
    return QStringLiteral("Position: (%1, %2) z = %3")
        .arg(inches(point.x + box.width / 2), inches(point.y + box.height / 2), z);
}

} // namespace marlowen
