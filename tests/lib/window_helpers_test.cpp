#include "lib/window_helpers.hpp"

#include <gtest/gtest.h>

#include <utility>
#include <vector>

#include "lib/errors.hpp"

namespace ostrivane {
namespace {

class SelectFindInList : public ::testing::Test {
protected:
    SelectFindInList() {
        for (const char* item : {"Alpha", "Group1", "group1", "Gr\xf6up"}) list.AddItem(item);
        list.Click.Connect([this] { clicks.push_back(list.ListIndex()); });
    }
    form::ListBox list{nullptr, "lstGroups"};
    std::vector<int> clicks;
};

TEST_F(SelectFindInList, TextWithoutRegardToCaseFirstMatchWins) {
    const std::pair<const char*, int> rows[] = {
        {"GROUP1", 1}, {"group1", 1}, {"alpha", 0}, {"GR\xd6UP", 3}, {"gr\xf6up", 3},
    };
    for (const auto& [value, index] : rows) {
        clicks.clear();
        EXPECT_TRUE(lib_SelectFindInList(list, value, false)) << value;
        EXPECT_EQ(clicks, std::vector<int>{index}) << value;
    }
}

TEST_F(SelectFindInList, NoMatchLeavesTheListUntouched) {
    list.SetListIndex(2);
    clicks.clear();
    for (const char* value : {"Group", "Group1 ", "", "*"}) EXPECT_FALSE(lib_SelectFindInList(list, value, false));
    EXPECT_TRUE(clicks.empty());
    EXPECT_EQ(list.ListIndex(), 2);
}

TEST_F(SelectFindInList, AFailingClickIsSwallowedAndGivesFalse) {
    list.Click.Connect([this] { Raise(kTypeMismatch); });
    EXPECT_FALSE(lib_SelectFindInList(list, "alpha", false));
    EXPECT_EQ(list.ListIndex(), 0);  // the index was set before the click failed
}

// The form model keeps no item data: every item's is 0.
TEST_F(SelectFindInList, ByItemDataComparesWithZero) {
    EXPECT_TRUE(lib_SelectFindInList(list, " 0 ", true));
    EXPECT_EQ(clicks, std::vector<int>{0});
    EXPECT_FALSE(lib_SelectFindInList(list, "1", true));

    try {
        lib_SelectFindInList(list, "Alpha", true);
        ADD_FAILURE() << "no error";
    } catch (const RuntimeError& e) {
        EXPECT_EQ(e.number(), kTypeMismatch);
        EXPECT_EQ(e.source(), "Vexil.lib_SelectFindInList");
    }
    form::ListBox empty{nullptr, "empty"};
    EXPECT_FALSE(lib_SelectFindInList(empty, "Alpha", true));
}

}  // namespace
}  // namespace ostrivane
