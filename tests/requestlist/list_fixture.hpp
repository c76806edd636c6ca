#pragma once

#include "../queue/host_fixture.hpp"
#include "belvakit/Request/requestlist/request_list_actions.hpp"
#include "belvakit/Request/requestlist/request_list_state.hpp"
#include "belvakit/entry/shared_store.hpp"
#include "test_support.hpp"

#include <gtest/gtest.h>

#include <functional>
#include <string>

namespace list_testing {

// The host on the embedded help desk, on a fixed clock and virtual time, with the shared store's
// list emptied before and after each test.
class ListTest : public testing::Test {
protected:
    void SetUp() override { belvakit::sharedStore()->dispatch(belvakit::Actions::ClearRequestList{}); }
    void TearDown() override { belvakit::sharedStore()->dispatch(belvakit::Actions::ClearRequestList{}); }

    bool settled(const std::function<bool()>& done) { return queue_testing::settle(time_, done); }

    // A ticket made on the desk a minute after the one before; gives its id.
    std::string createTicket(const std::string& description) {
        bool answered = false;
        host_.tickets().createRequest({.requestDescription = description}, [&](auto, auto) { answered = true; });
        EXPECT_TRUE(settled([&] { return answered; }));
        clock_.clock->advance(60);
        return host_.tickets().requests().back().requestId;
    }

    static const belvakit::RequestListState& slice() {
        return *belvakit::sharedStore()->state().valueOfType<belvakit::RequestListState>();
    }

    testing_support::VirtualTime time_;
    queue_testing::FixedClock clock_;
    testing_support::TemporaryDirectory directory_;
    queue_testing::Host host_{directory_.path()};
};

} // namespace list_testing
