// The library's general tokeniser: one pass over a line with a table of
// special characters that end parts, open and close bracket pairs.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace ostrivane {

// The arguments of lib_GetLineParts3 other than the line and the arrays.
struct LineParseOptions {
    std::string DropDelims;       // type 3: dropped, a doubled one counts once
    std::string DropDelims2;      // type 4: as type 3
    bool DelimsUnused = false;    // accepted, without effect
    std::string HardDelims;       // type 5: dropped, every one ends a part
    std::string PartDelims;       // type 6: stay as text
    bool DelimToPrevPart = false; // type 6 ends the present part and stays at its end
    std::string SplitPairs;       // type 7: pairs without nesting, brackets dropped
    std::string KeepSplitPairs;   // type 8: pairs without nesting, brackets kept
    bool KeepPairWhole = false;   // a type 8 pair and its contents form one part
    std::string QuotePairs;       // type 1: nesting pairs, brackets dropped
    std::string KeepQuotePairs;   // type 2: nesting pairs, brackets kept
    bool PairInsidePart = false;  // a type 1/2 pair does not end the part around it
    bool FlattenNested = false;   // pair characters inside a pair act as pairs
    bool TrimParts = false;       // parts are trimmed of blanks when stored
    bool KeepBlanks = false;      // a delimiter with nothing before it yields a blank part
};

// Cuts pstrLine into parts stored in aryParts from index 1 on; index 0 is
// unused and the upper bound is aryParts.size() - 1, as the caller sized it.
// PartLocs, when given, receives each part's 1-based start at the same index.
// Entries past the count are left as they were. Returns the part count.
// Raises 1000 on the object-error base for an odd pair argument or too many
// parts, Subscript out of range (9) for a table of more than 50 rows or a
// PartLocs too short, and Overflow (6) past 32767 parts. Parts stored before
// an error stay stored.
std::int16_t lib_GetLineParts3(std::string_view pstrLine, std::vector<std::string>& aryParts,
                               const LineParseOptions& options, std::vector<std::int32_t>* PartLocs = nullptr);

}  // namespace ostrivane
