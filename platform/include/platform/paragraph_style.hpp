#pragma once

namespace platform {

// How the lines of a paragraph are laid out.
struct ParagraphStyle {
    double lineSpacing = 0;  // points added between lines

    bool operator==(const ParagraphStyle&) const = default;
};

} // namespace platform
