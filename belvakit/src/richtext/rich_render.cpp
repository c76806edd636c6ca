#include "belvakit/richtext/rich_render.hpp"

#include "belvakit/richtext/elements.hpp"
#include "corvane/core_logger.hpp"
#include "platform/character_set.hpp"

#include <unicode/utf8.h>

namespace belvakit {
namespace {

using corvane::CoreLogger;

// Leading and trailing whitespace goes; what remains keeps its attributes.
void trimWhitespaceAndNewlines(platform::AttributedString& text) {
    const auto set = platform::CharacterSet::whitespaceAndNewlines();
    const auto* bytes = reinterpret_cast<const std::uint8_t*>(text.string().data());
    const auto length = static_cast<std::int32_t>(text.length());

    std::int32_t start = 0;
    while (start < length) {
        std::int32_t next = start;
        UChar32 codePoint = 0;
        U8_NEXT(bytes, next, length, codePoint);
        if (codePoint < 0 || !set.contains(static_cast<char32_t>(codePoint))) break;
        start = next;
    }
    std::int32_t end = length;
    while (end > start) {
        std::int32_t previous = end - 1;
        while (previous > start && U8_IS_TRAIL(bytes[previous])) --previous;
        std::int32_t next = previous;
        UChar32 codePoint = 0;
        U8_NEXT(bytes, next, end, codePoint);
        if (codePoint < 0 || next != end || !set.contains(static_cast<char32_t>(codePoint))) break;
        end = previous;
    }
    text.deleteCharacters({static_cast<std::size_t>(end), text.length() - static_cast<std::size_t>(end)});
    text.deleteCharacters({0, static_cast<std::size_t>(start)});
}

} // namespace

RichRender::RichRender() : elementCreator_(std::make_shared<ConcreteElementFactory>()) {}

std::optional<platform::AttributedString> RichRender::attributedString(const std::string& html) {
    RichRender richRender;
    const auto tree = richRender.parse(html);
    if (!tree) {
        CoreLogger::verbose("Unable to decode HTML from: " + html);
        return std::nullopt;
    }
    platform::AttributedString text = tree->render({});
    trimWhitespaceAndNewlines(text);
    return text;
}

std::shared_ptr<Element> RichRender::parse(const std::string& html) {
    std::string message;
    message.reserve(html.size() + 16);
    CoreLogger::verbose(message.append("Parsing HTML: ").append(html).append(" \n"));
    arena_.reset(NodeArena::make());
    root_ = std::allocate_shared<Root>(NodeAllocator<Root>(arena_.get()), arena_.get());
    tree_ = root_.get();
    parser_ = std::make_unique<platform::XmlParser>(html);
    parser_->setDelegate(this);
    parser_->parse();
    parser_ = nullptr;
    arena_ = nullptr;
    return tree_ ? root_ : nullptr;
}

// After a parse error the tree is gone and the result is the plain-text fallback, so a late
// event is declined rather than trusted.
void RichRender::didStartElement(platform::XmlParser&, std::string_view name, platform::XmlAttributes attributes) {
    if (!tree_) return;
    auto element = elementCreator_->element(name, *arena_);
    Element* added = element.get();
    added->setParent(tree_);
    added->setAttributes(std::move(attributes));
    insertionPoint().children().push_back(std::move(element));
    tree_ = added;
}

void RichRender::foundCharacters(platform::XmlParser&, std::string_view characters) {
    if (!tree_) return;
    // The node holds the arena, and so the copied bytes, for as long as it lives.
    auto text = std::allocate_shared<Text>(NodeAllocator<Text>(arena_.get()),
                                           Text::BorrowedContent{arena_->copy(characters)}, arena_.get());
    text->setParent(tree_);
    insertionPoint().children().push_back(std::move(text));
}

void RichRender::didEndElement(platform::XmlParser&, std::string_view) {
    if (!tree_) return;
    if (auto* parent = insertionPoint().parent()) tree_ = parent;
}

void RichRender::parseErrorOccurred(platform::XmlParser&, const platform::XmlParseError& error) {
    CoreLogger::debug("Parse error occured: " + error.description);
    tree_ = nullptr;
    root_ = nullptr;
}

Element& RichRender::insertionPoint() const { return *tree_; }

} // namespace belvakit
