#pragma once

#include <cstdint>
#include <string>

namespace dastrel {

// A value for one of the account's ticket fields.
struct CustomField {
    std::int64_t fieldId = 0;
    std::string value;

    bool operator==(const CustomField&) const = default;
};

} // namespace dastrel
