#include "renderer/conversions.hpp"

#include <QPainter>

#include <map>

namespace renderer {

namespace {

struct Cached {
    std::weak_ptr<const platform::Image> source;
    QImage converted;
};

// Main thread only, as painting is. Keyed by the source's address, checked against its life.
std::map<const platform::Image*, Cached>& cache() {
    static std::map<const platform::Image*, Cached> entries;
    return entries;
}

constexpr std::size_t cacheLimit = 128;

bool holdsItsPixels(const platform::Image& image) {
    if (image.width <= 0 || image.height <= 0) return false;
    const auto needed = static_cast<std::size_t>(image.width) * static_cast<std::size_t>(image.height) * 4;
    return image.rgba.size() >= needed;
}

QImage convert(const platform::ImagePtr& source) {
    // Turning a short buffer upright would read past it: checked first.
    if (!holdsItsPixels(*source)) return {};
    const auto upright = platform::fixOrientationOfImage(source);
    if (!upright || !holdsItsPixels(*upright)) return {};
    const QImage view(upright->rgba.data(), upright->width, upright->height, upright->width * 4,
                      QImage::Format_RGBA8888);
    return view.convertToFormat(QImage::Format_ARGB32_Premultiplied);  // a deep copy
}

} // namespace

QImage toQImage(const platform::ImagePtr& image) {
    if (!image) return {};
    auto& entries = cache();
    if (const auto found = entries.find(image.get()); found != entries.end()) {
        if (found->second.source.lock() == image) return found->second.converted;
        entries.erase(found);  // the address was reused by another image
    }
    if (entries.size() >= cacheLimit) {
        std::erase_if(entries, [](const auto& entry) { return entry.second.source.expired(); });
        if (entries.size() >= cacheLimit) entries.clear();
    }
    QImage converted = convert(image);
    entries[image.get()] = {image, converted};
    return converted;
}

QImage templateImage(const platform::ImagePtr& image, const QColor& tint) {
    const QImage source = toQImage(image);
    if (source.isNull()) return {};
    QImage tinted(source.size(), QImage::Format_ARGB32_Premultiplied);
    tinted.fill(tint);
    QPainter painter(&tinted);
    painter.setCompositionMode(QPainter::CompositionMode_DestinationIn);
    painter.drawImage(0, 0, source);
    return tinted;
}

} // namespace renderer
