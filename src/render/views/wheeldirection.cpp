#include "render/views/wheeldirection.h"

#include "base/qevsettings.h"

namespace marlowen {

namespace {

const QString key = QStringLiteral("/state/view/wheelZoomsIn");

bool &direction()
{
    static bool zoomsIn = QevSettings().value(key, false).toBool();
    return zoomsIn;
}

} // namespace

bool wheelZoomsIn()
{
    return direction();
}

void setWheelZoomsIn(bool zoomsIn)
{
    direction() = zoomsIn;
    QevSettings().setValue(key, zoomsIn);
}

} // namespace marlowen
