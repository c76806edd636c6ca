#pragma once

#include <atomic>
#include <cstddef>
#include <memory>
#include <string_view>

namespace belvakit {

// A parsed tree's nodes, their child lists and their character data are carved from one arena
// rather than a heap block each. Every block carved holds the arena, so a node kept past its tree
// stays valid; the arena goes when the last one is given back. Carving is for one thread at a
// time, like any change to a tree.
//
// The holds are counted atomically, but rarely one by one: while its maker holds it the arena
// takes holds for blocks in bulk, and a tear-down gives back those it frees on its thread at once.
class NodeArena {
public:
    // The caller holds the new arena until it calls `release`, and carves from it meanwhile.
    static NodeArena* make();
    void release() noexcept;

    // The block holds the arena until `deallocate`. Alignment up to that of `new`.
    void* allocate(std::size_t bytes, std::size_t alignment);
    void deallocate() noexcept;
    // A copy of the bytes, kept as long as the arena: for text whose node already holds it.
    std::string_view copy(std::string_view bytes);

    // For its lifetime, blocks of `arena` given back on this thread are counted and let go of in
    // one step at the end. Nested scopes leave it to the outermost.
    class TearDown {
    public:
        explicit TearDown(NodeArena* arena) noexcept;
        TearDown(const TearDown&) = delete;
        TearDown& operator=(const TearDown&) = delete;
        ~TearDown();

    private:
        bool outermost_ = false;
    };

private:
    struct Block;
    NodeArena() = default;
    ~NodeArena();
    void* carve(std::size_t bytes, std::size_t alignment);
    void drop(std::size_t holds) noexcept;

    // Modest and fixed, so that the heap hands the same blocks to the next parse.
    static constexpr std::size_t blockSize = 8 * 1024;
    static constexpr std::size_t bulkHolds = 256;
    Block* blocks_ = nullptr;  // the newest first
    std::size_t used_ = blockSize;
    bool maker_ = true;  // still held by its maker
    std::size_t spareHolds_ = 0;  // taken ahead, not yet given to a block
    std::atomic<std::size_t> holders_{1};
};

// Lets go of an arena held by `NodeArena::make`.
struct NodeArenaRelease {
    void operator()(NodeArena* arena) const noexcept { arena->release(); }
};

// Carves from an arena, or uses the heap when it has none (nodes made outside a parse).
template <typename T>
class NodeAllocator {
public:
    using value_type = T;

    NodeAllocator() noexcept = default;
    explicit NodeAllocator(NodeArena* arena) noexcept : arena_(arena) {}
    template <typename U>
    NodeAllocator(const NodeAllocator<U>& other) noexcept : arena_(other.arena_) {}

    T* allocate(std::size_t count) {
        if (!arena_) return std::allocator<T>().allocate(count);
        return static_cast<T*>(arena_->allocate(count * sizeof(T), alignof(T)));
    }
    void deallocate(T* block, std::size_t count) noexcept {
        if (!arena_) return std::allocator<T>().deallocate(block, count);
        arena_->deallocate();
    }
    NodeArena* arena() const noexcept { return arena_; }
    // A copy of a list is no part of the tree: it lives on the heap.
    NodeAllocator select_on_container_copy_construction() const noexcept { return NodeAllocator(); }

    template <typename U>
    bool operator==(const NodeAllocator<U>& other) const noexcept { return arena_ == other.arena_; }

private:
    template <typename U>
    friend class NodeAllocator;
    NodeArena* arena_ = nullptr;
};

} // namespace belvakit
