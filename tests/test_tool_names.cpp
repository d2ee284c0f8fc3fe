// The qx25 commands of the name databases and link identifiers: host,
// hosts, subnets, call, pad, profile and ppa, compared byte for byte.
#include "config_tree.h"
#include "link_files.h"
#include "run_tool.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <string>

using qx25test::ConfigTree;
using qx25test::run_tool;

namespace {

class NameTool : public testing::Test {
  protected:
    void SetUp() override {
        ::setenv("LC_ALL", "C", 1);
        ::unsetenv("NLSPATH");
        qx25test::write_boardconf(tree);
        qx25test::write_link_file(tree, 2,
                                  "device wan0\ntype WAN\nversion 1984\n"
                                  "full_address 2.23421234567\nalias pdn\n"
                                  "description Leased line\n");
        qx25test::write_link_file(tree, 1, "device eth0\ntype LAN\nalias lan\n");
        tree.write("config/xhosts", "# hosts\n2.23421987654\tparis\tlutece,capitale\n"
                                    "23425551234 london\n");
        tree.write("config/padmapconf", "2.23421987654 88 P7/7,W2/2 G12 - head office\n"
                                        "23425551234 84 R\n");
        tree.write("config/x29profile", "2.23421987654 P1#1:P3#126:T1\n23425551234 V2\n");
    }
    std::string config(const char *name) const { return tree.config_dir() + "/" + name; }
    ConfigTree tree;
};

TEST_F(NameTool, HostByNameAliasAndAddress) {
    const char *expected = "address  2.23421987654\n"
                           "name     paris\n"
                           "aliases  lutece capitale\n";
    for (const char *wanted : {"paris", "capitale", "2.23421987654"}) {
        auto result = run_tool({"host", wanted});
        EXPECT_EQ(result.status, 0) << wanted;
        EXPECT_EQ(result.out, expected) << wanted;
        EXPECT_EQ(result.err, "");
    }
    auto result = run_tool({"host", "london"});
    EXPECT_EQ(result.out, "address  23425551234\nname     london\naliases  \n");
}

TEST_F(NameTool, HostNotFoundAndWrongCalls) {
    auto result = run_tool({"host", "rome"});
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.out, "");
    EXPECT_EQ(result.err, "qx25 host: no host 'rome' in " + config("xhosts") + "\n");
    result = run_tool({"host"});
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.err, "qx25 host: one NAME or ADDRESS is taken\n"
                          "qx25 host: usage: qx25 host NAME|ADDRESS\n");
}

TEST_F(NameTool, Hosts) {
    auto result = run_tool({"hosts"});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.out, "ADDRESS        NAME    ALIASES\n"
                          "2.23421987654  paris   lutece capitale\n"
                          "23425551234    london\n");
    std::remove(config("xhosts").c_str());
    result = run_tool({"hosts"});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.out, "no hosts in " + config("xhosts") + "\n");
    EXPECT_EQ(run_tool({"hosts", "x"}).status, 2);
}

TEST_F(NameTool, Subnets) {
    auto result = run_tool({"subnets"});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.out, "SUBNET  NAME  ADDRESS        DESCRIPTION\n"
                          "     1  lan   -\n"
                          "     2  pdn   2.23421234567  Leased line\n");
    EXPECT_EQ(result.err, "");
}

TEST_F(NameTool, SubnetsWithoutLinksOrBoardconf) {
    std::remove(config("config/link_config_0001.cfg").c_str());
    std::remove(config("config/link_config_0002.cfg").c_str());
    auto result = run_tool({"subnets"});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.out, "no subnetworks in " + config("config") + "\n");
    std::remove(config("boardconf").c_str());
    result = run_tool({"subnets"});
    EXPECT_EQ(result.status, 1);
    EXPECT_NE(result.err.find("qx25 subnets: "), std::string::npos);
}

TEST_F(NameTool, CallStrings) {
    auto result = run_tool({"call", "paris"});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.out, "2.23421987654 +2.23421234567 P7/7W2/2 88 G12 ~head office\n");
    result = run_tool({"call", "london"});
    EXPECT_EQ(result.out, "23425551234 R 84\n");
    result = run_tool({"call", "2.1234.N.5"});
    EXPECT_EQ(result.out, "2.1234.N.5 +2.23421234567\n");
}

TEST_F(NameTool, CallRefusesWhatIsNeitherHostNorAddress) {
    for (const char *text : {"rome", "1.1234"}) { // link 1 is a LAN
        auto result = run_tool({"call", text});
        EXPECT_EQ(result.status, 1);
        EXPECT_EQ(result.out, "");
        EXPECT_EQ(result.err, std::string("qx25 call: '") + text +
                                  "' is neither a host of xhosts nor an X.25 address\n");
    }
}

TEST_F(NameTool, PadEntries) {
    auto result = run_tool({"pad"});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.out, "ADDRESS        FACILITIES\n"
                          "2.23421987654  P7/7W2/2 88 G12 ~head office\n"
                          "23425551234    R 84\n");
    result = run_tool({"pad", "23425551234"});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.out, "ADDRESS      FACILITIES\n"
                          "23425551234  R 84\n");
}

TEST_F(NameTool, PadErrors) {
    auto result = run_tool({"pad", "2.1"});
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.err, "qx25 pad: no entry for 2.1 in " + config("padmapconf") + "\n");
    result = run_tool({"pad", "2.G"});
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(
        result.err,
        "qx25 pad: invalid X.25 address '2.G'\nqx25 pad: usage: qx25 pad [--json] [ADDRESS]\n");
    std::remove(config("padmapconf").c_str());
    result = run_tool({"pad"});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.out, "no entries in " + config("padmapconf") + "\n");
}

TEST_F(NameTool, Profiles) {
    auto result = run_tool({"profile", "2.23421987654"});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.out, "address  2.23421987654\n"
                          "kind     P\n"
                          "T        1\n"
                          "\n"
                          "PARAMETER  VALUE\n"
                          "        1      1\n"
                          "        3    126\n");
    result = run_tool({"profile", "23425551234"});
    EXPECT_EQ(result.out, "address  23425551234\nkind     V2\nT        0\n");
}

TEST_F(NameTool, ProfileErrors) {
    auto result = run_tool({"profile", "2.1"});
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.err, "qx25 profile: no profile for 2.1 in " + config("x29profile") + "\n");
    result = run_tool({"profile"});
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.err,
              "qx25 profile: one ADDRESS is taken\nqx25 profile: usage: qx25 profile ADDRESS\n");
}

TEST_F(NameTool, PpaWrongCalls) {
    auto result = run_tool({"ppa", "elx"});
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.err, "qx25 ppa: DEVICE and INSTANCE are taken\n"
                          "qx25 ppa: usage: qx25 ppa DEVICE INSTANCE\n");
    result = run_tool({"ppa", "elx", "one"});
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.err, "qx25 ppa: INSTANCE must be a number\n"
                          "qx25 ppa: usage: qx25 ppa DEVICE INSTANCE\n");
    result = run_tool({"ppa", "elx", "99999999999"});
    EXPECT_EQ(result.status, 2);
}

// The tool reads the LLC2 driver's own directory; this test gives it one in
// a private mount namespace, so that the machine's /etc is never read.
TEST_F(NameTool, PpaInAPrivateEtc) {
    std::string script = "mount -t tmpfs none /etc && mkdir -p /etc/llc2/default && "
                         "printf 'devicename=elx\\ndeviceinstance=1\\n' > "
                         "/etc/llc2/default/llc2.4 && '" QX25_TOOL_PATH "' ppa elx 1 && "
                         "'" QX25_TOOL_PATH "' ppa elx 2";
    std::string command =
        "unshare -m sh -c \"" + script + "\" > " + tree.root() + "/out 2> " + tree.root() + "/err";
    if (std::system("unshare -m true 2> /dev/null") != 0)
        GTEST_SKIP() << "no private mount namespace here";
    int status = std::system(command.c_str());
    EXPECT_NE(status, 0); // the second look-up finds nothing
    EXPECT_EQ(qx25test::read_file(tree.root() + "/out"), "4\n");
    EXPECT_EQ(qx25test::read_file(tree.root() + "/err"),
              "qx25 ppa: no PPA for elx instance 2 in /etc/llc2/default/\n");
}

TEST_F(NameTool, HelpOfEachCommand) {
    auto result = run_tool({"call", "--help"});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.out,
              "usage: qx25 call NAME|ADDRESS\n"
              "\n"
              "Prints the call string a PAD user's NAME (a host of xhosts) or ADDRESS\n"
              "turns into: the called address, \" +\" and the calling address of its link,\n"
              "then the facilities of its padmapconf entry. An ADDRESS is checked\n"
              "against the address class of the link its subnetwork names.\n");
    for (const char *name : {"host", "hosts", "subnets", "pad", "profile", "ppa"}) {
        result = run_tool({name, "-h"});
        EXPECT_EQ(result.status, 0) << name;
        EXPECT_EQ(result.out.rfind(std::string("usage: qx25 ") + name + " ", 0), 0u) << name;
        EXPECT_EQ(result.err, "");
    }
}

TEST(NameToolExamples, TheExampleTreeFitsTheExampleLinks) {
    ::setenv("X25CONFIGFILES", QX25_SOURCE_DIR "/examples/etc", 1);
    ::setenv("X25LIBFILES", QX25_SOURCE_DIR "/examples/lib", 1);
    auto result = run_tool({"call", "paris"});
    EXPECT_EQ(result.out, "2.23421987654 +2.23421234567 P7/7W2/2 88 G12 ~head office\n");
    result = run_tool({"call", "nms"});
    EXPECT_EQ(result.out, "3.23421555000.N.4711 +3.23421234999 F 88\n");
    result = run_tool({"call", "lab"});
    EXPECT_EQ(result.out, "1.08002011223304 +1.0800200A1B2C04\n");
    result = run_tool({"subnets"});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.err, "");
    result = run_tool({"profile", "2.23425551234"});
    EXPECT_EQ(result.out, "address  2.23425551234\nkind     V2\nT        0\n");
    // The older subnetworks file names the same links.
    for (const char *line :
         {"1.0800200A1B2C04\tsitelan", "2.23421234567\tpdn", "3.23421234999\tpdnmlp"})
        EXPECT_NE(qx25test::read_file(QX25_SOURCE_DIR "/examples/etc/subnetworks").find(line),
                  std::string::npos);
}

} // namespace
