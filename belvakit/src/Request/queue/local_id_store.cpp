#include "belvakit/Request/queue/local_id_store.hpp"

#include "belvakit/Request/conversation/message_list.hpp"
#include "belvakit/attachments/cache.hpp"
#include "corvane/core_logger.hpp"

#include <boost/json.hpp>

#include <algorithm>

namespace belvakit {

namespace {

std::optional<std::vector<std::string>> stringList(const boost::json::value* json) {
    if (!json || !json->is_array()) return std::nullopt;
    std::vector<std::string> list;
    for (const auto& element : json->get_array()) {
        if (!element.is_string()) return std::nullopt;
        list.emplace_back(element.get_string());
    }
    return list;
}

std::optional<std::map<std::string, std::string>> stringMap(const boost::json::value* json) {
    if (!json || !json->is_object()) return std::nullopt;
    std::map<std::string, std::string> map;
    for (const auto& [key, value] : json->get_object()) {
        if (!value.is_string()) return std::nullopt;
        map.emplace(key, value.get_string());
    }
    return map;
}

boost::json::array toJson(const std::vector<std::string>& list) { return boost::json::array(list.begin(), list.end()); }

// A request standing for a conversation that only the device knows; nothing when its first
// message carries no text.
std::optional<dastrel::CRVRequest> requestFrom(const std::vector<Message>& messages) {
    if (messages.empty()) return std::nullopt;
    const std::string* description = bodyOf(messages.front());
    if (!description) return std::nullopt;
    dastrel::CRVRequest request;
    request.requestId = id(messages.back());
    request.requestDescription = *description;
    request.createdAt = createdAt(messages.front());
    return request;
}

// Walks the ids one at a time, since the cache answers asynchronously.
void fetchNext(std::shared_ptr<Cache> cache, std::vector<std::string> remaining, std::size_t next,
               std::vector<dastrel::CRVRequest> gathered,
               std::function<void(std::vector<dastrel::CRVRequest>)> completion) {
    if (next >= remaining.size()) return completion(std::move(gathered));
    const auto key = remaining[next];
    cache->fetch(key, [cache, remaining = std::move(remaining), next, gathered = std::move(gathered),
                       completion = std::move(completion)](std::optional<std::string> bytes) mutable {
        loadConversation(bytes ? std::string_view(*bytes) : std::string_view(), MessageList::currentVersion,
                         [&](std::vector<Message> messages, auto&&...) {
                             if (auto request = requestFrom(messages)) gathered.push_back(std::move(*request));
                         });
        fetchNext(std::move(cache), std::move(remaining), next + 1, std::move(gathered), std::move(completion));
    });
}

} // namespace

LocalIDStore::LocalIDStore(std::shared_ptr<UserDefaultsStore> backing) : store(std::move(backing)) { load(); }

void LocalIDStore::load() {
    const auto stored = store ? store->value(storeKey) : std::nullopt;
    const auto* object = stored ? stored->if_object() : nullptr;
    auto list = object ? stringList(object->if_contains(localListKey)) : std::nullopt;
    auto map = object ? stringMap(object->if_contains(remoteMapKey)) : std::nullopt;
    if (!list || !map) {
        corvane::CoreLogger::debug("RequestIdMapper could not be initalized. Failed to load remote IDs");
        return;
    }
    localIdList = std::move(*list);
    remoteToLocal = std::move(*map);
}

bool LocalIDStore::addLocalId(const std::string& id) {
    const bool known = std::find(localIdList.begin(), localIdList.end(), id) != localIdList.end();
    if (!known) localIdList.push_back(id);
    save();
    return !known;
}

bool LocalIDStore::removeLocalId(const std::string& id) {
    const auto removed = std::erase(localIdList, id);
    if (removed == 0) return false;
    save();
    return true;
}

void LocalIDStore::reload() {
    remoteToLocal.clear();
    localIdList.clear();
    load();
}

void LocalIDStore::save() {
    if (!store) return;
    boost::json::object map;
    for (const auto& [remote, local] : remoteToLocal) map[remote] = local;
    store->set(boost::json::object{{localListKey, toJson(localIdList)}, {remoteMapKey, std::move(map)}}, storeKey);
}

void LocalIDStore::fetchLocalRequests(std::shared_ptr<Cache> cache,
                                      std::function<void(std::vector<dastrel::CRVRequest>)> completion) const {
    if (!cache) return completion({});
    fetchNext(std::move(cache), localIdList, 0, {}, std::move(completion));
}

std::vector<std::string> RequestsWithFailedMessagesIdStore::ids() const {
    const auto stored = store ? store->value(storageKey) : std::nullopt;
    return stored ? stringList(&*stored).value_or(std::vector<std::string>{}) : std::vector<std::string>{};
}

bool RequestsWithFailedMessagesIdStore::add(const std::string& id) const {
    auto list = ids();
    if (std::find(list.begin(), list.end(), id) != list.end()) return false;
    list.push_back(id);
    if (store) store->set(toJson(list), storageKey);
    return true;
}

void RequestsWithFailedMessagesIdStore::remove(const std::string& id) const {
    auto list = ids();
    std::erase(list, id);
    if (store) store->set(toJson(list), storageKey);
}

} // namespace belvakit
