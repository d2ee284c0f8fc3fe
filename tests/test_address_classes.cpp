// Address class rules of stox25 and x25tos, with the class of each link
// read from its own configuration file: link 1 is a LAN, 2 X.25 of 1980,
// 3 of 1984, 4 of 1988, 5 a multilink of two lines; link 7 has no file.
#include "qx25.h"

#include "captured_messages.h"
#include "config_tree.h"
#include "link_config.h"
#include "link_files.h"

#include <gtest/gtest.h>

#include <string>

using qx25test::ConfigTree;

namespace {

class AddressClass : public testing::Test {
  protected:
    void SetUp() override {
        qx25test::capture_all_messages();
        qx25test::write_boardconf(tree);
        link(1, "device eth0\ntype LAN\n");
        link(2, "device wan0\ntype WAN\nversion 1980\n");
        link(3, "device wan1\ntype WAN\nversion 1984\n");
        link(4, "device wan2\ntype WAN\nversion 1988\n");
        link(5, "device wan3 wan4\ntype WAN\nprotocol MLAPB\n");
    }
    void TearDown() override { EXPECT_EQ(qx25test::messages(), std::vector<std::string>{}); }

    void link(int number, const char *lines) { qx25test::write_link_file(tree, number, lines); }

    ConfigTree tree;
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

TEST_F(AddressClass, EachLinkHasTheClassOfItsNetworkType) {
    EXPECT_EQ(getnettype("1"), 1);
    EXPECT_EQ(getnettype("2"), 2);
    EXPECT_EQ(getnettype("3"), 3);
    EXPECT_EQ(getnettype("4.23421234567"), 4);
    EXPECT_EQ(getnettype("5"), 6); // two lines: the second multilink row
}

TEST_F(AddressClass, NoClassWithoutALinkFileAndNoMessageAboutIt) {
    EXPECT_EQ(getnettype("7"), -1);
    EXPECT_EQ(getnettype("255"), -1);
    EXPECT_EQ(getnettype("99999999999999999999"), -1);
    EXPECT_EQ(getnettype("-1"), -1);
    EXPECT_EQ(getnettype("x"), -1); // atoi gives link 0, which has no file
    EXPECT_EQ(getnettype(nullptr), -1);
}

TEST_F(AddressClass, ALinkNumberAbove254IsNeverRead) {
    qx25test::write_link_file(tree, 255, "device eth1\ntype LAN\n");
    EXPECT_EQ(getnettype("255"), -1);
    EXPECT_EQ(getnettype("254"), -1);
    qx25test::write_link_file(tree, 254, "device eth1\ntype LAN\n");
    EXPECT_EQ(getnettype("254"), 1);
}

TEST_F(AddressClass, ALinkFileWithoutTypeIsX25Of1988) {
    link(6, "device wan5\n");
    EXPECT_EQ(getnettype("6"), 4);
}

TEST_F(AddressClass, MultilinkRowsFollowTheNumberOfLines) {
    link(6, "device wan5 wan6 wan7\ntype WAN\n");
    EXPECT_EQ(getnettype("6"), 7);
    link(8, "device wan8 wan9 eth5 eth6 eth7\ntype WAN\n");
    EXPECT_EQ(getnettype("8"), 9);
}

TEST_F(AddressClass, TheTableRowsAndTheirClasses) {
    const char *names[] = {"WAN88", "WAN84", "WAN80", "LAN",  "MLP1",
                           "MLP2",  "MLP3",  "MLP4",  "MLP5", "?"};
    int classes[] = {4, 3, 2, 1, 5, 6, 7, 8, 9, 0};
    for (int row = 0; row < net_type_rows; ++row) {
        EXPECT_STREQ(link_nettype[row].name, names[row]);
        EXPECT_EQ(link_nettype[row].address_class, classes[row]);
    }
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
    EXPECT_EQ(parse("1"), 0); // without its "." the number is a DTE address
    EXPECT_EQ(parse("1."), -1);
    EXPECT_EQ(parse("1..N.47"), -1);
    EXPECT_EQ(parse("2."), 0);
    EXPECT_EQ(parse("1.", 0), 0);
}

TEST_F(AddressClass, X25Of1980HasNoAddressExtension) {
    EXPECT_EQ(parse("2.1234.N.47"), -1);
    EXPECT_EQ(parse("2.1234.X.47"), -1);
    EXPECT_EQ(parse("2.1234.47"), -1);
    EXPECT_EQ(parse("2.1234.N"), 0); // a bare marker is forgotten
    EXPECT_EQ(parse("2.123.P"), 0);
    EXPECT_EQ(parse("3.1234.N.47"), 0);
    EXPECT_EQ(parse("4.1234.X.47"), 0);
}

TEST_F(AddressClass, GeneralLimitsOnWanAndMultilinkLinks) {
    EXPECT_EQ(parse("2.12345678901234567"), 0);
    EXPECT_EQ(parse("3.123456789012345678"), -1);
    EXPECT_EQ(parse("4.12*4?"), 0);
    EXPECT_EQ(parse("5.12345678901234567.N.47"), 0);
}

TEST_F(AddressClass, UnknownLinkReadsWithoutClass) {
    EXPECT_EQ(parse("7.1234.N.47"), 0);
    EXPECT_EQ(parse("7."), 0);
}

TEST_F(AddressClass, WritingRefusesAnUnknownLink) {
    EXPECT_EQ(written("7.1234"), "<refused>");
    EXPECT_EQ(written("7.1234", 0), "7.1234");
    EXPECT_EQ(written("1234"), "1234"); // no subnetwork, no class
}

TEST_F(AddressClass, WritingHoldsEachClassToItsDigitCount) {
    EXPECT_EQ(written("1.0800200A1B2C04"), "1.0800200A1B2C04");
    EXPECT_EQ(written("1.0800200A1B2C0"), "<refused>");
    EXPECT_EQ(written("2.123456789012345"), "2.123456789012345");
    EXPECT_EQ(written("2.1234567890123456"), "<refused>");
    EXPECT_EQ(written("3.123456789012345"), "3.123456789012345");
    EXPECT_EQ(written("3.1234567890123456"), "<refused>");
    EXPECT_EQ(written("4.12345678901234567"), "4.12345678901234567");
    EXPECT_EQ(written("5.12345678901234567"), "5.12345678901234567");
}

TEST_F(AddressClass, MultilinkClassesAreHeldOnlyToTheRecord) {
    x25_address address;
    ASSERT_EQ(stox25("5.12345678901234567", &address, 0), 0);
    address.dte[8] |= 0x08; // an eighteenth digit, 8
    address.dte_len = 18;
    char out[256];
    ASSERT_EQ(x25tos(&address, out, 1), 0);
    EXPECT_STREQ(out, "5.123456789012345678");
    address.snid = 4;
    ASSERT_EQ(x25tos(&address, out, 1), -1);
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

TEST_F(AddressClass, WildcardsAreWrittenBackOnlyUnderAWanOrMultilinkClass) {
    EXPECT_EQ(written("4.12*4?ABCD"), "4.12*4?ABCD");
    EXPECT_EQ(written("3.12*4?ABCD"), "3.12*4?ABCD");
    EXPECT_EQ(written("5.12*4?ABCD"), "5.12*4?ABCD");
    EXPECT_EQ(written("4.12*4?ABCD", 0), "4.12F4EABCD");
    EXPECT_EQ(written("1.0800200A1B2CFE"), "1.0800200A1B2CFE");
}

TEST_F(AddressClass, TheClassFollowsTheFileAsItChanges) {
    EXPECT_EQ(parse("6.12345678901234"), 0);
    link(6, "device eth1\ntype LAN\n");
    EXPECT_EQ(parse("6.12345678901234"), 0);
    EXPECT_EQ(parse("6.1234567890123"), -1);
    link(6, "device wan5\ntype WAN\nversion 80\n");
    EXPECT_EQ(parse("6.1234567890123.N.1"), -1);
}

} // namespace
