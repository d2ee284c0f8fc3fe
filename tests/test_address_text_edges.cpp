// Address texts at the edges of the conversions' fast paths: every kind of
// white space ends an address, characters outside ASCII do not, numbers
// are written as "%lu" writes them, and digits are packed the same for
// every length.
#include "qx25.h"

#include <gtest/gtest.h>

#include <clocale>
#include <cstdio>
#include <string>

namespace {

TEST(AddressTextEdges, EveryWhiteSpaceEndsTheText) {
    for (char blank : {' ', '\t', '\n', '\v', '\f', '\r'}) {
        SCOPED_TRACE(static_cast<int>(blank));
        x25_address address;
        std::string text = std::string("3.1234") + blank + "zz";
        ASSERT_EQ(stox25(text.c_str(), &address, 0), 0);
        EXPECT_EQ(address.dte_len, 4);
        text = std::string("3.1234.N.47") + blank + "zz";
        ASSERT_EQ(stox25(text.c_str(), &address, 0), 0);
        EXPECT_EQ(address.ext_len, 2);
        text = std::string("3.") + blank;
        EXPECT_EQ(stox25(text.c_str(), &address, 0), 0);
    }
}

TEST(AddressTextEdges, CharactersOutsideAsciiAreNoWhiteSpace) {
    x25_address address;
    EXPECT_EQ(stox25("3.1234\xA0", &address, 0), -1);
    EXPECT_EQ(stox25("3.1234.N.47\xFF", &address, 0), -1);
    EXPECT_EQ(stox25("3.1234\x7F", &address, 0), -1);
}

TEST(AddressTextEdges, NumbersAreWrittenAsPercentLu) {
    for (uint32_t number : {0u, 7u, 10u, 254u, 256u, 9999u, 10000u, 4294967294u, 4294967295u}) {
        SCOPED_TRACE(number);
        char expected[32];
        std::snprintf(expected, sizeof expected, "%lu", static_cast<unsigned long>(number));
        char text[32];
        std::fill(std::begin(text), std::end(text), 'x');
        EXPECT_EQ(x25tolinkid(number, text), 1);
        EXPECT_STREQ(text, expected);
        EXPECT_EQ(text[std::string(expected).size() + 1], 'x'); // nothing written after
        EXPECT_EQ(x25tosnid(number, text), 1);
        EXPECT_STREQ(text, number == 255 ? "" : expected);
    }
    EXPECT_EQ(x25tolinkid(255, nullptr), -1);
    EXPECT_EQ(x25tosnid(3, nullptr), -1);
}

TEST(AddressTextEdges, DigitsArePackedTheSameForEveryLength) {
    const std::string digits = "0123456789ABCDEFabcdef*?0123456789";
    for (std::size_t length = 0; length <= 17; ++length) {
        SCOPED_TRACE(length);
        std::string dte = digits.substr(0, length);
        x25_address address;
        ASSERT_EQ(stox25(("7." + dte).c_str(), &address, 0), 0);
        ASSERT_EQ(address.dte_len, length);
        for (std::size_t i = 0; i < sizeof address.dte; ++i) {
            int high = 2 * i < length ? 0 : -1;
            int low = 2 * i + 1 < length ? 0 : -1;
            auto nibble = [&](std::size_t at) {
                char c = dte[at];
                if (c == '*') return 15;
                if (c == '?') return 14;
                if (c >= 'a') return c - 'a' + 10;
                if (c >= 'A') return c - 'A' + 10;
                return c - '0';
            };
            int expected = (high < 0 ? 0 : nibble(2 * i) << 4) | (low < 0 ? 0 : nibble(2 * i + 1));
            EXPECT_EQ(address.dte[i], expected) << "byte " << i;
        }
    }
    for (std::size_t length = 0; length <= 40; ++length) {
        SCOPED_TRACE(length);
        std::string ext(length, 'a');
        x25_address address;
        ASSERT_EQ(stox25(("7.12.N." + ext).c_str(), &address, 0), 0);
        ASSERT_EQ(address.ext_len, length);
        for (std::size_t i = 0; i < sizeof address.ext; ++i)
            EXPECT_EQ(address.ext[i], 2 * i + 1 < length ? 0xAA : 2 * i < length ? 0xA0 : 0);
    }
}

} // namespace
