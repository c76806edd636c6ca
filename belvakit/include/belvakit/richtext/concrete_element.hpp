#pragma once

#include "belvakit/richtext/element.hpp"

#include <array>
#include <cstdint>

namespace belvakit {

// Where one render walk writes its text, with the styles it has worked out so far: neighbouring
// nodes mostly share a style, so a style derived once is reused rather than rebuilt.
class RenderOutput {
public:
    using Derive = platform::TextAttributes (*)(const platform::TextAttributes&);

    void append(std::string_view text, const platform::TextAttributes& style) { text_.append(text, style); }
    // With the system font added when `style` names no font.
    void appendWithFont(std::string_view text, const platform::TextAttributes& style);
    // `derive(from)` the first time for this `from`, and the same map again after that. Valid until
    // the next call.
    const platform::TextAttributes& derived(const platform::TextAttributes& from, Derive derive);
    // Keeps a style for the caller until the next call.
    const platform::TextAttributes& hold(platform::TextAttributes style) { return held_ = std::move(style); }
    platform::AttributedString take() { return std::move(text_); }

private:
    struct Derivation {
        platform::TextAttributes from;
        Derive derive = nullptr;
        platform::TextAttributes to;
    };

    platform::AttributedString text_;
    std::array<Derivation, 8> derivations_;
    // Indices into `derivations_`, the most recently used first; a new one takes the last place.
    // One-off styles (a link's) so push out each other rather than the ones in steady use.
    std::array<std::uint8_t, 8> recency_{0, 1, 2, 3, 4, 5, 6, 7};
    platform::TextAttributes held_;
};

// The base of every node kind. Rendering and tear-down walk the tree with a heap stack rather
// than by recursion, so a document nested thousands of levels deep cannot exhaust the call stack.
class ConcreteElement : public Element {
public:
    ConcreteElement() = default;
    // A node whose longer child list grows in `arena` (none: on the heap).
    explicit ConcreteElement(NodeArena* arena)
        : children_(ElementList::allocator_type(NodeAllocator<std::shared_ptr<Element>>(arena))) {}
    ~ConcreteElement() override;

    ElementList& children() override { return children_; }
    const ElementList& children() const override { return children_; }
    Element* parent() const override { return parent_; }
    void setParent(Element* parent) override { parent_ = parent; }
    const ElementAttributes& attributes() const override;
    void setAttributes(ElementAttributes attributes) override;

    // Node kinds shape their output through `renderOwn`.
    platform::AttributedString render(const platform::TextAttributes& attributes) const final;

protected:
    // Appends what this node shows ahead of its children and returns the style the children are
    // rendered with (`received` itself, or one kept by `out`), or null when the children are not
    // shown. By default: the style as received.
    virtual const platform::TextAttributes* renderOwn(const platform::TextAttributes& received,
                                                      RenderOutput& out) const;

private:
    const ConcreteElement* asConcreteElement() const final { return this; }

    ElementList children_;
    Element* parent_ = nullptr;
    // Few nodes have attributes; the others keep small, and small blocks are quick to allocate.
    std::unique_ptr<ElementAttributes> attributes_;
};

} // namespace belvakit
