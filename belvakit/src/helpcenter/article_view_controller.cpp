#include "belvakit/helpcenter/article_view_controller.hpp"

#include "belvakit/entry/Coordinator/dismiss_util.hpp"
#include "belvakit/entry/Coordinator/help_center_contact_us_router.hpp"
#include "belvakit/entry/localized_strings.hpp"
#include "belvakit/helpcenter/article_attachments.hpp"
#include "belvakit/helpcenter/help_center_overview_controller.hpp"
#include "belvakit/toolkit/appearance_applicator.hpp"
#include "belvakit/toolkit/toast_view.hpp"
#include "belvakit/toolkit/ui_util.hpp"
#include "corvane/core_logger.hpp"
#include "corvane/reachability.hpp"
#include "dastrel/help_center_provider.hpp"
#include "platform/log.hpp"
#include "uikit/application.hpp"
#include "uikit/navigation_controller.hpp"

namespace belvakit {

CRVArticleViewController::CRVArticleViewController(PrivateInit) {}

CRVArticleViewController::~CRVArticleViewController() = default;

std::shared_ptr<CRVArticleViewController> CRVArticleViewController::self() {
    return std::static_pointer_cast<CRVArticleViewController>(shared_from_this());
}

std::shared_ptr<CRVArticleViewController> CRVArticleViewController::initWithArticleViewModel(
    const dastrel::CRVHelpCenterArticleViewModel& viewModel, mirrowset::ConfigurationList andConfigs) {
    auto screen = std::make_shared<CRVArticleViewController>(PrivateInit{});
    screen->setTitle(viewModel.name);
    screen->commonViewModelInit(std::to_string(viewModel.id), std::move(andConfigs));
    return screen;
}

std::shared_ptr<CRVArticleViewController> CRVArticleViewController::initWithArticleId(const std::string& articleId,
                                                                                      mirrowset::ConfigurationList andConfigs) {
    auto screen = std::make_shared<CRVArticleViewController>(PrivateInit{});
    screen->commonViewModelInit(articleId, std::move(andConfigs));
    return screen;
}

std::shared_ptr<CRVArticleViewController> CRVArticleViewController::initWithArticle(const dastrel::CRVHelpCenterArticle& article,
                                                                                    mirrowset::ConfigurationList andConfigs) {
    auto screen = std::make_shared<CRVArticleViewController>(PrivateInit{});
    screen->storeConfigs(std::move(andConfigs));
    screen->setTitle(article.title);
    screen->articleView = CRVArticleView::loadingArticle();
    std::weak_ptr<CRVArticleViewController> weak = screen;
    dastrel::CRVHelpCenterSettingsProvider::getHelpCenterSettingsWithCallback(
        [weak, article](std::optional<dastrel::CRVHelpCenterSettings> settings) {
            const auto strong = weak.lock();
            if (!strong) return;
            strong->showArticle(article, settings);
            strong->hcLocale = settings ? settings->locale.value_or("") : "";
        });
    // Without waiting for the settings.
    screen->articleView->delegate = screen;
    screen->dataSource = CRVHelpCenterAttachmentsDataSource::initWithArticleId(std::to_string(article.identifier));
    screen->attachDataSource();
    screen->dataSource->reloadData();
    screen->useLayoutGuideForArticle();
    return screen;
}

void CRVArticleViewController::storeConfigs(mirrowset::ConfigurationList list) {
    configs = std::move(list);
    articleUiConfig = getArticleUiConfiguration();
}

std::shared_ptr<CRVArticleUiConfiguration> CRVArticleViewController::getArticleUiConfiguration() const {
    mirrowset::Configurations configurations(configs);
    configurations.addDefaultConfigIfNeeded<CRVArticleUiConfiguration>();
    return configurations.configuration<CRVArticleUiConfiguration>();
}

void CRVArticleViewController::useLayoutGuideForArticle() {
    layoutGuide = layoutGuide.top ? CRVLayoutRespectTop : CRVLayoutRespectNone;
    if (isViewLoaded()) view()->setNeedsLayout();
}

void CRVArticleViewController::commonViewModelInit(const std::string& articleId, mirrowset::ConfigurationList list) {
    // Kept at once, so that the bar built on load already follows the host's configuration.
    storeConfigs(std::move(list));
    articleView = CRVArticleView::loadingArticle();
    std::weak_ptr<CRVArticleViewController> weak = self();
    dastrel::CRVHelpCenterSettingsProvider::getHelpCenterSettingsWithCallback(
        [weak, articleId](std::optional<dastrel::CRVHelpCenterSettings> settings) {
            const auto strong = weak.lock();
            if (!strong) return;
            strong->hcLocale = settings ? settings->locale.value_or("") : "";
            strong->provider_ = dastrel::CRVHelpCenterProvider::make();
            strong->articleUiConfig = strong->getArticleUiConfiguration();
            strong->provider_->getArticleWithId(
                articleId, [weak, settings](std::optional<std::vector<dastrel::CRVHelpCenterArticle>> articles,
                                            std::optional<dastrel::ProviderError> error) {
                    const auto screen = weak.lock();
                    if (!screen) return;
                    if (error) {
                        platform::log::write(platform::LogLevel::error,
                                             "The article could not be fetched. Will dismiss the ViewController");
                        screen->decideDismiss();
                        return;
                    }
                    // Only an error ends the screen: an empty answer shows an empty article.
                    const auto article = articles && !articles->empty() ? articles->front() : dastrel::CRVHelpCenterArticle{};
                    screen->showArticle(article, settings);
                    screen->dataSource =
                        CRVHelpCenterAttachmentsDataSource::initWithArticleId(std::to_string(article.identifier));
                    screen->attachDataSource();
                    screen->dataSource->reloadData();
                });
            strong->useLayoutGuideForArticle();
        });
}

void CRVArticleViewController::showArticle(const dastrel::CRVHelpCenterArticle& article,
                                           const std::optional<dastrel::CRVHelpCenterSettings>& settings) {
    setTitle(article.title);
    if (auto* navigation = navigationController()) navigation->refreshBar();
    articleView->renderArticle(article, settings);
    articleView->delegate = self();
    if (!dataSource) return;
    // The table is made only now: a data source made before goes on it here, and an answer it
    // had meanwhile, which the page could not hear, is shown at once.
    attachDataSource();
    const auto attachments = std::dynamic_pointer_cast<CRVHelpCenterAttachmentsDataSource>(dataSource);
    if (attachments && attachments->pendingFetches() == 0) articleView->attachmentsUpdated();
}

void CRVArticleViewController::attachDataSource() {
    if (articleView && articleView->attachments && dataSource) articleView->attachments->setDataSource(dataSource);
}

void CRVArticleViewController::viewDidLoad() {
    CRVUIViewController::viewDidLoad();
    articleView->setFrame(contentView()->bounds());
    articleView->setAutoresizingMask(uikit::Autoresizing::flexibleWidth | uikit::Autoresizing::flexibleHeight);
    contentView()->addSubview(articleView);
    view()->setBackgroundColor(CRVAppearanceApplicator::primaryBackgroundColor());
    if (!CRVUIUtil::isOlderVersion("11.0")) navigationItem().largeTitleDisplayMode = 2;
    setupNavBar();
    if (dataSource) dataSource->reloadData();
}

void CRVArticleViewController::viewWillLayoutSubviews() {
    CRVUIViewController::viewWillLayoutSubviews();
    if (articleView) articleView->setFrame(contentView()->bounds());
}

void CRVArticleViewController::setupNavBar() {
    const auto delegate = uiDelegate.lock();
    if (!shouldShowContactOptions() || (delegate && delegate->active() != 0)) return;
    navigationItem().rightBarButtonItem = CRVConversationsUtil::contactUsBarButton(delegate, [weak = std::weak_ptr(self())] {
        if (const auto strong = weak.lock()) strong->showContact();
    });
}

bool CRVArticleViewController::shouldShowContactOptions() const {
    return !articleUiConfig || articleUiConfig->showContactOptions;
}

void CRVArticleViewController::viewWillAppear(bool animated) {
    CRVUIViewController::viewWillAppear(animated);
    auto& center = platform::NotificationCenter::defaultCenter();
    std::weak_ptr<CRVArticleViewController> weak = self();
    observers_.clear();
    observers_.push_back(center.addObserver(corvane::CRVAPI_ReachabilityChangedNotification, nullptr,
                                            [weak](const platform::Notification& notification) {
                                                if (const auto strong = weak.lock()) strong->reloadIfPossible(notification);
                                            }));
    observers_.push_back(center.addObserver(dastrel::CR_HC_RequestError, nullptr, [weak](const platform::Notification& notification) {
        if (const auto strong = weak.lock()) strong->showRetryToast(notification);
    }));
    navigationItem().leftBarButtonItem = DismissUtil::barButtonFor(*this, navigationController(), [weak] {
        if (const auto strong = weak.lock()) strong->decideDismiss();
    });
    if (auto* navigation = navigationController()) navigation->refreshBar();
    // The deep link spinner leaves its parent when it stops: it is put back on each appearance.
    if (const auto& spinner = articleView ? articleView->articleLoadSpinner : nullptr) {
        spinner->setFrame(view()->bounds());
        view()->addSubview(spinner);
    }
}

void CRVArticleViewController::viewWillDisappear(bool animated) {
    observers_.clear();
    CRVUIViewController::viewWillDisappear(animated);
}

void CRVArticleViewController::decideDismiss() { DismissUtil::popOrDismiss(*this, true); }

void CRVArticleViewController::showContact() {
    CRVHelpCenterContactUsRouter router(configs, self(), articleUiConfig ? articleUiConfig->objcEngines() : EngineList{});
    router.decideButtonActionForNavBar();
}

void CRVArticleViewController::openMailWithReciever(const std::string& reciever) {
    // Without a mail account nothing happens and nothing is said.
    if (!uikit::MailComposeViewController::canSendMail()) return;
    auto composer = std::make_shared<uikit::MailComposeViewController>();
    composer->toRecipients = {reciever.size() > 7 ? reciever.substr(7) : std::string()};
    composer->didFinish = [weak = std::weak_ptr(self())](int) {
        if (const auto strong = weak.lock()) strong->dismissViewController(true);
    };
    presentViewController(composer, true);
}

void CRVArticleViewController::screenLoading() {
    const auto spinner = articleView ? articleView->articleLoadSpinner : nullptr;
    if (!spinner) return;
    spinner->removeFromSuperview();
    spinner->setFrame(view()->bounds());
    view()->addSubview(spinner);
    spinner->setHidden(false);
    spinner->startAnimating();
}

void CRVArticleViewController::stopScreenLoading() {
    const auto spinner = articleView ? articleView->articleLoadSpinner : nullptr;
    if (!spinner) return;
    spinner->stopAnimating();
    spinner->removeFromSuperview();
}

void CRVArticleViewController::openLinkToNewArticle(const std::string& articleId) {
    screenLoading();
    auto provider = dastrel::CRVHelpCenterProvider::make();
    provider->getArticleWithId(articleId, [weak = std::weak_ptr(self())](std::optional<std::vector<dastrel::CRVHelpCenterArticle>> articles,
                                                                          std::optional<dastrel::ProviderError>) {
        const auto strong = weak.lock();
        if (!strong) return;
        strong->stopScreenLoading();
        // A failed or empty answer is not told apart: the new screen starts from no article.
        auto next = initWithArticle(articles && !articles->empty() ? articles->front() : dastrel::CRVHelpCenterArticle{},
                                    strong->configs);
        next->uiDelegate = strong->uiDelegate;
        if (auto* navigation = strong->navigationController())
            navigation->pushViewController(next, true);
        else
            strong->presentViewController(std::make_shared<uikit::NavigationController>(next), true);
    });
}

void CRVArticleViewController::reloadIfPossible(const platform::Notification& notification) {
    const auto& reachability = reachable();
    if (!reachability || notification.object != static_cast<platform::Object*>(reachability.get())) return;
    if (reachability->currentReachabilityStatus() == corvane::NotReachable) return;
    if (articleView && articleView->isLoading() && dataSource) dataSource->reloadData();
}

void CRVArticleViewController::showRetryToast(const platform::Notification&) {
    const auto& reachability = reachable();
    if (!reachability || reachability->currentReachabilityStatus() == corvane::NotReachable) return;
    std::weak_ptr<CRVArticleViewController> weak = self();
    auto toast = CRVToastView::initInView(
        view(), weak, topViewOffset(), localized(LocalizedKey::helpCenterArticleAttachmentsError),
        localized(LocalizedKey::helpCenterToastRetryButton),
        [weak] {
            const auto strong = weak.lock();
            if (strong && strong->dataSource) strong->dataSource->reloadData();
        },
        CRVToastType{0}, 0.0, CR_DefaultAnimationTime,
        [weak](bool, double height) {
            const auto strong = weak.lock();
            if (!strong) return;
            strong->setToastHeight(height);
            strong->layoutContent();
            strong->view()->setNeedsLayout();
        },
        true);
    if (!toast) return;
    // One toast at a time: a second error replaces the first.
    if (toastView) toastView->dismiss(false);
    toastView = toast;
    corvane::CRVLogger::d("Request Error: display");
    toast->present(true);
}

void installArticleRoutes() {
    auto& routes = CRVHelpCenterOverviewRoutes::shared();
    // Routes someone installed before stay theirs.
    if (!routes.articleWithId)
        routes.articleWithId = [](std::int64_t articleId, const mirrowset::ConfigurationList& configs,
                              const std::shared_ptr<CRVHelpCenterConversationsUIDelegate>& uiDelegate) -> uikit::ViewController::Ptr {
        auto screen = CRVArticleViewController::initWithArticleId(std::to_string(articleId), configs);
        screen->uiDelegate = uiDelegate;
        return screen;
    };
    if (!routes.articleWithArticle)
        routes.articleWithArticle = [](const dastrel::CRVHelpCenterArticle& article, const mirrowset::ConfigurationList& configs,
                                   const std::shared_ptr<CRVHelpCenterConversationsUIDelegate>& uiDelegate) -> uikit::ViewController::Ptr {
        auto screen = CRVArticleViewController::initWithArticle(article, configs);
        screen->uiDelegate = uiDelegate;
        return screen;
    };
}

} // namespace belvakit
