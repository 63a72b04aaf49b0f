// A fresh directory under the system's temporary directory for one test,
// removed with everything in it when the object goes.
#pragma once

#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <stdexcept>
#include <string>
#include <string_view>
#include <system_error>

namespace ostrivane {

class TempDir {
public:
    TempDir() {
        std::string pattern = (std::filesystem::temp_directory_path() / "ostrivane-test-XXXXXX").string();
        if (::mkdtemp(pattern.data()) == nullptr) throw std::runtime_error("cannot make a temporary directory " + pattern);
        path_ = pattern;
    }

    ~TempDir() {
        namespace fs = std::filesystem;
        std::error_code ec;
        if (fs::remove_all(path_, ec) != static_cast<std::uintmax_t>(-1) && !ec) return;
        // A test may have taken away write permission somewhere inside.
        fs::permissions(path_, fs::perms::owner_all, fs::perm_options::add, ec);
        for (auto it = fs::recursive_directory_iterator(path_, ec); !ec && it != fs::recursive_directory_iterator();
             it.increment(ec)) {
            std::error_code ignored;
            if (it->is_directory(ignored))
                fs::permissions(it->path(), fs::perms::owner_all, fs::perm_options::add, ignored);
        }
        fs::remove_all(path_, ec);
    }

    TempDir(const TempDir&) = delete;
    TempDir& operator=(const TempDir&) = delete;

    const std::filesystem::path& path() const { return path_; }
    std::string file(std::string_view name) const { return (path_ / name).string(); }

private:
    std::filesystem::path path_;
};

}  // namespace ostrivane
