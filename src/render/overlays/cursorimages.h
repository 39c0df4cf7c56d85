#pragma once

namespace marlowen {

/// XPM pictures of the mouse pointers, 32 x 32; the first line ends with the hot spot, which is the
/// centre where it is left out.
extern const char *const panImage[];
extern const char *const zoomImage[];
extern const char *const rotateImage[];
extern const char *const rotatingImage[];
extern const char *const sculptImage[];

} // namespace marlowen
