#include "belvakit/attachments/attachments_provider.hpp"

#include "corvane/corvane.hpp"

namespace belvakit {

namespace {

class SupportAttachmentsProvider final : public AttachmentsProvider {
public:
    explicit SupportAttachmentsProvider(std::shared_ptr<dastrel::CRVAttachmentProvider> provider)
        : provider_(std::move(provider)) {}

    void getAttachment(const std::string& url, Completion completion) override {
        if (!provider_) {
            completion(std::nullopt, dastrel::ProviderError{"AttachmentsProvider", 0, "No attachment provider"});
            return;
        }
        provider_->getAttachment(url, std::move(completion));
    }

private:
    std::shared_ptr<dastrel::CRVAttachmentProvider> provider_;
};

} // namespace

std::shared_ptr<AttachmentsProvider> makeAttachmentsProvider() {
    const auto core = corvane::Corvane::instance();
    return std::make_shared<SupportAttachmentsProvider>(
        core ? core->providerModule().provider<dastrel::CRVAttachmentProvider>() : nullptr);
}

} // namespace belvakit
