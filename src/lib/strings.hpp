// Small routines on paths, text and tagged values that the rest of the
// library stands on. Paths use "\" or, with pblnForward, "/"; the program's
// own file-system paths are the forward form. Text is 8-bit Latin-1.
#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace ostrivane {

class Desktop;

// Last element of the path, or "" (a path ending in its separator, a share
// "\\server\share", a bare drive "C:").
std::string lib_GetFileName(std::string_view pstrPath, bool pblnForward);
// "C:" or "\\server\share"; in the forward form an absolute path's drive is
// the mount point of the file system that holds it (of its nearest existing
// ancestor). "" for a relative path. A path of more than 100 parts raises
// 1000 on the object-error base, as the line parser does (lib_GetPathLevel too).
std::string lib_GetDriveOrShare(std::string_view pstrPath, bool pblnForward);
// lib_GetDriveOrShare of the current directory.
std::string lib_GetCurrentDrive();
// Splits the path into levels: a share, a drive, a URL's "scheme://host" or a
// leading lone separator is the first level; blank levels do not count.
// pintLevel counts from 1 at the top, or from -1 at the end. The result is
// that level, or all levels up to it (pblnToLevel), or from it on
// (pblnFromLevel), joined with "/" when pblnJoinForward, else "\". With
// pblnMustExist the level moves up until the path up to it is a directory.
// "" for a level outside the path.
std::string lib_GetPathLevel(std::string_view pstrPath, std::int32_t pintLevel, bool pblnToLevel, bool pblnForward,
                             bool pblnMustExist, bool pblnFromLevel, bool pblnJoinForward);
// The path with its "..\" elements resolved against pstrBase: each one takes
// a level off the base's end, and what follows the last one is joined to it.
// Without any, a backslash path with no drive or share gets pstrBase or the
// current drive in front; other paths stand as they are. An empty base is,
// in the backslash form, the current directory.
std::string lib_GetFullPath(std::string_view pstrPath, std::string_view pstrBase, bool pblnForward);

// The trimmed text without pstrChars at one end, ignoring case; once, or as
// often as it stands there with pblnRepeat.
std::string lib_TrimChars(std::string_view pstrText, std::string_view pstrChars, bool pblnRepeat, bool pblnFromLeft);
std::string lib_CutAtNull(std::string_view pstrText);

enum CompareMode : int { vbBinaryCompare = 0, vbTextCompare = 1 };
// Occurrences of pstrFind, overlapping ones too; Overflow (6) past 32767.
std::int16_t lib_CountOccurrences(std::string_view pstrText, std::string_view pstrFind, CompareMode mode);
// Replaces each occurrence of pstrFind, found without regard to case. With
// pblnMatchCase the replacement's first letter follows the found text's
// first character (upper for a code below 97). With pblnRescan the search
// goes on inside what was put in; it is set false when the replacement holds
// the find text. An empty find text changes nothing.
std::string lib_ReplaceText(std::string_view pstrText, std::string_view pstrFind, std::string_view pstrReplace,
                            bool pblnMatchCase, bool& pblnRescan);
// Entities, tabs, line ends and numeric references ("&#65;") of HTML text
// made plain, in that order; a numeric reference outside 32 to 255 becomes a
// blank.
std::string lib_HtmlToText(std::string_view pstrText, bool pblnEntities, bool pblnNumeric, bool pblnTabs,
                           std::string_view pstrTabText, bool pblnBreaks, std::string_view pstrBreakText);

// A value that can be empty (never set), null, a number or a text.
struct Empty {
    bool operator==(const Empty&) const = default;
};
struct Null {
    bool operator==(const Null&) const = default;
};
using TaggedValue = std::variant<Empty, Null, double, std::string>;

// The general comparison: numbers by value, texts byte by byte, a number
// before any text, empty as 0 or "". <0, 0, >0. Not for null.
int GeneralCompare(const TaggedValue& a, const TaggedValue& b);
// The greater or lesser by the general comparison, the second on a tie;
// null when either is null.
TaggedValue lib_Max(const TaggedValue& a, const TaggedValue& b);
TaggedValue lib_Min(const TaggedValue& a, const TaggedValue& b);
// pvarValue, or pvarDefault when it is empty, null or "".
TaggedValue lib_IfBlank(const TaggedValue& pvarValue, const TaggedValue& pvarDefault);

float lib_CmToTwips(float centimetres);
// Waits plngMs / 100 steps of 100 ms, handling pending events after each
// with pblnDoEvents; less than 100 ms does not wait.
void lib_Sleep(Desktop& desktop, std::int32_t plngMs, bool pblnDoEvents);

// Insertion sort, ascending and stable, of rows firstRow to lastRow (the
// vector's bounds when absent; firstRow not below lowestIndex). Texts compare
// without regard to case when the first row's key is a text, anything else
// by the general comparison. Subscript out of range (9) for a last row past
// the end. The two-dimensional form moves columns 0 to highestColumn of each
// row by the key in keyColumn.
void lib_SortArray(std::vector<std::string>& ary, std::int32_t lowestIndex,
                   std::optional<std::int32_t> firstRow = std::nullopt,
                   std::optional<std::int32_t> lastRow = std::nullopt);
void lib_SortArray(std::vector<TaggedValue>& ary, std::int32_t lowestIndex,
                   std::optional<std::int32_t> firstRow = std::nullopt,
                   std::optional<std::int32_t> lastRow = std::nullopt);
void lib_SortArray(std::vector<std::vector<TaggedValue>>& ary, std::int32_t highestColumn, std::int32_t keyColumn,
                   std::int32_t lowestIndex, std::optional<std::int32_t> firstRow = std::nullopt,
                   std::optional<std::int32_t> lastRow = std::nullopt);

// The program's Latin-1 text as a file-system path (UTF-8), and a name of
// the file system back as Latin-1: characters beyond it come back as "?".
std::filesystem::path NativePath(std::string_view latin1);
std::string Latin1Name(const std::filesystem::path& native);

}  // namespace ostrivane
