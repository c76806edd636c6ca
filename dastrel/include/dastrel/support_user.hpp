#pragma once

#include <boost/json/value.hpp>

#include <cstdint>
#include <optional>
#include <string>

namespace dastrel {

// A person of the help desk: an agent or the end user.
struct CRVSupportUser {
    std::int64_t userId = 0;
    std::string name;
    std::optional<std::string> avatarURL;
    bool isAgent = false;

    boost::json::value toJson() const;
    // Nothing when a required field is missing or of the wrong type.
    static std::optional<CRVSupportUser> fromJson(const boost::json::value& json);

    bool operator==(const CRVSupportUser&) const = default;
};

} // namespace dastrel
