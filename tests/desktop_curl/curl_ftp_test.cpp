// The FTP client on the libcurl transport against a local server
// (tests/net/ftp_server.py): user "ann" may write, anonymous may read.
#include <gtest/gtest.h>
#include <signal.h>

#include <chrono>
#include <thread>

#include "desktop/curl_ftp.hpp"
#include "desktop/curl_transport.hpp"
#include "fakes/fake_window_system.hpp"
#include "net/ftp_client.hpp"
#include "support/run_time_error.hpp"
#include "support/temp_dir.hpp"

namespace ostrivane {
namespace {

// The server on a port of its choosing; Kill ends it at once, as a crash would.
struct FtpServer {
    std::FILE* pipe;
    int port = 0, pid = 0;
    explicit FtpServer(const std::string& root, const std::string& bytesPerSecond = "0")
        : pipe(popen(("exec /usr/bin/python3 " OSTRIVANE_FTP_SERVER " " + root + " " + bytesPerSecond).c_str(), "r")) {
        if (pipe && std::fscanf(pipe, "%d %d", &port, &pid) == 2) desktop::SetFtpServicePort(static_cast<std::uint16_t>(port));
    }
    ~FtpServer() { Kill(); }
    void Kill() {
        if (pid > 0) kill(pid, SIGKILL);
        if (pipe) pclose(pipe);
        pid = 0, pipe = nullptr;
    }
};

struct LiveFtp : ::testing::Test {
    TempDir dir;
    std::string root = dir.file("root");
    std::string local = dir.file("up.bin");
    std::string content = std::string(300000, 'a') + "end";
    fakes::FakeWindowSystem windows;
    LiveFtp() {
        std::filesystem::create_directories(root + "/pub");
        WriteBytes(local, content);
        WriteBytes(root + "/pub/ten.bin", "0123456789");
    }
};

TEST_F(LiveFtp, SendFetchDeleteAndTheServersRefusals) {
    FtpServer server(root);
    ASSERT_NE(server.port, 0);
    desktop::CurlTransport transport;
    enum Op { kSend, kFetch, kDelete };
    const struct { const char *user, *password; Op op; const char* url; const char* destination; bool autoCreate;
                   std::string failure; } rows[] = {
        {"ann", "secret", kSend, "ftp://127.0.0.1/", "/pub/new/deep/up.bin", true, "no error"},
        {nullptr, nullptr, kFetch, "ftp://127.0.0.1/pub/new/deep/up.bin", "down.bin", false, "no error"},
        {nullptr, nullptr, kFetch, "ftp://127.0.0.1:1/pub/ten.bin", "ten.bin", false, "no error"},
        {nullptr, nullptr, kFetch, "ftp://127.0.0.1/pub/none.bin", "none.bin", false,
         ObjectFailure(5000, "FTP::ConnectToFTPHost: Cannot start file transfer from '127.0.0.1'.")},
        {nullptr, nullptr, kSend, "ftp://127.0.0.1/", "/pub/anon.bin", false,
         ObjectFailure(2215, "FTP::UploadFileToFTPServer: 550 Not enough privileges.")},
        {"ann", "secret", kSend, "ftp://127.0.0.1/", "/pub/gone/up.bin", false,
         ObjectFailure(9999, "FTP::UploadFileToFTPServer: 550 No such file or directory.")},
        {"ann", "secret", kDelete, "ftp://127.0.0.1/", "pub/new/deep/up.bin", false, "no error"},
        {"ann", "secret", kDelete, "ftp://127.0.0.1/", "pub/new/deep/up.bin", false,
         ObjectFailure(2215, "FTP::DeleteFileFromFTPServer: 550 No such file or directory.")},
        {"ann", "bad", kDelete, "ftp://127.0.0.1/", "x", false,
         ObjectFailure(4001, "FTP::ConnectToFTPHost: Couldn't connect to server '127.0.0.1'.")},
    };
    for (const auto& row : rows) {
        lib_clsFTP ftp(transport, windows);
        ftp.FtpURL(row.url);
        ftp.AutoCreateRemoteDir(row.autoCreate);
        EXPECT_EQ(FailureOf([&] {
            row.user ? ftp.ConnectToFTPHost(row.user, row.password) : ftp.ConnectToFTPHost();
            if (row.op == kSend) ftp.SourceFile(local);
            ftp.DestinationFile(row.op == kFetch ? dir.file(row.destination) : row.destination);
            if (row.op == kSend) ftp.UploadFileToFTPServer();
            if (row.op == kFetch) ftp.WriteFTPDataToFile();
            if (row.op == kDelete) ftp.DeleteFileFromFTPServer();
        }), row.failure) << row.url << " " << row.destination;
    }
    EXPECT_EQ(ReadBytes(dir.file("down.bin")), content);
    EXPECT_EQ(ReadBytes(dir.file("ten.bin")), "0123456789");
    EXPECT_FALSE(std::filesystem::exists(root + "/pub/new/deep/up.bin"));
    EXPECT_EQ(transport.GetLastError(), 12003u);
    EXPECT_EQ(transport.LastResponseInfo(), "530 Authentication failed.");

    lib_clsFTP finder(transport, windows);
    finder.FtpURL("ftp://127.0.0.1/");
    finder.ConnectToFTPHost();
    const std::pair<const char*, bool> names[] = {{"/pub/ten.bin", true}, {"/pub/t*.bin", true}, {"ten.bin", false},
                                                  {"/pub/none.bin", false}, {"/gone/ten.bin", false}};
    for (const auto& [name, there] : names) EXPECT_EQ(finder.FTPFileExists(name), there) << name;
    // A file left open when its connection closes ends with it.
    const InternetHandle c = transport.Connect(1, "127.0.0.1", 0, "", "", INTERNET_SERVICE_FTP, INTERNET_FLAG_PASSIVE);
    const InternetHandle file = transport.FtpOpenFile(c, "/pub/ten.bin", GENERIC_READ, 0);
    transport.CloseHandle(c);
    char byte = 0;
    EXPECT_EQ(std::pair(file > c, transport.ReadFile(file, &byte, 1).bytes), std::pair(true, std::size_t{0}));
    server.Kill();
    EXPECT_EQ(FailureOf([&] { finder.ConnectToFTPHost(); }),
              ObjectFailure(4001, "FTP::ConnectToFTPHost: Couldn't connect to server '127.0.0.1'."));
    EXPECT_FALSE(finder.FTPFileExists("/pub/ten.bin"));
}

// The call ends with what came.
TEST_F(LiveFtp, AServerKilledMidwayEndsTheDownload) {
    WriteBytes(root + "/pub/big.bin", std::string(4 << 20, 'b'));
    FtpServer server(root, "200000");
    desktop::CurlTransport transport;
    lib_clsFTP slow(transport, windows);
    slow.FtpURL("ftp://127.0.0.1/pub/big.bin");
    slow.ConnectToFTPHost();
    slow.DestinationFile(dir.file("big.bin"));
    std::thread killer([&] { std::this_thread::sleep_for(std::chrono::milliseconds(500)), server.Kill(); });
    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(FailureOf([&] { slow.WriteFTPDataToFile(); }), "no error");
    killer.join();
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(5));
    const auto size = std::filesystem::file_size(dir.file("big.bin"));
    EXPECT_GT(size, 0u);
    EXPECT_LT(size, 4u << 20);
}

}  // namespace
}  // namespace ostrivane
