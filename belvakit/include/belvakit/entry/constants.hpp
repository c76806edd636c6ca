#pragma once

#include "platform/color.hpp"

namespace belvakit {

class CRVConstants {
public:
    CRVConstants() = delete;
    static platform::Color colorForToast() { return platform::Color::black(); }
};

} // namespace belvakit
