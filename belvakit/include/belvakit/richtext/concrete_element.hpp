#pragma once

#include "belvakit/richtext/element.hpp"

#include <optional>

namespace belvakit {

// The base of every node kind. Rendering and tear-down walk the tree with a heap stack rather
// than by recursion, so a document nested thousands of levels deep cannot exhaust the call stack.
class ConcreteElement : public Element {
public:
    ConcreteElement() = default;
    ~ConcreteElement() override;

    std::vector<std::shared_ptr<Element>>& children() override { return children_; }
    const std::vector<std::shared_ptr<Element>>& children() const override { return children_; }
    std::shared_ptr<Element> parent() const override { return parent_.lock(); }
    void setParent(const std::shared_ptr<Element>& parent) override { parent_ = parent; }
    const ElementAttributes& attributes() const override { return attributes_; }
    void setAttributes(ElementAttributes attributes) override { attributes_ = std::move(attributes); }

    // Node kinds shape their output through `renderOwn`.
    platform::AttributedString render(const platform::TextAttributes& attributes) const final;

protected:
    // Appends what this node shows ahead of its children and returns the style the children are
    // rendered with, or nothing when the children are not shown. By default: the style as received.
    virtual std::optional<platform::TextAttributes> renderOwn(const platform::TextAttributes& received,
                                                              platform::AttributedString& out) const;

private:
    std::vector<std::shared_ptr<Element>> children_;
    std::weak_ptr<Element> parent_;
    ElementAttributes attributes_;
};

} // namespace belvakit
