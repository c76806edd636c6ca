#pragma once

#include "belvakit/helpcenter/article_view_controller.hpp"
#include "belvakit/helpcenter/help_center_overview_controller.hpp"
#include "corvane/bundle_utils.hpp"
#include "corvane/corvane.hpp"
#include "dastrel/help_center_provider.hpp"
#include "platform/calendar.hpp"
#include "platform/main_queue.hpp"
#include "platform/url_opener.hpp"
#include "sandbox/help_desk.hpp"
#include "test_support.hpp"
#include "uikit/application.hpp"
#include "uikit/appearance.hpp"
#include "uikit/navigation_controller.hpp"
#include "uikit/probe.hpp"
#include "uikit/window.hpp"

#include <gtest/gtest.h>

#include <memory>
#include <string>

namespace article_testing {

// A phone window with a navigation stack over a plain root, the embedded help desk as the core's
// providers, virtual time, a headless URL opener, and the log captured.
class ArticleTest : public ::testing::Test {
protected:
    void SetUp() override {
        platform::Calendar::setCurrent(platform::Calendar("en_US", "UTC"));
        previousOpener_ = platform::URLOpener::setShared(opener);
        startCore();
        window->makeKeyAndVisible();
        window->setRootViewController(navigation);
        window->layoutTree();
    }
    void TearDown() override {
        window->setRootViewController(nullptr);
        settle();
        desk->setOffline(false);
        corvane::Corvane::reset();
        platform::URLOpener::setShared(previousOpener_);
        platform::Calendar::setCurrent(platform::Calendar());
        uikit::Appearance::reset();
        uikit::MailComposeViewController::setCanSendMail(false);
        corvane::CRVBundleUtils::setUserDefinedHelpCenterCss(std::nullopt);
        belvakit::CRVHelpCenterOverviewRoutes::shared() = {};
    }

    // A core on the help desk, reading the session store the last one left on disk.
    void startCore() { core = helpDesk->initializeCorvane(corvane::Identity::createAnonymous("Ann", "ann@example.com")); }

    // Moves virtual time on, running what falls due and laying the window out as a frame would.
    void settle(double seconds = 1.0) { time.run(seconds, [this] { window->layoutTree(); }); }

    std::shared_ptr<belvakit::CRVArticleViewController> push(std::shared_ptr<belvakit::CRVArticleViewController> screen) {
        navigation->pushViewController(screen, false);
        settle();
        return screen;
    }

    bool logged(platform::LogLevel level, const std::string& text) const { return log.contains(level, text); }

    std::vector<std::string> opened() const {
        std::vector<std::string> links;
        for (const auto& url : opener->openedURLs()) links.push_back(url.absoluteString());
        return links;
    }

    testing_support::VirtualTime time;
    testing_support::CapturedLog log;
    testing_support::TemporaryDirectory directory;
    std::shared_ptr<platform::HeadlessURLOpener> opener = std::make_shared<platform::HeadlessURLOpener>();
    std::shared_ptr<sandbox::HelpDesk> helpDesk = sandbox::HelpDesk::make({.storageDirectory = directory.path()});
    std::shared_ptr<sandbox::HelpCenterDesk> desk = helpDesk->helpCenter();
    std::shared_ptr<corvane::Corvane> core;
    std::shared_ptr<uikit::ViewController> root = std::make_shared<uikit::ViewController>();
    std::shared_ptr<uikit::NavigationController> navigation = std::make_shared<uikit::NavigationController>(root);
    std::shared_ptr<uikit::Window> window = std::make_shared<uikit::Window>();

private:
    std::shared_ptr<platform::URLOpener> previousOpener_;
};

// The help desk's provider, for tests to override one call of it.
class ForwardingProvider : public dastrel::CRVHelpCenterProvider {
public:
    using Articles = dastrel::CRVCallback<std::vector<dastrel::CRVHelpCenterArticle>>;
    using Votes = dastrel::CRVCallback<std::vector<dastrel::CRVHelpCenterArticleVote>>;
    void getHelpCenterOverviewWithHelpCenterOverviewModel(
        const dastrel::CRVHelpCenterOverviewContentModel& model,
        dastrel::CRVCallback<std::vector<dastrel::CRVHelpCenterCategoryViewModel>> callback) override {
        inner_->getHelpCenterOverviewWithHelpCenterOverviewModel(model, std::move(callback));
    }
    void getArticlesWithSectionId(std::int64_t id, const std::optional<std::vector<std::string>>& labels,
                                  Articles callback) override {
        inner_->getArticlesWithSectionId(id, labels, std::move(callback));
    }
    void getArticleWithId(const std::string& id, Articles callback) override {
        inner_->getArticleWithId(id, std::move(callback));
    }
    void getAttachmentWithArticleId(const std::string& id,
                                    dastrel::CRVCallback<std::vector<dastrel::CRVHelpCenterAttachment>> callback) override {
        inner_->getAttachmentWithArticleId(id, std::move(callback));
    }
    void searchArticles(const dastrel::CRVHelpCenterSearch& search, Articles callback) override {
        inner_->searchArticles(search, std::move(callback));
    }
    void submitRecordArticleView(const dastrel::CRVHelpCenterArticle& article,
                                 std::function<void(std::optional<dastrel::ProviderError>)> callback) override {
        inner_->submitRecordArticleView(article, std::move(callback));
    }
    void upVoteArticleWithId(const std::string& id, Votes callback) override {
        inner_->upVoteArticleWithId(id, std::move(callback));
    }
    void downVoteArticleWithId(const std::string& id, Votes callback) override {
        inner_->downVoteArticleWithId(id, std::move(callback));
    }
    void removeVoteWithId(const std::string& id, dastrel::CRVCallback<dastrel::CRVHelpCenterArticleVote> callback) override {
        inner_->removeVoteWithId(id, std::move(callback));
    }

private:
    std::shared_ptr<dastrel::CRVHelpCenterProvider> inner_ = dastrel::CRVHelpCenterProvider::make();
};

} // namespace article_testing
