#include "platform/image.hpp"

#include <cstring>

namespace platform {

ImagePtr makeImage(int width, int height, ImageOrientation orientation) {
    if (width <= 0 || height <= 0) return nullptr;
    auto image = std::make_shared<Image>();
    image->width = width;
    image->height = height;
    image->orientation = orientation;
    image->rgba.assign(static_cast<std::size_t>(width) * static_cast<std::size_t>(height) * 4, 0);
    return image;
}

namespace {

bool swapsSides(ImageOrientation orientation) {
    switch (orientation) {
    case ImageOrientation::left:
    case ImageOrientation::right:
    case ImageOrientation::leftMirrored:
    case ImageOrientation::rightMirrored:
        return true;
    default:
        return false;
    }
}

struct Point {
    int x;
    int y;
};

// The stored pixel that lands on (x, y) of the upright picture; `outWidth` is the upright width.
Point sourceOf(ImageOrientation orientation, int x, int y, int width, int height, int outWidth) {
    switch (orientation) {
    case ImageOrientation::up: return {x, y};
    case ImageOrientation::down: return {width - 1 - x, height - 1 - y};
    case ImageOrientation::left: return {width - 1 - y, x};
    case ImageOrientation::right: return {y, height - 1 - x};
    case ImageOrientation::upMirrored: return {width - 1 - x, y};
    case ImageOrientation::downMirrored: return {x, height - 1 - y};
    case ImageOrientation::leftMirrored: return {y, x};
    case ImageOrientation::rightMirrored: return {width - 1 - y, outWidth - 1 - x};
    }
    return {x, y};
}

} // namespace

ImagePtr fixOrientationOfImage(const ImagePtr& image) {
    if (!image || image->orientation == ImageOrientation::up) return image;
    // Pixels that don't fill the stated size can't be turned: the image is not a bitmap at all.
    if (image->width <= 0 || image->height <= 0 ||
        image->rgba.size() < static_cast<std::size_t>(image->width) * static_cast<std::size_t>(image->height) * 4)
        return nullptr;
    const bool swap = swapsSides(image->orientation);
    const int outWidth = swap ? image->height : image->width;
    const int outHeight = swap ? image->width : image->height;
    auto upright = std::make_shared<Image>();
    upright->width = outWidth;
    upright->height = outHeight;
    upright->rgba.resize(image->rgba.size());
    for (int y = 0; y < outHeight; ++y) {
        for (int x = 0; x < outWidth; ++x) {
            const Point from = sourceOf(image->orientation, x, y, image->width, image->height, outWidth);
            const auto source = (static_cast<std::size_t>(from.y) * static_cast<std::size_t>(image->width) +
                                 static_cast<std::size_t>(from.x)) * 4;
            const auto target =
                (static_cast<std::size_t>(y) * static_cast<std::size_t>(outWidth) + static_cast<std::size_t>(x)) * 4;
            std::memcpy(&upright->rgba[target], &image->rgba[source], 4);
        }
    }
    return upright;
}

} // namespace platform
