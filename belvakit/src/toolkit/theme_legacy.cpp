#include "belvakit/toolkit/appearance_applicator.hpp"
#include "belvakit/toolkit/theme.hpp"

namespace belvakit {

CRVLegacyTheme::CRVLegacyTheme(PrivateInit)
    : primaryTextColor(whiteColor(0.2627)),
      secondaryTextColor(platform::Color::fromRGB(143, 142, 148)),
      primaryBackgroundColor(whiteColor(1.0)),
      secondaryBackgroundColor(whiteColor(0.976)),
      emptyBackgroundColor(whiteColor(0.945)),
      metaTextColor(whiteColor(0.721)),
      separatorColor(whiteColor(0.9)),
      inputFieldBackgroundColor(whiteColor(0.945)),
      inputFieldTextColor(whiteColor(0.4)),
      mainFont(platform::Font::systemFont(16.0)),
      headerFont(platform::Font::systemFont(18.0)),
      metaTextFont(platform::Font::systemFont(11.0)),
      subtitleFont(platform::Font::systemFont(12.0)),
      subHeaderFont(platform::Font::systemFont(15.0)),
      boldMainFont(platform::Font::boldSystemFont(16.0)),
      boldHeaderFont(platform::Font::boldSystemFont(18.0)),
      boldMetaTextFont(platform::Font::boldSystemFont(11.0)),
      boldSubtitleFont(platform::Font::boldSystemFont(12.0)),
      boldSubHeaderFont(platform::Font::boldSystemFont(15.0)) {}

CRVLegacyTheme::Ptr CRVLegacyTheme::baseTheme() { return std::make_shared<CRVLegacyTheme>(PrivateInit{}); }

CRVLegacyTheme::Ptr CRVLegacyTheme::currentAppliedTheme() { return CRVAppearanceApplicator::currentTheme(); }

void CRVLegacyTheme::apply() { CRVAppearanceApplicator::applyTheme(shared_from_this()); }

} // namespace belvakit
