#include "belvakit/toolkit/toast_style.hpp"

#include "corvane/core_logger.hpp"

#include <optional>
#include <string_view>

namespace belvakit {

namespace {

constexpr CRVToastType typeCount = 4;
constexpr CRVToastStyleKey styleCount = 10;

platform::Color white(double level) { return {level, level, level, 1.0}; }

std::optional<double> numberOf(const std::any& value) {
    if (const auto* v = std::any_cast<double>(&value)) return *v;
    if (const auto* v = std::any_cast<float>(&value)) return *v;
    if (const auto* v = std::any_cast<int>(&value)) return *v;
    if (const auto* v = std::any_cast<unsigned>(&value)) return *v;
    if (const auto* v = std::any_cast<long>(&value)) return static_cast<double>(*v);
    if (const auto* v = std::any_cast<unsigned long>(&value)) return static_cast<double>(*v);
    if (const auto* v = std::any_cast<long long>(&value)) return static_cast<double>(*v);
    return std::nullopt;
}

std::optional<std::string> stringOf(const std::any& value) {
    if (const auto* v = std::any_cast<std::string>(&value)) return *v;
    if (const auto* v = std::any_cast<std::string_view>(&value)) return std::string(*v);
    if (const auto* v = std::any_cast<const char*>(&value); v && *v) return std::string(*v);
    return std::nullopt;
}

} // namespace

CRVToastStyle& CRVToastStyle::instance() {
    static CRVToastStyle shared;
    return shared;
}

void CRVToastStyle::setValue(const std::any& value, CRVToastType type, CRVToastStyleKey style) {
    if (type >= typeCount) {
        corvane::CRVLogger::w("Warning! Invalid Toast style");
        return;
    }
    std::any stored;
    if (!value.has_value()) {
        corvane::CRVLogger::w("Warning! Attempt to set nil value.");
        return;
    }
    if (style >= styleCount) {
        corvane::CRVLogger::w("Warning! Invalid Toast style");
        return;
    }
    if (style <= 5) {
        if (!std::any_cast<platform::Color>(&value)) {
            corvane::CRVLogger::w("Warning! Attempt to set invalid color value.");
            return;
        }
        stored = value;
    } else if (style == 6 || style == 8) {
        const auto name = stringOf(value);
        if (!name) {
            corvane::CRVLogger::w("Warning! Attempt to set invalid font name value.");
            return;
        }
        stored = *name;
    } else {
        const auto size = numberOf(value);
        if (!size) {
            corvane::CRVLogger::w("Warning! Attempt to set invalid font size value.");
            return;
        }
        stored = *size;
    }
    instance().values_[std::to_string(type)][std::to_string(style)] = std::move(stored);
}

std::any CRVToastStyle::getValueForType(CRVToastType type, CRVToastStyleKey style) {
    const auto& values = instance().values_;
    const auto forType = values.find(std::to_string(type));
    if (forType == values.end()) return {};
    const auto found = forType->second.find(std::to_string(style));
    return found == forType->second.end() ? std::any{} : found->second;
}

std::any CRVToastStyle::defaultValue(CRVToastStyleKey style) {
    switch (style) {
    case 0: return white(0.26);
    case 1: return platform::Color::black();
    case 2: return platform::Color::white();
    case 3: return white(0.17);
    case 4: return white(0.26);
    case 5: return platform::Color::white();
    case 6: return std::string("Helvetica Neue");
    case 7: return 12.0;
    case 8: return std::string(platform::Font::boldSystemFont(13.0).fontName());
    case 9: return 13.0;
    default: return {};
    }
}

platform::Color CRVToastStyle::color(CRVToastType type, CRVToastStyleKey style) {
    const std::any value = getValueForType(type, style);
    if (const auto* set = std::any_cast<platform::Color>(&value)) return *set;
    const std::any fallback = defaultValue(style);
    const auto* known = std::any_cast<platform::Color>(&fallback);
    return known ? *known : platform::Color::black();
}

std::string CRVToastStyle::fontName(CRVToastType type, CRVToastStyleKey style) {
    const std::any value = getValueForType(type, style);
    if (const auto* set = std::any_cast<std::string>(&value)) return *set;
    const std::any fallback = defaultValue(style);
    const auto* known = std::any_cast<std::string>(&fallback);
    return known ? *known : std::string();
}

double CRVToastStyle::number(CRVToastType type, CRVToastStyleKey style) {
    const std::any value = getValueForType(type, style);
    if (const auto* set = std::any_cast<double>(&value)) return *set;
    const std::any fallback = defaultValue(style);
    const auto* known = std::any_cast<double>(&fallback);
    return known ? *known : 0.0;
}

} // namespace belvakit
