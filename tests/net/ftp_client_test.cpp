#include "net/ftp_client.hpp"

#include <gtest/gtest.h>

#include <functional>

#include "fakes/fake_ftp.hpp"
#include "fakes/fake_window_system.hpp"
#include "support/run_time_error.hpp"
#include "support/temp_dir.hpp"

namespace ostrivane {
namespace {

using Commands = std::vector<std::string>;

// A server holding /a.txt, /pub/in/a.txt and /pub/f.bin, and a 10-byte local file.
struct Session {
    TempDir dir;
    fakes::FakeFtp server;
    fakes::FakeWindowSystem windows;
    lib_clsFTP ftp{server, windows};
    std::string local = dir.file("up.bin");
    explicit Session(std::string url = "ftp://files.example/pub/f.bin") {
        server.directories = {"/", "/pub", "/pub/in"};
        server.files = {{"/a.txt", "A"}, {"/pub/in/a.txt", "B"}, {"/pub/f.bin", "0123456789"}};
        WriteBytes(local, "0123456789");
        ftp.FtpURL(url);
    }
    std::string Connect() {
        const std::string failure = FailureOf([&] { ftp.ConnectToFTPHost(); });
        server.calls.clear();
        return failure;
    }
};

TEST(FtpClient, RemotePathsAreEnteredOneDirectoryAtATime) {
    const struct { const char* destination; bool upload, autoCreate; std::uint32_t cwdError; Commands commands;
                   std::string failure; } rows[] = {
        {"a.txt", false, false, 12003, {"DELE a.txt"}, "no error"},
        {"/pub/in/a.txt", false, false, 12003, {"CWD /", "CWD pub", "CWD in", "DELE a.txt"}, "no error"},
        {"pub/new/a.txt", false, false, 12003, {"CWD pub", "CWD new"},
         ObjectFailure(9999, "FTP::DeleteFileFromFTPServer: 550 new: No such directory.")},
        {"pub/new/a.txt", true, true, 12003, {"CWD pub", "CWD new", "MKD new", "CWD new", "STOR LOCAL a.txt 04000002"},
         "no error"},
        // A CWD that fails for another reason than the server's answer is passed over.
        {"new/b.txt", false, false, 12030, {"CWD new", "DELE b.txt"},
         ObjectFailure(2215, "FTP::DeleteFileFromFTPServer: 550 b.txt: No such file.")},
        {"/pub", true, false, 12003, {"CWD /", "STOR LOCAL pub 04000002"},
         ObjectFailure(2215, "FTP::UploadFileToFTPServer: 553 pub: Is a directory.")},
    };
    for (const auto& row : rows) {
        Session s;
        s.server.cwdError = row.cwdError;
        ASSERT_EQ(s.Connect(), "no error");
        s.ftp.DestinationFile(row.destination);
        s.ftp.AutoCreateRemoteDir(row.autoCreate);
        if (row.upload) s.ftp.SourceFile(s.local);
        EXPECT_EQ(FailureOf([&] { row.upload ? s.ftp.UploadFileToFTPServer() : s.ftp.DeleteFileFromFTPServer(); }),
                  row.failure) << row.destination;
        Commands expected = row.commands;
        for (std::string& c : expected)
            if (const auto at = c.find("LOCAL"); at != std::string::npos) c.replace(at, 5, s.local);
        EXPECT_EQ(s.server.calls, expected) << row.destination;
        if (row.autoCreate) { EXPECT_EQ(s.server.files["/pub/new/a.txt"], "0123456789"); }
    }
}

TEST(FtpClient, ConnectionLogsInOnTheServicePortOrSaysWhy) {
    const struct { const char* url; bool proxy, refused; std::string failure, session; } rows[] = {
        {"ftp://files.example:2121/pub/f.bin", false, false, "no error", "OpenSession WinInet-FileTransferObjects 0"},
        {"ftp://files.example/pub/f.bin", true, false, "no error", "OpenSession WinInet-FileTransferObjects 3"},
        {"files.example", false, false, ObjectFailure(3000, "FTP::ConnectToFTPHost: An unknown error occurred."), ""},
        {"ftp:///pub/f.bin", false, false,
         ObjectFailure(1000, "FTP::ConnectToFTPHost: Bad URL. \r\nftp:///pub/f.bin\r\nPlease verify the hyperlink and try again."),
         ""},
        {"ftp://files.example/f", false, true, ObjectFailure(4001, "FTP::ConnectToFTPHost: Couldn't connect to server 'files.example'."),
         "OpenSession WinInet-FileTransferObjects 0"},
    };
    for (const auto& row : rows) {
        Session s(row.url);
        s.ftp.UseProxy(row.proxy);
        s.server.loginRefused = row.refused;
        EXPECT_EQ(FailureOf([&] { s.ftp.ConnectToFTPHost(); }), row.failure) << row.url;
        const Commands& calls = s.server.calls;
        EXPECT_EQ(std::count(calls.begin(), calls.end(), row.session), row.session.empty() ? 0 : 1) << row.url;
        EXPECT_EQ(std::count(calls.begin(), calls.end(), "Connect files.example 0 anonymous ostrivane@users.invalid 1 08000000"),
                  row.session.empty() ? 0 : 1) << row.url;
    }
}

// Only the bytes read are written; a file already there is overwritten, as
// overwrite is off but nobody is asked.
TEST(FtpClient, Downloads) {
    const std::string big = std::string(9000, 'x') + "end";
    const struct { std::function<void(Session&)> setUp; std::string failure, file;
                   std::int32_t size; } rows[] = {
        {[](Session&) {}, "no error", "0123456789", 10},
        {[&](Session& s) { s.server.files["/pub/f.bin"] = big, s.server.chunk = 3000; }, "no error", big, 3000},
        {[](Session& s) { s.server.files["/pub/f.bin"] = ""; }, "no error", "", 1},
        {[](Session& s) { s.ftp.SourceFile(s.local); },
         ObjectFailure(5000, "FTP::WriteFTPDataToFile: Wrong transfer method selected."), "old", 10},
        {[](Session& s) { s.ftp.FtpURL("ftp://files.example/gone"), s.Connect(); },
         ObjectFailure(5000, "FTP::ConnectToFTPHost: Cannot start file transfer from 'files.example'."), "old", 0},
        // An empty destination ends in silence; asking for one cannot even open the dialog.
        {[](Session& s) { s.ftp.DestinationFile(""); }, "no error", "old", 0},
        {[](Session& s) { s.ftp.DestinationFile(""), s.ftp.PromptWithCommonDialog(true); },
         "13 FTP::WriteFTPDataToFile: Type mismatch", "old", 0},
        {[](Session& s) { s.ftp.DestinationFile(s.dir.file("no/such/dir")); }, "no error", "old", 10},
    };
    for (const auto& row : rows) {
        Session s;
        s.Connect();
        WriteBytes(s.dir.file("out.bin"), "old");
        s.ftp.DestinationFile(s.dir.file("out.bin"));
        row.setUp(s);
        EXPECT_EQ(FailureOf([&] { s.ftp.WriteFTPDataToFile(); }), row.failure);
        EXPECT_EQ(ReadBytes(s.dir.file("out.bin")), row.file) << row.failure;
        EXPECT_EQ(s.ftp.SizeOfFile(), row.size) << row.failure;
        if (row.size > 0 && row.failure == "no error") { EXPECT_EQ(s.server.calls.front(), "RETR /pub/f.bin 80000000 04000002"); }
    }
}

TEST(FtpClient, SourceFileAndFlags) {
    Session s;
    s.server.online = false;
    lib_clsFTP offline(s.server, s.windows);
    s.server.online = true;
    EXPECT_FALSE(offline.IsConnected());  // the flag of the start, not asked again
    offline.DialDefaultNumber();
    EXPECT_TRUE(offline.IsConnected());
    s.server.online = false;
    offline.DialDefaultNumber();
    EXPECT_FALSE(offline.IsConnected());
    offline.HangUp();
    EXPECT_TRUE(offline.IsConnected());  // the hang-up's success, as it has always been
    EXPECT_EQ(std::count(s.server.calls.begin(), s.server.calls.end(), "Autodial"), 0);

    EXPECT_EQ(FailureOf([&] { s.ftp.SourceFile(s.dir.file("missing")); }), "53 Ostrivane: File not found");
    EXPECT_EQ(FailureOf([&] { s.ftp.SourceFile(""); }), "13 Ostrivane: Type mismatch");
    s.ftp.SourceFile(s.local);
    EXPECT_EQ(s.ftp.SizeOfFile(), 10);
}

}  // namespace
}  // namespace ostrivane
