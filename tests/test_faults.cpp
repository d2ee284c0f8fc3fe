// Allocation and read failures. This program is linked with calloc, malloc
// and fgets wrapped, so that a test can make the library's next allocation
// or read fail.
#include "qx25.h"

#include "captured_messages.h"
#include "link_config.h"
#include "new_config.h"
#include "release.h"

#include "config_tree.h"
#include "link_files.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

namespace {
int callocs_before_failure = 0; // callocs that still succeed first
int failing_callocs = 0;
int failing_mallocs = 0;
int fgets_before_failure = -1; // reads that still succeed; -1: never fail
} // namespace

extern "C" {
void *__real_calloc(std::size_t count, std::size_t size);
void *__real_malloc(std::size_t size);
char *__real_fgets(char *buffer, int size, FILE *stream);

void *__wrap_calloc(std::size_t count, std::size_t size) {
    if (failing_callocs > 0 && callocs_before_failure > 0) {
        --callocs_before_failure;
    } else if (failing_callocs > 0) {
        --failing_callocs;
        return nullptr;
    }
    return __real_calloc(count, size);
}

void *__wrap_malloc(std::size_t size) {
    if (failing_mallocs > 0) {
        --failing_mallocs;
        return nullptr;
    }
    return __real_malloc(size);
}

char *__wrap_fgets(char *buffer, int size, FILE *stream) {
    if (fgets_before_failure == 0) {
        errno = EIO;
        return nullptr;
    }
    if (fgets_before_failure > 0) --fgets_before_failure;
    return __real_fgets(buffer, size, stream);
}
}

namespace {

TEST(OutOfMemory, PushBackLosesTheLineAndSaysSo) {
    qx25test::capture_all_messages();
    FILE *stream = std::tmpfile();
    std::fputs("from_file 1\n", stream);
    std::rewind(stream);
    config_line line{};
    std::strcpy(line.keyword, "pushed");
    failing_callocs = 1;
    __unread_config_line(stream, &line);
    EXPECT_EQ(qx25test::messages(), std::vector<std::string>{"Cannot allocate memory\n"});
    config_line got{};
    ASSERT_EQ(x25_read_config_line(stream, &got), 0);
    EXPECT_STREQ(got.keyword, "from_file");
    std::fclose(stream);
}

TEST(Faults, ReadErrorInTheSectionsIsReportedAndReadingStops) {
    qx25test::ConfigTree tree;
    qx25test::capture_all_messages();
    std::string path = tree.write("config/config/l.cfg", "IDENTIFICATION\nSECTION LAPB\n"
                                                         "\tn2_count 3\n\tt1_timer 1.0\n");
    link_section link{};
    lapb_section lapb{};
    config_identification ids;
    int mode = 0;
    fgets_before_failure = 3; // IDENTIFICATION, SECTION LAPB, n2_count
    EXPECT_EQ(x25_read_config_parameter_file(path.c_str(), &ids, &link, nullptr, nullptr, &lapb,
                                             nullptr, nullptr, &mode),
              0);
    fgets_before_failure = -1;
    EXPECT_EQ(qx25test::messages(), std::vector<std::string>{"Error reading file " + path + "\n"});
    EXPECT_EQ(lapb.values.n2_count, 3);
    EXPECT_EQ(lapb.values.t1_timer, 60); // the default: never read
}

TEST(Faults, ReadErrorWhileLookingForIdentification) {
    qx25test::ConfigTree tree;
    qx25test::capture_all_messages();
    std::string path = tree.write("config/config/l.cfg", "IDENTIFICATION\nSECTION LINK\n");
    config_identification ids;
    fgets_before_failure = 0;
    EXPECT_EQ(x25_open_config_file(path.c_str(), &ids, 0), nullptr);
    fgets_before_failure = -1;
    EXPECT_EQ(
        qx25test::messages(),
        std::vector<std::string>{"Error reading IDENTIFICATION section from file " + path + "\n"});
}

TEST(Faults, ProfileReadErrorIsReportedWithTheLineCounter) {
    qx25test::ConfigTree tree;
    qx25test::capture_all_messages();
    tree.write("lib/world_networks.profile", "7 PSS public\n");
    fgets_before_failure = 0;
    EXPECT_EQ(network_number("PSS"), 0);
    fgets_before_failure = -1;
    EXPECT_EQ(max_profiles, 0);
    EXPECT_EQ(qx25test::messages(),
              std::vector<std::string>{"Error 5 reading profile file at line 0\n"});
}

TEST(Faults, SubsectionRecordsThatCannotBeAllocatedDropTheirLine) {
    qx25test::ConfigTree tree;
    qx25test::capture_all_messages();
    std::string path = tree.write("config/config/l.cfg",
                                  "IDENTIFICATION\nSECTION MLP\nSUBSECTION LAPB\n\tn2_count 3\n"
                                  "SUBSECTION WAN\n\tmax_frame 9\n\tmlp_guard 7\n");
    link_section link{};
    mlp_section mlp{};
    config_identification ids;
    int mode = 0;
    callocs_before_failure = 1; // the queued SECTION line of the IDENTIFICATION block
    failing_callocs = 2;
    EXPECT_EQ(x25_read_config_parameter_file(path.c_str(), &ids, &link, nullptr, &mlp, nullptr,
                                             nullptr, nullptr, &mode),
              0);
    failing_callocs = 0;
    EXPECT_EQ(qx25test::messages(), (std::vector<std::string>{"Cannot allocate memory for LAPB\n",
                                                              "Cannot allocate memory for WAN\n"}));
    EXPECT_EQ(mlp.values.lapb[0], nullptr);
    EXPECT_EQ(mlp.values.wan[0], nullptr);
    EXPECT_EQ(mlp.values.guard, 7); // keywords after a dropped line go to MLP
    qx25tool::release(&mlp);
}

TEST(Faults, DeviceCommentThatCannotBeCopiedStopsReading) {
    qx25test::capture_all_messages();
    static char buffer[BUFSIZ];
    FILE *stream = std::tmpfile();
    std::setvbuf(stream, buffer, _IOFBF, sizeof buffer); // no allocation while reading
    std::fputs("WAN_DEVICE\n\tdevice wan\n\tcomment two ports\n\tlines 2\n", stream);
    std::rewind(stream);
    static device_type table[DEVICE_TYPE_ROWS];
    int row = -1;
    failing_mallocs = 1;
    process_info_file(stream, &row, table);
    failing_mallocs = 0;
    std::fclose(stream);
    EXPECT_EQ(qx25test::messages(), std::vector<std::string>{"Cannot allocate memory\n"});
    EXPECT_STREQ(table[0].device, "wan");
    EXPECT_EQ(table[0].comment, nullptr);
    EXPECT_EQ(table[0].lines, 0); // not read: reading stopped
}

TEST(Faults, PvcRecordThatCannotBeAllocatedStopsTheMap) {
    qx25test::ConfigTree tree;
    qx25test::capture_all_messages();
    tree.write("config/pvcmapconf", "1 1 128 128 2 2\n1 2 128 128 2 2\n");
    auto *node = static_cast<link_node *>(std::calloc(1, sizeof(link_node)));
    node->link.values.subnet.address.snid = 1;
    failing_callocs = 1;
    __fill_PVC_lists(node);
    failing_callocs = 0;
    EXPECT_EQ(qx25test::messages(), std::vector<std::string>{"Cannot allocate memory\n"});
    EXPECT_EQ(node->link.values.pvcs, nullptr);
    std::free(node);
}

TEST(Faults, LinkNodeThatCannotBeAllocatedIsSkipped) {
    qx25test::ConfigTree tree;
    qx25test::capture_all_messages();
    link_node *node = reinterpret_cast<link_node *>(&tree); // must be cleared
    failing_callocs = 1;
    EXPECT_EQ(process_dp("link_config_0001.cfg", &node), 1);
    failing_callocs = 0;
    EXPECT_EQ(node, nullptr);
    EXPECT_EQ(qx25test::messages(), std::vector<std::string>{"Cannot allocate memory\n"});
}

TEST(FaultsDeathTest, InventoryNodeThatCannotBeAllocatedEndsTheProcess) {
    qx25test::ConfigTree tree;
    qx25test::write_boardconf(tree);
    tree.write("config/x25conf", "ethr 0 0 1 LAN LC_LLC1 - 0800 ETHR\n");
    EXPECT_EXIT(
        {
            set_link_error_function(nullptr);
            link_node *head = nullptr;
            failing_callocs = 1;
            read_link_parameters(&head);
        },
        ::testing::ExitedWithCode(1), "^Cannot allocate memory\n$");
}

} // namespace
