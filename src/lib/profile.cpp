#include "lib/profile.hpp"

#include <cerrno>
#include <cstdio>
#include <cstdlib>
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

std::optional<std::string> ReadText(const fs::path& path) {
    if (path.empty()) return std::nullopt;
    std::error_code ec;
    if (!fs::is_regular_file(path, ec)) return std::nullopt;
    std::ifstream in(path, std::ios::binary);
    if (!in) return std::nullopt;
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
    if (in.bad()) return std::nullopt;
    return text;
}

// The file as it stands, or "" when there is none yet; nullopt when the
// place cannot take a file at all.
std::optional<std::string> TextForWrite(const fs::path& path) {
    if (path.empty()) return std::nullopt;
    std::error_code ec;
    const fs::file_status status = fs::status(path, ec);
    if (status.type() == fs::file_type::not_found) return std::string();
    if (status.type() != fs::file_type::regular) return std::nullopt;
    return ReadText(path);
}

bool PrepareForWrite(const fs::path& path, std::string_view file) {
    if (path.empty()) return false;
    // The system profile's directory is ours to make; any other must exist.
    if (!Trim(CString(file)).empty()) return true;
    std::error_code ec;
    fs::create_directories(path.parent_path(), ec);
    return fs::is_directory(path.parent_path(), ec);
}

std::string TemporaryName(const fs::path& target) {
    static std::mt19937_64 random{std::random_device{}()};
    return "." + target.filename().string() + "." + std::to_string(random() & 0xffffffffu) + ".tmp";
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
    std::error_code ec;
    fs::path destination = target;
    // Write through a link to the file it names, rather than replacing the link.
    if (fs::is_symlink(fs::symlink_status(target, ec))) {
        const fs::path resolved = fs::weakly_canonical(target, ec);
        if (ec) return false;
        destination = resolved;
    }
    const fs::path directory = destination.has_parent_path() ? destination.parent_path() : fs::path(".");

    fs::path temporary;
    std::FILE* stream = nullptr;
    for (int attempt = 0; attempt < 100 && stream == nullptr; ++attempt) {
        temporary = directory / TemporaryName(destination);
        errno = 0;
        stream = std::fopen(temporary.c_str(), "wbx");
        if (stream == nullptr && errno != EEXIST) return false;
    }
    if (stream == nullptr) return false;

    bool ok = std::fwrite(content.data(), 1, content.size(), stream) == content.size();
    ok = std::fflush(stream) == 0 && ok;
    ok = std::ferror(stream) == 0 && ok;
    ok = std::fclose(stream) == 0 && ok;
    if (ok) {
        // The new file takes the old one's permissions, not the default ones.
        const fs::file_status old = fs::status(destination, ec);
        if (!ec && fs::is_regular_file(old)) fs::permissions(temporary, old.permissions(), ec);
        fs::rename(temporary, destination, ec);
        ok = !ec;
    }
    if (!ok) fs::remove(temporary, ec);
    return ok;
}

std::string lib_ProfileGetString(std::string_view section, std::string_view key, std::string_view defaultValue,
                                 std::string_view file) {
    const std::optional<std::string> text = ReadText(ProfilePath(file));
    std::optional<std::string> value;
    if (text) value = ini::FindValue(*text, CString(section), CString(key));
    std::string result(CString(value ? std::string_view(*value) : defaultValue));
    if (result.size() > kKeyBuffer - 1) result.resize(kKeyBuffer - 1);
    lib_ApiResult = static_cast<std::int32_t>(result.size());
    return result;
}

bool lib_ProfileWriteString(std::string_view section, std::string_view key, std::string_view value,
                            std::string_view file) {
    const fs::path path = ProfilePath(file);
    if (!PrepareForWrite(path, file)) return false;
    const std::optional<std::string> text = TextForWrite(path);
    if (!text) return false;
    return WriteFileAtomically(path, ini::SetValue(*text, CString(section), CString(key), CString(value)));
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
    const fs::path path = ProfilePath(file);
    if (!PrepareForWrite(path, file)) return false;
    const std::optional<std::string> text = TextForWrite(path);
    if (!text) return false;
    return WriteFileAtomically(path, ini::ReplaceSection(*text, CString(section), data));
}

void lib_ProfileDeleteSection(std::string_view section, std::string_view file) {
    const fs::path path = ProfilePath(file);
    const std::optional<std::string> text = ReadText(path);
    if (!text) return;
    const std::optional<std::string> edited = ini::RemoveSection(*text, CString(section));
    if (edited) WriteFileAtomically(path, *edited);
}

bool lib_ProfileRenameSection(std::string_view oldSection, std::string_view newSection, std::string_view file) {
    const std::string text = lib_ProfileGetSection(oldSection, file);
    if (lib_ProfileWriteSection(newSection, text, file)) lib_ProfileDeleteSection(oldSection, file);
    return false;
}

}  // namespace ostrivane
