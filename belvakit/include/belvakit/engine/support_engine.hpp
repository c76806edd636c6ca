#pragma once

#include "belvakit/engine/support_engine_model.hpp"
#include "belvakit/engine/support_messaging_update_dispatcher.hpp"
#include "belvakit/entry/support_ui.hpp"
#include "mirrowset/configurations.hpp"
#include "quorvel/engine.hpp"
#include "quorvel/observable.hpp"

#include <any>
#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <variant>
#include <vector>

namespace belvakit {

class SupportEngine;
using SupportEngineResult = std::variant<std::shared_ptr<SupportEngine>, SupportError>;

// The engine that leaves a request with the support team from a messaging screen. It shows
// nothing itself: all it does goes out to its observers as updates. Main thread only.
class SupportEngine final : public quorvel::Engine,
                            public quorvel::Observable,
                            public SupportMessagingUpdateDispatcher,
                            public std::enable_shared_from_this<SupportEngine> {
public:
    // Shows the request list screen with the given configurations from the navigation controller
    // that the messaging screen passed; does nothing with anything else.
    using RequestListOpener =
        std::function<void(const std::any& navigationController, const mirrowset::Configurations& configs)>;

    // Fails with `supportNotInitialized` without the support library or an identity. The engine
    // opens the request list screen when the user asks for it.
    static SupportEngineResult engine();
    // The same for callers without variants: null and `error` set on failure.
    static std::shared_ptr<SupportEngine> engineAndReturnError(SupportError* error);

    static std::shared_ptr<SupportEngine> make(std::string id, std::shared_ptr<SupportEngineModel> supportModel,
                                               int typingDelay = 1200);

    // quorvel::Engine
    const std::string& id() const override { return id_; }
    const quorvel::TransferOptionDescription& transferOptionDescription() const override {
        return transferOptionDescription_;
    }
    void start(const quorvel::QuorvelAPI& quorvelAPI) override;
    void stop() override {}
    bool isConversationOngoing() const override { return false; }
    void onEvent(const quorvel::Event& event) override;

    // quorvel::Observable
    quorvel::ObservationToken observeUpdates(Observer observer) override;

    // SupportMessagingUpdateDispatcher
    void send(const quorvel::Update& update) override { notifyObservers(update); }
    void enqueue(std::vector<quorvel::MessagingItem> turn) override;
    void openRequestList(const std::map<std::string, std::any>& arguments) override;

    // How the request list opens; `engine()` sets the library's screen, `make` leaves it unset.
    void setRequestListOpener(RequestListOpener opener) { requestListOpener_ = std::move(opener); }

    const mirrowset::Configurations& configs() const { return configs_; }
    int typingDelay() const { return typingDelay_; }
    const std::shared_ptr<SupportEngineModel>& supportModel() const { return supportModel_; }
    const quorvel::AgentDetails& botAgentDetails() const { return botAgentDetails_; }

protected:
    std::vector<Observer> currentObservers() const override;

private:
    SupportEngine(std::string id, std::shared_ptr<SupportEngineModel> supportModel, int typingDelay);
    void processQueue();

    std::string id_;
    quorvel::TransferOptionDescription transferOptionDescription_;
    mirrowset::Configurations configs_;
    int typingDelay_;
    std::shared_ptr<SupportEngineModel> supportModel_;
    quorvel::AgentDetails botAgentDetails_ = quorvel::AgentDetails::initialBot();
    std::map<std::string, Observer> onUpdate_;
    std::deque<std::vector<quorvel::MessagingItem>> queue_;
    bool isInteractionInProcess_ = false;
    RequestListOpener requestListOpener_;
};

// The name hosts know the engine by.
using CRVSupportEngine = SupportEngine;

} // namespace belvakit
