// Window helpers of the library that work on the form model's controls.
#pragma once

#include <string_view>

#include "form/controls.hpp"

namespace ostrivane {

// Selects the first item equal to value: its text without regard to case,
// or with byItemData its item data as a number. The form model keeps no item
// data, so every item's is 0, as the toolkit leaves an item nobody set.
// Setting ListIndex fires the list's Click; a run-time error on that way is
// ignored and makes the result false. True when an item was selected; without
// a match the list is not touched. Any other run-time error is raised again
// under the source "Vexil.lib_SelectFindInList".
bool lib_SelectFindInList(form::ListBox& list, std::string_view value, bool byItemData);

}  // namespace ostrivane
