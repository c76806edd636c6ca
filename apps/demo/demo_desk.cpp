#include "demo_desk.hpp"

#include "belvakit/Request/conversation/request_table_state.hpp"
#include "belvakit/entry/shared_store.hpp"
#include "belvakit/entry/support_ui.hpp"
#include "platform/image.hpp"
#include "platform/image_codec.hpp"
#include "platform/log.hpp"
#include "platform/uuid.hpp"

#include <any>
#include <cctype>
#include <chrono>
#include <map>

namespace belvademo {

platform::ImagePtr avatarImage(int size, int red, int green, int blue) {
    auto image = std::const_pointer_cast<platform::Image>(platform::makeImage(size, size));
    const double scale = size / 80.0;
    for (int y = 0; y < size; ++y)
        for (int x = 0; x < size; ++x) {
            const double dx = (x - size / 2.0 + 0.5) / scale;
            const double dy = (y - size / 2.0 + 0.5) / scale;
            const bool figure = dx * dx + (dy + 10) * (dy + 10) < 256 || (dy > 14 && dx * dx + (dy - 38) * (dy - 38) < 700);
            auto* pixel = &image->rgba[static_cast<std::size_t>((y * size + x) * 4)];
            pixel[0] = static_cast<std::uint8_t>(figure ? 250 : red);
            pixel[1] = static_cast<std::uint8_t>(figure ? 250 : green);
            pixel[2] = static_cast<std::uint8_t>(figure ? 250 : blue);
            pixel[3] = 255;
        }
    return image;
}

std::string avatarPNG(int red, int green, int blue) {
    return platform::encodePNG(*avatarImage(80, red, green, blue)).value_or("");
}

namespace {

corvane::ActionHandlerRegistry* registry() {
    auto core = corvane::Corvane::instance();
    return core ? &core->actionHandlerRegistry() : nullptr;
}

bool push(const std::string& actionName, std::map<std::string, std::any> info) {
    auto* handlers = registry();
    auto handler = handlers ? handlers->handler(actionName) : nullptr;
    if (!handler) {
        platform::log::write(platform::LogLevel::info, "Push \"" + actionName + "\": no screen on view takes it");
        return false;
    }
    handler->handle(info);
    return true;
}

} // namespace

DemoDesk::DemoDesk(Options options) : storage_(std::move(options.storage)) {
    if (storage_.empty()) {
        storage_ = std::filesystem::temp_directory_path() / ("belva-demo-" + platform::uuidString());
        ownsStorage_ = true;
    }
    helpDesk_ = sandbox::HelpDesk::make({.storageDirectory = storage_});
    auto core = helpDesk_->initializeCorvane(corvane::Identity::createAnonymous(options.userName, options.userEmail));
    belvakit::SupportUI::initialize(core);

    const std::string avatar = accountUrl() + "/avatars/sam.png";
    helpDesk_->attachments()->serve(avatar, avatarPNG(52, 152, 219));
    agent_ = tickets().addAgent("Sam from Support", avatar);
}

DemoDesk::~DemoDesk() {
    // An outage would otherwise outlive the desk.
    setOffline(false);
    setAgentAnswers(false);
    if (ownsStorage_) {
        std::error_code ignored;
        std::filesystem::remove_all(storage_, ignored);
    }
}

void DemoDesk::setAgentAnswers(bool answers, double delay) {
    agentAnswers_ = answers;
    if (!answers) {
        // The desk calls whatever reply it holds: a silent one.
        tickets().setAutoReply(agent_.userId, [](const auto&, const auto&) { return std::optional<sandbox::TicketDesk::Reply>(); });
        return;
    }
    const auto after = std::chrono::duration_cast<platform::Duration>(std::chrono::duration<double>(delay));
    const std::string link = articleUrl(360028, "working-offline");
    tickets().setAutoReply(agent_.userId, [after, link](const dastrel::CRVRequest& request, const dastrel::CRVComment& comment) {
        sandbox::TicketDesk::Reply reply;
        reply.after = after;
        if (request.commentCount <= 1) {
            // The first answer points to an article, as agents often do.
            reply.body = "Thanks, I'm on it. Until then, Working offline explains how to keep going.";
            reply.htmlBody = "<p>Thanks, I'm on it. Until then, <a href=\"" + link +
                             "\">Working offline</a> explains how to keep going.</p>";
        } else {
            reply.body = "Got it: \"" + comment.body + "\". I'll get back to you soon.";
        }
        return std::optional<sandbox::TicketDesk::Reply>(std::move(reply));
    });
}

bool DemoDesk::agentWrites(const std::string& requestId, const std::string& text) {
    return tickets().addAgentComment(requestId, agent_.userId, text).has_value();
}

bool DemoDesk::agentSendsArticle(const std::string& requestId, std::int64_t articleId, const std::string& title) {
    std::string slug;
    for (const char c : title) slug += (c == ' ') ? '-' : static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    const auto html = "<p>This article should help: <a href=\"" + articleUrl(articleId, slug) + "\">" + title + "</a></p>";
    return tickets().addAgentComment(requestId, agent_.userId, "This article should help: " + title, html).has_value();
}

void DemoDesk::setOffline(bool offline) {
    offline_ = offline;
    tickets().setOffline(offline);
    helpDesk_->helpCenter()->setOffline(offline);
}

void DemoDesk::setLatency(double seconds) {
    const auto latency = std::chrono::duration_cast<platform::Duration>(std::chrono::duration<double>(seconds));
    tickets().setLatency(latency);
    helpDesk_->attachments()->setLatency(latency);
    helpDesk_->helpCenter()->setLatency(latency);
    helpDesk_->settings()->setLatency(latency);
}

std::optional<std::string> DemoDesk::openTicket() {
    const auto* table = belvakit::sharedStore()->state().valueOfType<belvakit::RequestTableState>();
    return table ? table->remoteId : std::nullopt;
}

bool DemoDesk::pushRefreshTicket(const std::string& requestId) {
    return push("Request_Controller_Refresh_id_" + requestId, {{"request_id", requestId}});
}

bool DemoDesk::pushRefreshList() { return push("Request_List_Refresh", {}); }

std::string DemoDesk::articleUrl(std::int64_t articleId, const std::string& slug) const {
    return accountUrl() + "/hc/en-us/articles/" + std::to_string(articleId) + "-" + slug;
}

} // namespace belvademo
