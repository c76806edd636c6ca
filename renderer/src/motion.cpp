#include "renderer/motion.hpp"

#include "uikit/image_view.hpp"

namespace renderer {

bool isInMotion(const uikit::View& root, double now) {
    if (root.isHidden()) return false;
    if (root.isAnimating(now)) return true;
    if (const auto* spinner = dynamic_cast<const uikit::ActivityIndicatorView*>(&root); spinner && spinner->isAnimating())
        return true;
    for (const auto& child : root.subviews())
        if (isInMotion(*child, now)) return true;
    return false;
}

} // namespace renderer
