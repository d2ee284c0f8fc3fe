// The facility text of a PAD map entry, and the messages of its range
// checks on standard error, compared byte for byte.
#include "qx25.h"

#include "captured_messages.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>

using qx25test::CapturedStderr;

namespace {

struct outcome {
    int result;
    std::string text;
    std::string err;
};

outcome facilities(const pad_entry &entry) {
    CapturedStderr err;
    char text[256];
    std::memset(text, '#', sizeof text);
    int result = padtos(&entry, text);
    std::string written = std::memchr(text, '\0', sizeof text) != nullptr ? text : "<unended>";
    return {result, written, err.text()};
}

std::string text_of(const pad_entry &entry) {
    outcome o = facilities(entry);
    EXPECT_EQ(o.result, 0);
    EXPECT_EQ(o.err, "");
    return o.text;
}

TEST(Padtos, AnEmptyEntryGivesTheEmptyText) {
    pad_entry entry{};
    EXPECT_EQ(text_of(entry), "");
}

TEST(Padtos, EveryPartInItsOrder) {
    pad_entry entry{};
    entry.remote_packet_size = 7;
    entry.local_packet_size = 7;
    entry.remote_window_size = 2;
    entry.local_window_size = 2;
    entry.fast_select = 1;
    entry.reverse_charging = 1;
    entry.version = 2;
    entry.cug_kind = 1;
    entry.cug_number[1] = 0x12;
    entry.t_digit_count = 8;
    std::memcpy(entry.t_digits, "\x31\x10\x31\x10", 4);
    std::strcpy(entry.free_text, "any text");
    EXPECT_EQ(text_of(entry), "P7/7W2/2FR 84 G12 T31103110 ~any text");
}

TEST(Padtos, PacketSizesWithAZeroSide) {
    pad_entry entry{};
    entry.remote_packet_size = 7;
    EXPECT_EQ(text_of(entry), "P7/0");
    entry.remote_packet_size = 0;
    entry.local_packet_size = 12;
    EXPECT_EQ(text_of(entry), "P0/12");
}

TEST(Padtos, PacketSizesOutOfRange) {
    pad_entry entry{};
    entry.remote_packet_size = 7;
    entry.local_packet_size = 13;
    outcome o = facilities(entry);
    EXPECT_EQ(o.result, -1);
    EXPECT_EQ(o.err, "padtos: Local packet size out of range\n");
    EXPECT_EQ(o.text, "");
    entry.remote_packet_size = 3;
    o = facilities(entry);
    EXPECT_EQ(o.result, -1);
    EXPECT_EQ(o.err, "padtos: Remote packet size out of range\n"); // remote is checked first
    entry.remote_packet_size = 4;
    entry.local_packet_size = 12;
    EXPECT_EQ(text_of(entry), "P4/12");
}

TEST(Padtos, WindowSizes) {
    pad_entry entry{};
    entry.remote_window_size = 1;
    entry.local_window_size = 127;
    EXPECT_EQ(text_of(entry), "W1/127");
    entry.local_window_size = 128;
    outcome o = facilities(entry);
    EXPECT_EQ(o.result, -1);
    EXPECT_EQ(o.err, "padtos: Local window size out of range\n");
    entry.local_window_size = 0;
    entry.remote_window_size = 128;
    entry.remote_packet_size = 8;
    o = facilities(entry);
    EXPECT_EQ(o.result, -1);
    EXPECT_EQ(o.err, "padtos: Remote window size out of range\n");
    EXPECT_EQ(o.text, "P8/0"); // what was written before the failure stays
}

TEST(Padtos, FlagsCountOnlyWhenOne) {
    pad_entry entry{};
    entry.fast_select = 2;
    entry.reverse_charging = 1;
    EXPECT_EQ(text_of(entry), "R");
    entry.fast_select = 1;
    entry.reverse_charging = 255;
    EXPECT_EQ(text_of(entry), "F");
}

TEST(Padtos, Versions) {
    pad_entry entry{};
    const char *texts[] = {"", " 80", " 84", " 88", ""};
    for (int version = 0; version <= 4; ++version) {
        entry.version = static_cast<uint8_t>(version);
        EXPECT_EQ(text_of(entry), texts[version]);
    }
}

TEST(Padtos, GroupNumbersLoseTheirLeadingZeros) {
    pad_entry entry{};
    entry.cug_kind = 1;
    std::pair<uint16_t, const char *> cases[] = {
        {0x0005, " G5"},  {0x0123, " G123"}, {0x1234, " G1234"}, {0x0100, " G100"},
        {0x0012, " G12"}, {0x0500, " G500"}, {0x1000, " G1000"}};
    for (auto [number, text] : cases) {
        entry.cug_number[0] = static_cast<uint8_t>(number >> 8);
        entry.cug_number[1] = static_cast<uint8_t>(number & 0xFF);
        EXPECT_EQ(text_of(entry), text) << std::hex << number;
    }
    entry.cug_kind = 2;
    EXPECT_EQ(text_of(entry), " B1000");
}

TEST(Padtos, AGroupNumberOfZeroIsNotWrittenWhateverTheKind) {
    pad_entry entry{};
    entry.cug_kind = 1;
    EXPECT_EQ(text_of(entry), "");
    entry.cug_kind = 7;
    EXPECT_EQ(text_of(entry), "");
}

TEST(Padtos, AnUnknownGroupKindFailsWithoutMessage) {
    pad_entry entry{};
    entry.version = 1;
    entry.cug_number[1] = 0x12;
    entry.t_digit_count = 4;
    entry.t_digits[0] = 0x31;
    entry.t_digits[1] = 0x10;
    for (uint8_t kind : {0, 3}) {
        entry.cug_kind = kind;
        outcome o = facilities(entry);
        EXPECT_EQ(o.result, -1);
        EXPECT_EQ(o.err, "");
        EXPECT_EQ(o.text, " 80"); // neither group nor T digits
    }
}

TEST(Padtos, TDigitsAreWrittenAsWholeBytes) {
    pad_entry entry{};
    std::memcpy(entry.t_digits, "\x12\x34\x56\x78\x90\x12\x34\x56", 8);
    std::pair<uint8_t, const char *> cases[] = {{1, " T"},
                                                {2, " T12"},
                                                {4, " T1234"},
                                                {5, " T1234"},
                                                {16, " T1234567890123456"},
                                                {255, " T1234567890123456"}};
    for (auto [count, text] : cases) {
        entry.t_digit_count = count;
        EXPECT_EQ(text_of(entry), text) << int(count);
    }
}

TEST(Padtos, TheFreeTextUnlessItBeginsWithADash) {
    pad_entry entry{};
    std::strcpy(entry.free_text, "-not written");
    EXPECT_EQ(text_of(entry), "");
    std::strcpy(entry.free_text, "a-b");
    EXPECT_EQ(text_of(entry), " ~a-b");
}

TEST(Padtos, AFreeTextWithoutItsEndIsHeldToTheField) {
    pad_entry entry{};
    std::memset(entry.free_text, 'x', sizeof entry.free_text);
    entry.reserved[0] = 'y';
    EXPECT_EQ(text_of(entry), " ~" + std::string(124, 'x'));
}

TEST(Padtos, NullArguments) {
    CapturedStderr err;
    char text[256];
    EXPECT_EQ(padtos(nullptr, text), -1);
    pad_entry entry{};
    EXPECT_EQ(padtos(&entry, nullptr), -1);
    EXPECT_EQ(err.text(), "Passed pad structure is NULL\nPassed string is NULL\n");
}

} // namespace
