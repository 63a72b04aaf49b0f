// Two walkers over a directory tree: lib_clsFindFiles hands out names in the
// order the file system keeps them, one per call; lib_GetNextFile gives the
// files of a directory sorted, then walks its subdirectories in sorted order.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace ostrivane {

class Desktop;

enum FindSearchType : std::int32_t { kFindFilesOnly = 1, kFindDirsOnly = 2, kFindFilesAndDirs = 3 };

// Mask matching of both walkers: the Like rule without regard to letter case;
// "*.*" matches any name, a dot or not.
bool lib_FileNameLike(const std::string& name, const std::string& mask);

class lib_clsFindFiles {
public:
    static constexpr std::int16_t kMaxLevel = 9999;

    lib_clsFindFiles();
    ~lib_clsFindFiles();  // closes every open search, the deepest first
    lib_clsFindFiles(const lib_clsFindFiles&) = delete;
    lib_clsFindFiles& operator=(const lib_clsFindFiles&) = delete;

    void CloseCurrentFindLevel();
    std::int16_t CurrentFindLevel() const { return currentLevel_; }
    std::string CurrentFindLevelFullPath() const { return FullDir(0); }
    const std::string& Dir() const { return dir_; }
    bool DirChanged() const { return dirChanged_; }
    const std::string& File() const { return file_; }
    // An empty startDir takes the folder of filespec and its last part as the
    // mask. With inclSubs every directory below is walked, matching or not.
    bool FindFirstFile(const std::string& filespec, const std::string& startDir, bool inclSubs);
    bool FindNextFile();
    // Level 0 means CurrentFindLevel.
    std::string FullDir(std::int16_t level) const;
    std::string FullFile() const;
    bool IsDir() const { return isDir_; }
    std::string RecursedDir() const;
    std::int32_t SearchType() const { return searchType_; }
    void SearchType(std::int32_t searchType) { searchType_ = searchType; }

private:
    struct Level;
    bool Enter();
    bool Walk(bool haveEntry);
    bool NextAtDeepest();

    bool dirChanged_ = false;
    bool firstCall_ = false;
    bool inclSubs_ = false;
    bool isDir_ = false;
    std::int32_t searchType_ = kFindFilesOnly;
    std::int16_t currentLevel_ = 0;
    std::string dir_, file_, mask_, searchText_;
    std::vector<std::unique_ptr<Level>> levels_;  // levels_[i] is level i + 1
    std::string entryName_;
    bool entryIsDir_ = false;
};

inline constexpr int kMaxNamesInOneDir = 10000;
inline constexpr int kMaxWalkDepth = 100;

// One walk at a time. The first call (start true) names the pattern, the
// start directory and whether to walk subdirectories; each call gives the
// next file's bare name and its directory relative to the start, each
// element followed by "/". A non-empty openDirNext goes on with the
// subdirectories at once, skipDir leaves the present directory. Names that
// begin with "." are left out, and a directory "pagefile.sys" is not entered.
// False ends the walk; a missing start directory and the limits are told with
// the library's critical box.
bool lib_GetNextFile(Desktop& desktop, bool pblnStart, const std::string& pstrFilespec,
                     const std::string& pstrStartDir, bool pblnInclSubs, std::string& pstrFoundFile,
                     std::string& pstrRelDir, bool& pblnDirEntered, const std::string& pstrOpenDirNext,
                     bool pblnSkipDir);

}  // namespace ostrivane
