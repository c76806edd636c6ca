#include "platform/files.hpp"
#include "platform/regular_expression.hpp"
#include "platform/type_name.hpp"
#include "platform/uuid.hpp"
#include "test_support.hpp"

#include <gtest/gtest.h>

#include <filesystem>
#include <random>
#include <set>

using namespace platform;

namespace outer::inner {
struct RequestListState {};
template <class T>
struct Box {};
} // namespace outer::inner

TEST(TypeName, UnqualifiedNameDropsNamespacesButKeepsTemplateArguments) {
    EXPECT_EQ(unqualifiedName(typeid(outer::inner::RequestListState)), "RequestListState");
    EXPECT_EQ(unqualifiedName(typeid(outer::inner::Box<int>)), "Box<int>");
    EXPECT_EQ(unqualifiedName(typeid(outer::inner::Box<outer::inner::RequestListState>)),
              "Box<outer::inner::RequestListState>");
}

TEST(Uuid, UpperCaseTextFormAndFreshEachTime) {
    const auto wellFormed = RegularExpression::compile("[0-9A-F]{8}-[0-9A-F]{4}-4[0-9A-F]{3}-[89AB][0-9A-F]{3}-[0-9A-F]{12}");
    ASSERT_TRUE(wellFormed);
    std::set<std::string> seen;
    for (int i = 0; i < 100; ++i) {
        const std::string id = uuidString();
        EXPECT_TRUE(wellFormed->matchesWhole(id)) << id;
        seen.insert(id);
    }
    EXPECT_EQ(seen.size(), 100u);

    // Seeded, a thread repeats its ids: a replayed run names its messages as before.
    seedUuids(7);
    const std::vector<std::string> first{uuidString(), uuidString()};
    seedUuids(7);
    EXPECT_EQ((std::vector<std::string>{uuidString(), uuidString()}), first);
    EXPECT_NE(first[0], first[1]);
    EXPECT_TRUE(wellFormed->matchesWhole(first[0])) << first[0];
    seedUuids(std::random_device{}());
}

TEST(Files, AtomicWriteReplacesWholeFileLeavesNoTemporariesAndFailsWithoutThrowing) {
    testing_support::TemporaryDirectory dir;
    const auto path = std::filesystem::path(dir.path()) / "nested" / "file.json";
    ASSERT_TRUE(writeFileAtomically(path, "first"));
    ASSERT_TRUE(writeFileAtomically(path, "second, longer"));
    EXPECT_EQ(readFile(path), "second, longer");
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(path.parent_path()), {}), 1);
    EXPECT_EQ(readFile(std::filesystem::path(dir.path()) / "missing"), std::nullopt);

    // A file where a directory should be: the write fails without throwing.
    const auto blocker = std::filesystem::path(dir.path()) / "blocker";
    ASSERT_TRUE(writeFileAtomically(blocker, "a file where a directory should be"));
    EXPECT_FALSE(writeFileAtomically(blocker / "child.json", "x"));
}
