// Every public operation that allocates, with each of its allocations made
// to fail in turn (n = 1, 2, ... until a run completes untouched): the
// specified message and result, no crash, and every block freed again.
// Linked with the allocator interposer (support/failing_allocator.h).
#include "qx25.h"

#include "captured_messages.h"
#include "config_tree.h"
#include "failing_allocator.h"
#include "link_config.h"
#include "link_files.h"
#include "link_records.h"
#include "release.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <iterator>
#include <string>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

using qx25test::ConfigTree;
using qx25test::failing_allocator;
using qx25test::for_each_allocation_failure;
using qx25test::messages;

namespace {

using message_list = std::vector<std::string>;

const char *const no_memory = "Cannot allocate memory\n";

// A WAN link with a comment and a trailer on nearly every line, an alias
// and a description: each of them is a copy the reader allocates.
const char *const commented_link = "! the site's first link\n"
                                   "IDENTIFICATION\n"
                                   "\tPRODUCT_NAME\tQuenlark X.25\n"
                                   "\tFILE_TYPE\tx25link\n"
                                   "! the link itself\n"
                                   "SECTION\tLINK\t! link section\n"
                                   "! on the first board\n"
                                   "\tdevice\t\twan0\t! port 0\n"
                                   "\ttype\t\tWAN\n"
                                   "\talias\t\tpdn\t! the public network\n"
                                   "\tdescription\tPublic data network\n"
                                   "! the frame level\n"
                                   "SECTION\tLAPB\n"
                                   "\tn2_count\t10\t! retries\n"
                                   "SECTION\tWAN\n"
                                   "! leased line\n"
                                   "\tline_speed\t64000\t! bits a second\n"
                                   "SECTION\tX25\t! packet level\n"
                                   "! agreed with the carrier\n"
                                   "\tlocal_address\t2342123\n";

// An MLP link over two lines: two LAPB and two WAN subsection records.
const char *const mlp_link = "IDENTIFICATION\n"
                             "\tPRODUCT_NAME\tQuenlark X.25\n"
                             "SECTION\tLINK\n"
                             "\tdevice\t\twan0 wan1\n"
                             "\ttype\t\tWAN\n"
                             "\tprotocol\tMLAPB\n"
                             "SECTION\tMLP\n"
                             "\tmlp_window\t16\n"
                             "! first line\n"
                             "SUBSECTION\tLAPB\n"
                             "\tn2_count\t10\n"
                             "SUBSECTION\tWAN\n"
                             "\tline_speed\t64000\t! leased\n"
                             "SUBSECTION\tLAPB\n"
                             "\tn2_count\t12\n"
                             "SUBSECTION\tWAN\n"
                             "\tline_speed\t9600\n"
                             "SECTION\tX25\n";

// The line reader's push-back node: two pointers and a whole line. Opening
// a link file queues the section line behind the IDENTIFICATION block.
constexpr std::size_t queued_line_size = 2 * sizeof(void *) + sizeof(config_line);

// The failed allocation was one of a text the reader copies (a comment,
// a trailer, an alias or a description): anything but a record.
bool text_copy(std::size_t size) {
    return size != sizeof(lapb_section) && size != sizeof(wan_section) &&
           size != sizeof(link_node) && size != sizeof(pvc_entry) && size != queued_line_size;
}

// A lost section line is reported; what follows is read without its
// section, with whatever that reports.
bool section_line_lost(const message_list &reported) {
    return failing_allocator::failed() && failing_allocator::failed_size() == queued_line_size &&
           !reported.empty() && reported[0] == "Cannot allocate memory\n";
}

class AllocationFailures : public testing::Test {
  protected:
    void SetUp() override {
        qx25test::write_boardconf(tree);
        tree.write("lib/world_networks.profile", "2 X25_88 WAN 1988\n7 PSS public\n");
        qx25test::capture_all_messages();
        // The device table and the profiles fill themselves once per
        // process; that is tested on its own below.
        load_config_linktype_on_demand();
        network_number("PSS");
        failing_allocator::forget_live_blocks();
    }

    void TearDown() override {
        EXPECT_EQ(failing_allocator::live_blocks(), 0u) << "blocks the operation left behind";
    }

    ConfigTree tree;
};

// A failed copy of a comment, a trailer, an alias or a description leaves
// that one text out, silently; everything else is read as without failure.
TEST_F(AllocationFailures, ReadingWithComments) {
    std::string path = tree.write("config/config/link_config_0001.cfg", commented_link);
    qx25test::link_records reference;
    ASSERT_EQ(reference.read(path), 0);
    ASSERT_EQ(qx25test::kept_comments(reference), 11);
    ASSERT_TRUE(messages().empty());

    long allocations = for_each_allocation_failure([&] {
        messages().clear();
        qx25test::link_records records;
        EXPECT_EQ(records.read(path), 0);
        if (failing_allocator::failed_size() == queued_line_size) {
            EXPECT_EQ(messages(), message_list{no_memory});
            EXPECT_EQ(records.config.link.values.device_count, 0); // no SECTION LINK
            return;
        }
        EXPECT_TRUE(messages().empty());
        qx25test::differences found;
        compare(reference, records, found);
        bool failed = failing_allocator::failed();
        ASSERT_EQ(found.list().size(), failed ? 1u : 0u);
        if (failed) {
            EXPECT_NE(found.list()[0].find("read back as (none)"), std::string::npos);
        }
    });
    // The queued section line, 10 comment texts (the IDENTIFICATION block
    // keeps its own in the record), the alias and the description.
    EXPECT_EQ(allocations, 13);
}

// A subsection record that cannot be allocated is reported and its lines
// are dropped; any other failure there is a text left out.
TEST_F(AllocationFailures, MlpSubsections) {
    std::string path = tree.write("config/config/link_config_0002.cfg", mlp_link);
    qx25test::link_records reference;
    ASSERT_EQ(reference.read(path), 0);
    ASSERT_NE(reference.config.mlp.values.wan[1], nullptr);

    std::size_t subsections = 0;
    for_each_allocation_failure([&] {
        messages().clear();
        qx25test::link_records records;
        EXPECT_EQ(records.read(path), 0);
        std::size_t size = failing_allocator::failed_size();
        if (!failing_allocator::failed()) {
            EXPECT_TRUE(messages().empty());
        } else if (size == queued_line_size) {
            EXPECT_TRUE(section_line_lost(messages()));
        } else if (size == sizeof(lapb_section)) {
            ++subsections;
            EXPECT_EQ(messages(), message_list{"Cannot allocate memory for LAPB\n"});
        } else if (size == sizeof(wan_section)) {
            ++subsections;
            EXPECT_EQ(messages(), message_list{"Cannot allocate memory for WAN\n"});
            EXPECT_TRUE(records.config.mlp.values.wan[1] == nullptr);
        } else {
            EXPECT_TRUE(messages().empty());
            qx25test::differences found;
            compare(reference, records, found);
            EXPECT_EQ(found.list().size(), 1u);
        }
    });
    EXPECT_EQ(subsections, 4u);
}

struct chain_summary {
    std::vector<unsigned> links;
    std::vector<int> circuits;
};

chain_summary summary(const link_node *head) {
    chain_summary found;
    const link_node *previous = nullptr;
    for (const link_node *node = head; node != nullptr; node = node->next) {
        EXPECT_EQ(node->prev, previous);
        found.links.push_back(node->link.values.subnet.address.snid);
        int circuits = 0;
        for (const pvc_entry *pvc = node->link.values.pvcs; pvc != nullptr; pvc = pvc->next)
            ++circuits;
        found.circuits.push_back(circuits);
        previous = node;
    }
    return found;
}

// A link node that cannot be allocated leaves its link out; a circuit that
// cannot be allocated ends the PVC map with the circuits read so far; both
// say "Cannot allocate memory". A text copy is left out silently.
TEST_F(AllocationFailures, LinkDiscoveryAndThePvcMap) {
    qx25test::write_link_file(tree, 1, "\tdevice wan0\n\ttype WAN\n\talias first ! one\n");
    qx25test::write_link_file(tree, 3, "\tdevice wan1\n\ttype WAN\n\tdescription third\n");
    qx25test::write_link_file(tree, 2, "\tdevice eth0\n\ttype LAN\n");
    tree.write("config/pvcmapconf", "1 1 128 128 2 2\n3 5 128 128 2 2\n1 2 128 128 2 2\n");
    link_node *reference = nullptr;
    ASSERT_EQ(x25_find_link_parameters(&reference), 0);
    chain_summary expected = summary(reference);
    ASSERT_EQ(expected.links, (std::vector<unsigned>{1, 2, 3}));
    ASSERT_EQ(expected.circuits, (std::vector<int>{2, 0, 1}));
    qx25tool::release(reference);
    failing_allocator::forget_live_blocks();

    int node_failures = 0;
    int circuit_failures = 0;
    for_each_allocation_failure([&] {
        messages().clear();
        link_node *head = nullptr;
        EXPECT_EQ(x25_find_link_parameters(&head), 0);
        chain_summary found = summary(head);
        qx25tool::release(head);
        std::size_t size = failing_allocator::failed_size();
        if (size == queued_line_size) {
            // The link's number comes from its SECTION LINK: its
            // circuits find no link.
            EXPECT_TRUE(section_line_lost(messages()));
            for (std::size_t i = 1; i < messages().size(); ++i)
                EXPECT_EQ(messages()[i].rfind("Found PVC for unconfigured link ", 0), 0u);
            return;
        }
        if (!failing_allocator::failed() || text_copy(size)) {
            EXPECT_TRUE(messages().empty());
            EXPECT_EQ(found.links, expected.links);
            EXPECT_EQ(found.circuits, expected.circuits);
            return;
        }
        if (size == sizeof(link_node)) {
            // The circuits of the link left out find no link.
            ++node_failures;
            ASSERT_EQ(found.links.size(), 2u);
            unsigned missing = 1 + 2 + 3 - found.links[0] - found.links[1];
            message_list reported{no_memory};
            for (int i = 0; i < expected.circuits[missing - 1]; ++i)
                reported.push_back("Found PVC for unconfigured link " + std::to_string(missing) +
                                   ", skipped\n");
            EXPECT_EQ(messages(), reported);
        } else {
            EXPECT_EQ(messages(), message_list{no_memory});
            ++circuit_failures;
            EXPECT_EQ(found.links, expected.links);
            int circuits = 0;
            for (int count : found.circuits)
                circuits += count;
            EXPECT_EQ(circuits, circuit_failures - 1); // those before the failed one
        }
    });
    EXPECT_EQ(node_failures, 3);
    EXPECT_EQ(circuit_failures, 3);
}

// The device table copies each comment of boardconf; a copy that cannot be
// made is reported and ends the reading there.
TEST_F(AllocationFailures, DeviceTableComments) {
    tree.write("config/boardconf", "WAN_DEVICE\n\tsymbolic WANS\n\tdevice wan\n\tcomment two "
                                   "ports\n\tlines 2\nLAN_DEVICE\n\tdevice eth\n\tcomment "
                                   "ethernet\n\tlines 1\n");
    int failures = 0;
    for_each_allocation_failure([&] {
        messages().clear();
        device_type table[DEVICE_TYPE_ROWS] = {};
        EXPECT_EQ(fill_linktype_struct(table), 1);
        if (failing_allocator::failed()) {
            ++failures;
            EXPECT_EQ(messages(), message_list{no_memory});
            EXPECT_EQ(table[failures - 1].comment, nullptr);
            EXPECT_EQ(table[failures - 1].lines, 0); // read no further
        } else {
            EXPECT_TRUE(messages().empty());
            EXPECT_STREQ(table[0].comment, "two ports");
            EXPECT_STREQ(table[1].comment, "ethernet");
            EXPECT_EQ(table[1].lines, 1);
        }
        for (device_type &row : table)
            std::free(row.comment);
    });
    EXPECT_EQ(failures, 2);
}

// The subnetwork enumeration reads the links through link discovery: with
// any allocation failing it returns what could be read and, once ended,
// holds nothing.
TEST_F(AllocationFailures, SubnetworkEnumeration) {
    qx25test::write_link_file(tree, 1, "\tdevice wan0\n\ttype WAN\n\talias first\n");
    qx25test::write_link_file(tree, 2, "\tdevice eth0\n\ttype LAN\n\tdescription second\n");
    auto enumerate = [] {
        std::vector<std::string> names;
        setsubnetent();
        while (subnet_entry *entry = getsubnetent())
            names.push_back(entry->name != nullptr ? entry->name : "(none)");
        endsubnetent();
        return names;
    };
    std::vector<std::string> expected = enumerate();
    ASSERT_EQ(expected, (std::vector<std::string>{"first", "(none)"}));
    failing_allocator::forget_live_blocks();

    for_each_allocation_failure([&] {
        messages().clear();
        std::vector<std::string> names = enumerate();
        if (!failing_allocator::failed()) {
            EXPECT_EQ(names, expected);
            EXPECT_TRUE(messages().empty());
        } else if (failing_allocator::failed_size() == queued_line_size) {
            EXPECT_TRUE(section_line_lost(messages()));
        } else if (text_copy(failing_allocator::failed_size())) {
            EXPECT_EQ(names.size(), expected.size());
            EXPECT_TRUE(messages().empty());
        } else {
            EXPECT_EQ(names.size(), expected.size() - 1);
            EXPECT_EQ(messages(), message_list{no_memory});
        }
    });
}

// The IDENTIFICATION block queues the SECTION line behind it: when that
// copy cannot be made the line is lost and the reader says so.
TEST_F(AllocationFailures, PushBack) {
    std::string path = tree.write("config/config/l.cfg", "IDENTIFICATION\n\tFILE_TYPE x\n"
                                                         "SECTION LINK\n\tdevice wan0\n");
    long allocations = for_each_allocation_failure([&] {
        messages().clear();
        config_identification ids;
        FILE *stream = x25_open_config_file(path.c_str(), &ids, 0);
        ASSERT_NE(stream, nullptr);
        std::vector<std::string> keywords;
        config_line line{};
        while (x25_read_config_line(stream, &line) == 0)
            keywords.emplace_back(line.keyword);
        std::fclose(stream);
        if (failing_allocator::failed()) {
            EXPECT_EQ(messages(), message_list{no_memory});
            EXPECT_EQ(keywords, std::vector<std::string>{"device"});
        } else {
            EXPECT_TRUE(messages().empty());
            EXPECT_EQ(keywords, (std::vector<std::string>{"SECTION", "device"}));
        }
    });
    EXPECT_EQ(allocations, 1);
}

// The update of an MLP link's LINK section adds the subsection records its
// devices need. Whatever allocation fails, the update either completes or
// returns ENOMEM before writing, and the file always reads.
TEST_F(AllocationFailures, UpdateAddsSubsections) {
    std::string path = tree.write("config/config/link_config_0004.cfg",
                                  "IDENTIFICATION\n\tPRODUCT_NAME\tQuenlark X.25\n"
                                  "SECTION\tLINK\n\tdevice\t\twan0 wan1\n\ttype\t\tWAN\n"
                                  "\tprotocol\tMLAPB\n\talias\t\tmlp ! two lines\n"
                                  "SECTION\tMLP\nSECTION\tX25\n");
    std::string before = qx25test::read_file(path);
    qx25test::link_records update;
    ASSERT_EQ(update.read(path), 0);
    failing_allocator::forget_live_blocks();

    int refused = 0;
    int result = 0;
    message_list reported;
    for_each_allocation_failure(
        [&] {
            messages().clear();
            tree.write("config/config/link_config_0004.cfg", before);
            result = x25_update_link(4, &update.config.link, SECTION_LINK);
            qx25test::release_static_records();
        },
        [&](long, bool) {
            if (result == ENOMEM) {
                ++refused;
                EXPECT_EQ(qx25test::read_file(path), before);
            } else {
                EXPECT_EQ(result, 0);
            }
            // The reading inside the update reports its own failures.
            const message_list allowed[] = {{},
                                            {no_memory},
                                            {"Cannot allocate memory for LAPB\n"},
                                            {"Cannot allocate memory for WAN\n"}};
            EXPECT_NE(std::find(std::begin(allowed), std::end(allowed), messages()),
                      std::end(allowed))
                << testing::PrintToString(messages());
            messages().clear();
            qx25test::link_records after;
            EXPECT_EQ(after.read(path), 0);
            EXPECT_TRUE(messages().empty()) << testing::PrintToString(messages());
        });
    EXPECT_EQ(refused, 4); // two LAPB and two WAN subsections
}

// ---- The legacy import ----------------------------------------------------------

// What one run of read_link_parameters did with allocation n failing,
// written by a child process as it goes: a node that cannot be allocated
// ends the process, so only the child can make the run.
struct import_run {
    int status = -1;    // the child's exit status
    std::string report; // messages, then what the chain held and left behind
};

int report_fd = -1;

int write_report(const char *text) {
    std::string line = "message " + std::string(text);
    if (failing_allocator::failed())
        line = "failed " + std::to_string(failing_allocator::failed_size()) + " " + line;
    return ::write(report_fd, line.data(), line.size()) < 0 ? -1 : 0;
}

import_run import_with_failure(long n) {
    int ends[2];
    if (::pipe(ends) != 0) return {};
    std::fflush(nullptr);
    pid_t child = ::fork();
    if (child == 0) {
        ::close(ends[0]);
        report_fd = ends[1];
        set_link_error_function(write_report);
        x25_set_parse_error_function(write_report);
        failing_allocator::forget_live_blocks();
        failing_allocator::arm(n);
        link_node *head = nullptr;
        int result = read_link_parameters(&head);
        failing_allocator::disarm();
        std::string report = "result " + std::to_string(result) + "\n";
        if (failing_allocator::failed())
            report += "failed " + std::to_string(failing_allocator::failed_size()) + "\n";
        for (const link_node *node = head; node != nullptr; node = node->next) {
            int circuits = 0;
            for (const pvc_entry *pvc = node->link.values.pvcs; pvc != nullptr; pvc = pvc->next)
                ++circuits;
            const char *alias = node->link.values.subnet.name;
            const char *description = node->link.values.subnet.description;
            report += "link " + std::to_string(node->link.values.subnet.address.snid) + " " +
                      (alias != nullptr ? alias : "(none)") + " " +
                      (description != nullptr ? description : "(none)") + " " +
                      std::to_string(circuits) + "\n";
        }
        qx25tool::release(head);
        report += "left " + std::to_string(failing_allocator::live_blocks()) + "\n";
        bool written =
            ::write(ends[1], report.data(), report.size()) == static_cast<ssize_t>(report.size());
        std::_Exit(written ? 0 : 2);
    }
    ::close(ends[1]);
    import_run run;
    char buffer[1024];
    for (ssize_t got; (got = ::read(ends[0], buffer, sizeof buffer)) > 0;)
        run.report.append(buffer, static_cast<std::size_t>(got));
    ::close(ends[0]);
    int status = 0;
    if (::waitpid(child, &status, 0) == child && WIFEXITED(status))
        run.status = WEXITSTATUS(status);
    if (WIFSIGNALED(status)) run.report += "signal " + std::to_string(WTERMSIG(status));
    return run;
}

// A node that cannot be allocated says "Cannot allocate memory" and ends
// the process with status 1; a circuit that cannot be allocated says so and
// ends the PVC map; an alias or description that cannot be copied is left
// out. Nothing is left allocated after the chain is released.
TEST_F(AllocationFailures, LegacyImportInAChildProcess) {
    tree.write("config/x25conf", "ethr 0 0 1 LAN LC_LLC2 - 0800200A1B2C ETHR\n"
                                 "wans 0 0 2 WAN88 LC_LAPBDTE - 23421234567 WANS\n");
    tree.write("config/subnetworks", "1 sitelan Site LAN\n2 pdn Leased line\n");
    tree.write("config/pvcmapconf", "2 1 128 128 2 2\n2 2 128 128 2 2\n");
    import_run untouched = import_with_failure(0);
    ASSERT_EQ(untouched.status, 0);
    ASSERT_EQ(untouched.report,
              "result 0\nlink 1 sitelan Site LAN 0\nlink 2 pdn Leased line 2\nleft 0\n");

    const std::string node = std::to_string(sizeof(link_node));
    const std::string circuit = std::to_string(sizeof(pvc_entry));
    int node_failures = 0;
    int circuit_failures = 0;
    int text_failures = 0;
    for (long n = 1; n < 100; ++n) {
        SCOPED_TRACE("allocation " + std::to_string(n));
        import_run run = import_with_failure(n);
        if (run.report.find("failed ") == std::string::npos) {
            EXPECT_EQ(run.status, 0);
            EXPECT_EQ(run.report, untouched.report);
            break;
        }
        if (run.status == 1) {
            ++node_failures;
            EXPECT_EQ(run.report, "failed " + node + " message Cannot allocate memory\n");
        } else if (run.report.find("failed " + circuit + " message") == 0) {
            ++circuit_failures;
            EXPECT_EQ(run.status, 0);
            std::string circuits = circuit_failures == 1 ? "0" : "1";
            EXPECT_EQ(run.report, "failed " + circuit +
                                      " message Cannot allocate memory\n"
                                      "result 0\nfailed " +
                                      circuit +
                                      "\nlink 1 sitelan Site LAN 0\n"
                                      "link 2 pdn Leased line " +
                                      circuits + "\nleft 0\n");
        } else {
            ++text_failures;
            EXPECT_EQ(run.status, 0);
            EXPECT_NE(run.report.find("(none)"), std::string::npos) << run.report;
            EXPECT_NE(run.report.find("left 0\n"), std::string::npos) << run.report;
        }
    }
    EXPECT_EQ(node_failures, 2);
    EXPECT_EQ(circuit_failures, 2);
    EXPECT_EQ(text_failures, 4); // two aliases, two descriptions
}

} // namespace
