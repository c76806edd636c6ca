// Any bytes given to the conversation reader end as a list of messages or an empty conversation.
#include "belvakit/Request/conversation/message_list.hpp"

#include <cstddef>
#include <cstdint>
#include <string_view>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view bytes(reinterpret_cast<const char*>(data), size);
    belvakit::loadConversation(bytes, belvakit::MessageList::currentVersion,
                               [](auto messages, auto map, auto, bool) {
                                   // What was read must write back and read again as the same list.
                                   belvakit::MessageList list;
                                   list.messages = std::move(messages);
                                   list.mapLocalToRemote = std::move(map);
                                   const auto encoded = belvakit::encodeMessageList(list);
                                   if (encoded) {
                                       const auto again = belvakit::decodeMessageList(*encoded);
                                       if (!again || again->messages.size() != list.messages.size())
                                           __builtin_trap();
                                   }
                               });
    return 0;
}
