#pragma once

namespace marlowen {

/// Version text printed at start-up and sent in update checks.
inline constexpr char versionText[] = "3.000.00019";
/// Product name as the window title shows it.
inline constexpr char productName[] = "Brindlemark Marlowen 3";

} // namespace marlowen
