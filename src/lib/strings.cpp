#include "lib/strings.hpp"

#include <sys/stat.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <system_error>
#include <thread>

#include "lib/errors.hpp"
#include "lib/line_parser.hpp"
#include "lib/numbers.hpp"
#include "lib/path_basics.hpp"
#include "lib/text.hpp"
#include "platform/desktop.hpp"

namespace ostrivane {

namespace {

namespace fs = std::filesystem;

constexpr std::size_t kPathParts = 100;
constexpr std::int32_t kSleepStepMs = 100;


// InStr: 1-based position of what in text from start, 0 when absent; an
// empty what is found at start.
std::size_t InStr(std::size_t start, std::string_view text, std::string_view what, CompareMode mode) {
    if (start > text.size()) return 0;
    const std::size_t at = mode == vbTextCompare ? FindNoCase(text, what, start - 1) : text.find(what, start - 1);
    return at == std::string_view::npos ? 0 : at + 1;
}

// Split as the run time does it: every separator ends an element.
std::vector<std::string> SplitAll(std::string_view text, char separator) {
    std::vector<std::string> parts;
    if (text.empty()) return parts;
    std::size_t start = 0;
    for (std::size_t at; (at = text.find(separator, start)) != std::string_view::npos; start = at + 1)
        parts.emplace_back(text.substr(start, at - start));
    parts.emplace_back(text.substr(start));
    return parts;
}

// The split of a path into its non-blank, trimmed parts, quotes kept whole.
std::vector<std::string> PathParts(std::string_view text, char separator) {
    LineParseOptions options;
    options.DropDelims = std::string(1, separator);
    options.QuotePairs = "\"\"";
    options.TrimParts = true;
    options.DelimsUnused = true;
    options.DelimToPrevPart = true;
    options.KeepPairWhole = true;
    options.PairInsidePart = true;
    std::vector<std::string> parts(kPathParts + 1);
    parts.resize(static_cast<std::size_t>(lib_GetLineParts3(text, parts, options)) + 1);
    return parts;
}

// The highest directory on the same file system as the nearest existing
// ancestor of an absolute path.
std::string MountPointOf(std::string_view path) {
    fs::path at = fs::path(path).lexically_normal();
    struct stat info {};
    while (::stat(at.c_str(), &info) != 0) {
        if (at == at.root_path() || !at.has_relative_path()) return "/";
        at = at.parent_path();
    }
    const dev_t device = info.st_dev;
    while (at.has_relative_path()) {
        struct stat parent {};
        if (::stat(at.parent_path().c_str(), &parent) != 0 || parent.st_dev != device) break;
        at = at.parent_path();
    }
    return at.string();
}

std::vector<std::string> PathLevels(std::string text, bool forward) {
    const char separator = PathSeparator(forward);
    if (forward) {
        for (char& c : text)
            if (c == '\\') c = '/';
    }
    std::vector<std::string> levels;
    std::size_t restStart = 0;
    const std::size_t scheme = forward ? text.find("://") : std::string::npos;
    const std::string twoSeparators(2, separator);
    if (scheme != std::string::npos) {
        const std::size_t hostEnd = text.find('/', scheme + 3);
        levels.push_back(text.substr(0, hostEnd));
        restStart = hostEnd == std::string::npos ? text.size() : hostEnd;
    } else if (text.starts_with(twoSeparators)) {
        const std::vector<std::string> parts = PathParts(text, separator);
        if (parts.size() < 3) return levels;
        levels.push_back(twoSeparators + parts[1] + separator + parts[2]);
        for (std::size_t i = 3; i < parts.size(); ++i) levels.push_back(parts[i]);
        return levels;
    } else if (!text.empty() && text.front() == separator) {
        levels.emplace_back(1, separator);
    }
    const std::vector<std::string> parts = PathParts(std::string_view(text).substr(restStart), separator);
    for (std::size_t i = 1; i < parts.size(); ++i) levels.push_back(parts[i]);
    return levels;
}

std::string JoinLevels(const std::vector<std::string>& levels, std::size_t first, std::size_t last, bool forward) {
    std::string joined;
    for (std::size_t i = first; i <= last; ++i) joined = lib_JoinPath(joined, levels[i - 1], forward);
    return joined;
}

int CompareNumbers(double a, double b) { return a < b ? -1 : (a > b ? 1 : 0); }

bool IsText(const TaggedValue& v) { return std::holds_alternative<std::string>(v); }

template <class Row, class Key>
void InsertionSort(std::vector<Row>& ary, std::int32_t lowestIndex, std::optional<std::int32_t> firstRow,
                   std::optional<std::int32_t> lastRow, Key key) {
    std::int32_t first = firstRow.value_or(0);
    const std::int32_t last = lastRow.value_or(static_cast<std::int32_t>(ary.size()) - 1);
    if (first < lowestIndex) first = lowestIndex;
    if (first >= last) return;
    if (first < 0 || static_cast<std::size_t>(last) >= ary.size()) Raise(kSubscriptOutOfRange);
    const auto begin = ary.begin() + first;
    std::vector<Row> work(begin, ary.begin() + last + 1);
    const TaggedValue& firstKey = key(work.front());
    const bool asText = IsText(firstKey);
    const auto less = [&](const Row& a, const Row& b) {
        const TaggedValue& ka = key(a);
        const TaggedValue& kb = key(b);
        if (asText && IsText(ka) && IsText(kb))
            return CompareNoCase(std::get<std::string>(ka), std::get<std::string>(kb)) < 0;
        return GeneralCompare(ka, kb) < 0;
    };
    std::vector<std::size_t> order(work.size());
    for (std::size_t i = 0; i < order.size(); ++i) order[i] = i;
    for (std::size_t i = 1; i < order.size(); ++i)
        for (std::size_t j = i; j > 0 && less(work[order[j]], work[order[j - 1]]); --j)
            std::swap(order[j], order[j - 1]);
    for (std::size_t i = 0; i < order.size(); ++i) *(begin + static_cast<std::ptrdiff_t>(i)) = work[order[i]];
}

}  // namespace

std::string lib_GetFileName(std::string_view pstrPath, bool pblnForward) {
    const std::string text = lib_StripQuotes(pstrPath);
    const char separator = PathSeparator(pblnForward);
    const std::vector<std::string> parts = SplitAll(text, separator);
    if (parts.empty()) return std::string();
    if (text.starts_with(std::string(2, separator))) return parts.size() >= 5 ? parts.back() : "";
    if (parts[0].ends_with(':')) return parts.size() >= 2 ? parts.back() : "";
    return parts.back();
}

std::string lib_GetDriveOrShare(std::string_view pstrPath, bool pblnForward) {
    const std::string text = lib_StripQuotes(pstrPath);
    const char separator = PathSeparator(pblnForward);
    const std::vector<std::string> parts = PathParts(text, separator);
    if (text.starts_with(std::string(2, separator)))
        return parts.size() >= 3 ? std::string(2, separator) + parts[1] + separator + parts[2] : "";
    if (parts.size() >= 2 && parts[1].ends_with(':')) return parts[1];
    if (pblnForward && !text.empty() && text.front() == '/') return MountPointOf(text);
    return std::string();
}

std::string lib_GetCurrentDrive() {
    std::error_code ec;
    const fs::path current = fs::current_path(ec);
    return ec ? std::string() : lib_GetDriveOrShare(current.string(), true);
}

std::string lib_GetPathLevel(std::string_view pstrPath, std::int32_t pintLevel, bool pblnToLevel, bool pblnForward,
                             bool pblnMustExist, bool pblnFromLevel, bool pblnJoinForward) {
    const std::vector<std::string> levels = PathLevels(lib_StripQuotes(pstrPath), pblnForward);
    const auto count = static_cast<std::int64_t>(levels.size());
    std::int64_t level = pintLevel < 0 ? count + pintLevel + 1 : pintLevel;
    if (level < 1 || level > count) return std::string();
    if (pblnMustExist) {
        while (level >= 1 && !lib_DirExists(JoinLevels(levels, 1, static_cast<std::size_t>(level), pblnJoinForward)))
            --level;
        if (level < 1) return std::string();
    }
    const auto at = static_cast<std::size_t>(level);
    if (pblnToLevel) return JoinLevels(levels, 1, at, pblnJoinForward);
    if (pblnFromLevel) return JoinLevels(levels, at, levels.size(), pblnJoinForward);
    return levels[at - 1];
}

std::string lib_GetFullPath(std::string_view pstrPath, std::string_view pstrBase, bool pblnForward) {
    const std::string up = std::string("..") + PathSeparator(pblnForward);
    const std::int16_t ups = lib_CountOccurrences(pstrPath, up, vbTextCompare);
    if (ups == 0) {
        if (pblnForward || !lib_GetDriveOrShare(pstrPath, false).empty()) return std::string(pstrPath);
        return lib_JoinPath(pstrBase.empty() ? lib_GetCurrentDrive() : std::string(pstrBase), pstrPath, false);
    }
    const std::size_t last = pstrPath.rfind(up);
    const std::string_view remainder = pstrPath.substr(last + 3);
    std::string base(pstrBase);
    if (base.empty() && !pblnForward) {
        std::error_code ec;
        base = fs::current_path(ec).string();
    }
    const std::string above = lib_GetPathLevel(base, -(ups + 1), true, pblnForward, false, false, pblnForward);
    return lib_JoinPath(above, remainder, pblnForward);
}

std::string lib_TrimChars(std::string_view pstrText, std::string_view pstrChars, bool pblnRepeat, bool pblnFromLeft) {
    std::string text = Trim(pstrText);
    if (pstrChars.empty()) return text;
    const std::size_t n = pstrChars.size();
    do {
        if (text.size() < n) break;
        const std::string_view end = pblnFromLeft ? std::string_view(text).substr(0, n)
                                                  : std::string_view(text).substr(text.size() - n);
        if (!EqualsNoCase(end, pstrChars)) break;
        text.erase(pblnFromLeft ? 0 : text.size() - n, n);
    } while (pblnRepeat);
    return text;
}

std::string lib_CutAtNull(std::string_view pstrText) { return std::string(pstrText.substr(0, pstrText.find('\0'))); }

std::int16_t lib_CountOccurrences(std::string_view pstrText, std::string_view pstrFind, CompareMode mode) {
    std::int16_t count = 0;
    for (std::size_t at = InStr(1, pstrText, pstrFind, mode); at != 0; at = InStr(at + 1, pstrText, pstrFind, mode))
        count = Add16(count, 1);
    return count;
}

std::string lib_ReplaceText(std::string_view pstrText, std::string_view pstrFind, std::string_view pstrReplace,
                            bool pblnMatchCase, bool& pblnRescan) {
    std::string text(pstrText);
    if (pstrFind.empty()) return text;
    if (FindNoCase(pstrReplace, pstrFind) != std::string_view::npos) pblnRescan = false;
    std::string replacement(pstrReplace);
    for (std::size_t at = InStr(1, text, pstrFind, vbTextCompare); at != 0;) {
        if (pblnMatchCase && !replacement.empty()) {
            const bool upper = static_cast<unsigned char>(text[at - 1]) < 97;
            replacement[0] = upper ? UpperChar(pstrReplace[0]) : LowerChar(pstrReplace[0]);
        }
        text.replace(at - 1, pstrFind.size(), replacement);
        std::size_t next = at + replacement.size();
        if (pblnRescan) next = replacement.size() >= pstrFind.size() ? at + 1 : at;
        at = InStr(next, text, pstrFind, vbTextCompare);
    }
    return text;
}

std::string lib_HtmlToText(std::string_view pstrText, bool pblnEntities, bool pblnNumeric, bool pblnTabs,
                           std::string_view pstrTabText, bool pblnBreaks, std::string_view pstrBreakText) {
    std::string text(pstrText);
    const auto replace = [&text](std::string_view find, std::string_view with) {
        bool rescan = true;
        text = lib_ReplaceText(text, find, with, false, rescan);
    };
    if (pblnEntities) {
        const std::pair<const char*, const char*> entities[] = {
            {"&nbsp;", " "}, {"&quot;", "\""}, {"&lt;", "<"}, {"&gt;", ">"}, {"&apos;", "'"}, {"&amp;", "&"}};
        for (const auto& [entity, plain] : entities) replace(entity, plain);
    }
    if (pblnTabs) replace("\t", pstrTabText);
    if (pblnBreaks) {
        replace("\r\n", pstrBreakText);
        replace("\n", pstrBreakText);
    }
    if (pblnNumeric) {
        for (std::size_t at = text.find("&#"); at != std::string::npos; at = text.find("&#", at)) {
            const std::size_t end = text.find(';', at + 2);
            if (end == std::string::npos) break;
            char plain = ' ';
            SkipOnFailure([&] {
                const double code = TextToNumber(std::string_view(text).substr(at + 2, end - at - 2));
                if (code >= 32 && code <= 255)
                    plain = static_cast<char>(static_cast<unsigned char>(RoundTiesToEven(code)));
            });
            text.replace(at, end - at + 1, 1, plain);
        }
    }
    return text;
}

int GeneralCompare(const TaggedValue& a, const TaggedValue& b) {
    const bool aNumber = std::holds_alternative<double>(a), bNumber = std::holds_alternative<double>(b);
    if (IsText(a) || IsText(b)) {
        if (aNumber || bNumber) return aNumber ? -1 : 1;  // a number sorts before any text
        const std::string ta = IsText(a) ? std::get<std::string>(a) : std::string();
        const std::string tb = IsText(b) ? std::get<std::string>(b) : std::string();
        return ta < tb ? -1 : (ta == tb ? 0 : 1);
    }
    return CompareNumbers(aNumber ? std::get<double>(a) : 0.0, bNumber ? std::get<double>(b) : 0.0);
}

TaggedValue lib_Max(const TaggedValue& a, const TaggedValue& b) {
    if (std::holds_alternative<Null>(a) || std::holds_alternative<Null>(b)) return Null{};
    return GeneralCompare(a, b) > 0 ? a : b;
}

TaggedValue lib_Min(const TaggedValue& a, const TaggedValue& b) {
    if (std::holds_alternative<Null>(a) || std::holds_alternative<Null>(b)) return Null{};
    return GeneralCompare(a, b) < 0 ? a : b;
}

TaggedValue lib_IfBlank(const TaggedValue& pvarValue, const TaggedValue& pvarDefault) {
    const bool blank = std::holds_alternative<Empty>(pvarValue) || std::holds_alternative<Null>(pvarValue) ||
                       (IsText(pvarValue) && std::get<std::string>(pvarValue).empty());
    return blank ? pvarDefault : pvarValue;
}

float lib_CmToTwips(float centimetres) { return centimetres * 567.0f; }

void lib_Sleep(Desktop& desktop, std::int32_t plngMs, bool pblnDoEvents) {
    for (std::int32_t step = 0; step < plngMs / kSleepStepMs; ++step) {
        std::this_thread::sleep_for(std::chrono::milliseconds(kSleepStepMs));
        if (pblnDoEvents) desktop.DoEvents();
    }
}

void lib_SortArray(std::vector<std::string>& ary, std::int32_t lowestIndex, std::optional<std::int32_t> firstRow,
                   std::optional<std::int32_t> lastRow) {
    std::vector<TaggedValue> tagged(ary.begin(), ary.end());
    lib_SortArray(tagged, lowestIndex, firstRow, lastRow);
    for (std::size_t i = 0; i < ary.size(); ++i) ary[i] = std::get<std::string>(tagged[i]);
}

void lib_SortArray(std::vector<TaggedValue>& ary, std::int32_t lowestIndex, std::optional<std::int32_t> firstRow,
                   std::optional<std::int32_t> lastRow) {
    InsertionSort(ary, lowestIndex, firstRow, lastRow, [](const TaggedValue& v) -> const TaggedValue& { return v; });
}

void lib_SortArray(std::vector<std::vector<TaggedValue>>& ary, std::int32_t highestColumn, std::int32_t keyColumn,
                   std::int32_t lowestIndex, std::optional<std::int32_t> firstRow,
                   std::optional<std::int32_t> lastRow) {
    if (keyColumn < 0 || keyColumn > highestColumn) Raise(kSubscriptOutOfRange);
    const auto columns = static_cast<std::size_t>(highestColumn) + 1;
    for (const auto& row : ary)
        if (row.size() < columns) Raise(kSubscriptOutOfRange);
    // Only the columns up to highestColumn travel with their key.
    std::vector<std::vector<TaggedValue>> moved(ary.size());
    for (std::size_t i = 0; i < ary.size(); ++i)
        moved[i].assign(ary[i].begin(), ary[i].begin() + static_cast<std::ptrdiff_t>(columns));
    InsertionSort(moved, lowestIndex, firstRow, lastRow,
                  [keyColumn](const std::vector<TaggedValue>& row) -> const TaggedValue& {
                      return row[static_cast<std::size_t>(keyColumn)];
                  });
    for (std::size_t i = 0; i < ary.size(); ++i) std::copy(moved[i].begin(), moved[i].end(), ary[i].begin());
}

fs::path NativePath(std::string_view latin1) {
    std::string utf8;
    utf8.reserve(latin1.size());
    for (const char c : latin1) {
        const auto b = static_cast<unsigned char>(c);
        if (b < 0x80) {
            utf8 += c;
        } else {
            utf8 += static_cast<char>(0xC0 | (b >> 6));
            utf8 += static_cast<char>(0x80 | (b & 0x3F));
        }
    }
    return fs::path(utf8);
}

std::string Latin1Name(const fs::path& native) {
    const std::string utf8 = native.string();
    std::string out;
    for (std::size_t i = 0; i < utf8.size();) {
        const auto b = static_cast<unsigned char>(utf8[i]);
        std::size_t length = b < 0x80 ? 1 : b >= 0xF0 ? 4 : b >= 0xE0 ? 3 : b >= 0xC0 ? 2 : 0;
        bool whole = length != 0 && i + length <= utf8.size();
        for (std::size_t k = 1; whole && k < length; ++k)
            whole = (static_cast<unsigned char>(utf8[i + k]) & 0xC0) == 0x80;
        if (!whole) {
            out += '?';  // a byte that starts no character
            ++i;
            continue;
        }
        if (length == 1) {
            out += static_cast<char>(b);
        } else if (length == 2 && b >= 0xC2 && b <= 0xC3) {
            out += static_cast<char>(((b & 0x1F) << 6) | (static_cast<unsigned char>(utf8[i + 1]) & 0x3F));
        } else {
            out += '?';
        }
        i += length;
    }
    return out;
}

}  // namespace ostrivane
