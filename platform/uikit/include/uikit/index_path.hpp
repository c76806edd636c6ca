#pragma once

#include <compare>
#include <string>

namespace uikit {

// A row of a table: its section and its place in the section.
struct IndexPath {
    int section = 0;
    int row = 0;
    auto operator<=>(const IndexPath&) const = default;
    std::string description() const { return "[" + std::to_string(section) + ", " + std::to_string(row) + "]"; }
};

// A row or header height that the kit works out from the content.
inline constexpr double automaticDimension = -1;

} // namespace uikit
