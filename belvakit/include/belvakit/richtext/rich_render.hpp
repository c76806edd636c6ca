#pragma once

#include "belvakit/richtext/element.hpp"
#include "belvakit/richtext/element_factory.hpp"
#include "belvakit/richtext/node_arena.hpp"
#include "platform/attributed_string.hpp"
#include "platform/xml_parser.hpp"

#include <memory>
#include <optional>
#include <string>

namespace belvakit {

// One parse of an agent's HTML into an element tree. The HTML must be well-formed XML with a
// single top element; nothing is wrapped or repaired, and any parser error means no tree at all.
class RichRender final : public platform::XmlParserDelegate {
public:
    RichRender();

    // The HTML as trimmed styled text, or nothing when it doesn't parse.
    static std::optional<platform::AttributedString> attributedString(const std::string& html);

    // The tree's `Root`, or null after a parse error.
    std::shared_ptr<Element> parse(const std::string& html);

    void didStartElement(platform::XmlParser& parser, std::string_view name,
                         platform::XmlAttributes attributes) override;
    void foundCharacters(platform::XmlParser& parser, std::string_view characters) override;
    void didEndElement(platform::XmlParser& parser, std::string_view name) override;
    void parseErrorOccurred(platform::XmlParser& parser, const platform::XmlParseError& error) override;

private:
    // Where the next node goes while parsing; the root, or null, once done.
    Element& insertionPoint() const;

    std::unique_ptr<platform::XmlParser> parser_;
    Element* tree_ = nullptr;         // the insertion point; null after an error
    std::shared_ptr<Element> root_;  // owns the tree that `tree_` walks
    std::unique_ptr<NodeArena, NodeArenaRelease> arena_;  // held for the length of a parse
    std::shared_ptr<ElementFactory> elementCreator_;
};

} // namespace belvakit
