#include "desktop/instance_socket.hpp"

#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <optional>
#include <utility>

#include "desktop/command_frame.hpp"
#include "lib/text.hpp"
#include "store/data_file.hpp"

namespace ostrivane::desktop {

namespace {

bool PrivateDirectory(const std::string& dir) { return !dir.empty() && DirectoryFault(dir).empty(); }

// $TMPDIR or /tmp, cleaned of trailing slashes, as the toolkit gives its temp path.
std::string TempPath() {
    const char* tmp = std::getenv("TMPDIR");
    std::string path = tmp != nullptr && *tmp != '\0' ? tmp : "/tmp";
    while (path.size() > 1 && path.back() == '/') path.pop_back();
    return path;
}

}  // namespace

void Say(const std::string& line) { std::fprintf(stderr, "%s: %s\n", ExecutableBaseName().c_str(), line.c_str()); }

// Why dir cannot hold the guard; empty when it is a directory of this user closed to everyone else.
std::string DirectoryFault(const std::string& dir) {
    struct stat info {};
    if (::lstat(dir.c_str(), &info) != 0) return std::strerror(errno);
    if (!S_ISDIR(info.st_mode)) return "it is no directory";
    if (info.st_uid != ::getuid())
        return "it belongs to user " + std::to_string(info.st_uid) + ", not to user " + std::to_string(::getuid());
    if ((info.st_mode & (S_IRWXG | S_IRWXO)) != 0) {
        char mode[8];
        std::snprintf(mode, sizeof mode, "%04o", static_cast<unsigned>(info.st_mode & 07777));
        return std::string("it is open to others (mode ") + mode + ")";
    }
    return {};
}

std::string RuntimeDirectory() {
    const char* runtime = std::getenv("XDG_RUNTIME_DIR");
    if (runtime != nullptr && PrivateDirectory(runtime)) return runtime;
    const std::string dir = TempPath() + "/ostrivane-" + std::to_string(::getuid());
    // A directory of that name that someone else made, or opened up, is not used.
    std::string fault = ::mkdir(dir.c_str(), S_IRWXU) != 0 && errno != EEXIST ? std::strerror(errno)
                                                                               : DirectoryFault(dir);
    if (fault.empty()) return dir;
    // The copy then takes itself for a second one; the box cannot say why.
    static bool said = false;
    if (!std::exchange(said, true)) Say(dir + " cannot hold the single-instance guard: " + fault);
    return {};
}

// Names become file names: anything but letters, digits, '.', '-' and '_' is '_'.
std::string FileNameOf(const std::string& name) {
    std::string out = name.empty() ? std::string("instance") : name;
    for (char& c : out) {
        const bool plain = (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '.' ||
                           c == '-' || c == '_';
        if (!plain) c = '_';
    }
    if (out[0] == '.') out[0] = '_';
    return out;
}

bool SocketAddress(const std::string& path, sockaddr_un& address) {
    address = {};
    address.sun_family = AF_UNIX;
    if (path.size() >= sizeof address.sun_path) return false;
    std::memcpy(address.sun_path, path.c_str(), path.size() + 1);
    return true;
}

bool SendAll(int fd, const std::string& data) {
    std::size_t sent = 0;
    while (sent < data.size()) {
        const ssize_t n = ::send(fd, data.data() + sent, data.size() - sent, MSG_NOSIGNAL);
        if (n < 0 && errno == EINTR) continue;
        if (n <= 0) return false;
        sent += static_cast<std::size_t>(n);
    }
    return true;
}

bool RefuseOverlongCommandLine(const std::string& commandLine) {
    const std::string text = LCase(Trim(commandLine));
    if (FitsFrame(text)) return false;
    Say("a command line of " + std::to_string(text.size()) + " characters was refused: at most " +
        std::to_string(kMaxCommandBytes) + " are taken");
    return true;
}

bool ForwardToRunningCopy(const std::string& name, const std::string& text) {
    const std::optional<std::string> frame = EncodeFrame(text);
    const std::string dir = RuntimeDirectory();
    sockaddr_un address{};
    if (!frame || dir.empty() || !SocketAddress(dir + "/" + FileNameOf(name) + ".socket", address)) return false;
    const int fd = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    if (fd < 0) return false;
    int rc = 0;
    do {
        rc = ::connect(fd, reinterpret_cast<const sockaddr*>(&address), sizeof address);
    } while (rc != 0 && errno == EINTR);
    if (rc == 0 && SendAll(fd, *frame)) {
        // No time limit: the handler there may hold a box open for as long as
        // the user likes. A copy that dies closes the socket, which ends the wait.
        char answer = 0;
        ssize_t n = 0;
        do {
            n = ::recv(fd, &answer, 1, 0);
        } while (n < 0 && errno == EINTR);
    }
    ::close(fd);
    return rc == 0;
}

}  // namespace ostrivane::desktop
