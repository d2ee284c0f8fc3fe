// qx25 check without arguments: every file of the configuration tree and the
// links against each other, each finding with its file and line, compared
// byte for byte. The exit status is 0 only when nothing was found.
#include "config_tree.h"
#include "link_files.h"
#include "run_tool.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <string>

namespace fs = std::filesystem;
using qx25test::ConfigTree;
using qx25test::run_tool;

namespace {

const char *const profiles = "# networks\n1 X25_LLC LAN network\n2 X25_1988 WAN 1988\n";

class TreeCheck : public testing::Test {
  protected:
    void SetUp() override {
        ::setenv("LC_ALL", "C", 1);
        ::unsetenv("NLSPATH");
    }
    // A tree whose boardconf and profiles have no findings.
    void write_base() {
        qx25test::write_boardconf(tree);
        tree.write("lib/world_networks.profile", profiles);
    }
    std::string link(int number) const {
        char name[32];
        std::snprintf(name, sizeof name, "/config/link_config_%04d.cfg", number);
        return tree.config_dir() + name;
    }
    // The text with ROOT for the tree's root.
    std::string rooted(std::string text) const {
        for (std::size_t at; (at = text.find("ROOT")) != std::string::npos;)
            text.replace(at, 4, tree.root());
        return text;
    }
    std::string ok(const std::string &path) const { return path + ": ok\n"; }
    std::string base_ok() const { return ok(tree.config_dir() + "/boardconf"); }
    std::string tail_ok() const {
        return ok(tree.config_dir() + "/pvcmapconf") +
               ok(tree.lib_dir() + "/world_networks.profile");
    }
    ConfigTree tree;
};

TEST_F(TreeCheck, TheExampleTreeIsClean) {
    qx25test::copy_example_tree(tree);
    auto result = run_tool({"check"});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.err, "");
    EXPECT_EQ(result.out, base_ok() + ok(link(1)) + ok(link(2)) + ok(link(3)) + tail_ok());
}

TEST_F(TreeCheck, LinksAgainstEachOther) {
    write_base();
    qx25test::write_link_file(tree, 1, "device eth0\ntype LAN\nalias lan\n");
    qx25test::write_link_file(
        tree, 2, "device wan0\nprotocol LAPB\nalias pdn\nfull_address 3.23421234567\n");
    qx25test::write_link_file(tree, 4, "device eth0\ntype LAN\nalias pdn\n");
    qx25test::write_link_file(tree, 300, "device wan3\nprotocol LAPB\n");
    auto result = run_tool({"check"});
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.err, "");
    EXPECT_EQ(result.out,
              base_ok() + ok(link(1)) + link(2) +
                  ":8: full_address names link 3, but the file is that of link 2: the reader "
                  "takes the link number from the file name\n" +
                  link(4) + ":5: device eth0 is used by " + link(1) +
                  ":5 too: link discovery leaves one of the two links out\n" + link(4) +
                  ":7: alias 'pdn' is that of " + link(2) +
                  ":7 too: a look-up by name finds only one of them\n" + link(300) +
                  ": link number 300 is outside 0..254: no X.25 address can name the link\n" +
                  tail_ok());
}

TEST_F(TreeCheck, WhatTheReaderDropsOrCutsWithoutAWord) {
    write_base();
    std::string block;
    for (int i = 0; i < 9; ++i)
        block += "!" + std::string(119, 'c') + "\n"; // 120 characters kept of each
    tree.write("config/config/link_config_0002.cfg",
               "! The link to the network.\n"        // 1
               "IDENTIFICATION\n"                    // 2
               "\tPRODUCT_NAME\tQuenlark X.25\n"     // 3
               "! A note the block does not keep.\n" // 4
               "\tFILE_TYPE\tx25link\n"              // 5
               "SECTION\tLINK\n"                     // 6
               "\tdevice\twan0\n"                    // 7
               "\tprotocol\tLAPB\n"                  // 8
               "SECTION\tX25\n"                      // 9
               "\tcolour\tred\n"                     // 10
               "\tmodulo\t8\t! " +
                   std::string(130, 'x') +
                   "\n"                     // 11
                   "SECTION\tNOSUCH\n"      // 12
                   "\tmodulo\t8\n"          // 13
                   "SECTION\tLAPB\n" +      // 14
                   block +                  // 15 to 23
                   "\tn2_count\t5\n"        // 24
                   "! Said at the end.\n"); // 25
    auto result = run_tool({"check", "2"});
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.err, "");
    EXPECT_EQ(
        result.out,
        rooted(
            "ROOT/config/config/link_config_0002.cfg:5: the comments before this line of the "
            "IDENTIFICATION block are not kept: a rewrite drops them\n"
            "ROOT/config/config/link_config_0002.cfg:10: unknown keyword 'colour': the reader "
            "passes over it without a word, and a rewrite drops it\n"
            "ROOT/config/config/link_config_0002.cfg:11: the line is 143 characters long with its "
            "line end: the reader takes 127 at a time and reads the rest as a line of its own\n"
            "ROOT/config/config/link_config_0002.cfg:11: unknown keyword 'xxxxxxxxxxxxxxx': the "
            "reader passes over it without a word, and a rewrite drops it\n"
            "ROOT/config/config/link_config_0002.cfg:12: Unknown section NOSUCH, skipped\n"
            "ROOT/config/config/link_config_0002.cfg:13: the keyword line 'modulo' is in no known "
            "section: the reader passes over it, and a rewrite drops it\n"
            "ROOT/config/config/link_config_0002.cfg:23: the comments from line 15 on hold more "
            "than the 1023 characters the reader keeps for a line: from here on they are dropped "
            "by a rewrite\n"
            "ROOT/config/config/link_config_0002.cfg:25: comments after the last line belong to no "
            "line: the reader does not keep them, and a rewrite drops them\n"));
}

TEST_F(TreeCheck, CarriageReturnsAreNamedAndShownAsEscapes) {
    write_base();
    qx25test::write_link_file(tree, 2, "device wan0\nprotocol LAPB\r\nSECTION LAPB\r\n");
    auto result = run_tool({"check"});
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.out,
              rooted("ROOT/config/boardconf: ok\n"
                     "ROOT/config/config/link_config_0002.cfg:6: the file has CRLF line ends (a "
                     "carriage return before the newline) on 2 lines: the reader takes each "
                     "carriage return as a part of the line\n"
                     "ROOT/config/config/link_config_0002.cfg:6: Unknown protocol\n"
                     "ROOT/config/config/link_config_0002.cfg:7: Unknown section LAPB\\r, skipped\n"
                     "ROOT/config/pvcmapconf: ok\n"
                     "ROOT/lib/world_networks.profile: ok\n"));
    auto show = run_tool({"show", "2"});
    EXPECT_EQ(show.status, 1);
    // One message names the line ends.
    EXPECT_EQ(show.err, rooted("qx25 show: ROOT/config/config/link_config_0002.cfg: the file has "
                               "CRLF line ends (a carriage return before the newline) on 2 lines: "
                               "the reader takes each carriage return as a part of the line\n"
                               "qx25 show: Unknown protocol\n"
                               "qx25 show: Unknown section LAPB\\r, skipped\n"));
}

TEST_F(TreeCheck, TheDeviceTableThePvcMapAndTheProfiles) {
    tree.write("config/boardconf", "device stray\n"
                                   "WAN_DEVICE\n"
                                   "\tsymbolic WANSYNCHRO\n"
                                   "\tdevices wan\n"
                                   "\tlines 0\n"
                                   "\tcolour blue\n"
                                   "LAN_DEVICE\n"
                                   "\tdevice WAN\n"
                                   "\tmru big\n"
                                   "LAN_DEVICE\n"
                                   "\tlines 1\n");
    qx25test::write_link_file(tree, 2, "device wan0\nprotocol LAPB\n");
    tree.write("config/pvcmapconf", "# circuits\n"
                                    "2\t001\t128\t128\t2\t2\n"
                                    "2\tzzz\t127\t128\t2\t2\n"
                                    "2 001 128 128 2 2\n"
                                    "2 1FF 128 128 2 200\n"
                                    "7 002 128 128 2 2\n"
                                    "2 003 128 128 2\n");
    tree.write("lib/world_networks.profile", "# networks\n"
                                             "1 X25_LLC LAN network\n"
                                             "\n"
                                             "two X25_2 no number\n"
                                             "1 AGAIN the number again\n"
                                             "5 x25_llc the name again\n"
                                             "6 NAME_LONGER_THAN_16 long name\n"
                                             "7 LONG " +
                                                 std::string(110, 'd') + "\n9 NODESCRIPTION\n10\n");
    auto result = run_tool({"check"});
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.err, "");
    EXPECT_EQ(
        result.out,
        rooted(
            "ROOT/config/boardconf:1: the line comes before the first WAN_DEVICE or LAN_DEVICE "
            "line: the library ignores it\n"
            "ROOT/config/boardconf:3: symbolic 'WANSYNCHRO' is longer than the 7 characters the "
            "library keeps\n"
            "ROOT/config/boardconf:4: 'devices' is taken as the keyword device\n"
            "ROOT/config/boardconf:5: lines '0' is not a number from 1 to 255\n"
            "ROOT/config/boardconf:6: unknown keyword 'colour': the library ignores the line\n"
            "ROOT/config/boardconf:8: the device prefix 'WAN' is that of line 4 already\n"
            "ROOT/config/boardconf:9: mru 'big' is not a number\n"
            "ROOT/config/boardconf:10: the device kind has no device line: no link can name it\n"
            "ROOT/config/config/link_config_0002.cfg: ok\n"
            "ROOT/config/pvcmapconf:3: the logical channel number 'zzz' is not hexadecimal: the "
            "library takes it as 000\n"
            "ROOT/config/pvcmapconf:3: the packet size '127' is not one of 16, 32, 64, 128, "
            "256, 512, 1024, 2048 and 4096: the library takes it as 16\n"
            "ROOT/config/pvcmapconf:4: link 2 has a circuit on logical channel 001 on line 2 "
            "already\n"
            "ROOT/config/pvcmapconf:5: the logical channel number '1FF' is above FF: the "
            "library keeps its last two hexadecimal digits\n"
            "ROOT/config/pvcmapconf:5: the window size '200' is not a number from 1 to 127\n"
            "ROOT/config/pvcmapconf:6: link 7 is not configured: the circuit is dropped\n"
            "ROOT/config/pvcmapconf:7: 5 fields where a circuit has 6: the library passes over "
            "the line without a word\n"
            "ROOT/lib/world_networks.profile:3: the line has no network number: the library stores "
            "the network of the line before it again, in one of its 30 entries\n"
            "ROOT/lib/world_networks.profile:4: the line has no network number: the "
            "library stores the network of the line before it again, in one of its 30 "
            "entries\n"
            "ROOT/lib/world_networks.profile:5: network 1 is that of line 2 already: the first "
            "one is used\n"
            "ROOT/lib/world_networks.profile:6: the name 'x25_llc' is that of line 2 already: "
            "the first one is used\n"
            "ROOT/lib/world_networks.profile:7: the name 'NAME_LONGER_THAN_16' is longer than "
            "the 16 characters the library keeps\n"
            "ROOT/lib/world_networks.profile:8: the description is longer than the 105 "
            "characters the library keeps\n"
            "ROOT/lib/world_networks.profile:9: the network has no description: the library "
            "gives it the description of the line before it\n"
            "ROOT/lib/world_networks.profile:10: the network has no name: the library gives it "
            "the name and description of the line before it\n"));
}

} // namespace
