#include "belvakit/engine/support_engine.hpp"

#include "belvakit/Request/requestlist/show_request_list.hpp"
#include "belvakit/entry/localized_strings.hpp"
#include "corvane/corvane.hpp"
#include "dastrel/support.hpp"
#include "platform/main_queue.hpp"
#include "platform/overloaded.hpp"
#include "platform/uuid.hpp"

namespace belvakit {

using platform::Overloaded;

SupportEngineResult SupportEngine::engine() {
    auto core = corvane::Corvane::instance();
    auto identity = core ? core->identity() : nullptr;
    if (!dastrel::Support::instance() || !identity) return SupportError::supportNotInitialized;
    SupportEngineSettingsFetcher fetcher{core->providerModule().provider<dastrel::ConversationsSettingsProviderProtocol>(),
                                         identity};
    auto model = std::make_shared<SupportEngineModel>(makeRequestProvider(), std::move(fetcher), identity);
    auto made = make(platform::uuidString(), std::move(model));
    made->setRequestListOpener([](const std::any& navigation, const mirrowset::Configurations& configs) {
        showRequestList(navigation, configs);
    });
    return made;
}

std::shared_ptr<SupportEngine> SupportEngine::engineAndReturnError(SupportError* error) {
    auto result = engine();
    if (auto* made = std::get_if<std::shared_ptr<SupportEngine>>(&result)) return *made;
    if (error) *error = std::get<SupportError>(result);
    return nullptr;
}

std::shared_ptr<SupportEngine> SupportEngine::make(std::string id, std::shared_ptr<SupportEngineModel> supportModel,
                                                   int typingDelay) {
    return std::shared_ptr<SupportEngine>(new SupportEngine(std::move(id), std::move(supportModel), typingDelay));
}

SupportEngine::SupportEngine(std::string id, std::shared_ptr<SupportEngineModel> supportModel, int typingDelay)
    : id_(std::move(id)),
      transferOptionDescription_{"support", localized(LocalizedKey::requestsCreateRequestLeaveAMessageTitle)},
      typingDelay_(typingDelay), supportModel_(std::move(supportModel)) {}

void SupportEngine::start(const quorvel::QuorvelAPI& quorvelAPI) {
    const std::string log = quorvelAPI.getConversationLog().getLog();
    botAgentDetails_ = quorvelAPI.getBotAgentDetails();
    supportModel_->botName = botAgentDetails_.agentName;
    supportModel_->setUpdateDispatcher(weak_from_this());
    configs_ = mirrowset::Configurations(quorvelAPI.getConfigurations());
    auto configuration = configs_.configuration<RequestUiConfiguration>();
    supportModel_->start(configuration ? *configuration : RequestUiConfiguration{}, log);
    send(quorvel::Update::showMenu(false));
}

void SupportEngine::onEvent(const quorvel::Event& event) {
    std::visit(Overloaded{
                   [this](const quorvel::Event::MessageSubmitted& submitted) {
                       supportModel_->messageSubmitted(submitted.text);
                   },
                   [this](const quorvel::Event::ResponseOptionClicked& clicked) {
                       supportModel_->responseOptionClicked(clicked.id, clicked.text);
                   },
                   [](const quorvel::Event::ActionOptionClicked& clicked) {
                       if (clicked.action.block) clicked.action.block({{"navController", clicked.navigationController}});
                   },
                   [](const auto&) {},
               },
               event.value);
}

quorvel::ObservationToken SupportEngine::observeUpdates(Observer observer) {
    const auto key = platform::uuidString();
    onUpdate_.emplace(key, std::move(observer));
    return quorvel::ObservationToken([weak = weak_from_this(), key] {
        if (auto self = weak.lock()) self->onUpdate_.erase(key);
    });
}

std::vector<SupportEngine::Observer> SupportEngine::currentObservers() const {
    std::vector<Observer> observers;
    for (const auto& [key, observer] : onUpdate_) observers.push_back(observer);
    return observers;
}

void SupportEngine::enqueue(std::vector<quorvel::MessagingItem> turn) {
    queue_.push_back(std::move(turn));
    processQueue();
}

// One turn at a time: typing, then after the delay the turn and the end of typing.
void SupportEngine::processQueue() {
    if (queue_.empty() || isInteractionInProcess_) return;
    isInteractionInProcess_ = true;
    send(quorvel::Update::showTyping(botAgentDetails_));
    auto turn = std::move(queue_.front());
    queue_.pop_front();
    platform::MainQueue::shared().asyncAfter(
        platform::milliseconds(typingDelay_), [weak = weak_from_this(), turn = std::move(turn)]() mutable {
            auto self = weak.lock();
            if (!self) return;
            self->send(quorvel::Update::appendMessagingItems(std::move(turn), true));
            self->send(quorvel::Update::hideTyping());
            self->isInteractionInProcess_ = false;
            self->processQueue();
        });
}

void SupportEngine::openRequestList(const std::map<std::string, std::any>& arguments) {
    const auto found = arguments.find("navController");
    if (found == arguments.end() || !found->second.has_value() || !requestListOpener_) return;
    requestListOpener_(found->second, configs_);
}

} // namespace belvakit
