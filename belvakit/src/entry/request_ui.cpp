#include "belvakit/entry/request_ui.hpp"

#include "corvane/corvane.hpp"

namespace belvakit {

namespace {

// The core's storage when there is a core object; the container ends the flow without one.
std::optional<corvane::StoreModule> currentStoreModule() {
    const auto core = corvane::Corvane::instance();
    return core ? std::optional(core->storeModule()) : std::nullopt;
}

std::shared_ptr<RequestContainerController> container(std::optional<std::string> requestId,
                                                      const mirrowset::ConfigurationList& configurations) {
    return RequestContainerController::make(std::move(requestId), configurations, currentStoreModule(), nullptr, false);
}

} // namespace

std::shared_ptr<CoordinatingViewController> RequestUi::buildRequestList() { return buildRequestList(mirrowset::ConfigurationList{}); }

std::shared_ptr<CoordinatingViewController> RequestUi::buildRequestList(const mirrowset::ConfigurationList& with) {
    return std::make_shared<CoordinatingViewController>(std::make_shared<RequestCoordinator>(with));
}

std::shared_ptr<RequestContainerController> RequestUi::buildRequestUi() { return buildRequestUi(mirrowset::ConfigurationList{}); }

std::shared_ptr<RequestContainerController> RequestUi::buildRequestUi(const mirrowset::ConfigurationList& with) {
    return container(std::nullopt, with);
}

std::shared_ptr<RequestContainerController> RequestUi::buildRequestUi(const std::string& requestId) {
    return buildRequestUi(requestId, mirrowset::ConfigurationList{});
}

std::shared_ptr<RequestContainerController> RequestUi::buildRequestUi(const std::string& requestId,
                                                                      const mirrowset::ConfigurationList& configurations) {
    return container(requestId, configurations);
}

} // namespace belvakit
