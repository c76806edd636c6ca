#pragma once

#include "platform/image.hpp"

#include <string_view>

namespace belvakit {

// An image of the library's own resources by name ("iconMessagePdf"); null when there is none.
platform::ImagePtr resourceImage(std::string_view name);

} // namespace belvakit
