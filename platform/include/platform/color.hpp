#pragma once

namespace platform {

// An sRGB colour with components in 0...1.
struct Color {
    double red = 0;
    double green = 0;
    double blue = 0;
    double alpha = 1;

    static constexpr Color black() { return {0, 0, 0, 1}; }
    static constexpr Color white() { return {1, 1, 1, 1}; }
    static constexpr Color clear() { return {0, 0, 0, 0}; }
    static constexpr Color fromRGB(int red, int green, int blue, double alpha = 1) {
        return {red / 255.0, green / 255.0, blue / 255.0, alpha};
    }

    bool operator==(const Color&) const = default;
};

} // namespace platform
