#include "platform/xml_parser.hpp"

#include <expat.h>

#include <algorithm>
#include <climits>
#include <memory>

namespace platform {

void XmlParserDelegate::didStartElement(XmlParser&, std::string_view, XmlAttributes) {}
void XmlParserDelegate::didEndElement(XmlParser&, std::string_view) {}
void XmlParserDelegate::foundCharacters(XmlParser&, std::string_view) {}
void XmlParserDelegate::foundCDATA(XmlParser&, std::string_view) {}
void XmlParserDelegate::parseErrorOccurred(XmlParser&, const XmlParseError&) {}

struct XmlParser::Events {
    static XmlParser& self(void* userData) { return *static_cast<XmlParser*>(userData); }

    static void startElement(void* userData, const XML_Char* name, const XML_Char** pairs) {
        auto& parser = self(userData);
        XmlAttributes attributes;
        for (; pairs[0]; pairs += 2) attributes.emplace(pairs[0], pairs[1]);
        if (auto* delegate = parser.listener()) delegate->didStartElement(parser, name, std::move(attributes));
    }

    static void endElement(void* userData, const XML_Char* name) {
        auto& parser = self(userData);
        if (auto* delegate = parser.listener()) delegate->didEndElement(parser, name);
    }

    static void characters(void* userData, const XML_Char* text, int length) {
        auto& parser = self(userData);
        auto* delegate = parser.listener();
        if (!delegate) return;
        const std::string_view chunk(text, static_cast<std::size_t>(length));
        if (parser.inCdata_)
            delegate->foundCDATA(parser, chunk);
        else
            delegate->foundCharacters(parser, chunk);
    }

    static void startCdata(void* userData) { self(userData).inCdata_ = true; }
    static void endCdata(void* userData) { self(userData).inCdata_ = false; }

    // Declared entities could expand to anything, at any size: refuse them.
    static void entityDeclaration(void* userData, const XML_Char*, int, const XML_Char*, int, const XML_Char*,
                                  const XML_Char*, const XML_Char*, const XML_Char*) {
        self(userData).stop(XML_ERROR_ABORTED, "entity declarations are not allowed");
    }

    // A document with an external subset makes unknown entities "skipped" rather than errors.
    static void skippedEntity(void* userData, const XML_Char*, int) {
        self(userData).stop(XML_ERROR_UNDEFINED_ENTITY, XML_ErrorString(XML_ERROR_UNDEFINED_ENTITY));
    }
};

bool XmlParser::parse() {
    if (started_) return false;
    started_ = true;
    const std::unique_ptr<XML_ParserStruct, decltype(&XML_ParserFree)> expat(XML_ParserCreate(nullptr),
                                                                             &XML_ParserFree);
    if (!expat) {
        error_ = XmlParseError{XML_ERROR_NO_MEMORY, 0, 0, XML_ErrorString(XML_ERROR_NO_MEMORY)};
        if (delegate_) delegate_->parseErrorOccurred(*this, *error_);
        return false;
    }
    expat_ = expat.get();
    XML_SetUserData(expat.get(), this);
    XML_SetElementHandler(expat.get(), &Events::startElement, &Events::endElement);
    XML_SetCharacterDataHandler(expat.get(), &Events::characters);
    XML_SetCdataSectionHandler(expat.get(), &Events::startCdata, &Events::endCdata);
    XML_SetEntityDeclHandler(expat.get(), &Events::entityDeclaration);
    XML_SetSkippedEntityHandler(expat.get(), &Events::skippedEntity);

    // Expat takes an int length, so very large documents go in pieces.
    constexpr std::size_t piece = std::size_t{1} << 30;
    XML_Status status = XML_STATUS_OK;
    std::size_t offset = 0;
    do {
        const std::size_t length = std::min(piece, data_.size() - offset);
        const bool last = offset + length == data_.size();
        status = XML_Parse(expat.get(), data_.data() + offset, static_cast<int>(length), last);
        offset += length;
    } while (status == XML_STATUS_OK && offset < data_.size());

    if (status != XML_STATUS_OK) {
        auto [code, what] = stopReason_.value_or(std::pair<int, std::string>{
            XML_GetErrorCode(expat.get()), XML_ErrorString(XML_GetErrorCode(expat.get()))});
        const auto line = XML_GetCurrentLineNumber(expat.get());
        const auto column = XML_GetCurrentColumnNumber(expat.get());
        error_ = XmlParseError{code, line, column,
                               what + " at line " + std::to_string(line) + ", column " + std::to_string(column)};
    }
    expat_ = nullptr;
    if (error_ && delegate_) delegate_->parseErrorOccurred(*this, *error_);
    return !error_;
}

// Expat may still call a handler or two after a stop; `listener` keeps those from the delegate.
void XmlParser::stop(int code, std::string what) {
    if (!expat_ || stopReason_) return;
    stopReason_.emplace(code, std::move(what));
    XML_StopParser(static_cast<XML_Parser>(expat_), XML_FALSE);
}

void XmlParser::abortParsing() { stop(XML_ERROR_ABORTED, XML_ErrorString(XML_ERROR_ABORTED)); }

} // namespace platform
