#include "belvakit/Request/conversation/event_type.hpp"

#include <array>
#include <utility>

namespace belvakit {

namespace {
constexpr std::array<std::pair<EventType, std::string_view>, 8> rawValues{{
    {EventType::userMessage, "userMessage"},
    {EventType::agentMessage, "agentMessage"},
    {EventType::userImage, "userImage"},
    {EventType::agentImage, "agentImage"},
    {EventType::userFile, "userFile"},
    {EventType::agentFile, "agentFile"},
    {EventType::date, "date"},
    {EventType::systemMessage, "systemMessage"},
}};
} // namespace

std::string_view rawValue(EventType type) { return rawValues[static_cast<std::size_t>(type)].second; }

std::optional<EventType> eventTypeFromRawValue(std::string_view raw) {
    for (const auto& [type, text] : rawValues)
        if (text == raw) return type;
    return std::nullopt;
}

bool isUserSide(EventType type) {
    return type == EventType::userMessage || type == EventType::userImage || type == EventType::userFile;
}

std::optional<DeliveryStatus> deliveryStatusFromRawValue(long long raw) {
    if (raw < 0 || raw > 3) return std::nullopt;
    return static_cast<DeliveryStatus>(raw);
}

} // namespace belvakit
