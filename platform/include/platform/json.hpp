#pragma once

#include <boost/json/serializer.hpp>
#include <boost/json/value.hpp>

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace platform {

// The JSON value of the bytes, or nothing when they are not one complete JSON text.
// `resource` lets a caller that reads and drops the value at once parse into an arena.
std::optional<boost::json::value> parseJson(std::string_view bytes, boost::json::storage_ptr resource = {});

// Writes JSON text straight into a string, without building a document first. Strings and numbers
// are written by Boost.JSON's serializer, so escaping and number forms are the library's own.
class JsonWriter {
public:
    explicit JsonWriter(std::string& out) : out_(out) {}

    void beginObject() { open('{'); }
    void endObject() { close('}'); }
    void beginArray() { open('['); }
    void endArray() { close(']'); }
    // The key of the next value in an object.
    void key(std::string_view name);

    void string(std::string_view text);
    void number(std::int64_t number);
    void number(double number);
    void boolean(bool flag);

private:
    void separate();
    void open(char bracket);
    void close(char bracket);
    void scalar(const boost::json::value& value);

    std::string& out_;
    boost::json::serializer serializer_;
    std::vector<bool> hasItems_;  // per open bracket
    bool afterKey_ = false;
};

} // namespace platform
