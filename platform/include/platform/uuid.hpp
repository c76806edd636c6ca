#pragma once

#include <cstdint>
#include <string>

namespace platform {

// Upper-case text form of a fresh random UUID, e.g. "E621E1F8-C36C-495A-93FC-0C247A3E6E5F".
std::string uuidString();

// From now on the ids made on the calling thread follow from `seed`, so that a run that is replayed
// makes the same ids; for tests and tools that replay runs.
void seedUuids(std::uint64_t seed);

} // namespace platform
