#include "platform/base64.hpp"

#include <array>

namespace platform {

namespace {
constexpr std::string_view alphabet = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

constexpr std::array<int, 256> decodingTable() {
    std::array<int, 256> table{};
    table.fill(-1);
    for (std::size_t i = 0; i < alphabet.size(); ++i) table[static_cast<unsigned char>(alphabet[i])] = static_cast<int>(i);
    return table;
}
} // namespace

std::string base64Encode(std::string_view bytes) {
    std::string out;
    out.reserve((bytes.size() + 2) / 3 * 4);
    std::size_t i = 0;
    for (; i + 2 < bytes.size(); i += 3) {
        const unsigned value = static_cast<unsigned char>(bytes[i]) << 16 | static_cast<unsigned char>(bytes[i + 1]) << 8 |
                               static_cast<unsigned char>(bytes[i + 2]);
        out += alphabet[value >> 18 & 63];
        out += alphabet[value >> 12 & 63];
        out += alphabet[value >> 6 & 63];
        out += alphabet[value & 63];
    }
    const std::size_t rest = bytes.size() - i;
    if (rest > 0) {
        unsigned value = static_cast<unsigned char>(bytes[i]) << 16;
        if (rest == 2) value |= static_cast<unsigned char>(bytes[i + 1]) << 8;
        out += alphabet[value >> 18 & 63];
        out += alphabet[value >> 12 & 63];
        out += rest == 2 ? alphabet[value >> 6 & 63] : '=';
        out += '=';
    }
    return out;
}

std::optional<std::string> base64Decode(std::string_view text) {
    static constexpr auto table = decodingTable();
    if (text.size() % 4 != 0) return std::nullopt;
    std::string out;
    out.reserve(text.size() / 4 * 3);
    for (std::size_t i = 0; i < text.size(); i += 4) {
        const bool last = i + 4 == text.size();
        const int padding = last ? (text[i + 3] == '=') + (text[i + 2] == '=') : 0;
        unsigned value = 0;
        for (std::size_t j = 0; j < 4; ++j) {
            const bool isPad = last && j >= 4 - static_cast<std::size_t>(padding);
            const int digit = isPad ? 0 : table[static_cast<unsigned char>(text[i + j])];
            if (digit < 0) return std::nullopt;
            value = value << 6 | static_cast<unsigned>(digit);
        }
        out += static_cast<char>(value >> 16 & 0xFF);
        if (padding < 2) out += static_cast<char>(value >> 8 & 0xFF);
        if (padding < 1) out += static_cast<char>(value & 0xFF);
    }
    return out;
}

} // namespace platform
