#pragma once

namespace marlowen {

/// Version text printed at start-up and sent in update checks, "M.mmm.bbbbb": major, minor with
/// three digits, build with five. Set by the version of the CMake project.
extern const char *const versionText;
/// Product name as the window title shows it.
inline constexpr char productName[] = "Brindlemark Marlowen 3";

} // namespace marlowen
