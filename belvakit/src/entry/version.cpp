#include "belvakit/entry/version.hpp"

namespace belvakit {

namespace {
const std::string versionKey = "CFBundleShortVersionString";
}

const corvane::Bundle& libraryBundle() {
    static const corvane::Bundle bundle{{{versionKey, std::string(BELVAKIT_VERSION)}}};
    return bundle;
}

std::string versionString(const corvane::Bundle& bundle) {
    auto found = bundle.infoDictionary.find(versionKey);
    if (found != bundle.infoDictionary.end())
        if (const auto* text = std::any_cast<std::string>(&found->second)) return *text;
    return "1.0.0-default";
}

std::string libraryVersion() { return versionString(libraryBundle()); }

} // namespace belvakit
