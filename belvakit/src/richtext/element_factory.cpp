#include "belvakit/richtext/element_factory.hpp"

#include "belvakit/richtext/elements.hpp"

#include <array>

namespace belvakit {

std::shared_ptr<Element> ConcreteElementFactory::element(std::string_view tagName) const {
    if (tagName == "b") return std::make_shared<Bold>();
    if (tagName == "i") return std::make_shared<Italic>();
    if (tagName == "code") return std::make_shared<Code>();
    if (tagName == "blockquote") return std::make_shared<Quote>();
    if (tagName == "br") return std::make_shared<Break>();
    if (tagName == "div") return std::make_shared<Div>();
    if (tagName == "a") return std::make_shared<Link>();
    if (tagName == "img") return std::make_shared<Image>();
    static constexpr std::array<std::string_view, 6> headings{"h1", "h2", "h3", "h4", "h5", "h6"};
    for (const auto heading : headings)
        if (tagName == heading) return std::make_shared<Bold>();
    return std::make_shared<Text>();
}

} // namespace belvakit
