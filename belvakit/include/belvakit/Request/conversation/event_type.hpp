#pragma once

#include <optional>
#include <string_view>

namespace belvakit {

// What occupies a row; the raw value is also the persisted "type".
enum class EventType { userMessage, agentMessage, userImage, agentImage, userFile, agentFile, date, systemMessage };

std::string_view rawValue(EventType type);
std::optional<EventType> eventTypeFromRawValue(std::string_view raw);
// The end user's own rows, which form groups among themselves.
bool isUserSide(EventType type);

// Persisted as its integer raw value.
enum class DeliveryStatus { notDelivered = 0, delivered = 1, lastDelivered = 2, failed = 3 };

std::optional<DeliveryStatus> deliveryStatusFromRawValue(long long raw);

} // namespace belvakit
