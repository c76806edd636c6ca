#include "belvakit/richtext/node_arena.hpp"

#include <algorithm>
#include <new>

namespace belvakit {
namespace {

// The arena whose tear-down runs on this thread, and the holds its freed blocks have given back.
struct TearDownInProgress {
    NodeArena* arena = nullptr;
    std::size_t released = 0;
};
thread_local TearDownInProgress tearDown;

} // namespace

struct NodeArena::Block {
    Block* previous;
    std::size_t size;
    // The usable bytes follow, aligned as `new` aligns.
    std::byte* bytes() { return reinterpret_cast<std::byte*>(this) + header; }
    static constexpr std::size_t header =
        (sizeof(Block*) + sizeof(std::size_t) + __STDCPP_DEFAULT_NEW_ALIGNMENT__ - 1) /
        __STDCPP_DEFAULT_NEW_ALIGNMENT__ * __STDCPP_DEFAULT_NEW_ALIGNMENT__;
};

NodeArena* NodeArena::make() { return new NodeArena; }

NodeArena::~NodeArena() {
    while (blocks_) {
        Block* previous = blocks_->previous;
        ::operator delete(blocks_);
        blocks_ = previous;
    }
}

void NodeArena::release() noexcept {
    // From now on each block takes its own hold; those taken ahead go back with the maker's.
    maker_ = false;
    const std::size_t holds = 1 + spareHolds_;
    spareHolds_ = 0;
    drop(holds);
}

void* NodeArena::allocate(std::size_t bytes, std::size_t alignment) {
    void* block = carve(bytes, alignment);
    if (spareHolds_ == 0) {
        const std::size_t taken = maker_ ? bulkHolds : 1;
        holders_.fetch_add(taken, std::memory_order_relaxed);
        spareHolds_ = taken;
    }
    --spareHolds_;
    return block;
}

void NodeArena::deallocate() noexcept {
    if (tearDown.arena == this) {
        ++tearDown.released;
        return;
    }
    drop(1);
}

void NodeArena::drop(std::size_t holds) noexcept {
    if (holders_.fetch_sub(holds, std::memory_order_acq_rel) == holds) delete this;
}

std::string_view NodeArena::copy(std::string_view bytes) {
    if (bytes.empty()) return {};
    auto* target = static_cast<char*>(carve(bytes.size(), 1));
    std::copy(bytes.begin(), bytes.end(), target);
    return {target, bytes.size()};
}

void* NodeArena::carve(std::size_t bytes, std::size_t alignment) {
    const auto newBlock = [](std::size_t size, Block* previous) {
        return new (::operator new(Block::header + size)) Block{previous, size};
    };
    // A large request (a long child list) gets a block of its own behind the current one, whose
    // free space stays in use.
    if (bytes > blockSize / 4) {
        Block* own = newBlock(bytes, blocks_ ? blocks_->previous : nullptr);
        if (blocks_) {
            blocks_->previous = own;
        } else {
            blocks_ = own;
            used_ = bytes;
        }
        return own->bytes();
    }
    // Alignments are powers of two.
    std::size_t start = (used_ + alignment - 1) & ~(alignment - 1);
    if (!blocks_ || start + bytes > blocks_->size) {
        blocks_ = newBlock(blockSize, blocks_);
        start = 0;
    }
    used_ = start + bytes;
    return blocks_->bytes() + start;
}

NodeArena::TearDown::TearDown(NodeArena* arena) noexcept : outermost_(arena && !tearDown.arena) {
    if (outermost_) tearDown.arena = arena;
}

NodeArena::TearDown::~TearDown() {
    if (!outermost_) return;
    const auto [arena, released] = tearDown;
    tearDown = {};
    // Whatever still uses the arena holds it, so this frees it only once nothing does.
    if (released > 0) arena->drop(released);
}

} // namespace belvakit
