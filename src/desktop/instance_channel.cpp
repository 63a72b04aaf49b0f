#include "desktop/instance_channel.hpp"

#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <QDir>
#include <QFile>
#include <QLockFile>
#include <QMetaObject>
#include <QObject>
#include <QSocketNotifier>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <utility>

#include "desktop/entry_point.hpp"

namespace ostrivane::desktop {

// One sender being served: its socket, its reader and what came so far.
struct InstanceChannel::Connection {
    int fd = -1;
    std::unique_ptr<QSocketNotifier> reading;
    std::string received;
};

namespace {

// A frame is the text's length in four bytes, most significant first, then
// the text; the answer is one byte, sent once the handler has returned.
constexpr std::size_t kLengthBytes = 4;
constexpr char kHandled = 'A';
// A command line is short; anything longer is no sender of ours.
constexpr std::uint32_t kMaxCommandBytes = 1u << 20;

bool PrivateDirectory(const std::string& dir) {
    struct stat info {};
    if (dir.empty() || ::lstat(dir.c_str(), &info) != 0) return false;
    return S_ISDIR(info.st_mode) && info.st_uid == ::getuid() && (info.st_mode & (S_IRWXG | S_IRWXO)) == 0;
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

std::string Frame(const std::string& text) {
    const auto length = static_cast<std::uint32_t>(text.size());
    std::string frame(kLengthBytes, '\0');
    for (std::size_t i = 0; i < kLengthBytes; ++i) {
        frame[i] = static_cast<char>((length >> (8 * (kLengthBytes - 1 - i))) & 0xFFu);
    }
    return frame + text;
}

std::uint32_t LengthOf(const std::string& received) {
    std::uint32_t length = 0;
    for (std::size_t i = 0; i < kLengthBytes; ++i) length = (length << 8) | static_cast<unsigned char>(received[i]);
    return length;
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

bool SameUser(int fd) {
    ucred peer{};
    socklen_t size = sizeof peer;
    return ::getsockopt(fd, SOL_SOCKET, SO_PEERCRED, &peer, &size) == 0 && peer.uid == ::getuid();
}

}  // namespace

InstanceChannel::InstanceChannel() : context_(std::make_unique<QObject>()) {}

InstanceChannel::~InstanceChannel() {
    Release();
    while (!connections_.empty()) Close(connections_.begin()->first);
}

std::string InstanceChannel::RuntimeDirectory() {
    const char* runtime = std::getenv("XDG_RUNTIME_DIR");
    if (runtime != nullptr && PrivateDirectory(runtime)) return runtime;
    const std::string dir = QDir::tempPath().toStdString() + "/ostrivane-" + std::to_string(::getuid());
    if (::mkdir(dir.c_str(), S_IRWXU) != 0 && errno != EEXIST) return {};
    // A directory of that name that someone else made, or opened up, is not used.
    return PrivateDirectory(dir) ? dir : std::string();
}

bool InstanceChannel::Acquire(const std::string& name) {
    if (lock_) return name == name_;
    const std::string dir = RuntimeDirectory();
    if (dir.empty()) return false;
    const QString lockPath = QString::fromLocal8Bit((dir + "/" + FileNameOf(name) + ".lock").c_str());
    auto lock = std::make_unique<QLockFile>(lockPath);
    // Stale means only that the owner's process is gone: a copy may run for weeks.
    lock->setStaleLockTime(0);
    if (!lock->tryLock(0)) return false;
    QFile::setPermissions(lockPath, QFileDevice::ReadOwner | QFileDevice::WriteOwner);
    lock_ = std::move(lock);
    name_ = name;
    socketPath_ = dir + "/" + FileNameOf(name) + ".socket";
    // A socket left behind by a copy that died would refuse the bind.
    ::unlink(socketPath_.c_str());
    return true;
}

void InstanceChannel::Release() {
    if (listening_) {
        listening_->setEnabled(false);
        listening_.reset();
    }
    if (listenFd_ >= 0) {
        ::close(listenFd_);
        listenFd_ = -1;
        ::unlink(socketPath_.c_str());
    }
    if (lock_) {
        lock_->unlock();
        lock_.reset();
    }
    onCommand_ = nullptr;
}

void InstanceChannel::Listen(std::function<void(const std::string&)> onCommand) {
    onCommand_ = std::move(onCommand);
    if (!lock_ || listenFd_ >= 0) return;
    sockaddr_un address{};
    if (!SocketAddress(socketPath_, address)) return;
    const int fd = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
    if (fd < 0) return;
    if (::bind(fd, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0 ||
        ::chmod(socketPath_.c_str(), S_IRUSR | S_IWUSR) != 0 || ::listen(fd, 16) != 0) {
        ::close(fd);
        return;
    }
    listenFd_ = fd;
    listening_ = std::make_unique<QSocketNotifier>(fd, QSocketNotifier::Read);
    QObject::connect(listening_.get(), &QSocketNotifier::activated, context_.get(), [this] { Accept(); });
}

void InstanceChannel::Accept() {
    for (;;) {
        const int fd = ::accept4(listenFd_, nullptr, nullptr, SOCK_CLOEXEC | SOCK_NONBLOCK);
        if (fd < 0) {
            if (errno == EINTR) continue;
            return;  // EAGAIN: all taken; anything else: try at the next wake-up
        }
        if (!SameUser(fd)) {
            ::close(fd);
            continue;
        }
        const std::uint64_t id = nextId_++;
        auto connection = std::make_unique<Connection>();
        connection->fd = fd;
        connection->reading = std::make_unique<QSocketNotifier>(fd, QSocketNotifier::Read);
        QObject::connect(connection->reading.get(), &QSocketNotifier::activated, context_.get(),
                         [this, id] { Receive(id); });
        connections_.emplace(id, std::move(connection));
    }
}

void InstanceChannel::Receive(std::uint64_t id) {
    const auto it = connections_.find(id);
    if (it == connections_.end()) return;
    Connection& c = *it->second;
    char buffer[4096];
    for (;;) {
        const ssize_t n = ::recv(c.fd, buffer, sizeof buffer, 0);
        if (n < 0 && errno == EINTR) continue;
        if (n < 0 && (errno == EAGAIN || errno == EWOULDBLOCK)) break;
        if (n <= 0) {
            Close(id, true);  // the sender left before its text was complete
            return;
        }
        c.received.append(buffer, static_cast<std::size_t>(n));
    }
    if (c.received.size() < kLengthBytes) return;
    const std::uint32_t length = LengthOf(c.received);
    if (length > kMaxCommandBytes) {
        Close(id, true);
        return;
    }
    if (c.received.size() < kLengthBytes + length) return;
    c.reading->setEnabled(false);
    std::string text = c.received.substr(kLengthBytes, length);
    // Handled from the event loop, not from inside the notifier's signal.
    QMetaObject::invokeMethod(
        context_.get(), [this, id, text = std::move(text)] { Handle(id, text); }, Qt::QueuedConnection);
}

void InstanceChannel::Handle(std::uint64_t id, const std::string& text) {
    if (onCommand_) {
        // A copy: the handler may release the channel, and its handler with it.
        const auto handler = onCommand_;
        RunEntryPoint([&handler, &text] { handler(text); });
    }
    // The handler may have held a box open for long; the sender may be gone.
    const auto it = connections_.find(id);
    if (it == connections_.end()) return;
    SendAll(it->second->fd, std::string(1, kHandled));
    Close(id);
}

void InstanceChannel::Close(std::uint64_t id, bool fromItsSignal) {
    const auto it = connections_.find(id);
    if (it == connections_.end()) return;
    std::unique_ptr<Connection> c = std::move(it->second);
    connections_.erase(it);
    c->reading->setEnabled(false);
    // A notifier whose signal is running is left to the loop to delete.
    if (fromItsSignal) c->reading.release()->deleteLater();
    ::close(c->fd);
}

void InstanceChannel::Forward(const std::string& name, const std::string& text) {
    const std::string dir = RuntimeDirectory();
    sockaddr_un address{};
    if (dir.empty() || !SocketAddress(dir + "/" + FileNameOf(name) + ".socket", address)) return;
    const int fd = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    if (fd < 0) return;
    int rc = 0;
    do {
        rc = ::connect(fd, reinterpret_cast<const sockaddr*>(&address), sizeof address);
    } while (rc != 0 && errno == EINTR);
    if (rc == 0 && SendAll(fd, Frame(text))) {
        // No time limit: the handler there may hold a box open for as long as
        // the user likes. A copy that dies closes the socket, which ends the wait.
        char answer = 0;
        ssize_t n = 0;
        do {
            n = ::recv(fd, &answer, 1, 0);
        } while (n < 0 && errno == EINTR);
    }
    ::close(fd);
}

}  // namespace ostrivane::desktop
