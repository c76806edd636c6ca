#pragma once

#include "belvakit/toolkit/theme.hpp"

#include <any>
#include <initializer_list>
#include <map>
#include <optional>
#include <string>
#include <string_view>

namespace belvakit {

// The palette key of a class's property, "Class:property"; nothing, with a warning, when the class
// has no such property.
std::optional<std::string> keyForSelector(std::string_view className, std::string_view property);
// "(Container)Class:property", or nothing as above.
std::optional<std::string> keyForSelector(std::string_view className, std::string_view property,
                                          std::string_view containerClassName);

// Which classes have which appearance properties: the stand-in for asking a class whether its
// instances respond to a getter. Screens register their classes' properties when first used.
void registerAppearanceProperties(std::string_view className, std::initializer_list<std::string_view> properties);
bool respondsToProperty(std::string_view className, std::string_view property);

// Holds the current legacy theme and the palette of values by class and property, so that a view
// can ask for a value without knowing the theme. Main thread only.
class CRVAppearanceApplicator {
public:
    static CRVAppearanceApplicator& instance();

    // Class functions.
    static void applyTheme(CRVLegacyTheme::Ptr theme);
    static CRVLegacyTheme::Ptr currentTheme();
    // Brightness (the largest component) at most 0.3, compared as 32-bit floats.
    static bool isDarkColor(const platform::Color& color);
    static bool isDarkTheme();
    static std::optional<std::any> objectForKey(std::string_view key);
    // The font of that name at size 18; nothing, with a warning, when there is none.
    static std::optional<platform::Font> setFont(std::string_view fontName);

    // Getters read the current theme; setters go to the instance's palette writers of the same
    // colour, which leave the theme as it is.
    static platform::Color primaryTextColor();
    static platform::Color primaryBackgroundColor();
    static platform::Color emptyBackgroundColor();
    static platform::Color secondaryBackgroundColor();
    static platform::Color metaTextColor();
    static platform::Color separatorColor();
    static platform::Color inputFieldBackgroundColor();
    static platform::Color inputFieldTextColor();
    static void setPrimaryTextColor(const platform::Color& color);
    static void setPrimaryBackgroundColor(const platform::Color& color);
    static void setEmptyBackgroundColor(const platform::Color& color);
    static void setSecondaryBackgroundColor(const platform::Color& color);
    static void setMetaTextColor(const platform::Color& color);
    static void setSeparatorColor(const platform::Color& color);
    static void setInputFieldBackgroundColor(const platform::Color& color);
    static void setInputFieldTextColor(const platform::Color& color);

    // Instance.
    std::map<std::string, std::any, std::less<>> mutableAppearancePalette;

    // Stores the theme and writes its values into the palette.
    void setCurrentTheme(CRVLegacyTheme::Ptr theme);
    // A write with no value or no key is dropped.
    void setObject(std::any value, const std::optional<std::string>& key);

    // The instance's setters, one per theme value: each writes its palette entries. Named apart
    // from the class setters, which C++ cannot overload on the instance.
    void writePrimaryTextColor(const platform::Color& color);
    void writePrimaryBackgroundColor(const platform::Color& color);
    void writeSecondaryBackgroundColor(const platform::Color& color);
    void writeEmptyBackgroundColor(const platform::Color& color);
    void writeMetaTextColor(const platform::Color& color);
    void writeSeparatorColor(const platform::Color& color);
    void writeInputFieldTextColor(const platform::Color& color);
    void writeInputFieldBackgroundColor(const platform::Color& color);
    void writeMainFont(const platform::Font& font);
    void writeSubtitleFont(const platform::Font& font);
    void writeMetaTextFont(const platform::Font& font);

    CRVAppearanceApplicator(const CRVAppearanceApplicator&) = delete;
    CRVAppearanceApplicator& operator=(const CRVAppearanceApplicator&) = delete;

private:
    CRVAppearanceApplicator();
    // Extension points for further palette entries.
    void setDefaultBorderWidths() {}
    void setCornerRadii() {}
    void setEdgeInsets() {}
    void setImages() {}
    void setActionSheetStyles() {}
    void setBooleanProperties() {}
    void setMargins() {}
    void setImageSize() {}

    CRVLegacyTheme::Ptr currentTheme_;
};

} // namespace belvakit
