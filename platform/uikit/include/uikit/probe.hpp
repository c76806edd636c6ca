#pragma once

#include "uikit/view.hpp"

#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace uikit {

class TextInput;
class Window;

// How tests and the renderer look into a tree and act on it, as a user would.

// The first view of the subtree (depth first, in order) with the identifier.
View* findByIdentifier(View& root, std::string_view identifier);
template <class T>
T* findByIdentifier(View& root, std::string_view identifier) {
    return dynamic_cast<T*>(findByIdentifier(root, identifier));
}
std::vector<View*> findAll(View& root, const std::function<bool(const View&)>& predicate);
// Whether the view and all its parents show.
bool isShown(const View& view);
// The texts of the shown labels, buttons and inputs of the subtree, in tree order.
std::vector<std::string> visibleTexts(View& root);

// A tap on the view: it, or the nearest parent that answers taps, handles it. False when nothing did.
bool tap(View& view);
// A tap at a point of the window: the view under it gets it.
bool tapAt(Window& window, Point point);
// Typing into an input: it becomes first responder and takes the text character by character.
void typeText(TextInput& input, const std::string& text);

} // namespace uikit
