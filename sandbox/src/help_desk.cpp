#include "sandbox/help_desk.hpp"

namespace sandbox {

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
    auto core = corvane::Corvane::initialize(std::move(configuration));
    core->setIdentity(std::move(identity));
    return core;
}

} // namespace sandbox
