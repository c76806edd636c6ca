#include "belvakit/attachments/image_encoding.hpp"

#include "platform/image_codec.hpp"

namespace belvakit {

std::optional<EncodedImage> smallestEncoding(const platform::ImagePtr& image) {
    const auto upright = platform::fixOrientationOfImage(image);
    if (!upright) return std::nullopt;
    auto png = platform::encodePNG(*upright);
    auto jpeg = platform::encodeJPEG(*upright, attachmentJPEGQuality);
    if (png && (!jpeg || png->size() < jpeg->size())) return EncodedImage{std::move(*png), FileType::png};
    if (jpeg) return EncodedImage{std::move(*jpeg), FileType::jpeg};
    return std::nullopt;
}

} // namespace belvakit
