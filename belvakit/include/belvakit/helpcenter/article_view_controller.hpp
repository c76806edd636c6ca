#pragma once

#include "belvakit/entry/ui_configurations.hpp"
#include "belvakit/helpcenter/article_view.hpp"
#include "belvakit/helpcenter/conversations_util.hpp"
#include "belvakit/helpcenter/help_center_data_source.hpp"
#include "belvakit/toolkit/ui_view_controller.hpp"
#include "dastrel/help_center.hpp"
#include "mirrowset/configurations.hpp"
#include "platform/notification_center.hpp"

#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace belvakit {

using CRVArticleUiConfiguration = ArticleUiConfiguration;

// What a Help Center screen tells whoever shows it; the article screen has nothing to tell yet.
class CRVHelpCenterDelegate {
public:
    virtual ~CRVHelpCenterDelegate() = default;
};

// One Help Center article: the page, its attachments and the vote view, opened from an overview
// row, from an id (a link) or with the article already in hand. Links in the page go to the mail
// composer, to a new article screen on the same stack, or out to the system. An article that
// can't be fetched ends the screen. Main thread.
class CRVArticleViewController final : public CRVUIViewController,
                                       public CRVHelpCentreArticleViewProtocol,
                                       public CRVHelpCenterDelegate {
public:
    // The title comes from the row at once; the rest once fetched by its id.
    static std::shared_ptr<CRVArticleViewController> initWithArticleViewModel(
        const dastrel::CRVHelpCenterArticleViewModel& viewModel, mirrowset::ConfigurationList andConfigs);
    static std::shared_ptr<CRVArticleViewController> initWithArticleId(const std::string& articleId,
                                                                       mirrowset::ConfigurationList andConfigs);
    static std::shared_ptr<CRVArticleViewController> initWithArticle(const dastrel::CRVHelpCenterArticle& article,
                                                                     mirrowset::ConfigurationList andConfigs);

    struct PrivateInit {};
    explicit CRVArticleViewController(PrivateInit);
    ~CRVArticleViewController() override;
    std::string_view className() const override { return "CRVArticleViewController"; }

    std::shared_ptr<CRVArticleView> articleView;
    std::shared_ptr<CRVHelpCenterDataSource> dataSource;
    std::string hcLocale;
    mirrowset::ConfigurationList configs;
    std::shared_ptr<CRVArticleUiConfiguration> articleUiConfig;
    std::weak_ptr<CRVHelpCenterConversationsUIDelegate> uiDelegate;

    // Pops the screen when it was pushed, otherwise dismisses it, animated.
    void decideDismiss();
    // The contact button: the request list, or the messaging screen with the configured engines.
    void showContact();
    void openMailWithReciever(const std::string& reciever) override;
    // The deep link: the screen is covered while the article loads, then it is pushed.
    void openLinkToNewArticle(const std::string& articleId) override;
    void screenLoading();
    void stopScreenLoading();
    void reloadIfPossible(const platform::Notification& notification);
    void showRetryToast(const platform::Notification& notification);
    bool shouldShowContactOptions() const;
    std::shared_ptr<CRVArticleUiConfiguration> getArticleUiConfiguration() const;
    void setupNavBar();

    void viewDidLoad() override;
    void viewWillAppear(bool animated) override;
    void viewWillDisappear(bool animated) override;
    void viewWillLayoutSubviews() override;

private:
    std::shared_ptr<CRVArticleViewController> self();
    void commonViewModelInit(const std::string& articleId, mirrowset::ConfigurationList configs);
    void storeConfigs(mirrowset::ConfigurationList list);
    void showArticle(const dastrel::CRVHelpCenterArticle& article, const std::optional<dastrel::CRVHelpCenterSettings>& settings);
    void attachDataSource();
    void useLayoutGuideForArticle();

    std::shared_ptr<dastrel::CRVHelpCenterProvider> provider_;
    std::vector<platform::ObservationToken> observers_;
};

// Hands the overview the article screens it opens, where no other route is installed.
void installArticleRoutes();

} // namespace belvakit
