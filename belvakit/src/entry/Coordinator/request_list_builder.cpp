#include "belvakit/entry/Coordinator/coordinator.hpp"

namespace belvakit {

// The request list screen is wired in here when it is part of the library.
RequestCoordinator::ListBuilder RequestCoordinator::defaultListBuilder() { return nullptr; }

} // namespace belvakit
