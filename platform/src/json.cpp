#include "platform/json.hpp"

#include <boost/json/basic_parser_impl.hpp>
#include <boost/json/value_stack.hpp>

#include <charconv>

namespace platform {
namespace {

// Builds the value as Boost.JSON's own parser does, except that a double is read from its text
// with from_chars: the library's fast conversion can land one bit off, and saved dates must read
// back exactly as they were written.
struct ExactHandler {
    static constexpr std::size_t max_object_size = boost::json::object::max_size();
    static constexpr std::size_t max_array_size = boost::json::array::max_size();
    static constexpr std::size_t max_key_size = boost::json::string::max_size();
    static constexpr std::size_t max_string_size = boost::json::string::max_size();

    explicit ExactHandler(boost::json::storage_ptr resource) { stack.reset(std::move(resource)); }

    bool on_document_begin(boost::system::error_code&) { return true; }
    bool on_document_end(boost::system::error_code&) { return true; }
    bool on_object_begin(boost::system::error_code&) { return true; }
    bool on_object_end(std::size_t n, boost::system::error_code&) { stack.push_object(n); return true; }
    bool on_array_begin(boost::system::error_code&) { return true; }
    bool on_array_end(std::size_t n, boost::system::error_code&) { stack.push_array(n); return true; }
    bool on_key_part(boost::json::string_view s, std::size_t, boost::system::error_code&) { stack.push_chars(s); return true; }
    bool on_key(boost::json::string_view s, std::size_t, boost::system::error_code&) { stack.push_key(s); return true; }
    bool on_string_part(boost::json::string_view s, std::size_t, boost::system::error_code&) { stack.push_chars(s); return true; }
    bool on_string(boost::json::string_view s, std::size_t, boost::system::error_code&) { stack.push_string(s); return true; }
    bool on_number_part(boost::json::string_view s, boost::system::error_code&) {
        number.append(s.data(), s.size());
        return true;
    }
    bool on_int64(std::int64_t i, boost::json::string_view, boost::system::error_code&) {
        if (!number.empty()) number.clear();
        stack.push_int64(i);
        return true;
    }
    bool on_uint64(std::uint64_t u, boost::json::string_view, boost::system::error_code&) {
        if (!number.empty()) number.clear();
        stack.push_uint64(u);
        return true;
    }
    bool on_double(double d, boost::json::string_view s, boost::system::error_code&) {
        // The text comes in pieces only when the input does; one buffer gives it whole.
        std::string_view text(s.data(), s.size());
        if (!number.empty()) {
            number.append(s.data(), s.size());
            text = number;
        }
        double exact = d;
        const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), exact);
        // Out of range: keep the library's answer (an infinity or zero), as its own parser does.
        stack.push_double(error == std::errc{} && end == text.data() + text.size() ? exact : d);
        number.clear();
        return true;
    }
    bool on_bool(bool b, boost::system::error_code&) { stack.push_bool(b); return true; }
    bool on_null(boost::system::error_code&) { stack.push_null(); return true; }
    bool on_comment_part(boost::json::string_view, boost::system::error_code&) { return true; }
    bool on_comment(boost::json::string_view, boost::system::error_code&) { return true; }

    boost::json::value_stack stack;
    std::string number;
};

} // namespace

std::optional<boost::json::value> parseJson(std::string_view bytes, boost::json::storage_ptr resource) {
    boost::json::basic_parser<ExactHandler> parser(boost::json::parse_options{}, std::move(resource));
    boost::system::error_code error;
    const std::size_t used = parser.write_some(false, bytes.data(), bytes.size(), error);
    if (error || used != bytes.size() || !parser.done()) return std::nullopt;
    return parser.handler().stack.release();
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
