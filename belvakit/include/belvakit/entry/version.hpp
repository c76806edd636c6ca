#pragma once

#include "corvane/bundle.hpp"

#include <string>

namespace belvakit {

// The bundle of the library's Help Center entry class, with its version under
// "CFBundleShortVersionString".
const corvane::Bundle& libraryBundle();

// The bundle's short version string, or "1.0.0-default" when it has none or it is not a string.
std::string versionString(const corvane::Bundle& bundle);

// The library's own version, as telemetry reports it.
std::string libraryVersion();

} // namespace belvakit
