#include "lib/path_basics.hpp"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <system_error>
#include <vector>

#include "lib/error_handler.hpp"
#include "lib/errors.hpp"
#include "lib/line_parser.hpp"
#include "lib/text.hpp"

namespace ostrivane {

namespace {

namespace fs = std::filesystem;

constexpr std::size_t kComputerNameBuffer = 255;
constexpr std::size_t kMakePathParts = 100;


std::string EnvValue(const char* name) {
    const char* value = std::getenv(name);
    return value == nullptr ? std::string() : std::string(value);
}

// An XDG base directory, or its default under the home directory. A relative
// value is no valid setting and counts as unset.
std::string XdgDirectory(const char* variable, std::string_view underHome) {
    const std::string value = EnvValue(variable);
    if (!value.empty() && fs::path(value).is_absolute()) return value;
    const std::string home = EnvValue("HOME");
    if (home.empty()) return std::string();
    return lib_JoinPath(home, underHome, true);
}

std::string HomeFolder(std::string_view name) {
    const std::string home = EnvValue("HOME");
    if (home.empty()) return std::string();
    return lib_JoinPath(home, name, true);
}

std::string TrimWhitespace(std::string_view text) {
    constexpr std::string_view kWhitespace = " \t\r\n\v\f";
    const std::size_t first = text.find_first_not_of(kWhitespace);
    if (first == std::string_view::npos) return std::string();
    const std::size_t last = text.find_last_not_of(kWhitespace);
    return std::string(text.substr(first, last - first + 1));
}

std::string FirstLineOf(const char* file) {
    std::ifstream in(file);
    std::string line;
    if (!in || !std::getline(in, line)) return std::string();
    return TrimWhitespace(line);
}

}  // namespace

std::string lib_JoinPath(std::string_view pstrDir, std::string_view pstrFile, bool pblnForward) {
    const char separator = PathSeparator(pblnForward);
    const bool dirEnds = !pstrDir.empty() && pstrDir.back() == separator;
    const bool fileBegins = !pstrFile.empty() && pstrFile.front() == separator;
    std::string result(pstrDir);
    if (dirEnds && fileBegins) {
        result.append(pstrFile.substr(1));
    } else {
        if (!dirEnds && !fileBegins && !pstrDir.empty() && !pstrFile.empty()) result.push_back(separator);
        result.append(pstrFile);
    }
    return result;
}

std::string lib_GetFolder(std::string_view pstrPath, bool pblnInclDrive, bool pblnForward) {
    const std::string text = lib_StripQuotes(pstrPath);
    const char separator = PathSeparator(pblnForward);
    for (std::size_t i = text.size(); i-- > 0;) {
        if (text[i] == ':') return pblnInclDrive ? text.substr(0, i + 1) : std::string();
        if (text[i] == separator) {
            std::size_t start = 0;
            if (!pblnInclDrive) {
                const std::size_t colon = text.find(':');
                if (colon != std::string::npos) start = colon + 1;
            }
            return text.substr(start, i - start);
        }
    }
    return std::string();
}

std::string lib_StripQuotes(std::string_view pstrText) {
    std::string text = Trim(pstrText);
    if (text.size() >= 2 && text.front() == '"' && text.back() == '"') return text.substr(1, text.size() - 2);
    return text;
}

std::string lib_GetSpecialFolder(std::int32_t number) {
    switch (number) {
        case kFolderCommonAppData:
        case kFolderLocalAppData: return XdgDirectory("XDG_DATA_HOME", ".local/share");
        case kFolderAppData: return XdgDirectory("XDG_CONFIG_HOME", ".config");
        case kFolderDocuments: return HomeFolder("Documents");
        case kFolderDesktop: return HomeFolder("Desktop");
        default: return std::string();
    }
}

std::string lib_GetComputerName() {
    std::string name = FirstLineOf("/proc/sys/kernel/hostname");
    if (name.empty()) name = FirstLineOf("/etc/hostname");
    if (name.empty()) name = TrimWhitespace(EnvValue("HOSTNAME"));
    if (name.size() > kComputerNameBuffer) name.resize(kComputerNameBuffer);
    return name;
}

bool lib_DirExists(std::string_view pstrDir) {
    if (pstrDir.empty()) return false;
    std::error_code ec;
    fs::path path(pstrDir);
    if (path.is_relative()) path = fs::absolute(path, ec);
    if (ec) return false;
    return fs::is_directory(path, ec);
}

bool lib_MakePath(std::string_view pstrPath) {
    return lib_RunTraced("Vexil.lib_MakePath", "Path:" + std::string(pstrPath), [&] {
        if (lib_DirExists(pstrPath)) return true;
        const std::string text = lib_StripQuotes(pstrPath);

        LineParseOptions options;
        options.DropDelims = "/";
        options.QuotePairs.assign(2, '"');
        options.TrimParts = true;
        options.DelimsUnused = true;
        options.DelimToPrevPart = true;
        options.KeepPairWhole = true;
        options.PairInsidePart = true;
        std::vector<std::string> parts(kMakePathParts + 1);
        const std::size_t count = static_cast<std::size_t>(lib_GetLineParts3(text, parts, options));

        // Server and share of a network path are there or not; they are never made.
        std::string built;
        std::size_t next = 1;
        if (text.starts_with("//")) {
            built = "//" + parts[1] + "/" + parts[2];
            next = 3;
        }
        for (std::size_t i = next; i <= count; ++i) {
            built += '/';
            built += parts[i];
            if (lib_DirExists(built)) continue;
            std::error_code ec;
            fs::create_directory(built, ec);
            if (!lib_DirExists(built)) Raise(kPathFileAccessError);
        }
        return lib_DirExists(text);
    });
}

}  // namespace ostrivane
