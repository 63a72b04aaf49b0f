#include "lib/text.hpp"

#include <vector>

#include "lib/errors.hpp"

namespace ostrivane {

namespace {

unsigned char Byte(char c) { return static_cast<unsigned char>(c); }

// Latin-1 letters: a-z and the accented range 0xE0-0xFE (but for the
// division sign 0xF7) have their capitals 0x20 below.
bool IsLowerLetter(unsigned char b) {
    return (b >= 'a' && b <= 'z') || (b >= 0xE0 && b <= 0xFE && b != 0xF7);
}
bool IsUpperLetter(unsigned char b) {
    return (b >= 'A' && b <= 'Z') || (b >= 0xC0 && b <= 0xDE && b != 0xD7);
}

}  // namespace

char UpperChar(char c) {
    const unsigned char b = Byte(c);
    return IsLowerLetter(b) ? static_cast<char>(b - 0x20) : c;
}

char LowerChar(char c) {
    const unsigned char b = Byte(c);
    return IsUpperLetter(b) ? static_cast<char>(b + 0x20) : c;
}

std::string UCase(std::string_view text) {
    std::string out(text);
    for (char& c : out) c = UpperChar(c);
    return out;
}

std::string LCase(std::string_view text) {
    std::string out(text);
    for (char& c : out) c = LowerChar(c);
    return out;
}

bool EqualsNoCase(std::string_view a, std::string_view b) {
    if (a.size() != b.size()) return false;
    for (std::size_t i = 0; i < a.size(); ++i)
        if (UpperChar(a[i]) != UpperChar(b[i])) return false;
    return true;
}

int CompareNoCase(std::string_view a, std::string_view b) {
    const std::size_t n = a.size() < b.size() ? a.size() : b.size();
    for (std::size_t i = 0; i < n; ++i) {
        const int ca = Byte(UpperChar(a[i]));
        const int cb = Byte(UpperChar(b[i]));
        if (ca != cb) return ca - cb;
    }
    if (a.size() == b.size()) return 0;
    return a.size() < b.size() ? -1 : 1;
}

std::size_t FindNoCase(std::string_view text, std::string_view what, std::size_t start) {
    if (what.size() > text.size()) return std::string_view::npos;
    for (std::size_t i = start; i + what.size() <= text.size(); ++i)
        if (EqualsNoCase(text.substr(i, what.size()), what)) return i;
    return std::string_view::npos;
}

std::string LTrim(std::string_view text) {
    const auto b = text.find_first_not_of(' ');
    return b == std::string_view::npos ? std::string() : std::string(text.substr(b));
}

std::string RTrim(std::string_view text) {
    const auto e = text.find_last_not_of(' ');
    return e == std::string_view::npos ? std::string() : std::string(text.substr(0, e + 1));
}

std::string ReplaceAll(std::string_view text, std::string_view find, std::string_view with) {
    if (find.empty()) return std::string(text);
    std::string out;
    out.reserve(text.size());
    std::size_t from = 0;
    for (std::size_t at = text.find(find); at != std::string_view::npos; at = text.find(find, from)) {
        out.append(text.substr(from, at - from)).append(with);
        from = at + find.size();
    }
    return out.append(text.substr(from));
}

std::string Trim(std::string_view text) {
    const auto b = text.find_first_not_of(' ');
    if (b == std::string_view::npos) return std::string();
    const auto e = text.find_last_not_of(' ');
    return std::string(text.substr(b, e - b + 1));
}

namespace {

// One element of a compiled pattern.
struct PatternItem {
    enum Kind { kLiteral, kAny, kStar, kDigit, kList };
    explicit PatternItem(Kind k) : kind(k) {}
    Kind kind;
    char literal = 0;
    bool negated = false;
    std::vector<std::pair<unsigned char, unsigned char>> ranges;  // for kList
    bool empty_list = false;                                       // "[]" matches nothing
};

std::vector<PatternItem> CompilePattern(std::string_view pattern) {
    std::vector<PatternItem> items;
    for (std::size_t i = 0; i < pattern.size(); ++i) {
        const char c = pattern[i];
        if (c == '?') {
            items.emplace_back(PatternItem::kAny);
        } else if (c == '*') {
            if (items.empty() || items.back().kind != PatternItem::kStar) items.emplace_back(PatternItem::kStar);
        } else if (c == '#') {
            items.emplace_back(PatternItem::kDigit);
        } else if (c == '[') {
            const auto close = pattern.find(']', i + 1);
            if (close == std::string_view::npos) Raise(kInvalidPatternString);
            PatternItem item(PatternItem::kList);
            std::string_view body = pattern.substr(i + 1, close - i - 1);
            if (!body.empty() && body.front() == '!') {
                item.negated = true;
                body.remove_prefix(1);
            }
            if (body.empty() && !item.negated) item.empty_list = true;
            for (std::size_t k = 0; k < body.size(); ++k) {
                const unsigned char lo = Byte(body[k]);
                if (k + 2 < body.size() && body[k + 1] == '-') {
                    const unsigned char hi = Byte(body[k + 2]);
                    if (hi < lo) Raise(kInvalidPatternString);
                    item.ranges.emplace_back(lo, hi);
                    k += 2;
                } else {
                    item.ranges.emplace_back(lo, lo);
                }
            }
            items.push_back(std::move(item));
            i = close;
        } else {
            PatternItem item(PatternItem::kLiteral);
            item.literal = c;
            items.push_back(item);
        }
    }
    return items;
}

bool MatchesOne(const PatternItem& item, char c) {
    switch (item.kind) {
        case PatternItem::kLiteral: return item.literal == c;
        case PatternItem::kAny: return true;
        case PatternItem::kDigit: return c >= '0' && c <= '9';
        case PatternItem::kList: {
            bool in = false;
            for (const auto& [lo, hi] : item.ranges)
                if (Byte(c) >= lo && Byte(c) <= hi) in = true;
            return item.negated ? !in : in;
        }
        case PatternItem::kStar: return false;
    }
    return false;
}

}  // namespace

bool Like(std::string_view text, std::string_view pattern) {
    const std::vector<PatternItem> items = CompilePattern(pattern);
    // Greedy match with one back-tracking point at the last star: linear
    // enough for titles and never exponential.
    std::size_t t = 0, p = 0;
    std::size_t star_p = std::string_view::npos, star_t = 0;
    while (t < text.size() || p < items.size()) {
        if (p < items.size()) {
            const PatternItem& item = items[p];
            if (item.kind == PatternItem::kStar) {
                star_p = p++;
                star_t = t;
                continue;
            }
            if (item.empty_list) {  // zero-length: consumes nothing
                ++p;
                continue;
            }
            if (t < text.size() && MatchesOne(item, text[t])) {
                ++p;
                ++t;
                continue;
            }
        }
        if (star_p != std::string_view::npos && star_t < text.size()) {
            p = star_p + 1;
            t = ++star_t;
            continue;
        }
        return false;
    }
    return true;
}

}  // namespace ostrivane
