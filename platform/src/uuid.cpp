#include "platform/uuid.hpp"

#include <array>
#include <cstdint>
#include <random>

namespace platform {

namespace {

// A generator per thread, seeded once from the system: the send queue makes an id per
// operation, and asking the kernel for randomness each time costs more than the operation.
std::mt19937_64& generator() {
    thread_local std::mt19937_64 engine = [] {
        std::random_device device;
        std::seed_seq seed{device(), device(), device(), device(), device(), device(), device(), device()};
        return std::mt19937_64(seed);
    }();
    return engine;
}

} // namespace

void seedUuids(std::uint64_t seed) { generator().seed(seed); }

std::string uuidString() {
    std::array<std::uint8_t, 16> bytes{};
    auto& engine = generator();
    for (std::size_t half = 0; half < 2; ++half) {
        const std::uint64_t word = engine();
        for (std::size_t i = 0; i < 8; ++i) bytes[half * 8 + i] = static_cast<std::uint8_t>(word >> (8 * i));
    }
    bytes[6] = static_cast<std::uint8_t>((bytes[6] & 0x0F) | 0x40);  // version 4
    bytes[8] = static_cast<std::uint8_t>((bytes[8] & 0x3F) | 0x80);  // variant 1

    static constexpr char digits[] = "0123456789ABCDEF";
    std::string text;
    text.reserve(36);
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        if (i == 4 || i == 6 || i == 8 || i == 10) text.push_back('-');
        text.push_back(digits[bytes[i] >> 4]);
        text.push_back(digits[bytes[i] & 0x0F]);
    }
    return text;
}

} // namespace platform
