// The link inventory: x25conf read into link nodes, and the backup of a file
// before it is rewritten.
#include "qx25.h"

#include "captured_messages.h"
#include "config_tree.h"
#include "link_config.h"
#include "link_files.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <string>
#include <sys/stat.h>
#include <vector>

using qx25test::ConfigTree;
using qx25test::messages;

namespace {

// Rows of the boardconf that write_boardconf gives.
constexpr int wans_row = 0;
constexpr int ethr_row = 1;

// The nodes read_link_parameters gave, released when the object goes as a
// caller is meant to release them.
class Inventory {
  public:
    Inventory() = default;
    ~Inventory() {
        for (link_node *node = head; node != nullptr;) {
            link_node *next = node->next;
            free_link_item(&node->link.values);
            free_link_comments(&node->link);
            std::free(node);
            node = next;
        }
    }
    Inventory(const Inventory &) = delete;
    Inventory &operator=(const Inventory &) = delete;

    std::vector<link_values *> nodes() const {
        std::vector<link_values *> result;
        const link_node *previous = nullptr;
        for (link_node *node = head; node != nullptr; node = node->next) {
            EXPECT_EQ(node->prev, previous);
            result.push_back(&node->link.values);
            previous = node;
        }
        return result;
    }

    link_node *head = nullptr;
};

class LinkInventory : public ::testing::Test {
  protected:
    void SetUp() override {
        qx25test::write_boardconf(tree);
        qx25test::capture_all_messages();
    }

    std::string x25conf_path() const { return tree.config_dir() + "/x25conf"; }

    // Reads an x25conf of the given text; the result of the read.
    int read(const std::string &x25conf) {
        tree.write("config/x25conf", x25conf);
        inventory.head = reinterpret_cast<link_node *>(&tree); // must be cleared
        return read_link_parameters(&inventory.head);
    }

    // The one node of a one-line x25conf.
    link_values one(const std::string &line) {
        EXPECT_EQ(read(line + "\n"), 0);
        auto nodes = inventory.nodes();
        EXPECT_EQ(nodes.size(), 1u);
        return nodes.empty() ? link_values{} : *nodes[0];
    }

    ConfigTree tree;
    Inventory inventory;
};

const char lan_line[] = "ethr 0 0 1 LAN LC_LLC1 - 0800200A1B2C ETHR";
const char wan_line[] = "wans 1 1 2 WAN84 LC_LAPBDTE - 23421234567 WANS";

TEST_F(LinkInventory, NullArgumentIsRefused) {
    EXPECT_EQ(read_link_parameters(nullptr), EINVAL);
    EXPECT_EQ(messages(),
              std::vector<std::string>{"Null pointer passed to read_link_parameters\n"});
}

TEST_F(LinkInventory, LanLineOfALanDeviceIsValid) {
    link_values link = one(lan_line);
    EXPECT_EQ(link.device_count, 1);
    EXPECT_EQ(link.device_type[0], ethr_row);
    EXPECT_EQ(link.device_board[0], 0);
    EXPECT_EQ(link.device_line[0], 0);
    EXPECT_EQ(link.net_type, NET_LAN);
    EXPECT_EQ(link.link_mode, LC_LLC1);
    EXPECT_STREQ(link.local_address, "0800200A1B2C");
    EXPECT_EQ(link.mlp, 0);
    EXPECT_EQ(link.mlp_priority[0], 1); // the byte after the board numbers
    EXPECT_EQ(link.subnet.address.snid, 1u);
    EXPECT_TRUE(messages().empty());
}

TEST_F(LinkInventory, SameLineOfAWanKindIsInvalid) {
    link_values link = one("wans 0 0 1 LAN LC_LLC1 - 0800200A1B2C ETHR");
    EXPECT_EQ(link.device_count, 0);
    EXPECT_EQ(link.device_type[0], ethr_row);
    EXPECT_EQ(link.net_type, NET_LAN);
    EXPECT_EQ(link.subnet.address.snid, 1u);
}

TEST_F(LinkInventory, WanLineKeepsBoardLineAndClass) {
    link_values link = one(wan_line);
    EXPECT_EQ(link.device_count, 1);
    EXPECT_EQ(link.device_type[0], wans_row);
    EXPECT_EQ(link.device_board[0], 1);
    EXPECT_EQ(link.device_line[0], 1);
    EXPECT_EQ(link.net_type, NET_WAN84);
    EXPECT_EQ(link.link_mode, LC_LAPBDTE);
    EXPECT_STREQ(link.local_address, "23421234567");
    EXPECT_EQ(link.subnet.address.snid, 2u);
}

TEST_F(LinkInventory, QuestionMarkInTheFifthFieldEndsTheLine) {
    tree.write("config/subnetworks", "7 seven the seventh link\n");
    link_values link = one("wans 3 1 7 ?WAN LC_LAPBDTE - 123 WANS");
    EXPECT_EQ(link.device_count, 0);
    EXPECT_EQ(link.subnet.address.snid, 0u);
    EXPECT_EQ(link.subnet.name, nullptr);
    EXPECT_EQ(link.device_board[0], 3); // fields before it are kept
    EXPECT_EQ(link.link_mode, 0);       // fields after it are not read
}

TEST_F(LinkInventory, QuestionMarkInAnyFieldEndsTheLine) {
    link_values link = one("wans 0 0 2 WAN88 LC_LAPBDTE - 123 ?");
    EXPECT_EQ(link.device_count, 0);
    EXPECT_EQ(link.subnet.address.snid, 0u);
    EXPECT_EQ(link.link_mode, LC_LAPBDTE);
}

TEST_F(LinkInventory, WanAddressWithALetterIsInvalidButStillANode) {
    link_values link = one("wans 0 0 2 WAN88 LC_LAPBDTE - 2342A WANS");
    EXPECT_EQ(link.device_count, 0);
    EXPECT_STREQ(link.local_address, "2342A");
    EXPECT_EQ(link.subnet.address.snid, 2u);
}

TEST_F(LinkInventory, LanAddressTakesHexadecimalDigitsOfEitherCase) {
    EXPECT_EQ(one("ethr 0 0 1 LAN LC_LLC2 - 08002aBcDeF0 ethr").device_count, 1);
}

TEST_F(LinkInventory, LanAddressWithANonHexadecimalLetterIsInvalid) {
    EXPECT_EQ(one("ethr 0 0 1 LAN LC_LLC2 - 08002G ETHR").device_count, 0);
}

TEST_F(LinkInventory, LocalAddressIsCutToSeventeenCharacters) {
    link_values link = one("wans 0 0 2 WAN88 LC_LAPBDTE - 123456789012345678901 WANS");
    EXPECT_STREQ(link.local_address, "12345678901234567");
    EXPECT_EQ(link.device_count, 1);
}

TEST_F(LinkInventory, DeviceKindsAreComparedWithoutCase) {
    EXPECT_EQ(one("WLOOP 0 0 2 wan80 lc_lapbdce - 1 wans").device_count, 1);
}

TEST_F(LinkInventory, UnknownDeviceKindIsInvalid) {
    link_values link = one("sync 0 0 2 WAN88 LC_LAPBDTE - 123 WANS");
    EXPECT_EQ(link.device_count, 0);
    EXPECT_EQ(link.link_mode, LC_LAPBDTE); // the other fields are still read
}

TEST_F(LinkInventory, UnknownNetworkTypeStores255) {
    link_values link = one("wans 0 0 2 WAN92 LC_LAPBDTE - 123 WANS");
    EXPECT_EQ(link.net_type, 255);
    EXPECT_EQ(link.device_count, 0);
}

TEST_F(LinkInventory, UnknownLinkClassStores255) {
    link_values link = one("wans 0 0 2 WAN88 LC_HDLC - 123 WANS");
    EXPECT_EQ(link.link_mode, 255);
    EXPECT_EQ(link.device_count, 0);
}

TEST_F(LinkInventory, LinkClassMlpIsKnown) {
    link_values link = one("wans 0 0 2 MLP2 lc_mlp - 123 WANS");
    EXPECT_EQ(link.link_mode, 27);
    EXPECT_EQ(link.net_type, NET_MLP2);
    EXPECT_EQ(link.device_count, 1);
}

TEST_F(LinkInventory, UnknownDeviceNameStoresRowZero) {
    link_values link = one("ethr 0 0 1 LAN LC_LLC1 - 0800 TOKEN");
    EXPECT_EQ(link.device_type[0], 0);
    EXPECT_EQ(link.device_count, 0);
}

TEST_F(LinkInventory, TenthFieldMakesTheLineInvalid) {
    EXPECT_EQ(one(std::string(wan_line) + " extra").device_count, 0);
}

TEST_F(LinkInventory, EightFieldsMakeTheLineInvalid) {
    link_values link = one("wans 1 1 2 WAN84 LC_LAPBDTE - 23421234567");
    EXPECT_EQ(link.device_count, 0);
    EXPECT_EQ(link.subnet.address.snid, 2u);
}

TEST_F(LinkInventory, BlanksTabsAndTheLineEndAreSeparators) {
    link_values link = one("  wans\t1 \t 1\t2 WAN84\tLC_LAPBDTE - 23421234567 WANS \t\r");
    EXPECT_EQ(link.device_count, 1);
    EXPECT_STREQ(link.local_address, "23421234567");
}

TEST_F(LinkInventory, CommentAndEmptyLinesAreSkippedABlankLineIsANode) {
    ASSERT_EQ(read("# links\n\n" + std::string(lan_line) + "\n   \t\n"), 0);
    auto nodes = inventory.nodes();
    ASSERT_EQ(nodes.size(), 2u);
    EXPECT_EQ(nodes[0]->device_count, 1);
    EXPECT_EQ(nodes[1]->device_count, 0);
    EXPECT_EQ(nodes[1]->subnet.address.snid, 0u);
    EXPECT_EQ(nodes[1]->mlp_priority[0], 1);
}

TEST_F(LinkInventory, NodesFollowTheFileOrder) {
    ASSERT_EQ(read(std::string(wan_line) + "\n" + lan_line + "\n"), 0);
    auto nodes = inventory.nodes();
    ASSERT_EQ(nodes.size(), 2u);
    EXPECT_EQ(nodes[0]->subnet.address.snid, 2u);
    EXPECT_EQ(nodes[1]->subnet.address.snid, 1u);
}

TEST_F(LinkInventory, EmptyFileGivesAnEmptyList) {
    EXPECT_EQ(read("# nothing yet\n"), 0);
    EXPECT_EQ(inventory.head, nullptr);
}

TEST_F(LinkInventory, OverlongLineIsANodeWithoutDevice) {
    std::string line = std::string(wan_line) + std::string(1100, ' ') + "x\n";
    ASSERT_EQ(read(line + lan_line + "\n"), 0);
    auto nodes = inventory.nodes();
    ASSERT_EQ(nodes.size(), 2u);
    EXPECT_EQ(nodes[0]->device_count, 0);
    EXPECT_EQ(nodes[1]->device_count, 1); // the tail did not become a line
}

TEST_F(LinkInventory, SubnetworksGiveAddressAliasAndDescription) {
    tree.write("config/subnetworks", "2.23421234567\tpdn\tLeased line, 64k\n1 sitelan\n");
    ASSERT_EQ(read(std::string(wan_line) + "\n" + lan_line + "\n"), 0);
    auto nodes = inventory.nodes();
    ASSERT_EQ(nodes.size(), 2u);
    char text[X25_ADDRESS_TEXT_MAX];
    ASSERT_EQ(x25tos(&nodes[0]->subnet.address, text, 0), 0);
    EXPECT_STREQ(text, "2.23421234567");
    EXPECT_STREQ(nodes[0]->subnet.name, "pdn");
    EXPECT_STREQ(nodes[0]->subnet.description, "Leased line, 64k");
    EXPECT_STREQ(nodes[1]->subnet.name, "sitelan");
    EXPECT_EQ(nodes[1]->subnet.description, nullptr); // an absent text
    // The copies are the link's own, not the database's line buffer.
    EXPECT_NE(nodes[0]->subnet.name, __get_subnet(2)->name);
}

TEST_F(LinkInventory, EmptyDescriptionGivesNoCopy) {
    tree.write("config/subnetworks", "2 pdn \n");
    link_values link = one(wan_line);
    EXPECT_STREQ(link.subnet.name, "pdn");
    EXPECT_EQ(link.subnet.description, nullptr);
}

TEST_F(LinkInventory, LinkMissingFromSubnetworksKeepsItsNumber) {
    tree.write("config/subnetworks", "1 sitelan\n");
    link_values link = one(wan_line);
    EXPECT_EQ(link.subnet.address.snid, 2u);
    EXPECT_EQ(link.subnet.address.dte_len, 0);
    EXPECT_EQ(link.subnet.name, nullptr);
}

TEST_F(LinkInventory, MissingSubnetworksFileGivesNumbersOnly) {
    link_values link = one(lan_line);
    EXPECT_EQ(link.subnet.address.snid, 1u);
    EXPECT_EQ(link.subnet.name, nullptr);
    EXPECT_EQ(link.device_count, 1);
}

TEST_F(LinkInventory, DuplicateDeviceIsReportedOnceAndKept) {
    ASSERT_EQ(read(std::string(wan_line) + "\n" + lan_line + "\n" +
                   "wans 1 1 5 WAN88 LC_LAPBDTE - 999 WANS\n"),
              0);
    EXPECT_EQ(messages(),
              std::vector<std::string>{"Duplicate device in file " + x25conf_path() + "\n"});
    auto nodes = inventory.nodes();
    ASSERT_EQ(nodes.size(), 3u);
    EXPECT_EQ(nodes[2]->subnet.address.snid, 5u);
    EXPECT_EQ(nodes[2]->device_count, 1);
}

TEST_F(LinkInventory, InvalidLinesNeverUseADevice) {
    ASSERT_EQ(read("wans 1 1 2 WAN84 LC_LAPBDTE - 2342A WANS\n" + std::string(wan_line) + "\n"), 0);
    EXPECT_TRUE(messages().empty());
}

TEST_F(LinkInventory, PvcsHangOnTheFirstNodeOfTheirLink) {
    tree.write("config/pvcmapconf", "2 1 128 128 2 2\n9 1 128 128 2 2\n2 2 256 256 4 4\n");
    ASSERT_EQ(read(std::string(wan_line) + "\n" + "wans 1 0 2 WAN84 LC_LAPBDTE - 1 WANS\n"), 0);
    EXPECT_EQ(messages(), std::vector<std::string>{"Found PVC for unconfigured link 9, skipped\n"});
    auto nodes = inventory.nodes();
    ASSERT_EQ(nodes.size(), 2u);
    ASSERT_NE(nodes[0]->pvcs, nullptr);
    EXPECT_EQ(nodes[0]->pvcs->lcn, 1);
    ASSERT_NE(nodes[0]->pvcs->next, nullptr);
    EXPECT_EQ(nodes[0]->pvcs->next->lcn, 2);
    EXPECT_EQ(nodes[1]->pvcs, nullptr);
}

TEST_F(LinkInventory, MissingX25confStopsAfterTheMessage) {
    inventory.head = reinterpret_cast<link_node *>(&tree); // must be cleared
    EXPECT_EQ(read_link_parameters(&inventory.head), ENOENT);
    EXPECT_EQ(inventory.head, nullptr);
    EXPECT_EQ(messages(), std::vector<std::string>{"Error opening file " + x25conf_path() + "\n"});
}

TEST_F(LinkInventory, DirectoryInPlaceOfX25confIsRefused) {
    std::filesystem::create_directory(x25conf_path());
    EXPECT_EQ(read_link_parameters(&inventory.head), EISDIR);
    EXPECT_EQ(messages(), std::vector<std::string>{"Error opening file " + x25conf_path() + "\n"});
}

TEST_F(LinkInventory, MissingBoardconfReturnsWhatTheErrorFunctionReturns) {
    std::filesystem::remove(tree.config_dir() + "/boardconf");
    tree.write("config/x25conf", std::string(lan_line) + "\n");
    EXPECT_EQ(read_link_parameters(&inventory.head), 0);
    EXPECT_EQ(inventory.head, nullptr);
    EXPECT_EQ(messages(), std::vector<std::string>{"Unable to read boardconf file\n"});

    set_link_error_function([](const char *) { return 42; });
    EXPECT_EQ(read_link_parameters(&inventory.head), 42);
    set_link_error_function(nullptr);
}

TEST_F(LinkInventory, DefaultErrorFunctionWritesTheTextAsItIs) {
    set_link_error_function(nullptr);
    qx25test::CapturedStderr captured;
    EXPECT_EQ(read_link_parameters(&inventory.head), ENOENT);
    EXPECT_EQ(captured.text(), "Error opening file " + x25conf_path() + "\n");
}

TEST_F(LinkInventory, InventoryTableIsFilledOnEveryRead) {
    ASSERT_EQ(read(std::string(lan_line) + "\n"), 0);
    EXPECT_STREQ(linktype[ethr_row].symbolic, "ETHR");
    tree.write("config/boardconf", "LAN_DEVICE\n\tsymbolic ETHR\n\tdevice eth\n");
    Inventory second;
    ASSERT_EQ(read_link_parameters(&second.head), 0);
    auto nodes = second.nodes();
    ASSERT_EQ(nodes.size(), 1u);
    EXPECT_EQ(nodes[0]->device_type[0], 0); // ETHR is row 0 now
    EXPECT_EQ(nodes[0]->device_count, 1);
}

// ---- Checking one line --------------------------------------------------------

struct fault_case {
    const char *line;
    x25conf_fault fault;
    int field;
};

TEST_F(LinkInventory, CheckNamesTheFirstFieldAtFault) {
    ASSERT_EQ(fill_linktype_struct(linktype), 1);
    const fault_case cases[] = {
        {wan_line, X25CONF_VALID, 0},
        {"sync 1 1 2 WAN84 LC_LAPBDTE - 1 WANS", X25CONF_DEVICE_KIND, 1},
        {"wans 1 1 2 WAN92 LC_LAPBDTE - 1 WANS", X25CONF_NET_TYPE, 5},
        {"wans 1 1 2 WAN84 LC_X - 1 WANS", X25CONF_LINK_CLASS, 6},
        {"wans 1 1 2 WAN84 LC_LAPBDTE - 1F WANS", X25CONF_LOCAL_ADDRESS, 8},
        {"wans 1 1 2 WAN84 LC_LAPBDTE - 1 NONE", X25CONF_UNKNOWN_DEVICE, 9},
        {"wans 1 1 2 WAN84 LC_LAPBDTE - 1 ETHR", X25CONF_DEVICE_TYPE, 9},
        {"wans 1 1 ? WAN84 LC_LAPBDTE - 1 WANS", X25CONF_QUESTION_MARK, 4},
        {"wans 1 1 2 WAN84 LC_LAPBDTE", X25CONF_TOO_FEW_FIELDS, 7},
        {"wans 1 1 2 WAN84 LC_LAPBDTE - 1 WANS x y", X25CONF_TOO_MANY_FIELDS, 10},
        {"sync 1 1 2 WAN92 LC_X - 1 NONE", X25CONF_DEVICE_KIND, 1},
    };
    for (const fault_case &c : cases) {
        link_values link{};
        x25conf_check check = check_x25conf_line(c.line, linktype, &link);
        EXPECT_EQ(check.fault, c.fault) << c.line;
        EXPECT_EQ(check.field, c.field) << c.line;
    }
}

TEST_F(LinkInventory, CheckCountsFieldsAndGivesTheLinkNumber) {
    ASSERT_EQ(fill_linktype_struct(linktype), 1);
    link_values link{};
    x25conf_check check = check_x25conf_line("wans 1 1 17 WAN84 LC_X - 1 WANS z", linktype, &link);
    EXPECT_EQ(check.fields, 10);
    EXPECT_EQ(check.link_number, 17);
    EXPECT_EQ(check.field, 6);
}

TEST(LinkClasses, TableHasTheClassesInOrderThenTheEndRow) {
    const char *names[] = {"LC_LLC1",     "LC_LLC2",      "LC_LAPBDTE",  "LC_LAPBXDTE",
                           "LC_LAPBDCE",  "LC_LAPBXDCE",  "LC_LAPDTE",   "LC_LAPDCE",
                           "LC_MLAPBDTE", "LC_MLAPBXDTE", "LC_MLAPBDCE", "LC_MLAPBXDCE",
                           "LC_MLP"};
    for (int row = 0; row < 13; ++row) {
        EXPECT_STREQ(netclass[row].name, names[row]);
        EXPECT_EQ(netclass[row].value, 15 + row);
    }
    EXPECT_STREQ(netclass[13].name, "?");
    EXPECT_EQ(netclass[13].value, 0);
}

// ---- Backup of a file ---------------------------------------------------------------

class BackupFile : public ::testing::Test {
  protected:
    std::string path() const { return tree.root() + "/file.cfg"; }
    mode_t mode_of(const std::string &file) const {
        struct stat status {};
        EXPECT_EQ(::stat(file.c_str(), &status), 0) << file;
        return status.st_mode & 07777;
    }
    ConfigTree tree;
};

TEST_F(BackupFile, MissingFileGivesDevNullAndCreatesNothing) {
    EXPECT_STREQ(x25_backup_file(path().c_str()), "/dev/null");
    EXPECT_FALSE(std::filesystem::exists(path()));
    EXPECT_FALSE(std::filesystem::exists(path() + ".BAK"));
}

TEST_F(BackupFile, EmptyOrNullPathGivesNull) {
    EXPECT_EQ(x25_backup_file(""), nullptr);
    EXPECT_EQ(x25_backup_file(nullptr), nullptr);
}

TEST_F(BackupFile, OtherStatusFailureGivesNull) {
    tree.write("plain", "x");
    EXPECT_EQ(x25_backup_file((tree.root() + "/plain/below").c_str()), nullptr);
}

TEST_F(BackupFile, FileMovesAsideAndAnEmptyOneTakesItsName) {
    tree.write("file.cfg", "contents\n");
    const char *name = x25_backup_file(path().c_str());
    ASSERT_NE(name, nullptr);
    EXPECT_EQ(std::string(name), path() + ".BAK");
    EXPECT_EQ(qx25test::read_file(path() + ".BAK"), "contents\n");
    EXPECT_TRUE(std::filesystem::exists(path()));
    EXPECT_EQ(std::filesystem::file_size(path()), 0u);
}

TEST_F(BackupFile, UnusualModeIsKeptOnBothFiles) {
    tree.write("file.cfg", "contents\n");
    ASSERT_EQ(::chmod(path().c_str(), 04751), 0);
    mode_t saved = ::umask(077);
    ASSERT_NE(x25_backup_file(path().c_str()), nullptr);
    ::umask(saved);
    EXPECT_EQ(mode_of(path()), 04751u);
    EXPECT_EQ(mode_of(path() + ".BAK"), 04751u);
}

TEST_F(BackupFile, EarlierBackupIsReplaced) {
    tree.write("file.cfg.BAK", "old backup\n");
    tree.write("file.cfg", "contents\n");
    ASSERT_NE(x25_backup_file(path().c_str()), nullptr);
    EXPECT_EQ(qx25test::read_file(path() + ".BAK"), "contents\n");
}

TEST_F(BackupFile, FailedRenameEmptiesTheFileInPlace) {
    tree.write("file.cfg", "contents\n");
    tree.write("file.cfg.BAK/occupied", "a directory holds the backup name\n");
    ASSERT_EQ(::chmod(path().c_str(), 0604), 0);
    EXPECT_EQ(x25_backup_file(path().c_str()), nullptr);
    EXPECT_EQ(std::filesystem::file_size(path()), 0u);
    EXPECT_EQ(mode_of(path()), 0604u);
    EXPECT_TRUE(std::filesystem::is_directory(path() + ".BAK"));
}

TEST_F(BackupFile, NextCallOverwritesTheReturnedName) {
    tree.write("a", "1");
    tree.write("b", "2");
    const char *first = x25_backup_file((tree.root() + "/a").c_str());
    ASSERT_NE(first, nullptr);
    std::string first_text = first;
    const char *second = x25_backup_file((tree.root() + "/b").c_str());
    EXPECT_EQ(first, second);
    EXPECT_EQ(first_text, tree.root() + "/a.BAK");
    EXPECT_EQ(std::string(second), tree.root() + "/b.BAK");
}

} // namespace
