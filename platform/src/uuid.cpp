#include "platform/uuid.hpp"

#include <uuid/uuid.h>

namespace platform {

std::string uuidString() {
    uuid_t value;
    uuid_generate_random(value);
    char text[37];
    uuid_unparse_upper(value, text);
    return text;
}

} // namespace platform
