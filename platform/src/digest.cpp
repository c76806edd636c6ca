#include "platform/digest.hpp"

#include <boost/uuid/detail/sha1.hpp>

#include <cstdio>

namespace platform {

std::string sha1Hex(std::string_view bytes) {
    boost::uuids::detail::sha1 sha;
    sha.process_bytes(bytes.data(), bytes.size());
    boost::uuids::detail::sha1::digest_type digest;
    sha.get_digest(digest);
    std::string hex(40, '0');
    for (int word = 0; word < 5; ++word)
        std::snprintf(hex.data() + word * 8, 9, "%08x", digest[word]);
    return hex;
}

} // namespace platform
