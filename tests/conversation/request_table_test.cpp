#include "belvakit/Request/conversation/diff_handler.hpp"
#include "belvakit/Request/conversation/message_cells.hpp"
#include "belvakit/Request/conversation/request_table.hpp"
#include "corvane/corvane.hpp"
#include "platform/url_opener.hpp"
#include "test_support.hpp"
#include "uikit/probe.hpp"
#include "uikit/window.hpp"

#include <gtest/gtest.h>

#include <random>
#include <sstream>

using namespace belvakit;
namespace D = belvakit::DiffHandler;

namespace {

UserMessage userText(std::string id, DeliveryStatus status = DeliveryStatus::delivered, std::string body = "hello") {
    return UserMessage{std::move(id), status, std::move(body), std::nullopt, 1700000000};
}

AgentMessage agentText(std::string id, std::string body = "agent", std::optional<std::string> html = std::nullopt) {
    return AgentMessage{std::move(id), std::move(body), std::move(html), 1700000000, 7, "Ada", std::nullopt};
}

UserImage userImage(std::string id, platform::ImagePtr image = nullptr) {
    UserImage row;
    row.id = std::move(id);
    row.parentId = "p";
    row.filename = "pic.png";
    row.status = DeliveryStatus::delivered;
    row.image = image;
    row.fileType = FileType::png;
    row.imageSize = {400, 300};
    return row;
}

std::vector<CellItem> rows(std::initializer_list<Message> messages) {
    std::vector<CellItem> out;
    for (const auto& message : messages) out.emplace_back(message);
    return out;
}

std::string describe(const std::vector<CellItem>& items) {
    std::ostringstream out;
    for (const auto& item : items) {
        out << id(item);
        if (const auto* message = std::get_if<Message>(&item)) {
            if (const auto delivery = status(*message)) out << "/s" << static_cast<int>(*delivery);
            if (isEndOfGroup(*message)) out << "/e";
        }
        out << ' ';
    }
    return out.str();
}

// Random rows and random edits of them, from a seed.
class RowGenerator {
public:
    explicit RowGenerator(unsigned seed) : random_(seed) {}

    int below(int bound) { return std::uniform_int_distribution<int>(0, bound - 1)(random_); }

    CellItem fresh(const std::vector<CellItem>& existing) {
        std::string rowId = "r" + std::to_string(next_++);
        // Now and then an id that is already there, as bad input can hold.
        if (!existing.empty() && below(20) == 0) rowId = id(existing[static_cast<std::size_t>(below(static_cast<int>(existing.size())))]);
        switch (below(6)) {
        case 0: return DateItem{rowId, 1700000000.0 + below(5) * 86400};
        case 1: return SystemMessage{rowId, "notice " + std::to_string(below(3))};
        case 2: return Message(agentText(rowId, "agent " + std::to_string(below(3))));
        case 3: return Message(userImage(rowId, below(2) ? image_ : nullptr));
        default: {
            auto text = userText(rowId, static_cast<DeliveryStatus>(below(4)), "body " + std::to_string(below(3)));
            return Message(std::move(text), below(2) == 0);
        }
        }
    }

    // The same id with other content, or now and then another kind of row.
    CellItem changed(const CellItem& item) {
        const std::string rowId = id(item);
        if (below(5) == 0) return SystemMessage{rowId, "replaced"};
        if (const auto* message = std::get_if<Message>(&item)) {
            Message copy = *message;
            switch (below(3)) {
            case 0: setIsEndOfGroup(copy, !isEndOfGroup(copy)); break;
            case 1:
                if (!setStatus(copy, status(copy) == DeliveryStatus::failed ? DeliveryStatus::delivered : DeliveryStatus::failed))
                    setIsEndOfGroup(copy, !isEndOfGroup(copy));
                break;
            default:
                copy.update([&](auto& record) {
                    using Record = std::decay_t<decltype(record)>;
                    if constexpr (TextMessage<Record>) record.body += "!";
                    if constexpr (std::is_same_v<Record, UserImage>) record.image = record.image ? nullptr : image_;
                });
                break;
            }
            return copy;
        }
        if (const auto* date = std::get_if<DateItem>(&item)) return DateItem{rowId, date->date + 86400};
        return SystemMessage{rowId, std::get<SystemMessage>(item).message + "+"};
    }

    std::vector<CellItem> list(int maxLength) {
        std::vector<CellItem> out;
        const int length = below(maxLength + 1);
        for (int i = 0; i < length; ++i) out.push_back(fresh(out));
        return out;
    }

    std::vector<CellItem> edited(std::vector<CellItem> items) {
        const int edits = below(9);
        for (int edit = 0; edit < edits; ++edit) {
            const int size = static_cast<int>(items.size());
            switch (below(5)) {
            case 0:
                if (size > 0) items.erase(items.begin() + below(size));
                break;
            case 1: items.insert(items.begin() + below(size + 1), fresh(items)); break;
            case 2:
                if (size > 0) {
                    const int at = below(size);
                    items[static_cast<std::size_t>(at)] = changed(items[static_cast<std::size_t>(at)]);
                }
                break;
            case 3:
                if (size > 1) {
                    const int from = below(size);
                    auto row = items[static_cast<std::size_t>(from)];
                    items.erase(items.begin() + from);
                    items.insert(items.begin() + below(size), std::move(row));
                }
                break;
            default:
                if (size > 0) items.push_back(fresh(items));  // the common case: something arrives at the end
                break;
            }
        }
        return items;
    }

private:
    std::mt19937 random_;
    int next_ = 0;
    platform::ImagePtr image_ = platform::makeImage(4, 3);
};

bool sameRows(const std::vector<CellItem>& left, const std::vector<CellItem>& right) {
    if (left.size() != right.size()) return false;
    for (std::size_t i = 0; i < left.size(); ++i)
        if (!D::sameRow(left[i], right[i])) return false;
    return true;
}

// Every changed row that stays in order is reloaded, every other row that stays is left alone or
// moved: nothing is deleted and inserted again unless it both moved and changed.
void expectSmallest(const D::Diff& diff) {
    const std::size_t deletedAgain = diff.updates.deleted.size() - diff.lists.removed.size();
    const std::size_t insertedAgain = diff.updates.inserted.size() - diff.lists.inserted.size();
    EXPECT_EQ(deletedAgain, insertedAgain);
    EXPECT_EQ(diff.updates.reloaded.size() + deletedAgain, diff.lists.changed.size());
    EXPECT_LE(diff.updates.moved.size() + deletedAgain, diff.lists.moved.size());
}

TEST(DiffHandlerTest, AppliedUpdatesTurnTheOldRowsIntoTheNew) {
    for (unsigned seed : {1u, 2u, 3u}) {
        RowGenerator generate(seed);
        for (int round = 0; round < 2000; ++round) {
            const auto oldRows = generate.list(round % 10 == 0 ? 60 : 15);
            const auto newRows = generate.edited(oldRows);
            const auto diff = D::diff(oldRows, newRows);
            const auto result = D::applied(oldRows, diff.updates, newRows);
            ASSERT_TRUE(result && sameRows(*result, newRows))
                << "seed " << seed << " round " << round << "\n old: " << describe(oldRows)
                << "\n new: " << describe(newRows) << "\n got: " << (result ? describe(*result) : "(invalid update)");
            expectSmallest(diff);
            if (HasFailure()) FAIL() << "seed " << seed << " round " << round;
        }
    }
}

TEST(DiffHandlerTest, ClassifiesTheCasesThatMatterToTheScreen) {
    const auto base = rows({userText("a"), agentText("b"), userText("c")});

    EXPECT_EQ(D::action(D::diff(base, base), base).kind, D::Kind::doNothing);

    auto appended = base;
    appended.emplace_back(Message(agentText("d")));
    const auto append = D::diff(base, appended);
    EXPECT_EQ(D::classify(append.lists), D::Kind::reloadTableAndScrollToLast);
    EXPECT_EQ(append.updates.inserted, std::vector<int>{3});
    EXPECT_TRUE(append.updates.deleted.empty() && append.updates.moved.empty());

    auto failed = base;
    failed[2] = Message(userText("c", DeliveryStatus::failed));
    const auto change = D::action(D::diff(base, failed), failed);
    ASSERT_EQ(change.kind, D::Kind::changeCells);
    ASSERT_EQ(change.changeCells.size(), 1u);
    EXPECT_EQ(change.changeCells[0].first, 2);

    auto swapped = base;
    std::swap(swapped[0], swapped[2]);
    const auto swap = D::action(D::diff(base, swapped), swapped);
    ASSERT_EQ(swap.kind, D::Kind::movedCells);
    EXPECT_EQ(swap.movedCells, (std::vector<std::pair<int, int>>{{0, 2}}));

    auto shorter = base;
    shorter.pop_back();
    const auto removal = D::action(D::diff(base, shorter), shorter);
    EXPECT_EQ(removal.kind, D::Kind::removeCells);
    EXPECT_EQ(removal.rows, std::vector<int>{2});

    // A row arriving in the middle shifts the rest: the table treats it as displaced.
    auto middle = base;
    middle.insert(middle.begin() + 1, Message(agentText("x")));
    EXPECT_EQ(D::classify(D::diff(base, middle).lists), D::Kind::reloadTableAndScrollToLast);
}

// A conversation table in a window, 320 wide and 400 high.
class RequestTableTest : public ::testing::Test {
protected:
    void SetUp() override {
        window->makeKeyAndVisible();
        container->setFrame({0, 0, 320, 400});
        tableView->setFrame({0, 0, 320, 400});
        container->addSubview(tableView);
        window->addSubview(container);
        table->didTapOnErrorButton = [this](const Message& message) { errorTaps.push_back(id(message)); };
        table->openHCArticleID = [this](std::shared_ptr<corvane::ActionHandler>, const platform::URL& url) {
            articleLinks.push_back(url.absoluteString());
        };
    }

    void show(std::vector<CellItem> items) {
        RequestTableState state;
        state.cellItems = std::move(items);
        for (const auto& item : state.cellItems)
            if (const auto* message = std::get_if<Message>(&item)) state.tableData.push_back(*message);
        table->update(std::move(state));
        tableView->layoutIfNeeded();
    }

    std::vector<CellItem> many(int count) {
        std::vector<CellItem> items;
        for (int i = 0; i < count; ++i) items.emplace_back(Message(userText("m" + std::to_string(i))));
        return items;
    }

    // The rows whose cells are on show, by the ids of what they show.
    std::map<int, std::string> shownIds() {
        std::map<int, std::string> out;
        for (const auto& path : tableView->indexPathsForVisibleRows()) {
            auto cell = tableView->cellForRow(path);
            if (auto* message = dynamic_cast<MessageCell*>(cell.get()); message && message->message())
                out[path.row] = id(*message->message());
            else if (auto* system = dynamic_cast<SystemMessageCell*>(cell.get()); system && system->item)
                out[path.row] = id(*system->item);
        }
        return out;
    }

    bool lastBatchFailed() const {
        for (const auto& update : tableView->appliedUpdates())
            if (!update.failure.empty()) return true;
        return false;
    }

    testing_support::VirtualTime time;
    std::shared_ptr<uikit::Window> window = std::make_shared<uikit::Window>();
    std::shared_ptr<uikit::View> container = uikit::make<uikit::View>();
    std::shared_ptr<uikit::TableView> tableView = uikit::make<uikit::TableView>();
    std::shared_ptr<RequestTable> table = RequestTable::make(tableView, nullptr);
    std::vector<std::string> errorTaps;
    std::vector<std::string> articleLinks;
};

TEST_F(RequestTableTest, EveryUpdateIsOneValidBatchThatLeavesEachCellShowingItsNewRow) {
    RowGenerator generate(7);
    for (int round = 0; round < 300; ++round) {
        auto oldRows = generate.list(60);
        show(oldRows);
        tableView->setContentOffset({0, static_cast<double>(generate.below(2000))});
        tableView->layoutIfNeeded();
        tableView->clearAppliedUpdates();
        const auto newRows = generate.edited(oldRows);
        table->update(RequestTableState{.cellItems = newRows});
        tableView->layoutIfNeeded();
        ASSERT_FALSE(lastBatchFailed()) << "round " << round << "\n old: " << describe(oldRows) << "\n new: " << describe(newRows);
        ASSERT_EQ(tableView->numberOfRowsInSection(0), static_cast<int>(newRows.size())) << "round " << round;
        for (const auto& [row, shown] : shownIds())
            ASSERT_EQ(shown, id(newRows[static_cast<std::size_t>(row)]))
                << "round " << round << " row " << row << "\n old: " << describe(oldRows) << "\n new: " << describe(newRows);
        // The cells on show display the new content, not what they showed before.
        for (const auto& path : tableView->indexPathsForVisibleRows()) {
            auto* cell = dynamic_cast<MessageCell*>(tableView->cellForRow(path).get());
            const auto* expected = std::get_if<Message>(&newRows[static_cast<std::size_t>(path.row)]);
            if (cell && expected) {
                ASSERT_TRUE(cell->message() && D::sameRow(*cell->message(), *expected)) << "round " << round << " row " << path.row;
            }
        }
    }
}

TEST_F(RequestTableTest, RowsFollowTheirEventTypeAndCarryTheirRowInTheirIdentifier) {
    show({Message(userText("a")), Message(agentText("b")), Message(userImage("c")), DateItem{"d", 1700000000},
          SystemMessage{"s", "We answer within a day"}});
    const std::vector<std::string> expected{"userMessage", "agentMessage", "userImage", "date", "systemMessage"};
    for (int row = 0; row < 5; ++row) {
        auto cell = tableView->cellForRow({0, row});
        ASSERT_TRUE(cell) << row;
        EXPECT_EQ(cell->reuseIdentifier(), expected[static_cast<std::size_t>(row)]);
        EXPECT_EQ(cell->accessibilityIdentifier(), "CRVCellID" + std::to_string(row));
    }
    auto* notice = dynamic_cast<SystemMessageCell*>(tableView->cellForRow({0, 4}).get());
    ASSERT_TRUE(notice);
    EXPECT_EQ(notice->label->text(), "We answer within a day");
    auto* image = dynamic_cast<ImageCell*>(tableView->cellForRow({0, 2}).get());
    ASSERT_TRUE(image && image->width);
    EXPECT_EQ(*image->width, 320);  // the parent's width in portrait
}

// A cell takes its width once, so the table starts out sideways here.
TEST_F(RequestTableTest, ImageCellsMeasureTheShortSideInLandscape) {
    window->setEnvironment(uikit::Environment::phoneLandscape());
    container->setFrame({0, 0, 667, 375});
    tableView->setFrame({0, 0, 667, 375});
    show({Message(userImage("c"))});
    auto* image = dynamic_cast<ImageCell*>(tableView->cellForRow({0, 0}).get());
    ASSERT_TRUE(image && image->width);
    EXPECT_EQ(*image->width, 375);
}

TEST_F(RequestTableTest, AStatusChangeReloadsOnlyItsRowAndAFailedRowOffersRetry) {
    auto items = many(30);
    show(items);  // scrolled to the end: rows 0.. are out of view
    tableView->clearAppliedUpdates();

    items[1] = Message(userText("m1", DeliveryStatus::failed));
    table->update(RequestTableState{.cellItems = items});
    ASSERT_EQ(table->lastAction()->kind, D::Kind::changeCells);
    for (const auto& update : tableView->appliedUpdates()) EXPECT_NE(update.kind, uikit::TableUpdate::Kind::reloadRows);

    items[29] = Message(userText("m29", DeliveryStatus::failed));
    tableView->clearAppliedUpdates();
    table->update(RequestTableState{.cellItems = items});
    ASSERT_EQ(tableView->appliedUpdates().size(), 1u);
    EXPECT_EQ(tableView->appliedUpdates()[0].kind, uikit::TableUpdate::Kind::reloadRows);
    EXPECT_EQ(tableView->appliedUpdates()[0].indexPaths, (std::vector<uikit::IndexPath>{{0, 29}}));
    EXPECT_EQ(tableView->appliedUpdates()[0].animation, uikit::TableViewRowAnimation::none);

    auto cell = tableView->cellForRow({0, 29});
    ASSERT_TRUE(cell);
    auto* error = uikit::findByIdentifier(*cell, "CRVerrorStatusView");
    ASSERT_TRUE(error && uikit::isShown(*error));
    auto* retry = uikit::findByIdentifier(*cell, "CRVretryButton");
    ASSERT_TRUE(retry && uikit::isShown(*retry));
    EXPECT_TRUE(uikit::tap(*retry));
    EXPECT_EQ(errorTaps, std::vector<std::string>{"m29"});

    // The out-of-view row shows its new status once it scrolls in.
    tableView->scrollToRow({0, 1}, uikit::TableViewScrollPosition::top, false);
    EXPECT_TRUE(uikit::findByIdentifier(*tableView->cellForRow({0, 1}), "CRVerrorStatusView"));
}

TEST_F(RequestTableTest, AnImageOnShowTakesItsPictureWithoutAReload) {
    show({Message(userText("a")), Message(userImage("img"))});
    auto before = tableView->cellForRow({0, 1});
    tableView->clearAppliedUpdates();
    auto picture = platform::makeImage(40, 30);
    table->update(RequestTableState{.cellItems = {Message(userText("a")), Message(userImage("img", picture))}});
    for (const auto& update : tableView->appliedUpdates()) EXPECT_NE(update.kind, uikit::TableUpdate::Kind::reloadRows);
    auto after = tableView->cellForRow({0, 1});
    ASSERT_EQ(before, after);
    EXPECT_EQ(dynamic_cast<ImageCell&>(*after).attachmentImageView->image(), picture);
}

TEST_F(RequestTableTest, ArrivingRowsLeaveTheReadingPositionAlone) {
    auto items = many(40);
    show(items);
    tableView->setContentOffset({0, 300});
    tableView->layoutIfNeeded();
    const auto topRow = tableView->indexPathForRow({0, 300});
    ASSERT_TRUE(topRow);
    const double into = 300 - tableView->rectForRow(*topRow).minY();

    // An agent's answer at the end, while the user reads the middle.
    items.emplace_back(Message(agentText("answer")));
    tableView->clearAppliedUpdates();
    table->update(RequestTableState{.cellItems = items});
    ASSERT_EQ(tableView->appliedUpdates().size(), 1u);
    EXPECT_EQ(tableView->appliedUpdates()[0].kind, uikit::TableUpdate::Kind::insertRows);
    EXPECT_EQ(tableView->contentOffset().y, 300);

    // Older comments merged in above: the row on top stays where it was on the screen.
    items.insert(items.begin(), {Message(agentText("older1")), Message(agentText("older2"))});
    table->update(RequestTableState{.cellItems = items});
    tableView->layoutIfNeeded();
    const auto rect = tableView->rectForRow({0, topRow->row + 2});
    EXPECT_DOUBLE_EQ(tableView->contentOffset().y - rect.minY(), into);
    EXPECT_EQ(shownIds().begin()->second, "m" + std::to_string(topRow->row));
}

TEST_F(RequestTableTest, AtTheBottomNewRowsComeIntoView) {
    auto items = many(40);
    show(items);
    ASSERT_TRUE(shownIds().contains(39));  // opened at the end
    items.emplace_back(Message(agentText("answer")));
    table->update(RequestTableState{.cellItems = items});
    tableView->layoutIfNeeded();
    EXPECT_EQ(shownIds().rbegin()->second, "answer");

    // Older comments merged in above keep a reader at the end there.
    items.insert(items.begin(), Message(agentText("older")));
    table->update(RequestTableState{.cellItems = items});
    tableView->layoutIfNeeded();
    EXPECT_EQ(shownIds().rbegin()->second, "answer");

    // The user's own message scrolls into view from anywhere.
    tableView->setContentOffset({0, 0});
    items.emplace_back(Message(userText("mine", DeliveryStatus::notDelivered)));
    table->update(RequestTableState{.cellItems = items});
    tableView->layoutIfNeeded();
    EXPECT_EQ(shownIds().rbegin()->second, "mine");
}

TEST_F(RequestTableTest, AResetOfAnEmptyTableScrollsNowhere) {
    testing_support::CapturedLog log;
    table->update(RequestTableState{.lastActionType = ActionTypes::reset});
    EXPECT_EQ(tableView->numberOfRowsInSection(0), 0);
    EXPECT_EQ(tableView->contentOffset().y, 0);
    EXPECT_TRUE(log.contains(platform::LogLevel::debug, "Restting table and scroll to last"));
}

TEST_F(RequestTableTest, LinksGoToTheirHandlerOrToThePlatform) {
    testing_support::TemporaryDirectory directory;
    corvane::Corvane::initialize({{"https://belva.example.com", "app", "client"}, corvane::StoreModule{directory.path(), nullptr}});
    class ArticleLinks final : public corvane::ActionHandler {
    public:
        bool canHandle(const std::string& name) const override { return name.starts_with("https://belva.example.com/hc/"); }
        void handle(const std::map<std::string, std::any>&) override {}
        int priority() const override { return 10; }
        bool isEqual(const corvane::ActionHandler& other) const override { return dynamic_cast<const ArticleLinks*>(&other); }
    };
    corvane::Corvane::instance()->actionHandlerRegistry().add(std::make_shared<ArticleLinks>());
    auto opener = std::make_shared<platform::HeadlessURLOpener>();
    const auto previous = platform::URLOpener::setShared(opener);

    show({Message(agentText("a", "see", "<p>See <a href=\"https://belva.example.com/hc/en-us/articles/12-x\">this</a></p>")),
          Message(agentText("b", "elsewhere", "<p>Or <a href=\"https://example.org/page\">there</a></p>"))});
    auto* article = uikit::findByIdentifier(*tableView->cellForRow({0, 0}), "CRVmessageText");
    auto* elsewhere = uikit::findByIdentifier(*tableView->cellForRow({0, 1}), "CRVmessageText");
    ASSERT_TRUE(article && elsewhere);
    EXPECT_TRUE(uikit::tap(*article));
    EXPECT_TRUE(uikit::tap(*elsewhere));
    EXPECT_EQ(articleLinks, std::vector<std::string>{"https://belva.example.com/hc/en-us/articles/12-x"});
    ASSERT_EQ(opener->openedURLs().size(), 1u);
    EXPECT_EQ(opener->openedURLs()[0].absoluteString(), "https://example.org/page");

    platform::URLOpener::setShared(previous);
    corvane::Corvane::reset();
}

} // namespace
