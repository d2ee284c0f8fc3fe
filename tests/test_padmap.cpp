// The PAD map: the fields of a padmapconf line, rejected lines, the digit
// overflows that end the enumeration, the look-up by address and the call
// strings of getpadbystr.
#include "qx25.h"

#include "captured_messages.h"
#include "config_tree.h"
#include "link_files.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

using qx25test::ConfigTree;

namespace {

using lines = std::vector<std::string>;

std::string hex(const uint8_t *bytes, int count) {
    static constexpr char digits[] = "0123456789ABCDEF";
    std::string text;
    for (int i = 0; i < count; ++i)
        text += digits[i % 2 == 0 ? bytes[i / 2] >> 4 : bytes[i / 2] & 0x0F];
    return text;
}

// Every field of an entry, in record order.
std::string describe(const pad_entry *entry) {
    if (entry == nullptr) return "none";
    char address[256];
    if (x25tos(&entry->address, address, 0) != 0) std::strcpy(address, "<bad>");
    return std::string(address) + " v" + std::to_string(entry->version) + " f" +
           std::to_string(entry->fast_select) + " r" + std::to_string(entry->reverse_charging) +
           " p" + std::to_string(entry->remote_packet_size) + "/" +
           std::to_string(entry->local_packet_size) + " w" +
           std::to_string(entry->remote_window_size) + "/" +
           std::to_string(entry->local_window_size) + " g" + std::to_string(entry->cug_kind) + ":" +
           hex(entry->cug_number, 4) + " t" + std::to_string(entry->t_digit_count) + ":" +
           hex(entry->t_digits, entry->t_digit_count) + " '" + entry->free_text + "'";
}

class PadMap : public testing::Test {
  protected:
    void map(const std::string &text) { tree.write("config/padmapconf", text); }
    lines all_entries() {
        lines list;
        setpadent(0);
        while (const pad_entry *entry = getpadent())
            list.push_back(describe(entry));
        endpadent();
        return list;
    }
    std::string first_entry(const std::string &line) {
        map(line + "\n");
        setpadent(0);
        std::string text = describe(getpadent());
        endpadent();
        return text;
    }
    ConfigTree tree;
};

TEST_F(PadMap, EveryFieldOfALine) {
    EXPECT_EQ(first_entry("3.23421234567 84 P7/7,W2/2,R G12 T3110 rlogin host"),
              "3.23421234567 v2 f0 r1 p7/7 w2/2 g1:0012 t4:3110 'rlogin host'");
}

TEST_F(PadMap, OmittedFieldsInTheMiddle) {
    EXPECT_EQ(first_entry("3.2342 88 - - - free text"),
              "3.2342 v3 f0 r0 p0/0 w0/0 g0:0000 t0: 'free text'");
}

TEST_F(PadMap, Versions) {
    EXPECT_EQ(first_entry("3.1 80 -"), "3.1 v1 f0 r0 p0/0 w0/0 g0:0000 t0: ''");
    EXPECT_EQ(first_entry("3.1 84 -"), "3.1 v2 f0 r0 p0/0 w0/0 g0:0000 t0: ''");
    EXPECT_EQ(first_entry("3.1 88 -"), "3.1 v3 f0 r0 p0/0 w0/0 g0:0000 t0: ''");
    EXPECT_EQ(first_entry("3.1 1988 -"), "3.1 v0 f0 r0 p0/0 w0/0 g0:0000 t0: ''");
    EXPECT_EQ(first_entry("3.1 - -"), "3.1 v0 f0 r0 p0/0 w0/0 g0:0000 t0: ''");
}

TEST_F(PadMap, AVersionWithNothingAfterItIsNotRead) {
    EXPECT_EQ(first_entry("3.1 84"), "3.1 v0 f0 r0 p0/0 w0/0 g0:0000 t0: ''");
    EXPECT_EQ(first_entry("3.1 84 "), "3.1 v2 f0 r0 p0/0 w0/0 g0:0000 t0: ''");
    EXPECT_EQ(first_entry("3.1 \t "), "3.1 v0 f0 r0 p0/0 w0/0 g0:0000 t0: ''");
}

TEST_F(PadMap, AnAddressAloneIsAnEntry) {
    EXPECT_EQ(first_entry("3.1"), "3.1 v0 f0 r0 p0/0 w0/0 g0:0000 t0: ''");
    EXPECT_EQ(first_entry("3.1#comment"), "3.1 v0 f0 r0 p0/0 w0/0 g0:0000 t0: ''");
}

TEST_F(PadMap, EmptyAndBlankLinesAreEntriesOfTheEmptyAddress) {
    map("\n  \n");
    EXPECT_EQ(all_entries(),
              (lines{" v0 f0 r0 p0/0 w0/0 g0:0000 t0: ''", " v0 f0 r0 p0/0 w0/0 g0:0000 t0: ''"}));
}

TEST_F(PadMap, PacketSizes) {
    EXPECT_EQ(first_entry("3.1 84 P7/7"), "3.1 v2 f0 r0 p7/7 w0/0 g0:0000 t0: ''");
    EXPECT_EQ(first_entry("3.1 84 p4/12"), "3.1 v2 f0 r0 p4/12 w0/0 g0:0000 t0: ''");
    map("3.1 84 P3/7\n3.2 84 P7/13\n3.3 84 P7\n3.4 84 P/7\n3.5 84 P7/\n3.6 84 P7/7\n");
    EXPECT_EQ(all_entries(), (lines{"3.6 v2 f0 r0 p7/7 w0/0 g0:0000 t0: ''"}));
}

TEST_F(PadMap, WindowSizes) {
    EXPECT_EQ(first_entry("3.1 84 W1/127"), "3.1 v2 f0 r0 p0/0 w1/127 g0:0000 t0: ''");
    EXPECT_EQ(first_entry("3.1 84 w2/3"), "3.1 v2 f0 r0 p0/0 w2/3 g0:0000 t0: ''");
    map("3.1 84 W0/2\n3.2 84 W2/128\n3.3 84 W2\n3.4 84 W99999999999/2\n3.6 84 W2/2\n");
    EXPECT_EQ(all_entries(), (lines{"3.6 v2 f0 r0 p0/0 w2/2 g0:0000 t0: ''"}));
}

TEST_F(PadMap, FacilitiesWrittenTogetherOrSeparatedByCommas) {
    std::string together = first_entry("3.1 84 FRW2/2");
    EXPECT_EQ(together, "3.1 v2 f1 r1 p0/0 w2/2 g0:0000 t0: ''");
    EXPECT_EQ(first_entry("3.1 84 F,R,W2/2"), together);
    EXPECT_EQ(first_entry("3.1 84 ,f,,r,w2/2,"), together);
    EXPECT_EQ(first_entry("3.1 84 P7/7W2/2"), "3.1 v2 f0 r0 p7/7 w2/2 g0:0000 t0: ''");
}

TEST_F(PadMap, AnUnknownFacilityRejectsTheLine) {
    map("3.1 84 FX\n3.2 84 F-\n3.3 84 F\n");
    EXPECT_EQ(all_entries(), (lines{"3.3 v2 f1 r0 p0/0 w0/0 g0:0000 t0: ''"}));
}

TEST_F(PadMap, ClosedUserGroups) {
    EXPECT_EQ(first_entry("3.1 84 - G1234"), "3.1 v2 f0 r0 p0/0 w0/0 g1:1234 t0: ''");
    EXPECT_EQ(first_entry("3.1 84 - g5"), "3.1 v2 f0 r0 p0/0 w0/0 g1:0005 t0: ''");
    EXPECT_EQ(first_entry("3.1 84 - B123"), "3.1 v2 f0 r0 p0/0 w0/0 g2:0123 t0: ''");
    EXPECT_EQ(first_entry("3.1 84 - b"), "3.1 v2 f0 r0 p0/0 w0/0 g2:0000 t0: ''");
    EXPECT_EQ(first_entry("3.1 84 - -"), "3.1 v2 f0 r0 p0/0 w0/0 g0:0000 t0: ''");
}

TEST_F(PadMap, AnUnknownGroupKindRejectsTheLine) {
    map("3.1 84 - X12\n3.2 84 - G12\n");
    EXPECT_EQ(all_entries(), (lines{"3.2 v2 f0 r0 p0/0 w0/0 g1:0012 t0: ''"}));
}

TEST_F(PadMap, AFifthGroupDigitEndsTheEnumeration) {
    map("3.1 84 - G1234\n3.2 84 - G12345\n3.3 84 - G1\n");
    EXPECT_EQ(all_entries(), (lines{"3.1 v2 f0 r0 p0/0 w0/0 g1:1234 t0: ''"}));
    // The enumeration goes on after the line when asked again.
    setpadent(0);
    ASSERT_NE(getpadent(), nullptr);
    EXPECT_EQ(getpadent(), nullptr);
    EXPECT_EQ(describe(getpadent()), "3.3 v2 f0 r0 p0/0 w0/0 g1:0001 t0: ''");
    endpadent();
}

TEST_F(PadMap, TDigits) {
    EXPECT_EQ(first_entry("3.1 84 - - T31103110"), "3.1 v2 f0 r0 p0/0 w0/0 g0:0000 t8:31103110 ''");
    EXPECT_EQ(first_entry("3.1 84 - - t1234567890123456"),
              "3.1 v2 f0 r0 p0/0 w0/0 g0:0000 t16:1234567890123456 ''");
    EXPECT_EQ(first_entry("3.1 84 - - T"), "3.1 v2 f0 r0 p0/0 w0/0 g0:0000 t0: ''");
    map("3.1 84 - - T311\n3.2 84 - - X3110\n3.3 84 - - T3110\n");
    EXPECT_EQ(all_entries(), (lines{"3.3 v2 f0 r0 p0/0 w0/0 g0:0000 t4:3110 ''"}));
}

TEST_F(PadMap, ASeventeenthTDigitEndsTheEnumeration) {
    map("3.1 84 - - T12345678901234567\n3.2 84\n");
    EXPECT_EQ(all_entries(), lines{});
}

TEST_F(PadMap, FreeText) {
    EXPECT_EQ(first_entry("3.1 84 - - - \t some  text\there "),
              "3.1 v2 f0 r0 p0/0 w0/0 g0:0000 t0: 'some  text\there '");
    EXPECT_EQ(first_entry("3.1 84 - - -text"), "3.1 v2 f0 r0 p0/0 w0/0 g0:0000 t0: 'text'");
    EXPECT_EQ(first_entry("3.1 84 - - T3110more"), "3.1 v2 f0 r0 p0/0 w0/0 g0:0000 t4:3110 'more'");
    EXPECT_EQ(first_entry("3.1 84 - - - text # comment"),
              "3.1 v2 f0 r0 p0/0 w0/0 g0:0000 t0: 'text '");
}

TEST_F(PadMap, AFreeTextOf200CharactersIsCutTo124) {
    std::string text(200, 'x');
    EXPECT_EQ(first_entry("3.1 84 - - - " + text),
              "3.1 v2 f0 r0 p0/0 w0/0 g0:0000 t0: '" + std::string(124, 'x') + "'");
}

TEST_F(PadMap, FieldsMayFollowEachOtherWithoutBlanks) {
    // Each field ends where its syntax ends; what follows starts the next.
    EXPECT_EQ(first_entry("3.1 84 - G12T3110 text"),
              "3.1 v2 f0 r0 p0/0 w0/0 g1:0012 t4:3110 'text'");
    EXPECT_EQ(first_entry("3.1 84 -G12"), "3.1 v2 f0 r0 p0/0 w0/0 g1:0012 t0: ''");
    EXPECT_EQ(first_entry("3.1 84 --G12"), "none"); // G12 is read as the T field
}

TEST_F(PadMap, BadAddressesCommentsAndLastLines) {
    map("# map\n3.G 84 -\n#3.2 84\n3.3 84 F # fast\n3.4 84 F");
    EXPECT_EQ(all_entries(), (lines{"3.3 v2 f1 r0 p0/0 w0/0 g0:0000 t0: ''"}));
}

TEST_F(PadMap, CarriageReturnsAndOverLongLines) {
    map("3.1 84 F\r\n3.2 84 - - - text\r\n3.3 84 - - - " + std::string(1100, 'x') + "\n3.4 84\r\n");
    EXPECT_EQ(all_entries(), (lines{"3.2 v2 f0 r0 p0/0 w0/0 g0:0000 t0: 'text\r'",
                                    "3.4 v0 f0 r0 p0/0 w0/0 g0:0000 t0: ''"}));
}

TEST_F(PadMap, AMissingFileGivesNothing) {
    setpadent(1);
    EXPECT_EQ(getpadent(), nullptr);
    endpadent();
    x25_address address;
    stox25("3.1", &address, 0);
    EXPECT_EQ(getpadbyaddr(&address), nullptr);
}

TEST_F(PadMap, TheRecordIsClearedBeforeEachLine) {
    map("3.1 84 FR G12 T3110 text\n3.2\n");
    setpadent(0);
    pad_entry *entry = getpadent();
    ASSERT_NE(entry, nullptr);
    ASSERT_EQ(getpadent(), entry);
    EXPECT_EQ(describe(entry), "3.2 v0 f0 r0 p0/0 w0/0 g0:0000 t0: ''");
    for (uint8_t byte : entry->reserved)
        EXPECT_EQ(byte, 0);
    endpadent();
}

TEST_F(PadMap, ByAddressFindsTheFirstAcceptedLineOfTheAddress) {
    map("3.1 84 F\n3.2 84 X\n3.2 88 R\n3.2 80 F\n");
    x25_address address;
    stox25("3.2", &address, 0);
    EXPECT_EQ(describe(getpadbyaddr(&address)), "3.2 v3 f0 r1 p0/0 w0/0 g0:0000 t0: ''");
    stox25("3.9", &address, 0);
    EXPECT_EQ(getpadbyaddr(&address), nullptr);
    EXPECT_EQ(getpadbyaddr(nullptr), nullptr);
}

TEST_F(PadMap, ByAddressStopsAtADigitOverflowOnAnyLine) {
    map("3.1 84 - G12345\n3.2 84 F\n");
    x25_address address;
    stox25("3.2", &address, 0);
    EXPECT_EQ(getpadbyaddr(&address), nullptr);
}

TEST_F(PadMap, StayOpenAndInterleavedLookUps) {
    map("3.1 84 F\n3.2 84 R\n3.3 84 FR\n");
    x25_address address;
    stox25("3.2", &address, 0);
    setpadent(0);
    EXPECT_EQ(getpadent()->address.dte[0], 0x10);
    ASSERT_NE(getpadbyaddr(&address), nullptr);
    EXPECT_EQ(getpadent()->address.dte[0], 0x10); // closed, opened anew
    setpadent(1);
    ASSERT_NE(getpadbyaddr(&address), nullptr);
    EXPECT_EQ(getpadent()->address.dte[0], 0x30); // kept open after the match
    endpadent();
    EXPECT_EQ(getpadent(), nullptr);
}

// ---- Call strings -------------------------------------------------------------------------

class CallStrings : public PadMap {
  protected:
    void SetUp() override {
        qx25test::capture_all_messages();
        qx25test::write_boardconf(tree);
        qx25test::write_link_file(tree, 3,
                                  "device wan0\ntype WAN\nversion 1984\n"
                                  "full_address 3.23421234999\n");
        qx25test::write_link_file(tree, 1, "device eth0\ntype LAN\n");
        tree.write("config/xhosts", "3.23421234567 paris lutece\n23421234567 direct\n"
                                    "4.1234 nolink\n1.0800200A1B2C04 lanhost\n");
    }
    std::string call(const char *text) {
        const char *result = getpadbystr(text);
        return result != nullptr ? result : "<null>";
    }
};

TEST_F(CallStrings, AHostWithoutPadEntryAndWithoutLinkGivesItsAddress) {
    EXPECT_EQ(call("direct"), "23421234567");
    EXPECT_EQ(call("nolink"), "4.1234");
}

TEST_F(CallStrings, TheCallingAddressOfTheLinkFollows) {
    EXPECT_EQ(call("paris"), "3.23421234567 +3.23421234999");
    EXPECT_EQ(call("lutece"), "3.23421234567 +3.23421234999");
}

TEST_F(CallStrings, ALinkWithoutDteDigitsGivesNoCallingAddress) {
    EXPECT_EQ(call("lanhost"), "1.0800200A1B2C04");
}

TEST_F(CallStrings, TheFacilitiesOfThePadEntryFollow) {
    map("3.23421234567 84 P7/7,W2/2,R G12 T3110 rlogin host\n23421234567 88 F\n");
    EXPECT_EQ(call("paris"), "3.23421234567 +3.23421234999 P7/7W2/2R 84 G12 T3110 ~rlogin host");
    EXPECT_EQ(call("direct"), "23421234567 F 88");
}

TEST_F(CallStrings, AnEntryWithoutFacilitiesAddsABlank) {
    map("23421234567\n");
    EXPECT_EQ(call("direct"), "23421234567 ");
}

TEST_F(CallStrings, AFreeTextBeginningWithADashIsNotWritten) {
    map("23421234567 84 - - - -dash\n");
    EXPECT_EQ(call("direct"), "23421234567  84");
}

TEST_F(CallStrings, AddressesAreReadWithTheClassOfTheirLink) {
    EXPECT_EQ(call("3.23421234567.N.1"), "3.23421234567.N.1 +3.23421234999");
    EXPECT_EQ(call("1.0800200A1B2C"), "<null>"); // too short for the LAN
    EXPECT_EQ(call("1.0800200A1B2C04"), "1.0800200A1B2C04");
    EXPECT_EQ(call("9.12"), "9.12");
}

TEST_F(CallStrings, NamesComeBeforeAddresses) {
    tree.write("config/xhosts", "3.999 3.1234\n");
    EXPECT_EQ(call("3.1234"), "3.999 +3.23421234999");
}

TEST_F(CallStrings, NeitherHostNorAddressGivesNull) {
    EXPECT_EQ(call("nowhere"), "<null>");
    EXPECT_EQ(call(nullptr), "<null>");
}

TEST_F(CallStrings, TheLongestCallStringFits) {
    std::string extension(40, 'A');
    tree.write("config/xhosts", "3.12345678901234567.N." + extension + " far\n");
    qx25test::write_link_file(
        tree, 3, "device wan0\ntype WAN\nfull_address 3.12345678901234567.N." + extension + "\n");
    map("3.12345678901234567.N." + extension + " 88 P12/12,W127/127,F,R G1234 T1234567890123456 " +
        std::string(200, 'z') + "\n");
    std::string address = "3.12345678901234567.N." + extension;
    EXPECT_EQ(call("far"), address + " +" + address +
                               " P12/12W127/127FR 88 G1234 T1234567890123456 ~" +
                               std::string(124, 'z'));
}

} // namespace
