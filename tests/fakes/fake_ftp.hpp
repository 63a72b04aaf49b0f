// A scripted FTP server behind the fake transport: directories and files by
// absolute path, one working directory, and the answer to the last refused
// command. The calls log as the commands a server would see.
#pragma once

#include <set>

#include "fakes/fake_internet.hpp"
#include "support/temp_dir.hpp"

namespace ostrivane::fakes {

class FakeFtp : public FakeInternet {
public:
    std::set<std::string> directories{"/"};
    std::map<std::string, std::string> files;
    std::string cwd = "/";
    bool loginRefused = false;
    std::uint32_t cwdError = ERROR_INTERNET_EXTENDED_ERROR;  // what a refused CWD leaves
    std::size_t chunk = 4096;

    InternetHandle Connect(InternetHandle s, std::string_view host, std::uint16_t port, std::string_view user,
                           std::string_view password, std::int32_t service, std::uint32_t flags) override {
        const InternetHandle h = FakeInternet::Connect(s, host, port, user, password, service, flags);
        if (loginRefused) return Refuse("530 Login incorrect.", 12015), 0;
        return h;
    }
    bool FtpSetCurrentDirectory(InternetHandle, std::string_view dir) override {
        Log("CWD " + std::string(dir));
        if (!directories.count(Path(dir))) return Refuse("550 " + std::string(dir) + ": No such directory.", cwdError);
        return cwd = Path(dir), true;
    }
    bool FtpCreateDirectory(InternetHandle, std::string_view dir) override {
        Log("MKD " + std::string(dir));
        return directories.insert(Path(dir)).second || Refuse("550 Exists.");
    }
    bool FtpDeleteFile(InternetHandle, std::string_view name) override {
        Log("DELE " + std::string(name));
        return files.erase(Path(name)) == 1 || Refuse("550 " + std::string(name) + ": No such file.");
    }
    bool FtpPutFile(InternetHandle, std::string_view local, std::string_view name, std::uint32_t flags) override {
        Log("STOR " + std::string(local) + " " + std::string(name) + " " + Hex(flags));
        if (directories.count(Path(name))) return Refuse("553 " + std::string(name) + ": Is a directory.");
        return files[Path(name)] = ReadBytes(std::string(local)), true;
    }
    InternetHandle FtpOpenFile(InternetHandle, std::string_view name, std::uint32_t access, std::uint32_t flags) override {
        Log("RETR " + std::string(name) + " " + Hex(access) + " " + Hex(flags));
        const auto it = files.find(Path(name));
        if (it == files.end()) return Refuse("550 Not found."), 0;
        return Add(Open{FakeReply{std::nullopt, it->second, std::nullopt, chunk}, 0});
    }
    std::uint32_t GetLastError() override { return lastError_; }
    std::string LastResponseInfo() override { return response_; }

private:
    std::uint32_t lastError_ = 0;
    std::string response_;

    bool Refuse(std::string reply, std::uint32_t error = ERROR_INTERNET_EXTENDED_ERROR) {
        response_ = std::move(reply);
        lastError_ = error;
        return false;
    }
    std::string Path(std::string_view name) const {
        if (name.starts_with('/')) return std::string(name);
        return (cwd == "/" ? "/" : cwd + "/") + std::string(name);
    }
};

}  // namespace ostrivane::fakes
