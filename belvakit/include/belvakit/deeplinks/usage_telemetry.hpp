#pragma once

#include <string>

namespace belvakit {

// The library's two usage events, sent through the core's analytics provider in the behavioural
// group. Without a core instance or provider nothing is sent.
void sendRequestViewed(const std::string& requestId);
void sendRequestListViewed();

} // namespace belvakit
