// The link configuration writer: comment printing, every section's layout
// compared byte for byte, argument checks and the file itself.
#include "qx25.h"

#include "captured_messages.h"
#include "config_tree.h"
#include "link_config.h"
#include "release.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <clocale>
#include <cstdio>
#include <cstring>
#include <string>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

using qx25test::ConfigTree;
using qx25test::messages;
using qx25test::read_file;

namespace {

// What print_comment or trail_comment writes, through a memory stream.
template <typename Print> std::string printed(Print print) {
    char *buffer = nullptr;
    std::size_t size = 0;
    FILE *stream = open_memstream(&buffer, &size);
    print(stream);
    std::fclose(stream);
    std::string text(buffer, size);
    std::free(buffer);
    return text;
}

std::string comment(const std::string &text) {
    return printed([&](FILE *stream) { print_comment(stream, text.c_str()); });
}

TEST(Comments, NothingForNullOrEmpty) {
    EXPECT_EQ(printed([](FILE *s) { print_comment(s, nullptr); }), "");
    EXPECT_EQ(comment(""), "");
}

TEST(Comments, SixtyCharactersAreOnePiece) {
    std::string sixty(60, 'x');
    EXPECT_EQ(comment(sixty), "!" + sixty + "\n");
    // A stored comment ends in its newline, which is printed as it stands.
    EXPECT_EQ(comment(" one line\n"), "! one line\n\n");
    EXPECT_EQ(comment(" a\n b\n"), "! a\n b\n\n");
}

TEST(Comments, SixtyOneWithoutBlanksIsOneLineWithAHyphen) {
    std::string text(61, 'y');
    EXPECT_EQ(comment(text), "!" + text + "-\n");
}

TEST(Comments, LongTextIsCutAtTheFirstBlankAfterCharacter61) {
    std::string text;
    for (int word = 0; text.size() < 200; ++word)
        text += (word ? " w" : "w") + std::to_string(word);
    text.resize(200);
    std::string expected, rest = text;
    while (rest.size() > 60) {
        std::size_t blank = rest.find(' ', 61);
        ASSERT_LT(blank, 80u);
        expected += "!" + rest.substr(0, blank) + "\n";
        rest = rest.substr(blank + 1);
    }
    expected += "!" + rest + "\n";
    EXPECT_EQ(comment(text), expected);
    // Spot check of the first piece: 61 characters at least, no blank kept.
    std::string first = comment(text).substr(0, comment(text).find('\n'));
    EXPECT_GE(first.size(), 62u);
    EXPECT_NE(first.back(), ' ');
}

TEST(Comments, LongTextWithoutBlanksIsCutAtEightyWithAHyphen) {
    std::string text(170, 'z');
    EXPECT_EQ(comment(text), "!" + std::string(80, 'z') + "-\n!" + std::string(80, 'z') + "-\n!" +
                                 std::string(10, 'z') + "\n");
}

TEST(Comments, TabsAreBlanksForCutting) {
    std::string text = std::string(65, 'a') + "\t" + std::string(20, 'b');
    EXPECT_EQ(comment(text), "!" + std::string(65, 'a') + "\n!" + std::string(20, 'b') + "\n");
}

TEST(Comments, BlankBeforeCharacter62DoesNotCut) {
    std::string text = std::string(30, 'a') + " " + std::string(60, 'b');
    EXPECT_EQ(comment(text), "!" + text.substr(0, 80) + "-\n!" + text.substr(80) + "\n");
}

TEST(Comments, LongTextEndsPiecesAtItsNewlines) {
    std::string first(90, 'f'), second(30, 's'), third(40, 't');
    EXPECT_EQ(comment(" " + first + "\n " + second + "\n " + third + "\n"),
              "! " + first + "\n! " + second + "\n! " + third + "\n\n");
}

TEST(Comments, TrailingComment) {
    EXPECT_EQ(printed([](FILE *s) { trail_comment(s, " note"); }), "\t! note\n");
    EXPECT_EQ(printed([](FILE *s) { trail_comment(s, ""); }), "\n");
    EXPECT_EQ(printed([](FILE *s) { trail_comment(s, nullptr); }), "\n");
}

TEST(PackedDigits, ToText) {
    const uint8_t digits[] = {0x12, 0xAB, 0xC0};
    char text[16] = "junk";
    bcd_to_str(text, digits, 5);
    EXPECT_STREQ(text, "12ABC");
    bcd_to_str(text, digits, 4);
    EXPECT_STREQ(text, "12AB");
    bcd_to_str(text, digits, 0);
    EXPECT_STREQ(text, "");
    bcd_to_str(text, digits, -3);
    EXPECT_STREQ(text, "");
}

// ---- Whole files ----------------------------------------------------------------

const char *const boardconf = "WAN_DEVICE\n\tsymbolic WANS\n\tdevice wan\n\tlines 2\n"
                              "LAN_DEVICE\n\tsymbolic ETHR\n\tdevice eth\n\tlines 1\n";
const char *const profiles = "1 X25_LLC LAN\n2 X25_1988 WAN 1988\n7 PSS public\n";

class Writer : public testing::Test {
  protected:
    void SetUp() override {
        qx25test::capture_all_messages();
        ::setenv("LOGNAME", "tester", 1);
        tree.write("config/boardconf", boardconf);
        tree.write("lib/world_networks.profile", profiles);
        std::memset(&c, 0, sizeof c);
        std::strcpy(c.ids.product_name, "Quenlark X.25");
        std::memcpy(c.ids.product_version, " 4.1 patch 07", 13);
        std::strcpy(c.ids.file_type, "x25link");
        std::strcpy(c.ids.modified_by, "not written");
    }
    void TearDown() override {
        qx25tool::release(&c);
        for (device_type &row : __config_linktype)
            if (reinterpret_cast<uintptr_t>(row.comment) != 0xFFFFFFFEu) std::free(row.comment);
    }

    // The file written, with its date line replaced by "<date>".
    std::string written(const std::string &path) {
        std::string text = read_file(path);
        std::size_t start = text.find("\tFILE_DATE\t");
        if (start == std::string::npos) return text;
        std::size_t end = text.find('\n', start);
        return text.substr(0, start) + "\tFILE_DATE\t<date>" + text.substr(end);
    }

    std::string path(const char *name) { return tree.config_dir() + "/config/" + name; }

    ConfigTree tree;
    link_config c;
};

const char *const ident_block = "IDENTIFICATION\n"
                                "\tPRODUCT_NAME\tQuenlark X.25\n"
                                "\tPRODUCT_VERSION\t 4.1 patch 07\n"
                                "\tFILE_TYPE\tx25link\n"
                                "\tMODIFIED_BY\ttester\n"
                                "\tFILE_DATE\t<date>\n"
                                "\n"
                                "\n";

void wan_link(link_config &c) {
    link_values &l = c.link.values;
    l.device_count = 1;
    l.device_type[0] = 0;
    l.device_board[0] = 1;
    l.device_line[0] = 1; // wan3
    std::strcpy(l.local_address, "23421234567");
    stox25("2.23421234567", &l.subnet.address, 0);
    l.net_type = NET_WAN84;
    l.link_mode = LC_LAPBXDCE;
    l.max_lan_conns = 5;
    l.subnet.name = strdup("pdn");
    l.subnet.description = strdup("Leased line");
    c.link.section.comments = strdup(" link section\n");
    c.link.section.trailer = strdup(" never written");
    c.link.keyword[0].comments = strdup(" the device\n");
    c.link.keyword[0].trailer = strdup(" port 1");
    c.link.keyword[9].comments = strdup(" not written on a WAN link\n");

    lapb_template &b = c.lapb.values;
    b.n2_count = 11, b.t1_timer = 35, b.pf_timer = 8, b.reject_timer = 26, b.busy_timer = 101;
    b.idle_timer = 251, b.rr_ack_delay = 5, b.unack_max = 4, b.local_win = 6, b.local_probe = 1;
    b.max_iframe_len = 263;
    b.flags = LAPB_IGN_UA_ERROR | LAPB_SFRAME_PBIT | LAPB_ISO8882;

    wan_values &w = c.wan.values;
    w.tuning.line_speed = 64000, w.tuning.max_frame = 520, w.connect_proc = 2, w.x21_t1 = 100;
    w.flags = 1, w.x21_t2 = 21; // never written

    x25_template &x = c.x25.values;
    x.network = 7, x.plp_mode = 1;
    x.lcn = {1, 2, 3, 4, 16, 31, 5, 6, 2, 2, 16, 2, 22};
    x.modulo = X25_MODULO_128;
    x.facilities = X25_FAC_USE_NEGOTIATION | X25_FAC_FAST_SELECT | X25_FAC_PREV_CHG |
                   X25_FAC_BAR_OUTCALL | X25_FAC_SUB_NUI_OVERRIDE;
    x.src_addr = 2;
    x.options = X25_OPT_BAR_NONPRIV_LISTEN | X25_OPT_USE_DIAG | X25_OPT_INTL_PRIORITISED |
                X25_OPT_DATAPAC_PRIORITY | X25_OPT_INSERT_X121_FROM_LAN;
    x.locmaxpktsize = 9, x.remmaxpktsize = 10, x.locdefpktsize = 7, x.remdefpktsize = 8;
    x.locmaxwinsize = 5, x.remmaxwinsize = 6, x.locdefwinsize = 2, x.remdefwinsize = 3;
    x.max_nsdu = 1024;
    x.ackdelay = 5, x.t20value = 1800, x.t21value = 2000, x.t22value = 1801, x.t23value = 1802;
    x.t24value = 750, x.t25value = 1500, x.t26value = 1803, x.t28value = 100, x.idlevalue = 600;
    x.connectvalue = 2001;
    x.r20value = 1, x.r22value = 2, x.r23value = 3, x.r28value = 4;
    x.localdelay = 5, x.accessdelay = 1250;
    x.locmaxthclass = 12, x.remmaxthclass = 11, x.locdefthclass = 10, x.remdefthclass = 9;
    x.locminthclass = 4, x.remminthclass = 3;
    x.cug = X25_CUG_SUB | X25_CUG_SUB_IA | X25_CUG_EXTENDED | X25_CUG_BAR_IN;
    x.intl_addr_recogn = 3, x.dnic[0] = 0x23, x.dnic[1] = 0x42;
    x.prty_encode = 1, x.prty_forced = 4;
    x.dbit = X25_DBIT_ACCEPT_IN_ZERO | X25_DBIT_ACCEPT_OUT_CLEAR | X25_DBIT_DATA_OUT_RESET;
    x.thclass_neg_to_def = 1, x.thclass_type = 2;
    for (int i = 0; i < 16; ++i) {
        x.thclass_wmap[i] = static_cast<uint8_t>(i);
        x.thclass_pmap[i] = static_cast<uint8_t>(i % 13);
    }
    c.x25.keyword[46].comments = strdup(" the network\n");
    c.x25.keyword[46].trailer = strdup(" subscribed");
}

const char *const wan_link_section = "! link section\n"
                                     "\n"
                                     "SECTION\tLINK\n"
                                     "! the device\n"
                                     "\n"
                                     "\tdevice\t\twan3 \t! port 1\n"
                                     "\tlocal_address\t23421234567\n"
                                     "\tfull_address\t2.23421234567\n"
                                     "\ttype\t\tWAN\n"
                                     "\tversion\t\t1984\n"
                                     "\tmode\t\tDCE\n"
                                     "\tprotocol\tLAPBE\n"
                                     "\talias\t\tpdn\n"
                                     "\tdescription\tLeased line\n"
                                     "\n";

const char *const lapb_section_text = "SECTION\tLAPB\n"
                                      "\tn2_count\t\t11\n"
                                      "\tt1_timer\t\t3.5\n"
                                      "\tpf_timer  \t\t0.8\n"
                                      "\treject_timer\t\t2.6\n"
                                      "\tbusy_timer\t\t10.1\n"
                                      "\tidle_timer\t\t25.1\n"
                                      "\trr_ack_delay\t\t0.5\n"
                                      "\tunack_max\t\t4\n"
                                      "\tlocal_win\t\t6\n"
                                      "\tlocal_probe\t\t1\n"
                                      "\tmax_iframe_len\t\t263\n"
                                      "\tign_ua_error\t\tY\n"
                                      "\tfrmr_frmr_error\t\tN\n"
                                      "\tfrmr_invrsp_error\tN\n"
                                      "\tsframe_pbit\t\tY\n"
                                      "\tno_dm_adm\t\tN\n"
                                      "\tiso8882  \t\tY\n"
                                      "\tsabm_in_x32  \t\tN\n"
                                      "\tinitial_down  \t\tN\n";

const char *const wan_section_text = "SECTION\tWAN\n"
                                     "\tline_speed\t\t64000\n"
                                     "\tmax_frame\t\t520\n"
                                     "\tconnect_proc\t\tV25\n"
                                     "\tv25_callreq\t\t10.0\n"
                                     "\n";

const char *const x25_section_text = "SECTION\tX25\n"
                                     "! the network\n"
                                     "\n"
                                     "\tnetwork\t\t\tPSS\t! subscribed\n"
                                     "\tplpmode\t\t\tNormal\n"
                                     "\tpvc_range\t\t1-2\n"
                                     "\tinc_range\t\t3-4\n"
                                     "\tout_range\t\t5-6\n"
                                     "\ttwo_range\t\t16-31\n"
                                     "\tmodulo\t\t\t128\n"
                                     "\tuse_negotiation\t\tY\n"
                                     "\tbar_negotiation\t\tN\n"
                                     "\tsrc_addr_control\t2\n"
                                     "\taccept_revchg\t\tN\n"
                                     "\tprev_chg\t\tY\n"
                                     "\tfast_select\t\tY\n"
                                     "\tfs_r_response\t\tN\n"
                                     "\tbar_nonpriv_listen\tY\n"
                                     "\tlocmaxpktsize\t\t9\n"
                                     "\tremmaxpktsize\t\t10\n"
                                     "\tlocdefpktsize\t\t7\n"
                                     "\tremdefpktsize\t\t8\n"
                                     "\tlocmaxwinsize\t\t5\n"
                                     "\tremmaxwinsize\t\t6\n"
                                     "\tlocdefwinsize\t\t2\n"
                                     "\tremdefwinsize\t\t3\n"
                                     "\tmaxnsdulength\t\t1024\n"
                                     "\tackdelay\t\t0.5\n"
                                     "\tt20value\t\t180.0\n"
                                     "\tt21value\t\t200.0\n"
                                     "\tt22value\t\t180.1\n"
                                     "\tt23value\t\t180.2\n"
                                     "\tt24value\t\t75.0\n"
                                     "\tt25value\t\t150.0\n"
                                     "\tt26value\t\t180.3\n"
                                     "\tt28value\t\t10.0\n"
                                     "\tidlevalue\t\t60.0\n"
                                     "\tconnectvalue\t\t200.1\n"
                                     "\tr20value\t\t1\n"
                                     "\tr22value\t\t2\n"
                                     "\tr23value\t\t3\n"
                                     "\tr28value\t\t4\n"
                                     "\tlocaldelay\t\t0.005\n"
                                     "\taccessdelay\t\t1.250\n"
                                     "\tlocmaxthclass\t\t12\n"
                                     "\tremmaxthclass\t\t11\n"
                                     "\tlocdefthclass\t\t10\n"
                                     "\tremdefthclass\t\t9\n"
                                     "\tlocminthclass\t\t4\n"
                                     "\tremminthclass\t\t3\n"
                                     "\tsub_cug\t\t\tY\n"
                                     "\tsub_pref_cug\t\tN\n"
                                     "\tsub_cugoa\t\tN\n"
                                     "\tsub_cugia\t\tY\n"
                                     "\tcug_format\t\tExtended\n"
                                     "\tbar_cug_in\t\tY\n"
                                     "\tbar_incall\t\tN\n"
                                     "\tbar_outcall\t\tY\n"
                                     "\tsub_toa_npi_fmt\t\tN\n"
                                     "\tbar_toa_npi_fmt\t\tN\n"
                                     "\tsub_nui_override\tY\n"
                                     "\tbar_call_x32_reg\tN\n"
                                     "\tacc_nodiag\t\tN\n"
                                     "\tuse_diag\t\tY\n"
                                     "\tccitt_clear_len\t\tN\n"
                                     "\tbar_diag\t\tN\n"
                                     "\tdisc_nz_diag\t\tN\n"
                                     "\tacc_hex_add\t\tN\n"
                                     "\tintl_prioritised\tY\n"
                                     "\tiso_8882_mode\t\tN\n"
                                     "\tsend_x121_to_lan\t\tN\n"
                                     "\tinsert_x121_from_lan\t\tY\n"
                                     "\tdatapac_priority\tY\n"
                                     "\tdnic\t\t\t2342\n"
                                     "\tintl_addr_recogn\t3\n"
                                     "\tprty_encode_control\t1\n"
                                     "\tprty_pkt_forced_val\t4\n"
                                     "\tdbit_accept_in\t\tzero\n"
                                     "\tdbit_accept_out\t\tclear\n"
                                     "\tdbit_data_in\t\tignore\n"
                                     "\tdbit_data_out\t\treset\n"
                                     "\tthclass_neg_to_def\tY\n"
                                     "\tthclass_type\t\t2\n"
                                     "\tthclass_wmap\t\t0,1,2,3,4,5,6,7,8,9,10,11,12,13,14,15\n"
                                     "\tthclass_pmap\t\t0,1,2,3,4,5,6,7,8,9,10,11,12,0,1,2\n";

TEST_F(Writer, WanLinkEverySectionLineByLine) {
    wan_link(c);
    c.ids.comments[0] = '\0';
    std::strcpy(c.ids.comments, " ident comment\n");
    ASSERT_EQ(x25_write_config_parameter_file("wan.cfg", &c.ids, &c.link, &c.x25, nullptr, &c.lapb,
                                              nullptr, &c.wan),
              0);
    EXPECT_EQ(written(path("wan.cfg")), std::string("! ident comment\n\n") + ident_block +
                                            wan_link_section + lapb_section_text + "\n" +
                                            wan_section_text + x25_section_text + "\n");
    EXPECT_TRUE(messages().empty());
}

TEST_F(Writer, X32RecordsAddTheirLines) {
    wan_link(c);
    x32_record x25_x32{}, lapb_x32{};
    lapb_x32.authen = 1;
    lapb_x32.signature_len = 2;
    lapb_x32.signature[0] = 0xAB, lapb_x32.signature[1] = 0xCD;
    x25_x32.identity_len = 3;
    x25_x32.identity[0] = 0x12, x25_x32.identity[1] = 0x34, x25_x32.identity[2] = 0x56;
    ASSERT_EQ(x25_write_config_parameter_file_x32("wan.cfg", &c.ids, &c.link, &c.x25, nullptr,
                                                  &c.lapb, nullptr, &c.wan, &x25_x32, &lapb_x32,
                                                  nullptr),
              0);
    EXPECT_EQ(written(path("wan.cfg")), std::string(ident_block) + wan_link_section +
                                            lapb_section_text +
                                            "\tlapb_x32_enable_authen\t\tY\n"
                                            "\tlapb_x32_sign\tABCD\n"
                                            "\n" +
                                            wan_section_text + x25_section_text +
                                            "\tx25_x32_enable_authen\t\tN\n"
                                            "\tx25_x32_identity\t123456\n"
                                            "\n");
}

TEST_F(Writer, LanLinkWritesLlc2AndMaxLanConnections) {
    link_values &l = c.link.values;
    l.device_count = 1;
    l.device_type[0] = 1;
    l.net_type = NET_LAN;
    l.link_mode = LC_LLC2;
    l.max_lan_conns = 32;
    std::strcpy(l.local_address, "0800200A1B2C");
    load_llc2_defaults(&c.llc2.values);
    c.llc2.values.xid_tdup = 7;
    load_x25_defaults(&c.x25.values, 1);
    ASSERT_EQ(x25_write_config_parameter_file("lan.cfg", &c.ids, &c.link, &c.x25, nullptr, nullptr,
                                              &c.llc2, nullptr),
              0);
    std::string text = written(path("lan.cfg"));
    EXPECT_EQ(text.substr(0, text.find("SECTION\tX25\n")), std::string(ident_block) +
                                                               "SECTION\tLINK\n"
                                                               "\tdevice\t\teth0 \n"
                                                               "\tlocal_address\t0800200A1B2C\n"
                                                               "\ttype\t\tLAN\n"
                                                               "\tversion\t\t1988\n"
                                                               "\tmode\t\tDTE\n"
                                                               "\tprotocol\tLLC2\n"
                                                               "\tmax_lan_conns\t32\n"
                                                               "\n"
                                                               "SECTION\tLLC2\n"
                                                               "\tn2_count\t\t10\n"
                                                               "\tt1_timer\t\t1.0\n"
                                                               "\tpf_timer  \t\t0.7\n"
                                                               "\treject_timer\t\t2.5\n"
                                                               "\tbusy_timer\t\t10.0\n"
                                                               "\tidle_timer\t\t25.0\n"
                                                               "\trr_ack_delay\t\t0.4\n"
                                                               "\tunack_max\t\t3\n"
                                                               "\tlocal_win\t\t7\n"
                                                               "\tlocal_probe\t\t0\n"
                                                               "\tmax_iframe_len\t\t263\n"
                                                               "\txid_window\t\t7\n"
                                                               "\txid_ndup\t\t2\n"
                                                               "\txid_tdup\t\t0.7\n"
                                                               "\n");
    // The LAN defaults as they are written.
    EXPECT_NE(text.find("\tnetwork\t\t\tX25_LLC\n\tplpmode\t\t\tAuto\n"), std::string::npos);
    EXPECT_NE(text.find("\ttwo_range\t\t1-4095\n\tmodulo\t\t\t8\n"), std::string::npos);
    EXPECT_NE(text.find("\tcug_format\t\tBasic\n"), std::string::npos);
    EXPECT_NE(text.find("\tdbit_accept_in\t\tclear\n\tdbit_accept_out\t\tclear\n"
                        "\tdbit_data_in\t\tzero\n\tdbit_data_out\t\tzero\n"),
              std::string::npos);
    EXPECT_NE(text.find("\tthclass_wmap\t\t0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0\n"), std::string::npos);
}

TEST_F(Writer, MlpSubsectionsFollowTheDevicesInterleaved) {
    link_values &l = c.link.values;
    l.device_count = 2;
    l.device_type[1] = 0;
    l.device_line[1] = 1;
    l.net_type = NET_MLP2;
    l.mlp = 1;
    l.link_mode = LC_MLAPBDTE;
    l.mlp_priority[0] = 3;
    l.mlp_priority[1] = 9;
    load_mlp_defaults(&c.mlp.values);
    load_x25_defaults(&c.x25.values, 0);
    for (int i = 0; i < 3; ++i) { // a third subsection is beyond the devices
        c.mlp.values.lapb[i] = static_cast<lapb_section *>(std::calloc(1, sizeof(lapb_section)));
        load_lapb_defaults(&c.mlp.values.lapb[i]->values);
        c.mlp.values.lapb[i]->values.n2_count = static_cast<uint16_t>(20 + i);
    }
    c.mlp.values.wan[0] = static_cast<wan_section *>(std::calloc(1, sizeof(wan_section)));
    load_wan_defaults(&c.mlp.values.wan[0]->values);
    c.mlp.values.lapb[1]->section.comments = strdup(" second line\n");
    x32_record mlp_x32[5]{};
    mlp_x32[1].authen = 1;
    ASSERT_EQ(x25_write_config_parameter_file_x32("mlp.cfg", &c.ids, &c.link, &c.x25, &c.mlp,
                                                  nullptr, nullptr, nullptr, nullptr, nullptr,
                                                  mlp_x32),
              0);
    std::string text = written(path("mlp.cfg"));
    std::string lapb_tail = "\tpf_timer  \t\t0.7\n"
                            "\treject_timer\t\t2.5\n"
                            "\tbusy_timer\t\t10.0\n"
                            "\tidle_timer\t\t25.0\n"
                            "\trr_ack_delay\t\t0.4\n"
                            "\tunack_max\t\t3\n"
                            "\tlocal_win\t\t7\n"
                            "\tlocal_probe\t\t0\n"
                            "\tmax_iframe_len\t\t517\n"
                            "\tign_ua_error\t\tN\n"
                            "\tfrmr_frmr_error\t\tN\n"
                            "\tfrmr_invrsp_error\tN\n"
                            "\tsframe_pbit\t\tN\n"
                            "\tno_dm_adm\t\tN\n"
                            "\tiso8882  \t\tN\n"
                            "\tsabm_in_x32  \t\tN\n"
                            "\tinitial_down  \t\tN\n";
    std::size_t start = text.find("SECTION\tMLP\n");
    ASSERT_NE(start, std::string::npos);
    EXPECT_EQ(text.substr(start, text.find("SECTION\tX25\n") - start),
              "SECTION\tMLP\n"
              "\tmlp_window\t10\n"
              "\tmlp_guard\t10\n"
              "\tmt1_val\t\t60.0\n"
              "\tmt2_val\t\t60.0\n"
              "\tmt3_val\t\t2.0\n"
              "\tmn1_val\t\t10\n"
              "\n\n"
              "SUBSECTION\tLAPB\n"
              "\tn2_count\t\t20\n"
              "\tt1_timer\t\t6.0\n" +
                  lapb_tail +
                  "\tmlp_priority\t\t3\n"
                  "\tlapb_x32_enable_authen\t\tN\n"
                  "\n"
                  "SUBSECTION\tWAN\n"
                  "\tline_speed\t\tExternal\n"
                  "\tmax_frame\t\t520\n"
                  "\tconnect_proc\t\tNONE\n"
                  "\n"
                  "! second line\n"
                  "\n"
                  "SUBSECTION\tLAPB\n"
                  "\tn2_count\t\t21\n"
                  "\tt1_timer\t\t6.0\n" +
                  lapb_tail +
                  "\tmlp_priority\t\t9\n"
                  "\tlapb_x32_enable_authen\t\tY\n"
                  "\n");
    EXPECT_NE(text.find("\tdevice\t\twan0 wan1 \n"), std::string::npos);
    EXPECT_NE(text.find("\tversion\t\t1988\n\tmode\t\tDTE\n\tprotocol\tMLAPB\n"),
              std::string::npos);
}

TEST_F(Writer, NoDevicesGiveAnEmptyDeviceValue) {
    wan_link(c);
    c.link.values.device_count = 0;
    ASSERT_EQ(x25_write_config_parameter_file("w.cfg", &c.ids, &c.link, &c.x25, nullptr, &c.lapb,
                                              nullptr, &c.wan),
              0);
    EXPECT_NE(written(path("w.cfg")).find("\n\tdevice\t\t\t! port 1\n"), std::string::npos);
}

TEST_F(Writer, SpecialFileInPlaceOfTheLinkFileIsRefusedAtOnce) {
    wan_link(c);
    alarm(10); // opening the FIFO for writing would otherwise wait for a reader
    ASSERT_EQ(mkfifo(path("fifo.cfg").c_str(), 0600), 0);
    EXPECT_EQ(x25_write_config_parameter_file("fifo.cfg", &c.ids, &c.link, &c.x25, nullptr, &c.lapb,
                                              nullptr, &c.wan),
              ENXIO);
    ASSERT_EQ(mkdir(path("dir.cfg").c_str(), 0700), 0);
    EXPECT_EQ(x25_write_config_parameter_file("dir.cfg", &c.ids, &c.link, &c.x25, nullptr, &c.lapb,
                                              nullptr, &c.wan),
              EISDIR);
    alarm(0);
}

TEST_F(Writer, VersionModeAndProtocolOfEveryCode) {
    struct case_row {
        uint8_t net_type, mode;
        const char *version, *side, *protocol;
    };
    const case_row rows[] = {
        {NET_WAN80, LC_LAPBDTE, "1980", "DTE", "LAPB"},
        {NET_WAN88, LC_LAPBDCE, "1988", "DCE", "LAPB"},
        {NET_WAN84, LC_LAPDTE, "1984", "DTE", "LAP"},
        {NET_WAN84, LC_LAPDCE, "1984", "DCE", "LAP"},
        {NET_MLP3, LC_MLAPBDCE, "1988", "DCE", "MLAPB"},
        {NET_MLP5, LC_MLAPBXDCE, "1988", "DCE", "MLAPBE"},
        {NET_MLP1, LC_MLAPBXDTE, "1988", "DTE", "MLAPBE"},
        {NET_UNKNOWN, 0, "1980", "DTE", "LAPB"},
        {NET_WAN88, LC_LLC1, "1988", "DTE", "LLC1"},
    };
    wan_link(c);
    for (const case_row &row : rows) {
        c.link.values.net_type = row.net_type;
        c.link.values.link_mode = row.mode;
        ASSERT_EQ(x25_write_config_parameter_file("w.cfg", &c.ids, &c.link, &c.x25, nullptr,
                                                  &c.lapb, nullptr, &c.wan),
                  0);
        std::string expected = std::string("\tversion\t\t") + row.version + "\n\tmode\t\t" +
                               row.side + "\n\tprotocol\t" + row.protocol + "\n";
        EXPECT_NE(written(path("w.cfg")).find(expected), std::string::npos) << expected;
    }
}

TEST_F(Writer, UnknownNetworkAndUnconvertibleAddress) {
    wan_link(c);
    c.x25.values.network = 99;
    c.x25.values.cug = 0;
    c.link.values.subnet.address.dte_len = 30; // no text form
    ASSERT_EQ(x25_write_config_parameter_file("w.cfg", &c.ids, &c.link, &c.x25, nullptr, &c.lapb,
                                              nullptr, &c.wan),
              0);
    std::string text = written(path("w.cfg"));
    EXPECT_NE(text.find("\tfull_address\t<unknown>\n"), std::string::npos);
    EXPECT_NE(text.find("\tnetwork\t\t\t<Unknown>\t! subscribed\n"), std::string::npos);
    EXPECT_NE(text.find("\tcug_format\t\t<unknown>\n"), std::string::npos);
}

TEST_F(Writer, ModuloIsWrittenAsRead) {
    wan_link(c);
    for (int modulo : {X25_MODULO_8, X25_MODULO_128, 8}) {
        c.x25.values.modulo = static_cast<uint8_t>(modulo);
        ASSERT_EQ(x25_write_config_parameter_file("w.cfg", &c.ids, &c.link, &c.x25, nullptr,
                                                  &c.lapb, nullptr, &c.wan),
                  0);
        std::string expected = modulo == X25_MODULO_128 ? "128" : "8";
        EXPECT_NE(written(path("w.cfg")).find("\tmodulo\t\t\t" + expected + "\n"),
                  std::string::npos);
    }
}

TEST_F(Writer, X21ConnectProcedureWritesNoTimersAndRereadingGivesTheDefaults) {
    wan_link(c);
    c.wan.values.connect_proc = 1;
    c.wan.values.x21_t1 = 30;
    c.wan.values.x21_t5 = 20;
    ASSERT_EQ(x25_write_config_parameter_file("w.cfg", &c.ids, &c.link, &c.x25, nullptr, &c.lapb,
                                              nullptr, &c.wan),
              0);
    std::string text = written(path("w.cfg"));
    EXPECT_NE(text.find("\tconnect_proc\t\tX21\n\n"), std::string::npos);
    EXPECT_EQ(text.find("x21_t"), std::string::npos);
    EXPECT_EQ(text.find("translate"), std::string::npos);
    wan_section wan{};
    link_section link{};
    int mode = 0;
    ASSERT_EQ(x25_read_config_parameter_file("w.cfg", &c.ids, &link, nullptr, nullptr, nullptr,
                                             nullptr, &wan, &mode),
              0);
    EXPECT_EQ(wan.values.connect_proc, 1);
    EXPECT_EQ(wan.values.x21_t1, 3);
    EXPECT_EQ(wan.values.x21_t5, 2);
    EXPECT_EQ(wan.values.flags, 0);
    qx25tool::release(&wan);
    qx25tool::release(&link);
}

TEST_F(Writer, MissingOrInconsistentRecordsAreRefused) {
    wan_link(c);
    auto write = [&](config_identification *ids, link_section *link, x25_section *x25,
                     mlp_section *mlp, lapb_section *lapb, llc2_section *llc2, wan_section *wan) {
        return x25_write_config_parameter_file("refused.cfg", ids, link, x25, mlp, lapb, llc2, wan);
    };
    EXPECT_EQ(write(nullptr, &c.link, &c.x25, nullptr, &c.lapb, nullptr, &c.wan), EINVAL);
    EXPECT_EQ(write(&c.ids, nullptr, &c.x25, nullptr, &c.lapb, nullptr, &c.wan), EINVAL);
    EXPECT_EQ(write(&c.ids, &c.link, nullptr, nullptr, &c.lapb, nullptr, &c.wan), EINVAL);
    EXPECT_EQ(write(&c.ids, &c.link, &c.x25, &c.mlp, &c.lapb, nullptr, nullptr), EINVAL);
    EXPECT_EQ(write(&c.ids, &c.link, &c.x25, nullptr, &c.lapb, nullptr, nullptr), EINVAL);
    EXPECT_EQ(write(&c.ids, &c.link, &c.x25, nullptr, nullptr, nullptr, &c.wan), EINVAL);
    c.link.values.net_type = NET_LAN;
    EXPECT_EQ(write(&c.ids, &c.link, &c.x25, nullptr, &c.lapb, nullptr, &c.wan), EINVAL);
    EXPECT_EQ(write(&c.ids, &c.link, nullptr, nullptr, nullptr, &c.llc2, nullptr), EINVAL);
    struct stat unused;
    EXPECT_NE(::stat(path("refused.cfg").c_str(), &unused), 0);
}

TEST_F(Writer, WanLinkWithOnlyLlc2PassesTheCheckButFailsOnTheMissingLapb) {
    wan_link(c);
    EXPECT_EQ(x25_write_config_parameter_file("w.cfg", &c.ids, &c.link, &c.x25, nullptr, nullptr,
                                              &c.llc2, nullptr),
              EBADF);
    std::string text = written(path("w.cfg"));
    EXPECT_EQ(text.substr(text.size() - 2), "\n\n"); // stopped after SECTION LINK
    EXPECT_EQ(text.find("SECTION\tX25"), std::string::npos);
}

TEST_F(Writer, ByLinkNumber) {
    wan_link(c);
    c.link.values.subnet.address.snid = 3;
    ASSERT_EQ(
        x25_write_config_parameters(&c.ids, &c.link, &c.x25, nullptr, &c.lapb, nullptr, &c.wan), 0);
    EXPECT_NE(written(path("link_config_0003.cfg")).find("SECTION\tX25"), std::string::npos);
}

TEST_F(Writer, LinkNumber255IsRefusedAndNoFileTouched) {
    wan_link(c);
    c.link.values.subnet.address.snid = 255;
    EXPECT_EQ(
        x25_write_config_parameters(&c.ids, &c.link, &c.x25, nullptr, &c.lapb, nullptr, &c.wan),
        EINVAL);
    x32_record x32{};
    EXPECT_EQ(x25_write_config_parameters_x32(&c.ids, &c.link, &c.x25, nullptr, &c.lapb, nullptr,
                                              &c.wan, &x32, nullptr, nullptr),
              EINVAL);
    EXPECT_EQ(
        x25_write_config_parameters(&c.ids, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr),
        EINVAL);
    struct stat unused;
    EXPECT_NE(::stat(path("link_config_0255.cfg").c_str(), &unused), 0);
}

TEST_F(Writer, FileIsRewrittenInPlaceKeepingItsPermissions) {
    wan_link(c);
    std::string file = tree.write("config/config/w.cfg", std::string(10000, 'x'));
    ASSERT_EQ(::chmod(file.c_str(), 0640), 0);
    ASSERT_EQ(x25_write_config_parameter_file("w.cfg", &c.ids, &c.link, &c.x25, nullptr, &c.lapb,
                                              nullptr, &c.wan),
              0);
    struct stat status;
    ASSERT_EQ(::stat(file.c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777, 0640u);
    EXPECT_EQ(written(file).find('x' + std::string(20, 'x')), std::string::npos);
}

TEST_F(Writer, OpenFailureGivesTheErrorNumber) {
    wan_link(c);
    EXPECT_EQ(x25_write_config_parameter_file("/nonexistent/dir/w.cfg", &c.ids, &c.link, &c.x25,
                                              nullptr, &c.lapb, nullptr, &c.wan),
              ENOENT);
}

TEST_F(Writer, StreamErrorFailsTheWrite) {
    wan_link(c);
    FILE *full = std::fopen("/dev/full", "w");
    ASSERT_NE(full, nullptr);
    std::setvbuf(full, nullptr, _IONBF, 0);
    EXPECT_EQ(__x25_write_config_parameter_FILE(0, full, &c.ids, &c.link, &c.x25, nullptr, &c.lapb,
                                                nullptr, &c.wan, nullptr, nullptr, nullptr),
              ENOSPC);
}

TEST_F(Writer, AnOpenStreamIsWrittenAndClosed) {
    wan_link(c);
    char *buffer = nullptr;
    std::size_t size = 0;
    FILE *stream = open_memstream(&buffer, &size);
    ASSERT_EQ(__x25_write_config_parameter_FILE(0, stream, &c.ids, &c.link, &c.x25, nullptr,
                                                &c.lapb, nullptr, &c.wan, nullptr, nullptr,
                                                nullptr),
              0);
    // The worker closed the stream: the memory buffer is final.
    std::string text(buffer, size);
    std::free(buffer);
    EXPECT_EQ(text.rfind("IDENTIFICATION\n", 0), 0u);
    EXPECT_EQ(text.substr(text.size() - 2), "\n\n");
}

TEST_F(Writer, ModifiedByComesFromTheEnvironment) {
    wan_link(c);
    ::unsetenv("LOGNAME");
    ::setenv("USER", "operator", 1);
    ASSERT_EQ(x25_write_config_parameter_file("w.cfg", &c.ids, &c.link, &c.x25, nullptr, &c.lapb,
                                              nullptr, &c.wan),
              0);
    EXPECT_NE(written(path("w.cfg")).find("\tMODIFIED_BY\toperator\n"), std::string::npos);
    ::unsetenv("USER");
    ASSERT_EQ(x25_write_config_parameter_file("w.cfg", &c.ids, &c.link, &c.x25, nullptr, &c.lapb,
                                              nullptr, &c.wan),
              0);
    EXPECT_NE(written(path("w.cfg")).find("\tMODIFIED_BY\t<unknown>\n"), std::string::npos);
}

TEST_F(Writer, FileDateIsTheCurrentTimeFollowedByAnEmptyLine) {
    wan_link(c);
    ASSERT_EQ(x25_write_config_parameter_file("w.cfg", &c.ids, &c.link, &c.x25, nullptr, &c.lapb,
                                              nullptr, &c.wan),
              0);
    std::string text = read_file(path("w.cfg"));
    std::size_t start = text.find("\tFILE_DATE\t") + 11;
    std::string date = text.substr(start, text.find('\n', start) - start);
    EXPECT_EQ(date.size(), 24u); // "Sat Nov 21 10:00:00 2026"
    // ctime's newline, then two empty lines, then the link section's comment.
    EXPECT_EQ(text.substr(start + 24, 4), "\n\n\n!");
}

TEST_F(Writer, MissingDeviceTableIsReportedAndWritingGoesOn) {
    ::unlink((tree.config_dir() + "/boardconf").c_str());
    wan_link(c);
    ASSERT_EQ(x25_write_config_parameter_file("w.cfg", &c.ids, &c.link, &c.x25, nullptr, &c.lapb,
                                              nullptr, &c.wan),
              0);
    EXPECT_EQ(messages(), std::vector<std::string>{"Unable to read device data files"});
}

class CommaLocaleWriter : public Writer {
  protected:
    void SetUp() override {
        Writer::SetUp();
        ::setenv("LC_ALL", "fr_FR.UTF-8", 1);
        ASSERT_NE(std::setlocale(LC_ALL, ""), nullptr);
    }
    void TearDown() override {
        std::setlocale(LC_ALL, "C");
        ::unsetenv("LC_ALL");
        Writer::TearDown();
    }
};

TEST_F(CommaLocaleWriter, FractionsAreWrittenWithAPoint) {
    wan_link(c);
    ASSERT_EQ(x25_write_config_parameter_file("w.cfg", &c.ids, &c.link, &c.x25, nullptr, &c.lapb,
                                              nullptr, &c.wan),
              0);
    std::string text = written(path("w.cfg"));
    EXPECT_NE(text.find("\tt1_timer\t\t3.5\n"), std::string::npos);
    EXPECT_NE(text.find("\taccessdelay\t\t1.250\n"), std::string::npos);
    EXPECT_STREQ(std::localeconv()->decimal_point, ",");
}

TEST_F(Writer, ExampleLinksReadBackToTheSameBytes) {
    for (const char *name :
         {"link_config_0001.cfg", "link_config_0002.cfg", "link_config_0003.cfg"}) {
        ::setenv("X25CONFIGFILES", QX25_SOURCE_DIR "/examples/etc", 1);
        ::setenv("X25LIBFILES", QX25_SOURCE_DIR "/examples/lib", 1);
        link_config first{}, second{};
        x32_record none[5]{};
        int mode = 0;
        ASSERT_EQ(x25_read_config_parameter_file(name, &first.ids, &first.link, &first.x25,
                                                 &first.mlp, &first.lapb, &first.llc2, &first.wan,
                                                 &mode),
                  0);
        bool mlp = mode == 6, lan = mode == 3;
        auto write = [&](link_config &config, const std::string &target) {
            return x25_write_config_parameter_file_x32(
                target.c_str(), &config.ids, &config.link, &config.x25, mlp ? &config.mlp : nullptr,
                !mlp && !lan ? &config.lapb : nullptr, lan ? &config.llc2 : nullptr,
                !mlp && !lan ? &config.wan : nullptr, nullptr, nullptr, mlp ? none : nullptr);
        };
        std::string once = tree.root() + "/once.cfg", twice = tree.root() + "/twice.cfg";
        ASSERT_EQ(write(first, once), 0) << name;
        ASSERT_EQ(x25_read_config_parameter_file(once.c_str(), &second.ids, &second.link,
                                                 &second.x25, &second.mlp, &second.lapb,
                                                 &second.llc2, &second.wan, &mode),
                  0);
        ASSERT_EQ(write(second, twice), 0);
        EXPECT_EQ(written(once), written(twice)) << name;
        EXPECT_TRUE(messages().empty()) << name;
        qx25tool::release(&first);
        qx25tool::release(&second);
    }
}

} // namespace
