#include "lib/scan_array.hpp"

#include <algorithm>

#include "lib/errors.hpp"
#include "lib/numbers.hpp"
#include "lib/text.hpp"

namespace ostrivane {

namespace {

constexpr std::int32_t kInvalidIndex = kObjectErrorBase + 1000;
constexpr std::int32_t kInvalidDeleteIndex = kObjectErrorBase + 1;

std::string WithoutSpacesAndCrLfs(std::string_view text) {
    std::string out(text);
    for (std::size_t at; (at = out.find("\r\n")) != std::string::npos;) out.erase(at, 2);
    std::erase(out, ' ');
    return out;
}

bool Same(std::string_view a, std::string_view b, bool caseSensitive) {
    return caseSensitive ? a == b : EqualsNoCase(a, b);
}

std::string_view Left(std::string_view text, std::size_t n) { return text.substr(0, n); }
std::string_view Right(std::string_view text, std::size_t n) {
    return n >= text.size() ? text : text.substr(text.size() - n);
}

// 1-based position of find in item, 0 when absent; an empty find is at 1 of
// any item that is not empty.
std::int32_t Position(std::string_view item, std::string_view find, bool caseSensitive) {
    if (item.empty()) return 0;
    const std::size_t at = caseSensitive ? item.find(find) : FindNoCase(item, find);
    return at == std::string_view::npos ? 0 : static_cast<std::int32_t>(at + 1);
}

std::int32_t EndPosition(std::string_view stored, std::string_view find) {
    return static_cast<std::int32_t>(stored.size()) - static_cast<std::int32_t>(find.size());
}

std::optional<std::int32_t> Pass(bool passes, std::int32_t position) {
    return passes ? std::optional<std::int32_t>(position) : std::nullopt;
}

}  // namespace

const std::string& lib_clsScanArray::Element(std::int64_t i) const {
    if (i < 0 || static_cast<std::uint64_t>(i) >= items_.size()) Raise(kSubscriptOutOfRange);
    return items_[static_cast<std::size_t>(i)];
}

std::string lib_clsScanArray::CurrItem() const { return currItemNo_ == 0 ? std::string() : Element(currItemNo_); }

std::string lib_clsScanArray::Item(std::int32_t index) const {
    if (items_.empty()) Raise(kSubscriptOutOfRange);
    if (index > count_ || index < 0) Raise(kInvalidIndex, "clsScanArray:Item_Get()", "Invalid Index");
    return Element(index);
}

void lib_clsScanArray::SetItem(std::int32_t index, std::string_view strData) {
    if (items_.empty()) Raise(kSubscriptOutOfRange);
    if (index > count_ || index < 0) Raise(kInvalidIndex, "clsScanArray:Item_Let()", "Invalid Index");
    Element(index);
    items_[static_cast<std::size_t>(index)] = std::string(strData);
}

std::string lib_clsScanArray::MatchItem() const {
    return matchItemNo_ == 0 ? std::string() : Element(matchItemNo_);
}

void lib_clsScanArray::SetMatchItemNo(std::int32_t lngIndex) {
    matchItemNoPrev_ = matchItemNo_;
    match_ = true;
    matchItemNo_ = lngIndex;
    matchLocInItem_ = 0;
}

bool lib_clsScanArray::Add(std::string_view vData) {
    const std::int32_t next = Add32(count_, 1);
    if (items_.empty()) {
        items_.resize(2);
    } else if (static_cast<std::size_t>(next) >= items_.size()) {
        items_.resize(items_.size() + 1);
    }
    items_[static_cast<std::size_t>(next)] = std::string(vData);
    count_ = next;
    return true;
}

bool lib_clsScanArray::Delete(std::int32_t lngIndex) {
    if (items_.empty()) Raise(kSubscriptOutOfRange);
    if (lngIndex > count_ || lngIndex < 0) Raise(kInvalidDeleteIndex, "clsScanArray_ItemDel", "Invalid Index");
    for (std::int32_t i = lngIndex; i < count_; ++i) {
        Element(i + 1);
        items_[static_cast<std::size_t>(i)] = items_[static_cast<std::size_t>(i) + 1];
    }
    if (matchItemNo_ == lngIndex) {
        matchItemNo_ = 0;
        match_ = false;
    } else if (matchItemNo_ > lngIndex) {
        --matchItemNo_;
    }
    if (matchItemNoPrev_ == lngIndex) {
        matchItemNoPrev_ = 0;
    } else if (matchItemNoPrev_ > lngIndex) {
        --matchItemNoPrev_;
    }
    if (currItemNo_ == lngIndex) {
        currItemNo_ = 0;
    } else if (currItemNo_ > lngIndex) {
        --currItemNo_;
    }
    --count_;
    return true;
}

std::int32_t lib_clsScanArray::Find(Test test, std::string_view strFindText, bool blnFromTop, bool blnCaseSensitive,
                                    bool pblnIgnoreSpcCRs, std::int16_t pintMaxEntriesToSearch) {
    matchItemNoPrev_ = matchItemNo_;
    match_ = false;
    matchItemNo_ = 0;
    matchLocInItem_ = 0;
    const std::string find = pblnIgnoreSpcCRs ? WithoutSpacesAndCrLfs(strFindText) : std::string(strFindText);
    const std::int32_t first = blnFromTop ? 1 : currItemNo_;
    std::int32_t last = count_;
    if (pintMaxEntriesToSearch != 0) last = std::min(Sub32(Add32(first, pintMaxEntriesToSearch), 1), count_);
    for (std::int32_t i = first; i <= last; ++i) {
        const std::string& stored = Element(i);
        const std::string item = pblnIgnoreSpcCRs ? WithoutSpacesAndCrLfs(stored) : stored;
        if (const auto position = test(item, stored, find, blnCaseSensitive)) {
            match_ = true;
            matchItemNo_ = currItemNo_ = i;
            matchLocInItem_ = *position;
            return i;
        }
    }
    return 0;
}

std::int32_t lib_clsScanArray::FindContains(std::string_view strFindText, bool blnFromTop, bool blnCaseSensitive,
                                            bool pblnIgnoreSpcCRs, std::int16_t pintMaxEntriesToSearch) {
    return Find(
        [](std::string_view item, std::string_view, std::string_view find, bool cs) {
            const std::int32_t at = Position(item, find, cs);
            return Pass(at != 0, at);
        },
        strFindText, blnFromTop, blnCaseSensitive, pblnIgnoreSpcCRs, pintMaxEntriesToSearch);
}

std::int32_t lib_clsScanArray::FindDoesNotContain(std::string_view strFindText, bool blnFromTop,
                                                  bool blnCaseSensitive, bool pblnIgnoreSpcCRs,
                                                  std::int16_t pintMaxEntriesToSearch) {
    return Find(
        [](std::string_view item, std::string_view, std::string_view find, bool cs) {
            return Pass(Position(item, find, cs) == 0, 0);
        },
        strFindText, blnFromTop, blnCaseSensitive, pblnIgnoreSpcCRs, pintMaxEntriesToSearch);
}

std::int32_t lib_clsScanArray::FindEquals(std::string_view strFindText, bool blnFromTop, bool blnCaseSensitive,
                                          bool pblnIgnoreSpcCRs, std::int16_t pintMaxEntriesToSearch) {
    return Find(
        [](std::string_view item, std::string_view, std::string_view find, bool cs) {
            return Pass(Same(item, find, cs), 1);
        },
        strFindText, blnFromTop, blnCaseSensitive, pblnIgnoreSpcCRs, pintMaxEntriesToSearch);
}

std::int32_t lib_clsScanArray::FindDoesNotEqual(std::string_view strFindText, bool blnFromTop, bool blnCaseSensitive,
                                                bool pblnIgnoreSpcCRs, std::int16_t pintMaxEntriesToSearch) {
    return Find(
        [](std::string_view item, std::string_view, std::string_view find, bool cs) {
            return Pass(!Same(item, find, cs), 1);
        },
        strFindText, blnFromTop, blnCaseSensitive, pblnIgnoreSpcCRs, pintMaxEntriesToSearch);
}

std::int32_t lib_clsScanArray::FindStartsWith(std::string_view strFindText, bool blnFromTop, bool blnCaseSensitive,
                                              bool pblnIgnoreSpcCRs, std::int16_t pintMaxEntriesToSearch) {
    return Find(
        [](std::string_view item, std::string_view, std::string_view find, bool cs) {
            return Pass(Same(Left(item, find.size()), find, cs), 1);
        },
        strFindText, blnFromTop, blnCaseSensitive, pblnIgnoreSpcCRs, pintMaxEntriesToSearch);
}

std::int32_t lib_clsScanArray::FindDoesNotStartWith(std::string_view strFindText, bool blnFromTop,
                                                    bool blnCaseSensitive, bool pblnIgnoreSpcCRs,
                                                    std::int16_t pintMaxEntriesToSearch) {
    return Find(
        [](std::string_view item, std::string_view, std::string_view find, bool cs) {
            return Pass(!Same(Left(item, find.size()), find, cs), 1);
        },
        strFindText, blnFromTop, blnCaseSensitive, pblnIgnoreSpcCRs, pintMaxEntriesToSearch);
}

std::int32_t lib_clsScanArray::FindEndsWith(std::string_view strFindText, bool blnFromTop, bool blnCaseSensitive,
                                            bool pblnIgnoreSpcCRs, std::int16_t pintMaxEntriesToSearch) {
    return Find(
        [](std::string_view item, std::string_view stored, std::string_view find, bool cs) {
            return Pass(Same(Right(item, find.size()), find, cs), EndPosition(stored, find));
        },
        strFindText, blnFromTop, blnCaseSensitive, pblnIgnoreSpcCRs, pintMaxEntriesToSearch);
}

std::int32_t lib_clsScanArray::FindDoesNotEndWith(std::string_view strFindText, bool blnFromTop,
                                                  bool blnCaseSensitive, bool pblnIgnoreSpcCRs,
                                                  std::int16_t pintMaxEntriesToSearch) {
    return Find(
        [](std::string_view item, std::string_view stored, std::string_view find, bool cs) {
            return Pass(!Same(Right(item, find.size()), find, cs), EndPosition(stored, find));
        },
        strFindText, blnFromTop, blnCaseSensitive, pblnIgnoreSpcCRs, pintMaxEntriesToSearch);
}

std::int32_t lib_clsScanArray::FindLike(std::string_view strFindText, bool blnFromTop, bool pblnIgnoreSpcCRs,
                                        std::int16_t pintMaxEntriesToSearch) {
    return Find(
        [](std::string_view item, std::string_view, std::string_view find, bool) {
            return Pass(Like(UCase(item), UCase(find)), 1);
        },
        strFindText, blnFromTop, false, pblnIgnoreSpcCRs, pintMaxEntriesToSearch);
}

std::int32_t lib_clsScanArray::LoadArray(const std::vector<std::string>& arySourceArray,
                                         std::int32_t lngSourceArrayCnt, bool blnSkipBlanks) {
    if (lngSourceArrayCnt < 0) Raise(kSubscriptOutOfRange);
    count_ = 0;
    items_.assign(static_cast<std::size_t>(lngSourceArrayCnt) + 1, std::string());
    if (!blnSkipBlanks) {
        items_ = arySourceArray;
        count_ = lngSourceArrayCnt;
        return count_;
    }
    for (std::int32_t i = 1; i <= lngSourceArrayCnt; ++i) {
        if (static_cast<std::size_t>(i) >= arySourceArray.size()) Raise(kSubscriptOutOfRange);
        const std::string& text = arySourceArray[static_cast<std::size_t>(i)];
        if (!text.empty()) items_[static_cast<std::size_t>(++count_)] = text;
    }
    return count_;
}

}  // namespace ostrivane
