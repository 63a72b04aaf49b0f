#include "lib/profile.hpp"

#include <fcntl.h>
#include <signal.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <optional>
#include <random>
#include <system_error>

#include "lib/ini_file.hpp"
#include "lib/text.hpp"

namespace ostrivane {

std::int32_t lib_ApiResult = 0;

namespace {

namespace fs = std::filesystem;

// Read buffers of the platform calls, in characters with the closing NUL.
constexpr std::size_t kKeyBuffer = 255;
constexpr std::size_t kSectionBuffer = 32767;

// Names and values reach the platform as C strings: a NUL ends them.
std::string_view CString(std::string_view text) { return text.substr(0, text.find('\0')); }

std::string_view EnvValue(const char* name) {
    const char* value = std::getenv(name);
    return value == nullptr ? std::string_view() : std::string_view(value);
}

fs::path ProfilePath(std::string_view file) {
    file = CString(file);
    if (Trim(file).empty()) return SystemProfilePath();
    return fs::path(file);
}

// The file's text; nullopt, with the system's reason, when it cannot be read.
std::optional<std::string> ReadText(const fs::path& path, std::string& reason) {
    std::error_code ec;
    if (!fs::is_regular_file(path, ec)) {
        reason = ec ? ec.message() : fs::is_directory(path, ec) ? std::strerror(EISDIR) : "Not a regular file";
        return std::nullopt;
    }
    errno = 0;
    std::ifstream in(path, std::ios::binary);
    if (!in) {
        reason = std::strerror(errno != 0 ? errno : EIO);
        return std::nullopt;
    }
    std::string text;
    const std::uintmax_t size = fs::file_size(path, ec);
    if (!ec) {
        text.resize(static_cast<std::size_t>(size));
        in.read(text.data(), static_cast<std::streamsize>(text.size()));
        text.resize(static_cast<std::size_t>(in.gcount()));
    }
    // The file may have grown since its size was taken.
    char chunk[65536];
    while (in.read(chunk, sizeof chunk) || in.gcount() > 0)
        text.append(chunk, static_cast<std::size_t>(in.gcount()));
    if (in.bad()) {
        reason = std::strerror(EIO);
        return std::nullopt;
    }
    return text;
}

std::optional<std::string> ReadText(const fs::path& path) {
    std::string reason;
    if (path.empty()) return std::nullopt;
    return ReadText(path, reason);
}

// The file as it stands, or "" when there is none yet; nullopt, with the
// reason, when the place cannot take a file or the file cannot be read.
std::optional<std::string> TextForWrite(const fs::path& path, std::string& reason) {
    std::error_code ec;
    if (fs::status(path, ec).type() == fs::file_type::not_found) return std::string();
    return ReadText(path, reason);
}

bool PrepareForWrite(const fs::path& path, std::string_view file, std::string& reason) {
    if (path.empty()) {
        reason = "No place for the system profile (neither XDG_CONFIG_HOME nor HOME is set)";
        return false;
    }
    // The system profile's directory is ours to make; any other must exist.
    if (!Trim(CString(file)).empty()) return true;
    std::error_code ec;
    fs::create_directories(path.parent_path(), ec);
    if (fs::is_directory(path.parent_path(), ec)) return true;
    reason = ec ? ec.message() : std::strerror(ENOTDIR);
    return false;
}

std::string lastWriteError;

// One write routine: reads the file, edits its text, writes it back. edit
// gives nullopt when there is nothing to write.
template <class Edit>
bool EditProfile(std::string_view file, bool makesTheFile, Edit edit) {
    lastWriteError.clear();
    const fs::path path = ProfilePath(file);
    if (makesTheFile && !PrepareForWrite(path, file, lastWriteError)) return false;
    if (path.empty()) return true;  // a delete in a system profile that has no place
    const std::optional<std::string> text = TextForWrite(path, lastWriteError);
    if (!text) return false;
    const std::optional<std::string> edited = edit(*text);
    return !edited || WriteFileAtomically(path, *edited, lastWriteError);
}

// ".<name>.<process id>.<random>.tmp"; older versions wrote no process id.
constexpr std::string_view kTemporarySuffix = ".tmp";

std::string TemporaryName(const fs::path& target) {
    static std::mt19937_64 random{std::random_device{}()};
    return "." + target.filename().string() + "." + std::to_string(::getpid()) + "." +
           std::to_string(random() & 0xffffffffu) + std::string(kTemporarySuffix);
}

bool AllDigits(std::string_view text) {
    return !text.empty() && text.find_first_not_of("0123456789") == std::string_view::npos;
}

// Whether name is a temporary name of ours for a file called targetName; the
// writer's process id in writer, 0 when the name carries none.
bool IsTemporaryName(std::string_view name, std::string_view targetName, pid_t& writer) {
    const std::string prefix = "." + std::string(targetName) + ".";
    if (!name.starts_with(prefix) || !name.ends_with(kTemporarySuffix)) return false;
    std::string_view middle = name.substr(prefix.size(), name.size() - prefix.size() - kTemporarySuffix.size());
    writer = 0;
    const std::size_t dot = middle.find('.');
    if (dot != std::string_view::npos) {
        const std::string_view id = middle.substr(0, dot);
        if (!AllDigits(id) || id.size() > 9) return false;
        writer = static_cast<pid_t>(std::stol(std::string(id)));
        middle.remove_prefix(dot + 1);
    }
    return AllDigits(middle);
}

bool ProcessIsGone(pid_t pid) { return pid > 0 && ::kill(pid, 0) == -1 && errno == ESRCH; }

// Writes all of content to fd; false with errno set when a write fails.
bool WriteAll(int fd, std::string_view content) {
    while (!content.empty()) {
        const ssize_t written = ::write(fd, content.data(), content.size());
        if (written < 0) {
            if (errno == EINTR) continue;
            return false;
        }
        content.remove_prefix(static_cast<std::size_t>(written));
    }
    return true;
}

// A directory's entries reach the disk; file systems that cannot sync a
// directory say so, and the rename then stands as the system keeps it.
void SyncDirectory(const fs::path& directory) {
    const int fd = ::open(directory.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (fd < 0) return;
    ::fsync(fd);
    ::close(fd);
}

}  // namespace

fs::path SystemProfilePath() {
    fs::path config(EnvValue("XDG_CONFIG_HOME"));
    if (config.empty() || config.is_relative()) {
        const std::string_view home = EnvValue("HOME");
        if (home.empty()) return {};
        config = fs::path(home) / ".config";
    }
    return config / "Ostrivane" / "profile.ini";
}

bool WriteFileAtomically(const fs::path& target, std::string_view content) {
    std::string reason;
    return WriteFileAtomically(target, content, reason);
}

bool WriteFileAtomically(const fs::path& target, std::string_view content, std::string& reason) {
    std::error_code ec;
    fs::path destination = target;
    // Write through a link to the file it names, rather than replacing the link.
    if (fs::is_symlink(fs::symlink_status(target, ec))) {
        const fs::path resolved = fs::weakly_canonical(target, ec);
        if (ec) {
            reason = ec.message();
            return false;
        }
        destination = resolved;
    }
    const fs::path directory = destination.has_parent_path() ? destination.parent_path() : fs::path(".");

    fs::path temporary;
    int fd = -1;
    for (int attempt = 0; attempt < 100 && fd < 0; ++attempt) {
        temporary = directory / TemporaryName(destination);
        fd = ::open(temporary.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
        if (fd < 0 && errno != EEXIST) break;
    }
    if (fd < 0) {
        reason = std::strerror(errno);
        return false;
    }

    int error = 0;
    if (!WriteAll(fd, content) || ::fsync(fd) != 0) error = errno;
    if (::close(fd) != 0 && error == 0) error = errno;
    if (error == 0) {
        // The new file takes the old one's permissions, not the default ones.
        const fs::file_status old = fs::status(destination, ec);
        if (!ec && fs::is_regular_file(old)) fs::permissions(temporary, old.permissions(), ec);
        if (::rename(temporary.c_str(), destination.c_str()) != 0) error = errno;
    }
    if (error != 0) {
        ::unlink(temporary.c_str());
        reason = std::strerror(error);
        return false;
    }
    SyncDirectory(directory);
    return true;
}

int RemoveStaleTemporaryFiles(const fs::path& target) {
    constexpr auto kStaleAfter = std::chrono::minutes(1);
    const fs::path directory = target.has_parent_path() ? target.parent_path() : fs::path(".");
    const std::string targetName = target.filename().string();
    const auto now = fs::file_time_type::clock::now();
    int removed = 0;
    std::error_code ec;
    for (fs::directory_iterator it(directory, ec), end; !ec && it != end; it.increment(ec)) {
        pid_t writer = 0;
        if (!IsTemporaryName(it->path().filename().string(), targetName, writer)) continue;
        std::error_code entryError;
        if (!it->is_regular_file(entryError)) continue;
        const auto written = it->last_write_time(entryError);
        const bool old = !entryError && now - written > kStaleAfter;
        if ((old || ProcessIsGone(writer)) && fs::remove(it->path(), entryError)) ++removed;
    }
    return removed;
}

std::string lib_ProfileGetString(std::string_view section, std::string_view key, std::string_view defaultValue,
                                 std::string_view file) {
    const std::optional<std::string> text = ReadText(ProfilePath(file));
    std::optional<std::string> value;
    if (text) value = ini::FindValue(*text, CString(section), CString(key));
    if (!value) {
        defaultValue = CString(defaultValue);
        while (defaultValue.ends_with(' ')) defaultValue.remove_suffix(1);
    }
    std::string result(CString(value ? std::string_view(*value) : defaultValue));
    if (result.size() > kKeyBuffer - 1) result.resize(kKeyBuffer - 1);
    lib_ApiResult = static_cast<std::int32_t>(result.size());
    return result;
}

bool lib_ProfileWriteString(std::string_view section, std::string_view key, std::string_view value,
                            std::string_view file) {
    return EditProfile(file, true, [&](const std::string& text) -> std::optional<std::string> {
        return ini::SetValue(text, CString(section), CString(key), CString(value));
    });
}

std::string lib_ProfileGetSection(std::string_view section, std::string_view file) {
    const std::optional<std::string> text = ReadText(ProfilePath(file));
    std::string result;
    if (text) result = ini::ReadSection(*text, CString(section)).value_or(std::string());
    // The platform needs room for a closing extra NUL; without it the text
    // comes back two short of the buffer.
    if (result.size() + 1 > kSectionBuffer) result.resize(kSectionBuffer - 2);
    lib_ApiResult = static_cast<std::int32_t>(result.size());
    return result;
}

bool lib_ProfileWriteSection(std::string_view section, std::string_view data, std::string_view file) {
    return EditProfile(file, true, [&](const std::string& text) -> std::optional<std::string> {
        return ini::ReplaceSection(text, CString(section), data);
    });
}

void lib_ProfileDeleteSection(std::string_view section, std::string_view file) {
    EditProfile(file, false, [&](const std::string& text) { return ini::RemoveSection(text, CString(section)); });
}

bool lib_ProfileRenameSection(std::string_view oldSection, std::string_view newSection, std::string_view file) {
    // The lines move inside the engine: the section read's text would stop at
    // an empty entry and at the read buffer.
    EditProfile(file, true, [&](const std::string& text) -> std::optional<std::string> {
        return ini::RenameSection(text, CString(oldSection), CString(newSection));
    });
    return false;
}

const std::string& lib_ProfileLastWriteError() { return lastWriteError; }

}  // namespace ostrivane
