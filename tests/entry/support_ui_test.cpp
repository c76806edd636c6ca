#include "belvakit/entry/support_ui.hpp"
#include "belvakit/entry/version.hpp"
#include "dastrel/support.hpp"
#include "sandbox/help_desk.hpp"
#include "test_support.hpp"

#include <gtest/gtest.h>

#include <type_traits>

using belvakit::SupportUI;
using platform::LogLevel;

// initialize is the only way to an instance.
static_assert(!std::is_constructible_v<SupportUI, std::shared_ptr<corvane::Corvane>>);
static_assert(!std::is_default_constructible_v<SupportUI>);
static_assert(!std::is_copy_constructible_v<SupportUI> && !std::is_move_constructible_v<SupportUI>);

namespace {

const std::string nilCorvaneError =
    "The Corvane instance passed into initialize(withCorvane:) was nil.\n"
    "Failed to initialize SupportUI, have you initialized the Core SDK?";

class RefreshHandler final : public corvane::ActionHandler {
public:
    explicit RefreshHandler(std::string requestId) : name_("Request_Controller_Refresh_id_" + std::move(requestId)) {}
    bool canHandle(const std::string& actionName) const override { return actionName == name_; }
    void handle(const std::map<std::string, std::any>&) override { ++handled; }
    int priority() const override { return 0; }
    bool isEqual(const corvane::ActionHandler& other) const override {
        const auto* same = dynamic_cast<const RefreshHandler*>(&other);
        return same && same->name_ == name_;
    }
    int handled = 0;

private:
    std::string name_;
};

class SupportUITest : public testing::Test {
protected:
    void SetUp() override { dastrel::Support::reset(); }
    void TearDown() override { dastrel::Support::reset(); }

    std::shared_ptr<corvane::Corvane> makeCore() {
        helpDesk_ = sandbox::HelpDesk::make({.storageDirectory = dir_.path()});
        return helpDesk_->initializeCorvane(corvane::Identity::createAnonymous());
    }

    testing_support::TemporaryDirectory dir_;
    std::shared_ptr<sandbox::HelpDesk> helpDesk_;
    testing_support::CapturedLog log_;
};

} // namespace

TEST_F(SupportUITest, InitialiseSetsUpSupportAndLogsANilCoreKeepsTheInstanceANewOneReplacesIt) {
    auto core = makeCore();
    SupportUI::initialize(core);
    auto instance = SupportUI::instance();
    ASSERT_TRUE(instance);
    EXPECT_EQ(instance->corvane(), core);
    ASSERT_TRUE(dastrel::Support::instance());
    EXPECT_EQ(dastrel::Support::instance()->corvane(), core);
    EXPECT_EQ(log_.messages(LogLevel::info), std::vector<std::string>{"Initializing Belva Kit."});

    // A nil core logs the two-line error and keeps the instance; a new core replaces it.
    SupportUI::initialize(nullptr);
    EXPECT_EQ(log_.messages(LogLevel::error), std::vector<std::string>{nilCorvaneError});
    EXPECT_EQ(SupportUI::instance(), instance);
    SupportUI::initialize(makeCore());
    EXPECT_NE(SupportUI::instance(), instance);
}

TEST_F(SupportUITest, RefreshRequestGoesToTheRegisteredHandlerOrWarnsWithoutSupport) {
    auto core = makeCore();
    SupportUI::initialize(core);
    auto ui = SupportUI::instance();
    auto handler = std::make_shared<RefreshHandler>("42");
    core->actionHandlerRegistry().add(handler);

    EXPECT_TRUE(ui->refreshRequest("42"));
    EXPECT_EQ(handler->handled, 1);
    EXPECT_FALSE(ui->refreshRequest("43"));

    dastrel::Support::reset();
    log_.clear();
    EXPECT_FALSE(ui->refreshRequest("42"));
    EXPECT_EQ(log_.messages(LogLevel::warn),
              std::vector<std::string>{"Instance of Support is nil, have you initialized SupportUI?"});
    EXPECT_EQ(handler->handled, 1);
}

TEST_F(SupportUITest, LocaleOverrideForwardsToSupportAndIsAbsentWithoutIt) {
    SupportUI::initialize(makeCore());
    auto ui = SupportUI::instance();
    ui->setHelpCenterLocaleOverride("de");
    EXPECT_EQ(dastrel::Support::instance()->helpCenterLocaleOverride(), "de");
    EXPECT_EQ(ui->helpCenterLocaleOverride(), "de");

    dastrel::Support::reset();
    ui->setHelpCenterLocaleOverride("fr");  // nothing to write to
    EXPECT_EQ(ui->helpCenterLocaleOverride(), std::nullopt);
}

TEST(Version, ShortVersionStringOrTheDefault) {
    EXPECT_EQ(belvakit::versionString(corvane::Bundle{}), "1.0.0-default");
    EXPECT_EQ(belvakit::versionString(corvane::Bundle{{{"CFBundleShortVersionString", 2}}}), "1.0.0-default");
    EXPECT_EQ(belvakit::versionString(corvane::Bundle{{{"CFBundleShortVersionString", std::string("3.1")}}}), "3.1");
}
