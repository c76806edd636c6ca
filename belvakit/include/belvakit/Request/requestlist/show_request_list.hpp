#pragma once

#include "mirrowset/configurations.hpp"

#include <any>

namespace belvakit {

// Pushes a new request list with the configurations onto the navigation controller held in
// `navigationController` (a shared or plain pointer to a uikit::NavigationController); false for
// anything else. Without the screens' headers, for those that only pass a navigation on.
bool showRequestList(const std::any& navigationController, const mirrowset::Configurations& configurations);

} // namespace belvakit
