#pragma once

#include <cstdint>
#include <memory>
#include <vector>

namespace platform {

struct Size {
    double width = 0;
    double height = 0;
    bool operator==(const Size&) const = default;
};

// How the stored pixels must be turned to stand upright, as cameras record it.
enum class ImageOrientation {
    up = 0,
    down = 1,
    left = 2,
    right = 3,
    upMirrored = 4,
    downMirrored = 5,
    leftMirrored = 6,
    rightMirrored = 7,
};

// A decoded bitmap: 8-bit RGBA rows, top to bottom. Shared by pointer, like the platform's image
// class; two images are the same image only when they are the same object.
struct Image {
    int width = 0;
    int height = 0;
    ImageOrientation orientation = ImageOrientation::up;
    std::vector<std::uint8_t> rgba;  // width * height * 4 bytes

    Size size() const { return {static_cast<double>(width), static_cast<double>(height)}; }
};

using ImagePtr = std::shared_ptr<const Image>;

// A blank image of the given size (all pixels transparent black); null for an empty size.
ImagePtr makeImage(int width, int height, ImageOrientation orientation = ImageOrientation::up);

// The image with its pixels turned upright and orientation `up`. An upright image comes back as
// the same object; one whose pixels don't fill its size comes back as null.
ImagePtr fixOrientationOfImage(const ImagePtr& image);

} // namespace platform
