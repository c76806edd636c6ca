#pragma once

#include "tivra/store.hpp"

#include <memory>

namespace belvakit {

// The one store of the ticket screens: made on first use, from any thread, and never replaced.
std::shared_ptr<tivra::Store> sharedStore();

} // namespace belvakit
