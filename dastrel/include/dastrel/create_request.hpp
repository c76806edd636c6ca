#pragma once

#include "dastrel/custom_field.hpp"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace dastrel {

// What a new ticket is made of; `attachments` are upload tokens.
struct CRVCreateRequest {
    std::optional<std::string> subject;
    std::string requestDescription;
    std::vector<std::string> tags;
    std::vector<CustomField> customFields;
    std::optional<std::int64_t> ticketFormId;
    std::vector<std::string> attachments;

    bool operator==(const CRVCreateRequest&) const = default;
};

// The raw answer of a call: its status and body bytes.
struct CRVDispatcherResponse {
    int statusCode = 200;
    std::string data;
};

} // namespace dastrel
