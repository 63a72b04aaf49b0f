#include "lib/window_helpers.hpp"

#include "lib/errors.hpp"
#include "lib/numbers.hpp"
#include "lib/text.hpp"

namespace ostrivane {

namespace {

constexpr char kSelectFindInListSource[] = "Vexil.lib_SelectFindInList";
// What an item's data holds when nobody set it.
constexpr double kUnsetItemData = 0.0;

int FindItem(const form::ListBox& list, std::string_view value, bool byItemData) {
    for (int i = 0; i < list.ListCount(); ++i) {
        // A value that is no number cannot be compared with item data.
        const bool match = byItemData ? TextToNumber(value) == kUnsetItemData : EqualsNoCase(list.List(i), value);
        if (match) return i;
    }
    return -1;
}

}  // namespace

bool lib_SelectFindInList(form::ListBox& list, std::string_view value, bool byItemData) {
    int index = -1;
    try {
        index = FindItem(list, value, byItemData);
    } catch (const RuntimeError& e) {
        Raise(e.number(), kSelectFindInListSource, e.description());
    }
    if (index == -1) return false;
    // The list's Click runs inside this step, so its failures count as the
    // selection's own.
    return SkipOnFailure([&] { list.SetListIndex(index); });
}

}  // namespace ostrivane
