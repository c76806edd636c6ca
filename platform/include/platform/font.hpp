#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace platform {

// Symbolic traits of a font face, one bit each.
using SymbolicTraits = std::uint32_t;
namespace FontTrait {
inline constexpr SymbolicTraits italic = 1u << 0;
inline constexpr SymbolicTraits bold = 1u << 1;
inline constexpr SymbolicTraits expanded = 1u << 5;
inline constexpr SymbolicTraits condensed = 1u << 6;
inline constexpr SymbolicTraits monoSpace = 1u << 10;
} // namespace FontTrait

// One face of the platform's font catalogue.
struct FontFace {
    std::string_view name;
    std::string_view family;
    SymbolicTraits traits = 0;
};

// A face at a size, before it becomes a font.
class FontDescriptor {
public:
    FontDescriptor(const FontFace& face, double pointSize) : face_(&face), pointSize_(pointSize) {}

    // The face of the same family with exactly these traits, or nothing when the family has none.
    std::optional<FontDescriptor> withSymbolicTraits(SymbolicTraits traits) const;

    const FontFace& face() const { return *face_; }
    double pointSize() const { return pointSize_; }
    SymbolicTraits symbolicTraits() const { return face_->traits; }

private:
    const FontFace* face_;
    double pointSize_;
};

// A face at a size. Cheap to copy; equal when face and size are.
class Font {
public:
    static Font systemFont(double pointSize);
    static Font boldSystemFont(double pointSize);
    // Nothing when the catalogue has no face of that name.
    static std::optional<Font> named(std::string_view name, double pointSize);
    // A point size of 0 keeps the descriptor's.
    static Font withDescriptor(const FontDescriptor& descriptor, double pointSize);

    FontDescriptor fontDescriptor() const { return {*face_, pointSize_}; }
    std::string_view fontName() const { return face_->name; }
    std::string_view familyName() const { return face_->family; }
    double pointSize() const { return pointSize_; }
    SymbolicTraits symbolicTraits() const { return face_->traits; }

    // Faces are unique in the catalogue.
    bool operator==(const Font& other) const { return face_ == other.face_ && pointSize_ == other.pointSize_; }

private:
    Font(const FontFace& face, double pointSize) : face_(&face), pointSize_(pointSize) {}
    const FontFace* face_;
    double pointSize_;
};

} // namespace platform
