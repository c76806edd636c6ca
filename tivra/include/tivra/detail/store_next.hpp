#pragma once

#include <memory>

namespace tivra {

class Action;
class Store;

namespace detail {

// The `next` a store hands its middleware: reduces on the store if it still exists.
// A chain recognises it to reuse its continuations across dispatches of the same store.
struct StoreNext {
    std::weak_ptr<Store> store;
    Store* raw = nullptr;  // read only while `store` has not expired
    void operator()(const Action& action) const;
};

} // namespace detail
} // namespace tivra
