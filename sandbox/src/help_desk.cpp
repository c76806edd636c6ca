#include "sandbox/help_desk.hpp"

#include "dastrel/request_provider.hpp"
#include "platform/log.hpp"

namespace sandbox {

HelpDesk::HelpDesk(Options options)
    : options_(std::move(options)), attachments_(AttachmentStore::make(options_.accountUrl)) {
    // Requests and comments name their files by upload token; the lookup holds the store weakly.
    tickets_ = TicketDesk::make([store = std::weak_ptr<AttachmentStore>(attachments_)](const std::string& token) {
        auto attachments = store.lock();
        auto upload = attachments ? attachments->uploadWithToken(token) : std::nullopt;
        return upload ? std::optional<dastrel::CRVAttachment>(upload->attachment) : std::nullopt;
    });
    auto content = HelpCenterContent::bundled(options_.accountUrl);
    if (!content.content) 
        platform::log::write(platform::LogLevel::error, "The built-in Help Center content is broken: " + content.error);
    helpCenter_ = HelpCenterDesk::make(content.content.value_or(HelpCenterContent{}), attachments_, options_.accountUrl);
}

void HelpDesk::setAnswersOnWorkerThreads(bool onWorkerThreads) const {
    attachments_->setAnswersOnWorkerThreads(onWorkerThreads);
    tickets_->setAnswersOnWorkerThreads(onWorkerThreads);
}

std::shared_ptr<HelpDesk> HelpDesk::make(Options options) {
    return std::shared_ptr<HelpDesk>(new HelpDesk(std::move(options)));
}

std::shared_ptr<corvane::Corvane> HelpDesk::initializeCorvane(std::shared_ptr<corvane::Identity> identity) {
    corvane::Corvane::Configuration configuration;
    configuration.accountDetails = {options_.accountUrl, options_.appId, options_.clientId};
    configuration.storeModule.cacheDirectory = options_.storageDirectory / "Caches";
    configuration.storeModule.sessionStore =
        std::make_shared<corvane::SessionStore>(options_.storageDirectory / "session.json");
    configuration.providerModule->setProvider<dastrel::CRVUploadProvider>(attachments_->uploadProvider());
    configuration.providerModule->setProvider<dastrel::CRVAttachmentProvider>(attachments_->attachmentProvider());
    configuration.providerModule->setProvider<dastrel::CRVRequestProvider>(tickets_->requestProvider());
    configuration.providerModule->setProvider<dastrel::ConversationsSettingsProviderProtocol>(conversationsSettings_);
    configuration.providerModule->setProvider<corvane::PingrelProvider>(telemetry_);
    configuration.providerModule->setProvider<dastrel::CRVHelpCenterProvider>(helpCenter_->provider());
    configuration.providerModule->setProvider<dastrel::HelpCenterSettingsProviderProtocol>(helpCenter_->settingsProvider());
    configuration.providerModule->setProvider<dastrel::SettingsProvider>(settings_);
    if (const auto* anonymous = dynamic_cast<const corvane::Anonymous*>(identity.get()); anonymous && anonymous->name())
        tickets_->setEndUser(*anonymous->name(), anonymous->email());
    auto core = corvane::Corvane::initialize(std::move(configuration));
    core->setIdentity(std::move(identity));
    return core;
}

} // namespace sandbox
