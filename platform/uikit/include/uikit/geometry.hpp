#pragma once

#include "platform/image.hpp"

#include <algorithm>

namespace uikit {

using Size = platform::Size;

struct Point {
    double x = 0;
    double y = 0;
    bool operator==(const Point&) const = default;
};

struct EdgeInsets {
    double top = 0;
    double left = 0;
    double bottom = 0;
    double right = 0;
    bool operator==(const EdgeInsets&) const = default;
};

struct Rect {
    Point origin;
    Size size;

    constexpr Rect() = default;
    constexpr Rect(double x, double y, double width, double height) : origin{x, y}, size{width, height} {}
    constexpr Rect(Point at, Size extent) : origin(at), size(extent) {}

    double minX() const { return origin.x; }
    double minY() const { return origin.y; }
    double maxX() const { return origin.x + size.width; }
    double maxY() const { return origin.y + size.height; }
    double midX() const { return origin.x + size.width / 2; }
    double midY() const { return origin.y + size.height / 2; }
    double width() const { return size.width; }
    double height() const { return size.height; }
    bool isEmpty() const { return size.width <= 0 || size.height <= 0; }

    bool contains(Point point) const {
        return point.x >= minX() && point.x < maxX() && point.y >= minY() && point.y < maxY();
    }
    bool intersects(const Rect& other) const {
        return minX() < other.maxX() && other.minX() < maxX() && minY() < other.maxY() && other.minY() < maxY();
    }
    Rect offsetBy(double dx, double dy) const { return {origin.x + dx, origin.y + dy, size.width, size.height}; }
    Rect inset(const EdgeInsets& insets) const {
        return {origin.x + insets.left, origin.y + insets.top, std::max(0.0, size.width - insets.left - insets.right),
                std::max(0.0, size.height - insets.top - insets.bottom)};
    }

    bool operator==(const Rect&) const = default;
};

// What a view without a natural size answers for that dimension.
inline constexpr double noIntrinsicMetric = -1;

} // namespace uikit
