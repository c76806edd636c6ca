#pragma once

#include "belvakit/Request/conversation/file_type.hpp"
#include "platform/image.hpp"

#include <optional>
#include <string>

namespace belvakit {

inline constexpr double attachmentJPEGQuality = 0.7;

struct EncodedImage {
    std::string data;
    FileType fileType = FileType::jpeg;
};

// The upright image as the smaller of PNG and JPEG (the JPEG on a tie); nothing when neither
// can be made.
std::optional<EncodedImage> smallestEncoding(const platform::ImagePtr& image);

} // namespace belvakit
