// Link discovery: link file names, the scan of the config directory, the
// order of the chain, device conflicts, unreadable files, the attached PVCs
// and the removal of old link files.
#include "qx25.h"

#include "captured_messages.h"
#include "config_tree.h"
#include "link_config.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <numeric>
#include <random>
#include <string>
#include <vector>

using qx25test::ConfigTree;
using qx25test::messages;

namespace fs = std::filesystem;

namespace {

using messages_t = std::vector<std::string>;
using numbers_t = std::vector<uint32_t>;

const char *const head = "IDENTIFICATION\n"
                         "\tPRODUCT_NAME\tQuenlark X.25\n"
                         "\tFILE_TYPE\tx25link\n";

// Two lines a board: wan0 is board 0 line 0, wan1 board 0 line 1, wan2
// board 1 line 0.
const char *const boardconf = "WAN_DEVICE\n\tsymbolic WANS\n\tdevice wan\n\tlines 2\n"
                              "LAN_DEVICE\n\tsymbolic ETHR\n\tdevice eth\n\tlines 1\n";

std::string link_file_name(int number) {
    char name[32];
    std::snprintf(name, sizeof name, "link_config_%04d.cfg", number);
    return name;
}

// Releases a node the way every holder of a chain does.
void release_node(link_node *node) {
    __release_link_section(&node->link);
    std::free(node);
}

void release_chain(link_node *node) {
    while (node != nullptr) {
        link_node *next = node->next;
        release_node(node);
        node = next;
    }
}

messages_t sorted(messages_t list) {
    std::sort(list.begin(), list.end());
    return list;
}

class Discovery : public testing::Test {
  protected:
    void SetUp() override {
        qx25test::capture_all_messages();
        tree.write("config/boardconf", boardconf);
    }
    void TearDown() override {
        release_chain(chain);
        for (device_type &row : __config_linktype)
            if (reinterpret_cast<uintptr_t>(row.comment) != 0xFFFFFFFEu) {
                std::free(row.comment);
                row.comment = nullptr;
            }
    }

    // Writes config/config/link_config_NNNN.cfg: the IDENTIFICATION block,
    // then SECTION LINK and the given keyword lines.
    std::string link_file(int number, const std::string &link_lines = "") {
        return tree.write("config/config/" + link_file_name(number),
                          std::string(head) + "SECTION LINK\n" + link_lines);
    }

    std::string links_dir() const { return tree.config_dir() + "/config"; }
    bool exists(const std::string &name) const { return fs::exists(links_dir() + "/" + name); }

    int find() { return x25_find_link_parameters(&chain); }

    // The link numbers of the chain from its head, each prev pointer checked
    // on the way.
    numbers_t numbers() const {
        numbers_t result;
        const link_node *previous = nullptr;
        for (const link_node *node = chain; node != nullptr; node = node->next) {
            EXPECT_EQ(node->prev, previous) << "link " << node->link.values.subnet.address.snid;
            result.push_back(node->link.values.subnet.address.snid);
            previous = node;
        }
        return result;
    }

    ConfigTree tree;
    link_node *chain = nullptr;
};

// ---- File names ---------------------------------------------------------------

TEST(LinkFileNames, FourDigitsGiveTheLinkNumber) {
    EXPECT_EQ(valid_filename("link_config_0000.cfg"), 0);
    EXPECT_EQ(valid_filename("link_config_0001.cfg"), 1);
    EXPECT_EQ(valid_filename("link_config_0254.cfg"), 254);
    EXPECT_EQ(valid_filename("link_config_9999.cfg"), 9999);
    EXPECT_EQ(valid_filename("link_config_1000.cfg"), 1000);
}

TEST(LinkFileNames, EverythingElseIsRefused) {
    for (const char *name :
         {"link_config_12.cfg", "link_config_00001.cfg", "link_config_0001.cfg.bak",
          "LINK_CONFIG_0001.cfg", "link_config_0001.CFG", "link_config_00a1.cfg",
          "link_config_+001.cfg", "link_config_ 001.cfg", "link_config_-001.cfg",
          "link_config_0001xcfg", "link-config_0001.cfg", "xlink_config_0001.cfg",
          "link_config_0001.cf", "link_config_.cfg", "", ".", ".."}) {
        EXPECT_EQ(valid_filename(name), -1) << name;
    }
    EXPECT_EQ(valid_filename(nullptr), -1);
}

// ---- Scanning the directory -------------------------------------------------

TEST_F(Discovery, ChainIsInLinkOrderWhateverTheFileOrder) {
    link_file(2);
    link_file(1);
    EXPECT_EQ(find(), 0);
    EXPECT_EQ(numbers(), (numbers_t{1, 2}));
    EXPECT_TRUE(messages().empty());
}

TEST_F(Discovery, ManyFilesInRandomOrderComeOutAscending) {
    std::vector<int> all(255);
    std::iota(all.begin(), all.end(), 0);
    std::mt19937 random(2025);
    std::shuffle(all.begin(), all.end(), random);
    std::vector<int> picked(all.begin(), all.begin() + 20);
    for (int number : picked)
        link_file(number, "\talias link" + std::to_string(number) + "\n");

    EXPECT_EQ(find(), 0);
    std::sort(picked.begin(), picked.end());
    EXPECT_EQ(numbers(), numbers_t(picked.begin(), picked.end()));
    for (const link_node *node = chain; node != nullptr; node = node->next) {
        ASSERT_NE(node->link.values.subnet.name, nullptr);
        EXPECT_EQ(std::string(node->link.values.subnet.name),
                  "link" + std::to_string(node->link.values.subnet.address.snid));
    }
    EXPECT_TRUE(messages().empty());
}

TEST_F(Discovery, NodesCarryTheirLinkSection) {
    link_file(7, "! the main line\n\tdevice wan1\t! second line\n\talias main\n"
                 "\tdescription to the exchange\n");
    ASSERT_EQ(find(), 0);
    ASSERT_EQ(numbers(), (numbers_t{7}));
    const link_values &values = chain->link.values;
    EXPECT_EQ(values.device_count, 1);
    EXPECT_EQ(values.device_type[0], 0);
    EXPECT_EQ(values.device_board[0], 0);
    EXPECT_EQ(values.device_line[0], 1);
    EXPECT_STREQ(values.subnet.name, "main");
    EXPECT_STREQ(values.subnet.description, "to the exchange");
    EXPECT_STREQ(chain->link.keyword[0].comments, " the main line\n");
    EXPECT_STREQ(chain->link.keyword[0].trailer, " second line");
    EXPECT_EQ(values.pvcs, nullptr);
    EXPECT_TRUE(messages().empty());
}

TEST_F(Discovery, OtherNamesAreIgnored) {
    link_file(1);
    std::string body = std::string(head) + "SECTION LINK\n";
    for (const char *name : {"link_config_12.cfg", "link_config_0001.cfg.bak",
                             "LINK_CONFIG_0001.cfg", "link_config_00a1.cfg", "notes.txt"})
        tree.write(std::string("config/config/") + name, body);
    fs::create_directories(links_dir() + "/link_config_0003.cfg.d");

    EXPECT_EQ(find(), 0);
    EXPECT_EQ(numbers(), (numbers_t{1}));
    EXPECT_TRUE(messages().empty());
}

TEST_F(Discovery, EmptyDirectoryGivesAnEmptyChain) {
    link_node placeholder{};
    link_node *result = &placeholder;
    EXPECT_EQ(x25_find_link_parameters(&result), 0);
    EXPECT_EQ(result, nullptr);
    EXPECT_TRUE(messages().empty());
}

TEST_F(Discovery, DirectoryWithoutLinkFilesGivesAnEmptyChain) {
    tree.write("config/config/notes.txt", "nothing\n");
    EXPECT_EQ(find(), 0);
    EXPECT_EQ(chain, nullptr);
    EXPECT_TRUE(messages().empty());
}

TEST_F(Discovery, NullArgumentIsReported) {
    EXPECT_EQ(x25_find_link_parameters(nullptr), EINVAL);
    EXPECT_EQ(messages(), messages_t{"Null pointer passed to x25_find_link_parameters\n"});
}

TEST_F(Discovery, MissingBoardconfIsReported) {
    link_file(1);
    fs::remove(tree.config_dir() + "/boardconf");
    link_node placeholder{};
    link_node *result = &placeholder;
    EXPECT_EQ(x25_find_link_parameters(&result), ENOENT);
    EXPECT_EQ(result, nullptr);
    EXPECT_EQ(messages(), messages_t{"Unable to read boardconf file\n"});
}

TEST_F(Discovery, BoardconfIsReadAgainOnEveryCall) {
    link_file(1);
    ASSERT_EQ(find(), 0);
    release_chain(chain);
    chain = nullptr;
    // A table filled once is no excuse: without the file there is no scan.
    fs::remove(tree.config_dir() + "/boardconf");
    EXPECT_EQ(find(), ENOENT);
    EXPECT_EQ(chain, nullptr);
    EXPECT_EQ(messages(), messages_t{"Unable to read boardconf file\n"});
}

TEST_F(Discovery, MissingDirectoryIsReported) {
    fs::remove_all(links_dir());
    link_node placeholder{};
    link_node *result = &placeholder;
    EXPECT_EQ(x25_find_link_parameters(&result), EBADF);
    EXPECT_EQ(result, nullptr);
    EXPECT_EQ(messages(), messages_t{"Error opening directory " + links_dir() + "\n"});
}

TEST_F(Discovery, TrailingSlashOfTheConfigurationDirectoryIsKept) {
    ::setenv("X25CONFIGFILES", (tree.config_dir() + "/").c_str(), 1);
    link_file(4);
    EXPECT_EQ(find(), 0);
    EXPECT_EQ(numbers(), (numbers_t{4}));
    release_chain(chain);
    chain = nullptr;
    fs::remove_all(links_dir());
    EXPECT_EQ(find(), EBADF);
    EXPECT_EQ(messages(),
              messages_t{"Error opening directory " + tree.config_dir() + "//config\n"});
}

// ---- Unreadable files -------------------------------------------------------

TEST_F(Discovery, OnlyUnreadableFilesGiveTwo) {
    std::string broken = tree.write("config/config/link_config_0001.cfg", "SECTION LINK\n");
    fs::create_directories(links_dir() + "/link_config_0002.cfg");

    EXPECT_EQ(find(), ENOENT);
    EXPECT_EQ(chain, nullptr);
    EXPECT_EQ(sorted(messages()),
              sorted({"Error reading IDENTIFICATION section from file " + broken + ", line 1\n",
                      "Error opening file " + links_dir() + "/link_config_0002.cfg\n",
                      "Error reading file link_config_0001.cfg\n",
                      "Error reading file link_config_0002.cfg\n"}));
}

TEST_F(Discovery, UnreadableFileIsSkippedAndTheRestIsRead) {
    link_file(3);
    std::string broken =
        tree.write("config/config/link_config_0001.cfg", "SECTION LINK\n\tdevice wan0\n");
    link_file(5);

    EXPECT_EQ(find(), 0);
    EXPECT_EQ(numbers(), (numbers_t{3, 5}));
    EXPECT_EQ(sorted(messages()),
              sorted({"Error reading IDENTIFICATION section from file " + broken + ", line 1\n",
                      "Error reading file link_config_0001.cfg\n"}));
}

// ---- Device conflicts ---------------------------------------------------------

TEST_F(Discovery, SecondLinkOnTheSameDeviceIsRefused) {
    // Comments and alias on both, so the refused node has something to free.
    link_file(1, "! first\n\tdevice wan1\n\talias one\n\tdescription first link\n");
    link_file(2, "! second\n\tdevice wan1\n\talias two\n\tdescription second link\n");

    EXPECT_EQ(find(), 0);
    numbers_t kept = numbers();
    ASSERT_EQ(kept.size(), 1u);
    ASSERT_TRUE(kept[0] == 1 || kept[0] == 2) << kept[0];
    // Directory order decides which file is read second; that one is refused.
    int refused = kept[0] == 1 ? 2 : 1;
    EXPECT_EQ(messages(), messages_t{"Duplicate device in file " + link_file_name(refused) + "\n"});
    EXPECT_STREQ(chain->link.values.subnet.name, kept[0] == 1 ? "one" : "two");
}

TEST_F(Discovery, RefusedLanLinkIsReleasedWhole) {
    // Every comment pair goes with the refused node, max_lan_conns's too
    // (which free_link_comments leaves alone); the sanitizer build proves it.
    link_file(1, "\tdevice eth0\n\ttype LAN\n! conns\n\tmax_lan_conns 8 ! eight\n");
    link_file(2, "\tdevice eth0\n\ttype LAN\n! conns\n\tmax_lan_conns 9 ! nine\n");
    EXPECT_EQ(find(), 0);
    ASSERT_EQ(numbers().size(), 1u);
    ASSERT_EQ(messages().size(), 1u);
    EXPECT_STREQ(chain->link.keyword[9].comments, " conns\n");
}

TEST_F(Discovery, SharingOneOfSeveralDevicesIsAConflict) {
    link_file(1, "\tdevice wan0, wan2\n");
    link_file(2, "\tdevice eth0, wan2\n");
    link_file(3, "\tdevice wan1\n");

    EXPECT_EQ(find(), 0);
    numbers_t kept = numbers();
    ASSERT_EQ(kept.size(), 2u);
    EXPECT_EQ(kept[1], 3u);
    ASSERT_TRUE(kept[0] == 1 || kept[0] == 2) << kept[0];
    int refused = kept[0] == 1 ? 2 : 1;
    EXPECT_EQ(messages(), messages_t{"Duplicate device in file " + link_file_name(refused) + "\n"});
}

TEST_F(Discovery, DevicesDifferingInLineBoardOrTypeDoNotConflict) {
    link_file(1, "\tdevice wan0\n"); // board 0 line 0
    link_file(2, "\tdevice wan1\n"); // board 0 line 1
    link_file(3, "\tdevice wan2\n"); // board 1 line 0
    link_file(4, "\tdevice eth0\n"); // another type, board 0 line 0
    EXPECT_EQ(find(), 0);
    EXPECT_EQ(numbers(), (numbers_t{1, 2, 3, 4}));
    EXPECT_TRUE(messages().empty());
}

TEST_F(Discovery, LinksWithoutDevicesNeverConflict) {
    link_file(1);
    link_file(2);
    link_file(3, "\tdevice wan0\n");
    EXPECT_EQ(find(), 0);
    EXPECT_EQ(numbers(), (numbers_t{1, 2, 3}));
    EXPECT_TRUE(messages().empty());
}

// A chain of two nodes built by hand: wan0 (type 0, board 0, line 0) on link
// 1 and a link 2 without devices.
class DeviceUse : public testing::Test {
  protected:
    void SetUp() override {
        first.next = &second;
        second.prev = &first;
        first.link.values.subnet.address.snid = 1;
        first.link.values.device_count = 1;
        second.link.values.subnet.address.snid = 2;
    }
    link_node first{};
    link_node second{};
};

TEST_F(DeviceUse, NodeNeverConflictsWithItself) {
    EXPECT_EQ(__device_used(&first.link.values, &first), 0);
    link_values copy = first.link.values;
    EXPECT_EQ(__device_used(&copy, &first), 1);
}

TEST_F(DeviceUse, LinkWithoutDevicesNeverConflicts) {
    // Its device fields are zero, like wan0's, but it has no device.
    link_values none{};
    EXPECT_EQ(__device_used(&none, &first), 0);
    link_values on_wan0{};
    on_wan0.device_count = 1;
    first.link.values.device_count = 0;
    EXPECT_EQ(__device_used(&on_wan0, &first), 0);
}

TEST_F(DeviceUse, TypeBoardAndLineMustAllMatch) {
    link_values other{};
    other.device_count = 2;
    other.device_type[0] = 1; // first device: other type
    other.device_board[1] = 1;
    EXPECT_EQ(__device_used(&other, &first), 0);
    other.device_board[1] = 0;
    other.device_line[1] = 1;
    EXPECT_EQ(__device_used(&other, &first), 0);
    other.device_line[1] = 0; // second device: wan0
    EXPECT_EQ(__device_used(&other, &first), 1);
}

TEST_F(DeviceUse, EveryNodeOfTheChainIsLookedAt) {
    second.link.values.device_count = 1;
    second.link.values.device_line[0] = 1;
    first.link.values.device_count = 0;
    link_values other{};
    other.device_count = 1;
    other.device_line[0] = 1;
    EXPECT_EQ(__device_used(&other, &first), 1);
    EXPECT_EQ(__device_used(&other, nullptr), 0);
    EXPECT_EQ(__device_used(nullptr, &first), 0);
}

// ---- One directory entry ---------------------------------------------------

TEST_F(Discovery, EntryThatIsNoLinkFileGivesOne) {
    link_node placeholder{};
    link_node *node = &placeholder;
    EXPECT_EQ(process_dp("notes.txt", &node), 1);
    EXPECT_EQ(node, nullptr);
    EXPECT_EQ(process_dp("link_config_12.cfg", &node), 1);
    EXPECT_EQ(process_dp(nullptr, &node), 1);
    EXPECT_EQ(process_dp("link_config_0001.cfg", nullptr), 1);
    EXPECT_TRUE(messages().empty());
}

TEST_F(Discovery, EntryOfAMissingFileGivesThirteen) {
    link_node *node = nullptr;
    EXPECT_EQ(process_dp("link_config_0007.cfg", &node), 13);
    EXPECT_EQ(node, nullptr);
    EXPECT_EQ(messages(),
              (messages_t{"Error opening file " + links_dir() + "/link_config_0007.cfg\n",
                          "Error reading file link_config_0007.cfg\n"}));
}

TEST_F(Discovery, EntryOfALinkFileGivesANode) {
    link_file(12, "\talias twelve\n");
    link_node *node = nullptr;
    ASSERT_EQ(process_dp("link_config_0012.cfg", &node), 0);
    ASSERT_NE(node, nullptr);
    EXPECT_EQ(node->prev, nullptr);
    EXPECT_EQ(node->next, nullptr);
    EXPECT_EQ(node->link.values.subnet.address.snid, 12u);
    EXPECT_STREQ(node->link.values.subnet.name, "twelve");
    release_node(node);
    EXPECT_TRUE(messages().empty());
}

// ---- Permanent virtual circuits ---------------------------------------------

TEST_F(Discovery, CircuitsAreAttachedToTheirLinks) {
    link_file(1);
    link_file(2);
    tree.write("config/pvcmapconf", "1 1 128 128 2 2\n2 1f 256 512 3 4\n");

    ASSERT_EQ(find(), 0);
    ASSERT_EQ(numbers(), (numbers_t{1, 2}));
    const pvc_entry *one = chain->link.values.pvcs;
    ASSERT_NE(one, nullptr);
    EXPECT_EQ(one->link, 1);
    EXPECT_EQ(one->lcn, 1);
    EXPECT_EQ(one->pktsize[0], 3);
    EXPECT_EQ(one->pktsize[1], 3);
    EXPECT_EQ(one->window[0], 2);
    EXPECT_EQ(one->window[1], 2);
    EXPECT_EQ(one->next, nullptr);
    const pvc_entry *two = chain->next->link.values.pvcs;
    ASSERT_NE(two, nullptr);
    EXPECT_EQ(two->link, 2);
    EXPECT_EQ(two->lcn, 0x1f);
    EXPECT_EQ(two->pktsize[0], 4);
    EXPECT_EQ(two->pktsize[1], 5);
    EXPECT_TRUE(messages().empty());
}

TEST_F(Discovery, CircuitsOfAnEmptyChainAreReported) {
    tree.write("config/pvcmapconf", "1 1 128 128 2 2\n");
    EXPECT_EQ(find(), 0);
    EXPECT_EQ(chain, nullptr);
    EXPECT_EQ(messages(), messages_t{"Found PVC for unconfigured link 1, skipped\n"});
}

TEST_F(Discovery, RefusedLinkGetsNoCircuits) {
    link_file(1, "\tdevice wan0\n");
    link_file(2, "\tdevice wan0\n");
    tree.write("config/pvcmapconf", "1 1 128 128 2 2\n2 1 128 128 2 2\n");
    ASSERT_EQ(find(), 0);
    numbers_t kept = numbers();
    ASSERT_EQ(kept.size(), 1u);
    int refused = kept[0] == 1 ? 2 : 1;
    ASSERT_NE(chain->link.values.pvcs, nullptr);
    EXPECT_EQ(chain->link.values.pvcs->link, static_cast<int32_t>(kept[0]));
    EXPECT_EQ(
        sorted(messages()),
        sorted({"Duplicate device in file " + link_file_name(refused) + "\n",
                "Found PVC for unconfigured link " + std::to_string(refused) + ", skipped\n"}));
}

// ---- Removing old link files ------------------------------------------------

TEST_F(Discovery, FilesOfLinksNotInTheChainAreRemoved) {
    for (int number : {1, 2, 3, 4})
        link_file(number);
    for (const char *name : {"notes.txt", "link_config_0002.cfg.bak", "link_config_12.cfg"})
        tree.write(std::string("config/config/") + name, "keep\n");

    link_node first{}, third{};
    first.link.values.subnet.address.snid = 1;
    third.link.values.subnet.address.snid = 3;
    first.next = &third;
    third.prev = &first;

    EXPECT_EQ(__delete_old_links(&first), 0);
    EXPECT_TRUE(exists("link_config_0001.cfg"));
    EXPECT_FALSE(exists("link_config_0002.cfg"));
    EXPECT_TRUE(exists("link_config_0003.cfg"));
    EXPECT_FALSE(exists("link_config_0004.cfg"));
    EXPECT_TRUE(exists("notes.txt"));
    EXPECT_TRUE(exists("link_config_0002.cfg.bak"));
    EXPECT_TRUE(exists("link_config_12.cfg"));
    EXPECT_TRUE(messages().empty());
}

TEST_F(Discovery, NullChainRemovesEveryLinkFile) {
    for (int number : {0, 1, 254, 9999})
        link_file(number);
    tree.write("config/config/notes.txt", "keep\n");
    tree.write("config/config/LINK_CONFIG_0001.cfg", "keep\n");

    EXPECT_EQ(__delete_old_links(nullptr), 0);
    std::vector<std::string> left;
    for (const fs::directory_entry &entry : fs::directory_iterator(links_dir()))
        left.push_back(entry.path().filename().string());
    std::sort(left.begin(), left.end());
    EXPECT_EQ(left, (std::vector<std::string>{"LINK_CONFIG_0001.cfg", "notes.txt"}));
    EXPECT_TRUE(messages().empty());
}

TEST_F(Discovery, RemovingWithoutADirectoryIsReported) {
    fs::remove_all(links_dir());
    EXPECT_EQ(__delete_old_links(nullptr), EBADF);
    EXPECT_EQ(messages(), messages_t{"Error opening directory " + links_dir() + "/\n"});
}

TEST_F(Discovery, DiscoveredChainKeepsItsOwnFiles) {
    for (int number : {5, 6, 7})
        link_file(number);
    ASSERT_EQ(find(), 0);
    fs::remove(links_dir() + "/link_config_0006.cfg");
    link_file(8);

    EXPECT_EQ(__delete_old_links(chain), 0);
    EXPECT_TRUE(exists("link_config_0005.cfg"));
    EXPECT_TRUE(exists("link_config_0007.cfg"));
    EXPECT_FALSE(exists("link_config_0008.cfg"));
    EXPECT_TRUE(messages().empty());
}

} // namespace
