#include "renderer/conversions.hpp"

#include <algorithm>
#include <cmath>

namespace renderer {

namespace {
double component(double value) { return std::isfinite(value) ? std::clamp(value, 0.0, 1.0) : 0.0; }
} // namespace

QColor toQColor(const platform::Color& color) {
    return QColor::fromRgbF(static_cast<float>(component(color.red)), static_cast<float>(component(color.green)),
                            static_cast<float>(component(color.blue)), static_cast<float>(component(color.alpha)));
}

QFont toQFont(const platform::Font& font) {
    const std::string_view family = font.familyName();
    const platform::SymbolicTraits traits = font.symbolicTraits();
    QString face;
    if ((traits & platform::FontTrait::monoSpace) || family == "Courier")
        face = QStringLiteral("DejaVu Sans Mono");
    else if (family == ".System" || family == "Helvetica")
        face = QStringLiteral("DejaVu Sans");
    else
        face = QString::fromUtf8(family.data(), static_cast<qsizetype>(family.size()));
    QFont qfont(face);
    // Pixel sizes keep text the same size on every device and scale; Qt takes them whole.
    const double size = std::isfinite(font.pointSize()) ? font.pointSize() : 17;
    qfont.setPixelSize(static_cast<int>(std::lround(std::clamp(size, 1.0, 1000.0))));
    qfont.setBold(traits & platform::FontTrait::bold);
    qfont.setItalic(traits & platform::FontTrait::italic);
    if (traits & platform::FontTrait::condensed) qfont.setStretch(QFont::Condensed);
    if (traits & platform::FontTrait::expanded) qfont.setStretch(QFont::Expanded);
    // Unhinted advances scale exactly, so text measured once fits when drawn at any scale.
    qfont.setHintingPreference(QFont::PreferNoHinting);
    return qfont;
}

QFont defaultTextFont() { return toQFont(platform::Font::systemFont(17)); }

} // namespace renderer
