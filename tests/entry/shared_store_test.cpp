#include "belvakit/Request/conversation/actions.hpp"
#include "belvakit/Request/conversation/request_table_state.hpp"
#include "belvakit/Request/createrequest/create_request_actions.hpp"
#include "belvakit/Request/createrequest/create_request_state.hpp"
#include "belvakit/entry/shared_store.hpp"
#include "platform/type_name.hpp"
#include "tivra/async.hpp"
#include "tivra/middleware.hpp"

#include <gtest/gtest.h>

#include <set>
#include <string>
#include <thread>

TEST(SharedStore, MadeOnceEvenWhenManyThreadsAskFirst) {
    std::vector<tivra::Store*> seen(8);
    std::vector<std::thread> threads;
    for (std::size_t i = 0; i < seen.size(); ++i)
        threads.emplace_back([&seen, i] { seen[i] = belvakit::sharedStore().get(); });
    for (auto& thread : threads) thread.join();
    EXPECT_EQ(std::set<tivra::Store*>(seen.begin(), seen.end()).size(), 1u);
    EXPECT_EQ(seen.front(), belvakit::sharedStore().get());
}

TEST(SharedStore, RunsAsyncActionsAtTheTopOfItsChain) {
    int executed = 0;
    int stateListenerCalls = 0;
    auto store = belvakit::sharedStore();
    auto subscription = store->addListener(nullptr, [&](const tivra::State&) { ++stateListenerCalls; });
    store->dispatch(tivra::BlockAsyncAction([&](const tivra::GetState&, const tivra::DispatchFunction&) { ++executed; }));
    subscription.removeListener();
    EXPECT_EQ(executed, 1);
    EXPECT_EQ(stateListenerCalls, 0);
}

TEST(SharedStore, StartsWithEachSliceUnderItsTypeNameAndReducesIt) {
    using namespace belvakit;
    auto store = sharedStore();
    const auto* initial = store->state().value<CreateRequestState>("CreateRequestState");
    ASSERT_TRUE(initial);
    EXPECT_EQ(*initial, initialCreateRequestState());
    EXPECT_EQ(initial->primaryColor, initialCreateRequestState().primaryColor);

    CreateRequestActions::Edited edited;
    edited.hasEdits = true;
    store->dispatch(edited);
    const auto* slice = store->state().valueOfType<CreateRequestState>();
    ASSERT_NE(slice, nullptr) << "the slice must keep its type after a dispatch";
    EXPECT_TRUE(slice->hasEdits);

    Actions::NewMessage message;
    message.message = UserMessage{.id = "shared"};
    store->dispatch(message);
    const auto* table = store->state().valueOfType<RequestTableState>();
    ASSERT_NE(table, nullptr);
    ASSERT_EQ(table->tableData.size(), 1u);
    EXPECT_EQ(id(table->tableData[0]), "shared");
    store->dispatch(Actions::InitializeRequestControllerState{});
    EXPECT_TRUE(store->state().valueOfType<RequestTableState>()->tableData.empty());
}

// Holds only once every subsystem has put its reducer and middleware into the shared store.
TEST(SharedStore, HoldsEverySliceAndMeetsTheMiddlewaresInTheirOrder) {
    const auto keys = belvakit::sharedStore()->state().keys();
    EXPECT_EQ(std::set<std::string>(keys.begin(), keys.end()),
              (std::set<std::string>{"InputFieldState", "RequestTableState", "RequestListState", "RequestContainerState",
                                     "CreateRequestState"}));

    const auto chain = std::dynamic_pointer_cast<tivra::CombinedMiddleWare>(belvakit::sharedStoreMiddleware());
    ASSERT_NE(chain, nullptr);
    std::vector<std::string> order;
    for (const auto& middleware : chain->middlewares) {
        const tivra::Middleware& element = *middleware;
        order.push_back(platform::unqualifiedName(typeid(element)));
    }
    EXPECT_EQ(order, (std::vector<std::string>{"AsyncMiddleware", "RequestControllerMiddleware", "RequestContainerMiddleware",
                                               "RequestQueueMiddleWare", "CreateRequestMiddleware", "RequestListMiddleware"}));
}
