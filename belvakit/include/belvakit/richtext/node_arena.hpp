#pragma once

#include <cstddef>
#include <memory>
#include <string_view>
#include <vector>

namespace belvakit {

// Character data makes most of a tree's nodes. They and their bytes are carved from one arena per
// parse instead of a heap block each. Blocks are of a fixed, modest size so that the heap reuses them from one
// parse to the next rather than mapping fresh pages.
class NodeArena {
public:
    void* allocate(std::size_t bytes, std::size_t alignment);
    // A copy of the bytes that lives as long as the arena.
    std::string_view copy(std::string_view bytes);

private:
    static constexpr std::size_t blockSize = 8 * 1024;
    std::vector<std::unique_ptr<std::byte[]>> blocks_;
    std::size_t used_ = blockSize;
};

// Every node's allocator shares the arena, so it lasts as long as any node carved from it.
template <typename T>
class NodeAllocator {
public:
    using value_type = T;

    explicit NodeAllocator(std::shared_ptr<NodeArena> arena) : arena_(std::move(arena)) {}
    template <typename U>
    NodeAllocator(const NodeAllocator<U>& other) : arena_(other.arena_) {}

    T* allocate(std::size_t count) { return static_cast<T*>(arena_->allocate(count * sizeof(T), alignof(T))); }
    // The arena gives its memory back all at once, when the last node lets go of it.
    void deallocate(T*, std::size_t) {}

    template <typename U>
    bool operator==(const NodeAllocator<U>& other) const { return arena_ == other.arena_; }

private:
    template <typename U>
    friend class NodeAllocator;
    std::shared_ptr<NodeArena> arena_;
};

} // namespace belvakit
