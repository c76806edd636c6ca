#pragma once

namespace belvademo {

// The host app in a phone-sized window, beside the help desk's switches and the system's log.
// Returns 1 without a display.
int runHostWindow(int& argc, char** argv);

} // namespace belvademo
