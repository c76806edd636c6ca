#include "belvakit/richtext/element_factory.hpp"

#include "belvakit/richtext/elements.hpp"

#include <array>
#include <type_traits>

namespace belvakit {
namespace {

// `make(std::type_identity<Kind>{})` for the kind of node the tag stands for.
template <typename Make>
std::shared_ptr<Element> elementOfKind(std::string_view tagName, const Make& make) {
    if (tagName == "b") return make(std::type_identity<Bold>{});
    if (tagName == "i") return make(std::type_identity<Italic>{});
    if (tagName == "code") return make(std::type_identity<Code>{});
    if (tagName == "blockquote") return make(std::type_identity<Quote>{});
    if (tagName == "br") return make(std::type_identity<Break>{});
    if (tagName == "div") return make(std::type_identity<Div>{});
    if (tagName == "a") return make(std::type_identity<Link>{});
    if (tagName == "img") return make(std::type_identity<Image>{});
    static constexpr std::array<std::string_view, 6> headings{"h1", "h2", "h3", "h4", "h5", "h6"};
    for (const auto heading : headings)
        if (tagName == heading) return make(std::type_identity<Bold>{});
    return make(std::type_identity<Text>{});
}

} // namespace

std::shared_ptr<Element> ConcreteElementFactory::element(std::string_view tagName) const {
    return elementOfKind(tagName, []<typename Kind>(std::type_identity<Kind>) -> std::shared_ptr<Element> {
        return std::make_shared<Kind>();
    });
}

std::shared_ptr<Element> ConcreteElementFactory::element(std::string_view tagName, NodeArena& arena) const {
    return elementOfKind(tagName, [&arena]<typename Kind>(std::type_identity<Kind>) -> std::shared_ptr<Element> {
        return std::allocate_shared<Kind>(NodeAllocator<Kind>(&arena), &arena);
    });
}

} // namespace belvakit
