#pragma once

#include "platform/attributed_string.hpp"
#include "platform/text_attributes.hpp"

#include <map>
#include <memory>
#include <string>
#include <vector>

namespace belvakit {

using ElementAttributes = std::map<std::string, std::string>;

// A node of the tree that an agent's HTML comment becomes.
class Element {
public:
    Element() = default;
    Element(const Element&) = delete;
    Element& operator=(const Element&) = delete;
    virtual ~Element() = default;

    // In document order, text and tags mixed.
    virtual std::vector<std::shared_ptr<Element>>& children() = 0;
    virtual const std::vector<std::shared_ptr<Element>>& children() const = 0;
    // Null only on the root. Held weakly: a child never keeps its parent alive.
    virtual std::shared_ptr<Element> parent() const = 0;
    virtual void setParent(const std::shared_ptr<Element>& parent) = 0;
    // The tag's attributes as parsed; empty for the root and for character data.
    virtual const ElementAttributes& attributes() const = 0;
    virtual void setAttributes(ElementAttributes attributes) = 0;
    // A new styled string of this subtree; `attributes` is the style inherited from above.
    virtual platform::AttributedString render(const platform::TextAttributes& attributes) const = 0;
};

} // namespace belvakit
