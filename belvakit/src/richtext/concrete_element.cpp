#include "belvakit/richtext/concrete_element.hpp"

#include <iterator>

namespace belvakit {
namespace {

// One open node of a render walk: the style its children get, and the next child to render.
struct Frame {
    const ConcreteElement* node;
    platform::TextAttributes style;
    std::size_t next = 0;
};

} // namespace

ConcreteElement::~ConcreteElement() {
    // Releasing a deep subtree by recursion would go as deep as the tree: unlink it level by level.
    // A node shared with someone else keeps its children.
    std::vector<std::shared_ptr<Element>> pending = std::move(children_);
    while (!pending.empty()) {
        std::shared_ptr<Element> node = std::move(pending.back());
        pending.pop_back();
        if (!node || node.use_count() != 1) continue;
        auto& grandchildren = node->children();
        pending.insert(pending.end(), std::make_move_iterator(grandchildren.begin()),
                       std::make_move_iterator(grandchildren.end()));
        grandchildren.clear();
    }
}

platform::AttributedString ConcreteElement::render(const platform::TextAttributes& attributes) const {
    platform::AttributedString out;
    auto childStyle = renderOwn(attributes, out);
    if (!childStyle || children_.empty()) return out;

    std::vector<Frame> open;
    open.push_back({this, std::move(*childStyle)});
    while (!open.empty()) {
        auto& frame = open.back();
        if (frame.next == frame.node->children_.size()) {
            open.pop_back();
            continue;
        }
        const Element* child = frame.node->children_[frame.next++].get();
        if (!child) continue;
        const auto* concrete = dynamic_cast<const ConcreteElement*>(child);
        if (!concrete) {
            out.append(child->render(frame.style));
            continue;
        }
        auto grandchildStyle = concrete->renderOwn(frame.style, out);
        if (grandchildStyle && !concrete->children_.empty()) open.push_back({concrete, std::move(*grandchildStyle)});
    }
    return out;
}

std::optional<platform::TextAttributes> ConcreteElement::renderOwn(const platform::TextAttributes& received,
                                                                   platform::AttributedString&) const {
    return received;
}

} // namespace belvakit
