#include "store/data_file.hpp"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <vector>

#include "lib/errors.hpp"
#include "lib/numbers.hpp"
#include "lib/path_basics.hpp"
#include "lib/profile.hpp"

namespace ostrivane {

namespace {

constexpr int kCommonAppDataFolder = 35;
constexpr int kFormatOneDottedPart = 7;

std::vector<std::string> SplitOnCommas(std::string_view text) {
    std::vector<std::string> parts;
    std::size_t start = 0;
    for (;;) {
        const std::size_t comma = text.find(',', start);
        if (comma == std::string_view::npos) {
            parts.emplace_back(text.substr(start));
            return parts;
        }
        parts.emplace_back(text.substr(start, comma - start));
        start = comma + 1;
    }
}

const std::string& Part(const std::vector<std::string>& parts, std::size_t index) {
    if (index >= parts.size()) Raise(kSubscriptOutOfRange);
    return parts[index];
}

void ReadFormatZeroDefaults(MarkerRow& GlobalDefaults, const std::vector<std::string>& parts) {
    for (std::size_t i = 0; i <= 6; ++i) GlobalDefaults[static_cast<int>(i) + 1] = TextToInt32(Part(parts, i));
}

// Every part but the last goes one column above its index (part 7 also
// lands in column 8, which nothing reads), then part 7 is the dotted state.
void ReadFormatOneDefaults(MarkerRow& GlobalDefaults, const std::vector<std::string>& parts) {
    for (std::size_t i = 0; i + 1 < parts.size(); ++i)
        GlobalDefaults[static_cast<int>(i) + 1] = TextToInt32(parts[i]);
    GlobalDefaults[Dotted] = TextToInt32(Part(parts, kFormatOneDottedPart));
}

void AppendLine(std::string& section, std::string_view line) {
    section += line;
    section += '\0';
}

std::string RunningProgramName() {
    std::error_code ec;
    return ProgramNameOfLink(std::filesystem::read_symlink("/proc/self/exe", ec).string());
}

std::string& ExecutableBaseNameSetting() {
    static std::string name = RunningProgramName();
    return name;
}

[[noreturn]] void RaiseDataFileError(const std::string& file, std::string_view problem) {
    Raise(kPathFileAccessError, "Ostrivane.InitDataFile", "The data file " + file + " " + std::string(problem) + ".");
}

// The error a bad value of the Defaults section raised, told with the file
// and the line it came from; its number stays.
[[noreturn]] void RaiseDefaultsError(const RuntimeError& error, const std::string& file, std::string_view key,
                                     std::string_view value) {
    Raise(error.number(), "Ostrivane.LoadGlobalDefaults",
          "The data file " + file + " cannot be used: its " + std::string(key) + " line \"" + std::string(value) +
              "\" is not what the program reads there (" + error.description() + ").");
}

}  // namespace

std::string ProgramNameOfLink(std::string_view link) {
    std::string name = std::filesystem::path(link).filename().string();
    // The link of a program whose file has been replaced since it started.
    constexpr std::string_view kDeleted = " (deleted)";
    if (name.ends_with(kDeleted)) name.resize(name.size() - kDeleted.size());
    return name.empty() ? kDefaultExecutableBaseName : name;
}

const std::string& ExecutableBaseName() { return ExecutableBaseNameSetting(); }

void SetExecutableBaseName(std::string name) {
    ExecutableBaseNameSetting() = name.empty() ? RunningProgramName() : std::move(name);
}

std::string DefaultDataDir() { return lib_JoinPath(lib_GetSpecialFolder(kCommonAppDataFolder), kAppTitle, true); }

std::string DataDirSetting(const SettingStore& settings) {
    return settings.GetSetting(kAppTitle, "Settings", "DataDir", DefaultDataDir());
}

std::string DataFilePath(const SettingStore& settings) {
    return DataDirSetting(settings) + "/" + ExecutableBaseName() + ".ini";
}

std::string InitDataFile(const SettingStore& settings) {
    namespace fs = std::filesystem;
    const std::string dataFile = DataFilePath(settings);
    RemoveStaleTemporaryFiles(dataFile);
    std::error_code ec;
    const fs::file_status status = fs::status(dataFile, ec);
    const bool missing = status.type() == fs::file_type::not_found;
    // An empty file holds nothing to lose: it is a first run.
    if (missing || (fs::is_regular_file(status) && fs::file_size(dataFile, ec) == 0 && !ec)) {
        // A directory that cannot be made shows in the write, with the system's reason.
        SkipOnFailure([&] { lib_MakePath(DataDirSetting(settings)); });
        if (!lib_ProfileWriteString(kDefaultsSection, "Defaults", kNewDataFileDefaults, dataFile))
            RaiseDataFileError(dataFile, (missing ? "cannot be created: " : "cannot be written: ") +
                                             lib_ProfileLastWriteError());
        return dataFile;
    }
    if (ec) RaiseDataFileError(dataFile, "cannot be read: " + ec.message());
    if (fs::is_directory(status)) RaiseDataFileError(dataFile, "is a directory, not a file");
    if (!fs::is_regular_file(status)) RaiseDataFileError(dataFile, "is not a regular file");
    std::FILE* stream = std::fopen(dataFile.c_str(), "rb");
    if (stream == nullptr) RaiseDataFileError(dataFile, std::string("cannot be read: ") + std::strerror(errno));
    std::fclose(stream);
    return dataFile;
}

void LoadGlobalDefaults(MarkerRow& GlobalDefaults, const std::string& DataFile, const ScreenMetrics& screen,
                        bool screenMetricsKnown) {
    const std::string formatText = lib_ProfileGetString(kDefaultsSection, "DataFormat", "0", DataFile);
    std::int16_t format = 0;
    try {
        format = TextToInt16(formatText);
    } catch (const RuntimeError& error) {
        RaiseDefaultsError(error, DataFile, "DataFormat", formatText);
    }
    if (format == 0 || format == 1) {
        const std::string line = lib_ProfileGetString(kDefaultsSection, "Defaults", "", DataFile);
        if (line.empty())
            Raise(kTypeMismatch, "Ostrivane.LoadGlobalDefaults",
                  "The data file " + DataFile + " cannot be used: its [Defaults] section has no Defaults line.");
        try {
            if (format == 0)
                ReadFormatZeroDefaults(GlobalDefaults, SplitOnCommas(line));
            else
                ReadFormatOneDefaults(GlobalDefaults, SplitOnCommas(line));
        } catch (const RuntimeError& error) {
            RaiseDefaultsError(error, DataFile, "Defaults", line);
        }
    }

    if (lib_ProfileGetString(kDefaultsSection, "ScreenRes", "", DataFile).empty() && screenMetricsKnown) {
        lib_ProfileWriteString(kDefaultsSection, "ScreenRes",
                               DecimalText(screen.ScreenWidth) + "x" + DecimalText(screen.ScreenHeight), DataFile);
    }
    if (lib_ProfileGetString(kDefaultsSection, "PC", "", DataFile).empty()) {
        lib_ProfileWriteString(kDefaultsSection, "PC", lib_GetComputerName(), DataFile);
    }
}

std::string NotesToFileText(std::string_view notes) {
    std::string out;
    out.reserve(notes.size());
    for (std::size_t i = 0; i < notes.size(); ++i) {
        if (notes[i] == '\r' && i + 1 < notes.size() && notes[i + 1] == '\n') {
            out += kNotesLineBreak;
            ++i;
        } else {
            out += notes[i];
        }
    }
    return out;
}

std::string FileTextToNotes(std::string_view text) {
    std::string out;
    out.reserve(text.size());
    for (char c : text) {
        if (c == kNotesLineBreak)
            out += "\r\n";
        else
            out += c;
    }
    return out;
}

std::string GroupLineValues(const MarkerRow& row) {
    std::string line;
    for (int column : {Hpos, Vpos, Hlen, Vlen, Colour, Thickness, Opacity, Dotted}) {
        line += DecimalText(row[column]);
        line += ',';
    }
    return line;
}

std::string BuildGroupSection(const MarkerTable& Markers, std::int16_t listCount, std::string_view notes) {
    std::string section;
    AppendLine(section, "DataFormat=1");
    AppendLine(section, "Defaults=" + GroupLineValues(Markers.row(0)));
    for (int i = 0; i < listCount; ++i)
        AppendLine(section, DecimalText(i + 1) + "=" + GroupLineValues(Markers.row(i + 1)));
    AppendLine(section, "Notes=" + NotesToFileText(notes));
    section += '\0';
    return section;
}

bool SaveGroupSection(std::string_view name, std::string_view file, const std::string& DataFile,
                      const MarkerTable& Markers, std::int16_t listCount, std::string_view notes) {
    const std::string target = file.empty() ? DataFile : std::string(file);
    return lib_ProfileWriteSection(std::string(name), BuildGroupSection(Markers, listCount, notes), target);
}

}  // namespace ostrivane
