#pragma once

#include <string>

namespace dastrel {

// A provider's failure, as the callbacks hand it over.
struct ProviderError {
    std::string domain;
    long code = 0;
    std::string localizedDescription;

    bool operator==(const ProviderError&) const = default;
};

} // namespace dastrel
