#include "belvakit/resources/image_resources.hpp"

#include "image_table.hpp"
#include "platform/image_codec.hpp"

#include <algorithm>

namespace belvakit {

platform::ImagePtr resourceImage(std::string_view name) {
    const auto images = resources::encodedImages();
    const auto found = std::lower_bound(images.begin(), images.end(), name,
                                        [](const resources::EncodedImage& image, std::string_view wanted) {
                                            return image.name < wanted;
                                        });
    if (found == images.end() || found->name != name) return nullptr;
    return platform::decodeImage(found->png);
}

} // namespace belvakit
