#pragma once

#include "uikit/view_controller.hpp"

#include <cstdint>

namespace belvademo {

// The Help Center's screens through the library's public factories; null while the library has
// no such screen.
bool helpCenterAvailable();
bool helpCenterArticlesAvailable();
uikit::ViewController::Ptr buildHelpCenter();
uikit::ViewController::Ptr buildHelpCenterArticle(std::int64_t articleId);

} // namespace belvademo
