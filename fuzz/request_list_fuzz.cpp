// Any bytes in the list's offline cache entry end as rows or as no list, never as a crash.
#include "belvakit/Request/requestlist/request_list_async_actions.hpp"
#include "belvakit/Request/requestlist/request_list_service.hpp"

#include <cstddef>
#include <cstdint>
#include <string_view>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view bytes(reinterpret_cast<const char*>(data), size);
    const auto response = belvakit::decodeRequestListOfflineCache(bytes);
    if (!response) return 0;
    const auto rows = belvakit::requestListCells(*response, {});
    if (rows.size() != response->requests.size()) __builtin_trap();
    const auto shown = belvakit::sortedAndFilteredRequests(rows, false);
    for (std::size_t i = 1; i < shown.size(); ++i)
        if (shown[i - 1].updatedAtDate < shown[i].updatedAtDate) __builtin_trap();
    // What was read must write back and read again whole.
    const auto again = belvakit::decodeRequestListOfflineCache(belvakit::encodeRequestListOfflineCache(*response));
    if (!again || again->requests.size() != response->requests.size() ||
        again->commentingAgents.size() != response->commentingAgents.size())
        __builtin_trap();
    return 0;
}
