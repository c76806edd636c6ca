#pragma once

#include "belvakit/richtext/node_arena.hpp"
#include "platform/attributed_string.hpp"
#include "platform/text_attributes.hpp"

#include <boost/container/small_vector.hpp>

#include <map>
#include <memory>
#include <string>

namespace belvakit {

class ConcreteElement;
class Element;
using ElementAttributes = std::map<std::string, std::string>;
// Room for a few children in place: text has none, and most tags have one to three. Longer lists
// of a parsed tree grow in its arena.
using ElementList =
    boost::container::small_vector<std::shared_ptr<Element>, 3, NodeAllocator<std::shared_ptr<Element>>>;

// A node of the tree that an agent's HTML comment becomes.
class Element {
public:
    Element() = default;
    Element(const Element&) = delete;
    Element& operator=(const Element&) = delete;
    virtual ~Element() = default;

    // In document order, text and tags mixed.
    virtual ElementList& children() = 0;
    virtual const ElementList& children() const = 0;
    // Null only on the root. A plain back reference that owns nothing; a parent clears it in the
    // children that outlive it.
    virtual Element* parent() const = 0;
    virtual void setParent(Element* parent) = 0;
    // The tag's attributes as parsed; empty for the root and for character data.
    virtual const ElementAttributes& attributes() const = 0;
    virtual void setAttributes(ElementAttributes attributes) = 0;
    // A new styled string of this subtree; `attributes` is the style inherited from above.
    virtual platform::AttributedString render(const platform::TextAttributes& attributes) const = 0;

private:
    friend class ConcreteElement;
    // Lets a render walk take a concrete node apart; other elements are rendered whole.
    virtual const ConcreteElement* asConcreteElement() const { return nullptr; }
};

} // namespace belvakit
