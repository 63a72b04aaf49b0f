#include "lib/ini_file.hpp"

#include <vector>

#include "lib/text.hpp"

namespace ostrivane::ini {

namespace {

constexpr std::string_view kLineEnd = "\r\n";
constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";

// The byte-order mark the text starts with, or nothing.
std::string_view ByteOrderMark(std::string_view text) {
    return text.starts_with(kByteOrderMark) ? kByteOrderMark : std::string_view();
}

bool IsBlank(char c) { return c == ' ' || c == '\t' || c == '\v' || c == '\f'; }

bool IsHeaderOf(const Line& line, std::string_view section) {
    return line.kind == LineKind::Section && EqualsNoCase(line.name, section);
}

// Start of the first line at or after pos (itself a line start) whose first
// non-blank character is "["; npos when there is none. Headers are few, so a
// search for "[" passes over the lines of other sections in one sweep.
std::size_t NextBracketLine(std::string_view text, std::size_t pos) {
    while ((pos = text.find('[', pos)) != std::string_view::npos) {
        std::size_t start = pos;
        while (start > 0 && IsBlank(text[start - 1])) --start;
        if (start == 0 || text[start - 1] == '\r' || text[start - 1] == '\n') return start;
        ++pos;
    }
    return pos;
}

// Where the lines of the first matching section begin, behind its header.
std::optional<std::size_t> FindSectionBody(std::string_view text, std::string_view section) {
    std::size_t pos = 0;
    while ((pos = NextBracketLine(text, pos)) != std::string_view::npos) {
        // A byte loop to the end of this line only: a search for the line
        // end could run to the end of a file that has no CR at all.
        std::size_t end = pos;
        while (end < text.size() && text[end] != '\r' && text[end] != '\n') ++end;
        const bool found = IsHeaderOf(ClassifyLine(text.substr(pos, end - pos)), section);
        if (end < text.size() && text[end] == '\r' && end + 1 < text.size() && text[end + 1] == '\n') ++end;
        pos = end < text.size() ? end + 1 : end;
        if (found) return pos;
    }
    return std::nullopt;
}

// Output of an edit: every line ends in CR LF, whatever it ended in before.
class Writer {
public:
    Writer(std::size_t expected, std::string_view byteOrderMark) {
        out_.reserve(expected + 64);
        out_.append(byteOrderMark);
    }

    void Put(std::string_view line) {
        out_.append(line);
        out_.append(kLineEnd);
    }
    void PutEntry(std::string_view key, std::string_view value) {
        out_.append(key);
        out_.push_back('=');
        Put(value);
    }
    void PutHeader(std::string_view section) {
        out_.push_back('[');
        out_.append(section);
        Put("]");
    }
    // Section data: NUL-ended entries up to an empty one or the end of data.
    void PutEntries(std::string_view data) {
        std::size_t pos = 0;
        while (pos < data.size()) {
            std::size_t end = data.find('\0', pos);
            if (end == std::string_view::npos) end = data.size();
            if (end == pos) break;
            Put(data.substr(pos, end - pos));
            pos = end + 1;
        }
    }
    void PutLines(const std::vector<std::string_view>& lines) {
        for (std::string_view line : lines) Put(line);
    }
    // Blank lines held back while it is not yet known whether more content
    // follows them in the section.
    void Hold(std::string_view line) { held_.push_back(line); }
    void PutHeld() {
        for (std::string_view line : held_) Put(line);
        held_.clear();
    }
    void DropHeld() { held_.clear(); }

    std::string Take() { return std::move(out_); }

private:
    std::string out_;
    std::vector<std::string_view> held_;
};

// The lines of the first matching section as they stand, up to its last
// non-blank one.
std::vector<std::string_view> SectionLines(std::string_view text, std::string_view section) {
    std::vector<std::string_view> lines;
    const std::optional<std::size_t> body = FindSectionBody(text, section);
    if (!body) return lines;
    std::size_t kept = 0;
    LineCursor cursor(text, *body);
    std::string_view raw;
    while (cursor.Next(raw)) {
        const LineKind kind = ClassifyLine(raw).kind;
        if (kind == LineKind::Section) break;
        lines.push_back(raw);
        if (kind != LineKind::Blank) kept = lines.size();
    }
    lines.resize(kept);
    return lines;
}

// A value in a matching pair of quotes comes back without them.
std::string_view Unquoted(std::string_view value) {
    if (value.size() >= 2 && value.front() == value.back() && (value.front() == '"' || value.front() == '\''))
        return value.substr(1, value.size() - 2);
    return value;
}

bool IsKey(const Line& line, std::string_view key) {
    return line.kind == LineKind::Entry && line.hasValue && EqualsNoCase(line.name, key);
}

// Replaces the content of the first matching section (up to its last
// non-blank line; blank lines before the next header stay) with what
// putContent writes; an absent section is appended at the end.
template <class PutContent>
std::string Replace(std::string_view text, std::string_view section, std::size_t contentSize, PutContent putContent) {
    const std::string_view byteOrderMark = ByteOrderMark(text);
    text.remove_prefix(byteOrderMark.size());
    section = TrimBlanks(section);
    enum class State { Before, Inside, Done } state = State::Before;
    Writer out(text.size() + contentSize, byteOrderMark);
    LineCursor cursor(text);
    std::string_view raw;
    while (cursor.Next(raw)) {
        const Line line = state == State::Done ? Line{} : ClassifyLine(raw);
        if (state == State::Inside) {
            if (line.kind == LineKind::Section) {
                putContent(out);
                out.PutHeld();
                state = State::Done;
            } else {
                // Old content goes, and so do blank lines with content after them.
                if (line.kind == LineKind::Blank)
                    out.Hold(raw);
                else
                    out.DropHeld();
                continue;
            }
        } else if (state == State::Before && IsHeaderOf(line, section)) {
            state = State::Inside;
        }
        out.Put(raw);
    }
    if (state == State::Inside) {
        putContent(out);
        out.PutHeld();
    } else if (state == State::Before) {
        out.PutHeader(section);
        putContent(out);
    }
    return out.Take();
}

}  // namespace

bool LineCursor::Next(std::string_view& line) {
    if (pos_ >= text_.size()) return false;
    // Two memchr-speed searches beat a byte loop over a file of megabytes.
    if (!scanned_ || nextCr_ < pos_) nextCr_ = text_.find('\r', pos_);
    if (!scanned_ || nextLf_ < pos_) nextLf_ = text_.find('\n', pos_);
    scanned_ = true;
    const std::size_t end = nextCr_ < nextLf_ ? nextCr_ : nextLf_;
    if (end == std::string_view::npos) {
        line = text_.substr(pos_);
        pos_ = text_.size();
        return true;
    }
    line = text_.substr(pos_, end - pos_);
    pos_ = end + 1;
    if (text_[end] == '\r' && pos_ < text_.size() && text_[pos_] == '\n') ++pos_;
    return true;
}

std::string_view TrimBlanks(std::string_view text) {
    std::size_t first = 0;
    while (first < text.size() && IsBlank(text[first])) ++first;
    std::size_t last = text.size();
    while (last > first && IsBlank(text[last - 1])) --last;
    return text.substr(first, last - first);
}

Line ClassifyLine(std::string_view raw) {
    const std::string_view text = TrimBlanks(raw);
    Line line;
    if (text.empty()) return line;
    if (text.front() == '[') {
        const std::size_t close = text.rfind(']');
        if (close != std::string_view::npos && close > 0) {
            line.kind = LineKind::Section;
            line.name = TrimBlanks(text.substr(1, close - 1));
            return line;
        }
    }
    line.kind = LineKind::Entry;
    const std::size_t equals = text.find('=');
    if (equals == std::string_view::npos) {
        line.name = text;
    } else {
        line.name = TrimBlanks(text.substr(0, equals));
        line.value = TrimBlanks(text.substr(equals + 1));
        line.hasValue = true;
    }
    return line;
}

std::optional<std::string> FindValue(std::string_view text, std::string_view section, std::string_view key) {
    text.remove_prefix(ByteOrderMark(text).size());
    const std::optional<std::size_t> body = FindSectionBody(text, TrimBlanks(section));
    if (!body) return std::nullopt;
    key = TrimBlanks(key);
    LineCursor cursor(text, *body);
    std::string_view raw;
    while (cursor.Next(raw)) {
        const Line line = ClassifyLine(raw);
        if (line.kind == LineKind::Section) break;
        if (IsKey(line, key)) return std::string(Unquoted(line.value));
    }
    return std::nullopt;
}

std::optional<std::string> ReadSection(std::string_view text, std::string_view section) {
    text.remove_prefix(ByteOrderMark(text).size());
    const std::optional<std::size_t> body = FindSectionBody(text, TrimBlanks(section));
    if (!body) return std::nullopt;
    std::string entries;
    LineCursor cursor(text, *body);
    std::string_view raw;
    while (cursor.Next(raw)) {
        const Line line = ClassifyLine(raw);
        if (line.kind == LineKind::Section) break;
        if (line.kind != LineKind::Entry) continue;
        entries.append(line.name);
        // A line without "=" gives its key alone.
        if (line.hasValue) {
            entries.push_back('=');
            entries.append(line.value);
        }
        entries.push_back('\0');
    }
    return entries;
}

std::string SetValue(std::string_view text, std::string_view section, std::string_view key, std::string_view value) {
    const std::string_view byteOrderMark = ByteOrderMark(text);
    text.remove_prefix(byteOrderMark.size());
    section = TrimBlanks(section);
    key = TrimBlanks(key);
    enum class State { Before, Inside, Done } state = State::Before;
    Writer out(text.size() + key.size() + value.size(), byteOrderMark);
    LineCursor cursor(text);
    std::string_view raw;
    while (cursor.Next(raw)) {
        const Line line = state == State::Done ? Line{} : ClassifyLine(raw);
        if (state == State::Inside) {
            if (line.kind == LineKind::Section) {
                // The key was not there: it goes behind the section's last
                // non-blank line, before the blank lines that part it from the next.
                out.PutEntry(key, value);
                out.PutHeld();
                state = State::Done;
            } else if (line.kind == LineKind::Blank) {
                out.Hold(raw);
                continue;
            } else {
                out.PutHeld();
                if (IsKey(line, key)) {
                    out.PutEntry(line.name, value);
                    state = State::Done;
                    continue;
                }
            }
        } else if (state == State::Before && IsHeaderOf(line, section)) {
            state = State::Inside;
        }
        out.Put(raw);
    }
    if (state == State::Inside) {
        out.PutEntry(key, value);
        out.PutHeld();
    } else if (state == State::Before) {
        out.PutHeader(section);
        out.PutEntry(key, value);
    }
    return out.Take();
}

std::string ReplaceSection(std::string_view text, std::string_view section, std::string_view data) {
    return Replace(text, section, data.size(), [data](Writer& out) { out.PutEntries(data); });
}

std::string RenameSection(std::string_view text, std::string_view oldSection, std::string_view newSection) {
    const std::vector<std::string_view> lines =
        SectionLines(text.substr(ByteOrderMark(text).size()), TrimBlanks(oldSection));
    std::size_t size = 0;
    for (std::string_view line : lines) size += line.size() + kLineEnd.size();
    const std::optional<std::string> removed = RemoveSection(text, oldSection);
    return Replace(removed ? std::string_view(*removed) : text, newSection, size,
                   [&lines](Writer& out) { out.PutLines(lines); });
}

std::optional<std::string> RemoveSection(std::string_view text, std::string_view section) {
    const std::string_view byteOrderMark = ByteOrderMark(text);
    text.remove_prefix(byteOrderMark.size());
    section = TrimBlanks(section);
    Writer out(text.size(), byteOrderMark);
    LineCursor cursor(text);
    std::string_view raw;
    bool removing = false;
    bool removed = false;
    while (cursor.Next(raw)) {
        const Line line = ClassifyLine(raw);
        if (line.kind == LineKind::Section) {
            removing = EqualsNoCase(line.name, section);
            removed = removed || removing;
        }
        if (!removing) out.Put(raw);
    }
    if (!removed) return std::nullopt;
    return out.Take();
}

}  // namespace ostrivane::ini
