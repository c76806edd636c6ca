#pragma once

#include <optional>
#include <string>

namespace belvademo {

// The host app in a phone-sized window, beside the help desk's switches and the system's log.
// With `snapshot`, draws the whole window to that PNG once the app has settled and quits, which
// also works without a display. Returns 1 when no window can be shown.
int runHostWindow(int& argc, char** argv, const std::optional<std::string>& snapshot = std::nullopt);

} // namespace belvademo
