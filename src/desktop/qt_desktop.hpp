// The desktop services on Qt: the screen, the forms' windows, the event
// loop, clipboard, printer, and through the tray icon and the instance
// channel, the tray and the carrier between two starts.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "platform/desktop.hpp"

class QEventLoop;

namespace ostrivane::desktop {

class TrayIcon;
class InstanceChannel;

class QtDesktop final : public Desktop {
public:
    QtDesktop();
    ~QtDesktop() override;
    QtDesktop(const QtDesktop&) = delete;
    QtDesktop& operator=(const QtDesktop&) = delete;

    // Where the tray icon's notifications (514, 515, 517) go.
    void SetTrayMessageHandler(std::function<void(int)> handler) { onTrayMessage_ = std::move(handler); }
    // Where a command line forwarded by a second start goes.
    void SetCommandHandler(std::function<void(const std::string&)> handler) { onCommand_ = std::move(handler); }

    std::int32_t GetSystemMetrics(int index) override;
    bool IsForegroundWindow(form::Form& form) override;
    void SetForegroundWindow(form::Form& form) override;
    void SetTopmost(form::Form& form, bool on) override;
    void ShowModal(form::Form& form) override;
    void DoEvents() override;
    void EndProgram() override;
    void Beep() override;
    bool SetClipboardText(const std::string& text) override;
    void PrintForm(form::Form& form) override;
    void AddTrayIcon(const std::string& tip) override;
    void RemoveTrayIcon() override;
    void ShowPopupMenu(form::MenuItem& menu) override;
    bool AcquireInstance(const std::string& name) override;
    void ReleaseInstance() override;
    void ForwardCommand(const std::string& name, const std::string& commandText) override;

private:
    std::unique_ptr<TrayIcon> tray_;
    std::unique_ptr<InstanceChannel> channel_;
    std::function<void(int)> onTrayMessage_;
    std::function<void(const std::string&)> onCommand_;
    std::vector<QEventLoop*> modalLoops_;
    bool ending_ = false;
};

}  // namespace ostrivane::desktop
