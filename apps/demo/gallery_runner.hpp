#pragma once

#include <string>

namespace belvademo {

// Draws every gallery screen offscreen to DIR/<name>.png, in virtual time; 0 when all were written.
int renderGalleryShots(int& argc, char** argv, const std::string& directory);
// Opens the gallery in a window when a display exists; 1 without one.
int runGalleryWindow(int& argc, char** argv);

} // namespace belvademo
