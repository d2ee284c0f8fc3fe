// A FIFO, where the tool or the library expects a file, is refused at once
// with the usual message and its reason; no command waits on it. Each run is
// the real qx25 under a time limit that only a hang would reach.
#include "config_tree.h"
#include "link_files.h"
#include "run_tool.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <optional>
#include <string>
#include <sys/stat.h>
#include <vector>

namespace fs = std::filesystem;
using qx25test::ConfigTree;
using qx25test::run_tool;

namespace {

// Far beyond what any command takes; reached only by a command that waits.
constexpr unsigned time_limit = 20;

struct fifo_case {
    std::string fifo; // below the tree's root
    std::vector<std::string> args;
    int status;
    // ROOT stands for the tree's root. No out is the command's output on the
    // tree without the FIFO (the example tree).
    std::optional<std::string> out;
    std::string err;
};

std::ostream &operator<<(std::ostream &stream, const fifo_case &c) {
    stream << c.fifo << ':';
    for (const std::string &arg : c.args)
        stream << ' ' << arg;
    return stream;
}

class SpecialFiles : public testing::TestWithParam<fifo_case> {
  protected:
    void SetUp() override {
        ::setenv("LC_ALL", "C", 1);
        ::unsetenv("NLSPATH");
        qx25test::copy_example_tree(tree);
    }

    std::string rooted(std::string text) const {
        for (std::size_t at; (at = text.find("ROOT")) != std::string::npos;)
            text.replace(at, 4, tree.root());
        return text;
    }

    ConfigTree tree;
};

TEST_P(SpecialFiles, AreRefusedAtOnceWithTheReason) {
    const fifo_case &c = GetParam();
    std::string clean_out;
    if (!c.out) {
        auto clean = run_tool(c.args, time_limit);
        ASSERT_EQ(clean.status, 0) << clean.err;
        clean_out = clean.out;
    }
    std::string fifo = tree.root() + "/" + c.fifo;
    fs::remove(fifo);
    fs::create_directories(fs::path(fifo).parent_path());
    ASSERT_EQ(::mkfifo(fifo.c_str(), 0644), 0);

    auto result = run_tool(c.args, time_limit);
    ASSERT_FALSE(result.timed_out) << "the command waited on the FIFO";
    EXPECT_EQ(result.status, c.status);
    EXPECT_EQ(result.out, c.out ? rooted(*c.out) : clean_out);
    EXPECT_EQ(result.err, rooted(c.err));
    EXPECT_TRUE(fs::is_fifo(fifo)); // left as it was
}

const std::string link8 = "ROOT/config/config/link_config_0008.cfg";
const std::string boardconf = "ROOT/config/boardconf";
const std::string pvcmapconf = "ROOT/config/pvcmapconf";
const std::string profiles = "ROOT/lib/world_networks.profile";
const std::string fifo = ": not a regular file (a FIFO)\n";
const std::string link8_left_out(const char *command) {
    std::string name = std::string("qx25 ") + command + ": ";
    return name + "Error opening file " + link8 + fifo + name +
           "Error reading file link_config_0008.cfg\n" + name + link8 + " is left out\n";
}
const std::string examples_checked = "ROOT/config/config/link_config_0001.cfg: ok\n"
                                     "ROOT/config/config/link_config_0002.cfg: ok\n"
                                     "ROOT/config/config/link_config_0003.cfg: ok\n";

const fifo_case cases[] = {
    // A link file: the library refuses it, and the tool says so.
    {"config/config/link_config_0008.cfg", {"links"}, 1, std::nullopt, link8_left_out("links")},
    {"config/config/link_config_0008.cfg", {"pvcs"}, 1, std::nullopt, link8_left_out("pvcs")},
    {"config/config/link_config_0008.cfg",
     {"check"},
     1,
     "ROOT/config/boardconf: ok\n" + examples_checked + link8 + ": Error opening file " + link8 +
         fifo + pvcmapconf + ": ok\n" + profiles + ": ok\n",
     ""},
    {"config/config/link_config_0008.cfg",
     {"check", "8"},
     1,
     link8 + ": Error opening file " + link8 + fifo,
     ""},
    {"config/config/link_config_0008.cfg",
     {"show", "8"},
     1,
     "",
     "qx25 show: Error opening file " + link8 + fifo},
    {"config/config/link_config_0008.cfg",
     {"diff", "8"},
     1,
     "",
     "qx25 diff: Error opening file " + link8 + fifo},
    {"config/config/link_config_0008.cfg",
     {"ident", "8"},
     1,
     "",
     "qx25 ident: Error opening file " + link8 + fifo},
    {"config/config/link_config_0008.cfg",
     {"set", "8", "lapb", "n2_count", "5"},
     1,
     "",
     "qx25 set: " + link8 + fifo + "qx25 set: link 8 not changed\n"},
    {"config/config/link_config_0008.cfg",
     {"template", "save", "8", "x25"},
     1,
     "",
     "qx25 template: Error opening file " + link8 + fifo + "qx25 template: " + link8 +
         " has problems (see qx25 check): nothing done\n"},
    {"config/config/link_config_0008.cfg",
     {"subnets"},
     1,
     std::nullopt,
     "qx25 subnets: Error opening file " + link8 + fifo +
         "qx25 subnets: Error reading file link_config_0008.cfg\n"},
    // boardconf.
    {"config/boardconf", {"devices"}, 1, "", "qx25 devices: cannot read " + boardconf + fifo},
    {"config/boardconf", {"links"}, 1, "", "qx25 links: Unable to read boardconf file\n"},
    {"config/boardconf", {"pvcs"}, 1, "", "qx25 pvcs: Unable to read boardconf file\n"},
    {"config/boardconf",
     {"set", "2", "lapb", "n2_count", "5"},
     1,
     "",
     "qx25 set: link 2 not changed: the devices of the other links cannot be compared: link "
     "discovery fails (Unable to read boardconf file)\n"},
    {"config/boardconf",
     {"check"},
     1,
     boardconf + fifo +
         "ROOT/config/config/link_config_0001.cfg:12: Unable to read device data files\n"
         "ROOT/config/config/link_config_0002.cfg:11: Unable to read device data files\n"
         "ROOT/config/config/link_config_0003.cfg:12: Unable to read device data files\n" +
         pvcmapconf + ": ok\n" + profiles + ": ok\n",
     ""},
    // pvcmapconf: the library passes over a file it cannot open.
    {"config/pvcmapconf",
     {"pvcs"},
     1,
     "no PVCs in " + pvcmapconf + "\n",
     "qx25 pvcs: " + pvcmapconf + fifo},
    {"config/pvcmapconf",
     {"check"},
     1,
     "ROOT/config/boardconf: ok\n" + examples_checked + pvcmapconf + fifo + profiles + ": ok\n",
     ""},
    // world_networks.profile.
    {"lib/world_networks.profile",
     {"networks"},
     1,
     "",
     "qx25 networks: Error opening file " + profiles + fifo},
    {"lib/world_networks.profile",
     {"set", "2", "x25", "network", "PSS"},
     1,
     "",
     "qx25 set: Error opening file " + profiles + fifo + "qx25 set: link 2 not changed\n"},
    {"lib/world_networks.profile",
     {"check"},
     1,
     // Each link's network line asks for the profiles.
     "ROOT/config/boardconf: ok\n"
     "ROOT/config/config/link_config_0001.cfg:41: Error opening file " +
         profiles + fifo +
         "ROOT/config/config/link_config_0001.cfg:41: LAN link should normally have X.25 network "
         "configured as X25_LLC\n"
         "ROOT/config/config/link_config_0002.cfg:33: Error opening file " +
         profiles + fifo + "ROOT/config/config/link_config_0003.cfg:52: Error opening file " +
         profiles + fifo + pvcmapconf + ": ok\n" + profiles + fifo,
     ""},
    // The name databases: the library passes over them without a word.
    {"config/xhosts", {"hosts"}, 1, "", "qx25 hosts: ROOT/config/xhosts" + fifo},
    {"config/xhosts", {"host", "paris"}, 1, "", "qx25 host: ROOT/config/xhosts" + fifo},
    {"config/xhosts",
     {"call", "paris"},
     1,
     "",
     "qx25 call: ROOT/config/xhosts" + fifo +
         "qx25 call: 'paris' is neither a host of xhosts nor an X.25 address\n"},
    {"config/padmapconf", {"pad"}, 1, "", "qx25 pad: ROOT/config/padmapconf" + fifo},
    {"config/x29profile",
     {"profile", "2.23421987654"},
     1,
     "",
     "qx25 profile: ROOT/config/x29profile" + fifo},
    // A working template file.
    {"config/template/LINK002_working.x25",
     {"template", "show", "2", "x25"},
     1,
     "",
     "qx25 template: ROOT/config/template/LINK002_working.x25" + fifo},
    {"config/template/LINK002_working.x25",
     {"template", "save", "2", "x25"},
     1,
     "",
     "qx25 template: cannot write ROOT/config/template/LINK002_working.x25" + fifo},
};

INSTANTIATE_TEST_SUITE_P(Fifo, SpecialFiles, testing::ValuesIn(cases));

} // namespace
