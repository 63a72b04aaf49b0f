#include "store/data_file.hpp"

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

}  // namespace

std::string DefaultDataDir() { return lib_JoinPath(lib_GetSpecialFolder(kCommonAppDataFolder), kAppTitle, true); }

std::string DataDirSetting(const SettingStore& settings) {
    return settings.GetSetting(kAppTitle, "Settings", "DataDir", DefaultDataDir());
}

std::string DataFilePath(const SettingStore& settings, std::string_view executableBaseName) {
    return DataDirSetting(settings) + "/" + std::string(executableBaseName) + ".ini";
}

std::string InitDataFile(const SettingStore& settings, std::string_view executableBaseName) {
    const std::string dataFile = DataFilePath(settings, executableBaseName);
    std::error_code ec;
    if (!std::filesystem::exists(dataFile, ec)) {
        lib_MakePath(DataDirSetting(settings));
        lib_ProfileWriteString(kDefaultsSection, "Defaults", kNewDataFileDefaults, dataFile);
    }
    return dataFile;
}

void LoadGlobalDefaults(MarkerRow& GlobalDefaults, const std::string& DataFile, const ScreenMetrics& screen,
                        bool screenMetricsKnown) {
    const std::int16_t format = TextToInt16(lib_ProfileGetString(kDefaultsSection, "DataFormat", "0", DataFile));
    if (format == 0) {
        ReadFormatZeroDefaults(GlobalDefaults, SplitOnCommas(lib_ProfileGetString(kDefaultsSection, "Defaults", "", DataFile)));
    } else if (format == 1) {
        ReadFormatOneDefaults(GlobalDefaults, SplitOnCommas(lib_ProfileGetString(kDefaultsSection, "Defaults", "", DataFile)));
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
