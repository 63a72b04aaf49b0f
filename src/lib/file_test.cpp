#include "lib/file_test.hpp"

#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <system_error>

#include "lib/error_handler.hpp"
#include "platform/trash.hpp"

namespace ostrivane {

namespace {

namespace fs = std::filesystem;

Trash* trashCan = nullptr;

std::string Unquoted(const std::string& path) {
    std::string p = path;
    while (!p.empty() && p.front() == '"') p.erase(0, 1);
    while (!p.empty() && p.back() == '"') p.pop_back();
    return p;
}

// * any run of characters, ? any one; case counts, as on the file system.
bool WildcardMatch(std::string_view name, std::string_view mask) {
    std::size_t n = 0, m = 0, star = std::string_view::npos, resume = 0;
    while (n < name.size()) {
        if (m < mask.size() && (mask[m] == '?' || mask[m] == name[n])) {
            ++n;
            ++m;
        } else if (m < mask.size() && mask[m] == '*') {
            star = m++;
            resume = n;
        } else if (star != std::string_view::npos) {
            m = star + 1;
            n = ++resume;
        } else {
            return false;
        }
    }
    while (m < mask.size() && mask[m] == '*') ++m;
    return m == mask.size();
}

bool IsGone(const std::string& file) {
    std::string found;
    return !lib_FileExists(file, found, true);
}

bool KillFile(const std::string& file, bool noRecycle) {
    if (IsGone(file)) return true;
    const std::string path = Unquoted(file);
    if (!noRecycle && trashCan != nullptr) {
        trashCan->MoveToTrash(path);
    } else {
        std::error_code ec;
        fs::remove(path, ec);
    }
    if (IsGone(file)) return true;
    if (lib_IsFileLocked(path)) return false;
    std::error_code ec;
    fs::remove(path, ec);
    return IsGone(file);
}

}  // namespace

void lib_AttachTrash(Trash* trash) { trashCan = trash; }
Trash* lib_AttachedTrash() { return trashCan; }

bool lib_FileExists(const std::string& file, std::string& foundFile, bool nameOnly) {
    const fs::path path(Unquoted(file));
    // "*.*" takes every name, one without a dot too, as the platform's search does.
    const std::string mask = path.filename() == "*.*" ? std::string("*") : path.filename().string();
    if (mask.empty()) return false;
    const fs::path folder = path.parent_path();
    const auto take = [&](const std::string& name) {
        foundFile = nameOnly ? name : (folder.empty() ? name : (folder / name).string());
        return true;
    };
    std::error_code ec;
    if (mask.find_first_of("*?") == std::string::npos) {
        const fs::file_status status = fs::status(path, ec);
        return !ec && fs::exists(status) && !fs::is_directory(status) && take(mask);
    }
    // The first match that is not a directory decides, in the folder's own order.
    for (fs::directory_iterator it(folder.empty() ? fs::path(".") : folder, ec), end; !ec && it != end;
         it.increment(ec)) {
        const std::string name = it->path().filename().string();
        std::error_code statusError;
        if (WildcardMatch(name, mask) && !it->is_directory(statusError)) return take(name);
    }
    return false;
}

bool lib_KillFile(const std::string& file, bool noRecycle) {
    return lib_RunTraced("Vexil.lib_KillFile", "File:" + file, [&] { return KillFile(file, noRecycle); });
}

bool lib_IsFileLocked(const std::string& file) {
    const std::string path = Unquoted(file);
    if (std::rename(path.c_str(), path.c_str()) == 0) return false;
    return errno != ENOENT && errno != ENXIO && errno != ENODEV;
}

}  // namespace ostrivane
