#include "platform/json.hpp"

#include <boost/json/parse.hpp>

namespace platform {

std::optional<boost::json::value> parseJson(std::string_view bytes, boost::json::storage_ptr resource) {
    boost::system::error_code error;
    auto value = boost::json::parse(bytes, error, std::move(resource));
    if (error) return std::nullopt;
    return value;
}

void JsonWriter::separate() {
    if (afterKey_) {
        afterKey_ = false;
        return;
    }
    if (!hasItems_.empty()) {
        if (hasItems_.back()) out_ += ',';
        hasItems_.back() = true;
    }
}

void JsonWriter::open(char bracket) {
    separate();
    out_ += bracket;
    hasItems_.push_back(false);
}

void JsonWriter::close(char bracket) {
    out_ += bracket;
    hasItems_.pop_back();
}

void JsonWriter::key(std::string_view name) {
    string(name);
    out_ += ':';
    afterKey_ = true;
}

void JsonWriter::string(std::string_view text) {
    separate();
    serializer_.reset(text);
    char buffer[4096];
    while (!serializer_.done()) out_.append(serializer_.read(buffer));
}

void JsonWriter::scalar(const boost::json::value& value) {
    separate();
    serializer_.reset(&value);
    char buffer[64];
    while (!serializer_.done()) out_.append(serializer_.read(buffer));
}

void JsonWriter::number(std::int64_t number) { scalar(boost::json::value(number)); }
void JsonWriter::number(double number) { scalar(boost::json::value(number)); }
void JsonWriter::boolean(bool flag) {
    separate();
    out_ += flag ? "true" : "false";
}

} // namespace platform
