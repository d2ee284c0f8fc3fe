// Link discovery keeps the devices in use and the links read in an index,
// and the PVC map keeps the link of the line before: neither walks the
// chain for each link or circuit. This program is linked with calloc
// wrapped: a test can refuse discovery its index, which makes it walk the
// chain as it goes, and both ways must give the same chain and messages.
#include "qx25.h"

#include "captured_messages.h"
#include "config_tree.h"
#include "link_config.h"
#include "link_files.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <random>
#include <string>
#include <vector>

namespace {
bool refuse_index = false; // the allocation of the index by link number fails
int refused = 0;
} // namespace

extern "C" {
void *__real_calloc(std::size_t count, std::size_t size);

void *__wrap_calloc(std::size_t count, std::size_t size) {
    if (refuse_index && count == 10000 && size == sizeof(link_node *)) {
        ++refused;
        return nullptr;
    }
    return __real_calloc(count, size);
}
}

namespace {

using qx25test::ConfigTree;

// The chain as "number: devices, circuits" lines, then the messages.
std::string discovered() {
    qx25test::capture_all_messages();
    link_node *head = nullptr;
    std::string got = "result " + std::to_string(x25_find_link_parameters(&head)) + "\n";
    const link_node *before = nullptr;
    for (link_node *node = head; node != nullptr;) {
        const link_values &values = node->link.values;
        got += std::to_string(values.subnet.address.snid) + ":";
        if (node->prev != before) got += " (prev broken)";
        for (int i = 0; i < values.device_count; ++i)
            got += " " + std::to_string(values.device_type[i]) + "/" +
                   std::to_string(values.device_board[i]) + "/" +
                   std::to_string(values.device_line[i]);
        got += ",";
        const pvc_entry *previous_circuit = nullptr;
        for (const pvc_entry *pvc = values.pvcs; pvc != nullptr; pvc = pvc->next) {
            got += " lcn " + std::to_string(pvc->lcn);
            if (pvc->prev != previous_circuit) got += " (prev broken)";
            previous_circuit = pvc;
        }
        got += "\n";
        before = node;
        link_node *next = node->next;
        __release_link_section(&node->link);
        std::free(node);
        node = next;
    }
    for (const std::string &message : qx25test::messages())
        got += "message " + message;
    return got;
}

std::string discovered_walking_the_chain() {
    refuse_index = true;
    refused = 0;
    std::string got = discovered();
    refuse_index = false;
    EXPECT_EQ(refused, 1);
    return got;
}

class DiscoveryIndex : public testing::Test {
  protected:
    void SetUp() override { qx25test::write_boardconf(tree); }
    ConfigTree tree;
};

TEST_F(DiscoveryIndex, ManyLinksWithSharedDevicesAndInterleavedCircuits) {
    // 400 links of random numbers on random devices, many of them shared
    // (the second file read that names one is refused), PVC lines of the
    // links in random order, some for links that do not exist.
    std::mt19937 random(20261125);
    std::vector<int> numbers;
    for (int n = 0; n < 10000; n += 1 + static_cast<int>(random() % 40))
        numbers.push_back(n);
    std::string pvcs;
    int files = 0;
    for (int number : numbers) {
        std::string devices;
        for (unsigned i = 0, count = 1 + random() % 3; i < count; ++i)
            devices += (random() % 2 ? " wan" : " eth") + std::to_string(random() % 400);
        qx25test::write_link_file(tree, number, "\tdevice" + devices + "\n");
        ++files;
    }
    for (int line = 0; line < 1500; ++line)
        pvcs += std::to_string(numbers[random() % numbers.size()] + (random() % 20 == 0)) + " " +
                std::to_string(line % 255) + " 128 128 2 2\n";
    tree.write("config/pvcmapconf", pvcs);
    ASSERT_GT(files, 400);

    std::string got = discovered();
    EXPECT_EQ(got, discovered_walking_the_chain());
    EXPECT_NE(got.find("message Duplicate device in file link_config_"), std::string::npos);
    EXPECT_NE(got.find("message Found PVC for unconfigured link"), std::string::npos);
    EXPECT_EQ(got.find("broken"), std::string::npos);
}

TEST_F(DiscoveryIndex, TheCircuitsOfEachLinkStayInFileOrder) {
    qx25test::write_link_file(tree, 1, "\tdevice wan1\n");
    qx25test::write_link_file(tree, 2, "\tdevice wan2\n");
    tree.write("config/pvcmapconf", "1 1 128 128 2 2\n1 2 128 128 2 2\n2 3 128 128 2 2\n"
                                    "1 4 128 128 2 2\n9 5 128 128 2 2\n1 6 128 128 2 2\n"
                                    "2 7 128 128 2 2\n2 8 128 128 2 2\n");
    std::string got = discovered();
    EXPECT_EQ(got, "result 0\n"
                   "1: 0/0/1, lcn 1 lcn 2 lcn 4 lcn 6\n"
                   "2: 0/1/0, lcn 3 lcn 7 lcn 8\n"
                   "message Found PVC for unconfigured link 9, skipped\n");
    EXPECT_EQ(got, discovered_walking_the_chain());
}

TEST_F(DiscoveryIndex, TheFirstFileReadKeepsItsDevices) {
    qx25test::write_link_file(tree, 7, "\tdevice wan3 eth1\n");
    qx25test::write_link_file(tree, 3, "\tdevice eth1\n");
    qx25test::write_link_file(tree, 5, "\tdevice wan4\n");
    std::string got = discovered();
    EXPECT_EQ(got, discovered_walking_the_chain());
    // Which of 3 and 7 is refused depends on the order of the directory.
    bool three_kept = got.find("\n3:") != std::string::npos || got.rfind("3:", 0) == 0;
    bool seven_kept = got.find("7:") != std::string::npos;
    EXPECT_NE(three_kept, seven_kept);
    EXPECT_NE(got.find("5: 0/2/0,"), std::string::npos);
}

} // namespace
