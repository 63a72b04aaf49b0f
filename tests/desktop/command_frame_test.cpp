#include "desktop/command_frame.hpp"

#include <gtest/gtest.h>

#include <algorithm>

namespace ostrivane::desktop {
namespace {

TEST(CommandFrame, LengthGoesMostSignificantByteFirst) {
    struct Case {
        std::uint32_t length;
        std::string_view bytes;
    };
    const Case cases[] = {
        {0, {"\0\0\0\0", 4}},         {255, {"\0\0\0\xFF", 4}},          {256, {"\0\0\1\0", 4}},
        {65536, {"\0\1\0\0", 4}},     {0x01020304, "\1\2\3\4"},          {0xFFFFFFFE, "\xFF\xFF\xFF\xFE"},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(EncodeLength(c.length), c.bytes) << c.length;
        EXPECT_EQ(DecodeLength(c.bytes), c.length);
    }
}

// Fed in pieces of at most three bytes while it asks for more: the frame and
// no byte beyond. Too long a frame is refused on the announced length alone,
// before a byte of the text is held.
TEST(CommandFrame, ReaderTakesOneFrameAndNoMoreAndTooLongOnesAreRefusedOnBothEnds) {
    for (const std::size_t size : {std::size_t{0}, std::size_t{1}, std::size_t{300}, kMaxCommandBytes}) {
        const std::string text(size, 'g');
        const std::string frame = EncodeFrame(text).value() + "trailing bytes of another frame";
        FrameReader reader;
        std::size_t used = 0;
        while (reader.Current() == FrameReader::State::Incomplete) {
            ASSERT_GT(reader.Wanted(), 0u);
            const std::size_t piece = std::min<std::size_t>(reader.Wanted(), 3);
            reader.Take(std::string_view(frame).substr(used, piece));
            used += piece;
        }
        EXPECT_EQ(reader.Current(), FrameReader::State::Complete);
        EXPECT_EQ(used, kLengthBytes + size);
        EXPECT_EQ(reader.Text(), text);
    }
    EXPECT_FALSE(EncodeFrame(std::string(kMaxCommandBytes + 1, 'x')).has_value());
    for (const std::uint32_t length : {std::uint32_t{kMaxCommandBytes + 1}, std::uint32_t{9816}, 1u << 20}) {
        FrameReader reader;
        EXPECT_EQ(reader.Take(EncodeLength(length)), FrameReader::State::TooLong) << length;
        EXPECT_EQ(reader.Wanted(), 0u);
    }
}

// What the toolkit makes of an argument: Latin-1 kept, the rest one '?' per
// UTF-16 unit, a broken sequence one '?' per byte, a leading byte-order mark gone.
TEST(CommandLine, Latin1AsTheToolkitGivesIt) {
    const std::pair<std::string_view, std::string_view> cases[] = {
        {"/show", "/show"},       {"Caf\xC3\xA9 \xC3\xBF", "Caf\xE9 \xFF"}, {"\xE2\x82\xAC 5", "? 5"},
        {"!\xF0\x9F\x98\x80", "!??"}, {"\xEF\xBB\xBFgroup \xEF\xBB\xBF", "group ?"},   {"\xC3(", "?("},
        {"\xE2\x82", "??"},      {"\xC0\x80\xED\xA0\x80\xF5\x80", "???????"},
    };
    for (const auto& [utf8, latin1] : cases) EXPECT_EQ(Latin1FromUtf8(utf8), latin1) << utf8;
}

}  // namespace
}  // namespace ostrivane::desktop
