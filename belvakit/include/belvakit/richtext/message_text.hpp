#pragma once

#include "platform/attributed_string.hpp"

#include <optional>
#include <string>

namespace belvakit {

// What a message's text cell shows: an agent's HTML body rendered, when there is one that parses
// and has visible text; in every other case the plain body.
platform::AttributedString messageCellText(bool isAgentMessage, const std::string& body,
                                           const std::optional<std::string>& htmlBody);

// The plain body as one run: the rich-text system font with the default attributes on top.
platform::AttributedString plainMessageText(const std::string& body);

} // namespace belvakit
