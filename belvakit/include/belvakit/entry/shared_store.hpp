#pragma once

#include "tivra/store.hpp"

#include <any>
#include <memory>
#include <string>

namespace belvakit {

// The one store of the ticket screens: made on first use, from any thread, and never replaced.
std::shared_ptr<tivra::Store> sharedStore();

// A fresh copy of what the shared store is made of, in its order, for checks of the composition.
std::shared_ptr<tivra::CombinedReducer> sharedStoreReducer();
std::shared_ptr<tivra::Middleware> sharedStoreMiddleware();

// The value a slice of the shared store starts with; empty for a key it does not have.
std::any initialSharedSlice(const std::string& key);

} // namespace belvakit
