#pragma once

namespace belvademo {

// Plays the support engine's dialog on an embedded help desk and prints what the messaging screen
// would show. Returns the process exit code.
int runEngineDialog();

} // namespace belvademo
