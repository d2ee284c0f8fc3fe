// qx25 template on the example configuration tree: save, show, put and get
// for every layer, the files and outputs compared byte for byte, the driver
// commands run with the fake STREAMS driver and without it.
#include "qx25.h"

#include "config_tree.h"
#include "fake_driver.h"
#include "release.h"
#include "run_tool.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <string>
#include <sys/stat.h>
#include <vector>

using qx25test::ConfigTree;
using qx25test::FakeDriver;
using qx25test::read_file;
using qx25test::run_tool;

namespace fs = std::filesystem;

namespace {

class ToolTemplate : public ::testing::Test {
  protected:
    void SetUp() override {
        // The example tree, without its templates: save must make them.
        fs::copy(QX25_SOURCE_DIR "/examples/etc", tree.config_dir(),
                 fs::copy_options::recursive | fs::copy_options::overwrite_existing);
        fs::remove_all(tree.config_dir() + "/template");
        fs::copy(QX25_SOURCE_DIR "/examples/lib/world_networks.profile", tree.lib_dir());
    }
    std::string template_path(const std::string &name) const {
        return tree.config_dir() + "/template/" + name;
    }
    std::string example_template(const std::string &name) const {
        return read_file(QX25_SOURCE_DIR "/examples/etc/template/" + name);
    }

    ConfigTree tree;
};

// Link 2 of the examples read by the library, as the tool reads it.
struct example_link {
    link_config config{};
    int mode = 0;
    explicit example_link(int number) {
        EXPECT_EQ(x25_read_config_parameters(number, &config.ids, &config.link, &config.x25,
                                             &config.mlp, &config.lapb, &config.llc2, &config.wan,
                                             &mode),
                  0);
    }
    ~example_link() { qx25tool::release(&config); }
};

const char *const lapb_listing = "LINE  KEYWORD            VALUE\n"
                                 "   1  n2_count           10\n"
                                 "   2  t1_timer           30\n"
                                 "   3  pf_timer           7\n"
                                 "   4  reject_timer       25\n"
                                 "   5  busy_timer         100\n"
                                 "   6  idle_timer         250\n"
                                 "   7  rr_ack_delay       4\n"
                                 "   8  unack_max          3\n"
                                 "   9  local_win          7\n"
                                 "  10  local_probe        0\n"
                                 "  11  max_iframe_len     135\n"
                                 "  12  ign_ua_error       N\n"
                                 "  13  frmr_frmr_error    N\n"
                                 "  14  frmr_invrsp_error  N\n"
                                 "  15  sframe_pbit        N\n"
                                 "  16  no_dm_adm          N\n"
                                 "  17  sabm_in_x32        N\n";

// A driver message of three lines, as the tool shows it: each line named.
std::string hint(const std::string &first_line, const std::string &error_text) {
    return first_line + "\nqx25 template: " + error_text +
           "\nqx25 template: X.25 may not be running.\n";
}

// ---- save ------------------------------------------------------------------------------

TEST_F(ToolTemplate, SaveWritesEachLayersWorkingFile) {
    struct saved {
        const char *link, *layer, *file;
    };
    for (const saved &s :
         {saved{"2", "x25", "LINK002_working.x25"}, saved{"2", "lapb", "LINK002_working.lapb"},
          saved{"2", "wan", "LINK002_working.wan"}, saved{"1", "llc2", "LINK001_working.llc2"}}) {
        SCOPED_TRACE(s.file);
        auto result = run_tool({"template", "save", s.link, s.layer});
        EXPECT_EQ(result.status, 0);
        EXPECT_EQ(result.out, "saved " + template_path(s.file) + "\n");
        EXPECT_EQ(result.err, "");
        // The examples shipped are what save writes.
        EXPECT_EQ(read_file(template_path(s.file)), example_template(s.file));
    }
    EXPECT_EQ(read_file(template_path("LINK002_working.lapb")),
              "10\n30\n7\n25\n100\n250\n4\n3\n7\n0\n135\nN\nN\nN\nN\nN\nN\n");
    EXPECT_EQ(read_file(template_path("LINK002_working.wan")), "520\n64000\n");
}

TEST_F(ToolTemplate, SavedX25TemplateIsTheLibrarysWrittenForm) {
    ASSERT_EQ(run_tool({"template", "save", "2", "x25"}).status, 0);
    example_link link(2);
    std::string expected = tree.root() + "/expected.x25";
    ASSERT_EQ(write__x25_template_parameter_file(expected.c_str(), &link.config.x25.values), 0);
    EXPECT_EQ(read_file(template_path("LINK002_working.x25")), read_file(expected));
}

TEST_F(ToolTemplate, ConfigurationToTemplateAndBackGivesTheSameRecords) {
    ASSERT_EQ(run_tool({"template", "save", "2", "x25"}).status, 0);
    ASSERT_EQ(run_tool({"template", "save", "2", "lapb"}).status, 0);
    ASSERT_EQ(run_tool({"template", "save", "2", "wan"}).status, 0);
    ASSERT_EQ(run_tool({"template", "save", "1", "llc2"}).status, 0);
    example_link wan_link(2), lan_link(1);

    x25_template x25 = wan_link.config.x25.values;
    std::memset(&x25.lcn, 0, sizeof x25.lcn);
    x25.network = 0;
    ASSERT_EQ(read_x25_template_parameters(2, &x25), 0);
    EXPECT_EQ(std::memcmp(&x25, &wan_link.config.x25.values, sizeof x25), 0);

    lapb_template lapb{};
    lapb.kind = wan_link.config.lapb.values.kind;
    lapb.link = wan_link.config.lapb.values.link;
    ASSERT_EQ(read_lapb_template_parameters(2, &lapb), 0);
    EXPECT_EQ(std::memcmp(&lapb, &wan_link.config.lapb.values, sizeof lapb), 0);

    llc2_template llc2{};
    llc2.link = lan_link.config.llc2.values.link;
    ASSERT_EQ(read_llc2_template_parameters(1, &llc2), 0);
    EXPECT_EQ(std::memcmp(&llc2, &lan_link.config.llc2.values, sizeof llc2), 0);

    wan_template wan{};
    wan.link = wan_link.config.wan.values.tuning.link;
    ASSERT_EQ(read_wan_template_parameters(2, &wan), 0);
    EXPECT_EQ(std::memcmp(&wan, &wan_link.config.wan.values.tuning, sizeof wan), 0);
}

// Save replaces the working file through a new file and a rename: the old
// file's mode stays, a new file gets 0666 less the umask, nothing is left
// beside it.
TEST_F(ToolTemplate, SaveReplacesTheFileWholeAndKeepsItsMode) {
    fs::create_directories(tree.config_dir() + "/template");
    std::string old = template_path("LINK002_working.lapb");
    tree.write("config/template/LINK002_working.lapb", "old\n");
    fs::permissions(old, fs::perms::owner_read | fs::perms::owner_write | fs::perms::group_read);
    mode_t mask = ::umask(022);
    auto first = run_tool({"template", "save", "2", "lapb"});
    auto second = run_tool({"template", "save", "2", "wan"});
    ::umask(mask);
    EXPECT_EQ(first.status, 0);
    EXPECT_EQ(second.status, 0);
    EXPECT_EQ(read_file(old), example_template("LINK002_working.lapb"));
    EXPECT_EQ(fs::status(old).permissions(),
              fs::perms::owner_read | fs::perms::owner_write | fs::perms::group_read);
    EXPECT_EQ(fs::status(template_path("LINK002_working.wan")).permissions(),
              fs::perms::owner_read | fs::perms::owner_write | fs::perms::group_read |
                  fs::perms::others_read);
    std::vector<std::string> names;
    for (const auto &entry : fs::directory_iterator(tree.config_dir() + "/template"))
        names.push_back(entry.path().filename().string());
    std::sort(names.begin(), names.end());
    EXPECT_EQ(names, (std::vector<std::string>{"LINK002_working.lapb", "LINK002_working.wan"}));
}

TEST_F(ToolTemplate, SaveRefusesALayerTheLinkHasNot) {
    auto lan = run_tool({"template", "save", "1", "lapb"});
    EXPECT_EQ(lan.status, 1);
    EXPECT_EQ(lan.err, "qx25 template: link 1 is a LAN link: it has no LAPB layer\n");
    auto wan = run_tool({"template", "save", "2", "llc2"});
    EXPECT_EQ(wan.err, "qx25 template: link 2 is a WAN link: it has no LLC2 layer\n");
    auto mlp = run_tool({"template", "put", "3", "wan"});
    EXPECT_EQ(mlp.err, "qx25 template: link 3 is an MLP link: it has no WAN layer\n");
    EXPECT_FALSE(fs::exists(tree.config_dir() + "/template"));
}

TEST_F(ToolTemplate, SaveRefusesAConfigurationWithProblems) {
    std::ofstream(tree.config_dir() + "/config/link_config_0002.cfg", std::ios::app)
        << "SECTION\tCOLOUR\n";
    auto result = run_tool({"template", "save", "2", "x25"});
    EXPECT_EQ(result.status, 1);
    std::string path = tree.config_dir() + "/config/link_config_0002.cfg";
    EXPECT_EQ(result.err, "qx25 template: Unknown section COLOUR, skipped\n"
                          "qx25 template: " +
                              path + " has problems (see qx25 check): nothing done\n");
    EXPECT_FALSE(fs::exists(template_path("LINK002_working.x25")));
}

TEST_F(ToolTemplate, SaveOfAMissingLink) {
    auto result = run_tool({"template", "save", "9", "x25"});
    EXPECT_EQ(result.status, 1);
    std::string path = tree.config_dir() + "/config/link_config_0009.cfg";
    EXPECT_EQ(result.err, "qx25 template: Error opening file " + path +
                              ": No such file or directory\n"
                              "qx25 template: " +
                              path + " has problems (see qx25 check): nothing done\n");
}

TEST_F(ToolTemplate, SaveTellsWhenTheTemplateReaderRefusesWhatWasWritten) {
    // The configuration takes source address control 1..4, the template 0..3.
    std::ofstream(tree.config_dir() + "/config/link_config_0002.cfg", std::ios::app)
        << "\tsrc_addr_control\t4\n";
    auto result = run_tool({"template", "save", "2", "x25"});
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.out, "");
    EXPECT_EQ(result.err, "qx25 template: The value 4 on line 72\nqx25 template: is out of range\n"
                          "qx25 template: " +
                              template_path("LINK002_working.x25") +
                              " was written, but the template reader refuses it\n");
}

// ---- show --------------------------------------------------------------------------------

TEST_F(ToolTemplate, ShowListsTheWorkingFile) {
    ASSERT_EQ(run_tool({"template", "save", "2", "lapb"}).status, 0);
    auto result = run_tool({"template", "show", "2", "lapb"});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.out, lapb_listing);
    EXPECT_EQ(result.err, "");
}

TEST_F(ToolTemplate, ShowListsEveryX25Line) {
    fs::create_directories(tree.config_dir() + "/template");
    fs::copy(QX25_SOURCE_DIR "/examples/etc/template/LINK002_working.x25",
             template_path("LINK002_working.x25"));
    auto result = run_tool({"template", "show", "2", "x25"});
    EXPECT_EQ(result.status, 0);
    std::string first_lines = "LINE  KEYWORD              VALUE\n"
                              "   1  network              10\n"
                              "   2  version              88\n"
                              "   3  plpmode              1\n";
    EXPECT_EQ(result.out.substr(0, first_lines.size()), first_lines);
    EXPECT_NE(result.out.find("  69  dnic                 2342\n"), std::string::npos);
    EXPECT_NE(result.out.find("  80  thclass_pmap         0.0.0.0.0.0.0.0.0.0.0.0.0.0.0.0\n"),
              std::string::npos);
    EXPECT_EQ(std::count(result.out.begin(), result.out.end(), '\n'), 81);
}

TEST_F(ToolTemplate, ShowOfTheWanAndLlc2Examples) {
    fs::copy(QX25_SOURCE_DIR "/examples/etc/template", tree.config_dir() + "/template");
    auto wan = run_tool({"template", "show", "2", "wan"});
    EXPECT_EQ(wan.out, "LINE  KEYWORD     VALUE\n"
                       "   1  max_frame   520\n"
                       "   2  line_speed  64000\n");
    auto llc2 = run_tool({"template", "show", "1", "llc2"});
    EXPECT_EQ(llc2.status, 0);
    EXPECT_NE(llc2.out.find("  14  xid_tdup        5\n"), std::string::npos);
}

TEST_F(ToolTemplate, ShowWithoutAFile) {
    auto result = run_tool({"template", "show", "2", "x25"});
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.out, "");
    EXPECT_EQ(result.err, "qx25 template: " + template_path("LINK002_working.x25") +
                              ": No such file or directory\n");
}

TEST_F(ToolTemplate, ShowOfABadFile) {
    tree.write("config/template/LINK002_working.x25", "10\n85\n");
    auto result = run_tool({"template", "show", "2", "x25"});
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.out, "");
    EXPECT_EQ(result.err,
              "qx25 template: The value 85 on line 2\nqx25 template: is out of range\n");
}

// ---- put and get -----------------------------------------------------------------------

TEST_F(ToolTemplate, PutWithoutADriver) {
    auto result = run_tool({"template", "put", "2", "x25"});
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.out, "");
    EXPECT_EQ(result.err,
              "qx25 template: " + hint("unable to open /dev/x25", "No such file or directory"));
    auto get = run_tool({"template", "get", "1", "llc2"});
    EXPECT_EQ(get.status, 1);
    EXPECT_EQ(get.err,
              "qx25 template: " + hint("unable to open /dev/llc2", "No such file or directory"));
}

TEST_F(ToolTemplate, PutThenGetThroughTheFakeDriver) {
    FakeDriver driver;
    auto put = run_tool({"template", "put", "2", "lapb"});
    EXPECT_EQ(put.status, 0);
    EXPECT_EQ(put.out, "sent link 2 LAPB tuning to /dev/lapb\n");
    EXPECT_EQ(put.err, "");
    auto get = run_tool({"template", "get", "2", "lapb"});
    EXPECT_EQ(get.status, 0);
    EXPECT_EQ(get.out, lapb_listing);
    EXPECT_EQ(driver.log(), "open /dev/lapb\n"
                            "ioctl /dev/lapb L_SETTUNE link 2\n"
                            "close /dev/lapb\n"
                            "open /dev/lapb\n"
                            "ioctl /dev/lapb L_GETTUNE link 2\n"
                            "close /dev/lapb\n");
}

TEST_F(ToolTemplate, WhatTheDriverReturnsIsWhatTheTemplateHolds) {
    FakeDriver driver;
    for (const char *layer : {"x25", "llc2"}) {
        SCOPED_TRACE(layer);
        const char *link = std::string(layer) == "llc2" ? "1" : "2";
        ASSERT_EQ(run_tool({"template", "save", link, layer}).status, 0);
        ASSERT_EQ(run_tool({"template", "put", link, layer}).status, 0);
        auto shown = run_tool({"template", "show", link, layer});
        auto fetched = run_tool({"template", "get", link, layer});
        EXPECT_EQ(fetched.status, 0);
        EXPECT_EQ(fetched.out, shown.out);
    }
}

TEST_F(ToolTemplate, GetOfALinkNeverSent) {
    FakeDriver driver;
    auto result = run_tool({"template", "get", "7", "x25"});
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.out, "");
    EXPECT_EQ(result.err, "qx25 template: " + hint("N_snread ioctl failed on /dev/x25",
                                                   "No such device or address"));
}

TEST_F(ToolTemplate, ADriverThatRefuses) {
    FakeDriver driver;
    driver.refuse_open(EACCES);
    auto put = run_tool({"template", "put", "1", "llc2"});
    EXPECT_EQ(put.status, 1);
    EXPECT_EQ(put.err, "qx25 template: " + hint("unable to open /dev/llc2", "Permission denied"));
    driver.refuse_open(0);
    driver.fail_requests(EIO);
    // An empty variable is no refusal.
    ::setenv("QX25_FAKEDRV_OPEN_ERRNO", "", 1);
    auto get = run_tool({"template", "get", "2", "x25"});
    EXPECT_EQ(get.err,
              "qx25 template: " + hint("N_snread ioctl failed on /dev/x25", "Input/output error"));
}

TEST_F(ToolTemplate, TheWanLayerHasNoDriver) {
    FakeDriver driver;
    auto put = run_tool({"template", "put", "2", "wan"});
    EXPECT_EQ(put.status, 0);
    EXPECT_EQ(put.out, "the WAN layer has no driver: nothing sent\n");
    auto get = run_tool({"template", "get", "2", "wan"});
    EXPECT_EQ(get.status, 0);
    EXPECT_EQ(get.out, "the WAN layer has no driver: nothing fetched\n");
    EXPECT_EQ(driver.log(), "");
}

// ---- Arguments -------------------------------------------------------------------------

TEST_F(ToolTemplate, WrongCalls) {
    const std::string usage = "qx25 template: usage: qx25 template save|show|put|get LINK LAYER\n";
    struct call {
        std::vector<std::string> args;
        std::string complaint;
    };
    const call calls[] = {
        {{"template"}, "save, show, put or get is needed"},
        {{"template", "load", "2", "x25"}, "unknown action 'load'"},
        {{"template", "save", "2"}, "a link number and a layer are needed"},
        {{"template", "save", "2", "x25", "extra"}, "a link number and a layer are needed"},
        {{"template", "show", "255", "x25"}, "'255' is no link number (0..254)"},
        {{"template", "show", "0002", "x25"}, "'0002' is no link number (0..254)"},
        {{"template", "show", "two", "x25"}, "'two' is no link number (0..254)"},
        {{"template", "show", "2", "X25"}, "unknown layer 'X25' (x25, lapb, llc2 or wan)"},
        {{"template", "show", "2", "mlp"}, "unknown layer 'mlp' (x25, lapb, llc2 or wan)"},
    };
    for (const call &c : calls) {
        SCOPED_TRACE(c.complaint);
        auto result = run_tool(c.args);
        EXPECT_EQ(result.status, 2);
        EXPECT_EQ(result.out, "");
        EXPECT_EQ(result.err, "qx25 template: " + c.complaint + "\n" + usage);
    }
}

TEST_F(ToolTemplate, Help) {
    auto result = run_tool({"template", "--help"});
    EXPECT_EQ(result.status, 0);
    std::string first_lines = "usage: qx25 template save|show|put|get LINK LAYER\n\n";
    EXPECT_EQ(result.out.substr(0, first_lines.size()), first_lines);
    EXPECT_NE(result.out.find("$X25CONFIGFILES/template/LINKnnn_working.LAYER"), std::string::npos);
}

} // namespace
