// Questions the logic asks the user through the platform.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace ostrivane {

// Flags and results of the plain message box.
enum MsgBoxFlags : int {
    vbOKOnly = 0,
    vbOKCancel = 1,
    vbYesNoCancel = 3,
    vbYesNo = 4,
    vbCritical = 16,
    vbQuestion = 32,
    vbExclamation = 48,
    vbInformation = 64,
    vbDefaultButton2 = 256,
};
enum MsgBoxResult : int { vbOK = 1, vbCancel = 2, vbYes = 6, vbNo = 7 };

struct TwipPoint {
    int left = 0;
    int top = 0;
};

class Dialogs {
public:
    virtual ~Dialogs() = default;
    // The plain system message box; flags and result as numbers.
    virtual int MsgBox(const std::string& prompt, int flags, const std::string& title) = 0;
    // The input box; Cancel gives the empty string. Without a position the
    // box takes its default place.
    virtual std::string InputBox(const std::string& prompt, const std::string& title, const std::string& proposal,
                                 std::optional<TwipPoint> position) = 0;
    // The colour chooser starting at colour; -1 on Cancel.
    virtual std::int32_t ChooseColor(std::int32_t colour) = 0;
};

}  // namespace ostrivane
