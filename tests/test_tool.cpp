// The qx25 command-line tool: usage, help and the addr and ident commands,
// compared byte for byte.
#include "config_tree.h"
#include "run_tool.h"

#include <gtest/gtest.h>

#include <cstdlib>

using qx25test::ConfigTree;
using qx25test::run_tool;

namespace {

class Tool : public testing::Test {
  protected:
    void SetUp() override {
        ::setenv("LC_ALL", "C", 1);
        ::unsetenv("NLSPATH");
    }
    ConfigTree tree;
};

const char *const usage =
    "usage: qx25 COMMAND [ARGUMENTS]\n"
    "       qx25 COMMAND --help\n"
    "       qx25 --version\n"
    "\n"
    "Commands:\n"
    "  addr      parse X.25 addresses and show their fields\n"
    "  ident     show the IDENTIFICATION block of a configuration file\n"
    "  check     check the configuration tree or link files\n"
    "  devices   show the device type table read from boardconf\n"
    "  networks  show the network profiles of world_networks.profile\n"
    "  links     list the configured links\n"
    "  pvcs      list the permanent virtual circuits of the links\n"
    "  show      print a link configuration as the library writes it\n"
    "  set       change one keyword of a link configuration\n"
    "  diff      show what a rewrite by the library would change\n"
    "  host      show a host of xhosts\n"
    "  hosts     list the hosts of xhosts\n"
    "  subnets   list the subnetworks the configured links make\n"
    "  call      show the PAD call string of a host or address\n"
    "  pad       list the PAD map entries and their facilities\n"
    "  profile   show the X.29 profile of an address\n"
    "  ppa       show the PPA number of an LLC2 device\n"
    "  template  save, show, send and fetch tuning templates\n"
    "  inventory show devices, links and PVCs together, with their conflicts\n"
    "  import    write link files from the older x25conf\n"
    "\n"
    "Files are looked up under $X25CONFIGFILES (default /etc/opt/Tarvenco/x25)\n"
    "and $X25LIBFILES (default /opt/Tarvenco/x25/lib).\n";

TEST_F(Tool, HelpListsTheCommands) {
    auto result = run_tool({"--help"});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.out, usage);
    EXPECT_EQ(result.err, "");
}

TEST_F(Tool, VersionNamesTheToolAndTheLibrary) {
    auto result = run_tool({"--version"});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.out, "qx25 " QX25_VERSION " (libqx25.so." QX25_SOVERSION ")\n");
    EXPECT_EQ(result.err, "");
}

TEST_F(Tool, NoCommandIsAUsageError) {
    auto result = run_tool({});
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.out, "");
    EXPECT_EQ(result.err, usage);
}

TEST_F(Tool, UnknownCommandIsAUsageError) {
    auto result = run_tool({"frobnicate"});
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.err, std::string("qx25: unknown command 'frobnicate'\n") + usage);
}

TEST_F(Tool, AddrHelp) {
    auto result = run_tool({"addr", "--help"});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.out,
              "usage: qx25 addr [--check] ADDRESS...\n"
              "\n"
              "Parses each ADDRESS and prints its subnetwork, DTE digits, extension and\n"
              "canonical text form.\n"
              "\n"
              "  --check   apply the address class of the link the subnetwork names\n");
}

TEST_F(Tool, IdentHelp) {
    auto result = run_tool({"ident", "-h"});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.out,
              "usage: qx25 ident LINK|FILE\n"
              "\n"
              "Opens a link configuration, given by link number or by file name as for\n"
              "check, checks its IDENTIFICATION block and prints its fields and the\n"
              "comments before it.\n");
}

TEST_F(Tool, AddrShowsFieldsAndCanonicalText) {
    auto result = run_tool({"addr", "3.23421234567.n.4711", "0.123.P", "23421234567.X.ab"});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.err, "");
    EXPECT_EQ(result.out, "address    3.23421234567.n.4711\n"
                          "snid       3\n"
                          "dte        23421234567 (11 digits)\n"
                          "extension  NSAP 4711 (4 digits)\n"
                          "canonical  3.23421234567.N.4711\n"
                          "\n"
                          "address    0.123.P\n"
                          "snid       0\n"
                          "dte        123 (3 digits)\n"
                          "extension  PVC\n"
                          "canonical  0.123.P\n"
                          "\n"
                          "address    23421234567.X.ab\n"
                          "snid       none\n"
                          "dte        23421234567 (11 digits)\n"
                          "extension  non-NSAP AB (2 digits)\n"
                          "canonical  23421234567.X.AB\n");
}

TEST_F(Tool, AddrReportsBadAddressesAndGoesOn) {
    auto result = run_tool({"addr", "3.12-4", "5.12"});
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.err, "qx25 addr: invalid X.25 address '3.12-4'\n");
    EXPECT_EQ(result.out, "address    5.12\n"
                          "snid       5\n"
                          "dte        12 (2 digits)\n"
                          "extension  NSAP\n"
                          "canonical  5.12\n");
}

TEST_F(Tool, AddrCheckNeedsTheClassOfTheLinkToWriteItBack) {
    // No link 5 is configured, so its address class is unknown.
    auto result = run_tool({"addr", "--check", "5.12", "23421234567"});
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.err, "qx25 addr: '5.12' cannot be written under the class of link 5\n");
    EXPECT_EQ(result.out, "address    23421234567\n"
                          "snid       none\n"
                          "dte        23421234567 (11 digits)\n"
                          "extension  NSAP\n"
                          "canonical  23421234567\n");
}

TEST_F(Tool, AddrWithoutAddressIsAUsageError) {
    auto result = run_tool({"addr", "--check"});
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.err, "qx25 addr: no address given\n"
                          "qx25 addr: usage: qx25 addr [--check] ADDRESS...\n");
}

TEST_F(Tool, IdentPrintsTheBlock) {
    std::string path = tree.write("l.cfg", "! Main WAN link\n"
                                           "! to the public network\n"
                                           "IDENTIFICATION\n"
                                           "\tPRODUCT_NAME\tQuenlark X.25\n"
                                           "\tPRODUCT_VERSION\t 4.1 patch 07\n"
                                           "\tFILE_TYPE\tx25link\n"
                                           "\tMODIFIED_BY\troot\n"
                                           "\tFILE_DATE\tSat Nov 21 10:00:00 2026\n"
                                           "SECTION LINK\n");
    auto result = run_tool({"ident", path});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.err, "");
    EXPECT_EQ(result.out, "file             " + path +
                              "\n"
                              "PRODUCT_NAME     Quenlark X.25\n"
                              "PRODUCT_VERSION  4.1 patch 07\n"
                              "FILE_TYPE        x25link\n"
                              "MODIFIED_BY      root\n"
                              "FILE_DATE        Sat Nov 21 10:00:00 2026\n"
                              "comments:\n"
                              "  ! Main WAN link\n"
                              "  ! to the public network\n");
}

TEST_F(Tool, IdentPassesOnTheLibrarysMessage) {
    std::string path = tree.write("bad.cfg", "SECTION LINK\n");
    auto result = run_tool({"ident", path});
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.out, "");
    EXPECT_EQ(result.err,
              "qx25 ident: Error reading IDENTIFICATION section from file " + path + ", line 1\n");
}

TEST_F(Tool, IdentOfAMissingFile) {
    auto result = run_tool({"ident", "/nonexistent/link.cfg"});
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.err,
              "qx25 ident: Error opening file /nonexistent/link.cfg: No such file or directory\n");
}

TEST_F(Tool, IdentNeedsExactlyOneFile) {
    auto result = run_tool({"ident"});
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.err,
              "qx25 ident: one LINK or FILE is needed\nqx25 ident: usage: qx25 ident LINK|FILE\n");
}

TEST_F(Tool, MessagesFollowTheCatalogOfTheLocale) {
    ::setenv("X25LIBFILES", QX25_STAGE_DATADIR, 1);
    ::setenv("LC_ALL", "fr_FR.UTF-8", 1);
    auto result = run_tool({"ident", "/nonexistent/link.cfg"});
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.err, "qx25 ident: Erreur à l'ouverture du fichier /nonexistent/link.cfg: "
                          "Aucun fichier ou dossier de ce type\n");
}

const char *const link_head = "IDENTIFICATION\n\tPRODUCT_NAME\tQuenlark X.25\n";

TEST_F(Tool, CheckSaysOkForCleanFilesAndExitsZero) {
    tree.write("config/boardconf", "WAN_DEVICE\n\tdevice wan\n\tlines 2\n");
    tree.write("config/config/link_config_0002.cfg",
               std::string(link_head) + "SECTION LINK\n\tdevice wan0\n\tprotocol LAPB\n");
    tree.write("config/config/other.cfg", std::string(link_head) + "SECTION LAPB\n\tn2_count 3\n");
    auto result = run_tool({"check", "2", "other.cfg"});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.err, "");
    EXPECT_EQ(result.out, tree.config_dir() + "/config/link_config_0002.cfg: ok\n" +
                              tree.config_dir() + "/config/other.cfg: ok\n");
}

TEST_F(Tool, CheckPrintsEveryMessageWithTheFileName) {
    tree.write("config/boardconf", "WAN_DEVICE\n\tdevice wan\n\tlines 2\n");
    std::string path = tree.write("bad.cfg", std::string(link_head) +
                                                 "SECTION LINK\n\tdevice modem0\n\tcolour red\n"
                                                 "SECTION X25\n\tt20value 9999\nSECTION FOO\n");
    auto result = run_tool({"check", path, "7"});
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.err, "");
    // Each message of the reader is placed on the line that made it.
    EXPECT_EQ(result.out, path + ":4: Unknown device name <modem0> found\n" + path +
                              ":5: Unknown LINK Keyword <colour>, skipped\n" + path +
                              ":7: Timer value out of range, 200.0 assumed\n" + path +
                              ":8: Unknown section FOO, skipped\n" + tree.config_dir() +
                              "/config/link_config_0007.cfg: Error opening file " +
                              tree.config_dir() +
                              "/config/link_config_0007.cfg: No such file or directory\n");
}

TEST_F(Tool, CheckWithoutArgumentsChecksTheTreeEvenAnEmptyOne) {
    auto result = run_tool({"check"});
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.err, "");
    // No PVC map means no PVCs; the other files are needed.
    EXPECT_EQ(result.out, tree.config_dir() + "/boardconf: No such file or directory\n" +
                              tree.config_dir() + "/pvcmapconf: ok\n" + tree.lib_dir() +
                              "/world_networks.profile: No such file or directory\n");
}

TEST_F(Tool, CheckRefusesLinkNumbersBeyondFourDigits) {
    auto result = run_tool({"check", "123456"});
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.err, "qx25 check: '123456' names no link file\n");
}

TEST_F(Tool, DevicesPrintsTheTable) {
    tree.write("config/boardconf", "WAN_DEVICE\n\tsymbolic WANS\n\tdevice wan\n\tlines 2\n"
                                   "\tcomment two ports\n\tmru 4104\n"
                                   "LAN_DEVICE\n\tsymbolic ETHR\n\tdevice eth\n\tlines 1\n");
    auto result = run_tool({"devices"});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.out, "ROW  SYMBOLIC DEVICE   KIND LINES MODULE              MRU  COMMENT\n"
                          "0    WANS     wan      WAN      2 wanmod             4104  two ports\n"
                          "1    ETHR     eth      LAN      1 s_ethr                0  \n");
}

TEST_F(Tool, DevicesWithoutBoardconf) {
    auto result = run_tool({"devices"});
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.err, "qx25 devices: cannot read " + tree.config_dir() +
                              "/boardconf: No such file or directory\n");
}

TEST_F(Tool, DevicesOfABoardconfWithoutDevices) {
    tree.write("config/boardconf", "# nothing fitted\n");
    auto result = run_tool({"devices"});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.out, "no devices in " + tree.config_dir() + "/boardconf\n");
}

TEST_F(Tool, NetworksPrintsTheProfilesInFileOrder) {
    tree.write("lib/world_networks.profile", "# networks\n2 X25_1988 Public network, 1988\n"
                                             "0 ignored line\n1 X25_LLC LAN network\n");
    auto result = run_tool({"networks"});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.out, "NUMBER  NAME              DESCRIPTION\n"
                          "     2  X25_1988          Public network, 1988\n"
                          "     1  X25_LLC           LAN network\n");
}

TEST_F(Tool, NetworksWithoutProfileFile) {
    auto result = run_tool({"networks"});
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.err, "qx25 networks: Error opening file " + tree.lib_dir() +
                              "/world_networks.profile: No such file or directory\n");
}

TEST_F(Tool, DevicesAndNetworksTakeNoArguments) {
    EXPECT_EQ(run_tool({"devices", "x"}).status, 2);
    EXPECT_EQ(run_tool({"networks", "x"}).status, 2);
}

TEST_F(Tool, ExampleTreeIsClean) {
    ::setenv("X25CONFIGFILES", QX25_SOURCE_DIR "/examples/etc", 1);
    ::setenv("X25LIBFILES", QX25_SOURCE_DIR "/examples/lib", 1);
    auto result = run_tool({"check", "1", "2", "3"});
    EXPECT_EQ(result.status, 0) << result.out;
    EXPECT_EQ(result.err, "");
}

} // namespace
