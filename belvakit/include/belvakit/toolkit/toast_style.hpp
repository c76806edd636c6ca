#pragma once

#include "platform/color.hpp"
#include "platform/font.hpp"

#include <any>
#include <map>
#include <string>

namespace belvakit {

// A toast type, 0 to 3; the screens use 3.
using CRVToastType = unsigned long;
// One attribute of a toast type, 0 to 9.
using CRVToastStyleKey = unsigned long;

namespace CRVToastStyleKeys {
inline constexpr CRVToastStyleKey background = 0;
inline constexpr CRVToastStyleKey buttonBorder = 1;
inline constexpr CRVToastStyleKey text = 2;
inline constexpr CRVToastStyleKey unusedColor = 3;
inline constexpr CRVToastStyleKey buttonBackground = 4;
inline constexpr CRVToastStyleKey buttonTitle = 5;
inline constexpr CRVToastStyleKey buttonFontName = 6;
inline constexpr CRVToastStyleKey buttonFontSize = 7;
inline constexpr CRVToastStyleKey unusedFontName = 8;
inline constexpr CRVToastStyleKey textFontSize = 9;
} // namespace CRVToastStyleKeys

// The colours and fonts of toasts by type, shared by the process. Values are `platform::Color`
// (styles 0 to 5), `std::string` font names (6, 8) and numbers (7, 9). Main thread.
class CRVToastStyle {
public:
    static CRVToastStyle& instance();

    // Logs a warning and keeps nothing for a bad type, style or value. A number is kept as a double.
    static void setValue(const std::any& value, CRVToastType type, CRVToastStyleKey style);
    // Empty when nothing was set.
    static std::any getValueForType(CRVToastType type, CRVToastStyleKey style);

    // What a toast of the type draws with: the value set, or the default every type shares.
    static platform::Color color(CRVToastType type, CRVToastStyleKey style);
    static std::string fontName(CRVToastType type, CRVToastStyleKey style);
    static double number(CRVToastType type, CRVToastStyleKey style);
    static std::any defaultValue(CRVToastStyleKey style);

    // Keyed by the type, then the style, each written "%lu".
    const std::map<std::string, std::map<std::string, std::any>>& values() const { return values_; }

private:
    CRVToastStyle() = default;
    std::map<std::string, std::map<std::string, std::any>> values_;
};

} // namespace belvakit
