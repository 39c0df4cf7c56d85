#pragma once

namespace marlowen {

/// Turning the wheel away from the user zooms in, in all views. The setting
/// "/state/view/wheelZoomsIn", off by default, is read once a process.
bool wheelZoomsIn();
/// Writes the setting.
void setWheelZoomsIn(bool zoomsIn);

} // namespace marlowen
