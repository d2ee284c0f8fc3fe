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
    "\n"
    "Commands:\n"
    "  addr      parse X.25 addresses and show their fields\n"
    "  ident     show the IDENTIFICATION block of a configuration file\n"
    "\n"
    "Files are looked up under $X25CONFIGFILES (default /etc/opt/Tarvenco/x25)\n"
    "and $X25LIBFILES (default /opt/Tarvenco/x25/lib).\n";

TEST_F(Tool, HelpListsTheCommands) {
    auto result = run_tool({"--help"});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.out, usage);
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
    EXPECT_EQ(result.out, "usage: qx25 ident FILE\n"
                          "\n"
                          "Opens the link configuration FILE, checks its IDENTIFICATION block and\n"
                          "prints its fields and the comments before it.\n");
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
                          "usage: qx25 addr [--check] ADDRESS...\n");
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
              "Error reading IDENTIFICATION section from file " + path + ", line 1\n\n");
}

TEST_F(Tool, IdentOfAMissingFile) {
    auto result = run_tool({"ident", "/nonexistent/link.cfg"});
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.err, "Error opening file /nonexistent/link.cfg\n\n");
}

TEST_F(Tool, IdentNeedsExactlyOneFile) {
    auto result = run_tool({"ident"});
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.err, "qx25 ident: one FILE is needed\nusage: qx25 ident FILE\n");
}

TEST_F(Tool, MessagesFollowTheCatalogOfTheLocale) {
    ::setenv("X25LIBFILES", QX25_STAGE_DATADIR, 1);
    ::setenv("LC_ALL", "fr_FR.UTF-8", 1);
    auto result = run_tool({"ident", "/nonexistent/link.cfg"});
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.err, "Erreur à l'ouverture du fichier /nonexistent/link.cfg\n\n");
}

} // namespace
