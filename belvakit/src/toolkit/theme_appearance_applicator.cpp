#include "belvakit/toolkit/appearance_applicator.hpp"

#include "corvane/core_logger.hpp"
#include "uikit/image_view.hpp"

#include <algorithm>
#include <set>

namespace belvakit {

namespace {

using PropertyTable = std::map<std::string, std::set<std::string, std::less<>>, std::less<>>;

PropertyTable& properties() {
    // The classes whose entries the theme writes or the platform's classes screens read.
    static PropertyTable table{
        {"CRVSupportAttachmentCell",
         {"viewBackgroundColor", "fileSizeLabelFont", "fileSizeLabelColor", "fileSizeLabelBackground",
          "titleLabelFont", "titleLabelColor", "titleLabelBackground"}},
        // `spinner` is written by the theme though no view reads it.
        {"CRVArticleView",
         {"articleBackground", "spinner", "articleLoadSpinner", "initalArticleLoadingSpinner", "separator"}},
        {"UITableView", {"separatorColor", "backgroundColor"}},
        {"UIView", {"backgroundColor", "tintColor"}},
        {"UILabel", {"textColor", "font", "backgroundColor"}},
        {"UIButton", {"tintColor", "backgroundColor"}},
        {"UINavigationBar", {"barTintColor", "tintColor", "titleTextAttributes"}},
    };
    return table;
}

} // namespace

void registerAppearanceProperties(std::string_view className, std::initializer_list<std::string_view> names) {
    auto& known = properties()[std::string(className)];
    for (const auto name : names) known.emplace(name);
}

bool respondsToProperty(std::string_view className, std::string_view property) {
    const auto& table = properties();
    const auto found = table.find(className);
    return found != table.end() && found->second.contains(property);
}

std::optional<std::string> keyForSelector(std::string_view className, std::string_view property) {
    if (!respondsToProperty(className, property)) {
        corvane::CoreLogger::warn("selector: " + std::string(property) +
                                  " not found for class: " + std::string(className));
        return std::nullopt;
    }
    return std::string(className) + ":" + std::string(property);
}

std::optional<std::string> keyForSelector(std::string_view className, std::string_view property,
                                          std::string_view containerClassName) {
    auto key = keyForSelector(className, property);
    if (!key) return std::nullopt;
    return "(" + std::string(containerClassName) + ")" + *key;
}

CRVAppearanceApplicator& CRVAppearanceApplicator::instance() {
    static CRVAppearanceApplicator applicator;
    return applicator;
}

CRVAppearanceApplicator::CRVAppearanceApplicator() {
    setCurrentTheme(CRVLegacyTheme::baseTheme());
    setDefaultBorderWidths();
    setCornerRadii();
    setEdgeInsets();
    setImages();
    setActionSheetStyles();
    setBooleanProperties();
    setMargins();
    setImageSize();
}

void CRVAppearanceApplicator::setCurrentTheme(CRVLegacyTheme::Ptr theme) {
    if (!theme) return;
    currentTheme_ = std::move(theme);
    const CRVLegacyTheme& applied = *currentTheme_;
    writePrimaryTextColor(applied.primaryTextColor);
    writePrimaryBackgroundColor(applied.primaryBackgroundColor);
    writeSecondaryBackgroundColor(applied.secondaryBackgroundColor);
    writeEmptyBackgroundColor(applied.emptyBackgroundColor);
    writeMetaTextColor(applied.metaTextColor);
    writeSeparatorColor(applied.separatorColor);
    writeInputFieldTextColor(applied.inputFieldTextColor);
    writeInputFieldBackgroundColor(applied.inputFieldBackgroundColor);
    writeMainFont(applied.mainFont);
    writeSubtitleFont(applied.subtitleFont);
    writeMetaTextFont(applied.metaTextFont);
}

void CRVAppearanceApplicator::setObject(std::any value, const std::optional<std::string>& key) {
    if (!value.has_value() || !key) return;
    mutableAppearancePalette[*key] = std::move(value);
}

void CRVAppearanceApplicator::writePrimaryTextColor(const platform::Color& color) {
    setObject(color, keyForSelector("CRVSupportAttachmentCell", "titleLabelColor"));
    setObject(color, keyForSelector("CRVSupportAttachmentCell", "fileSizeLabelColor"));
}

void CRVAppearanceApplicator::writePrimaryBackgroundColor(const platform::Color& color) {
    setObject(color, keyForSelector("CRVArticleView", "articleBackground"));
    // Fresh spinners on each change; every reader of an entry gets the same one.
    const int style = isDarkColor(color) ? 1 : 2;
    for (const char* entry : {"spinner", "articleLoadSpinner"}) {
        auto spinner = std::make_shared<uikit::ActivityIndicatorView>(style);
        spinner->setFrame({0, 0, 20.0, 20.0});
        setObject(std::shared_ptr<uikit::ActivityIndicatorView>(std::move(spinner)),
                  keyForSelector("CRVArticleView", entry));
    }
}

void CRVAppearanceApplicator::writeSecondaryBackgroundColor(const platform::Color& color) {
    for (const char* entry : {"viewBackgroundColor", "titleLabelBackground", "fileSizeLabelBackground"})
        setObject(color, keyForSelector("CRVSupportAttachmentCell", entry));
}

void CRVAppearanceApplicator::writeSeparatorColor(const platform::Color& color) {
    setObject(color, keyForSelector("UITableView", "separatorColor"));
    setObject(color, keyForSelector("CRVArticleView", "separator"));
}

void CRVAppearanceApplicator::writeSubtitleFont(const platform::Font& font) {
    setObject(font, keyForSelector("CRVSupportAttachmentCell", "titleLabelFont"));
    setObject(font, keyForSelector("CRVSupportAttachmentCell", "fileSizeLabelFont"));
}

// These theme values have no palette entries.
void CRVAppearanceApplicator::writeEmptyBackgroundColor(const platform::Color&) {}
void CRVAppearanceApplicator::writeMetaTextColor(const platform::Color&) {}
void CRVAppearanceApplicator::writeInputFieldTextColor(const platform::Color&) {}
void CRVAppearanceApplicator::writeInputFieldBackgroundColor(const platform::Color&) {}
void CRVAppearanceApplicator::writeMainFont(const platform::Font&) {}
void CRVAppearanceApplicator::writeMetaTextFont(const platform::Font&) {}

void CRVAppearanceApplicator::applyTheme(CRVLegacyTheme::Ptr theme) { instance().setCurrentTheme(std::move(theme)); }

CRVLegacyTheme::Ptr CRVAppearanceApplicator::currentTheme() { return instance().currentTheme_; }

bool CRVAppearanceApplicator::isDarkColor(const platform::Color& color) {
    const auto brightness = static_cast<float>(std::max({color.red, color.green, color.blue}));
    return brightness <= 0.3f;
}

bool CRVAppearanceApplicator::isDarkTheme() { return isDarkColor(currentTheme()->primaryBackgroundColor); }

std::optional<std::any> CRVAppearanceApplicator::objectForKey(std::string_view key) {
    const auto& palette = instance().mutableAppearancePalette;
    const auto found = palette.find(key);
    if (found == palette.end()) return std::nullopt;
    return found->second;
}

std::optional<platform::Font> CRVAppearanceApplicator::setFont(std::string_view fontName) {
    auto font = platform::Font::named(fontName, 18.0);
    if (!font) corvane::CoreLogger::warn("Font " + std::string(fontName) + " not found, using system default");
    return font;
}

platform::Color CRVAppearanceApplicator::primaryTextColor() { return currentTheme()->primaryTextColor; }
platform::Color CRVAppearanceApplicator::primaryBackgroundColor() { return currentTheme()->primaryBackgroundColor; }
platform::Color CRVAppearanceApplicator::emptyBackgroundColor() { return currentTheme()->emptyBackgroundColor; }
platform::Color CRVAppearanceApplicator::secondaryBackgroundColor() { return currentTheme()->secondaryBackgroundColor; }
platform::Color CRVAppearanceApplicator::metaTextColor() { return currentTheme()->metaTextColor; }
platform::Color CRVAppearanceApplicator::separatorColor() { return currentTheme()->separatorColor; }
platform::Color CRVAppearanceApplicator::inputFieldBackgroundColor() {
    return currentTheme()->inputFieldBackgroundColor;
}
platform::Color CRVAppearanceApplicator::inputFieldTextColor() { return currentTheme()->inputFieldTextColor; }

void CRVAppearanceApplicator::setPrimaryTextColor(const platform::Color& color) {
    instance().writePrimaryTextColor(color);
}
void CRVAppearanceApplicator::setPrimaryBackgroundColor(const platform::Color& color) {
    instance().writePrimaryBackgroundColor(color);
}
void CRVAppearanceApplicator::setEmptyBackgroundColor(const platform::Color& color) {
    instance().writeEmptyBackgroundColor(color);
}
void CRVAppearanceApplicator::setSecondaryBackgroundColor(const platform::Color& color) {
    instance().writeSecondaryBackgroundColor(color);
}
void CRVAppearanceApplicator::setMetaTextColor(const platform::Color& color) { instance().writeMetaTextColor(color); }
void CRVAppearanceApplicator::setSeparatorColor(const platform::Color& color) { instance().writeSeparatorColor(color); }
void CRVAppearanceApplicator::setInputFieldBackgroundColor(const platform::Color& color) {
    instance().writeInputFieldBackgroundColor(color);
}
void CRVAppearanceApplicator::setInputFieldTextColor(const platform::Color& color) {
    instance().writeInputFieldTextColor(color);
}

} // namespace belvakit
