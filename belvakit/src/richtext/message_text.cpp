#include "belvakit/richtext/message_text.hpp"

#include "belvakit/richtext/fonts.hpp"
#include "belvakit/richtext/rich_render.hpp"
#include "belvakit/richtext/text_style.hpp"

namespace belvakit {

platform::AttributedString messageCellText(bool isAgentMessage, const std::string& body,
                                           const std::optional<std::string>& htmlBody) {
    if (isAgentMessage && htmlBody) {
        auto rendered = RichRender::attributedString(*htmlBody);
        if (rendered && !rendered->empty()) return std::move(*rendered);
    }
    return plainMessageText(body);
}

platform::AttributedString plainMessageText(const std::string& body) {
    platform::TextAttributes attributes{{platform::fontAttributeName, richTextSystemFont()}};
    attributes.merge(defaultTextAttributes());
    return platform::AttributedString(body, std::move(attributes));
}

} // namespace belvakit
