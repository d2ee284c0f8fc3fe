// The link configuration reader: file names, sections and subsections, the
// mode report, defaults, messages, the numeric locale and hostile input.
#include "qx25.h"

#include "captured_messages.h"
#include "config_tree.h"
#include "link_config.h"
#include "release.h"

#include <gtest/gtest.h>

#include <clocale>
#include <cstring>
#include <random>
#include <string>
#include <vector>

using qx25test::ConfigTree;
using qx25test::messages;

namespace {

using messages_t = std::vector<std::string>;

const char *const head = "IDENTIFICATION\n"
                         "\tPRODUCT_NAME\tQuenlark X.25\n"
                         "\tFILE_TYPE\tx25link\n";

const char *const boardconf = "WAN_DEVICE\n\tsymbolic WANS\n\tdevice wan\n\tlines 2\n"
                              "LAN_DEVICE\n\tsymbolic ETHR\n\tdevice eth\n\tlines 1\n";

const char *const profiles = "1 X25_LLC LAN network\n"
                             "2 X25_88 WAN 1988\n"
                             "3 X25_84 WAN 1984\n"
                             "4 X25_80 WAN 1980\n"
                             "7 PSS public network\n";

class Reader : public testing::Test {
  protected:
    void SetUp() override {
        qx25test::capture_all_messages();
        tree.write("config/boardconf", boardconf);
        tree.write("lib/world_networks.profile", profiles);
        std::memset(&c, 0, sizeof c);
    }
    void TearDown() override {
        qx25tool::release(&c);
        for (device_type &row : __config_linktype)
            if (reinterpret_cast<uintptr_t>(row.comment) != 0xFFFFFFFEu) std::free(row.comment);
    }

    // Writes a link file (IDENTIFICATION block first) and reads it by name.
    int read(const std::string &body, int mode_in = 0) {
        std::string path = tree.write("config/config/test.cfg", std::string(head) + body);
        mode = mode_in;
        return x25_read_config_parameter_file(path.c_str(), &c.ids, &c.link, &c.x25, &c.mlp,
                                              &c.lapb, &c.llc2, &c.wan, &mode);
    }

    ConfigTree tree;
    link_config c;
    int mode = 0;
};

TEST(FileNames, WorkingFileNameHasAtLeastFourDigits) {
    char name[64];
    ASSERT_EQ(__config_create_working_filename(".cfg", 3, name, sizeof name), 0);
    EXPECT_STREQ(name, "link_config_0003.cfg");
    ASSERT_EQ(__config_create_working_filename(".cfg", 254, name, sizeof name), 0);
    EXPECT_STREQ(name, "link_config_0254.cfg");
    ASSERT_EQ(__config_create_working_filename(".bak", 12345, name, sizeof name), 0);
    EXPECT_STREQ(name, "link_config_12345.bak");
    EXPECT_EQ(__config_create_working_filename(".cfg", 3, name, 10), ENAMETOOLONG);
}

TEST(FileNames, QualifiedNames) {
    ConfigTree tree;
    char path[config_path_max];
    ASSERT_EQ(__qualify_working_filename(path, sizeof path, "link_config_0001.cfg"), 0);
    EXPECT_EQ(std::string(path), tree.config_dir() + "/config/link_config_0001.cfg");
    for (const char *as_is : {"/etc/x.cfg", "./x.cfg", "../x.cfg"}) {
        ASSERT_EQ(__qualify_working_filename(path, sizeof path, as_is), 0);
        EXPECT_STREQ(path, as_is);
    }
    ASSERT_EQ(__qualify_working_filename(path, sizeof path, ".hidden"), 0);
    EXPECT_EQ(std::string(path), tree.config_dir() + "/config/.hidden");
    std::strcpy(path, "junk");
    ASSERT_EQ(__qualify_working_filename(path, sizeof path, ""), 0);
    EXPECT_STREQ(path, "");
    std::strcpy(path, "junk");
    ASSERT_EQ(__qualify_working_filename(path, sizeof path, nullptr), 0);
    EXPECT_STREQ(path, "");
    ::unsetenv("X25CONFIGFILES");
    ASSERT_EQ(__qualify_working_filename(path, sizeof path, "f.cfg"), 0);
    EXPECT_STREQ(path, "/etc/opt/Tarvenco/x25/config/f.cfg");
    EXPECT_EQ(__qualify_working_filename(path, 8, "f.cfg"), ENAMETOOLONG);
}

TEST_F(Reader, ByLinkNumberStoresTheNumber) {
    tree.write("config/config/link_config_0003.cfg",
               std::string(head) + "SECTION LINK\n\tfull_address\t9.2342\n");
    EXPECT_EQ(x25_read_config_parameters(3, &c.ids, &c.link, &c.x25, &c.mlp, &c.lapb, &c.llc2,
                                         &c.wan, &mode),
              0);
    EXPECT_EQ(c.link.values.subnet.address.snid, 3u);
    EXPECT_EQ(c.x25.values.link, 3);
    EXPECT_STREQ(c.ids.product_name, "Quenlark X.25");
    EXPECT_TRUE(messages().empty());
}

TEST_F(Reader, BadArguments) {
    EXPECT_EQ(x25_read_config_parameters(-1, &c.ids, &c.link, nullptr, nullptr, nullptr, nullptr,
                                         nullptr, &mode),
              EINVAL);
    EXPECT_EQ(x25_read_config_parameters(1, nullptr, &c.link, nullptr, nullptr, nullptr, nullptr,
                                         nullptr, &mode),
              EINVAL);
    EXPECT_EQ(x25_read_config_parameters(1, &c.ids, nullptr, nullptr, nullptr, nullptr, nullptr,
                                         nullptr, &mode),
              EINVAL);
    EXPECT_EQ(x25_read_config_parameter_file("x.cfg", &c.ids, nullptr, nullptr, nullptr, nullptr,
                                             nullptr, nullptr, &mode),
              EINVAL);
    EXPECT_EQ(x25_read_config_parameter_file("x.cfg", &c.ids, &c.link, nullptr, nullptr, nullptr,
                                             nullptr, nullptr, nullptr),
              EINVAL);
    EXPECT_TRUE(messages().empty());
}

TEST_F(Reader, MissingFileWithSilentModeKeepsTheDefaults) {
    mode = X25_CONFIG_SILENT;
    EXPECT_EQ(x25_read_config_parameters(9, &c.ids, &c.link, &c.x25, &c.mlp, &c.lapb, &c.llc2,
                                         &c.wan, &mode),
              0);
    EXPECT_TRUE(messages().empty());
    EXPECT_EQ(c.x25.values.max_nsdu, 576);
    EXPECT_EQ(c.lapb.values.max_iframe_len, 517);
    EXPECT_EQ(c.llc2.values.max_iframe_len, 263);
    EXPECT_EQ(c.wan.values.tuning.max_frame, 520);
    EXPECT_EQ(c.mlp.values.mlp_win, 10);
    EXPECT_EQ(mode, X25_CONFIG_SILENT);
}

TEST_F(Reader, MissingFileIsReportedAndGivesTheErrorNumber) {
    EXPECT_EQ(x25_read_config_parameters(9, &c.ids, &c.link, &c.x25, nullptr, nullptr, nullptr,
                                         nullptr, &mode),
              ENOENT);
    EXPECT_EQ(messages(), messages_t{"Error opening file " + tree.config_dir() +
                                     "/config/link_config_0009.cfg\n"});
}

TEST_F(Reader, BadIdentificationGivesNineWhenNoErrorNumberIsSet) {
    std::string path = tree.write("config/config/bad.cfg", "SECTION LINK\n");
    EXPECT_EQ(x25_read_config_parameter_file(path.c_str(), &c.ids, &c.link, nullptr, nullptr,
                                             nullptr, nullptr, nullptr, &mode),
              EBADF);
    EXPECT_EQ(messages(),
              messages_t{"Error reading IDENTIFICATION section from file " + path + ", line 1\n"});
}

TEST_F(Reader, ModeReportsTheLastLinkLevelSection) {
    EXPECT_EQ(read("SECTION LINK\n", 7), 0);
    EXPECT_EQ(mode, 0);
    EXPECT_EQ(read("SECTION LLC2\n"), 0);
    EXPECT_EQ(mode, 3);
    EXPECT_EQ(read("SECTION LAPB\n"), 0);
    EXPECT_EQ(mode, 4);
    EXPECT_EQ(read("SECTION LLC2\nSECTION MLP\n"), 0);
    EXPECT_EQ(mode, 6);
    EXPECT_EQ(read("SECTION MLP\nSECTION LAPB\n"), 0);
    EXPECT_EQ(mode, 4);
}

TEST_F(Reader, ModeIsNotChangedBySectionsWithoutRecords) {
    std::string path = tree.write("config/config/t.cfg", std::string(head) + "SECTION LLC2\n");
    EXPECT_EQ(x25_read_config_parameter_file(path.c_str(), &c.ids, &c.link, nullptr, nullptr,
                                             nullptr, nullptr, nullptr, &mode),
              0);
    EXPECT_EQ(mode, 0);
}

TEST_F(Reader, SectionNamesIgnoreCaseAndTrailingBlanks) {
    EXPECT_EQ(read("section lapb  \n\tn2_count 7\nSection Wan\n\tmax_frame 300\n"), 0);
    EXPECT_EQ(c.lapb.values.n2_count, 7);
    EXPECT_EQ(c.wan.values.tuning.max_frame, 300);
    EXPECT_TRUE(messages().empty());
}

TEST_F(Reader, UnknownSectionIsReportedAndItsKeywordsIgnored) {
    EXPECT_EQ(read("SECTION Foo\n\tn2_count 7\nSECTION LAPB\n\tn2_count 8\n"), 0);
    EXPECT_EQ(messages(), messages_t{"Unknown section Foo, skipped\n"});
    EXPECT_EQ(c.lapb.values.n2_count, 8);
}

TEST_F(Reader, SecondIdentificationEndsTheSection) {
    EXPECT_EQ(read("SECTION LAPB\n\tn2_count 7\nIDENTIFICATION\n\tn2_count 9\n"), 0);
    EXPECT_EQ(messages(), messages_t{"Unexpected IDENTIFICATION section, skipped\n"});
    EXPECT_EQ(c.lapb.values.n2_count, 7);
}

TEST_F(Reader, KeywordsBeforeAnySectionAreIgnored) {
    // The IDENTIFICATION block ends with a SECTION line; a keyword after an
    // unknown section has no section.
    EXPECT_EQ(read("SECTION nothing\n\tdevice wan0\n"), 0);
    EXPECT_EQ(c.link.values.device_count, 0);
}

TEST_F(Reader, UnknownLinkKeywordIsReportedOthersAreNot) {
    EXPECT_EQ(read("SECTION LINK\n\tcolour blue\nSECTION X25\n\tcolour red\n"
                   "SECTION LAPB\n\tcolour green\nSECTION MLP\n\tcolour\n"),
              0);
    EXPECT_EQ(messages(), messages_t{"Unknown LINK Keyword <colour>, skipped\n"});
}

TEST_F(Reader, SubsectionOutsideMlpIsReportedAndSkipsToTheNextSection) {
    EXPECT_EQ(read("SECTION X25\n\tmodulo 128\nSUBSECTION WAN\n\tmodulo 8\n\tmax_frame 100\n"
                   "SECTION WAN\n\tmax_frame 200\n"),
              0);
    EXPECT_EQ(messages(), messages_t{"Unexpected subsection WAN when not in MLP, skipped\n"});
    EXPECT_EQ(c.x25.values.modulo, X25_MODULO_128);
    EXPECT_EQ(c.wan.values.tuning.max_frame, 200);
}

TEST_F(Reader, SubsectionWithoutMlpRecordIsIgnoredSilently) {
    std::string path = tree.write(
        "config/config/t.cfg",
        std::string(head) + "SECTION LAPB\n\tn2_count 5\nSUBSECTION LAPB\n\tn2_count 6\n");
    EXPECT_EQ(x25_read_config_parameter_file(path.c_str(), &c.ids, &c.link, nullptr, nullptr,
                                             &c.lapb, nullptr, nullptr, &mode),
              0);
    EXPECT_TRUE(messages().empty());
    EXPECT_EQ(c.lapb.values.n2_count, 6);
}

TEST_F(Reader, SectionsWithoutRecordsAreSkippedSilently) {
    std::string path =
        tree.write("config/config/t.cfg", std::string(head) + "SECTION LLC2\n! c\n\tn2_count 5\n"
                                                              "SECTION X25\n\tmodulo 128\n");
    EXPECT_EQ(x25_read_config_parameter_file(path.c_str(), &c.ids, &c.link, nullptr, nullptr,
                                             nullptr, nullptr, nullptr, &mode),
              0);
    EXPECT_TRUE(messages().empty());
}

TEST_F(Reader, MlpSubsectionsAreCreatedWithDefaultsInFileOrder) {
    EXPECT_EQ(read("SECTION MLP\n\tmlp_window 20\n"
                   "! first link\nSUBSECTION LAPB\t! one\n\tn2_count 3\n\tmlp_priority 7\n"
                   "SUBSECTION WAN\n\tline_speed 9600\n"
                   "SUBSECTION LAPB\n\tt1_timer 2.5\n\tmlp_priority 300\n"
                   "SUBSECTION WAN\n\tline_speed external\n"),
              0);
    EXPECT_TRUE(messages().empty());
    EXPECT_EQ(mode, 6);
    EXPECT_EQ(c.mlp.values.mlp_win, 20);
    ASSERT_NE(c.mlp.values.lapb[0], nullptr);
    ASSERT_NE(c.mlp.values.lapb[1], nullptr);
    EXPECT_EQ(c.mlp.values.lapb[2], nullptr);
    EXPECT_EQ(c.mlp.values.lapb[0]->values.n2_count, 3);
    EXPECT_EQ(c.mlp.values.lapb[0]->values.t1_timer, 60); // default
    EXPECT_EQ(c.mlp.values.lapb[1]->values.n2_count, 10);
    EXPECT_EQ(c.mlp.values.lapb[1]->values.t1_timer, 25);
    EXPECT_STREQ(c.mlp.values.lapb[0]->section.comments, " first link\n");
    EXPECT_STREQ(c.mlp.values.lapb[0]->section.trailer, " one");
    EXPECT_EQ(c.link.values.mlp_priority[0], 7);
    EXPECT_EQ(c.link.values.mlp_priority[1], 44);
    ASSERT_NE(c.mlp.values.wan[1], nullptr);
    EXPECT_EQ(c.mlp.values.wan[0]->values.tuning.line_speed, 9600u);
    EXPECT_EQ(c.mlp.values.wan[1]->values.tuning.line_speed, 0u);
    EXPECT_EQ(c.mlp.values.wan[1]->values.tuning.max_frame, 520);
    // The caller's own LAPB and WAN records were not used.
    EXPECT_EQ(c.lapb.values.n2_count, 10);
}

TEST_F(Reader, MlpSubsectionRecordsAreReusedByTheNextRead) {
    ASSERT_EQ(read("SECTION MLP\nSUBSECTION LAPB\n\tn2_count 3\n"), 0);
    lapb_section *first = c.mlp.values.lapb[0];
    ASSERT_EQ(read("SECTION MLP\nSUBSECTION LAPB\n\tt1_timer 1.0\n"), 0);
    EXPECT_EQ(c.mlp.values.lapb[0], first);
    EXPECT_EQ(first->values.n2_count, 3); // kept: no new defaults
    EXPECT_EQ(first->values.t1_timer, 10);
}

TEST_F(Reader, SixthLapbSubsectionChangesTheFifth) {
    std::string body = "SECTION MLP\n";
    for (int i = 1; i <= 6; ++i)
        body += "SUBSECTION LAPB\n\tn2_count " + std::to_string(i) + "\n\tmlp_priority " +
                std::to_string(10 + i) + "\n";
    EXPECT_EQ(read(body), 0);
    EXPECT_EQ(messages(), messages_t{"Too many LAPB subsections, max of 5\n"});
    EXPECT_EQ(c.mlp.values.lapb[3]->values.n2_count, 4);
    EXPECT_EQ(c.mlp.values.lapb[4]->values.n2_count, 6);
    EXPECT_EQ(c.link.values.mlp_priority[4], 16);
}

TEST_F(Reader, SixthWanSubsectionChangesTheFifth) {
    std::string body = "SECTION MLP\n";
    for (int i = 1; i <= 6; ++i)
        body += "SUBSECTION WAN\n\tmax_frame " + std::to_string(i) + "\n";
    EXPECT_EQ(read(body), 0);
    EXPECT_EQ(messages(), messages_t{"Too many WAN subsections, max of 5\n"});
    EXPECT_EQ(c.mlp.values.wan[4]->values.tuning.max_frame, 6);
}

TEST_F(Reader, OtherSubsectionsAreRefusedAndKeywordsGoToMlp) {
    EXPECT_EQ(read("SECTION MLP\nSUBSECTION LAPB\n\tn2_count 3\nSUBSECTION LLC2\n"
                   "\tn2_count 4\n\tmlp_guard 99\n"),
              0);
    EXPECT_EQ(messages(), messages_t{"Subsection LLC2 not allowed for MLP, skipped\n"});
    EXPECT_EQ(c.mlp.values.lapb[0]->values.n2_count, 3);
    EXPECT_EQ(c.mlp.values.guard, 99);
}

TEST_F(Reader, NewMlpSectionStartsCountingAgain) {
    EXPECT_EQ(read("SECTION MLP\nSUBSECTION LAPB\n\tn2_count 3\nSECTION MLP\nSUBSECTION LAPB\n"
                   "\tn2_count 4\n"),
              0);
    EXPECT_EQ(c.mlp.values.lapb[0]->values.n2_count, 4);
    EXPECT_EQ(c.mlp.values.lapb[1], nullptr);
}

TEST_F(Reader, SectionLapbAfterSubsectionsFillsTheCallersRecord) {
    EXPECT_EQ(read("SECTION MLP\nSUBSECTION LAPB\n\tn2_count 3\nSUBSECTION WAN\n\tmax_frame 9\n"
                   "SECTION LAPB\n\tn2_count 4\nSECTION WAN\n\tmax_frame 10\n"),
              0);
    EXPECT_EQ(c.mlp.values.lapb[0]->values.n2_count, 3);
    EXPECT_EQ(c.lapb.values.n2_count, 4);
    EXPECT_EQ(c.mlp.values.wan[0]->values.tuning.max_frame, 9);
    EXPECT_EQ(c.wan.values.tuning.max_frame, 10);
}

TEST_F(Reader, X32RecordsGetTheLinkNumber) {
    tree.write("config/config/link_config_0004.cfg",
               std::string(head) + "SECTION X25\n\tx25_x32_enable_authen y\n"
                                   "SECTION LAPB\n\tlapb_x32_identity 1234\n"
                                   "SECTION MLP\nSUBSECTION LAPB\nSUBSECTION LAPB\n"
                                   "\tlapb_x32_sign ABCD\n");
    x32_record x25_x32{}, lapb_x32{}, mlp_x32[5]{};
    mlp_x32[0].link = -1;
    ASSERT_EQ(x25_read_config_parameters_x32(4, &c.ids, &c.link, &c.x25, &c.mlp, &c.lapb, &c.llc2,
                                             &c.wan, &x25_x32, &lapb_x32, mlp_x32, &mode),
              0);
    EXPECT_EQ(x25_x32.link, 4);
    EXPECT_EQ(x25_x32.authen, 1);
    EXPECT_EQ(lapb_x32.link, 4);
    EXPECT_EQ(lapb_x32.identity_len, 2);
    EXPECT_EQ(lapb_x32.identity[0], 0x12);
    EXPECT_EQ(mlp_x32[0].link, -1); // nothing for the first subsection
    EXPECT_EQ(mlp_x32[1].link, 4);
    EXPECT_EQ(mlp_x32[1].signature_len, 2);
    EXPECT_EQ(mlp_x32[1].signature[1], 0xCD);
}

TEST_F(Reader, CommentsGoToTheirLinesAndNotAfterTheLast) {
    EXPECT_EQ(read("! before link\nSECTION LINK ! on link\n! about the device\n"
                   "\tdevice wan0\t! first line\n\talias main\n! dangling\n"),
              0);
    EXPECT_STREQ(c.link.section.comments, " before link\n");
    EXPECT_STREQ(c.link.section.trailer, " on link");
    EXPECT_STREQ(c.link.keyword[0].comments, " about the device\n");
    EXPECT_STREQ(c.link.keyword[0].trailer, " first line");
    EXPECT_EQ(c.link.keyword[7].comments, nullptr);
    EXPECT_EQ(c.link.keyword[7].trailer, nullptr);
    for (const config_comment &pair : c.link.keyword)
        if (pair.comments != nullptr) {
            EXPECT_EQ(std::strstr(pair.comments, "dangling"), nullptr);
        }
}

TEST_F(Reader, AStoredCommentIsKeptWhenTheNextLineHasNone) {
    ASSERT_EQ(read("SECTION LAPB\n! old\n\tn2_count 5 ! trail\n"), 0);
    ASSERT_EQ(read("SECTION LAPB\n\tn2_count 6\n"), 0);
    EXPECT_STREQ(c.lapb.keyword[0].comments, " old\n");
    EXPECT_STREQ(c.lapb.keyword[0].trailer, " trail");
    ASSERT_EQ(read("SECTION LAPB\n! new\n\tn2_count 6\n"), 0);
    EXPECT_STREQ(c.lapb.keyword[0].comments, " new\n");
    EXPECT_STREQ(c.lapb.keyword[0].trailer, " trail");
}

TEST_F(Reader, SecondAliasReplacesTheFirst) {
    ASSERT_EQ(read("SECTION LINK\n\talias one\n\talias two\n\tdescription a b c\n\talias\n"), 0);
    EXPECT_STREQ(c.link.values.subnet.name, "two");
    EXPECT_STREQ(c.link.values.subnet.description, "a b c");
}

TEST_F(Reader, DefaultsAreLoadedOnlyIntoFreshRecords) {
    c.x25.values.max_nsdu = 100;
    c.lapb.values.max_iframe_len = 99;
    c.llc2.values.max_iframe_len = 98;
    c.wan.values.tuning.max_frame = 97;
    c.mlp.values.mlp_win = 96;
    ASSERT_EQ(read("SECTION LINK\n"), 0);
    EXPECT_EQ(c.x25.values.max_nsdu, 100);
    EXPECT_EQ(c.x25.values.t20value, 0);
    EXPECT_EQ(c.lapb.values.max_iframe_len, 99);
    EXPECT_EQ(c.lapb.values.n2_count, 0);
    EXPECT_EQ(c.llc2.values.max_iframe_len, 98);
    EXPECT_EQ(c.wan.values.tuning.max_frame, 97);
    EXPECT_EQ(c.wan.values.line_option, 0);
    EXPECT_EQ(c.mlp.values.mlp_win, 96);
    EXPECT_EQ(c.mlp.values.mt1, 0);
}

TEST_F(Reader, X25DefaultsFollowTheLinksNetworkTypeBeforeReading) {
    c.link.values.net_type = NET_LAN;
    ASSERT_EQ(read("SECTION LINK\n"), 0);
    EXPECT_EQ(c.x25.values.lcn.two_low, 1);
    EXPECT_EQ(c.x25.values.lcn.two_high, 4095);
    EXPECT_EQ(c.x25.values.plp_mode, 2);
    EXPECT_EQ(c.x25.values.idlevalue, 600);

    link_config wan{};
    wan.link.values.net_type = NET_WAN84;
    std::string path = tree.root() + "/config/config/test.cfg";
    ASSERT_EQ(x25_read_config_parameter_file(path.c_str(), &wan.ids, &wan.link, &wan.x25, nullptr,
                                             nullptr, nullptr, nullptr, &mode),
              0);
    EXPECT_EQ(wan.x25.values.lcn.two_low, 512);
    EXPECT_EQ(wan.x25.values.lcn.two_high, 575);
    EXPECT_EQ(wan.x25.values.plp_mode, 1);
    EXPECT_EQ(wan.x25.values.idlevalue, 0);
}

TEST_F(Reader, NetworkTypeAboveTenIsResetFirst) {
    c.link.values.net_type = 11;
    ASSERT_EQ(read("SECTION LINK\n"), 0);
    EXPECT_EQ(c.link.values.net_type, 0);
    c.link.values.net_type = 10;
    ASSERT_EQ(read("SECTION LINK\n"), 0);
    EXPECT_EQ(c.link.values.net_type, 10);
}

TEST_F(Reader, LanLinkTypeSetsCodeAndNetwork) {
    ASSERT_EQ(read("SECTION LINK\n\ttype LAN\n\tversion 1984\n"), 0);
    EXPECT_EQ(c.link.values.net_type, NET_LAN);
    EXPECT_EQ(c.link.values.link_mode, LC_LLC2);
    EXPECT_EQ(c.x25.values.network, 1);
    EXPECT_EQ(c.x25.values.version, 88); // ignored on a LAN: the default stays
}

TEST_F(Reader, WanLinkTypeVersionsAndNetworks) {
    ASSERT_EQ(read("SECTION LINK\n\tprotocol LLC1\n\ttype WAN\n\tversion 80\n"), 0);
    EXPECT_EQ(c.link.values.link_mode, LC_LAPBDTE);
    EXPECT_EQ(c.link.values.net_type, NET_WAN80);
    EXPECT_EQ(c.x25.values.version, 0);
    EXPECT_EQ(c.x25.values.network, 2);

    std::memset(&c.link.values, 0, sizeof c.link.values);
    ASSERT_EQ(read("SECTION LINK\n\tversion 1984\n\tprotocol LAPB\nSECTION X25\n\tnetwork 1\n"
                   "SECTION LINK\n\tprotocol LAPBE\n"),
              0);
    EXPECT_EQ(c.link.values.net_type, NET_WAN84);
    EXPECT_EQ(c.x25.values.version, 1);
    EXPECT_EQ(c.x25.values.network, 3); // network 1 with a WAN protocol on WAN84
}

TEST_F(Reader, MlpLinkKeepsItsNetworkTypeAndVersion1988) {
    ASSERT_EQ(read("SECTION LINK\n\tdevice wan0,wan1\n\tprotocol MLAPB\n\ttype WAN\n"
                   "\tversion 1980\n"),
              0);
    EXPECT_EQ(c.link.values.net_type, NET_MLP2);
    EXPECT_EQ(c.link.values.mlp, 1);
    EXPECT_EQ(c.x25.values.version, 2);
    EXPECT_TRUE(messages().empty());
}

TEST_F(Reader, NetworkOtherThanLlcOnALanIsStoredAndReported) {
    ASSERT_EQ(read("SECTION LINK\n\ttype LAN\nSECTION X25\n\tnetwork PSS\n"), 0);
    EXPECT_EQ(c.x25.values.network, 7);
    EXPECT_EQ(messages(),
              messages_t{"LAN link should normally have X.25 network configured as X25_LLC\n"});
}

TEST_F(Reader, V25CallRequestSharesTheX21Timer) {
    ASSERT_EQ(read("SECTION WAN\n\tconnect_proc V25\n\tv25_callreq 10.0\n"), 0);
    EXPECT_EQ(c.wan.values.x21_t1, 100);
    EXPECT_EQ(c.link.values.flags & LINK_FLAG_CALL_PROCEDURE, LINK_FLAG_CALL_PROCEDURE);
    ASSERT_EQ(read("SECTION WAN\n\tv25_callreq 50.0\n\tconnect_proc none\n"), 0);
    EXPECT_EQ(c.wan.values.x21_t1, 60);
    EXPECT_EQ(c.link.values.flags & LINK_FLAG_CALL_PROCEDURE, 0);
}

class CommaLocale : public Reader {
  protected:
    void SetUp() override {
        Reader::SetUp();
        ::setenv("LC_ALL", "fr_FR.UTF-8", 1);
        ASSERT_NE(std::setlocale(LC_ALL, ""), nullptr)
            << "the fr_FR.UTF-8 locale is needed (the test setup generates it)";
        ASSERT_STREQ(std::localeconv()->decimal_point, ",");
    }
    void TearDown() override {
        std::setlocale(LC_ALL, "C");
        ::unsetenv("LC_ALL");
        Reader::TearDown();
    }
};

TEST_F(CommaLocale, FractionsAreReadWithAPointAndTheLocaleComesBack) {
    ASSERT_EQ(read("SECTION LAPB\n\tt1_timer 1.5\nSECTION X25\n\tlocaldelay 0.25\n"
                   "\tt20value 12,5\n"),
              0);
    EXPECT_EQ(c.lapb.values.t1_timer, 15);
    EXPECT_EQ(c.x25.values.localdelay, 250);
    EXPECT_EQ(c.x25.values.t20value, 120); // a comma ends the number
    EXPECT_STREQ(std::localeconv()->decimal_point, ",");
}

TEST_F(Reader, RandomBytesAreReadWithoutHarm) {
    std::mt19937 random(20261121);
    for (int round = 0; round < 20; ++round) {
        std::string body;
        for (int i = 0; i < 20000; ++i)
            body += static_cast<char>(random() % 256);
        if (round % 2 == 0) body = "SECTION LINK\n" + body;
        read(body);
        qx25tool::release(&c);
        std::memset(&c, 0, sizeof c);
    }
    SUCCEED();
}

TEST_F(Reader, RandomKeywordLinesAreReadWithoutHarm) {
    std::mt19937 random(42);
    const char *const sections[] = {"LINK", "X25", "LAPB", "LLC2", "WAN", "MLP"};
    const char *const words[] = {"device",
                                 "wan0",
                                 "SUBSECTION",
                                 "LAPB",
                                 "WAN",
                                 "1-",
                                 "-9",
                                 "y",
                                 "n",
                                 "Auto",
                                 "99999999999999999999",
                                 "0.",
                                 "1e308",
                                 "thclass_wmap",
                                 "1,2,3,",
                                 "dnic",
                                 "x25_x32_sign",
                                 "ABCDEF",
                                 "mlp_priority",
                                 "SECTION",
                                 "!",
                                 "full_address",
                                 "3.1.N.2"};
    std::string body;
    for (int line = 0; line < 3000; ++line) {
        if (random() % 10 == 0) body += std::string("SECTION ") + sections[random() % 6] + "\n";
        std::string keyword = random() % 2 ? words[random() % std::size(words)]
                                           : __X25_functions[random() % X25_KEYWORDS].name;
        body += "\t" + keyword;
        for (int n = random() % 4; n > 0; --n)
            body += std::string(" ") + words[random() % std::size(words)];
        body += "\n";
    }
    EXPECT_EQ(read(body), 0);
}

TEST_F(Reader, VeryLongLinesAreReadInPieces) {
    std::string body = "SECTION LINK\n\tdescription " + std::string(10000, 'd') + "\n" +
                       std::string(10000, ' ') + "\n\talias " + std::string(10000, 'a') + "\n";
    EXPECT_EQ(read(body), 0);
    ASSERT_NE(c.link.values.subnet.description, nullptr);
    EXPECT_EQ(std::strlen(c.link.values.subnet.description), 127u - 13u);
}

TEST_F(Reader, HundredThousandCommentLines) {
    std::string body = "SECTION LAPB\n";
    for (int i = 0; i < 100000; ++i)
        body += "! comment " + std::to_string(i) + "\n";
    body += "\tn2_count 4\n";
    EXPECT_EQ(read(body), 0);
    EXPECT_EQ(c.lapb.values.n2_count, 4);
    EXPECT_EQ(std::strlen(c.lapb.keyword[0].comments), 1023u);
}

TEST(KeywordTables, NamesIndexesAndSizes) {
    auto rows = [](const config_keyword *table) {
        int count = 0;
        for (; table[count].name != nullptr; ++count)
            EXPECT_EQ(table[count].index, count);
        return count;
    };
    EXPECT_EQ(rows(__LINK_functions), LINK_KEYWORDS);
    EXPECT_EQ(rows(__X25_functions), X25_KEYWORDS);
    EXPECT_EQ(rows(__LAPB_functions), LAPB_KEYWORDS);
    EXPECT_EQ(rows(__LLC2_functions), LLC2_KEYWORDS);
    EXPECT_EQ(rows(__WAN_functions), WAN_KEYWORDS);
    EXPECT_EQ(rows(__MLP_functions), MLP_KEYWORDS);
    EXPECT_STREQ(__X25_functions[84].name, "x25_x32_identity");
    EXPECT_STREQ(__LAPB_functions[18].name, "iso8882");
    EXPECT_STREQ(__WAN_functions[10].name, "v25_callreq");
    const char *const sections[] = {"link", "x25", "llc2", "lapb", "wan", "mlp"};
    for (int i = 0; i < 6; ++i) {
        EXPECT_STREQ(section_map[i].name, sections[i]);
        EXPECT_EQ(section_map[i].index, i + 1);
    }
    EXPECT_EQ(section_map[6].name, nullptr);
}

TEST(Storage, ExportedRecordsStartEmpty) {
    EXPECT_EQ(cs.values.device_count, 0);
    EXPECT_EQ(xs.values.max_nsdu, 0);
    EXPECT_EQ(ms.values.lapb[0], nullptr);
    EXPECT_EQ(ids.product_name[0], '\0');
    EXPECT_EQ(lbs.values.max_iframe_len + l2s.values.max_iframe_len + ws.values.tuning.max_frame,
              0);
}

TEST(Storage, CopyCommentsReplacesOnlyNonEmptyTexts) {
    config_comment pair{};
    config_line line{};
    std::strcpy(line.comments, "first\n");
    copy_comments(&pair, &line);
    EXPECT_STREQ(pair.comments, "first\n");
    EXPECT_EQ(pair.trailer, nullptr);
    line.comments[0] = '\0';
    std::strcpy(line.trailer, "tail");
    copy_comments(&pair, &line);
    EXPECT_STREQ(pair.comments, "first\n");
    EXPECT_STREQ(pair.trailer, "tail");
    std::strcpy(line.comments, "second\n");
    copy_comments(&pair, &line);
    EXPECT_STREQ(pair.comments, "second\n");
    std::free(pair.comments);
    std::free(pair.trailer);
}

} // namespace
