// The plain questions on Qt: message box, input box, colour chooser.
#pragma once

#include "platform/dialogs.hpp"

namespace ostrivane::desktop {

class QtDialogs final : public Dialogs {
public:
    int MsgBox(const std::string& prompt, int flags, const std::string& title) override;
    std::string InputBox(const std::string& prompt, const std::string& title, const std::string& proposal,
                         std::optional<TwipPoint> position) override;
    std::int32_t ChooseColor(std::int32_t colour) override;
};

}  // namespace ostrivane::desktop
