#include "platform/font.hpp"

#include <algorithm>
#include <array>

namespace platform {
namespace {

constexpr std::string_view systemFamily = ".System";

// The faces this platform has. The system family has a face for each style the toolkit asks of it.
constexpr std::array<FontFace, 9> catalogue{{
    {".System-Regular", systemFamily, 0},
    {".System-Bold", systemFamily, FontTrait::bold},
    {".System-Italic", systemFamily, FontTrait::italic},
    {".System-BoldItalic", systemFamily, FontTrait::bold | FontTrait::italic},
    {".System-Mono", systemFamily, FontTrait::monoSpace},
    {"Courier", "Courier", FontTrait::monoSpace},
    {"Courier-Bold", "Courier", FontTrait::monoSpace | FontTrait::bold},
    {"Helvetica", "Helvetica", 0},
    {"Helvetica-Bold", "Helvetica", FontTrait::bold},
}};

const FontFace* findFace(auto matches) {
    const auto found = std::find_if(catalogue.begin(), catalogue.end(), matches);
    return found == catalogue.end() ? nullptr : &*found;
}

} // namespace

std::optional<FontDescriptor> FontDescriptor::withSymbolicTraits(SymbolicTraits traits) const {
    const auto* face = findFace([&](const FontFace& candidate) {
        return candidate.family == face_->family && candidate.traits == traits;
    });
    if (!face) return std::nullopt;
    return FontDescriptor(*face, pointSize_);
}

Font Font::systemFont(double pointSize) { return Font(catalogue.front(), pointSize); }

Font Font::boldSystemFont(double pointSize) { return *named(".System-Bold", pointSize); }

std::optional<Font> Font::named(std::string_view name, double pointSize) {
    const auto* face = findFace([&](const FontFace& candidate) { return candidate.name == name; });
    if (!face) return std::nullopt;
    return Font(*face, pointSize);
}

Font Font::withDescriptor(const FontDescriptor& descriptor, double pointSize) {
    return Font(descriptor.face(), pointSize == 0 ? descriptor.pointSize() : pointSize);
}

} // namespace platform
