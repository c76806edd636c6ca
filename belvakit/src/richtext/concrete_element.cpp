#include "belvakit/richtext/concrete_element.hpp"

#include "belvakit/richtext/fonts.hpp"

#include <iterator>
#include <vector>

namespace belvakit {
namespace {

// One open node of a render walk and the next child to render. Its children's style is kept by
// the frame at `styleOwner`: its own when the node changes the style, else an ancestor's, which
// spares a copy per container node.
struct Frame {
    const ConcreteElement* node;
    std::size_t styleOwner;
    platform::TextAttributes ownStyle;
    std::size_t next = 0;
};

} // namespace

// Text needs a font to be drawn: the system font unless the style already names one.
void RenderOutput::appendWithFont(std::string_view text, const platform::TextAttributes& style) {
    if (style.find(platform::fontAttributeName)) return append(text, style);
    const auto withSystemFont = [](const platform::TextAttributes& from) {
        platform::TextAttributes filled = from;
        filled.set(platform::fontAttributeName, richTextSystemFont());
        return filled;
    };
    append(text, derived(style, +withSystemFont));
}

const platform::TextAttributes& RenderOutput::derived(const platform::TextAttributes& from, Derive derive) {
    const auto promote = [this](std::size_t rank) {
        const std::uint8_t index = recency_[rank];
        for (; rank > 0; --rank) recency_[rank] = recency_[rank - 1];
        return recency_[0] = index;
    };
    for (std::size_t rank = 0; rank < recency_.size(); ++rank) {
        const auto& known = derivations_[recency_[rank]];
        if (known.derive == derive && known.from.isSameStorage(from)) return derivations_[promote(rank)].to;
    }
    // Holding `from` keeps its storage, and so the identity the lookup relies on, alive.
    auto& slot = derivations_[promote(recency_.size() - 1)];
    slot = {from, derive, derive(from)};
    return slot.to;
}

ConcreteElement::~ConcreteElement() {
    // Releasing a deep subtree by recursion would go as deep as the tree: unlink it level by level
    // instead. A node someone else still holds survives, without its dangling parent.
    if (children_.empty()) return;
    const NodeArena::TearDown batch(children_.get_allocator().arena());
    std::vector<std::shared_ptr<Element>> pending;
    const auto release = [&pending](Element* owner, ElementList& children) {
        for (auto& child : children) {
            if (!child) continue;
            if (child.use_count() != 1) {
                if (child->parent() == owner) child->setParent(nullptr);
            } else if (!child->children().empty()) {
                pending.push_back(std::move(child));
            }
        }
        children.clear();
    };
    release(this, children_);
    while (!pending.empty()) {
        const std::shared_ptr<Element> node = std::move(pending.back());
        pending.pop_back();
        release(node.get(), node->children());
    }
}

const ElementAttributes& ConcreteElement::attributes() const {
    static const ElementAttributes none;
    return attributes_ ? *attributes_ : none;
}

void ConcreteElement::setAttributes(ElementAttributes attributes) {
    if (attributes.empty())
        attributes_.reset();
    else
        attributes_ = std::make_unique<ElementAttributes>(std::move(attributes));
}

platform::AttributedString ConcreteElement::render(const platform::TextAttributes& attributes) const {
    RenderOutput out;
    const auto* childStyle = renderOwn(attributes, out);
    if (!childStyle || children_.empty()) return out.take();

    std::vector<Frame> open;
    open.reserve(16);
    open.push_back({this, 0, *childStyle});
    while (!open.empty()) {
        auto& frame = open.back();
        if (frame.next == frame.node->children_.size()) {
            open.pop_back();
            continue;
        }
        const Element* child = frame.node->children_[frame.next++].get();
        if (!child) continue;
        const std::size_t owner = frame.styleOwner;
        const auto& style = open[owner].ownStyle;
        const auto* concrete = child->asConcreteElement();
        if (!concrete) {
            const auto rendered = child->render(style);
            for (const auto& run : rendered.runs())
                out.append(std::string_view(rendered.string()).substr(run.range.location, run.range.length),
                           run.attributes);
            continue;
        }
        const auto* grandchildStyle = concrete->renderOwn(style, out);
        if (!grandchildStyle || concrete->children_.empty()) continue;
        if (grandchildStyle == &style)
            open.push_back({concrete, owner, {}});
        else
            open.push_back({concrete, open.size(), *grandchildStyle});
    }
    return out.take();
}

const platform::TextAttributes* ConcreteElement::renderOwn(const platform::TextAttributes& received,
                                                           RenderOutput&) const {
    return &received;
}

} // namespace belvakit
