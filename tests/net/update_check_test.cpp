#include "net/update_check.hpp"

#include <gtest/gtest.h>

#include "dialogs/message_box.hpp"
#include "fakes/fake_internet.hpp"
#include "fakes/fake_platform.hpp"
#include "fakes/fake_window_system.hpp"
#include "lib/window_helpers.hpp"
#include "lib/error_handler.hpp"
#include "net/internet_page.hpp"
#include "support/run_time_error.hpp"

namespace ostrivane {
namespace {


TEST(UpdateCheck, MachineIdentityGivesAStableNumberWithoutSign) {
    const struct { const char* id; std::int32_t serial; } rows[] = {
        {"00000000000000000000000000000001", 1},
        {"0000000100000002000000040000000f", 0x1 ^ 0x2 ^ 0x4 ^ 0xf},
        {"ffffffff000000000000000000000000", 1},   // -1 read signed
        {"80000001000000000000000000000000", 0x7fffffff},
        {"0000000000000000000000000000000g", 0},
        {"0123", 0},
    };
    for (const auto& r : rows) EXPECT_EQ(SerialOfMachineId(r.id), r.serial) << r.id;
    EXPECT_EQ(ErrorOf([] { SerialOfMachineId("80000000000000000000000000000000"); }), kOverflow);
    EXPECT_GE(lib_GetVolumeSerial("/"), 0);
    EXPECT_EQ(lib_GetVolumeSerial("/"), lib_GetVolumeSerial("/"));
}

TEST(UpdateCheck, PageAddressGainsSchemeAndLosesFragment) {
    const std::pair<const char*, const char*> rows[] = {
        {"example.org/a/b.html#top", "http://example.org/a/b.html"},
        {"https:example.org/x", "//https:example.org/x"},  // "//" first; the scheme is then found
        {"https://example.org/x#y", "https://example.org/x"},
        {"HTTP://example.org", "http:HTTP://example.org"},       // the tests are exact
    };
    for (const auto& [in, out] : rows) EXPECT_EQ(NormalisePageAddress(in), out) << in;
}

class UpdateCheckTest : public ::testing::Test {
protected:
    UpdateCheckTest() {
        lib_AttachErrorBoxes(&desktop, &dialogs, "Ostrivane");
        lib_AttachBusyCursor(&windows);
        lib_SetDebugSink([](const std::string&) {});
        lib_ErrorDetailOn = true;
        desktop.whileModal = [this](form::Form&) { shown.push_back(MessageText.substr(5)); };
    }
    ~UpdateCheckTest() override {
        lib_AttachErrorBoxes(nullptr, nullptr, "");
        lib_AttachBusyCursor(nullptr);
        lib_SetDebugSink(nullptr);
        lib_ErrorDetailOn = false;
    }
    // Runs the check of version 2.05 against a reply and gives what the user saw.
    Lines Check(const std::string& body, const char* status = "200") {
        const std::string url = "http://updates.test/Downloads/GetVersion1.asp?ProdCode=Ostrivane&Version=2.05&PcId=" +
                                std::to_string(lib_GetVolumeSerial("/"));
        net.replies[url] = {status, body, std::nullopt};
        lib_CheckOnlineForUpdates(net, desktop, dialogs, "Ostrivane", "2.05", true, "updates.test", false);
        Lines seen = shown;
        for (const auto& q : dialogs.asked) seen.push_back("MsgBox " + q.prompt);
        return seen;
    }
    fakes::FakeInternet net;
    fakes::FakeDesktop desktop;
    fakes::FakeDialogs dialogs;
    fakes::FakeWindowSystem windows;
    Lines shown;
};

TEST_F(UpdateCheckTest, RepliesAndWhatTheUserIsTold) {
    const std::string news = "Version 2.5 is available\r\n\r\nWhat's New:\r\n";
    const struct { const char* body; const char* told; } rows[] = {
        {"<html><BODY>2.05<BR>x</BODY></html>", "You have the latest version"},
        {"<html><body>2.5<br>Faster <B>lines</B>&amp; dots<BR>Fix<br>ed</body></html>",
         "Version 2.5 is available\r\n\r\nWhat's New:\r\nFaster lines& dots\r\nFix<br>ed"},
        {"<html><BODY>2.5<BR></BODY></html>", news.c_str()},
        {"<html><BODY>1.99<BR></BODY></html>", "Version 1.99 is available\r\n\r\nWhat's New:\r\n"},
        {"<html>no body</html>", "Version  is available\r\n\r\nWhat's New:\r\n"},
    };
    for (const auto& r : rows) {
        shown.clear();
        EXPECT_EQ(Check(r.body), Lines{r.told}) << r.body;
    }
}

// Errors reach the user once, in a box naming the check, with their own text.
TEST_F(UpdateCheckTest, FailuresEachGetTheirMessage) {
    const struct { const char* body; const char* status; const char* text; } rows[] = {
        {"<html><BODY>2.5</BODY></html>", "200", "Invalid procedure call"},
        {"<html><BODY></BODY></html>", "200", "Invalid procedure call"},
        {"<html><BODY>2.5<BR>", "200", "Internet page is incomplete"},
        {"", "200", "Internet page is incomplete"},
        {"<html></html>", "404", "Object not found. Bad URL."},
        {"<html></html>", "500", "Internal server error."},
    };
    for (const auto& r : rows) {
        shown.clear();
        const Lines seen = Check(r.body, r.status);
        ASSERT_EQ(seen.size(), 1u) << r.body;
        EXPECT_NE(seen[0].find("lib_CheckOnlineForUpdates"), std::string::npos) << seen[0];
        EXPECT_NE(seen[0].find(r.text), std::string::npos) << seen[0];
    }
}

// The roads of the page routine that the update check does not take.
TEST(InternetPage, GivenTextPostsTagsAndExistence) {
    fakes::FakeInternet net;
    fakes::FakeDesktop desktop;
    fakes::FakeWindowSystem windows;
    lib_AttachBusyCursor(&windows);
    lib_SetDebugSink([](const std::string&) {});
    std::string text = "a <b>bold</b> word<i";
    InternetPageRequest given{.pblnStripTags = true, .pvarPageText = &text};
    EXPECT_EQ(lib_GetInternetPage(net, desktop, "", given), "aboldword");  // the sides are trimmed, then joined
    EXPECT_TRUE(net.calls.empty());

    InternetPageRequest post{.pstrPostData = "q=1"};
    const std::string raised = "-2147220504 Vexil.lib_GetInternetPage: ";
    EXPECT_EQ(FailureOf([&] { lib_GetInternetPage(net, desktop, "host", post); }),
              raised + "PostData provided but no PageURL");
    post.pstrPageURL = "form";
    EXPECT_EQ(FailureOf([&] { lib_GetInternetPage(net, desktop, "host", post); }),
              raised + "PostData provided but PageURL has no type extension");
    net.replies["form.asp"] = {"200", "<html>\nX&amp;\r\nY\nSTART here</html>", std::nullopt};
    std::string kept;
    InternetPageRequest posted{.pstrPageURL = "form.asp", .pstrPostData = "q=1", .pblnCleanText = true,
                               .pvarPageText = &kept, .pstrStartAt = "x"};
    EXPECT_EQ(lib_GetInternetPage(net, desktop, "host", posted), "X&YSTART here</html>");
    EXPECT_EQ(kept, "X&\r\nY\r\nSTART here</html>");
    EXPECT_EQ(net.lastBody, "q=1");

    // Existence only: the caller's switches are cleared, and a post's page is never appended.
    net.replies["http://host/page.html"] = {"200", "", std::nullopt};
    InternetPageRequest exists{.pstrPageURL = "page.html", .pblnCleanText = true, .pblnTextExistsOnly = true};
    EXPECT_EQ(lib_GetInternetPage(net, desktop, "host/", exists), "True");
    EXPECT_FALSE(exists.pblnCleanText);
    InternetPageRequest postExists{.pstrPageURL = "page.html", .pstrPostData = "q", .pblnTextExistsOnly = true};
    EXPECT_EQ(lib_GetInternetPage(net, desktop, "host/", postExists), "False");
    EXPECT_EQ(net.lastUrl, "http://host/");
    EXPECT_TRUE(postExists.pstrPostData.empty());
    InternetPageRequest missing{.pstrPageURL = "gone.html", .pblnTextExistsOnly = true};
    EXPECT_EQ(lib_GetInternetPage(net, desktop, "host/", missing), "False");
    lib_SetDebugSink(nullptr);
    lib_AttachBusyCursor(nullptr);
}

}  // namespace
}  // namespace ostrivane
