#pragma once

#include "platform/image.hpp"
#include "sandbox/help_desk.hpp"

#include <filesystem>
#include <memory>
#include <optional>
#include <string>

namespace belvademo {

// A square picture of a person, light on the colour, `size` pixels wide.
platform::ImagePtr avatarImage(int size, int red, int green, int blue);
// The same, 80 pixels wide, as PNG bytes: as the desk serves agents' avatars.
std::string avatarPNG(int red, int green, int blue);

// The host application's help desk: an embedded desk in a directory of its own, made the core's,
// with an agent of the support team who answers the user's tickets.
class DemoDesk {
public:
    struct Options {
        std::string userName = "Ann Example";
        std::optional<std::string> userEmail = std::string("ann@example.com");
        // Where the core keeps its caches; a fresh temporary directory when empty.
        std::filesystem::path storage;
    };

    explicit DemoDesk(Options options);
    ~DemoDesk();
    DemoDesk(const DemoDesk&) = delete;
    DemoDesk& operator=(const DemoDesk&) = delete;

    sandbox::HelpDesk& helpDesk() const { return *helpDesk_; }
    sandbox::TicketDesk& tickets() const { return *helpDesk_->tickets(); }
    const std::string& accountUrl() const { return helpDesk_->options().accountUrl; }
    const dastrel::CRVSupportUser& agent() const { return agent_; }

    // Whether the agent answers every comment of the user on their own, after `delay` seconds.
    void setAgentAnswers(bool answers, double delay = 3);
    bool agentAnswers() const { return agentAnswers_; }
    // The agent writes on the ticket now; false when the desk has no such ticket.
    bool agentWrites(const std::string& requestId, const std::string& text);
    // The agent's answer that points to an article of the Help Center.
    bool agentSendsArticle(const std::string& requestId, std::int64_t articleId, const std::string& title);

    // The whole desk offline (tickets and Help Center) or back.
    void setOffline(bool offline);
    bool isOffline() const { return offline_; }
    // Every answer of the desk waits this long.
    void setLatency(double seconds);

    // The ticket whose conversation the shared store holds, once the desk knows it.
    static std::optional<std::string> openTicket();
    // A push for a ticket or for the list, as the host hands it to the action handler registry.
    // False when no screen on view takes it.
    static bool pushRefreshTicket(const std::string& requestId);
    static bool pushRefreshList();

    // A link to an article on this account.
    std::string articleUrl(std::int64_t articleId, const std::string& title) const;

private:
    std::filesystem::path storage_;
    bool ownsStorage_ = false;
    std::shared_ptr<sandbox::HelpDesk> helpDesk_;
    dastrel::CRVSupportUser agent_;
    bool agentAnswers_ = false;
    bool offline_ = false;
};

} // namespace belvademo
