#pragma once

#include <string>

namespace platform {

// Upper-case text form of a fresh random UUID, e.g. "E621E1F8-C36C-495A-93FC-0C247A3E6E5F".
std::string uuidString();

} // namespace platform
