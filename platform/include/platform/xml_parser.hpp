#pragma once

#include <map>
#include <optional>
#include <string>
#include <string_view>

namespace platform {

using XmlAttributes = std::map<std::string, std::string>;

struct XmlParseError {
    int code = 0;
    unsigned long line = 0;
    unsigned long column = 0;
    std::string description;  // what went wrong and where
};

class XmlParser;

// Receives the events of a parse, in document order, on the thread that runs it.
class XmlParserDelegate {
public:
    virtual ~XmlParserDelegate() = default;
    virtual void didStartElement(XmlParser& parser, std::string_view name, XmlAttributes attributes);
    virtual void didEndElement(XmlParser& parser, std::string_view name);
    // One run of text may come in several chunks, each verbatim. References are already resolved.
    virtual void foundCharacters(XmlParser& parser, std::string_view characters);
    // The content of a CDATA section, which is never reported as characters.
    virtual void foundCDATA(XmlParser& parser, std::string_view block);
    // Comes at most once, and nothing comes after it.
    virtual void parseErrorOccurred(XmlParser& parser, const XmlParseError& error);
};

// A non-validating, event-driven XML parser over a byte buffer (UTF-8 unless the document
// declares otherwise). It adds nothing and repairs nothing: no namespace processing, so names
// arrive as written; only the five predefined entities and character references exist, and a
// document that declares entities or uses any other is in error. The first error ends the parse.
class XmlParser {
public:
    // The bytes are not copied: they must stay as they are until `parse` returns.
    explicit XmlParser(std::string_view data) : data_(data) {}
    XmlParser(const XmlParser&) = delete;
    XmlParser& operator=(const XmlParser&) = delete;

    // Not owned; it must outlive `parse`.
    void setDelegate(XmlParserDelegate* delegate) { delegate_ = delegate; }
    XmlParserDelegate* delegate() const { return delegate_; }

    // Runs the whole parse, once. True when the document was well-formed.
    bool parse();
    // Called from an event, ends the parse with an error.
    void abortParsing();
    const std::optional<XmlParseError>& parserError() const { return error_; }

private:
    struct Events;
    friend struct Events;
    void stop(int code, std::string what);
    // The delegate to tell of an event; none once the parse is stopping.
    XmlParserDelegate* listener() const { return stopReason_ ? nullptr : delegate_; }

    std::string_view data_;
    XmlParserDelegate* delegate_ = nullptr;
    void* expat_ = nullptr;  // the running parse
    bool started_ = false;
    bool inCdata_ = false;
    std::optional<std::pair<int, std::string>> stopReason_;
    std::optional<XmlParseError> error_;
};

} // namespace platform
