// A conversation of 10,000 messages of every persisted kind, with realistic text, made the same
// way on every run.
// `conversation_load`: read the file and decode it into messages, against reading the file and
// parsing it with Boost.JSON. `conversation_persist`: encode and write it atomically through the
// "Tickets" cache, against serialising the same JSON document with Boost.JSON and writing it
// atomically. Facts: the file size and the heap that the loaded messages hold.
#include "conversation_fixture.hpp"
#include "harness.hpp"

#include "belvakit/Request/conversation/message_list.hpp"
#include "belvakit/attachments/cache.hpp"
#include "platform/files.hpp"
#include "platform/json.hpp"
#include "platform/log.hpp"

#include <boost/json.hpp>

#include <malloc.h>
#include <unistd.h>

#include <array>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <future>
#include <string>

namespace {

using namespace belvakit;

// A small fixed generator, so that the conversation is the same everywhere.
class Generator {
public:
    std::uint32_t next() {
        state_ = state_ * 6364136223846793005ULL + 1442695040888963407ULL;
        return static_cast<std::uint32_t>(state_ >> 33);
    }
    std::uint32_t below(std::uint32_t bound) { return next() % bound; }

private:
    std::uint64_t state_ = 20240611;
};

constexpr std::array<std::string_view, 48> words{
    "the",      "printer", "app",     "crashes", "when",    "I",       "open",     "settings", "please",
    "could",    "you",     "check",   "my",      "account", "order",   "number",   "arrived",  "yesterday",
    "but",      "screen",  "stays",   "blank",   "after",   "update",  "thanks",   "for",      "waiting",
    "we",       "have",    "looked",  "into",    "this",    "issue",   "and",      "a",        "fix",
    "is",       "on",      "its",     "way",     "refund",  "invoice", "password", "reset",    "login",
    "shipping", "address", "today",
};

std::string sentence(Generator& random, int minWords, int maxWords) {
    const int count = minWords + static_cast<int>(random.below(static_cast<std::uint32_t>(maxWords - minWords + 1)));
    std::string text;
    for (int i = 0; i < count; ++i) {
        if (i) text += ' ';
        text += words[random.below(words.size())];
    }
    text[0] = static_cast<char>(std::toupper(static_cast<unsigned char>(text[0])));
    text += random.below(4) == 0 ? "?" : ".";
    return text;
}

std::string uuid(Generator& random) {
    static constexpr char hex[] = "0123456789ABCDEF";
    std::string id;
    for (int i = 0; i < 32; ++i) {
        if (i == 8 || i == 12 || i == 16 || i == 20) id += '-';
        id += hex[random.below(16)];
    }
    return id;
}

DeliveryStatus sentStatus(Generator& random) {
    const auto roll = random.below(20);
    return roll == 0 ? DeliveryStatus::failed : roll == 1 ? DeliveryStatus::lastDelivered : DeliveryStatus::delivered;
}

std::vector<Message> makeConversation() {
    Generator random;
    std::vector<Message> messages;
    messages.reserve(10000);
    double time = 1700000000;
    std::string parent = "1";
    const std::array<std::string, 3> agents{"Ada Lovelace", "Grace Hopper", "Linus Pauling"};
    for (int i = 0; i < 10000; ++i) {
        time += 30 + random.below(3600);
        const auto kind = random.below(100);
        const auto agent = random.below(3);
        const std::string avatar = "https://belva.example.com/avatars/" + std::to_string(900 + agent) + ".png";
        if (kind < 45) {
            UserMessage message{uuid(random), sentStatus(random), sentence(random, 4, 40), std::nullopt, time};
            const bool endOfGroup = random.below(3) == 0;
            parent = message.id;
            messages.emplace_back(std::move(message), endOfGroup);
        } else if (kind < 80) {
            auto body = sentence(random, 8, 60);
            AgentMessage message{std::to_string(100000 + i), body, "<p>" + body + "</p>", time, 900 + agent,
                                 agents[agent], avatar};
            const bool endOfGroup = random.below(3) == 0;
            parent = message.id;
            messages.emplace_back(std::move(message), endOfGroup);
        } else if (kind < 87) {
            const auto name = "IMG_" + std::to_string(4000 + i) + ".jpeg";
            messages.emplace_back(UserImage{uuid(random), parent, name, sentStatus(random), nullptr, nullptr,
                                            FileType::jpeg, "https://belva.example.com/attachments/" + name,
                                            "https://belva.example.com/attachments/thumb_" + name,
                                            {4032, 3024}, time});
        } else if (kind < 92) {
            const auto name = "screenshot-" + std::to_string(i) + ".png";
            messages.emplace_back(AgentImage{std::to_string(200000 + i), parent, name, nullptr, nullptr,
                                             FileType::png, "https://belva.example.com/attachments/" + name,
                                             "https://belva.example.com/attachments/thumb_" + name,
                                             {1170, 2532}, time, 900 + agent, agents[agent], avatar});
        } else if (kind < 96) {
            const auto name = "invoice-" + std::to_string(i) + ".pdf";
            messages.emplace_back(UserFile{uuid(random), parent, name, sentStatus(random),
                                           static_cast<std::int64_t>(20000 + random.below(2000000)),
                                           "https://belva.example.com/attachments/" + name, FileType::pdf, time,
                                           random.below(2) == 0});
        } else {
            const auto name = "report-" + std::to_string(i) + ".xls";
            messages.emplace_back(AgentFile{std::to_string(300000 + i), parent, name,
                                            static_cast<std::int64_t>(5000 + random.below(500000)),
                                            "https://belva.example.com/attachments/" + name, FileType::xls, time,
                                            random.below(2) == 0, 900 + agent, agents[agent], std::nullopt});
        }
    }
    return messages;
}

// The cache logs every write at verbose level; the figures are not about logging.
class QuietLog final : public platform::LogSink {
public:
    void write(platform::LogLevel, std::string_view) override {}
};

struct Fixture {
    std::filesystem::path directory;
    std::shared_ptr<ConcreteCache> cache;
    std::vector<Message> messages;
    std::map<std::string, std::string> map;
    std::string bytes;
    std::filesystem::path file;

    Fixture() {
        platform::log::setSink(std::make_shared<QuietLog>());
        directory = std::filesystem::temp_directory_path() / "belva-bench-conversation";
        const corvane::StoreModule module{directory, nullptr};
        cache = ConcreteCache::make(&module, ConcreteCache::ticketsDirectory, true);
        messages = makeConversation();
        for (int i = 0; i < 200; ++i) map["LOCAL-" + std::to_string(i)] = std::to_string(500000 + i);
        persist();
        file = cache->path() / "CONVERSATION";
        bytes = *platform::readFile(file);
    }

    void persist() const {
        persistConversation(messages, std::string("CONVERSATION"), std::string("4711"), map,
                            MessageList::currentVersion, false, cache);
        std::promise<void> written;
        cache->run([&] { written.set_value(); });
        written.get_future().wait();
    }
};

const Fixture& fixture() {
    static const Fixture shared;
    return shared;
}

void loadMeasured(benchmark::State& state) {
    const auto& f = fixture();
    for (auto _ : state) {
        std::size_t count = 0;
        const auto data = platform::readFile(f.file);
        loadConversation(*data, MessageList::currentVersion, [&](auto messages, auto, auto, bool) {
            count = messages.size();
        });
        benchmark::DoNotOptimize(count);
    }
}

void loadBaseline(benchmark::State& state) {
    const auto& f = fixture();
    for (auto _ : state) {
        const auto data = platform::readFile(f.file);
        auto value = boost::json::parse(*data);
        benchmark::DoNotOptimize(value);
    }
}

void persistMeasured(benchmark::State& state) {
    const auto& f = fixture();
    for (auto _ : state) f.persist();
}

void persistBaseline(benchmark::State& state) {
    const auto& f = fixture();
    const auto document = boost::json::parse(f.bytes);
    const auto target = f.directory / "baseline.json";
    for (auto _ : state) {
        const auto text = boost::json::serialize(document);
        platform::writeFileAtomically(target, text);
        benchmark::DoNotOptimize(text.data());
    }
}

// Resident set size of the process, from /proc.
double residentKiB() {
    std::ifstream statm("/proc/self/statm");
    long pages = 0;
    long resident = 0;
    statm >> pages >> resident;
    return static_cast<double>(resident) * static_cast<double>(sysconf(_SC_PAGESIZE)) / 1024.0;
}

std::vector<bench::Fact> facts() {
    const auto& f = fixture();
    malloc_trim(0);
    const auto residentBefore = residentKiB();
    const auto before = mallinfo2().uordblks;
    std::vector<Message> held;
    loadConversation(f.bytes, MessageList::currentVersion,
                     [&](auto messages, auto, auto, bool) { held = std::move(messages); });
    const auto after = mallinfo2().uordblks;
    malloc_trim(0);
    const auto residentAfter = residentKiB();
    return {
        {"conversation file size", static_cast<double>(f.bytes.size()) / 1024.0, "KiB"},
        {"messages loaded", static_cast<double>(held.size()), "messages"},
        {"heap held by the loaded conversation", static_cast<double>(after - before) / 1024.0, "KiB"},
        {"resident memory added by the loaded conversation", residentAfter - residentBefore, "KiB"},
    };
}

} // namespace

const bench::SavedConversation& bench::savedConversation() {
    static const SavedConversation saved{fixture().cache, "CONVERSATION", fixture().file, fixture().bytes.size()};
    return saved;
}

std::size_t bench::loadSavedConversation() {
    std::size_t count = 0;
    const auto data = platform::readFile(fixture().file);
    loadConversation(*data, MessageList::currentVersion, [&](auto messages, auto, auto, bool) { count = messages.size(); });
    return count;
}

std::vector<bench::Metric> bench::conversationMetrics() {
    return {
        {"conversation_load", 1.5, loadMeasured, loadBaseline, facts},
        {"conversation_persist", 1.5, persistMeasured, persistBaseline, nullptr},
    };
}
