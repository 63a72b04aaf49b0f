// The data file: where it lives, its first-run contents, the global
// defaults it carries, and the text of a group section.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "platform/setting_store.hpp"
#include "store/markers.hpp"

namespace ostrivane {

inline constexpr char kAppTitle[] = "Ostrivane";
// The program's file name when the system does not tell it.
inline constexpr char kDefaultExecutableBaseName[] = "ostrivane";
inline constexpr char kDefaultsSection[] = "Defaults";
inline constexpr char kNewDataFileDefaults[] = "0,0,-2,-2,255,1,100,0,";
// A CR LF of the group notes is this one character on the Notes= line.
inline constexpr char kNotesLineBreak = '\xff';

// The file name of the running program (/proc/self/exe), or the one given to
// SetExecutableBaseName; it names the data file and the message box.
const std::string& ExecutableBaseName();
// An empty name goes back to the running program's.
void SetExecutableBaseName(std::string name);
// The program's name from the target of /proc/self/exe; "ostrivane" for none.
std::string ProgramNameOfLink(std::string_view link);

// The directory named after the title in the all-users application data folder.
std::string DefaultDataDir();
// DataDir of the per-user store, or DefaultDataDir.
std::string DataDirSetting(const SettingStore& settings);
// The data directory, a separator, the executable's base name and ".ini".
std::string DataFilePath(const SettingStore& settings);

// Computes the data file's path, removes what killed writes left beside it,
// and creates the file, with its directory, when it is missing or empty.
// Returns the path (the new value of DataFile). A path that holds no
// readable file, or where none can be made, raises Path/File access error
// with a description that names the file and what is wrong.
std::string InitDataFile(const SettingStore& settings);

// Reads DataFormat and Defaults into GlobalDefaults, and supplies ScreenRes
// (only once the screen metrics are known) and PC when they are absent.
// A short or non-numeric Defaults line raises Subscript out of range or
// Type mismatch with GlobalDefaults as far as the assignments got, a missing
// one Type mismatch; the description names the file and the line.
void LoadGlobalDefaults(MarkerRow& GlobalDefaults, const std::string& DataFile, const ScreenMetrics& screen,
                        bool screenMetricsKnown);

// Notes as they stand on the Notes= line and back.
std::string NotesToFileText(std::string_view notes);
std::string FileTextToNotes(std::string_view text);

// One line's values: columns 1 to 7 and 12 of a row, each followed by a comma.
std::string GroupLineValues(const MarkerRow& row);

// The section text of the loaded group, NUL after each line and a second NUL
// at the end: DataFormat=1, Defaults= (row 0), one line per list item, Notes=.
std::string BuildGroupSection(const MarkerTable& Markers, std::int16_t listCount, std::string_view notes);

// Writes the group under name into file, or into DataFile when file is blank;
// the old section of that name is replaced whole.
bool SaveGroupSection(std::string_view name, std::string_view file, const std::string& DataFile,
                      const MarkerTable& Markers, std::int16_t listCount, std::string_view notes);

}  // namespace ostrivane
