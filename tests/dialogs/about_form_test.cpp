// The about box as lib_ShowAbout fills it: texts, links and their quirks,
// the year of each opening, and its one way out.
#include <gtest/gtest.h>

#include "dialogs/about_form.hpp"
#include "fakes/fake_platform.hpp"

namespace ostrivane::testing {
namespace {

// Everything the form shows, as it stands while it is up.
struct Opened {
    Lines texts;
    const form::Form* owner = nullptr;
    bool closedByOk = false;
};

Opened Open(std::string_view home, std::string_view email, std::string_view subject, int year,
            const form::Form* owner = nullptr) {
    fakes::FakeDesktop desktop;
    Opened seen;
    desktop.whileModal = [&](form::Form& f) {
        auto& a = dynamic_cast<AboutForm&>(f);
        seen.texts = {a.Caption(), a.imgIcon.Picture(), a.lblVersion.Caption(), a.lblCopyright.Caption(),
                      a.hlkHome.Caption(), a.hlkHome.Address(), a.hlkEmail.Caption(), a.hlkEmail.Address()};
        seen.owner = a.CentreOwner;
        a.cmdOk.PerformClick();
        seen.closedByOk = !a.Visible() && a.Unloaded();
    };
    lib_ShowAbout(desktop, owner, "ostrivane", "1.05", "Tarnwick", home, email, subject, "icoCrosshair",
                  [year] { return year; });
    EXPECT_EQ(desktop.calls, Lines{"ShowModal frmAbout"});
    return seen;
}

TEST(AboutBox, FillsTheFormAndClosesOnOk) {
    const form::Form owner("frmMain");
    const Opened o = Open("www.ostrivane.example", "support@ostrivane.example", "", 2026, &owner);
    EXPECT_EQ(o.texts, (Lines{"About ostrivane", "icoCrosshair", "ostrivane  v1.05", "Copyright \xA9" "2026 Tarnwick",
                              "www.ostrivane.example", "http://www.ostrivane.example", "support@ostrivane.example",
                              "mailto:support@ostrivane.example"}));
    EXPECT_EQ(o.owner, &owner);
    EXPECT_TRUE(o.closedByOk);
    // The clock is read at each opening: a new year changes that and nothing else.
    Lines next = Open("www.ostrivane.example", "support@ostrivane.example", "", 2027, &owner).texts;
    EXPECT_EQ(next[3], "Copyright \xA9" "2027 Tarnwick");
    next[3] = o.texts[3];
    EXPECT_EQ(next, o.texts);
}

// home: kept when its first seven characters are "http://" in any case.
// email: blanks become "_"; the "mailto:" test compares nine characters, so
// only the bare word escapes the prefix. A subject follows the address.
TEST(AboutBox, LinkAddresses) {
    const struct {
        const char* home;
        const char* email;
        const char* subject;
        const char* homeAddress;
        const char* emailCaption;
        const char* emailAddress;
    } rows[] = {
        {"HTTP://Host.example/A", "a@b", "", "HTTP://Host.example/A", "a@b", "mailto:a@b"},
        {"https://host", "", "", "http://https://host", "", "mailto:"},
        {"http:/", "sup port @x y", "", "http://http:/", "sup_port_@x_y", "mailto:sup_port_@x_y"},
        {"", "mailto:a@b", "Hi there", "http://", "mailto:a@b", "mailto:mailto:a@b?Subject=Hi there"},
        {"hTTp://", "MAILTO:", "", "hTTp://", "MAILTO:", "MAILTO:"},
    };
    for (const auto& r : rows) {
        SCOPED_TRACE(std::string(r.home) + " | " + r.email);
        const Lines t = Open(r.home, r.email, r.subject, 2026).texts;
        EXPECT_EQ((Lines{t[4], t[5], t[6], t[7]}), (Lines{r.home, r.homeAddress, r.emailCaption, r.emailAddress}));
    }
}

// The design of the form; Esc presses OK, which is no default button.
TEST(AboutBox, Layout) {
    AboutForm a;
    std::vector<std::vector<int>> placed;
    for (const form::Control* c : std::initializer_list<const form::Control*>{
             &a.imgIcon, &a.lblVersion, &a.lblCopyright, &a.Label1, &a.hlkHome, &a.Label2, &a.hlkEmail, &a.cmdOk})
        placed.push_back({c->Left, c->Top, c->Width, c->Height});
    EXPECT_EQ(placed, (std::vector<std::vector<int>>{{105, 120, 480, 480}, {795, 180, 4215, 285},
                                                     {795, 420, 2805, 285}, {240, 1935, 465, 225},
                                                     {825, 1905, 4215, 225}, {240, 2250, 465, 225},
                                                     {825, 2220, 4215, 225}, {2250, 2865, 825, 405}}));
    EXPECT_EQ((std::vector<int>{a.Width, a.Height, a.cmdOk.Cancel, a.cmdOk.Default}),
              (std::vector<int>{5250, 3375, 1, 0}));
    EXPECT_EQ((Lines{a.Label1.Caption(), a.Label2.Caption(), a.cmdOk.Caption(), a.imgIcon.Picture()}),
              (Lines{"Web:", "Email:", "&Ok", ""}));
}

}  // namespace
}  // namespace ostrivane::testing
