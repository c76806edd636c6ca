#include "belvakit/deeplinks/usage_telemetry.hpp"

#include "belvakit/entry/version.hpp"
#include "corvane/corvane.hpp"
#include "corvane/pingrel.hpp"

namespace belvakit {
namespace {

void send(std::string action, std::variant<corvane::NoActionPingrel, corvane::RequestUserAction> value) {
    const auto core = corvane::Corvane::instance();
    if (!core) return;
    const auto provider = core->providerModule().provider<corvane::PingrelProvider>();
    if (!provider) return;
    corvane::UserAction event{std::move(action), std::nullopt, "belvakit", "Belvakit", std::move(value), libraryVersion()};
    provider->send(event, corvane::PingrelGroup::behavioural);
}

} // namespace

void sendRequestViewed(const std::string& requestId) {
    send("requestViewed", corvane::RequestUserAction{requestId});
}

void sendRequestListViewed() { send("requestListViewed", corvane::NoActionPingrel{}); }

} // namespace belvakit
