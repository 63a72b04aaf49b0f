#include "lib/file_finder.hpp"

#include <algorithm>
#include <filesystem>
#include <system_error>

#include "dialogs/message_box.hpp"
#include "lib/error_handler.hpp"
#include "lib/errors.hpp"
#include "lib/path_basics.hpp"
#include "lib/text.hpp"

namespace ostrivane {

namespace {

namespace fs = std::filesystem;

struct Entry {
    std::string name;
    bool isDir = false;  // a real directory; a link to one is not walked into
};

// One directory as the file system lists it. A directory that cannot be
// opened gives nothing.
std::vector<Entry> ListDirectory(const std::string& dir) {
    std::vector<Entry> entries;
    std::error_code ec;
    for (fs::directory_iterator it(dir.empty() ? fs::path(".") : fs::path(dir), ec), end; !ec && it != end;
         it.increment(ec)) {
        std::error_code typeError;
        entries.push_back({it->path().filename().string(), it->symlink_status(typeError).type() == fs::file_type::directory});
    }
    return entries;
}

std::string JoinForward(const std::string& dir, const std::string& name) { return lib_JoinPath(dir, name, true); }

}  // namespace

bool lib_FileNameLike(const std::string& name, const std::string& mask) {
    const std::string pattern = mask == "*.*" ? std::string("*") : mask;
    return Like(LCase(name), LCase(pattern));
}

// ---- lib_clsFindFiles -------------------------------------------------------

struct lib_clsFindFiles::Level {
    std::string fullPath, relativePath;
    std::vector<Entry> entries;
    std::size_t next = 0;
};

lib_clsFindFiles::lib_clsFindFiles() = default;

lib_clsFindFiles::~lib_clsFindFiles() {
    while (!levels_.empty()) levels_.pop_back();
}

void lib_clsFindFiles::CloseCurrentFindLevel() {
    if (currentLevel_ < 1 || static_cast<std::size_t>(currentLevel_) > levels_.size()) return;
    levels_.erase(levels_.begin() + (currentLevel_ - 1));
    const auto level = static_cast<std::int16_t>(levels_.size());
    if (currentLevel_ > level) currentLevel_ = level;
}

std::string lib_clsFindFiles::FullDir(std::int16_t level) const {
    const std::int16_t at = level == 0 ? currentLevel_ : level;
    if (at < 1 || static_cast<std::size_t>(at) > levels_.size()) return std::string();
    return levels_[static_cast<std::size_t>(at - 1)]->fullPath;
}

std::string lib_clsFindFiles::FullFile() const { return JoinForward(FullDir(0), file_); }

std::string lib_clsFindFiles::RecursedDir() const {
    if (currentLevel_ < 1 || static_cast<std::size_t>(currentLevel_) > levels_.size()) return std::string();
    return levels_[static_cast<std::size_t>(currentLevel_ - 1)]->relativePath;
}

bool lib_clsFindFiles::FindFirstFile(const std::string& filespec, const std::string& startDir, bool inclSubs) {
    levels_.clear();
    currentLevel_ = 0;
    std::string start = startDir;
    mask_ = filespec;
    if (startDir.empty()) {
        const std::size_t slash = filespec.rfind('/');
        mask_ = slash == std::string::npos ? filespec : filespec.substr(slash + 1);
        start = lib_GetFolder(filespec, true, true);
        if (start.empty() && slash == 0) start = "/";
    }
    for (std::size_t at = 0; (at = mask_.find("*.*", at)) != std::string::npos; ++at) mask_.replace(at, 3, "*");
    searchText_ = inclSubs ? std::string("*") : mask_;
    dir_ = start;
    levels_.push_back(std::make_unique<Level>());
    levels_.back()->fullPath = start;
    if (!Enter()) {
        levels_.clear();
        return false;
    }
    currentLevel_ = 1;
    dirChanged_ = true;
    firstCall_ = true;
    inclSubs_ = inclSubs;
    isDir_ = false;
    return FindNextFile();
}

// Opens the search of the deepest level and takes its first entry that the
// search text admits; false when there is none.
bool lib_clsFindFiles::Enter() {
    dirChanged_ = true;
    Level& level = *levels_.back();
    level.entries = ListDirectory(level.fullPath);
    level.next = 0;
    return NextAtDeepest();
}

bool lib_clsFindFiles::NextAtDeepest() {
    if (levels_.empty()) return false;
    Level& level = *levels_.back();
    while (level.next < level.entries.size()) {
        const Entry& entry = level.entries[level.next++];
        if (searchText_ != "*" && !lib_FileNameLike(entry.name, searchText_)) continue;
        entryName_ = entry.name;
        entryIsDir_ = entry.isDir;
        return true;
    }
    return false;
}

bool lib_clsFindFiles::FindNextFile() {
    if (levels_.empty()) return false;
    bool have;
    if (firstCall_) {
        firstCall_ = false;
        have = true;
    } else if (isDir_ && inclSubs_) {
        have = Enter();
    } else {
        dirChanged_ = false;
        have = NextAtDeepest();
    }
    return Walk(have);
}

bool lib_clsFindFiles::Walk(bool have) {
    for (;;) {
        if (!have) {
            levels_.pop_back();
            if (levels_.empty()) return false;
            have = NextAtDeepest();
            continue;
        }
        have = false;  // whatever is passed over, the next entry is read
        file_ = entryName_;
        if (file_ == "." || file_ == "..") {
            have = NextAtDeepest();
            continue;
        }
        const auto level = static_cast<std::int16_t>(levels_.size());
        if (entryIsDir_ && !inclSubs_) {
            if (searchType_ != kFindFilesOnly && lib_FileNameLike(file_, mask_)) {
                isDir_ = true;
                currentLevel_ = level;
                return true;
            }
        } else if (entryIsDir_) {
            if (level >= kMaxLevel) {
                Raise(kObjectErrorBase + 1000, "FindNextFile()", "Too many dir levels (" + std::to_string(level + 1) + ")");
            }
            auto sub = std::make_unique<Level>();
            sub->relativePath = JoinForward(levels_.back()->relativePath, file_);
            sub->fullPath = JoinForward(levels_.back()->fullPath, file_);
            levels_.push_back(std::move(sub));
            if (searchType_ != kFindFilesOnly && lib_FileNameLike(file_, mask_)) {
                isDir_ = true;
                currentLevel_ = level;  // entered at the next call
                return true;
            }
            have = Enter();  // an unreadable directory ends at once, as an empty one
            continue;
        } else if (searchType_ != kFindDirsOnly) {
            if (lib_FileNameLike(file_, mask_)) {
                isDir_ = false;
                currentLevel_ = level;
                return true;
            }
            file_.clear();
        }
        have = NextAtDeepest();
    }
}

// ---- lib_GetNextFile --------------------------------------------------------

namespace {

struct WalkState {
    std::vector<std::string> chain = std::vector<std::string>(kMaxWalkDepth + 1);
    std::vector<std::string> names;  // names[0] unused, as the list is 1-based
    std::string start, current, mask;
    int index = 0;
    int level = 0;
};

WalkState walk;

// Both by name without regard to case; names that differ only in case keep
// the byte order, so that a walk is the same every time.
void SortNames(std::vector<std::string>& names, std::size_t from) {
    std::sort(names.begin() + static_cast<std::ptrdiff_t>(from), names.end());
    std::stable_sort(names.begin() + static_cast<std::ptrdiff_t>(from), names.end(),
                     [](const std::string& a, const std::string& b) { return CompareNoCase(a, b) < 0; });
}

bool IsFileThere(const std::string& path) {
    std::error_code ec;
    const fs::file_status status = fs::status(path, ec);
    return !ec && fs::exists(status) && !fs::is_directory(status);
}

bool CanEnter(const std::string& dir) {
    std::error_code ec;
    fs::directory_iterator probe(dir, ec);
    return !ec;
}

enum class Step { Listing, Down, Up };

bool NextFile(Desktop& desktop, bool pblnStart, const std::string& pstrFilespec, const std::string& pstrStartDir,
              bool pblnInclSubs, std::string& pstrFoundFile, std::string& pstrRelDir, bool& pblnDirEntered,
              const std::string& pstrOpenDirNext, bool pblnSkipDir) {
    Step step = Step::Listing;
    pblnDirEntered = false;
    if (pblnStart) {
        if (!lib_DirExists(pstrStartDir)) {
            lib_ShowCritical(desktop, "Directory " + pstrStartDir + " not found", 0);
            return false;
        }
        std::error_code ec;
        const fs::path start = fs::absolute(pstrStartDir, ec);
        if (ec || !CanEnter(start.string())) return false;
        walk = WalkState();
        walk.start = walk.current = start.string();
        walk.mask = pstrFilespec;
        pstrRelDir.clear();
        pblnDirEntered = true;
    } else if (pblnSkipDir) {
        step = Step::Up;
    } else if (!pstrOpenDirNext.empty()) {
        step = Step::Down;
    }

    for (;;) {
        switch (step) {
            case Step::Listing: {
                if (walk.index > 0) {
                    while (++walk.index < static_cast<int>(walk.names.size())) {
                        const std::string& name = walk.names[static_cast<std::size_t>(walk.index)];
                        if (!IsFileThere(JoinForward(walk.current, name))) continue;
                        pstrFoundFile = name;
                        return true;
                    }
                    step = Step::Down;
                    break;
                }
                walk.names.assign(1, std::string());
                for (const Entry& entry : ListDirectory(walk.current)) {
                    if (entry.name.starts_with('.') || !lib_FileNameLike(entry.name, walk.mask)) continue;
                    if (!IsFileThere(JoinForward(walk.current, entry.name))) continue;
                    if (walk.names.size() > static_cast<std::size_t>(kMaxNamesInOneDir)) {
                        lib_ShowCritical(desktop,
                                         "Too many files in one dir - will process first " +
                                             std::to_string(kMaxNamesInOneDir),
                                         5);
                        break;
                    }
                    walk.names.push_back(entry.name);
                }
                if (walk.names.size() < 2) {
                    step = Step::Down;
                    break;
                }
                SortNames(walk.names, 1);
                walk.index = 1;
                pstrFoundFile = walk.names[1];
                return true;
            }
            case Step::Down: {
                if (!pblnInclSubs) return false;
                std::vector<std::string> dirs;
                for (const Entry& entry : ListDirectory(walk.current)) {
                    if (entry.isDir && !entry.name.starts_with('.') && entry.name != "pagefile.sys") {
                        dirs.push_back(entry.name);
                    }
                }
                if (dirs.empty()) {
                    step = Step::Up;
                    break;
                }
                SortNames(dirs, 0);
                if (walk.level >= kMaxWalkDepth) {
                    lib_ShowCritical(desktop, "Too many dir levels (>" + std::to_string(kMaxWalkDepth) + ") - aborting.", 0);
                    return false;
                }
                std::string& chosen = walk.chain[static_cast<std::size_t>(walk.level)];
                if (chosen.empty()) {
                    chosen = dirs.front();
                } else {
                    const auto at = std::find(dirs.begin(), dirs.end(), chosen);
                    if (at == dirs.end()) {
                        lib_ShowCritical(desktop,
                                         "Another process has deleted the dir currently being analysed - aborting.", 0);
                        return false;
                    }
                    if (at + 1 == dirs.end()) {
                        step = Step::Up;
                        break;
                    }
                    chosen = *(at + 1);
                }
                const std::string next = JoinForward(walk.current, chosen);
                if (!CanEnter(next)) return false;
                walk.current = next;
                ++walk.level;
                walk.index = 0;
                pblnDirEntered = true;
                pstrRelDir.clear();
                for (int i = 0; i < walk.level; ++i) pstrRelDir += walk.chain[static_cast<std::size_t>(i)] + "/";
                step = Step::Listing;
                break;
            }
            case Step::Up: {
                if (walk.level == 0) return false;
                walk.chain[static_cast<std::size_t>(walk.level)].clear();
                --walk.level;
                walk.current = fs::path(walk.current).parent_path().string();
                step = Step::Down;
                break;
            }
        }
    }
}

}  // namespace

bool lib_GetNextFile(Desktop& desktop, bool pblnStart, const std::string& pstrFilespec,
                     const std::string& pstrStartDir, bool pblnInclSubs, std::string& pstrFoundFile,
                     std::string& pstrRelDir, bool& pblnDirEntered, const std::string& pstrOpenDirNext,
                     bool pblnSkipDir) {
    try {
        return NextFile(desktop, pblnStart, pstrFilespec, pstrStartDir, pblnInclSubs, pstrFoundFile, pstrRelDir,
                        pblnDirEntered, pstrOpenDirNext, pblnSkipDir);
    } catch (const RuntimeError& error) {
        lib_ErrorHandler("lib_GetNextFile", error.number(), error.description(), true, "", 0);
        return false;
    }
}

}  // namespace ostrivane
