// A 1-based list of strings with a cursor, searched from the cursor or from
// the top for the first item that meets a test; the match stays in the
// object for the caller to read.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace ostrivane {

class lib_clsScanArray {
public:
    std::int32_t Count() const { return count_; }
    // The item at the cursor; "" with cursor 0.
    std::string CurrItem() const;
    std::int32_t CurrItemNo() const { return currItemNo_; }
    void SetCurrItemNo(std::int32_t lngIndex) { currItemNo_ = lngIndex; }
    // Index 0 reads and writes the unused element; beyond Count or below 0
    // raises 1000 on the object-error base, "Invalid Index".
    std::string Item(std::int32_t index) const;
    void SetItem(std::int32_t index, std::string_view strData);
    bool Match() const { return match_; }
    // The item at the match number; "" with 0.
    std::string MatchItem() const;
    std::int32_t MatchItemNo() const { return matchItemNo_; }
    // A match set by hand: the old one becomes the previous, at position 0.
    void SetMatchItemNo(std::int32_t lngIndex);
    std::int32_t MatchItemNoPrev() const { return matchItemNoPrev_; }
    std::int32_t MatchLocInItem() const { return matchLocInItem_; }

    bool Add(std::string_view vData);
    // Closes the gap; the match, the previous match and the cursor on the
    // item go to 0, those behind it move up one. Raises base + 1 for an index
    // beyond Count or below 0.
    bool Delete(std::int32_t lngIndex);

    // The number of the first item from the cursor (or from 1 with
    // blnFromTop) that meets the test, 0 for none. pblnIgnoreSpcCRs compares
    // without CR LF pairs and blanks; pintMaxEntriesToSearch, unless 0, limits
    // how many items are looked at.
    std::int32_t FindContains(std::string_view strFindText, bool blnFromTop, bool blnCaseSensitive,
                              bool pblnIgnoreSpcCRs, std::int16_t pintMaxEntriesToSearch);
    std::int32_t FindDoesNotContain(std::string_view strFindText, bool blnFromTop, bool blnCaseSensitive,
                                    bool pblnIgnoreSpcCRs, std::int16_t pintMaxEntriesToSearch);
    std::int32_t FindDoesNotEndWith(std::string_view strFindText, bool blnFromTop, bool blnCaseSensitive,
                                    bool pblnIgnoreSpcCRs, std::int16_t pintMaxEntriesToSearch);
    std::int32_t FindDoesNotEqual(std::string_view strFindText, bool blnFromTop, bool blnCaseSensitive,
                                  bool pblnIgnoreSpcCRs, std::int16_t pintMaxEntriesToSearch);
    std::int32_t FindDoesNotStartWith(std::string_view strFindText, bool blnFromTop, bool blnCaseSensitive,
                                      bool pblnIgnoreSpcCRs, std::int16_t pintMaxEntriesToSearch);
    std::int32_t FindEndsWith(std::string_view strFindText, bool blnFromTop, bool blnCaseSensitive,
                              bool pblnIgnoreSpcCRs, std::int16_t pintMaxEntriesToSearch);
    std::int32_t FindEquals(std::string_view strFindText, bool blnFromTop, bool blnCaseSensitive,
                            bool pblnIgnoreSpcCRs, std::int16_t pintMaxEntriesToSearch);
    std::int32_t FindStartsWith(std::string_view strFindText, bool blnFromTop, bool blnCaseSensitive,
                                bool pblnIgnoreSpcCRs, std::int16_t pintMaxEntriesToSearch);
    // The Like pattern (?, *, #, [list], [!list]), always without regard to case.
    std::int32_t FindLike(std::string_view strFindText, bool blnFromTop, bool pblnIgnoreSpcCRs,
                          std::int16_t pintMaxEntriesToSearch);

    // Replaces the contents with elements 1 to lngSourceArrayCnt of the
    // source (element 0 unused), or with only those that are not empty.
    // Searches and the cursor stay. Returns Count.
    std::int32_t LoadArray(const std::vector<std::string>& arySourceArray, std::int32_t lngSourceArrayCnt,
                           bool blnSkipBlanks);

private:
    // What a test gives for a passing item: the match position.
    using Test = std::optional<std::int32_t> (*)(std::string_view item, std::string_view stored,
                                                  std::string_view find, bool caseSensitive);
    std::int32_t Find(Test test, std::string_view strFindText, bool blnFromTop, bool blnCaseSensitive,
                      bool pblnIgnoreSpcCRs, std::int16_t pintMaxEntriesToSearch);
    // Element i of the array; Subscript out of range (9) outside it.
    const std::string& Element(std::int64_t i) const;

    bool match_ = false;
    std::int32_t currItemNo_ = 1;
    std::int32_t matchItemNo_ = 0;
    std::int32_t matchItemNoPrev_ = 0;
    std::int32_t count_ = 0;
    std::int32_t matchLocInItem_ = 0;
    std::vector<std::string> items_;  // empty until the first Add or LoadArray
};

}  // namespace ostrivane
