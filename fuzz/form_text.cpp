// Arbitrary bytes through the checks that the new-request form runs on typed text.
#include "belvakit/Request/createrequest/form_validator.hpp"
#include "platform/trimming.hpp"
#include "platform/url.hpp"

#include <cstdint>
#include <cstdlib>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const std::string text(reinterpret_cast<const char*>(data), size);

    const std::string trimmed = platform::trimmingWhitespaceAndNewlines(text);
    if (trimmed.size() > text.size() || text.find(trimmed) == std::string::npos) std::abort();
    if (platform::trimmingWhitespaceAndNewlines(trimmed) != trimmed) std::abort();

    belvakit::FormValidator validator;
    const bool valid = validator.isValid(text);
    if (valid == validator.inlineValidationEnabeled) std::abort();  // on exactly after a failure

    if (const auto url = platform::URL::parse(text)) {
        if (url->absoluteString() != text) std::abort();
        (void)url->scheme();
    }
    return 0;
}
