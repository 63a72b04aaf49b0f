// What a second start sends the running copy, and the limits that keep any
// sender from ending or swamping that copy. Free of Qt: a second start that
// only forwards its command line builds no toolkit object at all.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace ostrivane::desktop {

// Longer than any group name a person types, and short enough that the
// not-found box can still count its lines in 16 bits.
inline constexpr std::size_t kMaxCommandBytes = 4096;
// A frame is the text's length in four bytes, most significant first, then the text.
inline constexpr std::size_t kLengthBytes = 4;
// A sender of ours writes its frame at once; one still incomplete after this is closed.
inline constexpr int kFrameDeadlineMs = 3000;
// Senders whose frame is not complete yet; a newer one closes the oldest.
inline constexpr std::size_t kMaxPendingSenders = 32;
// Each command's box runs the next command inside it; deeper ones are answered and dropped.
inline constexpr int kMaxNestedCommands = 4;

inline std::string EncodeLength(std::uint32_t length) {
    std::string out(kLengthBytes, '\0');
    for (std::size_t i = 0; i < kLengthBytes; ++i)
        out[i] = static_cast<char>((length >> (8 * (kLengthBytes - 1 - i))) & 0xFFu);
    return out;
}

inline std::uint32_t DecodeLength(std::string_view fourBytes) {
    std::uint32_t length = 0;
    for (std::size_t i = 0; i < kLengthBytes; ++i) length = (length << 8) | static_cast<unsigned char>(fourBytes[i]);
    return length;
}

inline bool FitsFrame(std::string_view text) { return text.size() <= kMaxCommandBytes; }

// Nothing for a text that does not fit.
inline std::optional<std::string> EncodeFrame(std::string_view text) {
    if (!FitsFrame(text)) return std::nullopt;
    return EncodeLength(static_cast<std::uint32_t>(text.size())) + std::string(text);
}

// Takes one frame as it comes in, never more than the frame itself.
class FrameReader {
public:
    enum class State { Incomplete, Complete, TooLong };
    // How many bytes to read next: the rest of the length or of the text.
    std::size_t Wanted() const;
    // bytes holds at most Wanted() bytes.
    State Take(std::string_view bytes);
    State Current() const { return state_; }
    std::uint32_t Length() const { return length_; }
    const std::string& Text() const { return text_; }

private:
    std::string header_;
    std::string text_;
    std::uint32_t length_ = 0;
    State state_ = State::Incomplete;
};

inline std::size_t FrameReader::Wanted() const {
    if (state_ != State::Incomplete) return 0;
    if (header_.size() < kLengthBytes) return kLengthBytes - header_.size();
    return length_ - text_.size();
}

inline FrameReader::State FrameReader::Take(std::string_view bytes) {
    if (header_.size() < kLengthBytes) {
        header_.append(bytes);
        if (header_.size() < kLengthBytes) return state_;
        length_ = DecodeLength(header_);
        if (length_ > kMaxCommandBytes) return state_ = State::TooLong;
    } else {
        text_.append(bytes);
    }
    if (text_.size() == length_) state_ = State::Complete;
    return state_;
}

// One argument as the toolkit hands it on: decoded from UTF-8, each UTF-16
// unit beyond Latin-1 and each byte of a broken sequence a '?', a leading
// byte-order mark dropped.
inline std::string Latin1FromUtf8(std::string_view utf8) {
    std::string out;
    out.reserve(utf8.size());
    const auto at = [&utf8](std::size_t i) { return static_cast<unsigned char>(utf8[i]); };
    const auto continuation = [&](std::size_t i) { return i < utf8.size() && (at(i) & 0xC0u) == 0x80u; };
    std::size_t i = utf8.substr(0, 3) == "\xEF\xBB\xBF" ? 3 : 0;
    while (i < utf8.size()) {
        const unsigned char b = at(i);
        if (b < 0x80) {
            out += static_cast<char>(b);
            ++i;
            continue;
        }
        // The sequence's length and the least code point it may stand for (no overlong forms).
        std::size_t need = 0;
        char32_t least = 0;
        if (b >= 0xC2 && b < 0xE0) need = 2, least = 0x80;
        else if (b >= 0xE0 && b < 0xF0) need = 3, least = 0x800;
        else if (b >= 0xF0 && b < 0xF5) need = 4, least = 0x10000;
        char32_t code = need == 2 ? (b & 0x1Fu) : need == 3 ? (b & 0x0Fu) : (b & 0x07u);
        bool valid = need != 0;
        for (std::size_t k = 1; valid && k < need; ++k) {
            valid = continuation(i + k);
            if (valid) code = (code << 6) | (at(i + k) & 0x3Fu);
        }
        valid = valid && code >= least && code <= 0x10FFFF && !(code >= 0xD800 && code <= 0xDFFF);
        if (!valid) {
            out += '?';  // one per byte that starts no sequence: the next byte is tried afresh
            ++i;
            continue;
        }
        if (code <= 0xFF)
            out += static_cast<char>(code);
        else
            out += code >= 0x10000 ? "??" : "?";  // a surrogate pair is two units
        i += need;
    }
    return out;
}

}  // namespace ostrivane::desktop
