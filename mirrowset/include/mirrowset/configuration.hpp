#pragma once

namespace mirrowset {

// A screen's configuration object, as a host hands it in a list.
class Configuration {
public:
    virtual ~Configuration() = default;
    // By default an object equals only itself.
    virtual bool isEqual(const Configuration& other) const { return this == &other; }
};

} // namespace mirrowset
