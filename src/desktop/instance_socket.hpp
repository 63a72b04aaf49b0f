// The Qt-free half of the single-instance channel: where its files live and
// how a second start hands its command line over. The launcher uses it
// before any toolkit library is loaded.
#pragma once

#include <sys/un.h>

#include <string>

namespace ostrivane::desktop {

// One line on standard error, behind the program's name.
void Say(const std::string& line);

// Why dir cannot hold the guard; empty when it is a directory of this user
// closed to everyone else.
std::string DirectoryFault(const std::string& dir);

// $XDG_RUNTIME_DIR, or <temp>/ostrivane-<uid> made private; empty when
// neither is a directory of this user closed to everyone else (and then a
// line on standard error says what is wrong with the second).
std::string RuntimeDirectory();

// Names become file names: anything but letters, digits, '.', '-' and '_' is '_'.
std::string FileNameOf(const std::string& name);

bool SendAll(int fd, const std::string& data);

// False when the path does not fit an address.
bool SocketAddress(const std::string& path, sockaddr_un& address);

// True, with a line on standard error, when the command line, trimmed and
// lower-cased, is too long to send.
bool RefuseOverlongCommandLine(const std::string& commandLine);

// Sends text to the copy that owns name and returns once that copy has
// handled it, or has gone away; false when no copy listens or the text is
// too long to send.
bool ForwardToRunningCopy(const std::string& name, const std::string& text);

}  // namespace ostrivane::desktop
