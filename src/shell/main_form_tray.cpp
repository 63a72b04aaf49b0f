// The tray icon: its tip, the decoder of its notifications, its popup menu,
// and the way back from the tray. The icon's notifications arrive as mouse
// moves over the form with the real mouse message in X.
#include <string>

#include "editor/main_form.hpp"
#include "lib/numbers.hpp"

namespace ostrivane {

namespace {

// The tip field holds 64 characters with its terminating zero.
constexpr std::size_t kTipLength = 63;
constexpr double kTwipsPerPixel = 15.0;
constexpr std::int32_t kLeftButtonUp = 514;
constexpr std::int32_t kLeftButtonDoubleClick = 515;
constexpr std::int32_t kRightButtonUp = 517;

std::string TrayTip(const std::string& caption) {
    std::string tip = caption.substr(0, caption.find('\0'));
    if (tip.size() > kTipLength) tip.resize(kTipLength);
    return tip;
}

}  // namespace

void MainForm::WireTrayEvents() {
    mnuPopupRestore.Click.Connect([this] { mnuPopupRestore_Click(); });
    mnuPopupAddMarker.Click.Connect([this] { cmdAddMarker.PerformClick(); });
    mnuFileMinToTray.Click.Connect([this] { mnuFileMinToTray_Click(); });
}

void MainForm::CreateTrayIcon() {
    if (TrayIconCreated) return;
    // Taken once: the tip does not follow lblMsg later.
    desktop_.AddTrayIcon(TrayTip(lblMsg.Caption()));
    TrayIconCreated = true;
}

void MainForm::Form_MouseMove(int /*button*/, int /*shift*/, double x, double y) {
    // A move along the very top row of the form decodes like a notification;
    // nothing can tell them apart.
    if (y != 0.0) return;
    const std::int32_t message = RoundToInt32(x / kTwipsPerPixel);
    switch (message) {
        case kLeftButtonUp:
        case kLeftButtonDoubleClick:
            mnuPopupRestore_Click();
            break;
        case kRightButtonUp:
            desktop_.SetForegroundWindow(*this);
            desktop_.ShowPopupMenu(mnuPopup);
            break;
        default:
            break;
    }
}

void MainForm::mnuPopupRestore_Click() {
    SetWindowState(form::WindowState::Normal);
    desktop_.SetForegroundWindow(*this);
    SetVisible(true);
}

void MainForm::mnuFileMinToTray_Click() {
    SetWindowState(form::WindowState::Minimized);
    SetVisible(false);
}

}  // namespace ostrivane
