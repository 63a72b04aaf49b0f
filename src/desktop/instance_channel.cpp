#include "desktop/instance_channel.hpp"

#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <QFile>
#include <QLockFile>
#include <QMetaObject>
#include <QObject>
#include <QSocketNotifier>
#include <QTimer>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <optional>
#include <utility>

#include "desktop/command_frame.hpp"
#include "desktop/entry_point.hpp"
#include "desktop/instance_socket.hpp"
#include "store/data_file.hpp"

namespace ostrivane::desktop {

// One sender being served: its socket, its reader and the frame so far.
struct InstanceChannel::Connection {
    int fd = -1;
    std::unique_ptr<QSocketNotifier> reading;
    FrameReader frame;
    std::chrono::steady_clock::time_point deadline;
    bool Pending() const { return frame.Current() == FrameReader::State::Incomplete; }
};

namespace {

// The answer is one byte, sent once the handler has returned.
constexpr char kHandled = 'A';
constexpr int kSweepMs = 250;







bool SameUser(int fd) {
    ucred peer{};
    socklen_t size = sizeof peer;
    return ::getsockopt(fd, SOL_SOCKET, SO_PEERCRED, &peer, &size) == 0 && peer.uid == ::getuid();
}

}  // namespace

InstanceChannel::InstanceChannel() : context_(std::make_unique<QObject>()) {}

void InstanceChannel::StartSweep() {
    if (!sweep_) {
        sweep_ = std::make_unique<QTimer>();
        QObject::connect(sweep_.get(), &QTimer::timeout, context_.get(), [this] { Sweep(); });
    }
    if (!sweep_->isActive()) sweep_->start(kSweepMs);
}

void InstanceChannel::Sweep() {
    const auto now = std::chrono::steady_clock::now();
    bool waiting = false;
    for (auto it = connections_.begin(); it != connections_.end();) {
        const std::uint64_t id = it->first;
        const Connection& c = *it->second;
        ++it;
        if (!c.Pending()) continue;
        if (now < c.deadline) {
            waiting = true;
            continue;
        }
        Say("a sender whose command did not come within " + std::to_string(kFrameDeadlineMs) + " ms was closed");
        Close(id);
    }
    if (!waiting) sweep_->stop();
}

InstanceChannel::~InstanceChannel() {
    Release();
    while (!connections_.empty()) Close(connections_.begin()->first);
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
        // The oldest sender still short of its frame makes room for the new one.
        const auto pending = [](const auto& entry) { return entry.second->Pending(); };
        if (static_cast<std::size_t>(std::count_if(connections_.begin(), connections_.end(), pending)) >=
            kMaxPendingSenders) {
            Say("more than " + std::to_string(kMaxPendingSenders) + " senders at once: the oldest was closed");
            Close(std::find_if(connections_.begin(), connections_.end(), pending)->first);
        }
        const std::uint64_t id = nextId_++;
        auto connection = std::make_unique<Connection>();
        connection->fd = fd;
        connection->deadline = std::chrono::steady_clock::now() + std::chrono::milliseconds(kFrameDeadlineMs);
        connection->reading = std::make_unique<QSocketNotifier>(fd, QSocketNotifier::Read);
        QObject::connect(connection->reading.get(), &QSocketNotifier::activated, context_.get(),
                         [this, id] { Receive(id, true); });
        connections_.emplace(id, std::move(connection));
        StartSweep();
        // A sender of ours has written its frame already.
        Receive(id, false);
    }
}

void InstanceChannel::Receive(std::uint64_t id, bool fromItsSignal) {
    const auto it = connections_.find(id);
    if (it == connections_.end()) return;
    Connection& c = *it->second;
    char buffer[kMaxCommandBytes];
    // Never more than the frame: what a sender may make this copy hold is bounded.
    while (c.Pending()) {
        const ssize_t n = ::recv(c.fd, buffer, std::min(sizeof buffer, c.frame.Wanted()), 0);
        if (n < 0 && errno == EINTR) continue;
        if (n < 0 && (errno == EAGAIN || errno == EWOULDBLOCK)) return;
        if (n <= 0) {
            Close(id, fromItsSignal);  // the sender left before its text was complete
            return;
        }
        c.frame.Take(std::string_view(buffer, static_cast<std::size_t>(n)));
    }
    if (c.frame.Current() == FrameReader::State::TooLong) {
        Say("a command of " + std::to_string(c.frame.Length()) + " bytes was refused: at most " +
            std::to_string(kMaxCommandBytes) + " are taken");
        Close(id, fromItsSignal);
        return;
    }
    c.reading->setEnabled(false);
    // Handled from the event loop, not from inside the notifier's signal.
    QMetaObject::invokeMethod(
        context_.get(), [this, id, text = c.frame.Text()] { Handle(id, text); }, Qt::QueuedConnection);
}

void InstanceChannel::Handle(std::uint64_t id, const std::string& text) {
    // A box of a command runs the next one inside it; so many nested boxes end the stack.
    if (nested_ >= kMaxNestedCommands) {
        Say("the command \"" + text + "\" was dropped: " + std::to_string(nested_) +
            " commands wait on their boxes already");
    } else if (onCommand_) {
        // A copy: the handler may release the channel, and its handler with it.
        const auto handler = onCommand_;
        ++nested_;
        RunEntryPoint([&handler, &text] { handler(text); });
        --nested_;
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


}  // namespace ostrivane::desktop
