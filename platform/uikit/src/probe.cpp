#include "uikit/probe.hpp"

#include "uikit/button.hpp"
#include "uikit/text_input.hpp"
#include "uikit/window.hpp"

namespace uikit {

View* findByIdentifier(View& root, std::string_view identifier) {
    if (root.accessibilityIdentifier() == identifier) return &root;
    for (const auto& child : root.subviews())
        if (auto* found = findByIdentifier(*child, identifier)) return found;
    return nullptr;
}

std::vector<View*> findAll(View& root, const std::function<bool(const View&)>& predicate) {
    std::vector<View*> found;
    const std::function<void(View&)> visit = [&](View& view) {
        if (predicate(view)) found.push_back(&view);
        for (const auto& child : view.subviews()) visit(*child);
    };
    visit(root);
    return found;
}

bool isShown(const View& view) {
    for (const View* current = &view; current; current = current->superview())
        if (current->isHidden() || current->alpha() < 0.01) return false;
    return true;
}

std::vector<std::string> visibleTexts(View& root) {
    std::vector<std::string> texts;
    const std::function<void(View&)> visit = [&](View& view) {
        if (view.isHidden() || view.alpha() < 0.01) return;
        if (const auto* input = dynamic_cast<const TextInput*>(&view)) {
            texts.push_back(input->text().empty() ? input->placeholder() : input->text());
        } else if (const auto* label = dynamic_cast<const Label*>(&view); label && !label->text().empty()) {
            texts.push_back(label->text());
        }
        for (const auto& child : view.subviews()) visit(*child);
    };
    visit(root);
    return texts;
}

bool tap(View& view) {
    for (View* current = &view; current; current = current->superview()) {
        if (!current->isUserInteractionEnabled() && current != &view) return false;
        // An action may take the view out of its tree; it lives until the tap is handled.
        const auto keep = current->weak_from_this().lock();
        if (current->handleTap()) return true;
    }
    return false;
}

bool tapAt(Window& window, Point point) {
    View* hit = window.hitTest(point);
    return hit && tap(*hit);
}

void typeText(TextInput& input, const std::string& text) {
    input.becomeFirstResponder();
    input.insertText(text);
}

} // namespace uikit
