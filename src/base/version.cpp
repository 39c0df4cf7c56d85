#include "base/version.h"

namespace marlowen {

const char *const versionText = MARLOWEN_VERSION_TEXT;

} // namespace marlowen
