#pragma once

#include "belvakit/richtext/concrete_element.hpp"

#include <string>
#include <string_view>

namespace belvakit {

// The top of a parsed tree. Renders its children in the default text style, whatever it is given.
class Root final : public ConcreteElement {
public:
    using ConcreteElement::ConcreteElement;

protected:
    const platform::TextAttributes* renderOwn(const platform::TextAttributes& received,
                                              RenderOutput& out) const override;
};

// Character data, and any tag without a kind of its own (then with empty content).
class Text final : public ConcreteElement {
public:
    // Bytes kept elsewhere for at least as long as the node: a parse keeps character data in the
    // arena that holds its nodes, rather than in a heap block per node.
    struct BorrowedContent {
        std::string_view bytes;
    };

    Text() = default;
    explicit Text(std::string content) { setContent(std::move(content)); }
    explicit Text(BorrowedContent content, NodeArena* arena = nullptr)
        : ConcreteElement(arena), content_(content.bytes) {}
    explicit Text(NodeArena* arena) : ConcreteElement(arena) {}

    std::string_view content() const { return content_; }
    void setContent(std::string content) {
        owned_ = std::make_unique<std::string>(std::move(content));
        content_ = *owned_;
    }

protected:
    const platform::TextAttributes* renderOwn(const platform::TextAttributes& received,
                                              RenderOutput& out) const override;

private:
    std::unique_ptr<std::string> owned_;  // none when borrowed
    std::string_view content_;
};

// `br`: a newline in the inherited style, without a font of its own.
class Break final : public ConcreteElement {
public:
    using ConcreteElement::ConcreteElement;

    const std::string& content() const;

protected:
    const platform::TextAttributes* renderOwn(const platform::TextAttributes& received,
                                              RenderOutput& out) const override;
};

// `a`: its children link to `href` when that is a URL.
class Link final : public ConcreteElement {
public:
    using ConcreteElement::ConcreteElement;

protected:
    const platform::TextAttributes* renderOwn(const platform::TextAttributes& received,
                                              RenderOutput& out) const override;
};

// `img`: shown as the text of its `src`; the picture itself is never fetched.
class Image final : public ConcreteElement {
public:
    using ConcreteElement::ConcreteElement;

protected:
    const platform::TextAttributes* renderOwn(const platform::TextAttributes& received,
                                              RenderOutput& out) const override;
};

// `b` and the headings `h1`...`h6`.
class Bold final : public ConcreteElement {
public:
    using ConcreteElement::ConcreteElement;

protected:
    const platform::TextAttributes* renderOwn(const platform::TextAttributes& received,
                                              RenderOutput& out) const override;
};

// `i`.
class Italic final : public ConcreteElement {
public:
    using ConcreteElement::ConcreteElement;

protected:
    const platform::TextAttributes* renderOwn(const platform::TextAttributes& received,
                                              RenderOutput& out) const override;
};

// `code`: monospace in light grey, whatever the surrounding style.
class Code final : public ConcreteElement {
public:
    using ConcreteElement::ConcreteElement;

protected:
    const platform::TextAttributes* renderOwn(const platform::TextAttributes& received,
                                              RenderOutput& out) const override;
};

// `blockquote`: italic in grey, whatever the surrounding style.
class Quote final : public ConcreteElement {
public:
    using ConcreteElement::ConcreteElement;

protected:
    const platform::TextAttributes* renderOwn(const platform::TextAttributes& received,
                                              RenderOutput& out) const override;
};

// `div`: a plain container.
class Div final : public ConcreteElement {
public:
    using ConcreteElement::ConcreteElement;
};

// Kinds no tag produces; they render their children as they are.
class UnorderList final : public ConcreteElement {
public:
    using ConcreteElement::ConcreteElement;
};
class OrderedList final : public ConcreteElement {
public:
    using ConcreteElement::ConcreteElement;
};

} // namespace belvakit
