#pragma once

#include "belvakit/Request/queue/user_defaults_store.hpp"
#include "dastrel/request.hpp"

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace belvakit {

class Cache;

// Conversations that exist only on the device, and the remote ticket each one got later.
class LocalIDStore {
public:
    const std::string storeKey = "LocalIDStore";
    const std::string localListKey = "localIds";
    const std::string remoteMapKey = "remoteMapKey";

    // Loads what `backing` holds; a null store behaves as an empty one and keeps nothing.
    explicit LocalIDStore(std::shared_ptr<UserDefaultsStore> backing = sessionUserDefaultsStore());

    // False when the id was known; saves either way.
    bool addLocalId(const std::string& id);
    // False, and no save, when the id wasn't known.
    bool removeLocalId(const std::string& id);
    void save();
    // Reads the backing store again, for what other holders saved since: each change is made to
    // what is stored now, so no holder's save drops another's.
    void reload();

    // A request made from each local conversation in `cache`, in list order.
    void fetchLocalRequests(std::shared_ptr<Cache> cache,
                            std::function<void(std::vector<dastrel::CRVRequest>)> completion) const;

    std::shared_ptr<UserDefaultsStore> store;
    std::map<std::string, std::string> remoteToLocal;
    std::vector<std::string> localIdList;

private:
    void load();
};

// Remote tickets that still hold failed messages, so the list can mark them.
struct RequestsWithFailedMessagesIdStore {
    static constexpr const char* storageKey = "RequestsWithFailedMessagesIdStore";

    std::shared_ptr<UserDefaultsStore> store = sessionUserDefaultsStore();

    // Empty when absent or of the wrong type.
    std::vector<std::string> ids() const;
    // False, and no write, when the id was there.
    bool add(const std::string& id) const;
    void remove(const std::string& id) const;
};

} // namespace belvakit
