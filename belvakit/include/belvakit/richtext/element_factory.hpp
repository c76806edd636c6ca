#pragma once

#include "belvakit/richtext/element.hpp"

#include <memory>
#include <string_view>

namespace belvakit {

// Makes a fresh, unattached node for a tag name.
class ElementFactory {
public:
    virtual ~ElementFactory() = default;
    virtual std::shared_ptr<Element> element(std::string_view tagName) const = 0;
    // The same, with the node carved from `arena`; a factory without arena support uses the heap.
    virtual std::shared_ptr<Element> element(std::string_view tagName, NodeArena&) const {
        return element(tagName);
    }
};

// Matches tag names exactly, case included; an unknown tag becomes an empty `Text` so that what
// lies inside it is kept in the inherited style.
class ConcreteElementFactory final : public ElementFactory {
public:
    std::shared_ptr<Element> element(std::string_view tagName) const override;
    std::shared_ptr<Element> element(std::string_view tagName, NodeArena& arena) const override;
};

} // namespace belvakit
