#include "net/http_client.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <utility>

#include "fakes/fake_internet.hpp"
#include "fakes/fake_platform.hpp"
#include "fakes/fake_window_system.hpp"
#include "support/run_time_error.hpp"
#include "support/temp_dir.hpp"

namespace ostrivane {
namespace {

constexpr char kUrl[] = "http://www.example.test/page.html";

std::string Error(std::int32_t number, const std::string& method, const std::string& description) {
    return std::to_string(kObjectErrorBase + number) + " Vexil.lib_clsHTTP:" + method + "(): " + description;
}

long Count(const std::vector<std::string>& calls, const std::string& head) {
    return std::count_if(calls.begin(), calls.end(), [&](const std::string& c) { return c.starts_with(head); });
}

struct HttpClientTest : ::testing::Test {
    fakes::FakeInternet net;
    fakes::FakeDesktop desktop;
    fakes::FakeWindowSystem windows;
    bool found = false;
    std::int32_t size = 0;
    double seconds = 0;

    std::string Connect(const std::string& url, bool existsOnly = false, std::int16_t retrySecs = 0) {
        lib_clsHTTP http(net, desktop, windows);
        http.HttpURL(url);
        const auto start = std::chrono::steady_clock::now();
        std::string failure = FailureOf([&] {
            http.ConnectToHTTPHost(retrySecs, existsOnly);
            found = http.mblnPageFound;
            size = http.SizeOfFile();
        });
        seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
        return failure;
    }
};

TEST_F(HttpClientTest, StatusesWithATextRaiseItUnlessOnlyExistenceIsAsked) {
    const std::pair<const char*, const char*> texts[] = {
        {"101", "Server has switched protocols in upgrade header."},
        {"204", "No info to return."},
        {"300", "Server couldn't decide what to return."},
        {"301", "Object permanently moved"},
        {"302", "Object temporarily moved"},
        {"303", "Redirection with new access method."},
        {"304", "If-modified-since was not modified."},
        {"305", "Redirection to proxy, location header specifies proxy to use."},
        {"307", "HTTP/1.1: keep same verb"},
        {"400", "Invalid syntax."},
        {"401", "Access denied."},
        {"402", "Payment required."},
        {"403", "Request forbidden."},
        {"404", "Object not found. Bad URL."},
        {"405", "Method is not allowed."},
        {"406", "No response acceptable to client found."},
        {"407", "Proxy authentication required."},
        {"408", "Server timed out waiting for request."},
        {"409", "User should resubmit with more info."},
        {"410", "The resource is no longer available."},
        {"411", "The server refused to accept request without a length."},
        {"412", "Precondition given in request failed."},
        {"413", "Request entity was too large."},
        {"414", "Request URI too long."},
        {"415", "Unsupported media type."},
        {"500", "Internal server error."},
        {"501", "Required not supported."},
        {"502", "Error response received from gateway."},
        {"503", "Temporarily overloaded."},
        {"504", "Timed out waiting for gateway."},
        {"505", "HTTP version not supported."},
    };
    for (const auto& [status, text] : texts) {
        net.otherReply.status = status;
        EXPECT_EQ(Connect(kUrl), Error(2000, "ConnectToHTTPHost", text));
        EXPECT_EQ(Connect(kUrl, true), "no error") << status;
        EXPECT_FALSE(found) << status;
    }
    for (const char* status : {"200", "201", "203", "206", "306", "599", " 200 ", "OK", ""}) {
        net.otherReply.status = status;
        for (const bool existsOnly : {false, true}) {
            EXPECT_EQ(Connect(kUrl, existsOnly), "no error") << status;
            EXPECT_EQ(found, std::string(status).find("200") != std::string::npos) << status;
        }
    }
}

TEST_F(HttpClientTest, UrlsThatCannotBeOpenedRaiseBeforeAnyRequest) {
    const std::string badUrl = "Bad URL. \r\n%\r\nPlease verify the hyperlink and try again.";
    const auto bad = [&](const std::string& url) {
        return Error(1000, "ConnectToHTTPHost", std::string(badUrl).replace(badUrl.find('%'), 1, url));
    };
    EXPECT_EQ(Connect("   "), bad("   "));
    EXPECT_EQ(Connect("file:///etc/hosts"), bad("file:///etc/hosts"));
    EXPECT_EQ(Connect("no scheme here"), Error(3000, "ConnectToHTTPHost", "An unknown error occurred."));
    net.canonicalizeFails = true;
    EXPECT_EQ(Connect(kUrl), Error(3000, "ConnectToHTTPHost", "An unknown error occurred."));
    EXPECT_EQ(Count(net.calls, "OpenSession"), 0);
}

TEST_F(HttpClientTest, ARefusedConnectionIsTriedAgainAfterASecondWithEventsHandled) {
    net.refusals = 1;
    net.replies[kUrl] = {"200", "", std::nullopt};
    EXPECT_EQ(Connect(kUrl, false, 1), "no error");
    EXPECT_TRUE(found);
    EXPECT_GE(seconds, 1.0);
    EXPECT_LT(seconds, 1.9);
    EXPECT_EQ(Count(desktop.calls, "DoEvents"), 10);
    EXPECT_EQ(Count(net.calls, "OpenUrl " + std::string(kUrl) + " A4000000"), 2);
    EXPECT_EQ(Count(net.calls, "OpenSession Mozilla/4.0 (compatible; MSIE 6.0; Windows NT 5.0) 0"), 1);
    // Nothing answers: tries go on until more whole seconds than asked have passed.
    for (const std::int16_t retrySecs : {0, 1}) {
        net.calls.clear();
        net.refusals = 1000;
        EXPECT_EQ(Connect(kUrl, true, retrySecs),
                  Error(4001, "ConnectToHTTPHost", "Couldn't connect to server 'www.example.test'."));
        EXPECT_EQ(Count(net.calls, "OpenUrl " + std::string(kUrl) + " A4200000"), retrySecs + 1);
        EXPECT_GE(seconds, retrySecs + 1.0);
        EXPECT_LT(seconds, retrySecs + 1.9);
    }
}

TEST_F(HttpClientTest, TheBodyComesWholeAndTheAvailableSizeIsNeverZero) {
    std::string body(3'000'000, ' ');
    for (std::size_t i = 0; i < body.size(); ++i) body[i] = static_cast<char>('a' + i % 26);
    net.replies[kUrl] = {"200", body, std::nullopt, 1000};
    net.replies["http://empty.test/"] = {"200", "", std::nullopt};
    {
        lib_clsHTTP http(net, desktop, windows);
        http.HttpURL(kUrl);
        http.ConnectToHTTPHost(0, false);
        EXPECT_EQ(http.SizeOfFile(), 1000);
        EXPECT_EQ(http.WriteHTTPDataToString(), body);
        // A body that never ends stops at the cap, about where it lies.
        const auto cap = std::exchange(lib_clsHTTP::MaxPageBytes, 1'000'000);
        http.ConnectToHTTPHost(0, false);
        EXPECT_EQ(http.WriteHTTPDataToString(), body.substr(0, 1'000'000));
        lib_clsHTTP::MaxPageBytes = cap;
        http.HttpURL("http://empty.test/");
        http.ConnectToHTTPHost(0, false);
        EXPECT_EQ(http.SizeOfFile(), 1);
        EXPECT_EQ(http.WriteHTTPDataToString(), "");
        net.calls.clear();
    }
    // The last URL and session go when the object ends; the first ones stay with the transport.
    EXPECT_EQ(net.calls, (std::vector<std::string>{"CloseHandle 6", "CloseHandle 5"}));
}

TEST_F(HttpClientTest, OneShotRequests) {
    struct Case {
        const char* url;
        bool post;
        std::optional<std::string> contentLength;
        std::int32_t bufferSize;
        std::string result;
        std::int32_t bufferAfter;
        std::string connect;
    };
    const Case cases[] = {
        {"http://www.example.test", false, std::nullopt, -1, "hello world", 4096, "www.example.test 80 "},
        {"HTTP://www.example.test", false, "8", -1, "hello wo", 8, "www.example.test 80 "},
        {"www.example.test", true, std::nullopt, 3, "hello world", 3, "www.example.test 80 "},
        {"www.example.test", false, "11", 2, "hello world", 2, "www.example.test 80 "},  // "11" does not fit
        {"HTTPS://www.example.test", false, std::nullopt, 100, "hello world", 100, "HTTPS://www.example.test 443 "},
        {"httpsx", true, "11", -1, "hello world", 11, "httpsx 443 "},
    };
    for (const Case& c : cases) {
        net = fakes::FakeInternet{};
        net.replies["/file.txt"] = {"200", "hello world", c.contentLength, 4};
        lib_clsHTTP http(net, desktop, windows);
        http.HttpURL(c.url);
        std::int32_t bufferSize = c.bufferSize;
        const std::string result = c.post ? http.HTTP_POST("/file.txt", "a=1&b=2", "me", "pw", bufferSize)
                                          : http.HTTP_GET("/file.txt", "me", "pw", bufferSize);
        EXPECT_EQ(result, c.result) << c.url;
        EXPECT_EQ(bufferSize, c.bufferAfter) << c.url;
        const std::string agent = c.post ? "Mozilla/4.0 (compatible; MSIE 6.0; Windows NT 5.0)" : "lib_clsHTTP";
        std::vector<std::string> expected = {"GetConnectedState", "OpenSession " + agent + " 0",
                                             "Connect " + c.connect + "me pw 3 00000000",
                                             std::string("OpenRequest ") + (c.post ? "POST" : "GET") +
                                                 " /file.txt HTTP/1.0 A4000000"};
        if (c.post) expected.push_back("AddRequestHeaders A0000000");
        expected.insert(expected.end(), {c.post ? "SendRequest 7" : "SendRequest 0", "QueryContentLength",
                                         "CloseHandle 3", "CloseHandle 1", "CloseHandle 2"});
        EXPECT_EQ(net.calls, expected) << c.url;
    }
    EXPECT_EQ(net.lastHeaders, "Content-Type: application/x-www-form-urlencoded\r\n");
    EXPECT_EQ(net.lastBody, "a=1&b=2");
    net.sendFails = true;
    lib_clsHTTP http(net, desktop, windows);
    std::int32_t bufferSize = -1;
    EXPECT_EQ(http.HTTP_POST("/file.txt", "a=1", "", "", bufferSize), "");
    EXPECT_EQ(net.OpenHandles(), 0u);
    net.sendFails = false;
    net.replies["/file.txt"].contentLength = "3000000000";  // beyond 32 bits: it raises, and nothing stays open
    EXPECT_EQ(FailureOf([&] { http.HTTP_GET("/file.txt", "", "", bufferSize); }) + std::to_string(net.OpenHandles()),
              "6 Ostrivane: Overflow0");
}

TEST_F(HttpClientTest, TheFileGrowsInWholeBlocksAndAnExistingTargetAsksForAnotherName) {
    TempDir dir;
    WriteBytes(dir.file("12345"), "old");
    WriteBytes(dir.file("page.txt"), "old");
    net.replies[kUrl] = {"200", "0123456789", std::nullopt};
    struct Case {
        std::string destination;
        bool overwrite, prompt;
        std::optional<std::string> answer;  // of the save dialog, when one is asked
        std::string written, error;
    };
    const Case cases[] = {
        {dir.file("new.bin"), false, false, std::nullopt, dir.file("new.bin"), "no error"},
        {dir.file("12345"), true, false, std::nullopt, dir.file("12345"), "no error"},
        {dir.file("12345"), false, false, dir.file("other.bin"), dir.file("other.bin"), "no error"},
        {dir.file("77"), true, true, dir.file("prompted.bin"), dir.file("prompted.bin"), "no error"},
        {dir.file("12345"), false, false, "", "", "no error"},
        {dir.file("page.txt"), false, false, std::nullopt, "",
         "13 Ostrivane:WriteHTTPDataToFile(): Type mismatch"},
        {dir.file("missing/x.bin"), true, false, std::nullopt, "", "no error"},
    };
    for (const Case& c : cases) {
        windows.saveRequests.clear();
        if (c.answer) windows.fileAnswers.push_back(*c.answer);
        lib_clsHTTP http(net, desktop, windows);
        http.HttpURL(kUrl);
        http.ConnectToHTTPHost(0, false);
        http.DestinationFile(c.destination);
        http.OverwriteTarget(c.overwrite);
        http.PromptWithCommonDialog(c.prompt);
        EXPECT_EQ(http.FileExists(), std::filesystem::is_regular_file(c.destination)) << c.destination;
        EXPECT_EQ(FailureOf([&] { http.WriteHTTPDataToFile(); }), c.error) << c.destination;
        ASSERT_EQ(windows.saveRequests.size(), c.answer ? 1u : 0u) << c.destination;
        if (c.answer) {
            EXPECT_EQ(windows.saveRequests[0].owner, std::stoi(c.destination.substr(dir.path().string().size() + 1)));
            EXPECT_EQ(windows.saveRequests[0].file.substr(0, 50), "Please select a new name for the destination file.");
            EXPECT_EQ(windows.saveRequests[0].title, "Save As");
        }
        if (!c.written.empty()) { EXPECT_EQ(ReadBytes(c.written), "0123456789" + std::string(8182, '\0')); }
    }
    EXPECT_EQ(ReadBytes(dir.file("page.txt")), "old");
}

}  // namespace
}  // namespace ostrivane
