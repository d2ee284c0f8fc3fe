// What every qx25 command does alike, and the strictness of set: options
// and "--", names resolved the same way, control characters shown as
// escapes, values taken whole or refused. Compared byte for byte.
#include "config_tree.h"
#include "link_files.h"
#include "run_tool.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

namespace fs = std::filesystem;
using qx25test::ConfigTree;
using qx25test::read_file;
using qx25test::run_tool;

namespace {

class ToolBehaviour : public testing::Test {
  protected:
    void SetUp() override {
        ::setenv("LC_ALL", "C", 1);
        ::unsetenv("NLSPATH");
        qx25test::copy_example_tree(tree);
        wan_path = tree.config_dir() + "/config/link_config_0002.cfg";
        wan_text = read_file(wan_path);
    }
    ConfigTree tree;
    std::string wan_path, wan_text;
};

TEST_F(ToolBehaviour, SetRefusesTextWhereANumberBelongs) {
    auto result = run_tool({"set", "2", "lapb", "t1_timer", "abc"});
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.out, "");
    EXPECT_EQ(result.err, "qx25 set: link 2 not changed: 'abc' is not a value of t1_timer: the "
                          "reader would take it as 0.0\n");
    EXPECT_EQ(read_file(wan_path), wan_text);
    EXPECT_FALSE(fs::exists(wan_path + ".BAK"));
}

TEST_F(ToolBehaviour, SetRefusesTrailingWordsAndFiguresTheReaderCuts) {
    auto words = run_tool({"set", "2", "lapb", "t1_timer", "4.5 extra words"});
    EXPECT_EQ(words.status, 1);
    EXPECT_EQ(words.err, "qx25 set: link 2 not changed: '4.5 extra words' is not a value of "
                         "t1_timer: the reader would take it as 4.5\n");
    auto figures = run_tool({"set", "2", "lapb", "t1_timer", "4.04"});
    EXPECT_EQ(figures.status, 1);
    EXPECT_EQ(figures.err, "qx25 set: link 2 not changed: '4.04' is not a value of t1_timer: the "
                           "reader would take it as 4.0\n");
    EXPECT_EQ(read_file(wan_path), wan_text);
}

TEST_F(ToolBehaviour, SetTakesAWholeValueInAnyOfItsForms) {
    auto whole = run_tool({"set", "2", "lapb", "t1_timer", "4"});
    EXPECT_EQ(whole.status, 0) << whole.err;
    EXPECT_EQ(whole.out, "link 2: LAPB t1_timer 3.0 -> 4 (line 23); previous file kept as " +
                             wan_path + ".BAK\n");
    auto by_number = run_tool({"set", "2", "x25", "network", "11"});
    EXPECT_EQ(by_number.status, 0) << by_number.err;
    EXPECT_EQ(by_number.out, "link 2: X25 network PSS -> 11 (line 33); previous file kept as " +
                                 wan_path + ".BAK.1\n");
    auto flag = run_tool({"set", "2", "x25", "fast_select", "n"});
    EXPECT_EQ(flag.status, 0) << flag.err;
}

TEST_F(ToolBehaviour, SetRefusesADeviceAnotherLinkUses) {
    auto result = run_tool({"set", "2", "link", "device", "eth0"});
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.out, "");
    EXPECT_EQ(result.err, "qx25 set: link 2 not changed: device eth0 is used by link 1 (" +
                              tree.config_dir() +
                              "/config/link_config_0001.cfg): link discovery would leave one of "
                              "the two links out\n");
    EXPECT_EQ(read_file(wan_path), wan_text);
    // Link 2 stays where it was.
    auto links = run_tool({"links"});
    EXPECT_EQ(links.status, 0);
    EXPECT_NE(links.out.find("\n   2  pdn      WAN"), std::string::npos) << links.out;
    EXPECT_EQ(run_tool({"check"}).status, 0);
}

TEST_F(ToolBehaviour, DoubleDashEndsTheOptions) {
    auto set = run_tool({"set", "--dry-run", "--", "2", "lapb", "n2_count", "5"});
    EXPECT_EQ(set.status, 0) << set.err;
    EXPECT_TRUE(set.out.starts_with("--- " + wan_path + "\n")) << set.out;
    EXPECT_EQ(read_file(wan_path), wan_text);
    // After "--" a word that looks like an option is an operand.
    auto check = run_tool({"check", "--", "--help"});
    EXPECT_EQ(check.status, 1);
    EXPECT_EQ(check.out, tree.config_dir() + "/config/--help: Error opening file " +
                             tree.config_dir() + "/config/--help: No such file or directory\n");
    auto addr = run_tool({"addr", "--", "--check"});
    EXPECT_EQ(addr.status, 1);
    EXPECT_EQ(addr.err, "qx25 addr: invalid X.25 address '--check'\n");
}

TEST_F(ToolBehaviour, UnknownOptionsAreUsageErrors) {
    auto result = run_tool({"links", "--all"});
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.err,
              "qx25 links: unknown option '--all'\nqx25 links: usage: qx25 links [--json]\n");
    auto late = run_tool({"set", "2", "--dry-run", "lapb", "n2_count"});
    EXPECT_EQ(late.status, 2); // options stand before the operands
}

TEST_F(ToolBehaviour, EveryCommandResolvesANameInTheConfigurationDirectory) {
    // Wherever the tool runs, a bare name is a file of $X25CONFIGFILES/config.
    auto ident = run_tool({"ident", "link_config_0002.cfg"});
    EXPECT_EQ(ident.status, 0) << ident.err;
    EXPECT_TRUE(ident.out.starts_with("file             " + wan_path + "\n")) << ident.out;
    auto by_number = run_tool({"ident", "2"});
    EXPECT_EQ(by_number.out, ident.out);
    auto check = run_tool({"check", "link_config_0002.cfg"});
    EXPECT_EQ(check.out, wan_path + ": ok\n");
}

TEST_F(ToolBehaviour, ControlCharactersAreShownAsEscapes) {
    std::string text = wan_text;
    std::string from = "alias\t\tpdn";
    text.replace(text.find(from), from.size(), "alias\t\tp\x1B[2Jdn");
    std::ofstream(wan_path) << text;
    auto links = run_tool({"links"});
    EXPECT_EQ(links.status, 0) << links.err;
    EXPECT_NE(links.out.find("  p\\x1B[2Jdn  "), std::string::npos) << links.out;
    EXPECT_EQ(links.out.find('\x1B'), std::string::npos);
}

} // namespace
