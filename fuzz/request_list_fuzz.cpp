// Any bytes in the list's offline cache entry end as rows or as no list, never as a crash.
#include "belvakit/Request/requestlist/request_list_async_actions.hpp"
#include "belvakit/Request/requestlist/request_list_service.hpp"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <string_view>

namespace {

// Rows equal but for a date that is no number, which equals nothing, not even itself.
bool sameRow(belvakit::RequestListCellData left, belvakit::RequestListCellData right) {
    if (std::isnan(left.updatedAtDate) && std::isnan(right.updatedAtDate)) left.updatedAtDate = right.updatedAtDate = 0;
    return left == right;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view bytes(reinterpret_cast<const char*>(data), size);
    const auto response = belvakit::decodeRequestListOfflineCache(bytes);
    // The list reads the entry row by row; that must give the rows of the decoded entry.
    const auto streamed = belvakit::offlineCacheCells(bytes, {});
    if (streamed.has_value() != response.has_value()) __builtin_trap();
    if (!response) return 0;
    const auto rows = belvakit::requestListCells(*response, {});
    if (rows.size() != response->requests.size()) __builtin_trap();
    if (!std::equal(rows.begin(), rows.end(), streamed->begin(), streamed->end(), sameRow)) __builtin_trap();
    const auto shown = belvakit::sortedAndFilteredRequests(rows, false);
    // Newest first; a date that is not a number counts as the oldest.
    for (std::size_t i = 1; i < shown.size(); ++i)
        if (!std::isnan(shown[i].updatedAtDate) &&
            (std::isnan(shown[i - 1].updatedAtDate) || shown[i - 1].updatedAtDate < shown[i].updatedAtDate))
            __builtin_trap();
    // What was read must write back and read again whole. A date too large for a double reads
    // as infinite and has no JSON form, so only finite ones are held to that.
    const bool finite = std::all_of(response->requests.begin(), response->requests.end(), [](const auto& request) {
        return std::isfinite(request.createdAt) && std::isfinite(request.updatedAt.value_or(0)) &&
               std::isfinite(request.publicUpdatedAt.value_or(0));
    });
    if (!finite) return 0;
    const auto again = belvakit::decodeRequestListOfflineCache(belvakit::encodeRequestListOfflineCache(*response));
    if (!again || again->requests.size() != response->requests.size() ||
        again->commentingAgents.size() != response->commentingAgents.size())
        __builtin_trap();
    return 0;
}
