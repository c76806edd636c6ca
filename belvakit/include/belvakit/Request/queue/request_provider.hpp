#pragma once

#include "dastrel/request_provider.hpp"

#include <memory>

namespace belvakit {

// The ticket calls of the support library: fetch a request, fetch comments (all, or since a
// date), create a request, add a comment, mark as read, fetch updates for the device.
using RequestProvider = dastrel::CRVRequestProvider;

// A fresh handle on the provider the core offers; when the SDK is not set up, one that answers
// every call with an error, so callers need no special case.
std::shared_ptr<RequestProvider> makeRequestProvider();

} // namespace belvakit
