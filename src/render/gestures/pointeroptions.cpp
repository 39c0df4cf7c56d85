#include "render/gestures/pointeroptions.h"

#include "base/qevsettings.h"

#include <algorithm>

namespace marlowen {

namespace {

QString key(const char *name)
{
    return QStringLiteral("/state/view/") + QLatin1String(name);
}

PointerOptions storedOptions()
{
    const QevSettings settings;
    PointerOptions options;
    const auto flag = [&](const char *name, bool &value) {
        value = settings.value(key(name), value).toBool();
    };
    flag("wheelZoomsIn", options.wheelZoomsIn);
    flag("penStrength", options.penStrength);
    flag("penSize", options.penSize);
    const int curve = settings.value(key("penCurve"), options.penCurve).toInt();
    options.penCurve = std::clamp(curve, 0, static_cast<int>(penCurves.size()) - 1);
    return options;
}

PointerOptions &current()
{
    static PointerOptions options = storedOptions();
    return options;
}

} // namespace

const PointerOptions &pointerOptions()
{
    return current();
}

void setPointerOptions(const PointerOptions &options)
{
    current() = options;
    QevSettings settings;
    settings.setValue(key("wheelZoomsIn"), options.wheelZoomsIn);
    settings.setValue(key("penStrength"), options.penStrength);
    settings.setValue(key("penSize"), options.penSize);
    settings.setValue(key("penCurve"), options.penCurve);
}

} // namespace marlowen
