// The path and machine routines that the data file needs to find its place.
// Separators: "\" by default, "/" where pblnForward is true. File-system paths
// on this platform are forward-slash paths.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace ostrivane {

// The separator the path routines write: forward, or the backslash.
inline char PathSeparator(bool forward) { return forward ? '/' : '\\'; }

// Folder numbers of lib_GetSpecialFolder.
inline constexpr std::int32_t kFolderDesktop = 0;
inline constexpr std::int32_t kFolderDocuments = 5;
inline constexpr std::int32_t kFolderAppData = 26;
inline constexpr std::int32_t kFolderLocalAppData = 28;
inline constexpr std::int32_t kFolderCommonAppData = 35;

// The two with exactly one separator between them; none when either is empty.
std::string lib_JoinPath(std::string_view pstrDir, std::string_view pstrFile, bool pblnForward);
// The directory part without its last separator; a drive ("C:") counts only
// with pblnInclDrive.
std::string lib_GetFolder(std::string_view pstrPath, bool pblnInclDrive, bool pblnForward);
// Trimmed text without one surrounding pair of double quotes.
std::string lib_StripQuotes(std::string_view pstrText);

// 35 and 28: $XDG_DATA_HOME or $HOME/.local/share; 26: $XDG_CONFIG_HOME or
// $HOME/.config; 5: $HOME/Documents; 0: $HOME/Desktop; any other: "".
std::string lib_GetSpecialFolder(std::int32_t number);
// The host name, at most 255 characters; "" when it cannot be found.
std::string lib_GetComputerName();

// True when the path, taken against the current directory if relative, is a
// directory. An empty path is not.
bool lib_DirExists(std::string_view pstrDir);
// Makes the directory and its missing parents, one level at a time. A path
// beginning "//" takes its first two parts (server and share) as they are;
// any other is built from "/", a relative one too. A level that cannot be
// made raises 75, as a traced routine with the source "Vexil.lib_MakePath".
// True when the directory exists afterwards.
bool lib_MakePath(std::string_view pstrPath);

}  // namespace ostrivane
