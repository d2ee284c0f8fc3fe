// The PVC map: circuits of pvcmapconf hung on the links of a chain, and the
// release of what a link node owns.
#include "qx25.h"

#include "captured_messages.h"
#include "config_tree.h"
#include "link_config.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <initializer_list>
#include <random>
#include <string>
#include <vector>

#if defined(__SANITIZE_ADDRESS__)
#include <sanitizer/asan_interface.h>
#include <sanitizer/lsan_interface.h>
#define QX25_TEST_ASAN 1
#else
#define QX25_TEST_ASAN 0
#endif

using qx25test::ConfigTree;
using qx25test::messages;

namespace {

// A circuit as link, lcn, first and second packet size index, first and
// second window.
using circuit = std::array<int, 6>;

circuit fields(const pvc_entry &record) {
    return {record.link,       record.lcn,       record.pktsize[0],
            record.pktsize[1], record.window[0], record.window[1]};
}

// A chain of calloc'd link nodes, as link discovery builds it, with the
// given link numbers in order. Everything is released when it goes away.
class Chain {
  public:
    Chain(std::initializer_list<std::uint32_t> numbers) {
        link_node *last = nullptr;
        for (std::uint32_t number : numbers) {
            auto *node = static_cast<link_node *>(std::calloc(1, sizeof(link_node)));
            node->link.values.subnet.address.snid = number;
            node->prev = last;
            if (last != nullptr)
                last->next = node;
            else
                head_ = node;
            last = node;
            nodes_.push_back(node);
        }
    }
    ~Chain() {
        for (link_node *node : nodes_) {
            free_link_item(&node->link.values);
            std::free(node);
        }
    }
    Chain(const Chain &) = delete;
    Chain &operator=(const Chain &) = delete;

    link_node *head() const { return head_; }
    link_values &at(std::size_t index) const { return nodes_.at(index)->link.values; }

  private:
    link_node *head_ = nullptr;
    std::vector<link_node *> nodes_;
};

// The circuits of a link in list order. The list must be well formed:
// the first has no previous, each other's previous is the one before it.
std::vector<circuit> circuits(const link_values &link) {
    std::vector<circuit> result;
    const pvc_entry *before = nullptr;
    for (const pvc_entry *record = link.pvcs; record != nullptr; record = record->next) {
        EXPECT_EQ(record->prev, before) << "circuit " << result.size();
        result.push_back(fields(*record));
        before = record;
        if (result.size() > 10000) {
            ADD_FAILURE() << "the list does not end";
            break;
        }
    }
    return result;
}

pvc_entry *new_record(int link, int lcn) {
    auto *record = static_cast<pvc_entry *>(std::calloc(1, sizeof(pvc_entry)));
    record->link = link;
    record->lcn = static_cast<std::uint16_t>(lcn);
    return record;
}

char *copy_text(const char *text) {
    auto *copy = static_cast<char *>(std::malloc(std::strlen(text) + 1));
    std::strcpy(copy, text);
    return copy;
}

// With the address sanitizer, fails when memory became unreachable without
// being freed; elsewhere the check is not available and passes.
void expect_no_leaks() {
#if QX25_TEST_ASAN
    EXPECT_EQ(__lsan_do_recoverable_leak_check(), 0);
#endif
}

class PvcMap : public testing::Test {
  protected:
    void SetUp() override { qx25test::capture_all_messages(); }

    void write_map(const std::string &text) { tree.write("config/pvcmapconf", text); }

    // Parses a line through a copy, as the reader hands it over.
    int parse(const std::string &text, pvc_entry &record) {
        record = pvc_entry{};
        std::vector<char> line(text.begin(), text.end());
        line.push_back('\0');
        return parse_pvc(&record, line.data());
    }

    ConfigTree tree;
};

// ---- pkt_to_index ---------------------------------------------------------

TEST_F(PvcMap, PacketSizesMapToTheirIndex) {
    const int sizes[] = {16, 32, 64, 128, 256, 512, 1024, 2048, 4096};
    for (int index = 0; index < 9; ++index)
        EXPECT_EQ(pkt_to_index(sizes[index]), index) << sizes[index];
}

TEST_F(PvcMap, UnknownPacketSizesMapToIndexZero) {
    for (int size : {100, 0, -1, 8, 17, 8192, 4095})
        EXPECT_EQ(pkt_to_index(size), 0) << size;
}

// ---- parse_pvc ------------------------------------------------------------

TEST_F(PvcMap, SixFieldsFillTheRecordAndGiveTheLinkNumber) {
    pvc_entry record{};
    EXPECT_EQ(parse("3 1a 128 256 7 2\n", record), 3);
    EXPECT_EQ(fields(record), (circuit{3, 0x1A, 3, 4, 7, 2}));
    EXPECT_EQ(record.next, nullptr);
    EXPECT_EQ(record.prev, nullptr);
}

TEST_F(PvcMap, TheLineIsSplitInPlace) {
    char line[] = "12\t5 64 64 2 2\n";
    pvc_entry record{};
    EXPECT_EQ(parse_pvc(&record, line), 12);
    EXPECT_STREQ(line, "12");
    EXPECT_STREQ(line + 3, "5");
    // The newline at the end of the last field is removed.
    EXPECT_STREQ(line + 13, "2");
    EXPECT_EQ(line[14], '\0');
}

TEST_F(PvcMap, ChannelKeepsItsLowEightBits) {
    pvc_entry record{};
    EXPECT_EQ(parse("1 1FF 128 128 2 2\n", record), 1);
    EXPECT_EQ(record.lcn, 255);
    EXPECT_EQ(parse("1 100 128 128 2 2\n", record), 1);
    EXPECT_EQ(record.lcn, 0);
    EXPECT_EQ(parse("1 ff 128 128 2 2\n", record), 1);
    EXPECT_EQ(record.lcn, 255);
    EXPECT_EQ(parse("1 0x1F 128 128 2 2\n", record), 1);
    EXPECT_EQ(record.lcn, 0x1F);
    EXPECT_EQ(parse("1 zz 128 128 2 2\n", record), 1);
    EXPECT_EQ(record.lcn, 0);
}

TEST_F(PvcMap, PacketSizeFieldsStoreTheirIndex) {
    const char *sizes[] = {"16", "32", "64", "128", "256", "512", "1024", "2048", "4096"};
    pvc_entry record{};
    for (int index = 0; index < 9; ++index) {
        std::string line = std::string("2 1 ") + sizes[index] + " " + sizes[8 - index] + " 2 2\n";
        ASSERT_EQ(parse(line, record), 2) << line;
        EXPECT_EQ(record.pktsize[0], index) << line;
        EXPECT_EQ(record.pktsize[1], 8 - index) << line;
    }
    EXPECT_EQ(parse("2 1 100 4096 2 2\n", record), 2);
    EXPECT_EQ(record.pktsize[0], 0);
    EXPECT_EQ(record.pktsize[1], 8);
}

TEST_F(PvcMap, WindowsKeepTheirLowEightBits) {
    pvc_entry record{};
    EXPECT_EQ(parse("1 1 128 128 255 256\n", record), 1);
    EXPECT_EQ(record.window[0], 255);
    EXPECT_EQ(record.window[1], 0);
    EXPECT_EQ(parse("1 1 128 128 300 -1\n", record), 1);
    EXPECT_EQ(record.window[0], 44);
    EXPECT_EQ(record.window[1], 255);
    EXPECT_EQ(parse("1 1 128 128 7x 0\n", record), 1);
    EXPECT_EQ(record.window[0], 7);
    EXPECT_EQ(record.window[1], 0);
}

TEST_F(PvcMap, AnyOtherFieldCountIsRejected) {
    pvc_entry record{};
    EXPECT_EQ(parse("1 1 128 128 2\n", record), -1);
    EXPECT_EQ(parse("1 1 128 128 2 2 9\n", record), -1);
    EXPECT_EQ(parse("", record), -1);
    EXPECT_EQ(parse("\n", record), -1);
    EXPECT_EQ(parse(" \t \n", record), -1);
    // A blank before the newline leaves the newline as a seventh field.
    EXPECT_EQ(parse("1 1 128 128 2 2 \n", record), -1);
    EXPECT_EQ(parse("1 1 128 128 2 2\t\n", record), -1);
}

TEST_F(PvcMap, BlanksAndTabsSeparateFieldsInRuns) {
    pvc_entry record{};
    EXPECT_EQ(parse(" \t 4 \t\t 2  64\t\t128 \t3 4\n", record), 4);
    EXPECT_EQ(fields(record), (circuit{4, 2, 2, 3, 3, 4}));
    // The last line of a file may lack its newline.
    EXPECT_EQ(parse("4 3 64 64 1 1", record), 4);
    EXPECT_EQ(fields(record), (circuit{4, 3, 2, 2, 1, 1}));
    // A carriage return is no separator; the number before it still counts.
    EXPECT_EQ(parse("4 3 64 64 1 6\r\n", record), 4);
    EXPECT_EQ(record.window[1], 6);
}

TEST_F(PvcMap, NullArgumentsAreRejected) {
    char line[] = "1 1 128 128 2 2\n";
    pvc_entry record{};
    EXPECT_EQ(parse_pvc(nullptr, line), -1);
    EXPECT_EQ(parse_pvc(&record, nullptr), -1);
}

// ---- __fill_PVC_lists ---------------------------------------------------

TEST_F(PvcMap, CircuitsHangOnTheirLinks) {
    write_map("0 1 128 128 2 2\n"
              "3 1FF 16 4096 7 255\n"
              "254 100 100 64 256 1\n");
    Chain chain{3, 254, 0};
    __fill_PVC_lists(chain.head());
    EXPECT_EQ(circuits(chain.at(0)), (std::vector<circuit>{{3, 255, 0, 8, 7, 255}}));
    EXPECT_EQ(circuits(chain.at(1)), (std::vector<circuit>{{254, 0, 0, 2, 0, 1}}));
    EXPECT_EQ(circuits(chain.at(2)), (std::vector<circuit>{{0, 1, 3, 3, 2, 2}}));
    EXPECT_TRUE(messages().empty());
}

TEST_F(PvcMap, CircuitsOfOneLinkKeepFileOrder) {
    write_map("5 1 128 128 2 2\n"
              "6 9 128 128 2 2\n"
              "5 2 256 256 3 3\n"
              "5 3 512 512 4 4\n");
    Chain chain{5, 6};
    __fill_PVC_lists(chain.head());
    EXPECT_EQ(circuits(chain.at(0)),
              (std::vector<circuit>{{5, 1, 3, 3, 2, 2}, {5, 2, 4, 4, 3, 3}, {5, 3, 5, 5, 4, 4}}));
    EXPECT_EQ(circuits(chain.at(1)), (std::vector<circuit>{{6, 9, 3, 3, 2, 2}}));
    // The links of the list, both ways.
    const pvc_entry *first = chain.at(0).pvcs;
    ASSERT_NE(first, nullptr);
    ASSERT_NE(first->next, nullptr);
    ASSERT_NE(first->next->next, nullptr);
    const pvc_entry *third = first->next->next;
    EXPECT_EQ(third->next, nullptr);
    EXPECT_EQ(third->prev, first->next);
    EXPECT_EQ(first->next->prev, first);
    EXPECT_EQ(first->prev, nullptr);
}

TEST_F(PvcMap, SameChannelTwiceIsKeptTwice) {
    write_map("5 1 128 128 2 2\n"
              "5 1 128 128 2 2\n");
    Chain chain{5};
    __fill_PVC_lists(chain.head());
    EXPECT_EQ(circuits(chain.at(0)),
              (std::vector<circuit>{{5, 1, 3, 3, 2, 2}, {5, 1, 3, 3, 2, 2}}));
}

TEST_F(PvcMap, CircuitsAreAppendedToAnExistingList) {
    write_map("5 2 128 128 2 2\n");
    Chain chain{5};
    pvc_entry *old = new_record(5, 1);
    chain.at(0).pvcs = old;
    __fill_PVC_lists(chain.head());
    EXPECT_EQ(chain.at(0).pvcs, old);
    EXPECT_EQ(circuits(chain.at(0)),
              (std::vector<circuit>{{5, 1, 0, 0, 0, 0}, {5, 2, 3, 3, 2, 2}}));
}

TEST_F(PvcMap, WrongFieldCountsAreSkippedSilently) {
    write_map("1 1 128 128 2\n"
              "1 2 128 128 2 2 9\n"
              "1 3 128 128 2 2 \n"
              "9 4 128 128 2\n"
              "1 5 128 128 2 2\n");
    Chain chain{1};
    __fill_PVC_lists(chain.head());
    EXPECT_EQ(circuits(chain.at(0)), (std::vector<circuit>{{1, 5, 3, 3, 2, 2}}));
    EXPECT_TRUE(messages().empty());
    expect_no_leaks();
}

TEST_F(PvcMap, CircuitOfAnUnknownLinkIsReportedOnceAndReadingGoesOn) {
    write_map("1 1 128 128 2 2\n"
              "7 2 128 128 2 2\n"
              "2 3 128 128 2 2\n"
              "1 4 128 128 2 2\n");
    Chain chain{1, 2};
    __fill_PVC_lists(chain.head());
    EXPECT_EQ(messages(),
              (std::vector<std::string>{"Found PVC for unconfigured link 7, skipped\n"}));
    EXPECT_EQ(circuits(chain.at(0)),
              (std::vector<circuit>{{1, 1, 3, 3, 2, 2}, {1, 4, 3, 3, 2, 2}}));
    EXPECT_EQ(circuits(chain.at(1)), (std::vector<circuit>{{2, 3, 3, 3, 2, 2}}));
    // The skipped circuit's record was freed, not lost.
    expect_no_leaks();
}

TEST_F(PvcMap, NegativeAndHugeLinkNumbersMatchNoLink) {
    // -1 is what a rejected line gives: that circuit is skipped silently.
    // A number beyond the range of an int is held at its end.
    write_map("-1 1 128 128 2 2\n"
              "-2 1 128 128 2 2\n"
              "99999999999 1 128 128 2 2\n");
    Chain chain{0xFFFFFFFFu, 0xFFFFFFFEu};
    __fill_PVC_lists(chain.head());
    EXPECT_EQ(messages(),
              (std::vector<std::string>{"Found PVC for unconfigured link -2, skipped\n",
                                        "Found PVC for unconfigured link 2147483647, skipped\n"}));
    EXPECT_EQ(chain.at(0).pvcs, nullptr);
    EXPECT_EQ(chain.at(1).pvcs, nullptr);
    expect_no_leaks();
}

TEST_F(PvcMap, LineStartingWithABlankIsACircuit) {
    write_map(" 1 1 128 128 2 2\n"
              "\t1 2 128 128 2 2\n");
    Chain chain{1};
    __fill_PVC_lists(chain.head());
    EXPECT_EQ(circuits(chain.at(0)),
              (std::vector<circuit>{{1, 1, 3, 3, 2, 2}, {1, 2, 3, 3, 2, 2}}));
}

TEST_F(PvcMap, CommentAndEmptyLinesAreSkipped) {
    write_map("# link lcn size size window window\n"
              "\n"
              "#1 1 128 128 2 2\n"
              "# 1 2 128 128 2 2\n"
              "\n"
              "1 3 128 128 2 2\n"
              "   \n");
    Chain chain{1};
    __fill_PVC_lists(chain.head());
    EXPECT_EQ(circuits(chain.at(0)), (std::vector<circuit>{{1, 3, 3, 3, 2, 2}}));
    EXPECT_TRUE(messages().empty());
}

TEST_F(PvcMap, MissingMapChangesNothing) {
    Chain chain{1, 2};
    pvc_entry *old = new_record(1, 4);
    chain.at(0).pvcs = old;
    __fill_PVC_lists(chain.head());
    EXPECT_EQ(chain.at(0).pvcs, old);
    EXPECT_EQ(circuits(chain.at(0)), (std::vector<circuit>{{1, 4, 0, 0, 0, 0}}));
    EXPECT_EQ(chain.at(1).pvcs, nullptr);
    EXPECT_TRUE(messages().empty());
}

TEST_F(PvcMap, EmptyMapChangesNothing) {
    write_map("");
    Chain chain{1};
    __fill_PVC_lists(chain.head());
    EXPECT_EQ(chain.at(0).pvcs, nullptr);
    EXPECT_TRUE(messages().empty());
}

TEST_F(PvcMap, DirectoryWithATrailingSlashStillFindsTheMap) {
    write_map("1 1 128 128 2 2\n");
    ::setenv("X25CONFIGFILES", (tree.config_dir() + "/").c_str(), 1);
    Chain chain{1};
    __fill_PVC_lists(chain.head());
    EXPECT_EQ(circuits(chain.at(0)), (std::vector<circuit>{{1, 1, 3, 3, 2, 2}}));
}

TEST_F(PvcMap, NullHeadReportsEveryCircuit) {
    write_map("1 1 128 128 2 2\n"
              "# comment\n"
              "2 1 128 128 2\n"
              "3 1 128 128 2 2\n");
    __fill_PVC_lists(nullptr);
    EXPECT_EQ(messages(),
              (std::vector<std::string>{"Found PVC for unconfigured link 1, skipped\n",
                                        "Found PVC for unconfigured link 3, skipped\n"}));
    expect_no_leaks();
}

TEST_F(PvcMap, NullHeadWithoutMapDoesNothing) {
    __fill_PVC_lists(nullptr);
    EXPECT_TRUE(messages().empty());
}

TEST_F(PvcMap, LinkTwiceInTheChainGetsItsCircuitsOnTheFirstOnly) {
    write_map("4 1 128 128 2 2\n"
              "4 2 128 128 2 2\n");
    Chain chain{3, 4, 4};
    __fill_PVC_lists(chain.head());
    EXPECT_EQ(chain.at(0).pvcs, nullptr);
    EXPECT_EQ(circuits(chain.at(1)),
              (std::vector<circuit>{{4, 1, 3, 3, 2, 2}, {4, 2, 3, 3, 2, 2}}));
    EXPECT_EQ(chain.at(2).pvcs, nullptr);
    EXPECT_TRUE(messages().empty());
}

// Allocation failure is covered by the fault-injection tests, which wrap
// calloc.

// ---- Long lines -----------------------------------------------------------

// A line of exactly `length` characters (newline not counted): the circuit,
// blanks, then the last field.
std::string padded(const std::string &head, const std::string &last, std::size_t length) {
    std::string line = head;
    line.append(length - head.size() - last.size(), ' ');
    return line + last;
}

TEST_F(PvcMap, LineOfTheBufferSizeIsRead) {
    // 1023 characters and the newline: the newline does not fit but the
    // line does.
    std::string line = padded("1 4 128 128 2", "3", 1023);
    ASSERT_EQ(line.size(), 1023u);
    write_map(line + "\n1 5 128 128 2 2\n");
    Chain chain{1};
    __fill_PVC_lists(chain.head());
    EXPECT_EQ(circuits(chain.at(0)),
              (std::vector<circuit>{{1, 4, 3, 3, 2, 3}, {1, 5, 3, 3, 2, 2}}));
    EXPECT_TRUE(messages().empty());
}

TEST_F(PvcMap, LastLineOfTheBufferSizeWithoutNewlineIsRead) {
    write_map(padded("1 4 128 128 2", "3", 1023));
    Chain chain{1};
    __fill_PVC_lists(chain.head());
    EXPECT_EQ(circuits(chain.at(0)), (std::vector<circuit>{{1, 4, 3, 3, 2, 3}}));
}

TEST_F(PvcMap, LongerLineIsSkippedWhole) {
    // One character too many: a circuit whose last field would be cut.
    std::string too_long = padded("1 4 128 128 2", "37", 1024);
    // A circuit behind the buffer's end must not become a line of its own.
    std::string hidden = std::string(1023, ' ') + "1 6 128 128 2 2";
    // Nor behind a long comment.
    std::string comment = "#" + std::string(1022, '-') + "1 7 128 128 2 2";
    // A circuit at the start of a line whose tail holds another.
    std::string two = padded("1 8 128 128 2 2", "", 1500) + "1 9 128 128 2 2";
    write_map(too_long + "\n" + hidden + "\n" + comment + "\n" + two + "\n" + "1 5 128 128 2 2\n" +
              std::string(5000, 'x'));
    Chain chain{1};
    __fill_PVC_lists(chain.head());
    EXPECT_EQ(circuits(chain.at(0)), (std::vector<circuit>{{1, 5, 3, 3, 2, 2}}));
    EXPECT_TRUE(messages().empty());
    expect_no_leaks();
}

TEST_F(PvcMap, RandomBytesDoNoHarm) {
    std::mt19937 generator(20260521);
    std::uniform_int_distribution<int> byte(0, 255);
    std::uniform_int_distribution<int> pick(0, 9);
    std::size_t attached = 0;
    std::size_t reported = 0;
    for (int round = 0; round < 20; ++round) {
        // Bytes of any value, made likelier to be digits, blanks and newlines.
        std::string text;
        for (int i = 0; i < 8192; ++i) {
            switch (pick(generator)) {
            case 0:
                text += '\n';
                break;
            case 1:
                text += ' ';
                break;
            case 2:
            case 3:
            case 4:
                text += static_cast<char>('0' + byte(generator) % 10);
                break;
            default:
                text += static_cast<char>(byte(generator));
                break;
            }
        }
        write_map(text);
        messages().clear();
        Chain chain{0, 1, 2, 3, 4, 5, 6, 7, 8, 9};
        __fill_PVC_lists(chain.head());
        for (std::uint32_t link = 0; link < 10; ++link)
            for (const circuit &found : circuits(chain.at(link))) {
                EXPECT_EQ(found[0], static_cast<int>(link));
                ++attached;
            }
        reported += messages().size();
        for (const std::string &message : messages()) {
            int number = 0;
            char rest[64] = "";
            ASSERT_EQ(std::sscanf(message.c_str(), "Found PVC for unconfigured link %d, %63[^\n]",
                                  &number, rest),
                      2)
                << message;
            EXPECT_STREQ(rest, "skipped");
            EXPECT_TRUE(number < 0 || number > 9) << message;
        }
    }
    // The bytes held circuits of both kinds, so both paths were taken.
    EXPECT_GT(attached, 0u);
    EXPECT_GT(reported, 0u);
    expect_no_leaks();
}

// ---- free_link_item -------------------------------------------------------

TEST_F(PvcMap, FreeLinkItemFreesWhatTheLinkOwnsAndLeavesThePointers) {
    auto *node = static_cast<link_node *>(std::calloc(1, sizeof(link_node)));
    link_values &link = node->link.values;
    link.subnet.name = copy_text("alias");
    link.subnet.description = copy_text("a description");
    pvc_entry *first = new_record(1, 1);
    pvc_entry *second = new_record(1, 2);
    pvc_entry *third = new_record(1, 3);
    first->next = second;
    second->prev = first;
    second->next = third;
    third->prev = second;
    link.pvcs = first;
    const void *name = link.subnet.name;
    const void *description = link.subnet.description;

    free_link_item(&link);

    EXPECT_EQ(static_cast<const void *>(link.subnet.name), name);
    EXPECT_EQ(static_cast<const void *>(link.subnet.description), description);
    EXPECT_EQ(static_cast<const void *>(link.pvcs), static_cast<const void *>(first));
#if QX25_TEST_ASAN
    for (const void *freed : {name, description, static_cast<const void *>(first),
                              static_cast<const void *>(second), static_cast<const void *>(third)})
        EXPECT_TRUE(__asan_address_is_poisoned(freed)) << freed;
#endif
    std::free(node);
    expect_no_leaks();
}

TEST_F(PvcMap, FreeLinkItemTakesEmptyAndNullLinks) {
    link_values link{};
    free_link_item(&link);
    EXPECT_EQ(link.subnet.name, nullptr);
    EXPECT_EQ(link.pvcs, nullptr);
    free_link_item(nullptr);
}

} // namespace
