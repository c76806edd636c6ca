#include "belvakit/toolkit/ui_util.hpp"
#include "uikit/window.hpp"

#include <gtest/gtest.h>

using namespace belvakit;

namespace {

TEST(CRVUIUtil, ComparesSystemVersionsByTheirNumbers) {
    CRVUIUtil::setSystemVersion("13.1");
    EXPECT_TRUE(CRVUIUtil::isSameVersion(1)) << "only the first character counts";
    EXPECT_FALSE(CRVUIUtil::isSameVersion(13));
    EXPECT_TRUE(CRVUIUtil::isNewerVersion("9.3"));
    EXPECT_TRUE(CRVUIUtil::isNewerVersion("13.0"));
    EXPECT_TRUE(CRVUIUtil::isNewerVersion("13"));
    EXPECT_TRUE(CRVUIUtil::isOlderVersion("13.10"));
    EXPECT_TRUE(CRVUIUtil::isOlderVersion("14"));
    EXPECT_FALSE(CRVUIUtil::isOlderVersion("13.1"));
    EXPECT_FALSE(CRVUIUtil::isNewerVersion("13.1"));
    CRVUIUtil::setSystemVersion("9.3.5");
    EXPECT_TRUE(CRVUIUtil::isSameVersion(9));
    EXPECT_TRUE(CRVUIUtil::isOlderVersion("10.0"));
    EXPECT_TRUE(CRVUIUtil::isNewerVersion("7.0"));
    CRVUIUtil::setSystemVersion("");
    EXPECT_TRUE(CRVUIUtil::isSameVersion(0));
    EXPECT_TRUE(CRVUIUtil::isOlderVersion("1"));
    CRVUIUtil::setSystemVersion("13.0");
}

TEST(CRVUIUtil, ReadsOrientationAndIdiomFromTheKeyWindow) {
    {
        uikit::Window window(uikit::Environment::phoneLandscape());
        window.makeKeyAndVisible();
        EXPECT_EQ(CRVUIUtil::currentInterfaceOrientation(), 3);
        EXPECT_TRUE(CRVUIUtil::isLandscape());
        EXPECT_FALSE(CRVUIUtil::isPad());
        auto environment = uikit::Environment::tablet();
        environment.orientation = uikit::InterfaceOrientation::unknown;
        window.setEnvironment(environment);
        EXPECT_EQ(CRVUIUtil::currentInterfaceOrientation(), 1);
        EXPECT_FALSE(CRVUIUtil::isLandscape());
        EXPECT_TRUE(CRVUIUtil::isPad());
        EXPECT_EQ(CRVUIUtil::separatorHeightForScreenScale(), 0.5);
    }
    // Without a window: a phone in portrait.
    EXPECT_EQ(CRVUIUtil::currentInterfaceOrientation(), 1);
    EXPECT_FALSE(CRVUIUtil::isPad());
}

TEST(CRVUIUtil, AttachmentsNeedPortraitAmongTheHostsOrientations) {
    auto& info = CRVUIUtil::mainBundle().infoDictionary;
    EXPECT_FALSE(CRVUIUtil::shouldEnableAttachments());
    info["UISupportedInterfaceOrientations"] =
        std::vector<std::string>{"UIInterfaceOrientationLandscapeLeft", "UIInterfaceOrientationLandscapeRight"};
    EXPECT_FALSE(CRVUIUtil::shouldEnableAttachments());
    info["UISupportedInterfaceOrientations"] =
        std::vector<std::string>{"UIInterfaceOrientationLandscapeLeft", "UIInterfaceOrientationPortrait"};
    EXPECT_TRUE(CRVUIUtil::shouldEnableAttachments());
    info["UISupportedInterfaceOrientations"] = std::string("UIInterfaceOrientationPortrait");
    EXPECT_FALSE(CRVUIUtil::shouldEnableAttachments()) << "not a list";
    info.clear();
}

} // namespace
