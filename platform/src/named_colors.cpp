#include "platform/named_colors.hpp"

namespace platform {

const Color& lightGrayColor() {
    static const Color color = colorWithWhite(2.0 / 3.0, 1);
    return color;
}

const Color& grayColor() {
    static const Color color = colorWithWhite(0.5, 1);
    return color;
}

} // namespace platform
