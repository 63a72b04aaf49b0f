// The tray icon: its tip, the decoder of its notifications (a mouse move
// over the form with the message in X), its popup menu and the way back.
#include <utility>

#include "editor/main_form_fixture.hpp"

namespace ostrivane::testing {
namespace {

using TrayTest = MainFormTest;

TEST_F(TrayTest, DecoderTakesTheMessageFromXAtTheTopRow) {
    const Lines none, restore{"SetForegroundWindow frmMain"}, popup{"SetForegroundWindow frmMain", "ShowPopupMenu mnuPopup"};
    const struct { double pixels, y; const Lines& calls; } rows[] = {
        {514, 0, restore},  {515, 0, restore},    {517, 0, popup},    {514, 1, none},    {514, 0.25, none},
        {514, -0.0, restore}, {513.5, 0, restore}, {514.5, 0, restore}, {515.5, 0, none}, {516.5, 0, none},
        {516.6, 0, popup},  {517.5, 0, none},     {512, 0, none},     {516, 0, none},    {514.0 / 15, 0, none},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(::testing::Message() << "x " << row.pixels << " px, y " << row.y);
        frm.SetWindowState(form::WindowState::Minimized);  // in the tray
        frm.SetVisible(false);
        desktop.calls.clear();
        frm.Showing = true;
        frm.Form_MouseMove(0, 0, row.pixels * 15, row.y);  // the form's scale is twips
        EXPECT_EQ(desktop.calls, row.calls);
        EXPECT_EQ(frm.Visible(), &row.calls == &restore);
        EXPECT_EQ(frm.GetWindowState() == form::WindowState::Normal, &row.calls == &restore);
        EXPECT_TRUE(frm.Showing);
    }
    EXPECT_TRUE(overlay.calls.empty());
    EXPECT_EQ(ErrorOf([&] { frm.Form_MouseMove(0, 0, 1e12, 0); }), kOverflow);
}

TEST_F(TrayTest, TipIsTheMessageCaptionCutTo63CharactersOnce) {
    frm.lblMsg.SetCaption(std::string(70, 'm'));
    frm.CreateTrayIcon();
    frm.lblMsg.SetCaption("later");
    frm.CreateTrayIcon();
    EXPECT_EQ(desktop.calls, (Lines{"AddTrayIcon " + std::string(63, 'm')}));
    EXPECT_TRUE(frm.TrayIconCreated);
}

// The popup's entries run the form's buttons; the form goes to the tray minimised.
TEST_F(TrayTest, PopupEntriesAndTheWayThere) {
    int adds = 0, exits = 0;
    frm.cmdAddMarker.Click.Connect([&] { ++adds; });
    frm.cmdExit.Click.Connect([&] { ++exits; });
    frm.mnuPopupAddMarker.PerformClick();
    frm.mnuPopupExit.PerformClick();
    EXPECT_EQ(std::make_pair(adds, exits), std::make_pair(1, 1));

    frm.SetVisible(true);
    frm.mnuFileMinToTray.PerformClick();
    EXPECT_FALSE(frm.Visible());
    EXPECT_EQ(frm.GetWindowState(), form::WindowState::Minimized);
}

}  // namespace
}  // namespace ostrivane::testing
