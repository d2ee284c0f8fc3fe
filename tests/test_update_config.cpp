// The configuration update: every section code through a link number and
// through a file name, the X.25 network numbers it chooses, the
// IDENTIFICATION defaults, the MLP subsections it adds, comments kept through
// a rewrite, read and write failures, and the release of comment texts.
#include "qx25.h"

#include "captured_messages.h"
#include "config_tree.h"
#include "link_records.h"
#include "link_config.h"
#include "release.h"

#include <gtest/gtest.h>

#include <climits>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

using qx25test::ConfigTree;

namespace {

const char *const boardconf = "WAN_DEVICE\n\tsymbolic WANS\n\tdevice wan\n\tlines 2\n"
                              "LAN_DEVICE\n\tsymbolic ETHR\n\tdevice eth\n\tlines 1\n";

const char *const profiles = "1 X25_LLC lan\n"
                             "2 X25_1988 wan88\n"
                             "3 X25_1984 wan84\n"
                             "4 X25_1980 wan80\n"
                             "7 PSS pss\n"
                             "25 X21_V25 circuit\n";

// ---- Text helpers -------------------------------------------------------------

// The text with its one occurrence of `from` replaced; a test fails when
// `from` does not occur exactly once.
std::string with(const std::string &text, std::string_view from, std::string_view to) {
    std::size_t at = text.find(from);
    if (at == std::string::npos || text.find(from, at + 1) != std::string::npos) {
        ADD_FAILURE() << "not exactly once: " << from;
        return text;
    }
    std::string result = text;
    result.replace(at, from.size(), to);
    return result;
}

// The FILE_DATE line changes with every write: compare everything else.
std::string dated(std::string text) {
    constexpr std::string_view key = "\tFILE_DATE\t";
    std::size_t at = text.find(key);
    if (at == std::string::npos) return text;
    at += key.size();
    text.replace(at, text.find('\n', at) - at, "<date>");
    return text;
}

// The text with the value of its `network` line replaced.
std::string with_network(std::string text, std::string_view name) {
    constexpr std::string_view key = "\tnetwork\t\t\t";
    std::size_t at = text.find(key);
    if (at == std::string::npos) {
        ADD_FAILURE() << "no network line";
        return text;
    }
    at += key.size();
    text.replace(at, text.find('\n', at) - at, name);
    return text;
}

bool contains(const std::string &text, std::string_view part) {
    return text.find(part) != std::string::npos;
}

// ---- Link files in the layout the writer produces ---------------------------

// Comments are written as "!", the text (which ends in its newline) and a
// newline: one blank line follows each comment block.
const std::string ident = "!Test site, link configuration\n"
                          "\n"
                          "IDENTIFICATION\n"
                          "\tPRODUCT_NAME\tQuenlark X.25\n"
                          "\tPRODUCT_VERSION\t4.1 patch 07\n"
                          "\tFILE_TYPE\tx25link\n"
                          "\tMODIFIED_BY\ttester\n"
                          "\tFILE_DATE\tSat Nov 21 06:17:13 2026\n"
                          "\n"
                          "\n";

// A WAN84 link on one line.
const std::string wan_link = "!The link itself\n"
                             "\n"
                             "SECTION\tLINK\n"
                             "\tdevice\t\twan1 \n"
                             "\tlocal_address\t0A1B\n"
                             "\ttype\t\tWAN\n"
                             "\tversion\t\t1984\n"
                             "\tmode\t\tDTE\n"
                             "\tprotocol\tLAPB\n"
                             "\talias\t\tthree\t!short name\n"
                             "\tdescription\tThird link\n"
                             "\n";

// The LAPB keyword lines of the defaults, shared by SECTION and SUBSECTION.
const std::string lapb_lines = "\tn2_count\t\t10\n"
                               "\tt1_timer\t\t6.0\n"
                               "\tpf_timer  \t\t0.7\n"
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

const std::string lapb_text = "SECTION\tLAPB\n"
                              "!Retries before the link is reset\n"
                              "\n" +
                              lapb_lines + "\n";

const std::string wan_text = "SECTION\tWAN\n"
                             "\tline_speed\t\t64000\n"
                             "\tmax_frame\t\t520\t!frame size\n"
                             "\tconnect_proc\t\tNONE\n"
                             "\n";

// The X25 keyword lines of the WAN defaults on a WAN84 link, no comments.
const std::string x25_plain = "SECTION\tX25\n"
                              "\tnetwork\t\t\tX25_1984\n"
                              "\tplpmode\t\t\tNormal\n"
                              "\tpvc_range\t\t0-0\n"
                              "\tinc_range\t\t0-0\n"
                              "\tout_range\t\t0-0\n"
                              "\ttwo_range\t\t512-575\n"
                              "\tmodulo\t\t\t8\n"
                              "\tuse_negotiation\t\tY\n"
                              "\tbar_negotiation\t\tN\n"
                              "\tsrc_addr_control\t0\n"
                              "\taccept_revchg\t\tN\n"
                              "\tprev_chg\t\tN\n"
                              "\tfast_select\t\tN\n"
                              "\tfs_r_response\t\tN\n"
                              "\tbar_nonpriv_listen\tN\n"
                              "\tlocmaxpktsize\t\t8\n"
                              "\tremmaxpktsize\t\t8\n"
                              "\tlocdefpktsize\t\t7\n"
                              "\tremdefpktsize\t\t7\n"
                              "\tlocmaxwinsize\t\t7\n"
                              "\tremmaxwinsize\t\t7\n"
                              "\tlocdefwinsize\t\t2\n"
                              "\tremdefwinsize\t\t2\n"
                              "\tmaxnsdulength\t\t576\n"
                              "\tackdelay\t\t0.5\n"
                              "\tt20value\t\t180.0\n"
                              "\tt21value\t\t200.0\n"
                              "\tt22value\t\t180.0\n"
                              "\tt23value\t\t180.0\n"
                              "\tt24value\t\t75.0\n"
                              "\tt25value\t\t150.0\n"
                              "\tt26value\t\t180.0\n"
                              "\tt28value\t\t0.0\n"
                              "\tidlevalue\t\t0.0\n"
                              "\tconnectvalue\t\t200.0\n"
                              "\tr20value\t\t1\n"
                              "\tr22value\t\t1\n"
                              "\tr23value\t\t1\n"
                              "\tr28value\t\t0\n"
                              "\tlocaldelay\t\t0.005\n"
                              "\taccessdelay\t\t0.005\n"
                              "\tlocmaxthclass\t\t12\n"
                              "\tremmaxthclass\t\t12\n"
                              "\tlocdefthclass\t\t12\n"
                              "\tremdefthclass\t\t12\n"
                              "\tlocminthclass\t\t4\n"
                              "\tremminthclass\t\t4\n"
                              "\tsub_cug\t\t\tN\n"
                              "\tsub_pref_cug\t\tN\n"
                              "\tsub_cugoa\t\tN\n"
                              "\tsub_cugia\t\tN\n"
                              "\tcug_format\t\tBasic\n"
                              "\tbar_cug_in\t\tN\n"
                              "\tbar_incall\t\tN\n"
                              "\tbar_outcall\t\tN\n"
                              "\tsub_toa_npi_fmt\t\tN\n"
                              "\tbar_toa_npi_fmt\t\tN\n"
                              "\tsub_nui_override\tN\n"
                              "\tbar_call_x32_reg\tN\n"
                              "\tacc_nodiag\t\tN\n"
                              "\tuse_diag\t\tN\n"
                              "\tccitt_clear_len\t\tN\n"
                              "\tbar_diag\t\tN\n"
                              "\tdisc_nz_diag\t\tN\n"
                              "\tacc_hex_add\t\tN\n"
                              "\tintl_prioritised\tN\n"
                              "\tiso_8882_mode\t\tN\n"
                              "\tsend_x121_to_lan\t\tN\n"
                              "\tinsert_x121_from_lan\t\tN\n"
                              "\tdatapac_priority\tN\n"
                              "\tdnic\t\t\t0000\n"
                              "\tintl_addr_recogn\t0\n"
                              "\tprty_encode_control\t0\n"
                              "\tprty_pkt_forced_val\t0\n"
                              "\tdbit_accept_in\t\tclear\n"
                              "\tdbit_accept_out\t\tclear\n"
                              "\tdbit_data_in\t\tzero\n"
                              "\tdbit_data_out\t\tzero\n"
                              "\tthclass_neg_to_def\tN\n"
                              "\tthclass_type\t\t0\n"
                              "\tthclass_wmap\t\t0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0\n"
                              "\tthclass_pmap\t\t0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0\n"
                              "\n";

// The same with a comment before `network` and a trailing comment on
// send_x121_to_lan, a pair the free function leaves alone.
const std::string x25_commented =
    with(with(x25_plain, "\tnetwork", "!Network of the link\n\n\tnetwork"),
         "\tsend_x121_to_lan\t\tN\n", "\tsend_x121_to_lan\t\tN\t!not on a WAN\n");

// Link 3: WAN84, LAPB and WAN.
const std::string wan_file = ident + wan_link + lapb_text + wan_text + x25_commented;

// Link 4: a LAN link; max_lan_conns carries comments the free function
// leaves alone.
const std::string lan_link = "SECTION\tLINK\n"
                             "\tdevice\t\teth0 \n"
                             "\tlocal_address\t08002B0A0B0C\n"
                             "\ttype\t\tLAN\n"
                             "\tversion\t\t1988\n"
                             "\tmode\t\tDTE\n"
                             "\tprotocol\tLLC2\n"
                             "!At most this many at once\n"
                             "\n"
                             "\tmax_lan_conns\t16\t!connections\n"
                             "\n";

const std::string llc2_text = "SECTION\tLLC2\n"
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
                              "\txid_tdup\t\t0.5\n"
                              "\n";

const std::string lan_x25 =
    with(with(with(with(x25_commented, "\tnetwork\t\t\tX25_1984\n", "\tnetwork\t\t\tX25_LLC\n"),
                   "\tplpmode\t\t\tNormal\n", "\tplpmode\t\t\tAuto\n"),
              "\ttwo_range\t\t512-575\n", "\ttwo_range\t\t1-4095\n"),
         "\tidlevalue\t\t0.0\n", "\tidlevalue\t\t60.0\n");

const std::string lan_file = ident + lan_link + llc2_text + lan_x25;

// Link 5: MLP over two lines.
const std::string mlp_link = "SECTION\tLINK\n"
                             "\tdevice\t\twan0 wan1 \n"
                             "\tlocal_address\t05\n"
                             "\ttype\t\tWAN\n"
                             "\tversion\t\t1988\n"
                             "\tmode\t\tDTE\n"
                             "\tprotocol\tMLAPB\n"
                             "\n";

const std::string mlp_text = "SECTION\tMLP\n"
                             "\tmlp_window\t10\n"
                             "\tmlp_guard\t10\n"
                             "\tmt1_val\t\t60.0\n"
                             "\tmt2_val\t\t60.0\n"
                             "\tmt3_val\t\t2.0\n"
                             "\tmn1_val\t\t10\n"
                             "\n"
                             "\n";

std::string lapb_subsection(int priority) {
    return "SUBSECTION\tLAPB\n" + lapb_lines + "\tmlp_priority\t\t" + std::to_string(priority) +
           "\n\n";
}

std::string wan_subsection(const std::string &speed) {
    return "SUBSECTION\tWAN\n"
           "\tline_speed\t\t" +
           speed +
           "\n"
           "\tmax_frame\t\t520\n"
           "\tconnect_proc\t\tNONE\n"
           "\n";
}

// mlp_priority carries a comment the free function leaves alone.
const std::string mlp_subsections =
    with(lapb_subsection(1), "\tmlp_priority", "!Preferred line\n\n\tmlp_priority") +
    wan_subsection("64000") + lapb_subsection(2) + "!Second line\n\n" + wan_subsection("9600");

const std::string mlp_x25 =
    with(x25_commented, "\tnetwork\t\t\tX25_1984\n", "\tnetwork\t\t\tX25_1988\n");

const std::string mlp_file = ident + mlp_link + mlp_text + mlp_subsections + mlp_x25;

// ---- Records ------------------------------------------------------------------

int index_of(const config_keyword *table, std::string_view name) {
    for (const config_keyword *row = table; row->name != nullptr; ++row)
        if (name == row->name) return row->index;
    ADD_FAILURE() << "no keyword " << name;
    return -1;
}

class Update : public testing::Test {
  protected:
    void SetUp() override {
        qx25test::capture_all_messages();
        ::setenv("LOGNAME", "tester", 1);
        tree.write("config/boardconf", boardconf);
        tree.write("lib/world_networks.profile", profiles);
        std::memset(&c, 0, sizeof c);
    }
    void TearDown() override {
        qx25test::release_static_records();
        qx25tool::release(&c);
        for (device_type &row : __config_linktype)
            if (reinterpret_cast<uintptr_t>(row.comment) != 0xFFFFFFFEu) {
                std::free(row.comment);
                row.comment = nullptr;
            }
        ::unsetenv("LOGNAME");
    }

    std::string link_path(int number) const {
        char name[64];
        __config_create_working_filename(".cfg", number, name, sizeof name);
        return tree.config_dir() + "/config/" + name;
    }
    std::string put_link(int number, const std::string &text) const {
        char name[64];
        __config_create_working_filename(".cfg", number, name, sizeof name);
        return tree.write(std::string("config/config/") + name, text);
    }
    std::string link_text(int number) const { return qx25test::read_file(link_path(number)); }

    // Reads a configuration text into c, which supplies the new sections.
    void read_new(const std::string &text) {
        qx25tool::release(&c);
        std::memset(&c, 0, sizeof c);
        std::string path = tree.write("config/config/new.cfg", text);
        int mode = 0;
        ASSERT_EQ(x25_read_config_parameter_file(path.c_str(), &c.ids, &c.link, &c.x25, &c.mlp,
                                                 &c.lapb, &c.llc2, &c.wan, &mode),
                  0);
    }

    // Reads a link's file into the static records, as a caller might have.
    void read_static(int number) {
        int mode = 0;
        ASSERT_EQ(x25_read_config_parameters(number, &ids, &cs, &xs, &ms, &lbs, &l2s, &ws, &mode),
                  0);
    }

    ConfigTree tree;
    link_config c;
};

// ---- Releasing comment texts ----------------------------------------------------

// Frees every text of a record, touching nothing else.
template <typename Section> void free_every_pair(Section &section) {
    std::free(section.section.comments);
    std::free(section.section.trailer);
    for (config_comment &pair : section.keyword) {
        std::free(pair.comments);
        std::free(pair.trailer);
    }
}

// Gives every text of a record its own heap string.
template <typename Section> void fill_pairs(Section &section) {
    section.section = {strdup("section comments"), strdup("section trailer")};
    int i = 0;
    for (config_comment &pair : section.keyword) {
        std::string text = "keyword " + std::to_string(i++);
        pair = {strdup((text + " comments").c_str()), strdup((text + " trailer").c_str())};
    }
}

// Frees a filled record with `release` and checks that exactly the pairs
// named in `kept` are left, with both their texts, and that `freed` texts
// went; the values block is not touched.
template <typename Section>
void expect_frees_all_but(void (*release)(Section *), const config_keyword *table,
                          const std::vector<std::string_view> &kept, int freed) {
    Section section;
    std::memset(&section, 0, sizeof section);
    std::memset(&section.values, 0x5A, sizeof section.values);
    fill_pairs(section);
    decltype(section.values) values_before = section.values;
    std::vector<config_comment> before(std::begin(section.keyword), std::end(section.keyword));

    release(&section);

    EXPECT_EQ(section.section.comments, nullptr);
    EXPECT_EQ(section.section.trailer, nullptr);
    int texts_left = 0;
    for (std::size_t i = 0; i < std::size(section.keyword); ++i) {
        const config_comment &pair = section.keyword[i];
        bool keep = false;
        for (std::string_view name : kept)
            keep = keep || index_of(table, name) == static_cast<int>(i);
        SCOPED_TRACE("keyword pair " + std::to_string(i));
        if (keep) {
            EXPECT_EQ(pair.comments, before[i].comments);
            EXPECT_EQ(pair.trailer, before[i].trailer);
            EXPECT_STREQ(pair.comments, ("keyword " + std::to_string(i) + " comments").c_str());
            texts_left += 2;
        } else {
            EXPECT_EQ(pair.comments, nullptr);
            EXPECT_EQ(pair.trailer, nullptr);
        }
    }
    EXPECT_EQ(2 * (1 + static_cast<int>(std::size(section.keyword))) - texts_left, freed);
    EXPECT_EQ(std::memcmp(&section.values, &values_before, sizeof values_before), 0);

    // What the function leaves is the caller's to free.
    free_every_pair(section);
}

TEST(FreeComments, LinkKeepsMaxLanConns) {
    expect_frees_all_but(free_link_comments, __LINK_functions, {"max_lan_conns"}, 20);
}

TEST(FreeComments, X25KeepsTheLanAndX32Pairs) {
    expect_frees_all_but(free_x25_comments, __X25_functions,
                         {"send_x121_to_lan", "insert_x121_from_lan", "x25_x32_enable_authen",
                          "x25_x32_sign", "x25_x32_identity"},
                         162);
}

TEST(FreeComments, LapbKeepsPriorityAndX32Pairs) {
    expect_frees_all_but(
        free_lapb_comments, __LAPB_functions,
        {"mlp_priority", "lapb_x32_enable_authen", "lapb_x32_sign", "lapb_x32_identity"}, 40);
}

TEST(FreeComments, Llc2FreesEveryPair) {
    expect_frees_all_but(free_llc2_comments, __LLC2_functions, {}, 30);
}

TEST(FreeComments, MlpFreesEveryPair) {
    expect_frees_all_but(free_mlp_comments, __MLP_functions, {}, 14);
}

TEST(FreeComments, WanFreesEveryPair) {
    expect_frees_all_but(free_wan_comments, __WAN_functions, {}, 24);
}

TEST(FreeComments, NullRecordsAndNullTexts) {
    free_link_comments(nullptr);
    free_x25_comments(nullptr);
    free_lapb_comments(nullptr);
    free_llc2_comments(nullptr);
    free_mlp_comments(nullptr);
    free_wan_comments(nullptr);

    // Only some texts present: those go, the others stay null.
    wan_section wan{};
    wan.section.trailer = strdup("t");
    wan.keyword[3].comments = strdup("c");
    free_wan_comments(&wan);
    EXPECT_EQ(wan.section.trailer, nullptr);
    EXPECT_EQ(wan.keyword[3].comments, nullptr);
    free_wan_comments(&wan); // nothing left to free twice
}

TEST(FreeComments, MlpLeavesItsSubsectionsAlone) {
    mlp_section mlp{};
    mlp.section.comments = strdup("mlp");
    auto *lapb = static_cast<lapb_section *>(std::calloc(1, sizeof(lapb_section)));
    auto *wan = static_cast<wan_section *>(std::calloc(1, sizeof(wan_section)));
    lapb->section.comments = strdup("lapb");
    wan->keyword[0].trailer = strdup("wan");
    mlp.values.lapb[0] = lapb;
    mlp.values.wan[0] = wan;

    free_mlp_comments(&mlp);

    EXPECT_EQ(mlp.section.comments, nullptr);
    EXPECT_EQ(mlp.values.lapb[0], lapb);
    EXPECT_EQ(mlp.values.wan[0], wan);
    EXPECT_STREQ(lapb->section.comments, "lapb");
    EXPECT_STREQ(wan->keyword[0].trailer, "wan");
    qx25tool::release(&mlp);
}

// ---- Section codes that name no section ---------------------------------------

TEST_F(Update, CodesOutsideOneToSixTouchNothing) {
    put_link(3, wan_file);
    std::string path = link_path(3);
    read_static(3);
    const char *network_comment = xs.keyword[index_of(__X25_functions, "network")].comments;
    ASSERT_STREQ(network_comment, "Network of the link\n");
    ASSERT_STREQ(cs.values.subnet.name, "three");
    read_new(wan_file);

    for (unsigned code : {0u, 7u, 100u, UINT_MAX}) {
        SCOPED_TRACE(code);
        EXPECT_EQ(x25_update_link(3, &c.lapb, code), 0);
        EXPECT_EQ(x25_update_file(path.c_str(), &c.lapb, code), 0);
        EXPECT_EQ(x25_update_link(3, nullptr, code), 0);
        EXPECT_EQ(x25_update_file(nullptr, nullptr, code), 0);
    }
    EXPECT_EQ(link_text(3), wan_file);
    // The static records still hold what was read, comments included.
    EXPECT_EQ(xs.keyword[index_of(__X25_functions, "network")].comments, network_comment);
    EXPECT_STREQ(cs.values.subnet.name, "three");
    EXPECT_STREQ(ids.modified_by, "tester");
}

// ---- LINK ---------------------------------------------------------------------

TEST_F(Update, LinkSectionByNumber) {
    put_link(3, wan_file);
    const std::string new_link =
        with(with(wan_link, "\talias\t\tthree\t!short name\n", "\talias\t\ttres\n"), "\tprotocol",
             "!Frames\n\n\tprotocol");
    read_new(ident + new_link);

    EXPECT_EQ(x25_update_link(3, &c.link, SECTION_LINK), 0);

    EXPECT_EQ(dated(link_text(3)), dated(ident + new_link + lapb_text + wan_text + x25_commented));
    // The static records hold the file as read; the new link is not copied.
    EXPECT_STREQ(cs.values.subnet.name, "three");
    EXPECT_STREQ(cs.keyword[index_of(__LINK_functions, "alias")].trailer, "short name");
    EXPECT_EQ(cs.values.subnet.address.snid, 3u);
    EXPECT_STREQ(c.link.values.subnet.name, "tres");
    EXPECT_TRUE(qx25test::messages().empty());
}

TEST_F(Update, LinkSectionByFileName) {
    put_link(3, wan_file);
    const std::string new_link = with(wan_link, "\tdescription\tThird link\n", "");
    read_new(ident + new_link);

    EXPECT_EQ(x25_update_file("link_config_0003.cfg", &c.link, SECTION_LINK), 0);

    EXPECT_EQ(dated(link_text(3)), dated(ident + new_link + lapb_text + wan_text + x25_commented));
    EXPECT_STREQ(cs.values.subnet.description, "Third link");
}

TEST_F(Update, LinkIsWrittenToTheFileOfTheNumberGiven) {
    put_link(3, wan_file);
    read_new(ident + wan_link);
    c.link.values.subnet.address.snid = 9;

    EXPECT_EQ(x25_update_link(3, &c.link, SECTION_LINK), 0);

    EXPECT_EQ(dated(link_text(3)), dated(wan_file));
    EXPECT_FALSE(std::filesystem::exists(link_path(9)));
    EXPECT_EQ(c.link.values.subnet.address.snid, 9u); // the caller's record is left alone
}

// The network number after a LINK update: the new link's class decides, a
// WAN number other than 1 is kept, and a call procedure means 25. Both forms
// choose the same.
TEST_F(Update, LinkSectionNetworkNumbers) {
    const std::string lan_new = ident + lan_link;
    struct row {
        std::string new_link;
        bool call_procedure;
        std::string_view file_network;
        int expected;
    };
    const std::vector<row> rows = {
        {ident + wan_link, false, "X25_LLC", 3},
        {ident + wan_link, false, "PSS", 7},
        {ident + wan_link, false, "X25_1980", 4},
        {ident + with(wan_link, "1984", "1980"), false, "X25_LLC", 4},
        {ident + with(wan_link, "1984", "1988"), false, "X25_LLC", 2},
        {ident + with(wan_link, "1984", "1988"), false, "PSS", 7},
        {ident + mlp_link, false, "X25_LLC", 2},
        {lan_new, false, "PSS", 1},
        {ident + wan_link, true, "PSS", 25},
        {ident + wan_link, true, "X25_LLC", 25},
        {lan_new, true, "X25_1984", 25},
    };
    for (bool by_number : {true, false}) {
        for (const row &r : rows) {
            SCOPED_TRACE(std::string(by_number ? "by number, " : "by name, ") +
                         std::string(r.file_network) + " -> " + std::to_string(r.expected));
            put_link(3, with(wan_file, "\tnetwork\t\t\tX25_1984\n",
                             "\tnetwork\t\t\t" + std::string(r.file_network) + "\n"));
            read_new(r.new_link);
            if (r.call_procedure) c.link.values.flags |= LINK_FLAG_CALL_PROCEDURE;
            int result = by_number ? x25_update_link(3, &c.link, SECTION_LINK)
                                   : x25_update_file(link_path(3).c_str(), &c.link, SECTION_LINK);
            EXPECT_EQ(result, 0);
            EXPECT_EQ(xs.values.network, r.expected);
            EXPECT_TRUE(contains(link_text(3), "\tnetwork\t\t\t" +
                                                   std::string(__network_name(r.expected)) + "\n"));
        }
    }
}

TEST_F(Update, Wan84LinkTurnsNetwork1Into3AndKeeps7) {
    read_new(ident + wan_link);

    put_link(3, with(wan_file, "X25_1984", "X25_LLC"));
    EXPECT_EQ(x25_update_link(3, &c.link, SECTION_LINK), 0);
    EXPECT_EQ(dated(link_text(3)), dated(wan_file));

    const std::string pss_file = with(wan_file, "X25_1984", "PSS");
    put_link(3, pss_file);
    EXPECT_EQ(x25_update_link(3, &c.link, SECTION_LINK), 0);
    EXPECT_EQ(dated(link_text(3)), dated(pss_file));
}

// Turning a single link into MLP over three lines: the link gets a LAPB and
// a WAN subsection per device, each with the defaults.
TEST_F(Update, SingleLinkBecomesMlpOverThreeDevices) {
    put_link(3, with(wan_file, "X25_1984", "X25_LLC"));
    const std::string new_link = with(mlp_link, "wan0 wan1 ", "wan0 wan1 wan2 ");
    read_new(ident + new_link);
    ASSERT_EQ(c.link.values.device_count, 3);
    ASSERT_NE(c.link.values.mlp, 0);

    EXPECT_EQ(x25_update_link(3, &c.link, SECTION_LINK), 0);

    std::string subsections;
    for (int i = 0; i < 3; ++i)
        subsections += lapb_subsection(0) + wan_subsection("External");
    EXPECT_EQ(dated(link_text(3)), dated(ident + new_link + mlp_text + subsections +
                                         with(x25_commented, "X25_1984", "X25_1988")));
    for (int i = 0; i < MLP_MAX_SUBSECTIONS; ++i) {
        SCOPED_TRACE(i);
        EXPECT_EQ(ms.values.lapb[i] != nullptr, i < 3);
        EXPECT_EQ(ms.values.wan[i] != nullptr, i < 3);
    }
    ASSERT_NE(ms.values.lapb[2], nullptr);
    ASSERT_NE(ms.values.wan[2], nullptr);
    EXPECT_EQ(ms.values.lapb[2]->values.max_iframe_len, 517);
    EXPECT_EQ(ms.values.wan[2]->values.tuning.max_frame, 520);
    EXPECT_EQ(ms.values.wan[2]->values.line_option, 1);
}

// Subsections the file has are kept with their comments; only the missing
// ones are added.
TEST_F(Update, MlpLinkGetsOnlyTheMissingSubsections) {
    put_link(5, mlp_file);
    const std::string new_link = with(mlp_link, "wan0 wan1 ", "wan0 wan1 wan2 ");
    read_new(ident + new_link);
    c.link.values.mlp_priority[0] = 1;
    c.link.values.mlp_priority[1] = 2;
    c.link.values.mlp_priority[2] = 3;

    EXPECT_EQ(x25_update_link(5, &c.link, SECTION_LINK), 0);

    EXPECT_EQ(dated(link_text(5)),
              dated(ident + new_link + mlp_text + mlp_subsections + lapb_subsection(3) +
                    wan_subsection("External") + mlp_x25));
}

// By file name the LINK update never adds subsections and always writes the
// read LAPB and WAN sections: an MLP link comes out without its MLP section.
TEST_F(Update, FileFormWritesLapbAndWanForAnMlpLink) {
    put_link(3, wan_file);
    const std::string new_link = with(mlp_link, "wan0 wan1 ", "wan0 wan1 wan2 ");
    read_new(ident + new_link);

    EXPECT_EQ(x25_update_file(link_path(3).c_str(), &c.link, SECTION_LINK), 0);

    EXPECT_EQ(dated(link_text(3)), dated(ident + new_link + lapb_text + wan_text + x25_commented));
    EXPECT_EQ(ms.values.lapb[0], nullptr);
    EXPECT_EQ(ms.values.wan[0], nullptr);
}

// ---- X25 ----------------------------------------------------------------------

TEST_F(Update, X25SectionByNumber) {
    put_link(3, wan_file);
    const std::string new_x25 =
        with(with(x25_plain, "\tmodulo\t\t\t8\n", "\tmodulo\t\t\t128\n"),
             "\tmaxnsdulength\t\t576\n", "!Longer messages\n\n\tmaxnsdulength\t\t1024\t!bytes\n");
    read_new(ident + wan_link + new_x25);

    EXPECT_EQ(x25_update_link(3, &c.x25, SECTION_X25), 0);

    EXPECT_EQ(dated(link_text(3)), dated(ident + wan_link + lapb_text + wan_text + new_x25));
    // The read section is not replaced in the static records.
    EXPECT_EQ(xs.values.modulo, X25_MODULO_8);
    EXPECT_EQ(xs.values.max_nsdu, 576);
}

TEST_F(Update, X25SectionByFileName) {
    put_link(4, lan_file);
    const std::string new_x25 = with(lan_x25, "\tdnic\t\t\t0000\n", "\tdnic\t\t\t2342\n");
    read_new(ident + lan_link + new_x25);

    EXPECT_EQ(x25_update_file("link_config_0004.cfg", &c.x25, SECTION_X25), 0);

    EXPECT_EQ(dated(link_text(4)), dated(ident + lan_link + llc2_text + new_x25));
}

TEST_F(Update, X25SectionOfAnMlpLinkKeepsTheSubsections) {
    put_link(5, mlp_file);
    const std::string new_x25 = with(mlp_x25, "\tr20value\t\t1\n", "\tr20value\t\t5\n");
    read_new(ident + mlp_link + new_x25);

    EXPECT_EQ(x25_update_link(5, &c.x25, SECTION_X25), 0);

    EXPECT_EQ(dated(link_text(5)), dated(ident + mlp_link + mlp_text + mlp_subsections + new_x25));
}

// The network number of a new X25 section, by number and by file name: a
// LAN link has 1; on a WAN link, by number the class's number replaces any
// number unless the WAN section has a connect procedure, by file name only
// 1, and 25 when there is no connect procedure; a call procedure means 25.
TEST_F(Update, X25SectionNetworkNumbers) {
    struct row {
        const std::string *file;
        std::string_view connect_proc;
        int new_network;
        int by_number;
        int by_name;
    };
    const std::vector<row> rows = {
        {&wan_file, "NONE", 7, 3, 7},  {&wan_file, "NONE", 1, 3, 3}, {&wan_file, "NONE", 25, 3, 3},
        {&wan_file, "NONE", 2, 3, 2},  {&wan_file, "NONE", 3, 3, 3}, {&wan_file, "X21", 7, 25, 25},
        {&wan_file, "V25", 1, 25, 25}, {&lan_file, "NONE", 7, 1, 1}, {&mlp_file, "NONE", 7, 2, 7},
        {&mlp_file, "NONE", 1, 2, 2},
    };
    for (const row &r : rows) {
        for (bool by_number : {true, false}) {
            int expected = by_number ? r.by_number : r.by_name;
            SCOPED_TRACE(std::string(by_number ? "by number, " : "by name, ") +
                         std::string(r.connect_proc) + ", " + std::to_string(r.new_network) +
                         " -> " + std::to_string(expected));
            std::string file = *r.file;
            if (r.connect_proc != "NONE")
                file = with(file, "\tconnect_proc\t\tNONE\n",
                            "\tconnect_proc\t\t" + std::string(r.connect_proc) + "\n");
            put_link(3, file);
            read_new(ident + x25_plain);
            c.x25.values.network = static_cast<uint8_t>(r.new_network);
            int result = by_number ? x25_update_link(3, &c.x25, SECTION_X25)
                                   : x25_update_file(link_path(3).c_str(), &c.x25, SECTION_X25);
            EXPECT_EQ(result, 0);
            // The caller's record carries the number written.
            EXPECT_EQ(c.x25.values.network, expected);
            EXPECT_TRUE(contains(link_text(3),
                                 "\tnetwork\t\t\t" + std::string(__network_name(expected)) + "\n"));
        }
    }
}

// ---- LLC2 and LAPB --------------------------------------------------------------

TEST_F(Update, Llc2SectionOfALanLink) {
    const std::string new_llc2 =
        with(llc2_text, "\tt1_timer\t\t1.0\n", "!Slower\n\n\tt1_timer\t\t2.5\t!seconds\n");
    for (bool by_number : {true, false}) {
        SCOPED_TRACE(by_number ? "by number" : "by name");
        put_link(4, lan_file);
        read_new(ident + lan_link + new_llc2);
        int result = by_number ? x25_update_link(4, &c.llc2, SECTION_LLC2)
                               : x25_update_file("link_config_0004.cfg", &c.llc2, SECTION_LLC2);
        EXPECT_EQ(result, 0);
        EXPECT_EQ(dated(link_text(4)), dated(ident + lan_link + new_llc2 + lan_x25));
        EXPECT_EQ(l2s.values.t1_timer, 10); // as read
    }
}

TEST_F(Update, LapbSectionOfAWanLink) {
    const std::string new_lapb = with(lapb_text, "\tn2_count\t\t10\n", "\tn2_count\t\t5\t!fewer\n");
    for (bool by_number : {true, false}) {
        SCOPED_TRACE(by_number ? "by number" : "by name");
        put_link(3, wan_file);
        read_new(ident + wan_link + new_lapb);
        int result = by_number ? x25_update_link(3, &c.lapb, SECTION_LAPB)
                               : x25_update_file(link_path(3).c_str(), &c.lapb, SECTION_LAPB);
        EXPECT_EQ(result, 0);
        EXPECT_EQ(dated(link_text(3)),
                  dated(ident + wan_link + new_lapb + wan_text + x25_commented));
        EXPECT_EQ(lbs.values.n2_count, 10); // as read
    }
}

// The LLC2 or LAPB section to replace must be the kind the file holds; else
// 1, and the file stays as it was, byte for byte.
TEST_F(Update, LinkLevelOfTheOtherKindIsRefused) {
    read_new(wan_file);
    struct row {
        int number;
        const std::string *file;
        unsigned code;
        void *section;
    };
    const std::vector<row> rows = {
        {4, &lan_file, SECTION_LAPB, &c.lapb},
        {3, &wan_file, SECTION_LLC2, &c.llc2},
        {5, &mlp_file, SECTION_LAPB, &c.lapb},
        {5, &mlp_file, SECTION_LLC2, &c.llc2},
    };
    for (const row &r : rows) {
        SCOPED_TRACE("link " + std::to_string(r.number) + ", code " + std::to_string(r.code));
        put_link(r.number, *r.file);
        EXPECT_EQ(x25_update_link(r.number, r.section, r.code), 1);
        EXPECT_EQ(link_text(r.number), *r.file);
        EXPECT_EQ(x25_update_file(link_path(r.number).c_str(), r.section, r.code), 1);
        EXPECT_EQ(link_text(r.number), *r.file);
    }
    // No file at all holds neither kind.
    EXPECT_EQ(x25_update_link(8, &c.lapb, SECTION_LAPB), 1);
    EXPECT_EQ(x25_update_link(8, &c.llc2, SECTION_LLC2), 1);
    EXPECT_FALSE(std::filesystem::exists(link_path(8)));
}

// ---- WAN ----------------------------------------------------------------------

TEST_F(Update, WanSectionWithV25MakesNetwork25) {
    const std::string pss_file = with(wan_file, "X25_1984", "PSS");
    const std::string new_wan = with(wan_text, "\tconnect_proc\t\tNONE\n",
                                     "\tconnect_proc\t\tV25\n\tv25_callreq\t\t12.0\n");
    put_link(3, pss_file);
    read_new(ident + wan_link + new_wan);

    EXPECT_EQ(x25_update_link(3, &c.wan, SECTION_WAN), 0);

    EXPECT_EQ(dated(link_text(3)), dated(ident + wan_link + lapb_text + new_wan +
                                         with(x25_commented, "X25_1984", "X21_V25")));
    EXPECT_EQ(xs.values.network, 25);
    EXPECT_EQ(ws.values.tuning.line_speed, 64000u); // as read
}

// By file name the network number stays as read.
TEST_F(Update, WanSectionByFileNameKeepsTheNetwork) {
    const std::string pss_file = with(wan_file, "X25_1984", "PSS");
    const std::string new_wan = with(wan_text, "\tconnect_proc\t\tNONE\n",
                                     "\tconnect_proc\t\tV25\n\tv25_callreq\t\t12.0\n");
    put_link(3, pss_file);
    read_new(ident + wan_link + new_wan);

    EXPECT_EQ(x25_update_file("link_config_0003.cfg", &c.wan, SECTION_WAN), 0);

    EXPECT_EQ(dated(link_text(3)), dated(ident + wan_link + lapb_text + new_wan +
                                         with(x25_commented, "X25_1984", "PSS")));
    EXPECT_EQ(xs.values.network, 7);
}

// By number the network number follows the new WAN section: a connect
// procedure gives 25, none the number of the link's class (a LAN link is of
// the "other" class as far as this rule goes).
TEST_F(Update, WanSectionNetworkNumbers) {
    struct row {
        int number;
        const std::string *file;
        std::string_view connect_proc;
        int expected;
    };
    const std::vector<row> rows = {
        {3, &wan_file, "X21", 25}, {3, &wan_file, "V25", 25}, {3, &wan_file, "NONE", 3},
        {5, &mlp_file, "NONE", 2}, {5, &mlp_file, "X21", 25}, {4, &lan_file, "NONE", 2},
    };
    for (const row &r : rows) {
        SCOPED_TRACE("link " + std::to_string(r.number) + ", " + std::string(r.connect_proc));
        put_link(r.number, with_network(*r.file, "PSS"));
        read_new(ident + with(wan_text, "NONE", r.connect_proc));
        EXPECT_EQ(x25_update_link(r.number, &c.wan, SECTION_WAN), 0);
        EXPECT_EQ(xs.values.network, r.expected);
        EXPECT_TRUE(contains(link_text(r.number),
                             "\tnetwork\t\t\t" + std::string(__network_name(r.expected)) + "\n"));
    }
}

// ---- MLP ----------------------------------------------------------------------

TEST_F(Update, MlpSection) {
    const std::string new_mlp =
        with(with(mlp_text, "\tmlp_window\t10\n", "!Wider\n\n\tmlp_window\t20\t!frames\n"),
             "\tmn1_val\t\t10\n", "\tmn1_val\t\t3\n");
    const std::string new_subsections =
        with(mlp_subsections, "\tline_speed\t\t9600\n", "\tline_speed\t\t19200\n");
    for (bool by_number : {true, false}) {
        SCOPED_TRACE(by_number ? "by number" : "by name");
        put_link(5, mlp_file);
        read_new(ident + mlp_link + new_mlp + new_subsections);
        int result = by_number ? x25_update_link(5, &c.mlp, SECTION_MLP)
                               : x25_update_file(link_path(5).c_str(), &c.mlp, SECTION_MLP);
        EXPECT_EQ(result, 0);
        EXPECT_EQ(dated(link_text(5)),
                  dated(ident + mlp_link + new_mlp + new_subsections + mlp_x25));
        EXPECT_EQ(ms.values.mlp_win, 10); // as read
        ASSERT_NE(ms.values.wan[1], nullptr);
        EXPECT_EQ(ms.values.wan[1]->values.tuning.line_speed, 9600u);
    }
}

// ---- IDENTIFICATION -------------------------------------------------------------

TEST_F(Update, MissingIdentificationEntriesAreFilledByNumberOnly) {
    const std::string bare = with(with(with(wan_file, "\tPRODUCT_NAME\tQuenlark X.25\n", ""),
                                       "\tPRODUCT_VERSION\t4.1 patch 07\n", ""),
                                  "\tFILE_TYPE\tx25link\n", "");
    read_new(wan_file);

    put_link(3, bare);
    EXPECT_EQ(x25_update_link(3, &c.lapb, SECTION_LAPB), 0);
    EXPECT_EQ(dated(link_text(3)), dated(with(wan_file, "\tPRODUCT_VERSION\t4.1 patch 07\n",
                                              "\tPRODUCT_VERSION\t 4.1 patch 07\n")));
    EXPECT_STREQ(ids.product_name, "Quenlark X.25");
    EXPECT_EQ(std::string(ids.product_version, sizeof ids.product_version),
              std::string(" 4.1 patch 07\0\0", 15));
    EXPECT_STREQ(ids.file_type, "x25link");

    put_link(3, bare);
    EXPECT_EQ(x25_update_file(link_path(3).c_str(), &c.lapb, SECTION_LAPB), 0);
    EXPECT_EQ(
        dated(link_text(3)),
        dated(with(with(with(wan_file, "\tPRODUCT_NAME\tQuenlark X.25\n", "\tPRODUCT_NAME\t\n"),
                        "\tPRODUCT_VERSION\t4.1 patch 07\n", "\tPRODUCT_VERSION\t\n"),
                   "\tFILE_TYPE\tx25link\n", "\tFILE_TYPE\t\n")));
}

TEST_F(Update, IdentificationEntriesPresentAreKept) {
    const std::string other =
        with(with(wan_file, "Quenlark X.25", "Other stack"), "\tFILE_TYPE\tx25link\n", "");
    put_link(3, other);
    read_new(wan_file);

    EXPECT_EQ(x25_update_link(3, &c.lapb, SECTION_LAPB), 0);

    // The missing file type is filled in, the product name kept.
    EXPECT_EQ(dated(link_text(3)), dated(with(wan_file, "Quenlark X.25", "Other stack")));
    // A full-width version (15 characters, no terminator) is written whole.
    put_link(3, with(wan_file, "4.1 patch 07", "4.1 patch 07abc"));
    EXPECT_EQ(x25_update_link(3, &c.lapb, SECTION_LAPB), 0);
    EXPECT_TRUE(contains(link_text(3), "\tPRODUCT_VERSION\t4.1 patch 07abc\n\tFILE_TYPE\t"));
}

// ---- Comments and the static records --------------------------------------------

TEST_F(Update, CommentsAreKeptThroughRepeatedUpdates) {
    put_link(3, wan_file);
    read_new(wan_file);
    for (int round = 0; round < 3; ++round) {
        SCOPED_TRACE(round);
        EXPECT_EQ(x25_update_link(3, &c.lapb, SECTION_LAPB), 0);
        EXPECT_EQ(dated(link_text(3)), dated(wan_file));
    }
    EXPECT_STREQ(xs.keyword[index_of(__X25_functions, "send_x121_to_lan")].trailer, "not on a WAN");
    EXPECT_STREQ(ids.comments, "Test site, link configuration\n");
    EXPECT_STREQ(cs.section.comments, "The link itself\n");
    EXPECT_STREQ(ws.keyword[index_of(__WAN_functions, "max_frame")].trailer, "frame size");
    EXPECT_TRUE(qx25test::messages().empty());
}

// Every update starts from empty records: what an earlier update or the
// caller left in them is released (LeakSanitizer checks the pairs the free
// functions leave, the alias copies and the subsection records).
TEST_F(Update, EachUpdateStartsFromEmptyRecords) {
    put_link(3, wan_file);
    put_link(4, lan_file);
    put_link(5, mlp_file);
    read_new(wan_file);

    read_static(5);
    ASSERT_NE(ms.values.lapb[0], nullptr);
    ASSERT_STREQ(ms.values.lapb[0]->keyword[index_of(__LAPB_functions, "mlp_priority")].comments,
                 "Preferred line\n");
    EXPECT_EQ(x25_update_link(5, &c.x25, SECTION_X25), 0);
    ASSERT_NE(ms.values.lapb[1], nullptr);

    EXPECT_EQ(x25_update_link(4, &c.x25, SECTION_X25), 0);
    EXPECT_EQ(ms.values.lapb[0], nullptr);
    EXPECT_EQ(ms.values.wan[0], nullptr);
    EXPECT_STREQ(cs.keyword[index_of(__LINK_functions, "max_lan_conns")].trailer, "connections");
    EXPECT_EQ(cs.values.subnet.name, nullptr);

    EXPECT_EQ(x25_update_file(link_path(3).c_str(), &c.x25, SECTION_X25), 0);
    EXPECT_EQ(cs.keyword[index_of(__LINK_functions, "max_lan_conns")].trailer, nullptr);
    EXPECT_STREQ(cs.values.subnet.name, "three");
    EXPECT_STREQ(ids.product_name, "Quenlark X.25");
}

// ---- Failures -------------------------------------------------------------------

// A file that cannot be read does not stop the update: it writes what it
// has, the defaults here.
TEST_F(Update, MissingFileIsWrittenFromTheDefaults) {
    const std::string new_wan =
        with(wan_text, "\tmax_frame\t\t520\t!frame size\n", "\tmax_frame\t\t1024\n");
    read_new(ident + wan_link + new_wan);

    EXPECT_EQ(x25_update_link(6, &c.wan, SECTION_WAN), 0);

    const std::string expected = "IDENTIFICATION\n"
                                 "\tPRODUCT_NAME\tQuenlark X.25\n"
                                 "\tPRODUCT_VERSION\t 4.1 patch 07\n"
                                 "\tFILE_TYPE\tx25link\n"
                                 "\tMODIFIED_BY\ttester\n"
                                 "\tFILE_DATE\t<date>\n"
                                 "\n"
                                 "\n"
                                 "SECTION\tLINK\n"
                                 "\tdevice\t\t\n"
                                 "\tlocal_address\t\n"
                                 "\ttype\t\tWAN\n"
                                 "\tversion\t\t1988\n"
                                 "\tmode\t\tDTE\n"
                                 "\tprotocol\tLAPB\n"
                                 "\n"
                                 "SECTION\tLAPB\n" +
                                 lapb_lines + "\n" + new_wan +
                                 with(x25_plain, "X25_1984", "X25_1988");
    EXPECT_EQ(dated(link_text(6)), dated(expected));
    EXPECT_EQ(cs.values.subnet.address.snid, 6u);
}

TEST_F(Update, WriterFailureComesBackByNumberOnly) {
    // A LAN link cannot be written with an MLP section: nothing is written.
    put_link(4, lan_file);
    read_new(mlp_file);
    EXPECT_EQ(x25_update_link(4, &c.mlp, SECTION_MLP), EINVAL);
    EXPECT_EQ(link_text(4), lan_file);
    EXPECT_EQ(x25_update_file(link_path(4).c_str(), &c.mlp, SECTION_MLP), 0);
    EXPECT_EQ(link_text(4), lan_file);

    // A directory in the place of the file: read and write both fail.
    std::filesystem::create_directories(link_path(7));
    EXPECT_EQ(x25_update_link(7, &c.wan, SECTION_WAN), EISDIR);
    EXPECT_EQ(x25_update_file(link_path(7).c_str(), &c.wan, SECTION_WAN), 0);
    EXPECT_TRUE(std::filesystem::is_directory(link_path(7)));
}

TEST_F(Update, RefusedArgumentsTouchNothing) {
    put_link(3, wan_file);
    read_static(3);
    read_new(wan_file);
    const char *alias = cs.values.subnet.name;

    EXPECT_EQ(x25_update_link(3, nullptr, SECTION_LINK), EINVAL);
    EXPECT_EQ(x25_update_link(-1, &c.link, SECTION_LINK), EINVAL);
    EXPECT_EQ(x25_update_link(255, &c.link, SECTION_LINK), EINVAL);
    EXPECT_EQ(x25_update_link(INT32_MIN, &c.wan, SECTION_WAN), EINVAL);
    EXPECT_EQ(x25_update_file(link_path(3).c_str(), nullptr, SECTION_WAN), 0);
    EXPECT_EQ(x25_update_file(nullptr, &c.wan, SECTION_WAN), 0);

    EXPECT_EQ(link_text(3), wan_file);
    EXPECT_EQ(cs.values.subnet.name, alias);
    EXPECT_FALSE(std::filesystem::exists(link_path(255)));
}

TEST_F(Update, HighestLinkNumber) {
    read_new(wan_file);
    EXPECT_EQ(x25_update_link(254, &c.wan, SECTION_WAN), 0);
    EXPECT_TRUE(contains(link_text(254), "SECTION\tWAN\n"));
}

} // namespace
