// The X.25 template file: every line read with a good, an out-of-range and
// a missing value, the messages, the written form byte for byte, the
// working file names and the by-link operations.
#include "qx25.h"

#include "captured_messages.h"
#include "config_tree.h"
#include "template_file.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

using qx25test::ConfigTree;
using qx25test::messages;
using qx25test::read_file;

namespace {

// A template whose every line is in range and in the written form.
const std::vector<std::string> sample_lines = {
    "5",
    "88",
    "1",
    "001",
    "002",
    "000",
    "000",
    "010",
    "01f",
    "000", // 1..10
    "000",
    "8",
    "8",
    "8",
    "7",
    "7",
    "7",
    "7",
    "2",
    "2", // 11..20
    "4096",
    "10",
    "1800",
    "2000",
    "1800",
    "1800",
    "600",
    "100",
    "200",
    "0", // 21..30
    "0",
    "1",
    "1",
    "1",
    "0",
    "0",
    "15",
    "15",
    "10",
    "9", // 31..40
    "3",
    "3",
    "Y",
    "N",
    "Y",
    "N",
    "0",
    "N",
    "Y",
    "N", // 41..50
    "Y",
    "N",
    "N",
    "N",
    "N",
    "N",
    "Y",
    "N",
    "N",
    "N", // 51..60
    "Y",
    "N",
    "N",
    "N",
    "N",
    "Y",
    "2",
    "Y",
    "2342",
    "1", // 61..70
    "4",
    "2",
    "0",
    "1",
    "2",
    "0",
    "Y",
    "1",                               // 71..78
    "2.2.2.3.3.3.4.4.5.5.5.5.5.5.5.5", // 79
    "4.4.5.5.6.6.7.7.7.7.7.7.7.7.7.7", // 80
};

std::string joined(const std::vector<std::string> &lines) {
    std::string text;
    for (const std::string &line : lines)
        text += line + "\n";
    return text;
}

std::vector<std::string> with_line(int line, const std::string &value) {
    std::vector<std::string> lines = sample_lines;
    lines.at(static_cast<std::size_t>(line - 1)) = value;
    return lines;
}

std::string range_message(int value, int line) {
    return "The value " + std::to_string(value) + " on line " + std::to_string(line) +
           "\nis out of range";
}

class X25Template : public ::testing::Test {
  protected:
    void SetUp() override { qx25test::capture_all_messages(); }

    // Reads a template text into the record.
    int read_text(const std::string &text) {
        std::string path = tree.write("files/t.x25", text);
        return read_x25_template_parameter_file(path.c_str(), &record);
    }
    // What the writer writes for the record.
    std::string written() {
        std::string path = tree.root() + "/files/out.x25";
        std::filesystem::create_directories(tree.root() + "/files");
        EXPECT_EQ(write__x25_template_parameter_file(path.c_str(), &record), 0);
        return read_file(path);
    }

    ConfigTree tree;
    x25_template record{};
};

// ---- The sample, field by field ----------------------------------------------

TEST_F(X25Template, SampleFillsEveryCarriedField) {
    ASSERT_EQ(read_text(joined(sample_lines)), 0);
    EXPECT_TRUE(messages().empty());
    EXPECT_EQ(record.network, 5);
    EXPECT_EQ(record.version, 2);
    EXPECT_EQ(record.plp_mode, 1);
    EXPECT_EQ(record.lcn.pvc_low, 1);
    EXPECT_EQ(record.lcn.pvc_high, 2);
    EXPECT_EQ(record.lcn.inc_low, 0);
    EXPECT_EQ(record.lcn.inc_high, 0);
    EXPECT_EQ(record.lcn.two_low, 16);
    EXPECT_EQ(record.lcn.two_high, 31);
    EXPECT_EQ(record.lcn.out_low, 0);
    EXPECT_EQ(record.lcn.out_high, 0);
    EXPECT_EQ(record.lcn.pvc_count, 2);
    EXPECT_EQ(record.lcn.inc_count, 0);
    EXPECT_EQ(record.lcn.two_count, 16);
    EXPECT_EQ(record.lcn.out_count, 0);
    EXPECT_EQ(record.lcn.total, 18);
    EXPECT_EQ(record.modulo, X25_MODULO_8);
    EXPECT_EQ(record.locmaxpktsize, 8);
    EXPECT_EQ(record.remmaxpktsize, 8);
    EXPECT_EQ(record.locdefpktsize, 7);
    EXPECT_EQ(record.remdefpktsize, 7);
    EXPECT_EQ(record.locmaxwinsize, 7);
    EXPECT_EQ(record.remmaxwinsize, 7);
    EXPECT_EQ(record.locdefwinsize, 2);
    EXPECT_EQ(record.remdefwinsize, 2);
    EXPECT_EQ(record.max_nsdu, 4096);
    EXPECT_EQ(record.ackdelay, 10);
    EXPECT_EQ(record.t20value, 1800);
    EXPECT_EQ(record.t21value, 2000);
    EXPECT_EQ(record.t22value, 1800);
    EXPECT_EQ(record.t23value, 1800);
    EXPECT_EQ(record.t24value, 600);
    EXPECT_EQ(record.t25value, 100);
    EXPECT_EQ(record.t26value, 200);
    EXPECT_EQ(record.idlevalue, 0);
    EXPECT_EQ(record.connectvalue, 0);
    EXPECT_EQ(record.r20value, 1);
    EXPECT_EQ(record.r22value, 1);
    EXPECT_EQ(record.r23value, 1);
    EXPECT_EQ(record.localdelay, 0);
    EXPECT_EQ(record.accessdelay, 0);
    EXPECT_EQ(record.locmaxthclass, 15);
    EXPECT_EQ(record.remmaxthclass, 15);
    EXPECT_EQ(record.locdefthclass, 10);
    EXPECT_EQ(record.remdefthclass, 9);
    EXPECT_EQ(record.locminthclass, 3);
    EXPECT_EQ(record.remminthclass, 3);
    EXPECT_EQ(record.cug, X25_CUG_SUB | X25_CUG_SUB_OA | X25_CUG_BASIC);
    EXPECT_EQ(record.facilities,
              X25_FAC_USE_NEGOTIATION | X25_FAC_FAST_SELECT | X25_FAC_SUB_TOA_NPI_FMT);
    EXPECT_EQ(record.options,
              X25_OPT_USE_DIAG | X25_OPT_BAR_NONPRIV_LISTEN | X25_OPT_INTL_PRIORITISED);
    EXPECT_EQ(record.intl_addr_recogn, 2);
    EXPECT_EQ(record.dnic[0], 0x23);
    EXPECT_EQ(record.dnic[1], 0x42);
    EXPECT_EQ(record.prty_encode, 1);
    EXPECT_EQ(record.prty_forced, 4);
    EXPECT_EQ(record.src_addr, 2);
    // accept_out 1 is kept as pattern 2 at bits 2-3, data_in 2 as pattern 1
    // at bits 4-5.
    EXPECT_EQ(record.dbit, 0x08 | 0x10);
    EXPECT_EQ(record.thclass_neg_to_def, 1);
    EXPECT_EQ(record.thclass_type, 1);
    const uint8_t wmap[16] = {2, 2, 2, 3, 3, 3, 4, 4, 5, 5, 5, 5, 5, 5, 5, 5};
    const uint8_t pmap[16] = {4, 4, 5, 5, 6, 6, 7, 7, 7, 7, 7, 7, 7, 7, 7, 7};
    EXPECT_EQ(std::memcmp(record.thclass_wmap, wmap, 16), 0);
    EXPECT_EQ(std::memcmp(record.thclass_pmap, pmap, 16), 0);
}

TEST_F(X25Template, SampleIsWrittenBackByteForByte) {
    ASSERT_EQ(read_text(joined(sample_lines)), 0);
    EXPECT_EQ(written(), joined(sample_lines));
}

TEST_F(X25Template, FieldsTheFileDoesNotCarryAreLeftAlone) {
    std::memset(&record, 0xA5, sizeof record);
    x25_template before = record;
    ASSERT_EQ(read_text(joined(sample_lines)), 0);
    EXPECT_EQ(record.link, before.link);
    EXPECT_EQ(record.reserved_7, before.reserved_7);
    EXPECT_EQ(record.reserved_43, before.reserved_43);
    EXPECT_EQ(record.t28value, before.t28value);
    EXPECT_EQ(record.r28value, before.r28value);
    EXPECT_EQ(record.reserved_83, before.reserved_83);
    EXPECT_EQ(record.reserved_129, before.reserved_129);
    EXPECT_EQ(record.driver_flag, before.driver_flag);
    EXPECT_EQ(std::memcmp(record.reserved_131, before.reserved_131, 9), 0);
}

// ---- Every line: good, out of range, missing --------------------------------

// Another value in range for every line, in the written form.
const std::vector<std::string> other_good_values = {
    "25",
    "80",
    "2",
    "fff",
    "abc",
    "003",
    "004",
    "005",
    "006",
    "007", // 1
    "008",
    "128",
    "12",
    "7",
    "8",
    "8",
    "6",
    "6",
    "6",
    "6", // 11
    "32000",
    "1",
    "32000",
    "32000",
    "32000",
    "32000",
    "32000",
    "32000",
    "32000",
    "32000",
    "32000",
    "255",
    "255",
    "255",
    "32000",
    "3200",
    "10",
    "9",
    "3",
    "3", // 31
    "10",
    "9",
    "N",
    "Y",
    "N",
    "Y",
    "1",
    "Y",
    "N",
    "Y", // 41
    "N",
    "Y",
    "Y",
    "Y",
    "Y",
    "Y",
    "N",
    "Y",
    "Y",
    "Y", // 51
    "N",
    "Y",
    "Y",
    "Y",
    "Y",
    "N",
    "3",
    "N",
    "9999",
    "2", // 61
    "12",
    "3",
    "2",
    "0",
    "1",
    "1",
    "N",
    "3", // 71
    "0.1.2.3.4.5.5.5.0.1.2.3.4.5.5.5",
    "0.0.0.0.0.0.0.0.0.0.0.0.0.0.0.7", // 79
};

TEST_F(X25Template, EveryLineTakesAnotherGoodValueAndWritesItBack) {
    ASSERT_EQ(other_good_values.size(), 80u);
    for (int line = 1; line <= 80; ++line) {
        SCOPED_TRACE("line " + std::to_string(line));
        record = {};
        std::vector<std::string> lines =
            with_line(line, other_good_values[static_cast<std::size_t>(line - 1)]);
        ASSERT_EQ(read_text(joined(lines)), 0);
        EXPECT_TRUE(messages().empty());
        EXPECT_EQ(written(), joined(lines));
    }
}

// Every line another good value at once; the default and minimum classes
// must still agree, and so must the remote packet sizes.
std::vector<std::string> all_other_good_values() {
    std::vector<std::string> lines = other_good_values;
    lines[15] = "7";  // remdefpktsize <= remmaxpktsize 7
    lines[38] = "10"; // locdefthclass in locminthclass 10 .. 10
    lines[39] = "9";  // remdefthclass in remminthclass 9 .. 9
    return lines;
}

struct bad_line {
    int line;
    const char *text;
    int value; // as the message names it
};

// A value out of range for every line that has a range.
const bad_line bad_lines[] = {
    {1, "26", 26},
    {2, "85", 85},
    {3, "3", 3},
    {4, "1000", 4096},
    {5, "1000", 4096},
    {6, "1000", 4096},
    {7, "1000", 4096},
    {8, "1000", 4096},
    {9, "1000", 4096},
    {10, "1000", 4096},
    {11, "-1", -1},
    {12, "16", 16},
    {13, "13", 13},
    {14, "6", 6},
    {15, "9", 9},
    {16, "9", 9},
    {17, "8", 8},
    {18, "1", 1},
    {19, "8", 8},
    {20, "1", 1},
    {21, "0", 0},
    {22, "32001", 32001},
    {23, "32001", 32001},
    {24, "-1", -1},
    {25, "32001", 32001},
    {26, "32001", 32001},
    {27, "32001", 32001},
    {28, "32001", 32001},
    {29, "32001", 32001},
    {30, "32001", 32001},
    {31, "-1", -1},
    {32, "0", 0},
    {33, "256", 256},
    {34, "0", 0},
    {35, "32001", 32001},
    {36, "3201", 3201},
    {37, "16", 16},
    {38, "16", 16},
    {39, "16", 16},
    {40, "16", 16},
    {41, "16", 16},
    {42, "16", 16},
    {47, "2", 2},
    {67, "4", 4},
    {69, "10000", 10000},
    {70, "3", 3},
    {71, "13", 13},
    {72, "4", 4},
    {73, "3", 3},
    {74, "3", 3},
    {75, "3", 3},
    {76, "3", 3},
    {78, "4", 4},
    {79, "2.2.2.3.3.3.4.4.5.5.5.5.5.5.5.8", 8},
    {80, "4.4.5.5.6.6.7.7.7.7.7.7.7.7.7.9", 9},
};

TEST_F(X25Template, EveryRangedLineRefusesAValueOutOfRange) {
    for (const bad_line &bad : bad_lines) {
        SCOPED_TRACE("line " + std::to_string(bad.line));
        messages().clear();
        EXPECT_EQ(read_text(joined(with_line(bad.line, bad.text))), 1);
        ASSERT_EQ(messages().size(), 1u);
        EXPECT_EQ(messages()[0], range_message(bad.value, bad.line));
    }
}

TEST_F(X25Template, LinesWithoutARangeTakeAnyText) {
    const int yes_no_lines[] = {43, 44, 45, 46, 48, 49, 50, 51, 52, 53, 54, 55, 56,
                                57, 58, 59, 60, 61, 62, 63, 64, 65, 66, 68, 77};
    for (int line : yes_no_lines) {
        SCOPED_TRACE("line " + std::to_string(line));
        EXPECT_EQ(read_text(joined(with_line(line, "whatever"))), 0);
        EXPECT_TRUE(messages().empty());
        // Anything but a leading upper-case Y is no.
        EXPECT_EQ(written(), joined(with_line(line, "N")));
    }
}

TEST_F(X25Template, AFileThatEndsBeforeAnyLineGivesEinvalAndNoMessage) {
    for (int line = 1; line <= 80; ++line) {
        SCOPED_TRACE("missing line " + std::to_string(line));
        std::vector<std::string> lines(sample_lines.begin(), sample_lines.begin() + (line - 1));
        EXPECT_EQ(read_text(joined(lines)), EINVAL);
        EXPECT_TRUE(messages().empty());
    }
}

TEST_F(X25Template, ALastLineWithoutItsNewlineIsRead) {
    std::string text = joined(sample_lines);
    text.pop_back();
    EXPECT_EQ(read_text(text), 0);
    EXPECT_EQ(written(), joined(sample_lines));
}

TEST_F(X25Template, FieldsBeforeTheBadLineKeepTheirNewValues) {
    std::memset(&record, 0xEE, sizeof record);
    EXPECT_EQ(read_text(joined(with_line(22, "0"))), 1);
    EXPECT_EQ(record.network, 5);
    EXPECT_EQ(record.max_nsdu, 4096);
    EXPECT_EQ(static_cast<uint16_t>(record.ackdelay), 0xEEEE);
    EXPECT_EQ(static_cast<uint16_t>(record.t20value), 0xEEEE);
    EXPECT_EQ(record.cug, 0xEE);
    EXPECT_EQ(record.facilities, 0xEEEE);
}

// ---- The reading rules ----------------------------------------------------------

TEST_F(X25Template, VersionMustBeOneOfTheList) {
    EXPECT_EQ(read_text(joined(with_line(2, "85"))), 1);
    EXPECT_EQ(messages(), std::vector<std::string>{range_message(85, 2)});
    messages().clear();
    for (const char *version : {"80", "84", "88"}) {
        ASSERT_EQ(read_text(joined(with_line(2, version))), 0);
        EXPECT_EQ(written(), joined(with_line(2, version)));
    }
}

TEST_F(X25Template, ModuloEightLimitsWindowsToSeven) {
    EXPECT_EQ(read_text(joined(with_line(17, "8"))), 1);
    EXPECT_EQ(messages(), std::vector<std::string>{range_message(8, 17)});
    messages().clear();
    std::vector<std::string> lines = with_line(12, "128");
    lines[16] = "8";
    lines[17] = "127";
    EXPECT_EQ(read_text(joined(lines)), 0);
    EXPECT_EQ(record.modulo, X25_MODULO_128);
    EXPECT_EQ(record.locmaxwinsize, 8);
    EXPECT_EQ(record.remmaxwinsize, 127);
    lines[17] = "128";
    EXPECT_EQ(read_text(joined(lines)), 1);
    EXPECT_EQ(messages(), std::vector<std::string>{range_message(128, 18)});
}

TEST_F(X25Template, ModuloMustBeEightOrOneHundredTwentyEight) {
    EXPECT_EQ(read_text(joined(with_line(12, "64"))), 1);
    EXPECT_EQ(messages(), std::vector<std::string>{range_message(64, 12)});
}

TEST_F(X25Template, CommentLinesCountForTheLineNumbers) {
    std::vector<std::string> lines = with_line(4, "fffff");
    lines.insert(lines.begin() + 3, "# the channel ranges follow");
    EXPECT_EQ(read_text(joined(lines)), 1);
    EXPECT_EQ(messages(), std::vector<std::string>{range_message(0xfffff, 5)});
}

TEST_F(X25Template, CommentLinesStandAnywhere) {
    std::vector<std::string> lines;
    for (const std::string &line : sample_lines) {
        lines.push_back("#");
        lines.push_back(line);
    }
    lines.push_back("# the end");
    EXPECT_EQ(read_text(joined(lines)), 0);
    EXPECT_EQ(written(), joined(sample_lines));
    EXPECT_EQ(read_text(joined(with_line(80, "# only a comment"))), EINVAL);
}

TEST_F(X25Template, TextFromAHashOnIsCutOffAndLeadingBlanksRemoved) {
    std::vector<std::string> lines = with_line(1, " \t 7  # the network");
    lines[68] = "\t2342# the DNIC";
    lines[42] = "  Y # subscribed";
    EXPECT_EQ(read_text(joined(lines)), 0);
    EXPECT_EQ(record.network, 7);
    EXPECT_EQ(record.dnic[0], 0x23);
    EXPECT_EQ(record.dnic[1], 0x42);
    EXPECT_EQ(record.cug & X25_CUG_SUB, X25_CUG_SUB);
}

TEST_F(X25Template, AnEmptyLineIsTheValueZero) {
    EXPECT_EQ(read_text(joined(with_line(1, ""))), 1);
    EXPECT_EQ(messages(), std::vector<std::string>{range_message(0, 1)});
    messages().clear();
    EXPECT_EQ(read_text(joined(with_line(30, ""))), 0);
    EXPECT_EQ(record.idlevalue, 0);
}

TEST_F(X25Template, BlanksThenAHashIsAnEmptyValueNotAComment) {
    EXPECT_EQ(read_text(joined(with_line(1, "   # not a comment line"))), 1);
    EXPECT_EQ(messages(), std::vector<std::string>{range_message(0, 1)});
}

TEST_F(X25Template, TrailingTextAfterTheDigitsIsIgnored) {
    std::vector<std::string> lines = with_line(1, "12 networks");
    lines[3] = "01fz";
    EXPECT_EQ(read_text(joined(lines)), 0);
    EXPECT_EQ(record.network, 12);
    EXPECT_EQ(record.lcn.pvc_low, 0x1f);
}

TEST_F(X25Template, ChannelLinesAreHexadecimal) {
    std::vector<std::string> lines = with_line(4, "0x1F");
    lines[4] = "FFF";
    EXPECT_EQ(read_text(joined(lines)), 0);
    EXPECT_EQ(record.lcn.pvc_low, 0x1f);
    EXPECT_EQ(record.lcn.pvc_high, 0xfff);
    EXPECT_EQ(record.lcn.pvc_count, 0xfff - 0x1f + 1);
}

TEST_F(X25Template, ARangeWithLowBoundZeroHasNoChannels) {
    std::vector<std::string> lines = with_line(4, "000");
    lines[4] = "00a"; // PVC 0-10
    lines[5] = "001"; // incoming 1-1
    lines[6] = "001";
    lines[9] = "0a0"; // outgoing 160-175
    lines[10] = "0af";
    EXPECT_EQ(read_text(joined(lines)), 0);
    EXPECT_EQ(record.lcn.pvc_count, 0);
    EXPECT_EQ(record.lcn.inc_count, 1);
    EXPECT_EQ(record.lcn.two_count, 16);
    EXPECT_EQ(record.lcn.out_count, 16);
    EXPECT_EQ(record.lcn.total, 33);
}

TEST_F(X25Template, ChannelCountsAreComputedOnceTheRangesAreRead) {
    // A bad line 12 stops reading after the counts were computed.
    record.lcn.total = 99;
    EXPECT_EQ(read_text(joined(with_line(12, "7"))), 1);
    EXPECT_EQ(record.lcn.total, 18);
    // A bad line 11 stops before.
    record = {};
    record.lcn.total = 99;
    EXPECT_EQ(read_text(joined(with_line(11, "1000"))), 1);
    EXPECT_EQ(record.lcn.total, 99);
}

TEST_F(X25Template, DefaultPacketAndWindowSizesAreBoundedByTheMaximaRead) {
    std::vector<std::string> lines = with_line(13, "9");
    lines[14] = "9";
    EXPECT_EQ(read_text(joined(lines)), 0);
    lines[14] = "10";
    EXPECT_EQ(read_text(joined(lines)), 1);
    EXPECT_EQ(messages(), std::vector<std::string>{range_message(10, 15)});
    messages().clear();
    lines = with_line(18, "3");
    lines[19] = "4";
    EXPECT_EQ(read_text(joined(lines)), 1);
    EXPECT_EQ(messages(), std::vector<std::string>{range_message(4, 20)});
}

TEST_F(X25Template, DefaultClassesAreCheckedAgainstTheMinimaReadAfterThem) {
    // 2 passes 0..15 when read, then fails 3..15 once line 41 is known.
    std::memset(&record, 0xEE, sizeof record);
    EXPECT_EQ(read_text(joined(with_line(39, "2"))), 1);
    EXPECT_EQ(messages(), std::vector<std::string>{range_message(2, 39)});
    EXPECT_EQ(record.locminthclass, 3);
    EXPECT_EQ(record.remminthclass, 3);
    EXPECT_EQ(record.locdefthclass, 0xEE); // never stored
    EXPECT_EQ(record.remdefthclass, 0xEE);
    EXPECT_EQ(record.cug, 0xEE); // nothing after line 42 was read
}

TEST_F(X25Template, TheRemoteDefaultClassIsCheckedSecond) {
    std::memset(&record, 0xEE, sizeof record);
    EXPECT_EQ(read_text(joined(with_line(40, "2"))), 1);
    EXPECT_EQ(messages(), std::vector<std::string>{range_message(2, 40)});
    EXPECT_EQ(record.locdefthclass, 10); // checked and stored before
    EXPECT_EQ(record.remdefthclass, 0xEE);
}

TEST_F(X25Template, TheRecheckNamesThePhysicalLineOfTheValue) {
    std::vector<std::string> lines = with_line(40, "1");
    lines.insert(lines.begin() + 39, "# remote default class");
    lines.insert(lines.begin(), "# header");
    EXPECT_EQ(read_text(joined(lines)), 1);
    EXPECT_EQ(messages(), std::vector<std::string>{range_message(1, 42)});
}

TEST_F(X25Template, DefaultClassesAboveTheMaximaFailWhenRead) {
    std::vector<std::string> lines = with_line(37, "5");
    lines[38] = "6";
    EXPECT_EQ(read_text(joined(lines)), 1);
    EXPECT_EQ(messages(), std::vector<std::string>{range_message(6, 39)});
}

TEST_F(X25Template, ReadingClearsTheFlagsTheFileDoesNotCarry) {
    record.facilities = X25_FAC_BAR_CALL_X32_REG | X25_FAC_BAR_INCALL;
    record.options = X25_OPT_DATAPAC_PRIORITY | X25_OPT_ISO_8882_MODE | X25_OPT_SEND_X121_TO_LAN |
                     X25_OPT_INSERT_X121_FROM_LAN | X25_OPT_ACC_NODIAG;
    record.cug = 0xFF;
    record.t28value = 1234;
    record.r28value = 7;
    record.driver_flag = 255;
    ASSERT_EQ(read_text(joined(sample_lines)), 0);
    EXPECT_EQ(record.facilities,
              X25_FAC_USE_NEGOTIATION | X25_FAC_FAST_SELECT | X25_FAC_SUB_TOA_NPI_FMT);
    EXPECT_EQ(record.options,
              X25_OPT_USE_DIAG | X25_OPT_BAR_NONPRIV_LISTEN | X25_OPT_INTL_PRIORITISED);
    EXPECT_EQ(record.cug, X25_CUG_SUB | X25_CUG_SUB_OA | X25_CUG_BASIC);
    EXPECT_EQ(record.t28value, 1234);
    EXPECT_EQ(record.r28value, 7);
    EXPECT_EQ(record.driver_flag, 255);
}

TEST_F(X25Template, FlagsAreClearedOnlyWhenReadingReachesThem) {
    record.facilities = X25_FAC_BAR_CALL_X32_REG;
    EXPECT_EQ(read_text(joined(with_line(42, "16"))), 1);
    EXPECT_EQ(record.facilities, X25_FAC_BAR_CALL_X32_REG);
    EXPECT_EQ(read_text(joined(with_line(47, "2"))), 1);
    EXPECT_EQ(record.facilities, 0);
}

TEST_F(X25Template, OnlyAnUpperCaseYIsYes) {
    std::vector<std::string> lines = with_line(43, "y");
    lines[76] = "yes";
    lines[48] = "Yes please";
    EXPECT_EQ(read_text(joined(lines)), 0);
    EXPECT_EQ(record.cug & X25_CUG_SUB, 0);
    EXPECT_EQ(record.thclass_neg_to_def, 0);
    EXPECT_EQ(record.facilities & X25_FAC_USE_NEGOTIATION, X25_FAC_USE_NEGOTIATION);
}

TEST_F(X25Template, CugFormatSetsOneOfTwoBits) {
    ASSERT_EQ(read_text(joined(with_line(47, "1"))), 0);
    EXPECT_EQ(record.cug & (X25_CUG_BASIC | X25_CUG_EXTENDED), X25_CUG_EXTENDED);
    ASSERT_EQ(read_text(joined(with_line(47, "0"))), 0);
    EXPECT_EQ(record.cug & (X25_CUG_BASIC | X25_CUG_EXTENDED), X25_CUG_BASIC);
}

TEST_F(X25Template, DbitValuesAreCrossed) {
    std::vector<std::string> lines = with_line(73, "1");
    lines[73] = "2";
    lines[74] = "0";
    lines[75] = "1";
    ASSERT_EQ(read_text(joined(lines)), 0);
    EXPECT_EQ(record.dbit, 0x02 | 0x04 | 0x80);
    EXPECT_EQ(written(), joined(lines));
}

TEST_F(X25Template, ReadingTwiceOrsTheDbitFields) {
    ASSERT_EQ(read_text(joined(with_line(73, "1"))), 0);
    EXPECT_EQ(record.dbit & 0x03, 0x02);
    ASSERT_EQ(read_text(joined(with_line(73, "2"))), 0);
    EXPECT_EQ(record.dbit & 0x03, 0x03);
    // A field with its low bit set is written as 2.
    EXPECT_EQ(written(), joined(with_line(73, "2")));
}

TEST_F(X25Template, DnicIsFourDigitsKeptAsTwoHexadecimalBytes) {
    ASSERT_EQ(read_text(joined(with_line(69, "2342"))), 0);
    EXPECT_EQ(record.dnic[0], 0x23);
    EXPECT_EQ(record.dnic[1], 0x42);
    EXPECT_EQ(written(), joined(with_line(69, "2342")));
    ASSERT_EQ(read_text(joined(with_line(69, "0208"))), 0);
    EXPECT_EQ(written(), joined(with_line(69, "0208")));
}

TEST_F(X25Template, DnicTextShorterThanFourDigits) {
    ASSERT_EQ(read_text(joined(with_line(69, "5"))), 0);
    EXPECT_EQ(record.dnic[0], 0x05);
    EXPECT_EQ(record.dnic[1], 0x00);
    ASSERT_EQ(read_text(joined(with_line(69, ""))), 0);
    EXPECT_EQ(record.dnic[0], 0);
    EXPECT_EQ(record.dnic[1], 0);
    // Decimal 99 passes the range; "FF" from the third character on is a
    // hexadecimal byte.
    ASSERT_EQ(read_text(joined(with_line(69, "99FF"))), 0);
    EXPECT_EQ(record.dnic[0], 0x99);
    EXPECT_EQ(record.dnic[1], 0xFF);
}

TEST_F(X25Template, ClassMapsTakeAnySeparator) {
    std::vector<std::string> lines = with_line(79, "1,2,3,4,5,5,5,5,5,5,5,5,5,5,5,5");
    lines[79] = "7 6 5 4 3 2 1 0 7 6 5 4 3 2 1 0";
    ASSERT_EQ(read_text(joined(lines)), 0);
    const uint8_t wmap[16] = {1, 2, 3, 4, 5, 5, 5, 5, 5, 5, 5, 5, 5, 5, 5, 5};
    const uint8_t pmap[16] = {7, 6, 5, 4, 3, 2, 1, 0, 7, 6, 5, 4, 3, 2, 1, 0};
    EXPECT_EQ(std::memcmp(record.thclass_wmap, wmap, 16), 0);
    EXPECT_EQ(std::memcmp(record.thclass_pmap, pmap, 16), 0);
}

TEST_F(X25Template, AShortClassMapFillsTheRestWithZero) {
    std::memset(record.thclass_wmap, 9, 16);
    ASSERT_EQ(read_text(joined(with_line(79, "1.2.3"))), 0);
    const uint8_t wmap[16] = {1, 2, 3};
    EXPECT_EQ(std::memcmp(record.thclass_wmap, wmap, 16), 0);
}

TEST_F(X25Template, ClassMapEntriesAreBoundedByTheSmallerMaximum) {
    std::vector<std::string> lines = with_line(18, "5");
    lines[78] = "2.2.2.3.3.3.4.4.5.5.5.5.5.5.5.6";
    EXPECT_EQ(read_text(joined(lines)), 1);
    EXPECT_EQ(messages(), std::vector<std::string>{range_message(6, 79)});
    messages().clear();
    lines = with_line(13, "12");
    lines[79] = "8.8.8.8.8.8.8.8.8.8.8.8.8.8.8.8";
    EXPECT_EQ(read_text(joined(lines)), 0);
}

TEST_F(X25Template, AnOverLongLineKeepsItsStartAndItsTailIsNoLine) {
    std::vector<std::string> lines = with_line(1, "5" + std::string(300, ' ') + "99");
    EXPECT_EQ(read_text(joined(lines)), 0);
    EXPECT_EQ(record.network, 5);
    EXPECT_EQ(written(), joined(sample_lines));
}

TEST_F(X25Template, HugeNumbersSaturateAndAreReported) {
    EXPECT_EQ(read_text(joined(with_line(1, "99999999999999999999"))), 1);
    EXPECT_EQ(messages(), std::vector<std::string>{range_message(2147483647, 1)});
    messages().clear();
    EXPECT_EQ(read_text(joined(with_line(4, "-fffffffffffffffffff"))), 1);
    EXPECT_EQ(messages(), std::vector<std::string>{range_message(-2147483647 - 1, 4)});
}

TEST_F(X25Template, TheDefaultHandlerAddsANewline) {
    set_x25_template_error_function(nullptr);
    qx25test::CapturedStderr err;
    EXPECT_EQ(read_text(joined(with_line(2, "85"))), 1);
    EXPECT_EQ(err.text(), "The value 85 on line 2\nis out of range\n");
}

// ---- check_value and check_list --------------------------------------------------

TEST_F(X25Template, CheckValueTakesBothBounds) {
    EXPECT_EQ(check_value(3, 1, 1, 25), 0);
    EXPECT_EQ(check_value(3, 25, 1, 25), 0);
    EXPECT_TRUE(messages().empty());
    EXPECT_EQ(check_value(3, 0, 1, 25), 1);
    EXPECT_EQ(check_value(4, 26, 1, 25), 1);
    EXPECT_EQ(messages(), (std::vector<std::string>{range_message(0, 3), range_message(26, 4)}));
}

TEST_F(X25Template, CheckListTakesOnlyTheListedValues) {
    const int listed[] = {80, 84, 88};
    EXPECT_EQ(check_list(2, 84, 3, listed), 0);
    EXPECT_EQ(check_list(2, 88, 3, listed), 0);
    EXPECT_EQ(check_list(2, 88, 2, listed), 1);
    EXPECT_EQ(check_list(7, 82, 3, listed), 1);
    EXPECT_EQ(messages(), (std::vector<std::string>{range_message(88, 2), range_message(82, 7)}));
}

// ---- The written form -------------------------------------------------------------

TEST_F(X25Template, WrittenFormOfAnEmptyRecord) {
    std::vector<std::string> lines(80, "0");
    for (int line = 4; line <= 11; ++line)
        lines[static_cast<std::size_t>(line - 1)] = "000";
    lines[1] = "80";   // version index 0
    lines[11] = "128"; // modulo field not 16
    for (int line : {43, 44, 45, 46, 48, 49, 50, 51, 52, 53, 54, 55, 56,
                     57, 58, 59, 60, 61, 62, 63, 64, 65, 66, 68, 77})
        lines[static_cast<std::size_t>(line - 1)] = "N";
    lines[46] = "1"; // neither CUG format bit
    lines[68] = "0000";
    lines[78] = "0.0.0.0.0.0.0.0.0.0.0.0.0.0.0.0";
    lines[79] = "0.0.0.0.0.0.0.0.0.0.0.0.0.0.0.0";
    EXPECT_EQ(written(), joined(lines));
}

TEST_F(X25Template, AVersionIndexOutsideTheTableIsWrittenAsZero) {
    ASSERT_EQ(read_text(joined(sample_lines)), 0);
    record.version = 3;
    EXPECT_EQ(written(), joined(with_line(2, "0")));
}

TEST_F(X25Template, NegativeChannelBoundsAreWrittenAsTheirBits) {
    ASSERT_EQ(read_text(joined(sample_lines)), 0);
    record.lcn.pvc_low = -1;
    EXPECT_EQ(written(), joined(with_line(4, "ffffffff")));
}

TEST_F(X25Template, DbitWithBothBitsIsWrittenTwo) {
    ASSERT_EQ(read_text(joined(sample_lines)), 0);
    record.dbit = 0xFF;
    std::vector<std::string> lines = sample_lines;
    for (int line = 73; line <= 76; ++line)
        lines[static_cast<std::size_t>(line - 1)] = "2";
    EXPECT_EQ(written(), joined(lines));
    record.dbit = 0xAA;
    for (int line = 73; line <= 76; ++line)
        lines[static_cast<std::size_t>(line - 1)] = "1";
    EXPECT_EQ(written(), joined(lines));
}

TEST_F(X25Template, WritingReplacesAWholeFile) {
    std::string path = tree.write("files/old.x25", std::string(5000, 'x'));
    ASSERT_EQ(read_text(joined(sample_lines)), 0);
    ASSERT_EQ(write__x25_template_parameter_file(path.c_str(), &record), 0);
    EXPECT_EQ(read_file(path), joined(sample_lines));
}

// ---- Files that cannot be opened --------------------------------------------------

TEST_F(X25Template, AMissingFileGivesItsErrorNumber) {
    std::string path = tree.root() + "/no/such.x25";
    EXPECT_EQ(read_x25_template_parameter_file(path.c_str(), &record), ENOENT);
    EXPECT_EQ(write__x25_template_parameter_file(path.c_str(), &record), ENOENT);
    EXPECT_TRUE(messages().empty());
}

TEST_F(X25Template, ADirectoryIsNoTemplateFile) {
    EXPECT_EQ(read_x25_template_parameter_file(tree.root().c_str(), &record), EISDIR);
    EXPECT_EQ(write__x25_template_parameter_file(tree.root().c_str(), &record), EISDIR);
}

TEST_F(X25Template, NullArgumentsAreRefused) {
    EXPECT_EQ(read_x25_template_parameter_file(nullptr, &record), EINVAL);
    EXPECT_EQ(read_x25_template_parameter_file("x", nullptr), EINVAL);
    EXPECT_EQ(write__x25_template_parameter_file(nullptr, &record), EINVAL);
    EXPECT_EQ(write__x25_template_parameter_file("x", nullptr), EINVAL);
}

// ---- Working files -----------------------------------------------------------------

TEST_F(X25Template, WorkingFileNames) {
    char name[64];
    ASSERT_EQ(create_default_linkfile(name, sizeof name, 7, ".x25"), 0);
    EXPECT_STREQ(name, "LINK007_working.x25");
    ASSERT_EQ(create_default_linkfile(name, sizeof name, 254, ".lapb"), 0);
    EXPECT_STREQ(name, "LINK254_working.lapb");
    ASSERT_EQ(create_default_linkfile(name, sizeof name, 1234, ".wan"), 0);
    EXPECT_STREQ(name, "LINK1234_working.wan");
    EXPECT_EQ(create_default_linkfile(name, 19, 7, ".x25"), ENAMETOOLONG);
    EXPECT_EQ(create_default_linkfile(name, 20, 7, ".x25"), 0);

    char path[4096];
    ASSERT_EQ(__x25_template_create_working_filename(".llc2", 3, path, sizeof path), 0);
    EXPECT_EQ(std::string(path), tree.config_dir() + "/template/LINK003_working.llc2");
    EXPECT_EQ(__x25_template_create_working_filename(".llc2", 3, path, 10), ENAMETOOLONG);
}

TEST(X25TemplateNames, TheDefaultConfigurationDirectory) {
    ::unsetenv("X25CONFIGFILES");
    char path[4096];
    ASSERT_EQ(__x25_template_create_working_filename(".x25", 7, path, sizeof path), 0);
    EXPECT_STREQ(path, "/etc/opt/Tarvenco/x25/template/LINK007_working.x25");
}

TEST_F(X25Template, ReadingByLinkReadsTheWorkingFile) {
    tree.write("config/template/LINK007_working.x25", joined(sample_lines));
    record.link = 99;
    ASSERT_EQ(read_x25_template_parameters(7, &record), 0);
    EXPECT_EQ(record.network, 5);
    EXPECT_EQ(record.link, 99); // left as the caller had it
}

TEST_F(X25Template, AFailedReadByLinkStoresTheLinkNumber) {
    record.link = 99;
    EXPECT_EQ(read_x25_template_parameters(7, &record), ENOENT);
    EXPECT_EQ(record.link, 7);
    tree.write("config/template/LINK008_working.x25", joined(with_line(2, "85")));
    EXPECT_EQ(read_x25_template_parameters(8, &record), 1);
    EXPECT_EQ(record.link, 8);
}

TEST_F(X25Template, ReadingByLinkRefusesBadArguments) {
    tree.write("config/template/LINK255_working.x25", joined(sample_lines));
    record.link = 99;
    EXPECT_EQ(read_x25_template_parameters(255, &record), EINVAL);
    EXPECT_EQ(read_x25_template_parameters(-1, &record), EINVAL);
    EXPECT_EQ(record.link, 99);
    EXPECT_EQ(record.network, 0);
    EXPECT_EQ(read_x25_template_parameters(7, nullptr), EINVAL);
}

TEST_F(X25Template, WritingByLinkWritesTheWorkingFile) {
    std::filesystem::create_directories(tree.config_dir() + "/template");
    ASSERT_EQ(read_text(joined(sample_lines)), 0);
    record.link = 7;
    ASSERT_EQ(write__x25_template_parameters(&record), 0);
    EXPECT_EQ(read_file(tree.config_dir() + "/template/LINK007_working.x25"), joined(sample_lines));
}

TEST_F(X25Template, WritingByLinkRefusesBadRecords) {
    std::filesystem::create_directories(tree.config_dir() + "/template");
    EXPECT_EQ(write__x25_template_parameters(nullptr), EINVAL);
    record.link = 255;
    EXPECT_EQ(write__x25_template_parameters(&record), EINVAL);
    record.link = -1;
    EXPECT_EQ(write__x25_template_parameters(&record), EINVAL);
    EXPECT_TRUE(std::filesystem::is_empty(tree.config_dir() + "/template"));
}

TEST_F(X25Template, WritingByLinkWithoutTheDirectoryFails) {
    record.link = 7;
    EXPECT_EQ(write__x25_template_parameters(&record), ENOENT);
}

TEST_F(X25Template, RoundTripFileRecordFile) {
    std::string path = tree.write("files/in.x25", joined(all_other_good_values()));
    ASSERT_EQ(read_x25_template_parameter_file(path.c_str(), &record), 0);
    EXPECT_TRUE(messages().empty());
    EXPECT_EQ(written(), joined(all_other_good_values()));
}

} // namespace
