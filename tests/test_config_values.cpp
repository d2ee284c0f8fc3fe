// Keyword value parsers of the link configuration reader.
#include "qx25.h"

#include "captured_messages.h"
#include "config_tree.h"
#include "link_config.h"

#include <gtest/gtest.h>

#include <cmath>
#include <unistd.h>
#include <cstring>
#include <string>
#include <vector>

using qx25test::ConfigTree;
using qx25test::messages;

namespace {

using messages_t = std::vector<std::string>;

const char *const boardconf = "# device kinds of this machine\n"
                              "WAN_DEVICE\n"
                              "\tsymbolic WANS\n"
                              "\tdevice wan\n"
                              "\tlines 2\n"
                              "LAN_DEVICE\n"
                              "\tsymbolic ETHR\n"
                              "\tdevice eth\n"
                              "\tlines 1\n"
                              "WAN_DEVICE\n"
                              "\tsymbolic ELX\n"
                              "\tdevice elx\n"
                              "\tlines 4\n";

class Values : public testing::Test {
  protected:
    void SetUp() override {
        qx25test::capture_all_messages();
        tree.write("config/boardconf", boardconf);
        std::memset(&link, 0, sizeof link);
        std::memset(&x25, 0, sizeof x25);
    }
    void TearDown() override {
        for (int row = 0; row < DEVICE_TYPE_ROWS - 1; ++row) {
            char *comment = __config_linktype[row].comment;
            if (comment != nullptr && reinterpret_cast<uintptr_t>(comment) != 0xFFFFFFFEu)
                std::free(comment);
            __config_linktype[row].comment = nullptr;
        }
    }
    ConfigTree tree;
    link_values link;
    x25_template x25;
};

TEST_F(Values, DevicesWithInstancesGiveBoardAndLine) {
    EXPECT_EQ(parse_device("wan3", &link), 0);
    EXPECT_EQ(link.device_count, 1);
    EXPECT_EQ(link.device_type[0], 0);
    EXPECT_EQ(link.device_board[0], 1); // 3 / 2 lines per board
    EXPECT_EQ(link.device_line[0], 1);  // 3 % 2
    EXPECT_EQ(link.mlp, 0);
    EXPECT_TRUE(messages().empty());
}

TEST_F(Values, TwoDevicesMakeAnMlpLink) {
    EXPECT_EQ(parse_device("wan0, elx6", &link), 0);
    EXPECT_EQ(link.device_count, 2);
    EXPECT_EQ(link.device_type[1], 2);
    EXPECT_EQ(link.device_board[1], 1);
    EXPECT_EQ(link.device_line[1], 2);
    EXPECT_EQ(link.mlp, 1);
    EXPECT_EQ(link.net_type, NET_MLP2);
}

TEST_F(Values, FiveDevicesAreMlp5AndASixthIsIgnored) {
    EXPECT_EQ(parse_device("wan0 wan1,wan2 , wan3 elx0 nosuch9", &link), 0);
    EXPECT_EQ(link.device_count, 5);
    EXPECT_EQ(link.net_type, NET_MLP5);
    EXPECT_TRUE(messages().empty());
}

TEST_F(Values, DeviceNamesIgnoreCaseButNeedTheirExactLength) {
    EXPECT_EQ(parse_device("WAN1", &link), 0);
    EXPECT_EQ(link.device_type[0], 0);
    EXPECT_EQ(parse_device("wa1", &link), 1);
    EXPECT_EQ(parse_device("wanx1", &link), 1);
    EXPECT_EQ(messages(), (messages_t{"Unknown device name <wa1> found\n",
                                      "Unknown device name <wanx1> found\n"}));
}

TEST_F(Values, NoDigitsMeansInstanceZero) {
    EXPECT_EQ(parse_device("eth", &link), 0);
    EXPECT_EQ(link.device_type[0], 1);
    EXPECT_EQ(link.device_board[0], 0);
    EXPECT_EQ(link.device_line[0], 0);
}

TEST_F(Values, UnknownDeviceKeepsTheDevicesFoundBeforeIt) {
    EXPECT_EQ(parse_device("wan0,modem1,wan1", &link), 1);
    EXPECT_EQ(link.device_count, 1);
    EXPECT_EQ(messages(), messages_t{"Unknown device name <modem1> found\n"});
}

TEST_F(Values, MissingDeviceText) {
    link.device_count = 3;
    EXPECT_EQ(parse_device("", &link), 1);
    EXPECT_EQ(link.device_count, 0);
    EXPECT_EQ(parse_device(nullptr, &link), 1);
    EXPECT_EQ(messages(), (messages_t{"Missing device name in config file\n",
                                      "Missing device name in config file\n"}));
}

TEST_F(Values, WithoutBoardconfTheDevicesCannotBeRead) {
    ::unlink((tree.config_dir() + "/boardconf").c_str());
    link.device_count = 2;
    EXPECT_EQ(parse_device("wan0", &link), 1);
    EXPECT_EQ(link.device_count, 0);
    EXPECT_EQ(messages(), messages_t{"Unable to read device data files\n"});
}

TEST_F(Values, DeviceTableIsReadOnceAndOnlyWhenNotFilled) {
    EXPECT_EQ(parse_device("wan0", &link), 0);
    tree.write("config/boardconf", "WAN_DEVICE\n\tdevice other\n");
    EXPECT_EQ(parse_device("wan0", &link), 0); // still the first table
}

TEST_F(Values, HugeInstanceNumbersDoNotOverflow) {
    EXPECT_EQ(parse_device("wan99999999999999999999", &link), 0);
    EXPECT_EQ(link.device_count, 1);
}

TEST_F(Values, DeviceInstanceGivesNameAndNumberBack) {
    ASSERT_EQ(parse_device("wan0,elx6", &link), 0);
    char name[20];
    int instance = -1;
    EXPECT_EQ(x25_device_instance(&link, 1, name, &instance), 0);
    EXPECT_STREQ(name, "elx");
    EXPECT_EQ(instance, 6);
    EXPECT_EQ(x25_device_instance(&link, 0, name, &instance), 0);
    EXPECT_STREQ(name, "wan");
    EXPECT_EQ(instance, 0);
}

TEST_F(Values, DeviceInstanceBoundIsTheTableSize) {
    ASSERT_EQ(parse_device("wan0", &link), 0);
    char name[20];
    int instance;
    EXPECT_EQ(x25_device_instance(&link, -1, name, &instance), EINVAL);
    EXPECT_EQ(x25_device_instance(&link, 50, name, &instance), EINVAL);
    EXPECT_EQ(x25_device_instance(&link, 49, name, &instance), 0);
    EXPECT_EQ(x25_device_instance(&link, 7, name, &instance), 0);
    EXPECT_EQ(x25_device_instance(nullptr, 0, name, &instance), EINVAL);
    EXPECT_EQ(x25_device_instance(&link, 0, nullptr, &instance), EINVAL);
    EXPECT_EQ(x25_device_instance(&link, 0, name, nullptr), EINVAL);
}

TEST(NetworkTypes, RowOfEachClass) {
    EXPECT_EQ(get_net_type(4), NET_WAN88);
    EXPECT_EQ(get_net_type(3), NET_WAN84);
    EXPECT_EQ(get_net_type(2), NET_WAN80);
    EXPECT_EQ(get_net_type(1), NET_LAN);
    EXPECT_EQ(get_net_type(5), NET_MLP1);
    EXPECT_EQ(get_net_type(9), NET_MLP5);
    EXPECT_EQ(get_net_type(0), NET_UNKNOWN);
    EXPECT_EQ(get_net_type(42), NET_UNKNOWN);
}

TEST_F(Values, LocalAddressIsStoredInUpperCase) {
    parse_local_addr("0800200a1b2c", &link);
    EXPECT_STREQ(link.local_address, "0800200A1B2C");
    parse_local_addr("12345678901234567", &link);
    EXPECT_STREQ(link.local_address, "12345678901234567");
    EXPECT_TRUE(messages().empty());
    parse_local_addr("", &link);
    EXPECT_STREQ(link.local_address, "");
}

TEST_F(Values, LocalAddressIsCutAtTheFirstBadPosition) {
    parse_local_addr("123456789012345678", &link);
    EXPECT_STREQ(link.local_address, "12345678901234567");
    parse_local_addr("12x4", &link);
    EXPECT_STREQ(link.local_address, "12");
    EXPECT_EQ(messages(), (messages_t{"Address 123456789012345678 too long or invalid\n",
                                      "Address 12x4 too long or invalid\n"}));
}

TEST_F(Values, LocalAddressInColonFormCountsTheTextBeforeConversion) {
    // 17 characters with colons convert to 12 digits: positions 12 to 16
    // are then checked against the end of the text.
    parse_local_addr("08:00:20:0a:1b:2c", &link);
    EXPECT_STREQ(link.local_address, "0800200A1B2C");
    EXPECT_EQ(messages(), messages_t{"Address 0800200a1b2c too long or invalid\n"});
    messages().clear();
    // Single-character groups grow, so the count before conversion cuts.
    parse_local_addr("8:0:2:a:1:2", &link);
    EXPECT_STREQ(link.local_address, "0800020A010");
    EXPECT_TRUE(messages().empty());
}

TEST_F(Values, LocalAddressLongTextIsBounded) {
    std::string text(5000, 'A');
    parse_local_addr(text.c_str(), &link);
    EXPECT_STREQ(link.local_address, "AAAAAAAAAAAAAAAAA");
    ASSERT_EQ(messages().size(), 1u);
}

TEST(MacAddress, Conversion) {
    char text[64] = "08002000aaaa";
    EXPECT_EQ(convert_mac_addr(text), 1);
    EXPECT_STREQ(text, "08002000aaaa");
    std::strcpy(text, "8:0:20:a:1b:2c");
    EXPECT_EQ(convert_mac_addr(text), 1);
    EXPECT_STREQ(text, "0800200a1b2c");
    std::strcpy(text, "08:0:abc:1");
    EXPECT_EQ(convert_mac_addr(text), 0);
    EXPECT_STREQ(text, "0800?");
    std::strcpy(text, "08::1");
    EXPECT_EQ(convert_mac_addr(text), 0);
    EXPECT_STREQ(text, "08?");
}

TEST_F(Values, FullAddress) {
    parse_full_addr("3.23421234567.N.4711", &link);
    EXPECT_EQ(link.subnet.address.snid, 3u);
    EXPECT_EQ(link.subnet.address.dte_len, 11);
    EXPECT_TRUE(messages().empty());
    parse_full_addr("3.12-4", &link);
    EXPECT_EQ(messages(), messages_t{"Invalid FULL address\n"});
}

struct mode_case {
    const char *text;
    int code_before;
    int plp_before;
    int code_after;
    int plp_after;
};

const mode_case mode_cases[] = {
    {"DTE", 0, 0, 17, 1},  {"dte", 19, 0, 17, 1}, {"DTE", 20, 0, 18, 1}, {"DTE", 22, 0, 21, 1},
    {"DTE", 25, 0, 23, 1}, {"DTE", 26, 0, 24, 1}, {"DTE", 17, 0, 17, 1}, {"DTE", 18, 0, 18, 1},
    {"DTE", 21, 0, 21, 1}, {"DTE", 23, 0, 23, 1}, {"DTE", 24, 0, 24, 1}, {"DTE", 15, 1, 15, 2},
    {"DTE", 16, 0, 16, 2}, {"DTE", 19, 2, 17, 2}, {"DCE", 0, 1, 19, 0},  {"Dce", 17, 1, 19, 0},
    {"DCE", 18, 1, 20, 0}, {"DCE", 21, 1, 22, 0}, {"DCE", 23, 1, 25, 0}, {"DCE", 24, 1, 26, 0},
    {"DCE", 19, 1, 19, 0}, {"DCE", 20, 1, 20, 0}, {"DCE", 22, 1, 22, 0}, {"DCE", 25, 1, 25, 0},
    {"DCE", 26, 1, 26, 0}, {"DCE", 16, 1, 16, 2}, {"DCE", 17, 2, 19, 2}, {"DCE", 99, 1, 19, 0},
    {"XYZ", 17, 1, 17, 1},
};

class LinkMode : public testing::TestWithParam<mode_case> {};

TEST_P(LinkMode, ChangesCodeAndPacketLevelMode) {
    const mode_case &c = GetParam();
    link_values link{};
    x25_template x25{};
    link.link_mode = static_cast<uint8_t>(c.code_before);
    x25.plp_mode = static_cast<uint8_t>(c.plp_before);
    parse_link_mode(c.text, &link, &x25);
    EXPECT_EQ(link.link_mode, c.code_after);
    EXPECT_EQ(x25.plp_mode, c.plp_after);
    parse_link_mode(c.text, &link, nullptr); // no X.25 record: code only
}

INSTANTIATE_TEST_SUITE_P(Values, LinkMode, testing::ValuesIn(mode_cases));

struct protocol_case {
    const char *text;
    int code_before;
    int code_after;
};

const protocol_case protocol_cases[] = {
    {"LAP", 0, 21},    {"lapb", 0, 17},   {"LAPBE", 0, 18},  {"MLAPB", 0, 23},
    {"MLAPBE", 0, 24}, {"LLC1", 0, 15},   {"llc2", 0, 16},   {"LAP", 19, 22},
    {"lapb", 20, 19},  {"LAPBE", 22, 20}, {"MLAPB", 19, 25}, {"MLAPBE", 26, 26},
    {"LLC1", 19, 15},  {"LLC2", 25, 16},  {"LAPB", 24, 17},  {"", 20, 20},
};

class LinkProtocol : public testing::TestWithParam<protocol_case> {};

TEST_P(LinkProtocol, KeepsTheSide) {
    qx25test::capture_all_messages();
    const protocol_case &c = GetParam();
    link_values link{};
    link.link_mode = static_cast<uint8_t>(c.code_before);
    parse_link_protocol(c.text, &link);
    EXPECT_EQ(link.link_mode, c.code_after);
    if (c.text[0] != '\0') {
        EXPECT_EQ(link.mlp, c.code_after >= 23 && c.code_after <= 26 ? 1 : 0);
    }
    EXPECT_TRUE(messages().empty());
}

INSTANTIATE_TEST_SUITE_P(Values, LinkProtocol, testing::ValuesIn(protocol_cases));

TEST_F(Values, ModeAndProtocolInEitherOrder) {
    parse_link_mode("DCE", &link, &x25);
    parse_link_protocol("MLAPB", &link);
    EXPECT_EQ(link.link_mode, 25);
    link_values other{};
    parse_link_protocol("MLAPB", &other);
    parse_link_mode("DCE", &other, &x25);
    EXPECT_EQ(other.link_mode, 25);
}

TEST_F(Values, UnknownProtocolPassesTheFixedTextWithoutNewline) {
    link.link_mode = 17;
    parse_link_protocol("HDLC", &link);
    EXPECT_EQ(link.link_mode, 17);
    EXPECT_EQ(messages(), messages_t{"Unknown protocol"});
}

TEST_F(Values, MultipleDevicesWithoutMlpProtocolAreReported) {
    link.device_count = 2;
    link.mlp = 1;
    parse_link_protocol("LAPB", &link);
    EXPECT_EQ(link.mlp, 0);
    EXPECT_EQ(link.link_mode, 17);
    EXPECT_EQ(messages(), messages_t{"Links with multiple devices must use MLP protocol\n"});
    messages().clear();
    parse_link_protocol("MLAPB", &link);
    EXPECT_EQ(link.mlp, 1);
    EXPECT_TRUE(messages().empty());
}

TEST(PacketLevelMode, AutoNormalAndOthers) {
    EXPECT_EQ(get_plp_mode("Auto", 17), 2);
    EXPECT_EQ(get_plp_mode("auto", 0), 2);
    EXPECT_EQ(get_plp_mode("Normal", 17), 1);
    EXPECT_EQ(get_plp_mode("normal", 15), 1);
    for (int code : {19, 20, 22, 25, 26})
        EXPECT_EQ(get_plp_mode("Normal", code), 0);
    for (int code : {15, 16, 17, 18, 21, 23, 24})
        EXPECT_EQ(get_plp_mode("Normal", code), 1);
    EXPECT_EQ(get_plp_mode("Normal", 0), 1);
    EXPECT_EQ(get_plp_mode("Normal", 27), 1);
    EXPECT_EQ(get_plp_mode("DCE", 19), 1);
    EXPECT_EQ(get_plp_mode("", 19), 1);
}

TEST(ChannelRanges, EachRangeAndTheTotal) {
    qx25test::capture_all_messages();
    x25_lcn_block block{};
    parse_lcns(&block, "1-2", LCN_PVC);
    parse_lcns(&block, "10 - 19", LCN_INCOMING);
    parse_lcns(&block, "20\t29", LCN_OUTGOING);
    parse_lcns(&block, "512-575", LCN_TWO_WAY);
    EXPECT_EQ(block.pvc_low, 1);
    EXPECT_EQ(block.pvc_high, 2);
    EXPECT_EQ(block.pvc_count, 2);
    EXPECT_EQ(block.inc_low, 10);
    EXPECT_EQ(block.inc_high, 19);
    EXPECT_EQ(block.inc_count, 10);
    EXPECT_EQ(block.out_low, 20);
    EXPECT_EQ(block.out_high, 29);
    EXPECT_EQ(block.out_count, 10);
    EXPECT_EQ(block.two_low, 512);
    EXPECT_EQ(block.two_high, 575);
    EXPECT_EQ(block.two_count, 64);
    EXPECT_EQ(block.total, 86);
    EXPECT_TRUE(messages().empty());
}

TEST(ChannelRanges, CountsOfSingleAndEmptyRanges) {
    x25_lcn_block block{};
    parse_lcns(&block, "10-10", LCN_PVC);
    EXPECT_EQ(block.pvc_count, 1);
    parse_lcns(&block, "0-0", LCN_TWO_WAY);
    EXPECT_EQ(block.two_count, 0);
    EXPECT_EQ(block.total, 1);
}

TEST(ChannelRanges, BadRangesChangeNothing) {
    qx25test::capture_all_messages();
    x25_lcn_block block{};
    parse_lcns(&block, "5-9", LCN_PVC);
    x25_lcn_block before = block;
    parse_lcns(&block, "1 - 0", LCN_PVC);
    parse_lcns(&block, "7", LCN_PVC);
    parse_lcns(&block, " - ", LCN_PVC);
    parse_lcns(&block, "", LCN_PVC);
    EXPECT_EQ(std::memcmp(&block, &before, sizeof block), 0);
    EXPECT_EQ(messages(),
              (messages_t{"LCN Upper value must be >= lower\n", "LCN value must be a range n - m\n",
                          "No LCN range found\n", "No LCN range found\n"}));
}

TEST(Timers, TenthsOfASecond) {
    qx25test::capture_all_messages();
    EXPECT_EQ(parse_timer(180.0), 1800);
    EXPECT_EQ(parse_timer(0.04), 0);
    EXPECT_EQ(parse_timer(0.05), 1);
    EXPECT_EQ(parse_timer(3200.0), 32000);
    EXPECT_TRUE(messages().empty());
    EXPECT_EQ(parse_timer(3200.1), 2000);
    EXPECT_EQ(parse_timer(-5.0), 2000);
    EXPECT_EQ(parse_timer(1e300), 2000);
    EXPECT_EQ(parse_timer(NAN), 2000);
    EXPECT_EQ(messages(), messages_t(4, "Timer value out of range, 200.0 assumed\n"));
}

TEST(Delays, Milliseconds) {
    qx25test::capture_all_messages();
    EXPECT_EQ(parse_delay(0.005), 5);
    EXPECT_EQ(parse_delay(0.0004), 0);
    EXPECT_EQ(parse_delay(32.0), 32000);
    EXPECT_TRUE(messages().empty());
    EXPECT_EQ(parse_delay(32.001), 5);
    EXPECT_EQ(parse_delay(-1.0), 5);
    EXPECT_EQ(messages(), messages_t(2, "Delay value out of range, 0.005 assumed\n"));
}

TEST(LineSpeed, ExternalOrNumber) {
    EXPECT_EQ(parse_speed("external"), 0u);
    EXPECT_EQ(parse_speed("EXTERNAL"), 0u);
    EXPECT_EQ(parse_speed("64000"), 64000u);
    EXPECT_EQ(parse_speed("9600 baud"), 9600u);
    EXPECT_EQ(parse_speed("fast"), 0u);
}

TEST(PackedDigits, HexadecimalTwoToAByte) {
    uint8_t bytes[4] = {0xFF, 0xFF, 0xFF, 0xFF};
    str_to_bcd(bytes, "12aBc", 5);
    EXPECT_EQ(bytes[0], 0x12);
    EXPECT_EQ(bytes[1], 0xAB);
    EXPECT_EQ(bytes[2], 0xC0);
    EXPECT_EQ(bytes[3], 0xFF);
    str_to_bcd(bytes, "9876", 2);
    EXPECT_EQ(bytes[0], 0x98);
    EXPECT_EQ(bytes[1], 0xAB);
}

TEST(X32Texts, IdentityAndSignature) {
    qx25test::capture_all_messages();
    x32_record x32{};
    parse_x32_text_field("0123456789abcdef", x32.identity, &x32.identity_len);
    EXPECT_EQ(x32.identity_len, 8);
    EXPECT_EQ(x32.identity[0], 0x01);
    EXPECT_EQ(x32.identity[7], 0xEF);
    parse_x32_text_field("ABC", x32.signature, &x32.signature_len);
    EXPECT_EQ(x32.signature_len, 1); // the odd digit is packed, not counted
    EXPECT_EQ(x32.signature[1], 0xC0);
    EXPECT_TRUE(messages().empty());
    parse_x32_text_field("", x32.identity, &x32.identity_len);
    EXPECT_EQ(x32.identity_len, 0);
}

TEST(X32Texts, InvalidTextsAreReportedAndEmptied) {
    qx25test::capture_all_messages();
    x32_record x32{};
    x32.identity_len = 4;
    parse_x32_text_field("12G4", x32.identity, &x32.identity_len);
    EXPECT_EQ(x32.identity_len, 0);
    std::string long_text(66, '1');
    x32.signature_len = 4;
    parse_x32_text_field(long_text.c_str(), x32.signature, &x32.signature_len);
    EXPECT_EQ(x32.signature_len, 0);
    EXPECT_EQ(messages(),
              (messages_t{"Identity or Signature 12G4 too long or invalid\n",
                          "Identity or Signature " + long_text + " too long or invalid\n"}));
}

TEST(X32Texts, SixtyFiveDigitsPassButTheFieldIsNeverOverrun) {
    qx25test::capture_all_messages();
    x32_record x32;
    std::memset(&x32, 0x5A, sizeof x32);
    std::string text(65, '7');
    parse_x32_text_field(text.c_str(), x32.identity, &x32.identity_len);
    EXPECT_TRUE(messages().empty());
    EXPECT_EQ(x32.identity_len, 32);
    for (uint8_t byte : x32.identity)
        EXPECT_EQ(byte, 0x77);
    for (uint8_t byte : x32.signature)
        EXPECT_EQ(byte, 0x5A); // the next field
}

} // namespace
