// qx25 import and qx25 inventory on a copy of the example tree, compared byte
// for byte; an import whose writes fail part-way.
#include "config_tree.h"
#include "run_tool.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <map>
#include <regex>
#include <string>
#include <sys/stat.h>
#include <vector>

namespace fs = std::filesystem;
using qx25test::ConfigTree;
using qx25test::read_file;
using qx25test::run_tool;

namespace {

// The example tree, copied into a scratch tree for each test.
class ToolImport : public ::testing::Test {
  protected:
    void SetUp() override {
        fs::copy(QX25_SOURCE_DIR "/examples/etc", tree.config_dir(),
                 fs::copy_options::recursive | fs::copy_options::overwrite_existing);
        fs::copy(QX25_SOURCE_DIR "/examples/lib", tree.lib_dir(),
                 fs::copy_options::recursive | fs::copy_options::overwrite_existing);
        ::setenv("LOGNAME", "netadm", 1);
        originals = link_files();
    }

    std::string config(const std::string &name) const { return tree.config_dir() + "/" + name; }
    std::string link_file(int number) const {
        char name[64];
        std::snprintf(name, sizeof name, "config/link_config_%04d.cfg", number);
        return config(name);
    }

    // The contents of every file of config/, by name.
    std::map<std::string, std::string> link_files() const {
        std::map<std::string, std::string> files;
        for (const auto &entry : fs::directory_iterator(config("config")))
            files[entry.path().filename().string()] = read_file(entry.path().string());
        return files;
    }

    void write_x25conf(const std::string &text) const { tree.write("config/x25conf", text); }

    // What the commands that show links say of the tree.
    std::string views() const {
        return run_tool({"links"}).out + run_tool({"pvcs"}).out + run_tool({"subnets"}).out;
    }

    ConfigTree tree;
    std::map<std::string, std::string> originals;
};

// A file as written, without its time of writing.
std::string undated(const std::string &text) {
    return std::regex_replace(text, std::regex("\tFILE_DATE\t[^\n]*\n"), "\tFILE_DATE\t-\n");
}

std::string import_report(const std::string &dir, bool backups) {
    std::string out;
    if (backups)
        for (int n = 1; n <= 3; ++n) {
            std::string file = dir + "/config/link_config_000" + std::to_string(n) + ".cfg";
            out += "backed up " + file + " to " + file + ".BAK\n";
        }
    out += "wrote " + dir + "/config/link_config_0001.cfg (link 1, from x25conf line 8)\n";
    out += "wrote " + dir + "/config/link_config_0002.cfg (link 2, from x25conf line 10)\n";
    out += "wrote " + dir + "/config/link_config_0003.cfg (link 3, from x25conf lines 12 and 13)\n";
    return out;
}

TEST_F(ToolImport, ExampleImportsIntoTheExampleLinks) {
    std::string before = views();
    auto result = run_tool({"import"});
    EXPECT_EQ(result.err, "");
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.out, import_report(tree.config_dir(), true));
    EXPECT_EQ(views(), before);
    // Each original is kept byte for byte as its backup.
    for (const auto &[name, text] : originals)
        EXPECT_EQ(read_file(config("config/" + name + ".BAK")), text) << name;
    // The files keep their comments.
    std::string lan = read_file(link_file(1));
    EXPECT_NE(lan.find("! Our own address on the LAN: MAC address and LSAP 04.\n"),
              std::string::npos);
    EXPECT_NE(lan.find("\talias\t\tsitelan\t! used by the PAD and the host tables\n"),
              std::string::npos);
    EXPECT_NE(lan.find("\tmax_lan_conns\t32\n"), std::string::npos);
    EXPECT_EQ(run_tool({"check", "1", "2", "3"}).status, 0);
}

TEST_F(ToolImport, LinkFilesMadeFromNothingGiveTheSameLinks) {
    std::string before = views();
    for (const auto &[name, text] : originals)
        fs::remove(config("config/" + name));
    auto result = run_tool({"import"});
    EXPECT_EQ(result.err, "");
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.out, import_report(tree.config_dir(), false));
    EXPECT_EQ(views(), before);
    EXPECT_FALSE(fs::exists(link_file(1) + ".BAK"));
    EXPECT_EQ(run_tool({"check", "1", "2", "3"}).status, 0);
}

TEST_F(ToolImport, DryRunShowsTheFilesAndWritesNothing) {
    auto dry = run_tool({"import", "--dry-run"});
    EXPECT_EQ(dry.err, "");
    EXPECT_EQ(dry.status, 0);
    EXPECT_EQ(link_files(), originals);

    auto real = run_tool({"import"});
    ASSERT_EQ(real.status, 0);
    std::string expected;
    for (int n = 1; n <= 3; ++n)
        expected += "would back up " + link_file(n) + " to " + link_file(n) + ".BAK\n";
    const char *lines[] = {"line 8", "line 10", "lines 12 and 13"};
    for (int n = 1; n <= 3; ++n)
        expected += "would write " + link_file(n) + " (link " + std::to_string(n) +
                    ", from x25conf " + lines[n - 1] + "):\n" + read_file(link_file(n));
    EXPECT_EQ(undated(dry.out), undated(expected));
}

TEST_F(ToolImport, ModeOfTheFilesIsKept) {
    ASSERT_EQ(::chmod(link_file(2).c_str(), 0640), 0);
    ASSERT_EQ(run_tool({"import"}).status, 0);
    struct stat status {};
    ASSERT_EQ(::stat((link_file(2) + ".BAK").c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 07777, 0640u);
    ASSERT_EQ(::stat(link_file(2).c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 07777, 0640u);
}

TEST_F(ToolImport, EveryKindOfInvalidLineIsReportedAndLeftOut) {
    write_x25conf("# kinds of bad lines\n"
                  "wans 0 0 2 WAN88 LC_LAPBDTE - 2342A WANS\n"
                  "ethr 0 0 1 LAN LC_LLC2 - XYZ ETHR\n"
                  "sync 0 0 5 WAN88 LC_LAPBDTE - 1 WANS\n"
                  "wans 0 0 5 WAN92 LC_LAPBDTE - 1 WANS\n"
                  "wans 0 0 5 WAN88 LC_HDLC - 1 WANS\n"
                  "wans 0 0 5 WAN88 LC_MLP - 1 WANS\n"
                  "wans 0 0 5 ? LC_LAPBDTE - 1 WANS\n"
                  "wans 0 0 5 WAN88 LC_LAPBDTE - 1 WANS extra\n"
                  "wans 0 0 5 WAN88 LC_LAPBDTE\n"
                  "wans 0 0 5 WAN88 LC_LAPBDTE - 1 ETHR\n"
                  "wans 0 0 5 WAN88 LC_LAPBDTE - 1 TOKEN\n"
                  "wans 0 0 300 WAN88 LC_LAPBDTE - 1 WANS\n"
                  "wans 2 0 6 WAN88 LC_LAPBDTE - 1 WANS\n"
                  "wans 2 1 6 WAN84 LC_LAPBDTE - 1 WANS\n"
                  "wans 3 0 6 WAN88 LC_LAPBDCE - 1 WANS\n"
                  "wans 3 1 6 WAN88 LC_LAPBDTE - 2 WANS\n");
    auto result = run_tool({"import"});
    EXPECT_EQ(result.status, 1);
    std::string prefix = "qx25 import: x25conf line ";
    EXPECT_EQ(result.err,
              "qx25 import: Duplicate device in file " + config("x25conf") + "\n" +
                  "qx25 import: Found PVC for unconfigured link 3, skipped\n"
                  "qx25 import: Found PVC for unconfigured link 3, skipped\n" +
                  prefix + "2: field 8: local address '2342A' is not decimal for a WAN device\n" +
                  prefix + "3: field 8: local address 'XYZ' is not hexadecimal for a LAN device\n" +
                  prefix + "4: field 1: device kind 'sync' is not wans, wloop or ethr\n" + prefix +
                  "5: field 5: unknown network type 'WAN92'\n" + prefix +
                  "6: field 6: unknown link class 'LC_HDLC'\n" + prefix +
                  "7: field 6: link class 'LC_MLP' names no frame protocol; an MLP link takes "
                  "LC_MLAPBDTE, LC_MLAPBXDTE, LC_MLAPBDCE or LC_MLAPBXDCE\n" +
                  prefix + "8: field 5: '?' leaves the link unset\n" + prefix +
                  "9: field 10: 'extra' is one too many: 9 fields are needed\n" + prefix +
                  "10: field 7: missing: the line has 6 fields, 9 are needed\n" + prefix +
                  "11: field 9: device 'ETHR' is not a WAN device\n" + prefix +
                  "12: field 9: no device 'TOKEN' in boardconf\n" + prefix +
                  "13: field 4: link number 300 is not 0 to 254\n" + prefix +
                  "15: link 6 has another network type on line 14\n" + prefix +
                  "16: link 6 has another link class on line 14\n" + prefix +
                  "17: link 6 has another local address on line 14\n");
    EXPECT_EQ(result.out, "wrote " + link_file(6) + " (link 6, from x25conf line 14)\n");
    // Only the valid link was written.
    EXPECT_EQ(fs::exists(link_file(5)), false);
    EXPECT_EQ(read_file(link_file(2)), originals["link_config_0002.cfg"]);
}

TEST_F(ToolImport, DuplicateDeviceIsReportedWithBothLines) {
    write_x25conf("wans 0 0 2 WAN88 LC_LAPBDTE - 23421234567 WANS\n"
                  "wloop 0 0 7 WAN88 LC_LAPBDTE - 1 WANS\n");
    auto result = run_tool({"import"});
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.err,
              "qx25 import: Duplicate device in file " + config("x25conf") + "\n" +
                  "qx25 import: Found PVC for unconfigured link 3, skipped\n"
                  "qx25 import: Found PVC for unconfigured link 3, skipped\n"
                  "qx25 import: x25conf line 2: device wan0 is already used by line 1\n");
    EXPECT_FALSE(fs::exists(link_file(7)));
}

TEST_F(ToolImport, MissingX25confWritesNothing) {
    fs::remove(config("x25conf"));
    auto result = run_tool({"import"});
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.err, "qx25 import: Error opening file " + config("x25conf") + "\n");
    EXPECT_EQ(result.out, "");
    EXPECT_EQ(link_files(), originals);
}

TEST_F(ToolImport, MissingBoardconfWritesNothing) {
    fs::remove(config("boardconf"));
    auto result = run_tool({"import"});
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.err, "qx25 import: Unable to read boardconf file\n");
    EXPECT_EQ(link_files(), originals);
}

TEST_F(ToolImport, WithoutSubnetworksTheFilesKeepTheirAddresses) {
    std::string before = views();
    fs::remove(config("subnetworks"));
    auto result = run_tool({"import"});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(views(), before);
}

TEST_F(ToolImport, NoLinkLinesWritesNothing) {
    write_x25conf("# no links yet\n");
    auto result = run_tool({"import"});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.out, "no links to import from " + tree.config_dir() + "/x25conf\n");
    EXPECT_EQ(link_files(), originals);
}

TEST_F(ToolImport, UnknownArgumentIsAUsageError) {
    auto result = run_tool({"import", "--force"});
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.err,
              "qx25 import: unknown argument '--force'\nusage: qx25 import [--dry-run]\n");
}

// ---- Writes that fail ------------------------------------------------------------------

// Runs the tool with the writing of one file failing half-way.
qx25test::tool_result run_failing(const std::vector<std::string> &args, const char *file) {
    std::string asan = std::getenv("ASAN_OPTIONS") != nullptr ? std::getenv("ASAN_OPTIONS") : "";
    ::setenv("ASAN_OPTIONS", (asan + ":verify_asan_link_order=0").c_str(), 1);
    ::setenv("LD_PRELOAD", QX25_FAILING_CLOSE, 1);
    ::setenv("QX25_FAIL_CLOSE_OF", file, 1);
    auto result = run_tool(args);
    ::unsetenv("LD_PRELOAD");
    ::unsetenv("QX25_FAIL_CLOSE_OF");
    ::setenv("ASAN_OPTIONS", asan.c_str(), 1);
    return result;
}

TEST_F(ToolImport, WriteFailingPartWayLosesNoOriginal) {
    auto result = run_failing({"import"}, "link_config_0003.cfg");
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.err, "qx25 import: cannot write " + link_file(3) +
                              "\nqx25 import: import undone: no file was changed\n");
    std::string expected;
    for (int n = 1; n <= 3; ++n)
        expected += "backed up " + link_file(n) + " to " + link_file(n) + ".BAK\n";
    for (int n = 1; n <= 3; ++n)
        expected += "restored " + link_file(n) + " from " + link_file(n) + ".BAK\n";
    EXPECT_EQ(result.out, expected);
    for (const auto &[name, text] : originals) {
        EXPECT_EQ(read_file(config("config/" + name)), text) << name;
        EXPECT_EQ(read_file(config("config/" + name + ".BAK")), text) << name;
    }
}

TEST_F(ToolImport, FailedNewFileIsRemovedAndTheOthersRestored) {
    fs::remove(link_file(2));
    originals.erase("link_config_0002.cfg");
    auto result = run_failing({"import"}, "link_config_0002.cfg");
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.out, "backed up " + link_file(1) + " to " + link_file(1) + ".BAK\n" +
                              "backed up " + link_file(3) + " to " + link_file(3) + ".BAK\n" +
                              "restored " + link_file(1) + " from " + link_file(1) + ".BAK\n" +
                              "removed " + link_file(2) + "\n");
    EXPECT_FALSE(fs::exists(link_file(2)));
    for (const auto &[name, text] : originals)
        EXPECT_EQ(read_file(config("config/" + name)), text) << name;
}

TEST_F(ToolImport, BackupThatCannotBeMadeStopsBeforeAnyWrite) {
    tree.write("config/config/link_config_0002.cfg.BAK/occupied", "");
    auto result = run_tool({"import"});
    EXPECT_EQ(result.status, 1);
    EXPECT_NE(result.err.find("; nothing was written\n"), std::string::npos) << result.err;
    EXPECT_EQ(result.out, "backed up " + link_file(1) + " to " + link_file(1) + ".BAK\n");
    for (const auto &[name, text] : originals)
        EXPECT_EQ(read_file(config("config/" + name)), text) << name;
}

TEST_F(ToolImport, DryRunWithAFailingWriteChangesNothing) {
    auto result = run_failing({"import", "--dry-run"}, "link_config_0001.cfg");
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(link_files(), originals);
}

// ---- Inventory ---------------------------------------------------------------------------

TEST_F(ToolImport, InventoryOfTheExampleTree) {
    auto result = run_tool({"inventory"});
    EXPECT_EQ(result.err, "");
    EXPECT_EQ(result.status, 0);
    const std::string dir = tree.config_dir();
    EXPECT_EQ(result.out,
              "Devices of " + dir +
                  "/boardconf:\n"
                  "ROW  SYMBOLIC  DEVICE  KIND  LINES  USED BY\n"
                  "  0  WANS      wan     WAN       2  wan0 link 2, wan1 link 3, wan2 link 3\n"
                  "  1  ETHR      eth     LAN       1  eth0 link 1\n"
                  "\n"
                  "Links of " +
                  dir +
                  "/config:\n"
                  "LINK  FILE                  ALIAS    DEVICES    ADDRESS           PVCS  FLAGS\n"
                  "   1  link_config_0001.cfg  sitelan  eth0       1.0800200A1B2C04     0  -\n"
                  "   2  link_config_0002.cfg  pdn      wan0       2.23421234567        2  -\n"
                  "   3  link_config_0003.cfg  pdnmlp   wan1,wan2  3.23421234999        2  -\n"
                  "\n"
                  "PVCs of " +
                  dir +
                  "/pvcmapconf:\n"
                  "LINK  LCN  PKTSIZE1  PKTSIZE2  WINDOW1  WINDOW2\n"
                  "   2  001       128       128        2        2\n"
                  "   2  002       256       256        4        4\n"
                  "   3  001       128       128        7        7\n"
                  "   3  002       512       512        7        7\n");
}

TEST_F(ToolImport, InventoryFlagsSharedUnknownAndUnreadable) {
    std::string link4 = read_file(link_file(2));
    link4.replace(link4.find("pdn\t"), 3, "pdn2");
    tree.write("config/config/link_config_0004.cfg", link4);
    std::string link5 = read_file(link_file(2));
    link5.replace(link5.find("wan0"), 4, "tok0");
    tree.write("config/config/link_config_0005.cfg", link5);
    fs::create_directory(link_file(6));
    auto result = run_tool({"inventory"});
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.err, "qx25 inventory: link_config_0005.cfg: Unknown device name <tok0> found\n"
                          "qx25 inventory: link_config_0006.cfg: Error opening file " +
                              link_file(6) +
                              "\nqx25 inventory: link_config_0006.cfg: Error reading file "
                              "link_config_0006.cfg\n");
    std::string links = result.out.substr(result.out.find("Links of"));
    links = links.substr(0, links.find("\n\n"));
    EXPECT_EQ(
        links,
        "Links of " + tree.config_dir() +
            "/config:\n"
            "LINK  FILE                  ALIAS    DEVICES    ADDRESS           PVCS  FLAGS\n"
            "   1  link_config_0001.cfg  sitelan  eth0       1.0800200A1B2C04     0  -\n"
            "   2  link_config_0002.cfg  pdn      wan0       2.23421234567        2  device wan0 "
            "also used by link 4\n"
            "   3  link_config_0003.cfg  pdnmlp   wan1,wan2  3.23421234999        2  -\n"
            "   4  link_config_0004.cfg  pdn2     wan0       4.23421234567        0  device wan0 "
            "also used by link 2\n"
            "   5  link_config_0005.cfg  pdn      -          5.23421234567        0  unknown "
            "device tok0\n"
            "   6  link_config_0006.cfg  -        -          -                    0  not read");
}

TEST_F(ToolImport, InventoryFlagsPvcsOfNoLinkAndSaysWhenThereAreNoLinks) {
    for (const auto &[name, text] : originals)
        fs::remove(config("config/" + name));
    auto result = run_tool({"inventory"});
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.err, "qx25 inventory: Found PVC for unconfigured link 2, skipped\n"
                          "qx25 inventory: Found PVC for unconfigured link 2, skipped\n"
                          "qx25 inventory: Found PVC for unconfigured link 3, skipped\n"
                          "qx25 inventory: Found PVC for unconfigured link 3, skipped\n");
    EXPECT_NE(result.out.find("Links of " + tree.config_dir() + "/config:\nno links\n\nPVCs of " +
                              tree.config_dir() + "/pvcmapconf:\nno PVCs\n"),
              std::string::npos)
        << result.out;
}

TEST_F(ToolImport, InventoryWithoutBoardconfFails) {
    fs::remove(config("boardconf"));
    auto result = run_tool({"inventory"});
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.err, "qx25 inventory: cannot read " + config("boardconf") + "\n");
    EXPECT_EQ(result.out, "");
}

} // namespace
