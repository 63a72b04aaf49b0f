// The single-instance guard and the carrier of a second start's command
// line: a lock file and a local socket in the user's runtime directory,
// both reachable by this user only. The first copy holds the lock and
// listens; a second copy sends its text and waits until the first copy's
// handler has finished with it.
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <string>

class QLockFile;
class QObject;
class QSocketNotifier;
class QTimer;

namespace ostrivane::desktop {

class InstanceChannel {
public:
    InstanceChannel();
    ~InstanceChannel();
    InstanceChannel(const InstanceChannel&) = delete;
    InstanceChannel& operator=(const InstanceChannel&) = delete;

    // True when this copy now owns the name. A lock left by a copy that died
    // is taken over. Without a usable private directory nothing can be
    // owned, and the answer is false.
    bool Acquire(const std::string& name);
    // Gives the name back: no more listening, the lock is free. A command
    // being handled still gets its answer.
    void Release();
    // Takes commands sent by later starts; each is handed to onCommand on
    // this (the GUI) thread, and its sender is answered only afterwards.
    // The limits of command_frame.hpp hold: a frame too long, too slow, one
    // sender too many or one command nested too deep is refused with a line
    // on standard error.
    // Needs the name to be owned; a second call replaces the handler.
    void Listen(std::function<void(const std::string&)> onCommand);

private:
    struct Connection;

    void Accept();
    void Receive(std::uint64_t id, bool fromItsSignal);
    void Handle(std::uint64_t id, const std::string& text);
    void Close(std::uint64_t id, bool fromItsSignal = false);
    // Closes the senders past their deadline, while any are pending.
    void StartSweep();
    void Sweep();

    std::string name_;
    std::string socketPath_;
    std::unique_ptr<QLockFile> lock_;
    int listenFd_ = -1;
    std::unique_ptr<QSocketNotifier> listening_;
    std::function<void(const std::string&)> onCommand_;
    std::map<std::uint64_t, std::unique_ptr<Connection>> connections_;
    std::uint64_t nextId_ = 1;
    std::unique_ptr<QTimer> sweep_;
    int nested_ = 0;  // commands whose handler is running
    // Context of the queued handler calls; they die with the channel.
    std::unique_ptr<QObject> context_;
};

}  // namespace ostrivane::desktop
