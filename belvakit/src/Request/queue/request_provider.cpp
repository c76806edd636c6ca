#include "belvakit/Request/queue/request_provider.hpp"

#include "corvane/corvane.hpp"

namespace belvakit {

namespace {

dastrel::ProviderError notInitialized() { return {"BelvaKit", -1, "The support SDK is not initialized."}; }

class UnavailableRequestProvider final : public RequestProvider {
public:
    void getAllRequests(dastrel::CRVCallback<dastrel::CRVRequestsWithCommentingAgents> callback) override {
        callback(std::nullopt, notInitialized());
    }
    void getRequestById(const std::string&, dastrel::CRVCallback<dastrel::CRVRequest> callback) override {
        callback(std::nullopt, notInitialized());
    }
    void getCommentsWithRequestId(const std::string&,
                                  dastrel::CRVCallback<std::vector<dastrel::CRVCommentWithUser>> callback) override {
        callback(std::nullopt, notInitialized());
    }
    void getComments(const std::string&, double, bool,
                     dastrel::CRVCallback<std::vector<dastrel::CRVCommentWithUser>> callback) override {
        callback(std::nullopt, notInitialized());
    }
    void createRequest(const dastrel::CRVCreateRequest&, dastrel::CRVCallback<dastrel::CRVDispatcherResponse> callback) override {
        callback(std::nullopt, notInitialized());
    }
    void addComment(const std::string&, const std::string&, const std::vector<std::string>&,
                    dastrel::CRVCallback<dastrel::CRVComment> callback) override {
        callback(std::nullopt, notInitialized());
    }
    void markRequestAsRead(const std::string&, long) override {}
    void getUpdatesForDevice(std::function<void(std::optional<dastrel::RequestUpdates>)> callback) override {
        callback(std::nullopt);
    }
};

} // namespace

std::shared_ptr<RequestProvider> makeRequestProvider() {
    auto core = corvane::Corvane::instance();
    auto provider = core ? core->providerModule().provider<dastrel::CRVRequestProvider>() : nullptr;
    return provider ? provider : std::make_shared<UnavailableRequestProvider>();
}

} // namespace belvakit
