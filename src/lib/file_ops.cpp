#include "lib/file_ops.hpp"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <optional>
#include <random>
#include <system_error>

#include "dialogs/message_box.hpp"
#include "lib/error_handler.hpp"
#include "lib/errors.hpp"
#include "lib/file_finder.hpp"
#include "lib/file_test.hpp"
#include "lib/path_basics.hpp"
#include "lib/strings.hpp"
#include "lib/text.hpp"
#include "platform/desktop.hpp"
#include "platform/trash.hpp"

namespace ostrivane {

std::string lib_CopyTempPath;
std::int32_t lib_CopyCancel = 0;

namespace {

namespace fs = std::filesystem;

constexpr char kLostNetworkName[] = "The specified network name is no longer available.";
constexpr std::int32_t kFileOpError = kObjectErrorBase + 1000;

int lastError = 0;

bool Fail() {
    lastError = errno;
    return false;
}

std::string TracedDetail(const std::string& source, const std::string& target) {
    return "Src:" + source + "\r\nTgt:" + target;
}

bool Exists(const std::string& path) {
    std::error_code ec;
    return fs::exists(fs::symlink_status(path, ec));
}

bool HasWildcard(const std::string& path) { return path.find_first_of("*?") != std::string::npos; }

std::string FileNameOf(const std::string& path) {
    const std::size_t slash = path.rfind('/');
    return slash == std::string::npos ? path : path.substr(slash + 1);
}

std::string FolderOf(const std::string& path) {
    const std::size_t slash = path.rfind('/');
    if (slash == std::string::npos) return std::string();
    return slash == 0 ? std::string("/") : path.substr(0, slash);
}

// The file system that holds an absolute path: that of the path, or of its
// nearest existing parent. A relative path has none.
std::optional<dev_t> VolumeOf(const std::string& path) {
    if (!path.starts_with('/')) return std::nullopt;
    for (fs::path at(path);; at = at.parent_path()) {
        struct stat info {};
        if (::stat(at.c_str(), &info) == 0) return info.st_dev;
        if (at == at.parent_path()) return std::nullopt;
    }
}

std::string Unescaped(const std::string& field) {
    std::string out;
    for (std::size_t i = 0; i < field.size(); ++i) {
        if (field[i] == '\\' && i + 3 < field.size()) {
            out.push_back(static_cast<char>(std::stoi(field.substr(i + 1, 3), nullptr, 8)));
            i += 3;
        } else {
            out.push_back(field[i]);
        }
    }
    return out;
}

// "/" and every mount point: the roots of file systems, which are never deleted.
bool IsVolumeRoot(const std::string& path) {
    std::error_code ec;
    const fs::path canonical = fs::weakly_canonical(path, ec);
    if (path.find_first_not_of('/') == std::string::npos || (!ec && canonical == "/")) return true;
    struct stat self {}, parent {};
    if (::stat(path.c_str(), &self) != 0) return false;
    if (::stat((path + "/..").c_str(), &parent) != 0) return false;
    if (self.st_dev != parent.st_dev || self.st_ino == parent.st_ino) return true;
    std::ifstream mounts("/proc/self/mounts");
    for (std::string device, target, rest; mounts >> device >> target && std::getline(mounts, rest);) {
        if (!ec && Unescaped(target) == canonical.string()) return true;
    }
    return false;
}

// The shell's deletion: 0 done, 2 nothing there, 1 failed. To the trash when
// asked; a volume without one deletes for good.
int ShellDelete(const std::string& path, bool recycle) {
    if (!Exists(path)) return 2;
    if (recycle && lib_AttachedTrash() != nullptr) lib_AttachedTrash()->MoveToTrash(path);
    std::error_code ec;
    if (Exists(path)) fs::remove_all(path, ec);
    return Exists(path) ? 1 : 0;
}

// The platform's copy: every byte into a new file of the source's mode.
bool CopyBytes(const std::string& source, const std::string& target, CopyProgress progress) {
    const int in = ::open(source.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    if (in < 0) return Fail();
    struct stat info {};
    const bool statFailed = ::fstat(in, &info) != 0;
    if (statFailed || !S_ISREG(info.st_mode)) {
        if (!statFailed) errno = S_ISDIR(info.st_mode) ? EISDIR : EINVAL;
        Fail();
        ::close(in);
        return false;
    }
    const int out = ::open(target.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, info.st_mode & 07777);
    if (out < 0) {
        Fail();
        ::close(in);
        return false;
    }
    bool ok = true;
    char buffer[65536];
    std::uint64_t copied = 0;
    for (;;) {
        const ssize_t got = ::read(in, buffer, sizeof buffer);
        if (got == 0) break;
        if (got < 0) {
            if (errno == EINTR) continue;
            ok = Fail();
            break;
        }
        for (ssize_t done = 0; ok && done < got;) {
            const ssize_t put = ::write(out, buffer + done, static_cast<std::size_t>(got - done));
            if (put < 0 && errno != EINTR) ok = Fail();
            if (put > 0) done += put;
        }
        copied += static_cast<std::uint64_t>(got);
        if (ok && (lib_CopyCancel != 0 ||
                   (progress != nullptr && !progress(copied, static_cast<std::uint64_t>(info.st_size))))) {
            errno = ECANCELED;
            ok = Fail();
        }
        if (!ok) break;
    }
    // The copy stands whole on disk before the old target may go.
    if (ok && ::fsync(out) != 0) ok = Fail();
    if (::close(out) != 0 && ok) ok = Fail();
    ::close(in);
    return ok;
}

// The platform's move on one volume: fails when the target exists.
bool RenameNoReplace(const std::string& source, const std::string& target) {
    if (::renameat2(AT_FDCWD, source.c_str(), AT_FDCWD, target.c_str(), RENAME_NOREPLACE) == 0) return true;
    if (errno != EINVAL && errno != ENOSYS) return Fail();
    if (Exists(target)) {
        errno = EEXIST;
        return Fail();
    }
    return std::rename(source.c_str(), target.c_str()) == 0 || Fail();
}

bool RemoveFile(const std::string& path) { return ::unlink(path.c_str()) == 0 || Fail(); }

// The runtime's rename raises when the new name cannot be taken.
[[noreturn]] void RaiseRenameError(int error) {
    Raise(error == ENOENT                                            ? kFileNotFound
          : error == EEXIST || error == EISDIR || error == ENOTEMPTY ? kFileAlreadyExists
                                                                     : kPathFileAccessError);
}

[[noreturn]] void RaiseFileError(const std::string& source, const std::string& description) {
    Raise(kFileOpError, source, description);
}

bool CopyOne(Desktop& desktop, const std::string& source, const std::string& target, bool overWrite,
             CopyProgress progress, std::int16_t retries) {
    std::string found;
    if (lib_FileExists(target, found, true) && !overWrite) return false;
    FileTimes times;
    lib_GetFileTimes(source, times);
    lib_CopyTempPath = lib_TempFileName(target);
    lib_CopyCancel = 0;
    for (int tries = 0; !CopyBytes(source, lib_CopyTempPath, progress);) {
        const std::string text = lib_LastErrorText();
        RemoveFile(lib_CopyTempPath);
        if (text == kLostNetworkName && ++tries <= retries) {
            lib_Sleep(desktop, 5000, true);
            continue;
        }
        const std::string temp = lib_CopyTempPath;
        lib_CopyTempPath.clear();
        RaiseFileError("Vexil.lib_CopyFile",
                       "Failed to copy file\r\n" + text + "\r\nSrc=" + source + "\r\nTgt=" + temp);
    }
    if (!lib_KillFile(target, false)) {
        RemoveFile(lib_CopyTempPath);
        lib_CopyTempPath.clear();
        RaiseFileError("Vexil.lib_CopyFile", "Failed to copy file\r\nCould not delete existing target file");
    }
    // The source still stands when the new name cannot be taken; no stray copy is left.
    if (std::rename(lib_CopyTempPath.c_str(), target.c_str()) != 0) {
        const int error = errno;
        RemoveFile(lib_CopyTempPath);
        lib_CopyTempPath.clear();
        RaiseRenameError(error);
    }
    lib_CopyTempPath.clear();
    if (!lib_FileExists(target, found, true)) return false;
    lib_SetFileTimes(target, times, true);
    return true;
}

bool MoveOne(Desktop& desktop, const std::string& source, const std::string& target, bool overWrite,
             bool askRetry, std::int16_t retries) {
    const std::optional<dev_t> sourceVolume = VolumeOf(source), targetVolume = VolumeOf(target);
    if (sourceVolume != targetVolume && targetVolume) {
        std::string error;
        if (!lib_CopyFile(desktop, source, target, overWrite, askRetry, nullptr, retries, error)) return false;
        return lib_KillFile(source, false);
    }
    std::string found, temp;
    if (lib_FileExists(target, found, true)) {
        if (!overWrite) return false;
        temp = lib_TempFileName(target);
        if (std::rename(target.c_str(), temp.c_str()) != 0) RaiseRenameError(errno);
    }
    for (int tries = 0; !RenameNoReplace(source, target);) {
        const std::string text = lib_LastErrorText();
        if (text == kLostNetworkName && ++tries <= retries) {
            lib_Sleep(desktop, 5000, true);
            continue;
        }
        if (!temp.empty()) std::rename(temp.c_str(), target.c_str());
        RaiseFileError("Vexil.lib_MoveFile",
                       "Failed to move file\r\n" + text + "\r\nSrc=" + source + "\r\nTgt=" + temp);
    }
    if (!temp.empty() && !lib_KillFile(temp, false)) {
        RaiseFileError("Vexil.lib_MoveFile", "Failed to kill replaced target file after move\r\n" + temp);
    }
    return true;
}

// The names of a copy or a move: each file a wildcard matches, into the
// target folder, or the one source with its completed target.
template <class One>
bool ForEachMatch(const std::string& source, const std::string& target, One&& one) {
    if (HasWildcard(source)) {
        const std::string folder = FolderOf(source);
        lib_clsFindFiles finder;
        if (!finder.FindFirstFile(FileNameOf(source), folder, false)) return false;
        bool result = true;
        do {
            const std::string from = lib_JoinPath(folder, finder.File(), true);
            const std::string to = lib_JoinPath(target, finder.File(), true);
            result = (from != to && one(from, to)) && result;
        } while (finder.FindNextFile());
        return result;
    }
    std::string to = target;
    if (to.ends_with('/')) {
        to += FileNameOf(source);
    } else if (to.find('/') == std::string::npos) {
        to = lib_JoinPath(FolderOf(source), to, true);
    }
    return source != to && one(source, to);
}

}  // namespace

std::string lib_LastErrorText() {
    switch (lastError) {
        case ESTALE:
        case ENOTCONN:
        case EHOSTDOWN:
        case EHOSTUNREACH:
        case ENETDOWN:
        case ENETUNREACH:
        case ECONNRESET: return kLostNetworkName;
        default: return std::generic_category().message(lastError);
    }
}

std::string lib_TempFileName(const std::string& target) {
    std::mt19937 generator(static_cast<std::mt19937::result_type>(
        std::chrono::steady_clock::now().time_since_epoch().count()));
    const int first = static_cast<int>(generator() % 100);
    // From a random start through all hundred, so that a full set ends the search.
    for (int i = 0; i < 100; ++i) {
        const int n = (first + i) % 100;
        const std::string candidate = target + "~" + (n < 10 ? "0" : "") + std::to_string(n);
        if (candidate != target && !Exists(candidate)) return candidate;
    }
    Raise(kFileAlreadyExists);
}

bool lib_CopyFile(Desktop& desktop, const std::string& pstrSource, const std::string& pstrTarget,
                  bool pblnOverWrite, bool /*pblnAskRetry*/, CopyProgress plngProgress, std::int16_t pintRetries,
                  std::string& pstrError) {
    try {
        return lib_RunTraced("Vexil.lib_CopyFile", TracedDetail(pstrSource, pstrTarget), [&] {
            return ForEachMatch(pstrSource, pstrTarget, [&](const std::string& from, const std::string& to) {
                return CopyOne(desktop, from, to, pblnOverWrite, plngProgress, pintRetries);
            });
        });
    } catch (const RuntimeError& error) {
        pstrError = error.description();
        throw;
    }
}

bool lib_MoveFile(Desktop& desktop, const std::string& pstrSource, const std::string& pstrTarget,
                  bool pblnOverWrite, bool pblnAskRetry, std::int16_t pintRetries) {
    return lib_RunTraced("Vexil.lib_MoveFile", TracedDetail(pstrSource, pstrTarget), [&] {
        return ForEachMatch(pstrSource, pstrTarget, [&](const std::string& from, const std::string& to) {
            return MoveOne(desktop, from, to, pblnOverWrite, pblnAskRetry, pintRetries);
        });
    });
}

bool lib_Deltree(Desktop& desktop, const std::string& pstrDir, bool pblnWalk, std::int16_t pintMsgValue,
                 bool pblnNoRecycle) {
    std::string path = Trim(pstrDir);
    if (!path.starts_with('/') || lib_GetDriveOrShare(path, true).empty()) {
        lib_ShowCritical(desktop, "Directory " + pstrDir + " invalid (either no drive,share or dir specified)",
                         pintMsgValue);
        return false;
    }
    if (IsVolumeRoot(path)) {
        lib_ShowCritical(desktop, "Directory " + pstrDir + " invalid (drive root not allowed)", pintMsgValue);
        return false;
    }
    if (path.ends_with('/')) path.pop_back();
    const bool recycle = !pblnNoRecycle;
    if (!path.starts_with("//") && !pblnWalk) return ShellDelete(path, recycle) == 0;
    bool result = true;
    try {
        lib_clsFindFiles finder;
        finder.SearchType(kFindFilesAndDirs);
        for (bool found = finder.FindFirstFile("*", path, false); found; found = finder.FindNextFile()) {
            const std::string item = finder.FullFile();
            std::error_code ec;
            if (finder.IsDir() || fs::is_symlink(fs::symlink_status(item, ec))) {
                const int code = ShellDelete(item, recycle);
                result = (code == 0 || code == 2) && result;
            } else {
                result = lib_KillFile(item, pblnNoRecycle) && result;
            }
        }
    } catch (const RuntimeError& error) {
        lib_ErrorHandler("lib_Deltree", error.number(), error.description(), true, pstrDir, pintMsgValue);
        return false;
    }
    return result;
}

bool lib_GetFileTimes(const std::string& pstrFile, FileTimes& times) {
    struct stat info {};
    if (::stat(pstrFile.c_str(), &info) != 0) return Fail();
    const auto nanos = [](const timespec& t) { return std::int64_t{t.tv_sec} * 1'000'000'000 + t.tv_nsec; };
    times = {nanos(info.st_ctim), nanos(info.st_atim), nanos(info.st_mtim)};
    return true;
}

bool lib_SetFileTimes(const std::string& pstrFile, const FileTimes& times, bool pblnForce) {
    struct stat info {};
    if (::stat(pstrFile.c_str(), &info) != 0 || S_ISDIR(info.st_mode)) return false;
    const auto open = [&] { return ::open(pstrFile.c_str(), O_WRONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC); };
    int fd = open();
    bool madeWritable = false;
    if (fd < 0 && pblnForce && (info.st_mode & 0222) == 0 && ::chmod(pstrFile.c_str(), info.st_mode | S_IWUSR) == 0) {
        madeWritable = true;
        fd = open();
    }
    bool ok = false;
    if (fd >= 0) {
        const auto toTimespec = [](std::int64_t n) { return timespec{n / 1'000'000'000, n % 1'000'000'000}; };
        const timespec both[2] = {toTimespec(times.lastAccess), toTimespec(times.lastWrite)};
        ok = ::futimens(fd, both) == 0 || Fail();
        ::close(fd);
    }
    if (madeWritable) ::chmod(pstrFile.c_str(), info.st_mode & 07777);
    return ok;
}

bool lib_ChangeDir(Desktop& desktop, const std::string& pstrDir) {
    const std::string dir = pstrDir.ends_with('/') ? pstrDir : pstrDir + "/";
    if (::chdir(dir.c_str()) != 0) {
        Fail();
        lib_ErrorHandler("Vexil.lib_ChangeDir", kPathNotFound, RuntimeErrorText(kPathNotFound), true, pstrDir, 0);
        return false;
    }
    desktop.DoEvents();
    return true;
}

}  // namespace ostrivane
