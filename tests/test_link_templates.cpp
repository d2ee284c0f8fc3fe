// The LAPB, LLC2 and WAN templates: their free-form files read whole,
// short, long and malformed, the written forms byte for byte, and the
// by-link operations.
#include "qx25.h"

#include "captured_messages.h"
#include "config_tree.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <cstdint>
#include <cstring>
#include <filesystem>
#include <string>

using qx25test::ConfigTree;
using qx25test::messages;
using qx25test::read_file;

namespace {

class LinkTemplates : public ::testing::Test {
  protected:
    void SetUp() override {
        qx25test::capture_all_messages();
        std::filesystem::create_directories(tree.config_dir() + "/template");
    }
    std::string file(const std::string &content) { return tree.write("files/t", content); }
    std::string out() const { return tree.root() + "/out"; }

    ConfigTree tree;
};

lapb_template sample_lapb() {
    lapb_template record{};
    record.link = 2;
    record.n2_count = 10;
    record.t1_timer = 30;
    record.pf_timer = 7;
    record.reject_timer = 25;
    record.busy_timer = 100;
    record.idle_timer = 250;
    record.rr_ack_delay = 4;
    record.unack_max = 3;
    record.local_win = 7;
    record.local_probe = 1;
    record.max_iframe_len = 135;
    record.flags = LAPB_IGN_UA_ERROR | LAPB_SFRAME_PBIT | LAPB_SABM_IN_X32;
    return record;
}

const char *const sample_lapb_text = "10\n30\n7\n25\n100\n250\n4\n3\n7\n1\n135\n"
                                     "Y\nN\nN\nY\nN\nY\n";

llc2_template sample_llc2() {
    llc2_template record{};
    record.link = 1;
    record.n2_count = 10;
    record.t1_timer = 10;
    record.pf_timer = 7;
    record.reject_timer = 25;
    record.busy_timer = 100;
    record.idle_timer = 250;
    record.rr_ack_delay = 4;
    record.unack_max = 3;
    record.local_win = 7;
    record.local_probe = 0;
    record.max_iframe_len = 263;
    record.xid_window = 7;
    record.xid_ndup = 2;
    record.xid_tdup = 5;
    return record;
}

const char *const sample_llc2_text = "10\n10\n7\n25\n100\n250\n4\n3\n7\n0\n263\n7\n2\n5\n";

// ---- LAPB -----------------------------------------------------------------------

TEST_F(LinkTemplates, LapbWrittenForm) {
    lapb_template record = sample_lapb();
    record.flags |= LAPB_ISO8882 | LAPB_INITIAL_DOWN; // not carried by the file
    ASSERT_EQ(write_lapb_template_parameter_file(out().c_str(), &record), 0);
    EXPECT_EQ(read_file(out()), sample_lapb_text);
}

TEST_F(LinkTemplates, LapbValuesAreWrittenUnsigned) {
    lapb_template record = sample_lapb();
    record.t1_timer = 65535;
    record.max_iframe_len = 40000;
    ASSERT_EQ(write_lapb_template_parameter_file(out().c_str(), &record), 0);
    EXPECT_EQ(read_file(out()),
              "10\n65535\n7\n25\n100\n250\n4\n3\n7\n1\n40000\nY\nN\nN\nY\nN\nY\n");
}

TEST_F(LinkTemplates, LapbFileRoundTrip) {
    lapb_template record{};
    ASSERT_EQ(read_lapb_template_parameter_file(file(sample_lapb_text).c_str(), &record), 0);
    lapb_template expected = sample_lapb();
    expected.link = 0;
    EXPECT_EQ(std::memcmp(&record, &expected, sizeof record), 0);
    ASSERT_EQ(write_lapb_template_parameter_file(out().c_str(), &record), 0);
    EXPECT_EQ(read_file(out()), sample_lapb_text);
}

TEST_F(LinkTemplates, LapbReadingIsFreeForm) {
    lapb_template record{};
    std::string text = "  10 30\t7 25\n\n100 250 4 3 7 1 135 Y N\n N Y N Y";
    ASSERT_EQ(read_lapb_template_parameter_file(file(text).c_str(), &record), 0);
    lapb_template expected = sample_lapb();
    expected.link = 0;
    EXPECT_EQ(std::memcmp(&record, &expected, sizeof record), 0);
}

TEST_F(LinkTemplates, LapbNineNumbersLeaveTheRestAndClearTheFlags) {
    lapb_template record = sample_lapb();
    record.local_probe = 11;
    record.max_iframe_len = 999;
    ASSERT_EQ(
        read_lapb_template_parameter_file(file("1\n2\n3\n4\n5\n6\n7\n8\n9\n").c_str(), &record), 0);
    EXPECT_EQ(record.n2_count, 1);
    EXPECT_EQ(record.local_win, 9);
    EXPECT_EQ(record.local_probe, 11);
    EXPECT_EQ(record.max_iframe_len, 999);
    EXPECT_EQ(record.flags, 0);
    EXPECT_TRUE(messages().empty());
}

TEST_F(LinkTemplates, LapbLowerCaseYClearsItsFlag) {
    lapb_template record{};
    record.flags = 0x3F;
    std::string text = "10\n30\n7\n25\n100\n250\n4\n3\n7\n1\n135\ny\nY\nY\nn\nX\nY\n";
    ASSERT_EQ(read_lapb_template_parameter_file(file(text).c_str(), &record), 0);
    EXPECT_EQ(record.flags, LAPB_FRMR_FRMR_ERROR | LAPB_FRMR_INVRSP_ERROR | LAPB_SABM_IN_X32);
}

TEST_F(LinkTemplates, LapbTokensAreSingleCharacters) {
    // "%1s" takes one character a token: "YN" is two flags.
    lapb_template record{};
    std::string text = "10 30 7 25 100 250 4 3 7 1 135 YN NYYN";
    ASSERT_EQ(read_lapb_template_parameter_file(file(text).c_str(), &record), 0);
    EXPECT_EQ(record.flags, LAPB_IGN_UA_ERROR | LAPB_SFRAME_PBIT | LAPB_NO_DM_ADM);
}

TEST_F(LinkTemplates, LapbFlagsNotInTheFileSurviveAnyRead) {
    for (const char *text : {sample_lapb_text, "", "1 2 3", "garbage", "Y Y Y Y Y Y Y Y"}) {
        SCOPED_TRACE(text);
        lapb_template record{};
        record.flags = LAPB_ISO8882 | LAPB_INITIAL_DOWN;
        ASSERT_EQ(read_lapb_template_parameter_file(file(text).c_str(), &record), 0);
        EXPECT_EQ(record.flags & (LAPB_ISO8882 | LAPB_INITIAL_DOWN),
                  LAPB_ISO8882 | LAPB_INITIAL_DOWN);
    }
}

TEST_F(LinkTemplates, LapbMalformedValueStopsTheNumbers) {
    lapb_template record = sample_lapb();
    std::string text = "1\n2\nthree\n4\n5\n6\n7\n8\n9\n10\n11\nY\nY\nY\nY\nY\nY\n";
    ASSERT_EQ(read_lapb_template_parameter_file(file(text).c_str(), &record), 0);
    EXPECT_EQ(record.n2_count, 1);
    EXPECT_EQ(record.t1_timer, 2);
    // Every later number fails at the same word; the flag tokens then start
    // at it: "t" of "three" is no, "4", "5"... are no too.
    EXPECT_EQ(record.pf_timer, 7);
    EXPECT_EQ(record.max_iframe_len, 135);
    EXPECT_EQ(record.flags, 0);
}

TEST_F(LinkTemplates, LapbLongFileIsReadToItsSeventeenthToken) {
    lapb_template record{};
    std::string text = std::string(sample_lapb_text) + "42\nN\nmore\n";
    ASSERT_EQ(read_lapb_template_parameter_file(file(text).c_str(), &record), 0);
    lapb_template expected = sample_lapb();
    expected.link = 0;
    EXPECT_EQ(std::memcmp(&record, &expected, sizeof record), 0);
}

TEST_F(LinkTemplates, LapbValuesKeepTheirBits) {
    lapb_template record{};
    ASSERT_EQ(read_lapb_template_parameter_file(file("-1 40000 +12").c_str(), &record), 0);
    EXPECT_EQ(record.n2_count, 65535);
    EXPECT_EQ(record.t1_timer, 40000);
    EXPECT_EQ(record.pf_timer, 12);
}

TEST_F(LinkTemplates, LapbEmptyFileClearsOnlyTheCarriedFlags) {
    lapb_template record = sample_lapb();
    record.flags |= LAPB_ISO8882;
    ASSERT_EQ(read_lapb_template_parameter_file(file("").c_str(), &record), 0);
    lapb_template expected = sample_lapb();
    expected.flags = LAPB_ISO8882;
    EXPECT_EQ(std::memcmp(&record, &expected, sizeof record), 0);
}

TEST_F(LinkTemplates, LapbFileErrors) {
    lapb_template record{};
    std::string missing = tree.root() + "/none/t.lapb";
    EXPECT_EQ(read_lapb_template_parameter_file(missing.c_str(), &record), ENOENT);
    EXPECT_EQ(write_lapb_template_parameter_file(missing.c_str(), &record), ENOENT);
    EXPECT_EQ(read_lapb_template_parameter_file(tree.root().c_str(), &record), EISDIR);
    EXPECT_EQ(read_lapb_template_parameter_file(nullptr, &record), EINVAL);
    EXPECT_EQ(write_lapb_template_parameter_file(out().c_str(), nullptr), EINVAL);
    EXPECT_TRUE(messages().empty());
}

TEST_F(LinkTemplates, LapbByLink) {
    lapb_template record = sample_lapb();
    record.link = 7;
    ASSERT_EQ(write_lapb_template_parameters(&record), 0);
    EXPECT_EQ(read_file(tree.config_dir() + "/template/LINK007_working.lapb"), sample_lapb_text);

    lapb_template back{};
    back.link = 99;
    ASSERT_EQ(read_lapb_template_parameters(7, &back), 0);
    EXPECT_EQ(back.link, 99); // left as the caller had it
    EXPECT_EQ(back.max_iframe_len, 135);

    EXPECT_EQ(read_lapb_template_parameters(8, &back), ENOENT);
    EXPECT_EQ(back.link, 8);
}

TEST_F(LinkTemplates, LapbByLinkRefusesBadArguments) {
    lapb_template record = sample_lapb();
    record.link = -1;
    EXPECT_EQ(write_lapb_template_parameters(&record), EINVAL);
    record.link = 255;
    EXPECT_EQ(write_lapb_template_parameters(&record), EINVAL);
    EXPECT_EQ(write_lapb_template_parameters(nullptr), EINVAL);
    EXPECT_TRUE(std::filesystem::is_empty(tree.config_dir() + "/template"));
    EXPECT_EQ(read_lapb_template_parameters(255, &record), EINVAL);
    EXPECT_EQ(read_lapb_template_parameters(-1, &record), EINVAL);
    EXPECT_EQ(read_lapb_template_parameters(1, nullptr), EINVAL);
    EXPECT_EQ(record.link, 255);
}

// ---- LLC2 -----------------------------------------------------------------------

TEST_F(LinkTemplates, Llc2WrittenForm) {
    llc2_template record = sample_llc2();
    ASSERT_EQ(write_llc2_template_parameter_file(out().c_str(), &record), 0);
    EXPECT_EQ(read_file(out()), sample_llc2_text);
}

TEST_F(LinkTemplates, Llc2FileRoundTrip) {
    llc2_template record{};
    ASSERT_EQ(read_llc2_template_parameter_file(file(sample_llc2_text).c_str(), &record), 0);
    llc2_template expected = sample_llc2();
    expected.link = 0;
    EXPECT_EQ(std::memcmp(&record, &expected, sizeof record), 0);
    ASSERT_EQ(write_llc2_template_parameter_file(out().c_str(), &record), 0);
    EXPECT_EQ(read_file(out()), sample_llc2_text);
}

TEST_F(LinkTemplates, Llc2ShortFileLeavesTheRest) {
    llc2_template record = sample_llc2();
    ASSERT_EQ(read_llc2_template_parameter_file(file("1 2 3").c_str(), &record), 0);
    EXPECT_EQ(record.pf_timer, 3);
    EXPECT_EQ(record.reject_timer, 25);
    EXPECT_EQ(record.xid_tdup, 5);
}

TEST_F(LinkTemplates, Llc2MalformedAndLongFiles) {
    llc2_template record = sample_llc2();
    ASSERT_EQ(read_llc2_template_parameter_file(file("1 Y 3 4").c_str(), &record), 0);
    EXPECT_EQ(record.n2_count, 1);
    EXPECT_EQ(record.t1_timer, 10);
    EXPECT_EQ(record.xid_tdup, 5);
    record = {};
    std::string text = std::string(sample_llc2_text) + "99\n98\n";
    ASSERT_EQ(read_llc2_template_parameter_file(file(text).c_str(), &record), 0);
    EXPECT_EQ(record.xid_tdup, 5);
}

TEST_F(LinkTemplates, Llc2ByLink) {
    llc2_template record = sample_llc2();
    record.link = 3;
    ASSERT_EQ(write_llc2_template_parameters(&record), 0);
    EXPECT_EQ(read_file(tree.config_dir() + "/template/LINK003_working.llc2"), sample_llc2_text);
    llc2_template back{};
    back.link = 99;
    ASSERT_EQ(read_llc2_template_parameters(3, &back), 0);
    EXPECT_EQ(back.link, 99);
    EXPECT_EQ(back.max_iframe_len, 263);
    EXPECT_EQ(read_llc2_template_parameters(4, &back), ENOENT);
    EXPECT_EQ(back.link, 4);
    record.link = -1;
    EXPECT_EQ(write_llc2_template_parameters(&record), EINVAL);
    EXPECT_EQ(read_llc2_template_parameters(255, &back), EINVAL);
    EXPECT_EQ(write_llc2_template_parameters(nullptr), EINVAL);
}

// ---- WAN ------------------------------------------------------------------------

TEST_F(LinkTemplates, WanWrittenForm) {
    wan_template record{3, 520, 64000};
    ASSERT_EQ(write_wan_template_parameter_file(out().c_str(), &record), 0);
    EXPECT_EQ(read_file(out()), "520\n64000\n");
}

TEST_F(LinkTemplates, WanExternalClockIsZero) {
    wan_template record{3, 520, 0};
    ASSERT_EQ(write_wan_template_parameter_file(out().c_str(), &record), 0);
    EXPECT_EQ(read_file(out()), "520\n0\n");
    wan_template back{0, 1, 9600};
    ASSERT_EQ(read_wan_template_parameter_file(out().c_str(), &back), 0);
    EXPECT_EQ(back.max_frame, 520);
    EXPECT_EQ(back.line_speed, 0u);
}

TEST_F(LinkTemplates, WanFileRoundTrip) {
    wan_template record{};
    ASSERT_EQ(read_wan_template_parameter_file(file("4104\n2048000\n").c_str(), &record), 0);
    EXPECT_EQ(record.max_frame, 4104);
    EXPECT_EQ(record.line_speed, 2048000u);
    ASSERT_EQ(write_wan_template_parameter_file(out().c_str(), &record), 0);
    EXPECT_EQ(read_file(out()), "4104\n2048000\n");
}

TEST_F(LinkTemplates, WanSpeedsBeyondIntAreWrittenNegativeAndReadBack) {
    wan_template record{3, 520, 3000000000u};
    ASSERT_EQ(write_wan_template_parameter_file(out().c_str(), &record), 0);
    EXPECT_EQ(read_file(out()), "520\n-1294967296\n");
    wan_template back{};
    ASSERT_EQ(read_wan_template_parameter_file(out().c_str(), &back), 0);
    EXPECT_EQ(back.line_speed, 3000000000u);
}

TEST_F(LinkTemplates, WanOneNumberLeavesTheSpeed) {
    wan_template record{3, 520, 9600};
    ASSERT_EQ(read_wan_template_parameter_file(file("1024\n").c_str(), &record), 0);
    EXPECT_EQ(record.max_frame, 1024);
    EXPECT_EQ(record.line_speed, 9600u);
}

TEST_F(LinkTemplates, WanMalformedAndLongFiles) {
    wan_template record{3, 520, 9600};
    ASSERT_EQ(read_wan_template_parameter_file(file("fast\n64000\n").c_str(), &record), 0);
    EXPECT_EQ(record.max_frame, 520);
    EXPECT_EQ(record.line_speed, 9600u);
    ASSERT_EQ(read_wan_template_parameter_file(file("1 2 3 4\n").c_str(), &record), 0);
    EXPECT_EQ(record.max_frame, 1);
    EXPECT_EQ(record.line_speed, 2u);
    // The letters after the number are matched and skipped.
    ASSERT_EQ(read_wan_template_parameter_file(file("7 19200ld").c_str(), &record), 0);
    EXPECT_EQ(record.line_speed, 19200u);
    ASSERT_EQ(read_wan_template_parameter_file(file("").c_str(), &record), 0);
    EXPECT_EQ(record.max_frame, 7);
}

TEST_F(LinkTemplates, WanByLinkNeverStoresTheLinkNumber) {
    wan_template record{7, 520, 64000};
    ASSERT_EQ(write_wan_template_parameters(&record), 0);
    EXPECT_EQ(read_file(tree.config_dir() + "/template/LINK007_working.wan"), "520\n64000\n");
    wan_template back{99, 0, 0};
    ASSERT_EQ(read_wan_template_parameters(7, &back), 0);
    EXPECT_EQ(back.link, 99);
    EXPECT_EQ(back.line_speed, 64000u);
    EXPECT_EQ(read_wan_template_parameters(8, &back), ENOENT);
    EXPECT_EQ(back.link, 99);
}

TEST_F(LinkTemplates, WanByLinkRefusesBadArguments) {
    wan_template record{255, 520, 64000};
    EXPECT_EQ(write_wan_template_parameters(&record), EINVAL);
    record.link = -1;
    EXPECT_EQ(write_wan_template_parameters(&record), EINVAL);
    EXPECT_EQ(write_wan_template_parameters(nullptr), EINVAL);
    EXPECT_TRUE(std::filesystem::is_empty(tree.config_dir() + "/template"));
    EXPECT_EQ(read_wan_template_parameters(255, &record), EINVAL);
    EXPECT_EQ(read_wan_template_parameters(0, nullptr), EINVAL);
    std::string missing = tree.root() + "/none/t.wan";
    EXPECT_EQ(read_wan_template_parameter_file(missing.c_str(), &record), ENOENT);
    EXPECT_EQ(write_wan_template_parameter_file(missing.c_str(), &record), ENOENT);
}

TEST_F(LinkTemplates, WanHasNoDriverExchange) {
    wan_template record{7, 520, 64000};
    wan_template before = record;
    EXPECT_EQ(put_wan_template_parameters(&record), 0);
    EXPECT_EQ(get_wan_template_parameters(12, &record), 0);
    EXPECT_EQ(std::memcmp(&record, &before, sizeof record), 0);
    EXPECT_EQ(put_wan_template_parameters(nullptr), 0);
    EXPECT_EQ(get_wan_template_parameters(300, nullptr), 0);
    EXPECT_TRUE(messages().empty());
}

TEST_F(LinkTemplates, WanModuleReportsNothing) {
    // Its default handler still prints a message and a newline.
    set_wan_template_error_function(nullptr);
    qx25test::CapturedStderr err;
    wan_template record{};
    EXPECT_EQ(read_wan_template_parameter_file(file("x").c_str(), &record), 0);
    EXPECT_EQ(read_wan_template_parameters(300, &record), EINVAL);
    EXPECT_EQ(err.text(), "");
}

} // namespace
