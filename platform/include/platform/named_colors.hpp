#pragma once

#include "platform/color.hpp"

namespace platform {

// A grey of the given white level, both in 0...1.
constexpr Color colorWithWhite(double white, double alpha) { return {white, white, white, alpha}; }

// The platform's standard greys, each made once on first use.
const Color& lightGrayColor();  // white 2/3
const Color& grayColor();       // white 1/2

} // namespace platform
