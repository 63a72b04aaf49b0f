#include "lib/line_parser.hpp"

#include <array>
#include <limits>
#include <utility>

#include "lib/errors.hpp"
#include "lib/numbers.hpp"
#include "lib/text.hpp"

namespace ostrivane {
namespace {

constexpr const char* kSource = "Vexil.lib_GetLineParts3";
constexpr std::int32_t kParserError = kObjectErrorBase + 1000;
constexpr int kMaxRows = 50;

enum CharType : std::uint8_t {
    kUnused = 0,
    kQuotePair = 1,      // nesting, brackets dropped
    kKeepQuotePair = 2,  // nesting, brackets kept
    kDropDelim = 3,
    kDropDelim2 = 4,
    kHardDelim = 5,
    kPartDelim = 6,
    kSplitPair = 7,      // no nesting, brackets dropped
    kKeepSplitPair = 8,  // no nesting, brackets kept
};

struct Row {
    char ch = '\0';
    CharType type = kUnused;
    bool samePair = false;  // opener and closer are one character: a toggle decides
    bool toggle = false;    // for such a pair: open now
};

// Pairs occupy an odd row and the even row after it; singles occupy an odd
// row and skip the next, so a row's parity tells an opener from a closer.
class CharTable {
public:
    void AddPairs(std::string_view pairs, CharType type) {
        for (char c : pairs) Put(c, type);
        if (count_ % 2 != 0) Raise(kParserError, kSource, "Uneven pair passed");
    }

    void AddSingles(std::string_view chars, CharType type) {
        for (char c : chars) {
            Put(c, type);
            ++count_;
        }
    }

    // Two rows keep the parity of the pairs that follow.
    void AddEndMarks() {
        Put('\0', kHardDelim);
        Put('\0', kHardDelim);
    }

    void Finish() {
        for (int r = 1; r < count_; r += 2) {
            const Row& next = rows_[static_cast<std::size_t>(r + 1)];
            Row& row = rows_[static_cast<std::size_t>(r)];
            row.samePair = row.type != kUnused && row.type == next.type && row.ch == next.ch;
        }
        // Downwards, so that the first row holding a character wins.
        for (int r = count_; r >= 1; --r) {
            const Row& row = rows_[static_cast<std::size_t>(r)];
            if (row.type != kUnused) firstRow_[static_cast<unsigned char>(row.ch)] = static_cast<std::uint8_t>(r);
        }
    }

    // 0 when the character is in no row.
    int Find(char c) const { return firstRow_[static_cast<unsigned char>(c)]; }
    Row& operator[](int r) { return rows_[static_cast<std::size_t>(r)]; }

private:
    void Put(char c, CharType type) {
        ++count_;
        if (count_ > kMaxRows) Raise(kSubscriptOutOfRange);
        rows_[static_cast<std::size_t>(count_)] = Row{c, type, false, false};
    }

    std::array<Row, kMaxRows + 1> rows_{};
    std::array<std::uint8_t, 256> firstRow_{};
    int count_ = 0;
};

class Pass {
public:
    Pass(std::string_view line, std::vector<std::string>& parts, std::vector<std::int32_t>* locs,
         const LineParseOptions& options)
        : line_(line), parts_(parts), locs_(locs), opt_(options) {}

    std::int16_t Run(CharTable& table) {
        // Position len + 1 is the NUL that ends the last part.
        const auto last = static_cast<std::int32_t>(line_.size() + 1);
        int previous = 0;
        for (std::int32_t pos = 1; pos <= last; ++pos) {
            const char c = pos < last ? line_[static_cast<std::size_t>(pos - 1)] : '\0';
            const int found = table.Find(c);
            if (found == 0) {
                Append(c, pos);
                previous = 0;
                continue;
            }
            Row& row = table[found];
            if (row.type == kQuotePair || row.type == kKeepQuotePair) {
                NestingPair(row, found, c, pos);
            } else if (depth_ > 0) {
                Append(c, pos);
            } else {
                switch (row.type) {
                    case kDropDelim:
                    case kDropDelim2:
                        // A doubled delimiter counts once, blanks kept or not.
                        if (found != previous) EndPartIfDue();
                        break;
                    case kHardDelim:
                    case kPartDelim:
                        SingleDelim(row.type, c, pos);
                        break;
                    default:
                        SplitPair(row, found, c, pos);
                        break;
                }
            }
            previous = found;
        }
        if (depth_ > 0 || open_) EndPart();
        return count_;
    }

private:
    static bool IsOpener(Row& row, int index) {
        if (row.samePair) {
            row.toggle = !row.toggle;
            return row.toggle;
        }
        return index % 2 == 1;
    }

    void NestingPair(Row& row, int index, char c, std::int32_t pos) {
        const bool keep = row.type == kKeepQuotePair;
        if (IsOpener(row, index)) {
            if (!opt_.FlattenNested && depth_ != 0) {
                Append(c, pos);
            } else {
                if (!opt_.PairInsidePart) EndPartIfDue();
                if (keep) Append(c, pos);
            }
            ++depth_;
        } else {
            if (depth_ > 0) --depth_;
            if (!opt_.FlattenNested && depth_ != 0) {
                Append(c, pos);
            } else {
                if (keep) Append(c, pos);
                if (!opt_.PairInsidePart && open_) EndPart();
            }
        }
    }

    void SingleDelim(CharType type, char c, std::int32_t pos) {
        if (type == kPartDelim && opt_.DelimToPrevPart) {
            Append(c, pos);
            EndPart();
            return;
        }
        EndPartIfDue();
        if (type == kPartDelim) {
            Append(c, pos);
            EndPart();
        }
    }

    void SplitPair(Row& row, int index, char c, std::int32_t pos) {
        const bool keep = row.type == kKeepSplitPair;
        if (IsOpener(row, index)) {
            EndPartIfDue();
            if (keep) {
                Append(c, pos);
                if (!opt_.KeepPairWhole) EndPart();
            }
        } else if (!keep) {
            EndPartIfDue();
        } else if (opt_.KeepPairWhole) {
            Append(c, pos);
            EndPart();
        } else {
            EndPartIfDue();
            Append(c, pos);
            EndPart();
        }
    }

    void Append(char c, std::int32_t pos) {
        part_ += c;
        if (!open_) {
            start_ = pos;
            open_ = true;
        }
    }

    void EndPartIfDue() {
        if (opt_.KeepBlanks || open_) EndPart();
    }

    // The start position is not reset here: a blank part that follows
    // reports the start of the part before it.
    void EndPart() {
        if (opt_.TrimParts) part_ = Trim(part_);
        if (part_.empty() && !opt_.KeepBlanks) {
            open_ = false;
            return;
        }
        count_ = Add16(count_, 1);
        const auto upper = static_cast<std::int64_t>(parts_.size()) - 1;
        if (count_ > upper) {
            std::string text = "LineParts array too small (Part Cnt>" + DecimalText(upper) + ")\r\nLine=";
            text.append(line_);
            text += '\0';  // the line as the pass saw it, with its end mark
            Raise(kParserError, kSource, std::move(text));
        }
        const auto index = static_cast<std::size_t>(count_);
        parts_[index] = std::move(part_);
        part_.clear();
        open_ = false;
        if (locs_ != nullptr) {
            if (index >= locs_->size()) Raise(kSubscriptOutOfRange);
            (*locs_)[index] = start_;
        }
    }

    std::string_view line_;
    std::vector<std::string>& parts_;
    std::vector<std::int32_t>* locs_;
    const LineParseOptions& opt_;

    std::string part_;
    std::int32_t start_ = 0;
    bool open_ = false;
    std::int32_t depth_ = 0;
    std::int16_t count_ = 0;
};

}  // namespace

std::int16_t lib_GetLineParts3(std::string_view pstrLine, std::vector<std::string>& aryParts,
                               const LineParseOptions& options, std::vector<std::int32_t>* PartLocs) {
    // Positions are 32-bit and one past the line is the end mark.
    if (pstrLine.size() >= static_cast<std::size_t>(std::numeric_limits<std::int32_t>::max())) Raise(kOutOfMemory);

    CharTable table;
    table.AddPairs(options.QuotePairs, kQuotePair);
    table.AddPairs(options.KeepQuotePairs, kKeepQuotePair);
    table.AddSingles(options.DropDelims, kDropDelim);
    table.AddSingles(options.DropDelims2, kDropDelim2);
    table.AddSingles(options.HardDelims, kHardDelim);
    table.AddEndMarks();
    table.AddSingles(options.PartDelims, kPartDelim);
    table.AddPairs(options.SplitPairs, kSplitPair);
    table.AddPairs(options.KeepSplitPairs, kKeepSplitPair);
    table.Finish();

    return Pass(pstrLine, aryParts, PartLocs, options).Run(table);
}

}  // namespace ostrivane
