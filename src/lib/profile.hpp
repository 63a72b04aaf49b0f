// The six profile routines: every read and write of the data file goes
// through them. A blank file argument means the system profile.
#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>

namespace ostrivane {

// Count of characters that the last read routine returned.
extern std::int32_t lib_ApiResult;

// The value of key, cut to 254 characters; the default, without its trailing
// spaces, when the file, the section or the key is absent.
std::string lib_ProfileGetString(std::string_view section, std::string_view key, std::string_view defaultValue,
                                 std::string_view file);
bool lib_ProfileWriteString(std::string_view section, std::string_view key, std::string_view value,
                            std::string_view file);
// "key=value" entries each ended by a NUL; at most 32765 characters when the
// section does not fit the read buffer, cut wherever that falls.
std::string lib_ProfileGetSection(std::string_view section, std::string_view file);
// data as lib_ProfileGetSection gives it; replaces the section's whole content.
bool lib_ProfileWriteSection(std::string_view section, std::string_view data, std::string_view file);
void lib_ProfileDeleteSection(std::string_view section, std::string_view file);
// Moves every line of the section under the new name, at the end of the file
// unless a section of that name is there (ini::RenameSection). Always false:
// callers do not test it.
bool lib_ProfileRenameSection(std::string_view oldSection, std::string_view newSection, std::string_view file);

// Why the last of the four write routines failed, as the system words it
// ("No space left on device"); empty when it succeeded.
const std::string& lib_ProfileLastWriteError();

// $XDG_CONFIG_HOME/Ostrivane/profile.ini, XDG_CONFIG_HOME defaulting to
// $HOME/.config; empty when neither variable gives a place.
std::filesystem::path SystemProfilePath();

// Replaces target with content through a temporary file in the same
// directory, so that a failure leaves the old file as it was. The file is
// synced before it takes the old one's place, and the directory after, so
// that a power loss leaves the old file or the new one. False on any failure,
// with the system's reason in reason; no temporary file is left behind.
bool WriteFileAtomically(const std::filesystem::path& target, std::string_view content);
bool WriteFileAtomically(const std::filesystem::path& target, std::string_view content, std::string& reason);

// Removes the temporary files of WriteFileAtomically for target that a
// killed writer left: those of a process that is gone, and any older than a
// minute. Returns how many went.
int RemoveStaleTemporaryFiles(const std::filesystem::path& target);

}  // namespace ostrivane
