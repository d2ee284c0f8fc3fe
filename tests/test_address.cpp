// X.25 address text form: stox25, x25tos, equalx25, x25add_equal and the
// subnetwork number conversions they rest on. No address class applies here
// (no test writes a link file); the class rules are tested separately.
#include "qx25.h"

#include "config_tree.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>

namespace {

std::string nibbles(const uint8_t *bytes, int count) {
    static constexpr char digits[] = "0123456789ABCDEF";
    std::string text;
    for (int i = 0; i < count; ++i)
        text += digits[i % 2 == 0 ? bytes[i / 2] >> 4 : bytes[i / 2] & 0x0F];
    return text;
}

std::string to_text(const x25_address &address, unsigned check = 0) {
    char text[256];
    std::memset(text, 'Z', sizeof text);
    if (x25tos(&address, text, check) != 0) return "<refused>";
    return text;
}

struct accepted_case {
    const char *text;
    uint32_t snid;
    uint8_t ext_type;
    const char *dte;
    const char *ext;
    const char *canonical;
};

const std::string forty_hex = "0123456789ABCDEF0123456789ABCDEF01234567";

const accepted_case accepted[] = {
    {"", 255, 0, "", "", ""},
    {"   ", 255, 0, "", "", ""},
    {"\t", 255, 0, "", "", ""},
    {"3.", 3, 0, "", "", "3"},
    {"3", 255, 0, "3", "", "3"},
    {"3.23421234567", 3, 0, "23421234567", "", "3.23421234567"},
    {"3.23421234567.N.4711", 3, 0, "23421234567", "4711", "3.23421234567.N.4711"},
    {"23421234567.X.AB", 255, 1, "23421234567", "AB", "23421234567.X.AB"},
    {"0.123.P", 0, 2, "123", "", "0.123.P"},
    {"0.123.p", 0, 2, "123", "", "0.123.P"},
    {"3..N.4711", 3, 0, "", "4711", "3..N.4711"},
    {"12345.1234", 255, 0, "12345", "1234", "12345.N.1234"},
    {"123.X.4711", 255, 1, "123", "4711", "123.X.4711"},
    {"123.n.4711", 255, 0, "123", "4711", "123.N.4711"},
    {"123.x.4711", 255, 1, "123", "4711", "123.X.4711"},
    {"3.1234.N", 3, 0, "1234", "", "3.1234"},
    {"3.1234.X", 3, 0, "1234", "", "3.1234"},
    {"3.1234.x.", 3, 0, "1234", "", "3.1234"},
    {"3.1234.N. tail", 3, 0, "1234", "", "3.1234"},
    {"3.1234.4711", 3, 0, "1234", "4711", "3.1234.N.4711"},
    {"3.1234..4711", 3, 0, "1234", "4711", "3.1234.N.4711"},
    {"3.1234.N.4711 more", 3, 0, "1234", "4711", "3.1234.N.4711"},
    {"3.1234 more words", 3, 0, "1234", "", "3.1234"},
    {"3.1234\tmore", 3, 0, "1234", "", "3.1234"},
    {"3.1234.", 3, 0, "1234", "", "3.1234"},
    {"3.12ab.n.ff", 3, 0, "12AB", "FF", "3.12AB.N.FF"},
    {"3.12*4?", 3, 0, "12F4E", "", "3.12F4E"},
    {"1234.5", 1234, 0, "5", "", "1234.5"},
    {"9999.5", 9999, 0, "5", "", "9999.5"},
    {"12345678901234567", 255, 0, "12345678901234567", "", "12345678901234567"},
    {"3.12345678901234567", 3, 0, "12345678901234567", "", "3.12345678901234567"},
};

class Accepted : public testing::TestWithParam<accepted_case> {};

TEST_P(Accepted, ParsesIntoTheExpectedFields) {
    const accepted_case &c = GetParam();
    x25_address address;
    std::memset(&address, 0xAA, sizeof address);
    ASSERT_EQ(stox25(c.text, &address, 0), 0) << c.text;
    EXPECT_EQ(address.snid, c.snid);
    EXPECT_EQ(address.ext_type, c.ext_type);
    EXPECT_EQ(nibbles(address.dte, address.dte_len), c.dte);
    EXPECT_EQ(nibbles(address.ext, address.ext_len), c.ext);
    // Unused digit space is cleared: an odd count leaves a low nibble of 0.
    for (std::size_t i = (address.dte_len + 1) / 2; i < sizeof address.dte; ++i)
        EXPECT_EQ(address.dte[i], 0);
    if (address.dte_len % 2 != 0) {
        EXPECT_EQ(address.dte[address.dte_len / 2] & 0x0F, 0);
    }
    for (std::size_t i = (address.ext_len + 1) / 2; i < sizeof address.ext; ++i)
        EXPECT_EQ(address.ext[i], 0);
}

TEST_P(Accepted, WritesTheCanonicalText) {
    const accepted_case &c = GetParam();
    x25_address address;
    ASSERT_EQ(stox25(c.text, &address, 0), 0);
    EXPECT_EQ(to_text(address), c.canonical);
}

TEST_P(Accepted, CanonicalTextReadsBackToAnEqualRecord) {
    const accepted_case &c = GetParam();
    x25_address first, second;
    ASSERT_EQ(stox25(c.text, &first, 0), 0);
    std::string canonical = to_text(first);
    ASSERT_EQ(stox25(canonical.c_str(), &second, 0), 0) << canonical;
    EXPECT_EQ(to_text(second), canonical);
    // A subnetwork alone is written without its ".", which then reads as a
    // DTE digit: the one address whose text does not read back the same.
    bool subnetwork_alone = first.snid != 255 && first.dte_len == 0 && first.ext_len == 0;
    EXPECT_EQ(equalx25(&first, &second), subnetwork_alone ? 0 : 1) << c.text;
}

INSTANTIATE_TEST_SUITE_P(AddressText, Accepted, testing::ValuesIn(accepted));

const char *const refused[] = {
    "123456789012345678",    // 18 digits
    "3.123456789012345678",  // 18 digits after a subnetwork
    "3.1234567890123456789", // more than fit the record
    "0.1234.P",              // a PVC has exactly 3 digits
    "0.12.P",
    "0.123.P1", // nothing may follow P
    "0.123.P ", // not even white space
    "3.1234.P",
    "3.12-34",  // only "." may follow the digits
    "3.1234.Z", // not a marker
    "3.1234.y", // above "x"
    "3.1234.-", // below "."
    "3.1234.+",
    "3.1234.N4711", // the marker needs its "."
    "3.1234.X4711",
    "3.1234.N 4711",
    "3.1234.N.47G1", // extension digits only
    "3.1234.N.47.1",
};

class Refused : public testing::TestWithParam<const char *> {};

TEST_P(Refused, GivesMinusOne) {
    x25_address address;
    EXPECT_EQ(stox25(GetParam(), &address, 0), -1) << GetParam();
}

INSTANTIATE_TEST_SUITE_P(AddressText, Refused, testing::ValuesIn(refused));

TEST(AddressText, FortyExtensionDigitsAreAcceptedAndAFortyFirstIsNot) {
    x25_address address;
    std::string forty = "3.1234.N." + forty_hex;
    ASSERT_EQ(stox25(forty.c_str(), &address, 0), 0);
    EXPECT_EQ(address.ext_len, 40);
    EXPECT_EQ(nibbles(address.ext, 40), forty_hex);
    EXPECT_EQ(to_text(address), forty);
    EXPECT_EQ(stox25((forty + "8").c_str(), &address, 0), -1);
}

TEST(AddressText, RecordIsClearedFirstAndKeepsWhatWasParsedOnFailure) {
    x25_address address;
    std::memset(&address, 0xFF, sizeof address);
    ASSERT_EQ(stox25("3.1234.N.47G1", &address, 0), -1);
    EXPECT_EQ(address.snid, 3u);
    EXPECT_EQ(address.dte_len, 4);
    EXPECT_EQ(nibbles(address.dte, 4), "1234");
    // The digits before the bad one were stored; their count was not.
    EXPECT_EQ(address.ext_len, 0);
    EXPECT_EQ(address.ext[0], 0x47);
    EXPECT_EQ(address.ext[1], 0);
}

TEST(AddressText, EmptyTextGivesAnAllZeroRecordWithoutSubnetwork) {
    x25_address address, zero;
    std::memset(&address, 0x55, sizeof address);
    std::memset(&zero, 0, sizeof zero);
    zero.snid = 255;
    ASSERT_EQ(stox25("", &address, 0), 0);
    EXPECT_EQ(std::memcmp(&address, &zero, sizeof zero), 0);
}

TEST(AddressText, NullArgumentsAreRefused) {
    x25_address address;
    char text[80];
    EXPECT_EQ(stox25(nullptr, &address, 0), -1);
    EXPECT_EQ(stox25("3.1", nullptr, 0), -1);
    EXPECT_EQ(x25tos(&address, nullptr, 0), -1);
    EXPECT_EQ(x25tos(nullptr, text, 0), -1);
}

TEST(AddressText, RecordLayoutIsThirtySixBytes) {
    EXPECT_EQ(sizeof(x25_address), 36u);
    EXPECT_EQ(offsetof(x25_address, ext_type), 4u);
    EXPECT_EQ(offsetof(x25_address, dte_len), 5u);
    EXPECT_EQ(offsetof(x25_address, dte), 6u);
    EXPECT_EQ(offsetof(x25_address, ext_len), 15u);
    EXPECT_EQ(offsetof(x25_address, ext), 16u);
}

x25_address record(uint32_t snid, uint8_t ext_type, const char *dte, const char *ext) {
    x25_address address;
    std::memset(&address, 0, sizeof address);
    address.snid = snid;
    address.ext_type = ext_type;
    auto pack = [](uint8_t *bytes, const char *digits) {
        int count = 0;
        for (; digits[count] != '\0'; ++count) {
            int value = std::isdigit(static_cast<unsigned char>(digits[count]))
                            ? digits[count] - '0'
                            : digits[count] - 'A' + 10;
            bytes[count / 2] |= static_cast<uint8_t>(count % 2 == 0 ? value << 4 : value);
        }
        return static_cast<uint8_t>(count);
    };
    address.dte_len = pack(address.dte, dte);
    address.ext_len = pack(address.ext, ext);
    return address;
}

TEST(AddressToText, SubnetworkAloneAndNothingAtAll) {
    EXPECT_EQ(to_text(record(255, 0, "", "")), "");
    EXPECT_EQ(to_text(record(7, 0, "", "")), "7");
    EXPECT_EQ(to_text(record(7, 2, "", "")), "7");
}

TEST(AddressToText, WildcardNibblesAreHexadecimalWithoutAClass) {
    EXPECT_EQ(to_text(record(3, 0, "12FE", "")), "3.12FE");
}

TEST(AddressToText, RefusesLengthsBeyondTheRecordAndUnknownKinds) {
    x25_address address = record(3, 0, "1234", "");
    address.dte_len = 19;
    EXPECT_EQ(to_text(address), "<refused>");
    address = record(3, 0, "1234", "");
    address.ext_len = 41;
    EXPECT_EQ(to_text(address), "<refused>");
    address = record(3, 3, "1234", "");
    EXPECT_EQ(to_text(address), "<refused>");
}

TEST(AddressToText, EighteenDigitsExceedTheUncheckedLimit) {
    EXPECT_EQ(to_text(record(3, 0, "123456789012345678", "")), "<refused>");
    EXPECT_EQ(to_text(record(3, 0, "12345678901234567", "")), "3.12345678901234567");
}

TEST(AddressToText, PvcWithExtensionDigitsIsRefused) {
    EXPECT_EQ(to_text(record(0, 2, "123", "47")), "<refused>");
    EXPECT_EQ(to_text(record(0, 2, "123", "")), "0.123.P");
    EXPECT_EQ(to_text(record(255, 2, "123", "")), "123.P");
}

TEST(AddressToText, ExtensionWithoutDteDigits) {
    EXPECT_EQ(to_text(record(3, 1, "", "AB")), "3..X.AB");
    EXPECT_EQ(to_text(record(255, 0, "", "AB")), ".N.AB");
}

TEST(AddressToText, LargeSubnetworkNumbersDoNotOverrun) {
    x25_address address = record(4294967295u, 0, "12345678901234567", forty_hex.c_str());
    std::string text = to_text(address);
    EXPECT_EQ(text, "4294967295.12345678901234567.N." + forty_hex);
    EXPECT_LT(text.size(), static_cast<std::size_t>(X25_ADDRESS_TEXT_MAX));
}

TEST(AddressCompare, EqualRecordsAndEachDifference) {
    x25_address base = record(3, 0, "23421234567", "4711");
    x25_address same = base;
    EXPECT_EQ(equalx25(&base, &same), 1);

    x25_address other = base;
    other.snid = 4;
    EXPECT_EQ(equalx25(&base, &other), 0);
    other = base;
    other.ext_type = 1;
    EXPECT_EQ(equalx25(&base, &other), 0);
    other = record(3, 0, "2342123456", "4711");
    EXPECT_EQ(equalx25(&base, &other), 0);
    other = record(3, 0, "23421234567", "471");
    EXPECT_EQ(equalx25(&base, &other), 0);
    other = record(3, 0, "23421234568", "4711");
    EXPECT_EQ(equalx25(&base, &other), 0);
    other = record(3, 0, "23421234567", "4712");
    EXPECT_EQ(equalx25(&base, &other), 0);
}

TEST(AddressCompare, DigitsBeyondTheLengthsAreIgnored) {
    x25_address a = record(3, 0, "123", "47");
    x25_address b = a;
    b.dte[1] |= 0x0F; // low nibble after the third digit
    b.dte[5] = 0x99;
    b.ext[3] = 0x12;
    EXPECT_EQ(equalx25(&a, &b), 1);
}

TEST(AddressCompare, WildcardsHaveNoSpecialMeaning) {
    x25_address star, f, one;
    ASSERT_EQ(stox25("3.12*", &star, 0), 0);
    ASSERT_EQ(stox25("3.12F", &f, 0), 0);
    ASSERT_EQ(stox25("3.121", &one, 0), 0);
    EXPECT_EQ(equalx25(&star, &f), 1);
    EXPECT_EQ(equalx25(&star, &one), 0);
}

TEST(AddressCompare, HandMadeLengthsAreHeldToTheRecord) {
    x25_address a = record(3, 0, "123", "");
    a.dte_len = 250;
    a.ext_len = 250;
    x25_address b = a;
    EXPECT_EQ(equalx25(&a, &b), 1);
    EXPECT_EQ(equalx25(&a, nullptr), 0);
}

TEST(AddressCompare, PackedDigitsOddCountComparesOnlyTheHighNibble) {
    const uint8_t a[] = {0x12, 0x30};
    const uint8_t b[] = {0x12, 0x3F};
    const uint8_t c[] = {0x12, 0x40};
    EXPECT_EQ(x25add_equal(a, b, 3), 1);
    EXPECT_EQ(x25add_equal(a, b, 4), 0);
    EXPECT_EQ(x25add_equal(a, c, 3), 0);
    EXPECT_EQ(x25add_equal(a, c, 2), 1);
    EXPECT_EQ(x25add_equal(a, c, 0), 1);
}

struct snid_case {
    const char *text;
    uint32_t snid;
};

const snid_case snid_cases[] = {
    {"12.345", 12},   {"12.x45", 255},  {"12.X45", 255}, {"12.N.4711", 255}, {"12.n", 255},
    {"12345.6", 255}, {"1234.5", 1234}, {"12", 255},     {".5", 255},        {"", 255},
    {"0.1", 0},       {"a.1", 255},     {"12.", 12},     {"0012.3", 12},
};

class SubnetworkNumber : public testing::TestWithParam<snid_case> {};

TEST_P(SubnetworkNumber, FromText) {
    EXPECT_EQ(snidtox25(GetParam().text), GetParam().snid) << GetParam().text;
    EXPECT_EQ(linkidtox25(GetParam().text), GetParam().snid) << GetParam().text;
}

INSTANTIATE_TEST_SUITE_P(Identifiers, SubnetworkNumber, testing::ValuesIn(snid_cases));

TEST(Identifiers, NullTextHasNoSubnetwork) {
    EXPECT_EQ(snidtox25(nullptr), 255u);
    EXPECT_EQ(linkidtox25(nullptr), 255u);
}

TEST(Identifiers, NumberToText) {
    char text[16] = "xx";
    EXPECT_EQ(x25tosnid(255, text), 1);
    EXPECT_STREQ(text, "");
    EXPECT_EQ(x25tolinkid(255, text), 1);
    EXPECT_STREQ(text, "255");
    EXPECT_EQ(x25tosnid(42, text), 1);
    EXPECT_STREQ(text, "42");
    EXPECT_EQ(x25tosnid(4294967295u, text), 1);
    EXPECT_STREQ(text, "4294967295");
    EXPECT_EQ(x25tosnid(1, nullptr), -1);
    EXPECT_EQ(x25tolinkid(1, nullptr), -1);
}

TEST(Identifiers, NoAddressClassWithoutALinkFile) {
    qx25test::ConfigTree tree;
    EXPECT_EQ(getnettype("3.1234"), -1);
    x25_address address;
    // Reading carries on without a class; writing under a class that
    // cannot be found is refused.
    ASSERT_EQ(stox25("3.1234.N.47", &address, 1), 0);
    EXPECT_EQ(to_text(address, 0), "3.1234.N.47");
    EXPECT_EQ(to_text(address, 1), "<refused>");
    ASSERT_EQ(stox25("1234.N.47", &address, 1), 0);
    EXPECT_EQ(to_text(address, 1), "1234.N.47");
}

} // namespace
