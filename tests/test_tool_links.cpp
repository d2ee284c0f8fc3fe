// The qx25 commands that work on whole links: links, pvcs, show and set,
// compared byte for byte.
#include "config_tree.h"
#include "run_tool.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <string>
#include <string_view>

using qx25test::ConfigTree;
using qx25test::read_file;
using qx25test::run_tool;

namespace {

const char *const boardconf = "WAN_DEVICE\n\tdevice wan\n\tlines 2\n"
                              "LAN_DEVICE\n\tdevice eth\n\tlines 1\n";

const char *const profiles = "1\tX25_LLC\t\tLAN network\n"
                             "2\tX25_1988\tPublic network, 1988\n"
                             "3\tX25_1984\tPublic network, 1984\n"
                             "4\tX25_1980\tPublic network, 1980\n"
                             "25\tX21_V25\t\tCall procedure\n";

// A leased line, written by hand: comments before the block, before a
// section, before keywords and behind them.
const char *const wan_link = "! Link 2: leased line to the public network.\n"
                             "IDENTIFICATION\n"
                             "\tPRODUCT_NAME\tQuenlark X.25\n"
                             "\tPRODUCT_VERSION\t 4.1 patch 07\n"
                             "\tFILE_TYPE\tx25link\n"
                             "\tMODIFIED_BY\tnetadm\n"
                             "\tFILE_DATE\tMon Nov  2 16:40:03 2026\n"
                             "\n"
                             "! The hardware and the addresses.\n"
                             "SECTION\tLINK\n"
                             "\tdevice\t\twan0\n"
                             "\tlocal_address\t23421234567\n"
                             "\tfull_address\t2.23421234567\n"
                             "\ttype\t\tWAN\n"
                             "\tversion\t\t1984\n"
                             "\tmode\t\tDTE\n"
                             "\tprotocol\tLAPB\n"
                             "\talias\t\tpdn\t! the public data network\n"
                             "\tdescription\tLeased line to the PDN\n"
                             "\n"
                             "SECTION\tLAPB\n"
                             "! As the carrier asks.\n"
                             "\tn2_count\t10\n"
                             "\tt1_timer\t3.0\t! the carrier's value\n"
                             "\tmax_iframe_len\t135\n"
                             "\n"
                             "SECTION\tWAN\n"
                             "\tline_speed\t64000\t! 64k leased line\n"
                             "\tmax_frame\t520\n"
                             "\tconnect_proc\tNONE\n"
                             "\n"
                             "SECTION\tX25\n"
                             "\tnetwork\t\tX25_1984\n"
                             "\tplpmode\t\tNormal\n"
                             "! Two PVCs and sixteen two-way channels.\n"
                             "\tpvc_range\t1-2\n"
                             "\ttwo_range\t16-31\n"
                             "\tmodulo\t\t8\n"
                             "\tfast_select\tY\t! callers may use fast select\n"
                             "\tdnic\t\t2342\n";

const char *const lan_link = "IDENTIFICATION\n"
                             "\tPRODUCT_NAME\tQuenlark X.25\n"
                             "SECTION\tLINK\n"
                             "\tdevice\t\teth0\n"
                             "\tlocal_address\t0800200A1B2C\n"
                             "\tfull_address\t1.0800200A1B2C04\n"
                             "\ttype\t\tLAN\n"
                             "\tprotocol\tLLC2\n"
                             "\talias\t\tsitelan\n"
                             "\tdescription\tSite LAN\n"
                             "\tmax_lan_conns\t32\n"
                             "SECTION\tLLC2\n"
                             "\tn2_count\t10\n"
                             "SECTION\tX25\n"
                             "\tnetwork\t\tX25_LLC\n";

// Two lines, the DCE side, no alias and no description.
const char *const mlp_link = "IDENTIFICATION\n"
                             "\tPRODUCT_NAME\tQuenlark X.25\n"
                             "SECTION\tLINK\n"
                             "\tdevice\t\twan1 wan2\n"
                             "\tfull_address\t3.23421234999\n"
                             "\ttype\t\tWAN\n"
                             "\tprotocol\tMLAPB\n"
                             "\tmode\t\tDCE\n"
                             "SECTION\tMLP\n"
                             "\tmlp_window\t16\n"
                             "SUBSECTION\tLAPB\n"
                             "SUBSECTION\tWAN\n"
                             "SUBSECTION\tLAPB\n"
                             "SUBSECTION\tWAN\n"
                             "SECTION\tX25\n"
                             "\tnetwork\t\tX25_1988\n";

// Circuits of links 2 and 3, one for a link that is not configured and a
// line that is not a circuit.
const char *const pvcmapconf = "# link lcn pktsize pktsize window window\n"
                               "2\t001\t128\t128\t2\t2\n"
                               "2 2 256 512 3 4\n"
                               "\n"
                               "3\t1F\t4096\t16\t7\t7\n"
                               "9\t001\t128\t128\t2\t2\n"
                               "2 003 128\n";

// The leased line as the library writes it, less its FILE_DATE and
// MODIFIED_BY lines: two empty lines end the identification block, and a
// comment that ended in a line break is followed by an empty line.
const std::string wan_link_written = "! Link 2: leased line to the public network.\n"
                                     "\n"
                                     "IDENTIFICATION\n"
                                     "\tPRODUCT_NAME\tQuenlark X.25\n"
                                     "\tPRODUCT_VERSION\t4.1 patch 07\n"
                                     "\tFILE_TYPE\tx25link\n"
                                     "\n"
                                     "\n"
                                     "! The hardware and the addresses.\n"
                                     "\n"
                                     "SECTION\tLINK\n"
                                     "\tdevice\t\twan0 \n"
                                     "\tlocal_address\t23421234567\n"
                                     "\tfull_address\t2.23421234567\n"
                                     "\ttype\t\tWAN\n"
                                     "\tversion\t\t1984\n"
                                     "\tmode\t\tDTE\n"
                                     "\tprotocol\tLAPB\n"
                                     "\talias\t\tpdn\t! the public data network\n"
                                     "\tdescription\tLeased line to the PDN\n"
                                     "\n"
                                     "SECTION\tLAPB\n"
                                     "! As the carrier asks.\n"
                                     "\n"
                                     "\tn2_count\t\t10\n"
                                     "\tt1_timer\t\t3.0\t! the carrier's value\n"
                                     "\tpf_timer  \t\t0.7\n"
                                     "\treject_timer\t\t2.5\n"
                                     "\tbusy_timer\t\t10.0\n"
                                     "\tidle_timer\t\t25.0\n"
                                     "\trr_ack_delay\t\t0.4\n"
                                     "\tunack_max\t\t3\n"
                                     "\tlocal_win\t\t7\n"
                                     "\tlocal_probe\t\t0\n"
                                     "\tmax_iframe_len\t\t135\n"
                                     "\tign_ua_error\t\tN\n"
                                     "\tfrmr_frmr_error\t\tN\n"
                                     "\tfrmr_invrsp_error\tN\n"
                                     "\tsframe_pbit\t\tN\n"
                                     "\tno_dm_adm\t\tN\n"
                                     "\tiso8882  \t\tN\n"
                                     "\tsabm_in_x32  \t\tN\n"
                                     "\tinitial_down  \t\tN\n"
                                     "\n"
                                     "SECTION\tWAN\n"
                                     "\tline_speed\t\t64000\t! 64k leased line\n"
                                     "\tmax_frame\t\t520\n"
                                     "\tconnect_proc\t\tNONE\n"
                                     "\n"
                                     "SECTION\tX25\n"
                                     "\tnetwork\t\t\tX25_1984\n"
                                     "\tplpmode\t\t\tNormal\n"
                                     "! Two PVCs and sixteen two-way channels.\n"
                                     "\n"
                                     "\tpvc_range\t\t1-2\n"
                                     "\tinc_range\t\t0-0\n"
                                     "\tout_range\t\t0-0\n"
                                     "\ttwo_range\t\t16-31\n"
                                     "\tmodulo\t\t\t8\n"
                                     "\tuse_negotiation\t\tY\n"
                                     "\tbar_negotiation\t\tN\n"
                                     "\tsrc_addr_control\t0\n"
                                     "\taccept_revchg\t\tN\n"
                                     "\tprev_chg\t\tN\n"
                                     "\tfast_select\t\tY\t! callers may use fast select\n"
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
                                     "\tdnic\t\t\t2342\n"
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

// The text without its FILE_DATE and MODIFIED_BY lines.
std::string without_date_and_user(std::string_view text) {
    std::string kept;
    while (!text.empty()) {
        std::size_t end = text.find('\n');
        std::string_view line =
            text.substr(0, end == std::string_view::npos ? text.size() : end + 1);
        text.remove_prefix(line.size());
        if (line.starts_with("\tFILE_DATE\t") || line.starts_with("\tMODIFIED_BY\t")) continue;
        kept += line;
    }
    return kept;
}

bool has_line(const std::string &text, const std::string &line) {
    return text.find("\n" + line + "\n") != std::string::npos;
}

std::string replaced(std::string text, const std::string &from, const std::string &to) {
    std::size_t at = text.find(from);
    EXPECT_NE(at, std::string::npos) << from;
    if (at != std::string::npos) text.replace(at, from.size(), to);
    return text;
}

bool exists(const std::string &path) {
    return std::filesystem::exists(path);
}

class ToolLinks : public testing::Test {
  protected:
    void SetUp() override {
        ::setenv("LC_ALL", "C", 1);
        ::unsetenv("NLSPATH");
        ::setenv("LOGNAME", "tester", 1);
    }

    // Boardconf, the network profiles and links 1, 2 and 3.
    void write_links() {
        tree.write("config/boardconf", boardconf);
        tree.write("lib/world_networks.profile", profiles);
        lan_path = tree.write("config/config/link_config_0001.cfg", lan_link);
        wan_path = tree.write("config/config/link_config_0002.cfg", wan_link);
        mlp_path = tree.write("config/config/link_config_0003.cfg", mlp_link);
        tree.write("config/config/notes.txt", "not a link file\n");
    }

    ConfigTree tree;
    std::string lan_path, wan_path, mlp_path;
};

// ---- help -------------------------------------------------------------------------

TEST_F(ToolLinks, LinksHelp) {
    auto result = run_tool({"links", "--help"});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.err, "");
    EXPECT_EQ(result.out,
              "usage: qx25 links [--json]\n"
              "\n"
              "Finds every link file of $X25CONFIGFILES/config and prints one line per\n"
              "link, in link order: number, alias, type, X.25 version, frame protocol,\n"
              "DTE or DCE side, devices, full address, number of PVCs and description.\n"
              "A file that cannot be read, or that names a device another link uses, is\n"
              "reported and left out; the exit status is then 1.\n"
              "\n"
              "  --json   print the records as one JSON object (see qx25(1))\n");
}

TEST_F(ToolLinks, PvcsHelp) {
    auto result = run_tool({"pvcs", "-h"});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.out,
              "usage: qx25 pvcs [--json] [LINK]\n"
              "\n"
              "Prints the PVCs that $X25CONFIGFILES/pvcmapconf gives the configured links,\n"
              "or those of link number LINK: link, logical channel number (hexadecimal),\n"
              "the two packet sizes in bytes and the two window sizes. The exit status is\n"
              "1 when a link file was left out (see links) or the library reported a\n"
              "problem.\n"
              "\n"
              "  --json   print the records as one JSON object (see qx25(1))\n");
}

TEST_F(ToolLinks, ShowHelp) {
    auto result = run_tool({"show", "--help"});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.out,
              "usage: qx25 show [--json] LINK|FILE\n"
              "\n"
              "Reads a link configuration, given by link number or by file name as for\n"
              "check, and prints it in the file format as the library writes it: every\n"
              "value, defaults included, with the comments of the file. What the reader\n"
              "reported is shown on standard error.\n"
              "\n"
              "  --json   print the records as one JSON object (see qx25(1))\n");
}

TEST_F(ToolLinks, SetHelp) {
    // Help is asked for where options stand: before the operands.
    auto result = run_tool({"set", "--dry-run", "--help"});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.out,
              "usage: qx25 set [--dry-run] LINK SECTION KEYWORD VALUE\n"
              "\n"
              "Gives KEYWORD of SECTION of link number LINK the VALUE by changing the value\n"
              "on the keyword's line of the link's file, or by adding a line for it at the\n"
              "end of the section; every other byte of the file stays as it is. SECTION is\n"
              "link, x25, llc2, lapb, wan or mlp, or lapb1 to lapb5 and wan1 to wan5 for the\n"
              "subsections of SECTION MLP in file order.\n"
              "\n"
              "The VALUE is read by the library as from the file; nothing is written when\n"
              "it reports a problem with it or passes over it, when it is not wholly a\n"
              "value of the keyword (the library would read it as another), when the\n"
              "link would name a device another link uses, or when the file holds the\n"
              "value already. The new file must read as the old one with that value and\n"
              "no other change. It replaces the old one atomically and is read back; when\n"
              "it does not read as planned the previous file is put back.\n"
              "\n"
              "The first change keeps the file as it was as FILE.BAK, which is never\n"
              "touched again; each later change keeps the previous file as FILE.BAK.1,\n"
              "FILE.BAK.2, ..., and the 10 newest of these numbered backups are kept.\n"
              "\n"
              "  --dry-run   print the change as a unified diff and write nothing\n");
}

TEST_F(ToolLinks, DiffHelp) {
    auto result = run_tool({"diff", "--help"});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.out,
              "usage: qx25 diff LINK|FILE\n"
              "\n"
              "Reads a link configuration, given as for show, and prints as a unified diff\n"
              "how the file that the library would write for it (see show) differs from\n"
              "the file as it is: the values it adds, the comments and lines it changes or\n"
              "drops. Nothing is written.\n");
}

// ---- links ------------------------------------------------------------------------

TEST_F(ToolLinks, LinksListsTheLinksInOrder) {
    write_links();
    tree.write("config/pvcmapconf", pvcmapconf);
    auto result = run_tool({"links"});
    // A circuit the library drops is a problem of the configuration.
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.err, "qx25 links: Found PVC for unconfigured link 9, skipped\n");
    EXPECT_EQ(result.out,
              "LINK  ALIAS    TYPE  VERSION  PROTOCOL  MODE  DEVICES    ADDRESS           PVCS"
              "  DESCRIPTION\n"
              "   1  sitelan  LAN   1988     LLC2      DTE   eth0       1.0800200A1B2C04     0"
              "  Site LAN\n"
              "   2  pdn      WAN   1984     LAPB      DTE   wan0       2.23421234567        2"
              "  Leased line to the PDN\n"
              "   3  -        MLP   1988     MLAPB     DCE   wan1,wan2  3.23421234999        1\n");
}

TEST_F(ToolLinks, LinksLeavesOutALinkWhoseDeviceIsTaken) {
    write_links();
    // Link 4 names the first line of link 3 again.
    tree.write("config/config/link_config_0004.cfg",
               "IDENTIFICATION\n\tPRODUCT_NAME\tQuenlark X.25\n"
               "SECTION\tLINK\n\tdevice\t\twan1\n\tprotocol\tLAPB\n");
    auto result = run_tool({"links"});
    EXPECT_EQ(result.status, 1);
    // Which of the two files is refused depends on the directory's order.
    auto left_out = [&](const std::string &name) {
        return "qx25 links: Duplicate device in file " + name +
               "\nqx25 links: " + tree.config_dir() + "/config/" + name + " is left out\n";
    };
    EXPECT_TRUE(result.err == left_out("link_config_0004.cfg") ||
                result.err == left_out("link_config_0003.cfg"))
        << result.err;
    EXPECT_EQ(result.out.find("   4  -        WAN") == std::string::npos,
              result.out.find("   3  -        MLP") != std::string::npos)
        << result.out;
}

TEST_F(ToolLinks, LinksWithoutBoardconfFails) {
    auto result = run_tool({"links"});
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.out, "");
    EXPECT_EQ(result.err, "qx25 links: Unable to read boardconf file\n");
}

TEST_F(ToolLinks, LinksWithoutLinkFiles) {
    tree.write("config/boardconf", boardconf);
    auto result = run_tool({"links"});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.err, "");
    EXPECT_EQ(result.out, "no links in " + tree.config_dir() + "/config\n");
}

TEST_F(ToolLinks, LinksWhoseFilesCannotBeReadFails) {
    tree.write("config/boardconf", boardconf);
    tree.write("config/config/link_config_0005.cfg", "SECTION\tLINK\n");
    auto result = run_tool({"links"});
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.out, "");
    EXPECT_EQ(result.err, "qx25 links: Error reading IDENTIFICATION section from file " +
                              tree.config_dir() +
                              "/config/link_config_0005.cfg, line 1\n"
                              "qx25 links: Error reading file link_config_0005.cfg\n");
}

TEST_F(ToolLinks, LinksTakesNoArguments) {
    auto result = run_tool({"links", "2"});
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.err,
              "qx25 links: no arguments are taken\nqx25 links: usage: qx25 links [--json]\n");
}

// ---- pvcs -------------------------------------------------------------------------

TEST_F(ToolLinks, PvcsOfAllLinks) {
    write_links();
    tree.write("config/pvcmapconf", pvcmapconf);
    auto result = run_tool({"pvcs"});
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.err, "qx25 pvcs: Found PVC for unconfigured link 9, skipped\n");
    EXPECT_EQ(result.out, "LINK  LCN  PKTSIZE1  PKTSIZE2  WINDOW1  WINDOW2\n"
                          "   2  001       128       128        2        2\n"
                          "   2  002       256       512        3        4\n"
                          "   3  01F      4096        16        7        7\n");
}

TEST_F(ToolLinks, PvcsOfOneLink) {
    write_links();
    tree.write("config/pvcmapconf", pvcmapconf);
    auto result = run_tool({"pvcs", "2"});
    EXPECT_EQ(result.status, 1); // the circuit of link 9 is dropped
    EXPECT_EQ(result.out, "LINK  LCN  PKTSIZE1  PKTSIZE2  WINDOW1  WINDOW2\n"
                          "   2  001       128       128        2        2\n"
                          "   2  002       256       512        3        4\n");
}

TEST_F(ToolLinks, PvcsOfALinkWithoutCircuits) {
    write_links();
    tree.write("config/pvcmapconf", pvcmapconf);
    auto result = run_tool({"pvcs", "1"});
    EXPECT_EQ(result.status, 1); // the circuit of link 9 is dropped
    EXPECT_EQ(result.out, "no PVCs on link 1\n");
}

TEST_F(ToolLinks, PvcsWithoutPvcmapconf) {
    write_links();
    auto result = run_tool({"pvcs"});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.err, "");
    EXPECT_EQ(result.out, "no PVCs in " + tree.config_dir() + "/pvcmapconf\n");
}

TEST_F(ToolLinks, PvcsOfALinkThatIsNotConfigured) {
    write_links();
    auto result = run_tool({"pvcs", "7"});
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.out, "");
    EXPECT_EQ(result.err, "qx25 pvcs: link 7 is not configured\n");
}

TEST_F(ToolLinks, PvcsUsageErrors) {
    auto result = run_tool({"pvcs", "two"});
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.err, "qx25 pvcs: LINK must be a link number from 0 to 254\nqx25 pvcs: usage: "
                          "qx25 pvcs [--json] [LINK]\n");
    result = run_tool({"pvcs", "2", "3"});
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(
        result.err,
        "qx25 pvcs: at most one LINK is taken\nqx25 pvcs: usage: qx25 pvcs [--json] [LINK]\n");
}

// ---- show -------------------------------------------------------------------------

TEST_F(ToolLinks, ShowPrintsTheLinkAsTheLibraryWritesIt) {
    write_links();
    auto result = run_tool({"show", "2"});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.err, "");
    EXPECT_EQ(without_date_and_user(result.out), wan_link_written);
    EXPECT_TRUE(has_line(result.out, "\tMODIFIED_BY\ttester")) << result.out;
    EXPECT_TRUE(result.out.find("\n\tFILE_DATE\t") != std::string::npos) << result.out;
    EXPECT_EQ(read_file(wan_path), wan_link); // only read
}

TEST_F(ToolLinks, ShowTakesAFileName) {
    write_links();
    std::string path = tree.write("elsewhere/leased.cfg", wan_link);
    auto by_path = run_tool({"show", path});
    EXPECT_EQ(by_path.status, 0);
    EXPECT_EQ(without_date_and_user(by_path.out), wan_link_written);
    // A bare name is looked up in the config directory.
    auto by_name = run_tool({"show", "link_config_0002.cfg"});
    EXPECT_EQ(by_name.status, 0);
    EXPECT_EQ(without_date_and_user(by_name.out), wan_link_written);
}

TEST_F(ToolLinks, ShowWritesTheSectionsOfTheLinksKind) {
    write_links();
    auto lan = run_tool({"show", "1"});
    EXPECT_EQ(lan.status, 0);
    EXPECT_TRUE(has_line(lan.out, "SECTION\tLLC2")) << lan.out;
    EXPECT_TRUE(has_line(lan.out, "\tmax_lan_conns\t32")) << lan.out;
    EXPECT_FALSE(has_line(lan.out, "SECTION\tLAPB")) << lan.out;
    auto mlp = run_tool({"show", "3"});
    EXPECT_EQ(mlp.status, 0);
    EXPECT_TRUE(has_line(mlp.out, "SECTION\tMLP")) << mlp.out;
    EXPECT_TRUE(has_line(mlp.out, "\tmode\t\tDCE")) << mlp.out;
    EXPECT_FALSE(has_line(mlp.out, "SECTION\tLAPB")) << mlp.out;
    EXPECT_FALSE(has_line(mlp.out, "SECTION\tWAN")) << mlp.out;
}

TEST_F(ToolLinks, ShowPassesOnWhatTheReaderReported) {
    write_links();
    std::string path =
        tree.write("odd.cfg", std::string(lan_link) + "SECTION\tLINK\n\tcolour\tred\n");
    auto result = run_tool({"show", path});
    // Shown, but not as the file says: the exit status tells.
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.err, "qx25 show: Unknown LINK Keyword <colour>, skipped\n");
    EXPECT_TRUE(has_line(result.out, "\talias\t\tsitelan")) << result.out;
}

TEST_F(ToolLinks, ShowOfALinkThatDoesNotExist) {
    write_links();
    auto result = run_tool({"show", "7"});
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.out, "");
    EXPECT_EQ(result.err, "qx25 show: Error opening file " + tree.config_dir() +
                              "/config/link_config_0007.cfg: No such file or directory\n");
}

TEST_F(ToolLinks, ShowNeedsOneLinkOrFile) {
    auto result = run_tool({"show"});
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(
        result.err,
        "qx25 show: one LINK or FILE is needed\nqx25 show: usage: qx25 show [--json] LINK|FILE\n");
    result = run_tool({"show", "123456"});
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.err, "qx25 show: '123456' names no link file\n");
}

// ---- set --------------------------------------------------------------------------

TEST_F(ToolLinks, SetChangesOnlyTheValueOfTheKeywordsLine) {
    write_links();
    auto result = run_tool({"set", "2", "LAPB", "T1_Timer", "4.5"});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.err, "");
    EXPECT_EQ(result.out, "link 2: LAPB t1_timer 3.0 -> 4.5 (line 24); previous file kept as " +
                              wan_path + ".BAK\n");
    // The trailing comment, its tab and every other line stay.
    EXPECT_EQ(read_file(wan_path),
              replaced(wan_link, "\tt1_timer\t3.0\t! the", "\tt1_timer\t4.5\t! the"));
    EXPECT_EQ(read_file(wan_path + ".BAK"), wan_link);
    // The other links are left alone.
    EXPECT_EQ(read_file(lan_path), lan_link);
    EXPECT_EQ(read_file(mlp_path), mlp_link);
}

TEST_F(ToolLinks, SetAddsALineAtTheEndOfTheSection) {
    write_links();
    auto result = run_tool({"set", "2", "lapb", "pf_timer", "0.9"});
    EXPECT_EQ(result.status, 0) << result.err;
    EXPECT_EQ(result.out, "link 2: LAPB pf_timer 0.9 added (line 26); previous file kept as " +
                              wan_path + ".BAK\n");
    EXPECT_EQ(read_file(wan_path), replaced(wan_link, "\tmax_iframe_len\t135\n",
                                            "\tmax_iframe_len\t135\n\tpf_timer\t0.9\n"));
}

TEST_F(ToolLinks, SetAddsALineToTheLastSectionOfTheFile) {
    write_links();
    auto result = run_tool({"set", "2", "x25", "bar_incall", "y"});
    EXPECT_EQ(result.status, 0) << result.err;
    EXPECT_EQ(read_file(wan_path), std::string(wan_link) + "\tbar_incall\ty\n");
}

TEST_F(ToolLinks, SetDryRunPrintsTheChangeAndWritesNothing) {
    write_links();
    auto result = run_tool({"set", "--dry-run", "2", "lapb", "t1_timer", "4.5"});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.err, "");
    EXPECT_EQ(result.out, "--- " + wan_path + "\n+++ " + wan_path +
                              "\n"
                              "@@ -21,7 +21,7 @@\n"
                              " SECTION\tLAPB\n"
                              " ! As the carrier asks.\n"
                              " \tn2_count\t10\n"
                              "-\tt1_timer\t3.0\t! the carrier's value\n"
                              "+\tt1_timer\t4.5\t! the carrier's value\n"
                              " \tmax_iframe_len\t135\n"
                              " \n"
                              " SECTION\tWAN\n");
    EXPECT_EQ(read_file(wan_path), wan_link);
    EXPECT_FALSE(exists(wan_path + ".BAK"));
    auto added = run_tool({"set", "--dry-run", "2", "x25", "bar_incall", "y"});
    EXPECT_EQ(added.out, "--- " + wan_path + "\n+++ " + wan_path +
                             "\n"
                             "@@ -38,3 +38,4 @@\n"
                             " \tmodulo\t\t8\n"
                             " \tfast_select\tY\t! callers may use fast select\n"
                             " \tdnic\t\t2342\n"
                             "+\tbar_incall\ty\n");
}

TEST_F(ToolLinks, SetTheValueTheFileHoldsAlreadyWritesNothing) {
    write_links();
    auto result = run_tool({"set", "2", "lapb", "t1_timer", "3"});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.err, "");
    EXPECT_EQ(result.out, "link 2: LAPB t1_timer is 3.0 already; file not changed\n");
    // A keyword without a line of its own, at its default.
    auto by_default = run_tool({"set", "2", "lapb", "pf_timer", "0.7"});
    EXPECT_EQ(by_default.status, 0);
    EXPECT_EQ(by_default.out,
              "link 2: LAPB pf_timer has that value already (by default); file not changed\n");
    // A network given by its number.
    auto network = run_tool({"set", "2", "x25", "network", "3"});
    EXPECT_EQ(network.status, 0);
    EXPECT_EQ(network.out, "link 2: X25 network is X25_1984 already; file not changed\n");
    EXPECT_EQ(read_file(wan_path), wan_link);
    EXPECT_FALSE(exists(wan_path + ".BAK"));
}

TEST_F(ToolLinks, SetANamedNetwork) {
    write_links();
    auto result = run_tool({"set", "2", "x25", "network", "X25_1988"});
    EXPECT_EQ(result.status, 0) << result.err;
    EXPECT_EQ(result.out, "link 2: X25 network X25_1984 -> X25_1988 (line 33); previous file "
                          "kept as " +
                              wan_path + ".BAK\n");
    EXPECT_EQ(read_file(wan_path),
              replaced(wan_link, "\tnetwork\t\tX25_1984\n", "\tnetwork\t\tX25_1988\n"));
}

TEST_F(ToolLinks, SetReportsTheReadersMessageAndWritesNothing) {
    write_links();
    auto result = run_tool({"set", "2", "x25", "t20value", "9999"});
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.out, "");
    EXPECT_EQ(result.err, "qx25 set: Timer value out of range, 200.0 assumed\n"
                          "qx25 set: link 2 not changed\n");
    EXPECT_EQ(read_file(wan_path), wan_link);
    EXPECT_FALSE(exists(wan_path + ".BAK"));
}

TEST_F(ToolLinks, SetRefusesAValueTheReaderPassesOverSilently) {
    write_links();
    auto result = run_tool({"set", "2", "lapb", "n2_count", "99999"});
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.err, "qx25 set: link 2 not changed: the reader passes over '99999' for "
                          "n2_count (out of range, not valid, or of no effect on this link)\n");
    // The version of a LAN link is passed over whatever it is.
    auto version = run_tool({"set", "1", "link", "version", "1984"});
    EXPECT_EQ(version.status, 1);
    EXPECT_EQ(version.err, "qx25 set: link 1 not changed: the reader passes over '1984' for "
                           "version (out of range, not valid, or of no effect on this link)\n");
    EXPECT_EQ(read_file(wan_path), wan_link);
    EXPECT_EQ(read_file(lan_path), lan_link);
    EXPECT_FALSE(exists(wan_path + ".BAK"));
}

TEST_F(ToolLinks, SetRefusesAValueThatMakesTheFileReadWithAProblem) {
    write_links();
    // Two devices ask for an MLP protocol, and the file goes on with LAPB.
    auto result = run_tool({"set", "2", "link", "device", "wan0,wan1"});
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.err, "qx25 set: Links with multiple devices must use MLP protocol\n"
                          "qx25 set: link 2 not changed\n");
    EXPECT_EQ(read_file(wan_path), wan_link);
}

TEST_F(ToolLinks, SetRefusesAnUnknownKeywordSectionOrValue) {
    write_links();
    const std::string usage = "qx25 set: usage: qx25 set [--dry-run] LINK SECTION KEYWORD VALUE\n";
    auto keyword = run_tool({"set", "2", "lapb", "colour", "red"});
    EXPECT_EQ(keyword.status, 2);
    EXPECT_EQ(keyword.err, "qx25 set: 'colour' is not a keyword of LAPB\n" + usage);
    // A keyword of another section is no keyword of this one.
    auto other = run_tool({"set", "2", "wan", "t1_timer", "4"});
    EXPECT_EQ(other.status, 2);
    EXPECT_EQ(other.err, "qx25 set: 't1_timer' is not a keyword of WAN\n" + usage);
    const std::string sections = "': link, x25, llc2, lapb, wan, mlp, lapb1 to lapb5 or wan1 to "
                                 "wan5\n";
    for (const char *name : {"pad", "lapb6", "x256", "mlp1", "lapb0"}) {
        auto section = run_tool({"set", "2", name, "t1_timer", "4"});
        EXPECT_EQ(section.status, 2) << name;
        EXPECT_EQ(section.err, "qx25 set: unknown section '" + std::string(name) + sections + usage)
            << name;
    }
    auto comment = run_tool({"set", "2", "link", "alias", "a!b"});
    EXPECT_EQ(comment.status, 2);
    EXPECT_EQ(comment.err, "qx25 set: a VALUE cannot hold '!' or a line break\n" + usage);
    auto blank = run_tool({"set", "2", "link", "alias", "pdn "});
    EXPECT_EQ(blank.status, 2);
    EXPECT_EQ(blank.err, "qx25 set: a VALUE cannot begin or end with a blank or a tab\n" + usage);
    EXPECT_EQ(read_file(wan_path), wan_link);
    EXPECT_FALSE(exists(wan_path + ".BAK"));
}

TEST_F(ToolLinks, SetRefusesASectionTheFileDoesNotHave) {
    write_links();
    auto lan = run_tool({"set", "1", "lapb", "n2_count", "5"});
    EXPECT_EQ(lan.status, 1);
    EXPECT_EQ(lan.err, "qx25 set: link 1 not changed: its file has no SECTION LAPB\n");
    auto mlp = run_tool({"set", "3", "wan", "max_frame", "1024"});
    EXPECT_EQ(mlp.status, 1);
    EXPECT_EQ(mlp.err, "qx25 set: link 3 not changed: its file has no SECTION WAN\n");
    auto third = run_tool({"set", "3", "lapb3", "n2_count", "5"});
    EXPECT_EQ(third.status, 1);
    EXPECT_EQ(third.err,
              "qx25 set: link 3 not changed: its SECTION MLP has no LAPB subsection 3\n");
    EXPECT_EQ(read_file(lan_path), lan_link);
    EXPECT_EQ(read_file(mlp_path), mlp_link);
}

TEST_F(ToolLinks, SetTheSectionOfALanLinkAndOfAnMlpLink) {
    write_links();
    auto llc2 = run_tool({"set", "1", "llc2", "n2_count", "12"});
    EXPECT_EQ(llc2.status, 0) << llc2.err;
    EXPECT_EQ(read_file(lan_path), replaced(lan_link, "\tn2_count\t10\n", "\tn2_count\t12\n"));
    auto mlp = run_tool({"set", "3", "mlp", "mlp_window", "8"});
    EXPECT_EQ(mlp.status, 0) << mlp.err;
    EXPECT_EQ(read_file(mlp_path), replaced(mlp_link, "\tmlp_window\t16\n", "\tmlp_window\t8\n"));
}

TEST_F(ToolLinks, SetAKeywordOfAnMlpSubsection) {
    write_links();
    auto lapb = run_tool({"set", "3", "LAPB2", "n2_count", "4"});
    EXPECT_EQ(lapb.status, 0) << lapb.err;
    EXPECT_EQ(lapb.out, "link 3: LAPB subsection 2 n2_count 4 added (line 14); previous file kept "
                        "as " +
                            mlp_path + ".BAK\n");
    std::string expected = replaced(mlp_link, "SUBSECTION\tWAN\nSUBSECTION\tLAPB\n",
                                    "SUBSECTION\tWAN\nSUBSECTION\tLAPB\n\tn2_count\t4\n");
    EXPECT_EQ(read_file(mlp_path), expected);
    auto wan = run_tool({"set", "3", "wan1", "line_speed", "9600"});
    EXPECT_EQ(wan.status, 0) << wan.err;
    EXPECT_EQ(read_file(mlp_path),
              replaced(expected, "SUBSECTION\tWAN\nSUBSECTION\tLAPB\n\tn2_count",
                       "SUBSECTION\tWAN\n\tline_speed\t9600\nSUBSECTION\tLAPB\n\tn2_count"));
    // The priority of the subsection lives in the link record.
    auto priority = run_tool({"set", "3", "lapb1", "mlp_priority", "3"});
    EXPECT_EQ(priority.status, 0) << priority.err;
    EXPECT_NE(read_file(mlp_path).find("SUBSECTION\tLAPB\n\tmlp_priority\t3\nSUBSECTION\tWAN\n"),
              std::string::npos)
        << read_file(mlp_path);
}

TEST_F(ToolLinks, SetAnX32Keyword) {
    write_links();
    auto result = run_tool({"set", "2", "x25", "x25_x32_identity", "1234"});
    EXPECT_EQ(result.status, 0) << result.err;
    std::string expected = std::string(wan_link) + "\tx25_x32_identity\t1234\n";
    EXPECT_EQ(read_file(wan_path), expected);
    // A file with X.32 keywords takes other changes too.
    auto again = run_tool({"set", "2", "lapb", "n2_count", "5"});
    EXPECT_EQ(again.status, 0) << again.err;
    EXPECT_EQ(read_file(wan_path), replaced(expected, "\tn2_count\t10\n", "\tn2_count\t5\n"));
    auto bad = run_tool({"set", "2", "x25", "x25_x32_sign", "12G4"});
    EXPECT_EQ(bad.status, 1);
    EXPECT_EQ(bad.err, "qx25 set: Identity or Signature 12G4 too long or invalid\n"
                       "qx25 set: link 2 not changed\n");
}

TEST_F(ToolLinks, SetLeavesTheProblemsOfAFileAsTheyAre) {
    write_links();
    // The reader reports an unknown keyword of the LINK section; the line
    // stays, and so does the report.
    std::string bad = replaced(wan_link, "\tdescription\t", "\tcolour\t\tred\n\tdescription\t");
    tree.write("config/config/link_config_0002.cfg", bad);
    auto result = run_tool({"set", "2", "lapb", "n2_count", "5"});
    EXPECT_EQ(result.status, 0) << result.err;
    EXPECT_EQ(result.err, "");
    EXPECT_EQ(read_file(wan_path), replaced(bad, "\tn2_count\t10\n", "\tn2_count\t5\n"));
}

TEST_F(ToolLinks, SetOfALinkThatDoesNotExist) {
    write_links();
    auto result = run_tool({"set", "7", "lapb", "n2_count", "5"});
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.out, "");
    EXPECT_EQ(result.err, "qx25 set: " + tree.config_dir() +
                              "/config/link_config_0007.cfg: No such file or directory\n"
                              "qx25 set: link 7 not changed\n");
    EXPECT_FALSE(exists(tree.config_dir() + "/config/link_config_0007.cfg"));
}

TEST_F(ToolLinks, SetOfAFileTheLibraryCannotRead) {
    write_links();
    std::string headless = replaced(wan_link, "IDENTIFICATION\n", "");
    tree.write("config/config/link_config_0002.cfg", headless);
    auto result = run_tool({"set", "2", "lapb", "n2_count", "5"});
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.err, "qx25 set: Error reading IDENTIFICATION section from file " + wan_path +
                              ", line 2\n"
                              "qx25 set: link 2 not changed\n");
    EXPECT_EQ(read_file(wan_path), headless);
}

TEST_F(ToolLinks, SetPassesOverABackupNameThatIsTaken) {
    write_links();
    // A directory where the first backup would go: it is left alone.
    std::filesystem::create_directories(wan_path + ".BAK/occupied");
    auto result = run_tool({"set", "2", "lapb", "n2_count", "5"});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.err, "");
    EXPECT_EQ(result.out, "link 2: LAPB n2_count 10 -> 5 (line 23); previous file kept as " +
                              wan_path + ".BAK.1\n");
    EXPECT_EQ(read_file(wan_path + ".BAK.1"), wan_link);
    EXPECT_TRUE(std::filesystem::is_directory(wan_path + ".BAK/occupied"));
}

TEST_F(ToolLinks, SetKeepsTheOriginalAndTheTenNewestNumberedBackups) {
    write_links();
    std::vector<std::string> texts{wan_link}; // the file after each edit
    for (int edit = 1; edit <= 12; ++edit) {
        std::string value = std::to_string(10 + edit);
        auto result = run_tool({"set", "2", "lapb", "n2_count", value});
        ASSERT_EQ(result.status, 0) << result.err;
        std::string backup =
            edit == 1 ? wan_path + ".BAK" : wan_path + ".BAK." + std::to_string(edit - 1);
        EXPECT_EQ(result.out, "link 2: LAPB n2_count " + std::to_string(edit == 1 ? 10 : 9 + edit) +
                                  " -> " + value + " (line 23); previous file kept as " + backup +
                                  "\n");
        texts.push_back(read_file(wan_path));
    }
    // The original is never lost; of the numbered backups the ten newest stay.
    EXPECT_EQ(read_file(wan_path + ".BAK"), wan_link);
    EXPECT_FALSE(std::filesystem::exists(wan_path + ".BAK.1"));
    for (int number = 2; number <= 11; ++number)
        EXPECT_EQ(read_file(wan_path + ".BAK." + std::to_string(number)), texts[number]) << number;
    EXPECT_FALSE(std::filesystem::exists(wan_path + ".BAK.12"));
    EXPECT_EQ(texts[12], replaced(wan_link, "n2_count\t10", "n2_count\t22"));
}

TEST_F(ToolLinks, SetKeepsTheModeOfTheFile) {
    write_links();
    namespace fs = std::filesystem;
    fs::permissions(wan_path,
                    fs::perms::owner_read | fs::perms::owner_write | fs::perms::group_read);
    ASSERT_EQ(run_tool({"set", "2", "lapb", "n2_count", "5"}).status, 0);
    fs::perms kept = fs::perms::owner_read | fs::perms::owner_write | fs::perms::group_read;
    EXPECT_EQ(fs::status(wan_path).permissions(), kept);
    EXPECT_EQ(fs::status(wan_path + ".BAK").permissions(), kept);
}

TEST_F(ToolLinks, SetNeedsALinkNumberAndFourArguments) {
    const std::string usage = "qx25 set: usage: qx25 set [--dry-run] LINK SECTION KEYWORD VALUE\n";
    auto few = run_tool({"set", "2", "lapb", "n2_count"});
    EXPECT_EQ(few.status, 2);
    EXPECT_EQ(few.err, "qx25 set: LINK, SECTION, KEYWORD and VALUE are needed\n" + usage);
    auto dry = run_tool({"set", "--dry-run", "2", "lapb", "n2_count"});
    EXPECT_EQ(dry.status, 2);
    EXPECT_EQ(dry.err, "qx25 set: LINK, SECTION, KEYWORD and VALUE are needed\n" + usage);
    auto name = run_tool({"set", "link_config_0002.cfg", "lapb", "n2_count", "5"});
    EXPECT_EQ(name.status, 2);
    EXPECT_EQ(name.err, "qx25 set: LINK must be a link number from 0 to 254\n" + usage);
    auto high = run_tool({"set", "255", "lapb", "n2_count", "5"});
    EXPECT_EQ(high.status, 2);
    EXPECT_EQ(high.err, "qx25 set: LINK must be a link number from 0 to 254\n" + usage);
}

// ---- diff -------------------------------------------------------------------------

// The FILE_DATE line that the library writes, with the time of writing, as
// "+\tFILE_DATE\tNOW".
std::string with_date_now(std::string diff) {
    std::size_t at = diff.find("\n+\tFILE_DATE\t");
    if (at != std::string::npos)
        diff.replace(at + 1, diff.find('\n', at + 1) - at - 1, "+\tFILE_DATE\tNOW");
    return diff;
}

TEST_F(ToolLinks, DiffShowsWhatARewriteByTheLibraryWouldChange) {
    write_links();
    // The leased line as the library wrote it, then edited by hand: a blank
    // before the version, and a line the library never writes.
    std::string file = replaced(wan_link_written, "\tFILE_TYPE\tx25link\n",
                                "\tFILE_TYPE\tx25link\n\tMODIFIED_BY\ttester\n"
                                "\tFILE_DATE\tMon Nov  2 16:40:03 2026\n");
    file = replaced(file, "\tPRODUCT_VERSION\t4.1", "\tPRODUCT_VERSION\t 4.1");
    file = replaced(file, "\tconnect_proc\t\tNONE\n", "\tconnect_proc\t\tNONE\n\ttranslate\t\tY\n");
    tree.write("config/config/link_config_0002.cfg", file);
    auto result = run_tool({"diff", "2"});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.err, "");
    EXPECT_EQ(with_date_now(result.out), "--- " + wan_path + "\n+++ " + wan_path +
                                             " (rewritten by the library)\n"
                                             "@@ -2,10 +2,10 @@\n"
                                             " \n"
                                             " IDENTIFICATION\n"
                                             " \tPRODUCT_NAME\tQuenlark X.25\n"
                                             "-\tPRODUCT_VERSION\t 4.1 patch 07\n"
                                             "+\tPRODUCT_VERSION\t4.1 patch 07\n"
                                             " \tFILE_TYPE\tx25link\n"
                                             " \tMODIFIED_BY\ttester\n"
                                             "-\tFILE_DATE\tMon Nov  2 16:40:03 2026\n"
                                             "+\tFILE_DATE\tNOW\n"
                                             " \n"
                                             " \n"
                                             " ! The hardware and the addresses.\n"
                                             "@@ -48,7 +48,6 @@\n"
                                             " \tline_speed\t\t64000\t! 64k leased line\n"
                                             " \tmax_frame\t\t520\n"
                                             " \tconnect_proc\t\tNONE\n"
                                             "-\ttranslate\t\tY\n"
                                             " \n"
                                             " SECTION\tX25\n"
                                             " \tnetwork\t\t\tX25_1984\n");
    EXPECT_EQ(read_file(wan_path), file);
}

TEST_F(ToolLinks, DiffOfAHandWrittenFile) {
    write_links();
    auto result = run_tool({"diff", "link_config_0002.cfg"});
    EXPECT_EQ(result.status, 0);
    std::string diff = with_date_now(result.out);
    // The empty lines the writer puts after a comment and the identification
    // block, the lines it changes, and every default it writes out.
    EXPECT_TRUE(diff.starts_with("--- " + wan_path + "\n+++ " + wan_path +
                                 " (rewritten by the library)\n"
                                 "@@ -1,14 +1,17 @@\n"
                                 " ! Link 2: leased line to the public network.\n"
                                 "+\n"
                                 " IDENTIFICATION\n"))
        << diff;
    EXPECT_NE(diff.find("-\tMODIFIED_BY\tnetadm\n-\tFILE_DATE\tMon Nov  2 16:40:03 2026\n"
                        "+\tMODIFIED_BY\ttester\n+\tFILE_DATE\tNOW\n"),
              std::string::npos)
        << diff;
    EXPECT_NE(diff.find("\n+\tpf_timer  \t\t0.7\n"), std::string::npos) << diff;
    EXPECT_EQ(read_file(wan_path), wan_link);
}

// ---- the example tree -------------------------------------------------------------

TEST_F(ToolLinks, ExampleTreeListsItsLinksAndCircuits) {
    ::setenv("X25CONFIGFILES", QX25_SOURCE_DIR "/examples/etc", 1);
    ::setenv("X25LIBFILES", QX25_SOURCE_DIR "/examples/lib", 1);
    auto links = run_tool({"links"});
    EXPECT_EQ(links.status, 0);
    EXPECT_EQ(links.err, "");
    auto pvcs = run_tool({"pvcs"});
    EXPECT_EQ(pvcs.status, 0);
    EXPECT_EQ(pvcs.err, "");
    EXPECT_NE(pvcs.out.find("\n   2  001"), std::string::npos) << pvcs.out;
    EXPECT_NE(pvcs.out.find("\n   3  "), std::string::npos) << pvcs.out;
    for (const char *link : {"1", "2", "3"}) {
        auto show = run_tool({"show", link});
        EXPECT_EQ(show.status, 0) << link;
        EXPECT_EQ(show.err, "") << link;
    }
}

} // namespace
