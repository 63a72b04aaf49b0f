// The notification-area icon. Clicks on it are handed on as the mouse
// messages the main form decodes (514 left button up, 515 double click,
// 517 right button up); the popup menu is shown only when the form asks.
#pragma once

#include <functional>
#include <memory>
#include <string>

class QSystemTrayIcon;

namespace ostrivane::form {
class MenuItem;
}  // namespace ostrivane::form

namespace ostrivane::desktop {

class TrayIcon {
public:
    explicit TrayIcon(std::function<void(int)> onMessage);
    ~TrayIcon();
    TrayIcon(const TrayIcon&) = delete;
    TrayIcon& operator=(const TrayIcon&) = delete;

    // Shows the icon with the tip (Latin-1); a second call changes the tip.
    void Add(const std::string& tip);
    void Remove();
    // The entries of menu as a popup at the cursor; the chosen entry's click
    // runs once the popup has closed.
    void ShowPopup(form::MenuItem& menu);

    static bool Available();

private:
    std::function<void(int)> onMessage_;
    std::unique_ptr<QSystemTrayIcon> icon_;
};

}  // namespace ostrivane::desktop
