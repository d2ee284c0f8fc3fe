// Protocol defaults of the link sections and the network profile table.
#include "qx25.h"

#include "captured_messages.h"
#include "config_tree.h"
#include "link_config.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <climits>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <string>
#include <vector>

using qx25test::ConfigTree;
using qx25test::messages;

namespace {

// Records are filled with this byte first: a field the loader must leave
// alone still holds it afterwards.
constexpr unsigned char marker = 0xAB;
constexpr uint16_t marker16 = 0xABAB;
constexpr uint32_t marker32 = 0xABABABABu;

template <typename Record> Record marked() {
    Record record;
    std::memset(&record, marker, sizeof record);
    return record;
}

bool all_marker(const void *data, std::size_t size) {
    const auto *bytes = static_cast<const unsigned char *>(data);
    for (std::size_t i = 0; i < size; ++i)
        if (bytes[i] != marker) return false;
    return true;
}

bool all_zero(const uint8_t *bytes, std::size_t size) {
    for (std::size_t i = 0; i < size; ++i)
        if (bytes[i] != 0) return false;
    return true;
}

// ---- X.25 ------------------------------------------------------------------

// The values a LAN and a WAN X.25 section share.
void expect_common_x25(const x25_template &v) {
    EXPECT_EQ(v.lcn.pvc_low, 0);
    EXPECT_EQ(v.lcn.pvc_high, 0);
    EXPECT_EQ(v.lcn.inc_low, 0);
    EXPECT_EQ(v.lcn.inc_high, 0);
    EXPECT_EQ(v.lcn.out_low, 0);
    EXPECT_EQ(v.lcn.out_high, 0);
    EXPECT_EQ(v.lcn.pvc_count, 0);
    EXPECT_EQ(v.lcn.inc_count, 0);
    EXPECT_EQ(v.lcn.out_count, 0);

    EXPECT_EQ(v.modulo, 8);
    EXPECT_EQ(v.locmaxpktsize, 8);
    EXPECT_EQ(v.remmaxpktsize, 8);
    EXPECT_EQ(v.locdefpktsize, 7);
    EXPECT_EQ(v.remdefpktsize, 7);
    EXPECT_EQ(v.locmaxwinsize, 7);
    EXPECT_EQ(v.remmaxwinsize, 7);
    EXPECT_EQ(v.locdefwinsize, 2);
    EXPECT_EQ(v.remdefwinsize, 2);
    EXPECT_EQ(v.max_nsdu, 576);

    EXPECT_EQ(v.ackdelay, 5);
    EXPECT_EQ(v.t20value, 1800);
    EXPECT_EQ(v.t21value, 2000);
    EXPECT_EQ(v.t22value, 1800);
    EXPECT_EQ(v.t23value, 1800);
    EXPECT_EQ(v.t24value, 750);
    EXPECT_EQ(v.t25value, 1500);
    EXPECT_EQ(v.t26value, 1800);
    EXPECT_EQ(v.connectvalue, 2000);
    EXPECT_EQ(v.r20value, 1);
    EXPECT_EQ(v.r22value, 1);
    EXPECT_EQ(v.r23value, 1);
    EXPECT_EQ(v.localdelay, 5);
    EXPECT_EQ(v.accessdelay, 5);

    EXPECT_EQ(v.locmaxthclass, 12);
    EXPECT_EQ(v.remmaxthclass, 12);
    EXPECT_EQ(v.locdefthclass, 12);
    EXPECT_EQ(v.remdefthclass, 12);
    EXPECT_EQ(v.locminthclass, 4);
    EXPECT_EQ(v.remminthclass, 4);
    EXPECT_EQ(v.cug, 16);
    EXPECT_EQ(v.cug, X25_CUG_BASIC);
    EXPECT_EQ(v.facilities, 1);
    EXPECT_EQ(v.facilities, X25_FAC_USE_NEGOTIATION);
    EXPECT_EQ(v.options, 0);
    EXPECT_EQ(v.intl_addr_recogn, 0);
    EXPECT_EQ(v.dnic[0], 0);
    EXPECT_EQ(v.dnic[1], 0);
    EXPECT_EQ(v.prty_encode, 0);
    EXPECT_EQ(v.prty_forced, 0);
    EXPECT_EQ(v.src_addr, 0);
    EXPECT_EQ(v.dbit, 0xA5);
    EXPECT_EQ(v.thclass_neg_to_def, 0);
    EXPECT_EQ(v.thclass_type, 0);
    EXPECT_TRUE(all_zero(v.thclass_wmap, sizeof v.thclass_wmap));
    EXPECT_TRUE(all_zero(v.thclass_pmap, sizeof v.thclass_pmap));
}

// Fields that are no default keep what the record held.
void expect_x25_untouched(const x25_template &v) {
    EXPECT_EQ(static_cast<uint32_t>(v.link), marker32);
    EXPECT_EQ(v.reserved_7, marker);
    EXPECT_EQ(v.reserved_43, marker);
    EXPECT_EQ(static_cast<uint16_t>(v.t28value), marker16);
    EXPECT_EQ(v.r28value, marker);
    EXPECT_EQ(v.reserved_83, marker);
    EXPECT_EQ(v.reserved_129, marker);
    EXPECT_EQ(v.driver_flag, marker);
    EXPECT_TRUE(all_marker(v.reserved_131, sizeof v.reserved_131));
}

TEST(X25Defaults, LanSection) {
    auto v = marked<x25_template>();
    load_x25_defaults(&v, 1);
    EXPECT_EQ(v.network, 1);
    EXPECT_EQ(v.version, 84);
    EXPECT_EQ(v.plp_mode, 2);
    EXPECT_EQ(v.lcn.two_low, 1);
    EXPECT_EQ(v.lcn.two_high, 4095);
    EXPECT_EQ(v.lcn.two_count, 4095);
    EXPECT_EQ(v.lcn.total, 4095);
    EXPECT_EQ(v.idlevalue, 600);
    expect_common_x25(v);
    expect_x25_untouched(v);
}

TEST(X25Defaults, WanSection) {
    auto v = marked<x25_template>();
    load_x25_defaults(&v, 0);
    EXPECT_EQ(v.network, 2);
    EXPECT_EQ(v.version, 88);
    EXPECT_EQ(v.plp_mode, 1);
    EXPECT_EQ(v.lcn.two_low, 512);
    EXPECT_EQ(v.lcn.two_high, 575);
    // The count of the range 512-575, not 4096 less its lower bound.
    EXPECT_EQ(v.lcn.two_count, 64);
    EXPECT_EQ(v.lcn.total, 64);
    EXPECT_EQ(v.idlevalue, 0);
    expect_common_x25(v);
    expect_x25_untouched(v);
}

TEST(X25Defaults, AnyNonZeroLanFlagGivesTheLanSection) {
    auto lan = marked<x25_template>();
    auto other = marked<x25_template>();
    load_x25_defaults(&lan, 1);
    load_x25_defaults(&other, 0x80000000u);
    EXPECT_EQ(std::memcmp(&lan, &other, sizeof lan), 0);
}

TEST(X25Defaults, NullRecordDoesNothing) {
    qx25test::capture_all_messages();
    load_x25_defaults(nullptr, 0);
    load_x25_defaults(nullptr, 1);
    EXPECT_TRUE(messages().empty());
}

// ---- LAPB, LLC2, MLP, WAN ---------------------------------------------------

TEST(LapbDefaults, Values) {
    auto v = marked<lapb_template>();
    load_lapb_defaults(&v);
    EXPECT_EQ(v.n2_count, 10);
    EXPECT_EQ(v.t1_timer, 60);
    EXPECT_EQ(v.pf_timer, 7);
    EXPECT_EQ(v.reject_timer, 25);
    EXPECT_EQ(v.busy_timer, 100);
    EXPECT_EQ(v.idle_timer, 250);
    EXPECT_EQ(v.rr_ack_delay, 4);
    EXPECT_EQ(v.unack_max, 3);
    EXPECT_EQ(v.local_win, 7);
    EXPECT_EQ(v.local_probe, 0);
    EXPECT_EQ(v.max_iframe_len, 517);
    EXPECT_EQ(v.flags, 0);
    EXPECT_EQ(v.kind, marker);
    EXPECT_TRUE(all_marker(v.reserved, sizeof v.reserved));
    EXPECT_EQ(static_cast<uint32_t>(v.link), marker32);
}

TEST(LapbDefaults, NullRecordDoesNothing) {
    qx25test::capture_all_messages();
    load_lapb_defaults(nullptr);
    EXPECT_TRUE(messages().empty());
}

TEST(Llc2Defaults, Values) {
    auto v = marked<llc2_template>();
    load_llc2_defaults(&v);
    EXPECT_EQ(v.n2_count, 10);
    EXPECT_EQ(v.t1_timer, 10);
    EXPECT_EQ(v.pf_timer, 7);
    EXPECT_EQ(v.reject_timer, 25);
    EXPECT_EQ(v.busy_timer, 100);
    EXPECT_EQ(v.idle_timer, 250);
    EXPECT_EQ(v.rr_ack_delay, 4);
    EXPECT_EQ(v.unack_max, 3);
    EXPECT_EQ(v.local_win, 7);
    EXPECT_EQ(v.local_probe, 0);
    EXPECT_EQ(v.max_iframe_len, 263);
    EXPECT_EQ(v.xid_window, 7);
    EXPECT_EQ(v.xid_ndup, 2);
    EXPECT_EQ(v.xid_tdup, 5);
    EXPECT_EQ(v.kind, marker);
    EXPECT_TRUE(all_marker(v.reserved, sizeof v.reserved));
    EXPECT_EQ(static_cast<uint32_t>(v.link), marker32);
}

TEST(Llc2Defaults, NullRecordDoesNothing) {
    qx25test::capture_all_messages();
    load_llc2_defaults(nullptr);
    EXPECT_TRUE(messages().empty());
}

TEST(MlpDefaults, Values) {
    auto v = marked<mlp_values>();
    load_mlp_defaults(&v);
    EXPECT_EQ(v.mlp_win, 10);
    EXPECT_EQ(v.guard, 10);
    EXPECT_EQ(v.mt1, 600);
    EXPECT_EQ(v.mt2, 600);
    EXPECT_EQ(v.mt3, 20);
    EXPECT_EQ(v.mn1, 10);
    EXPECT_TRUE(all_marker(v.lapb, sizeof v.lapb));
    EXPECT_TRUE(all_marker(v.wan, sizeof v.wan));
}

TEST(MlpDefaults, NullRecordDoesNothing) {
    qx25test::capture_all_messages();
    load_mlp_defaults(nullptr);
    EXPECT_TRUE(messages().empty());
}

TEST(WanDefaults, Values) {
    auto v = marked<wan_values>();
    load_wan_defaults(&v);
    EXPECT_EQ(v.tuning.line_speed, 0u);
    EXPECT_EQ(v.tuning.max_frame, 520);
    EXPECT_EQ(v.flags, 0);
    EXPECT_EQ(v.line_option, 1);
    EXPECT_EQ(v.connect_proc, 0);
    EXPECT_EQ(v.x21_t1, 3);
    EXPECT_EQ(v.x21_t2, 20);
    EXPECT_EQ(v.x21_t3a, 6);
    EXPECT_EQ(v.x21_t4b, 6);
    EXPECT_EQ(v.x21_t5, 2);
    EXPECT_EQ(v.x21_t6, 2);
    EXPECT_EQ(static_cast<uint32_t>(v.tuning.link), marker32);
}

TEST(WanDefaults, NullRecordDoesNothing) {
    qx25test::capture_all_messages();
    load_wan_defaults(nullptr);
    EXPECT_TRUE(messages().empty());
}

// ---- Network profiles -------------------------------------------------------

// Letters only, so that no piece of such a text scans as a number.
std::string letters(std::size_t count) {
    std::string text;
    for (std::size_t i = 0; i < count; ++i)
        text += static_cast<char>('a' + i % 26);
    return text;
}

// The missing-file message as a 128-byte buffer holds it: a longer one is
// cut and keeps its newline.
std::string opening_error(const std::string &path) {
    std::string text = "Error opening file " + path + "\n";
    if (text.size() > 127) text = text.substr(0, 126) + "\n";
    return text;
}

class NetworkProfiles : public testing::Test {
  protected:
    void SetUp() override {
        qx25test::capture_all_messages();
        // The table lives for the process: every test starts from an
        // unloaded, empty one.
        std::memset(profile_types, 0, sizeof profile_types);
        max_profiles = 0;
    }

    void write_profiles(const std::string &text) const {
        tree.write("lib/world_networks.profile", text);
    }

    std::string profile_path() const { return tree.lib_dir() + "/world_networks.profile"; }

    static void expect_entry(int slot, int number, const char *name, const std::string &text) {
        SCOPED_TRACE("slot " + std::to_string(slot));
        EXPECT_EQ(profile_types[slot].number, number);
        EXPECT_STREQ(profile_types[slot].name, name);
        EXPECT_EQ(std::string(profile_types[slot].description), text);
    }

    static void expect_empty(int slot) { expect_entry(slot, 0, "", ""); }

    ConfigTree tree;
};

TEST_F(NetworkProfiles, MissingFileIsReportedOnEveryLookUp) {
    EXPECT_EQ(network_number("x"), 0);
    EXPECT_STREQ(__network_name(2), "<Unknown>");
    EXPECT_EQ(network_number("x"), 0);
    EXPECT_EQ(max_profiles, 0);
    std::string message = opening_error(profile_path());
    EXPECT_EQ(messages(), (std::vector<std::string>{message, message, message}));
}

TEST_F(NetworkProfiles, FileAppearingAfterAFailedLoadIsReadOnTheNextLookUp) {
    EXPECT_EQ(network_number("NETB"), 0);
    write_profiles("2 NETB some text\n");
    EXPECT_EQ(network_number("NETB"), 2);
    EXPECT_EQ(messages().size(), 1u);
}

TEST_F(NetworkProfiles, SlashIsPutAfterADirectoryEndingInOne) {
    ::setenv("X25LIBFILES", (tree.lib_dir() + "/").c_str(), 1);
    EXPECT_EQ(network_number("x"), 0);
    EXPECT_EQ(messages(), (std::vector<std::string>{
                              opening_error(tree.lib_dir() + "//world_networks.profile")}));

    messages().clear();
    write_profiles("2 NETB some text\n");
    EXPECT_EQ(network_number("netb"), 2);
    EXPECT_TRUE(messages().empty());
}

TEST_F(NetworkProfiles, LongDirectoryIsReportedCutToTheBuffer) {
    std::string directory = "/nonexistent/" + std::string(300, 'd');
    ::setenv("X25LIBFILES", directory.c_str(), 1);
    EXPECT_EQ(network_number("x"), 0);
    ASSERT_EQ(messages().size(), 1u);
    EXPECT_EQ(messages()[0], "Error opening file " + directory.substr(0, 107) + "\n");
    EXPECT_EQ(messages()[0].size(), 127u);
}

TEST_F(NetworkProfiles, PathLongerThanTheSystemAllowsIsReported) {
    std::string directory = "/nonexistent/" + std::string(PATH_MAX, 'd');
    ::setenv("X25LIBFILES", directory.c_str(), 1);
    EXPECT_STREQ(__network_name(1), "<Unknown>");
    ASSERT_EQ(messages().size(), 1u);
    EXPECT_EQ(messages()[0], "Error opening file " + directory.substr(0, 107) + "\n");
    EXPECT_EQ(max_profiles, 0);
}

TEST_F(NetworkProfiles, CommentLineThenEntry) {
    write_profiles("# the public networks\n"
                   "2 NETB some text\n");
    EXPECT_EQ(network_number("netb"), 2);
    EXPECT_EQ(network_number("NETB"), 2);
    EXPECT_EQ(network_number("Netb"), 2);
    EXPECT_STREQ(__network_name(2), "NETB");
    EXPECT_EQ(max_profiles, 1);
    expect_entry(0, 2, "NETB", "some text");
    EXPECT_TRUE(messages().empty());
}

TEST_F(NetworkProfiles, UnknownNameAndNumber) {
    write_profiles("2 NETB some text\n");
    EXPECT_EQ(network_number("NETC"), 0);
    EXPECT_EQ(network_number("NET"), 0);
    EXPECT_EQ(network_number("NETBX"), 0);
    EXPECT_STREQ(__network_name(3), "<Unknown>");
    EXPECT_TRUE(messages().empty());
}

TEST_F(NetworkProfiles, ZeroNumberTakesASlotButGivesNoEntry) {
    write_profiles("0 ZERO none\n"
                   "5 FIVE five\n");
    EXPECT_EQ(network_number("FIVE"), 5);
    EXPECT_EQ(max_profiles, 2);
    expect_empty(0);
    expect_entry(1, 5, "FIVE", "five");
    EXPECT_EQ(network_number("ZERO"), 0);
}

TEST_F(NetworkProfiles, EmptySlotsAreNeverMatched) {
    write_profiles("0 ZERO none\n"
                   "\n"
                   "5 FIVE five\n");
    EXPECT_EQ(network_number(""), 0);
    EXPECT_EQ(network_number(nullptr), 0);
    EXPECT_STREQ(__network_name(0), "<Unknown>");
    EXPECT_EQ(max_profiles, 3);
    expect_empty(0);
    expect_empty(1);
}

TEST_F(NetworkProfiles, EntryWithoutANameIsNotFoundByAnEmptyName) {
    // The number scans, the name does not: the entry has an empty name.
    write_profiles("5\n");
    EXPECT_STREQ(__network_name(5), "");
    EXPECT_EQ(network_number(""), 0);
    expect_entry(0, 5, "", "");
}

TEST_F(NetworkProfiles, ThirtyZeroLinesFillTheTable) {
    std::string text;
    for (int i = 0; i < 30; ++i)
        text += "0 ZERO none\n";
    text += "9 LATE late\n";
    write_profiles(text);
    EXPECT_EQ(network_number("LATE"), 0);
    EXPECT_STREQ(__network_name(9), "<Unknown>");
    EXPECT_EQ(max_profiles, 30);
    for (int slot = 0; slot < 30; ++slot)
        expect_empty(slot);
    EXPECT_TRUE(messages().empty());
}

TEST_F(NetworkProfiles, ThirtyEntriesAtMost) {
    std::string text;
    for (int i = 1; i <= 31; ++i)
        text += std::to_string(i) + " N" + std::to_string(i) + " x\n";
    write_profiles(text);
    EXPECT_EQ(network_number("N30"), 30);
    EXPECT_STREQ(__network_name(30), "N30");
    EXPECT_EQ(network_number("N31"), 0);
    EXPECT_STREQ(__network_name(31), "<Unknown>");
    EXPECT_EQ(max_profiles, 30);
}

TEST_F(NetworkProfiles, CommentLinesTakeNoSlot) {
    std::string text;
    for (int i = 1; i <= 30; ++i)
        text += "# network " + std::to_string(i) + "\n" + std::to_string(i) + " N" +
                std::to_string(i) + " x\n";
    write_profiles(text);
    EXPECT_EQ(network_number("N30"), 30);
    EXPECT_EQ(max_profiles, 30);
}

TEST_F(NetworkProfiles, LongNameIsCutToSixteenCharacters) {
    write_profiles("4 ABCDEFGHIJKLMNOPQRST the long one\n");
    EXPECT_EQ(network_number("ABCDEFGHIJKLMNOPQRST"), 0);
    EXPECT_EQ(network_number("ABCDEFGHIJKLMNOP"), 4);
    EXPECT_EQ(network_number("abcdefghijklmnop"), 4);
    EXPECT_EQ(network_number("ABCDEFGHIJKLMNO"), 0);
    EXPECT_STREQ(__network_name(4), "ABCDEFGHIJKLMNOP");
    // The rest of the name is dropped, not taken into the description.
    expect_entry(0, 4, "ABCDEFGHIJKLMNOP", "the long one");
}

TEST_F(NetworkProfiles, SixteenCharacterNameIsKeptWhole) {
    write_profiles("4 ABCDEFGHIJKLMNOP sixteen\n");
    EXPECT_EQ(network_number("ABCDEFGHIJKLMNOP"), 4);
    expect_entry(0, 4, "ABCDEFGHIJKLMNOP", "sixteen");
}

TEST_F(NetworkProfiles, DescriptionIsCutTo105Characters) {
    // "1 N " and 122 letters end in the newline as character 127: one line.
    write_profiles("1 N " + letters(122) + "\n" + "2 M " + letters(105) + "\n");
    EXPECT_EQ(network_number("N"), 1);
    EXPECT_EQ(max_profiles, 2);
    expect_entry(0, 1, "N", letters(105));
    expect_entry(1, 2, "M", letters(105));
}

TEST_F(NetworkProfiles, LongDescriptionLineIsReadInTwoPieces) {
    // 127 characters are read, then the last 27 letters and the newline as a
    // line of their own. That piece has no number, so it stores the first
    // piece's entry again in a slot of its own.
    write_profiles("1 N " + letters(150) + "\n");
    EXPECT_EQ(network_number("N"), 1);
    EXPECT_EQ(max_profiles, 2);
    expect_entry(0, 1, "N", letters(105));
    expect_entry(1, 1, "N", letters(105));
}

TEST_F(NetworkProfiles, LineLongerThan127CharactersIsSplit) {
    write_profiles("1 A " + std::string(123, 'x') + "42 SPLIT rest\n");
    EXPECT_EQ(network_number("SPLIT"), 42);
    EXPECT_STREQ(__network_name(42), "SPLIT");
    EXPECT_EQ(max_profiles, 2);
    expect_entry(0, 1, "A", std::string(105, 'x'));
    expect_entry(1, 42, "SPLIT", "rest");
}

TEST_F(NetworkProfiles, HashEndsTheLine) {
    write_profiles("7 ABC first # comment\n"
                   "8 DEF#GHI second\n");
    EXPECT_EQ(network_number("ABC"), 7);
    expect_entry(0, 7, "ABC", "first ");
    // Cut after its name, the line keeps the previous line's description.
    EXPECT_EQ(network_number("DEF"), 8);
    expect_entry(1, 8, "DEF", "first ");
}

TEST_F(NetworkProfiles, IndentedHashIsNoCommentLine) {
    // Only a "#" in the first column makes a comment line; this one is cut
    // down to a blank line, which takes a slot.
    write_profiles("  # indented\n"
                   "5 FIVE five\n");
    EXPECT_EQ(network_number("FIVE"), 5);
    EXPECT_EQ(max_profiles, 2);
    expect_empty(0);
}

TEST_F(NetworkProfiles, FirstMatchWins) {
    write_profiles("3 DUP one\n"
                   "4 dup two\n"
                   "3 OTHER three\n");
    EXPECT_EQ(network_number("Dup"), 3);
    EXPECT_STREQ(__network_name(3), "DUP");
    EXPECT_STREQ(__network_name(4), "dup");
    EXPECT_EQ(network_number("OTHER"), 3);
}

TEST_F(NetworkProfiles, NumberThatDoesNotScanKeepsThePreviousEntry) {
    // sscanf stops at "x": the whole previous entry is stored again.
    write_profiles("5 A a\n"
                   "x B b\n");
    EXPECT_EQ(network_number("B"), 0);
    EXPECT_EQ(network_number("A"), 5);
    EXPECT_EQ(max_profiles, 2);
    expect_entry(0, 5, "A", "a");
    expect_entry(1, 5, "A", "a");
}

TEST_F(NetworkProfiles, BlankLineAfterAnEntryRepeatsIt) {
    write_profiles("5 A a\n"
                   "\n"
                   "6 C c\n");
    EXPECT_EQ(network_number("C"), 6);
    EXPECT_EQ(max_profiles, 3);
    expect_entry(1, 5, "A", "a");
    expect_entry(2, 6, "C", "c");
}

TEST_F(NetworkProfiles, NumberThatDoesNotScanBeforeAnyEntryGivesNone) {
    write_profiles("x B b\n"
                   "5 A a\n");
    EXPECT_EQ(network_number("B"), 0);
    EXPECT_EQ(max_profiles, 2);
    expect_empty(0);
    expect_entry(1, 5, "A", "a");
}

TEST_F(NetworkProfiles, LineWithoutADescriptionKeepsThePreviousOne) {
    write_profiles("5 A a\n"
                   "6 ONLY\n");
    EXPECT_STREQ(__network_name(6), "ONLY");
    expect_entry(1, 6, "ONLY", "a");
}

TEST_F(NetworkProfiles, TableIsLoadedOnlyOnce) {
    write_profiles("2 NETB some text\n");
    EXPECT_EQ(network_number("NETB"), 2);
    write_profiles("3 NETC other text\n");
    EXPECT_EQ(network_number("NETC"), 0);
    EXPECT_EQ(network_number("NETB"), 2);
    EXPECT_STREQ(__network_name(2), "NETB");
    EXPECT_STREQ(__network_name(3), "<Unknown>");
    std::filesystem::remove(profile_path());
    EXPECT_EQ(network_number("NETB"), 2);
    EXPECT_TRUE(messages().empty());
}

TEST_F(NetworkProfiles, NumbersAreSixteenBitsSignExtended) {
    write_profiles("-3 NEG negative\n"
                   "70000 BIG low sixteen bits\n"
                   "65534 WRAP stored as -2\n");
    EXPECT_STREQ(__network_name(static_cast<uint32_t>(-3)), "NEG");
    EXPECT_STREQ(__network_name(0xFFFDu), "<Unknown>");
    EXPECT_EQ(network_number("NEG"), -3);
    EXPECT_STREQ(__network_name(70000 - 65536), "BIG");
    EXPECT_STREQ(__network_name(70000), "<Unknown>");
    EXPECT_EQ(network_number("BIG"), 70000 - 65536);
    EXPECT_STREQ(__network_name(static_cast<uint32_t>(-2)), "WRAP");
    EXPECT_STREQ(__network_name(65534), "<Unknown>");
    EXPECT_EQ(network_number("WRAP"), -2);
}

TEST_F(NetworkProfiles, DirectoryIsAnOpeningError) {
    std::filesystem::create_directories(profile_path());
    EXPECT_EQ(network_number("x"), 0);
    EXPECT_EQ(max_profiles, 0);
    EXPECT_EQ(messages(), (std::vector<std::string>{opening_error(profile_path())}));
}

// ---- get_entry ----------------------------------------------------------------

class ProfileEntries : public testing::Test {
  protected:
    void SetUp() override { qx25test::capture_all_messages(); }
    void TearDown() override {
        if (stream != nullptr) std::fclose(stream);
    }

    void open(const std::string &text) {
        std::string path = tree.write("entries.txt", text);
        stream = std::fopen(path.c_str(), "r");
        ASSERT_NE(stream, nullptr);
    }

    ConfigTree tree;
    FILE *stream = nullptr;
    char line[128];
    int16_t counter = 0;
};

TEST_F(ProfileEntries, LinesReadWhileSkippingCommentsAreCounted) {
    open("#a\n#b\n#c\n1 A x\n2 B y\n");
    ASSERT_EQ(get_entry(stream, line, &counter), 1);
    EXPECT_STREQ(line, "1 A x\n");
    EXPECT_EQ(counter, 3);
    ASSERT_EQ(get_entry(stream, line, &counter), 1);
    EXPECT_STREQ(line, "2 B y\n");
    EXPECT_EQ(counter, 3);
    EXPECT_EQ(get_entry(stream, line, &counter), 0);
    EXPECT_EQ(counter, 3);
    EXPECT_TRUE(messages().empty());
}

TEST_F(ProfileEntries, CounterIsAddedTo) {
    open("#a\n1 A x\n");
    counter = 5;
    ASSERT_EQ(get_entry(stream, line, &counter), 1);
    EXPECT_EQ(counter, 6);
}

TEST_F(ProfileEntries, OnlyCommentsIsTheEndSilently) {
    open("#a\n#b\n");
    EXPECT_EQ(get_entry(stream, line, &counter), 0);
    EXPECT_EQ(counter, 1);
    EXPECT_TRUE(messages().empty());
}

TEST_F(ProfileEntries, LineIsCutAtItsFirstHash) {
    open("1 A b#c#d\n");
    ASSERT_EQ(get_entry(stream, line, &counter), 1);
    EXPECT_STREQ(line, "1 A b");
    EXPECT_EQ(counter, 0);
}

TEST_F(ProfileEntries, LinesAreRead127CharactersAtATime) {
    open(std::string(130, 'z') + "\n");
    ASSERT_EQ(get_entry(stream, line, &counter), 1);
    EXPECT_EQ(std::string(line), std::string(127, 'z'));
    ASSERT_EQ(get_entry(stream, line, &counter), 1);
    EXPECT_STREQ(line, "zzz\n");
}

TEST_F(ProfileEntries, ReadErrorReportsTheSystemErrorAndTheCounter) {
    std::filesystem::create_directories(tree.root() + "/dir");
    stream = std::fopen((tree.root() + "/dir").c_str(), "r");
    ASSERT_NE(stream, nullptr);
    counter = 4;
    EXPECT_EQ(get_entry(stream, line, &counter), 0);
    EXPECT_EQ(messages(), (std::vector<std::string>{"Error " + std::to_string(EISDIR) +
                                                    " reading profile file at line 4\n"}));
}

} // namespace
