#pragma once

#include "quorvel/messaging_item.hpp"
#include "quorvel/update.hpp"

#include <any>
#include <map>
#include <string>
#include <vector>

namespace belvakit {

// Where the dialog's output goes: updates at once, bot turns through the pacing queue.
class SupportMessagingUpdateDispatcher {
public:
    virtual ~SupportMessagingUpdateDispatcher() = default;

    virtual void send(const quorvel::Update& update) = 0;
    // One bot turn, shown after the typing indicator has played.
    virtual void enqueue(std::vector<quorvel::MessagingItem> turn) = 0;
    // The confirmation's button: opens the user's request list from the screen's navigation.
    virtual void openRequestList(const std::map<std::string, std::any>& arguments) = 0;
};

} // namespace belvakit
