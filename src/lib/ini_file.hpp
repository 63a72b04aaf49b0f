// The INI engine: reading and editing the text of a profile file. Pure
// string work; opening, reading and replacing files is profile.cpp's job.
//
// Grammar, as the platform's profile calls read it: a line ends at CR LF, LF
// or a lone CR. A line whose first non-blank character is "[" and which holds
// a "]" later on is a section header, named by the text between the "[" and
// the last "]". Any other non-blank line is an entry: its key is the text
// before the first "=", its value the text after it. A line without "=" is no
// key: key reads and key writes pass over it, a section read gives it whole.
// Names and values are trimmed of blanks (space, tab, vertical tab, form
// feed). Sections and keys match without regard to case; the first matching
// section and its first matching key win. Comment lines are entries like any
// other; nobody asks for a key that begins with ";". A UTF-8 byte-order mark
// at the start of the text is no part of the first line.
//
// Every edit returns the whole new text with CR LF line ends, behind the
// byte-order mark if the text had one. Lines that the edit does not concern
// keep their content.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace ostrivane::ini {

// Walks the lines of a text, each without its line end. A line end right at
// the end of the text does not open another, empty line.
class LineCursor {
public:
    // start must be the start of a line.
    explicit LineCursor(std::string_view text, std::size_t start = 0) : text_(text), pos_(start) {}
    bool Next(std::string_view& line);
    // Where the next line starts.
    std::size_t position() const { return pos_; }

private:
    std::string_view text_;
    std::size_t pos_;
    // Next CR and LF at or after pos_, found a stretch at a time.
    std::size_t nextCr_ = 0;
    std::size_t nextLf_ = 0;
    bool scanned_ = false;
};

enum class LineKind { Blank, Section, Entry };

struct Line {
    LineKind kind = LineKind::Blank;
    std::string_view name;   // section name or key, trimmed
    std::string_view value;  // trimmed; empty when the line holds no "="
    bool hasValue = false;   // the line holds "="
};

std::string_view TrimBlanks(std::string_view text);
Line ClassifyLine(std::string_view line);

// The value of the first matching key in the first matching section, without
// the pair of single or double quotes that may enclose it; nullopt when the
// section or the key is absent.
std::optional<std::string> FindValue(std::string_view text, std::string_view section, std::string_view key);

// The entries of the first matching section as "key=value" (or the bare key
// of a line without "="), each ended by a NUL, blank lines skipped; nullopt
// when the section is absent.
std::optional<std::string> ReadSection(std::string_view text, std::string_view section);

// Sets a key: the first matching key's value is replaced in its line; a new
// key goes behind the last non-blank line of the section; a new section goes
// at the end of the text.
std::string SetValue(std::string_view text, std::string_view section, std::string_view key, std::string_view value);

// Replaces the content of the first matching section (up to its last
// non-blank line; blank lines before the next header stay) with the entries
// of data: NUL-ended entries, the list ending at an empty entry or at the end
// of data. An absent section is appended at the end.
std::string ReplaceSection(std::string_view text, std::string_view section, std::string_view data);

// Moves every line of the first section named oldSection, up to its last
// non-blank one and as it stands, to newSection: every section named
// oldSection goes first, then the lines replace newSection's content as
// ReplaceSection does, or come at the end under a new header. So a rename that
// changes only the case of the name moves the section to the end as well.
std::string RenameSection(std::string_view text, std::string_view oldSection, std::string_view newSection);

// Removes every matching section, header and all its lines; nullopt when
// there was none, so the caller need not write anything.
std::optional<std::string> RemoveSection(std::string_view text, std::string_view section);

}  // namespace ostrivane::ini
