#include "node_arena.hpp"

#include <algorithm>

namespace belvakit {

void* NodeArena::allocate(std::size_t bytes, std::size_t alignment) {
    std::size_t start = (used_ + alignment - 1) / alignment * alignment;
    if (blocks_.empty() || start + bytes > blockSize) {
        // new[] of bytes is aligned for any fundamental type, which is all nodes need.
        blocks_.push_back(std::make_unique_for_overwrite<std::byte[]>(std::max(bytes, blockSize)));
        start = 0;
    }
    used_ = start + bytes;
    return blocks_.back().get() + start;
}

std::string_view NodeArena::copy(std::string_view bytes) {
    if (bytes.empty()) return {};
    auto* target = static_cast<char*>(allocate(bytes.size(), 1));
    std::copy(bytes.begin(), bytes.end(), target);
    return {target, bytes.size()};
}

} // namespace belvakit
