// Address class rules of stox25 and x25tos. The class of a link comes from
// getnettype; this program supplies its own getnettype so that each class
// can be set per test.
#include "qx25.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <map>
#include <string>

namespace {
std::map<int, int> link_classes;
std::string last_class_query;
} // namespace

extern "C" int getnettype(const char *text) {
    last_class_query = text;
    auto found = link_classes.find(std::atoi(text));
    return found == link_classes.end() ? -1 : found->second;
}

namespace {

enum { lan = 1, wan80 = 2, wan84 = 3, wan88 = 4, mlp1 = 5 };

class AddressClass : public testing::Test {
  protected:
    void SetUp() override {
        link_classes = {{1, lan}, {2, wan80}, {3, wan84}, {4, wan88}, {5, mlp1}, {9, 0}};
    }
};

int parse(const char *text, unsigned check = 1) {
    x25_address address;
    return stox25(text, &address, check);
}

std::string written(const char *text, unsigned check = 1) {
    x25_address address;
    if (stox25(text, &address, 0) != 0) return "<unparsed>";
    char out[256];
    if (x25tos(&address, out, check) != 0) return "<refused>";
    return out;
}

TEST_F(AddressClass, AskedWithTheWholeTextOnReadingAndTheNumberOnWriting) {
    parse("4.23421234567.N.12");
    EXPECT_EQ(last_class_query, "4.23421234567.N.12");
    written("4.23421234567.N.12");
    EXPECT_EQ(last_class_query, "4");
}

TEST_F(AddressClass, NotAskedWithoutCheckOrWithoutSubnetwork) {
    last_class_query = "untouched";
    parse("1.12", 0);
    parse("23421234567", 1);
    EXPECT_EQ(last_class_query, "untouched");
}

TEST_F(AddressClass, LanNeedsFourteenDigitsOfMacAddressAndLsap) {
    EXPECT_EQ(parse("1.0800200A1B2C04"), 0);
    EXPECT_EQ(parse("1.0800200A1B2C0"), -1);
    EXPECT_EQ(parse("1.0800200A1B2C044"), -1);
    EXPECT_EQ(parse("1.0800200A1B2C0*"), -1); // no wildcards on a LAN
    EXPECT_EQ(parse("1.0800200A1B2C04", 0), 0);
    EXPECT_EQ(parse("1.0800200A1B2C0", 0), 0);
}

TEST_F(AddressClass, LanSubnetworkAloneOrWithEmptyDteIsRefused) {
    EXPECT_EQ(parse("1."), -1);
    EXPECT_EQ(parse("1..N.47"), -1);
    EXPECT_EQ(parse("2."), 0);
    EXPECT_EQ(parse("1.", 0), 0);
    // Without its "." the number is no subnetwork: the class is not
    // applied and the digit is a DTE address.
    EXPECT_EQ(parse("1"), 0);
}

TEST_F(AddressClass, X25Of1980HasNoAddressExtension) {
    EXPECT_EQ(parse("2.1234.N.47"), -1);
    EXPECT_EQ(parse("2.1234.X.47"), -1);
    EXPECT_EQ(parse("2.1234.47"), -1);
    EXPECT_EQ(parse("2.1234.N"), 0); // a bare marker is forgotten
    EXPECT_EQ(parse("2.123.P"), 0);
    EXPECT_EQ(parse("3.1234.N.47"), 0);
}

TEST_F(AddressClass, UnknownOrUnreadableLinkReadsWithoutClass) {
    EXPECT_EQ(parse("7.1234.N.47"), 0); // getnettype gives -1
    EXPECT_EQ(parse("9.1234.N.47"), 0); // class 0
    EXPECT_EQ(parse("7."), 0);
}

TEST_F(AddressClass, WritingRefusesAnUnknownLink) {
    EXPECT_EQ(written("7.1234"), "<refused>");
    EXPECT_EQ(written("7.1234", 0), "7.1234");
    EXPECT_EQ(written("9.1234"), "9.1234"); // class 0 is no error
}

TEST_F(AddressClass, WritingHoldsEachClassToItsDigitCount) {
    EXPECT_EQ(written("1.0800200A1B2C04"), "1.0800200A1B2C04");
    EXPECT_EQ(written("1.0800200A1B2C0"), "<refused>");
    EXPECT_EQ(written("2.123456789012345"), "2.123456789012345");
    EXPECT_EQ(written("2.1234567890123456"), "<refused>");
    EXPECT_EQ(written("3.123456789012345"), "3.123456789012345");
    EXPECT_EQ(written("3.1234567890123456"), "<refused>");
    EXPECT_EQ(written("4.12345678901234567"), "4.12345678901234567");
    EXPECT_EQ(written("9.12345678901234567"), "9.12345678901234567");
    EXPECT_EQ(written("5.12345678901234567"), "5.12345678901234567");
}

TEST_F(AddressClass, MlpClassesAreHeldOnlyToTheRecord) {
    x25_address address;
    ASSERT_EQ(stox25("5.12345678901234567", &address, 0), 0);
    address.dte[8] |= 0x08; // an eighteenth digit, 8
    address.dte_len = 18;
    char out[256];
    ASSERT_EQ(x25tos(&address, out, 1), 0);
    EXPECT_STREQ(out, "5.123456789012345678");
    ASSERT_EQ(x25tos(&address, out, 0), -1); // class 0 allows 17
}

TEST_F(AddressClass, X25Of1980RefusesExtensionDigitsOnWriting) {
    x25_address address;
    ASSERT_EQ(stox25("2.1234.N.47", &address, 0), 0);
    char out[256];
    EXPECT_EQ(x25tos(&address, out, 1), -1);
    ASSERT_EQ(stox25("2.123.P", &address, 0), 0);
    EXPECT_EQ(x25tos(&address, out, 1), 0);
    EXPECT_STREQ(out, "2.123.P");
}

TEST_F(AddressClass, WildcardsAreWrittenBackOnlyUnderAWanOrMlpClass) {
    EXPECT_EQ(written("4.12*4?ABCD"), "4.12*4?ABCD");
    EXPECT_EQ(written("5.12*4?ABCD"), "5.12*4?ABCD");
    EXPECT_EQ(written("4.12*4?ABCD", 0), "4.12F4EABCD");
    EXPECT_EQ(written("9.12*4?"), "9.12F4E");
    EXPECT_EQ(written("1.0800200A1B2CFE"), "1.0800200A1B2CFE");
}

} // namespace
