// The device type table and its boardconf reader.
#include "qx25.h"

#include "captured_messages.h"
#include "config_tree.h"
#include "link_config.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <random>
#include <string>
#include <string_view>
#include <vector>

using qx25test::ConfigTree;
using qx25test::messages;

namespace {

constexpr int device_rows = DEVICE_TYPE_ROWS - 1;
constexpr std::uintptr_t mark = 0xFFFFFFFE;

char *mark_pointer() {
    return reinterpret_cast<char *>(mark);
}

// Row 0 of a table that was never filled.
device_type never_filled_row() {
    device_type row{};
    std::strcpy(row.symbolic, "notinit");
    std::strcpy(row.device, "notinit");
    std::strcpy(row.wanmod, "notinit");
    row.lines = 0xFE;
    row.type = 0xFE;
    row.valid = 0xFF;
    row.comment = mark_pointer();
    row.mru = -2;
    return row;
}

// Pointers are compared as addresses: a failing check must not print what
// a mark or a stale pointer points to.
const void *address(const char *pointer) {
    return pointer;
}

using table_type = device_type[DEVICE_TYPE_ROWS];

void make_never_filled(table_type &table) {
    std::memset(table, 0, sizeof table);
    table[0] = never_filled_row();
}

// Frees the comments a reading left in rows 0..49, the mark excepted.
void free_comments(device_type *table) {
    for (int row = 0; row < device_rows; ++row) {
        if (table[row].comment != mark_pointer()) std::free(table[row].comment);
        table[row].comment = nullptr;
    }
}

template <std::size_t N> std::string text(const char (&field)[N]) {
    return std::string(field, ::strnlen(field, N));
}

std::string comment_of(const device_type &row) {
    if (row.comment == nullptr) return "<null>";
    if (row.comment == mark_pointer()) return "<mark>";
    return row.comment;
}

void expect_never_filled(const device_type &row) {
    EXPECT_EQ(text(row.symbolic), "notinit");
    EXPECT_EQ(text(row.device), "notinit");
    EXPECT_EQ(text(row.wanmod), "notinit");
    EXPECT_EQ(row.lines, 254);
    EXPECT_EQ(row.type, 254);
    EXPECT_EQ(row.valid, 255);
    EXPECT_EQ(reinterpret_cast<std::uintptr_t>(row.comment), mark);
    EXPECT_EQ(row.mru, -2);
}

void expect_empty(const device_type &row, int index) {
    SCOPED_TRACE("row " + std::to_string(index));
    const device_type zero{};
    EXPECT_EQ(std::memcmp(row.symbolic, zero.symbolic, sizeof row.symbolic), 0);
    EXPECT_EQ(std::memcmp(row.device, zero.device, sizeof row.device), 0);
    EXPECT_EQ(std::memcmp(row.wanmod, zero.wanmod, sizeof row.wanmod), 0);
    EXPECT_EQ(row.lines, 0);
    EXPECT_EQ(row.type, 0);
    EXPECT_EQ(row.valid, 0);
    EXPECT_EQ(address(row.comment), address(nullptr));
    EXPECT_EQ(row.mru, 0);
}

void expect_row(const device_type &row, int type, const char *symbolic, const char *device,
                const char *wanmod, int lines, const char *comment, int mru) {
    EXPECT_EQ(row.type, type);
    EXPECT_EQ(row.valid, 1);
    EXPECT_EQ(text(row.symbolic), symbolic);
    EXPECT_EQ(text(row.device), device);
    EXPECT_EQ(text(row.wanmod), wanmod);
    EXPECT_EQ(row.lines, lines);
    EXPECT_EQ(comment_of(row), comment);
    EXPECT_EQ(row.mru, mru);
}

// ---- The tables as the library starts them ---------------------------------

TEST(DeviceTables, RecordLayout) {
    EXPECT_EQ(offsetof(device_type, device), 8u);
    EXPECT_EQ(offsetof(device_type, wanmod), 28u);
    EXPECT_EQ(offsetof(device_type, lines), 44u);
    EXPECT_EQ(offsetof(device_type, type), 45u);
    EXPECT_EQ(offsetof(device_type, valid), 46u);
    EXPECT_EQ(offsetof(device_type, comment), 48u);
    EXPECT_EQ(offsetof(device_type, mru), 56u);
    EXPECT_EQ(sizeof(device_type), 64u);
}

TEST(DeviceTables, BothStartWithRowZeroMarkedAndTheRestEmpty) {
    for (device_type *table : {__config_linktype, linktype}) {
        SCOPED_TRACE(table == __config_linktype ? "__config_linktype" : "linktype");
        expect_never_filled(table[0]);
        // The mark is the whole field, not only its low half.
        EXPECT_EQ(table[0].symbolic[7], '\0');
        for (int row = 1; row < DEVICE_TYPE_ROWS; ++row)
            expect_empty(table[row], row);
    }
    EXPECT_NE(static_cast<void *>(__config_linktype), static_cast<void *>(linktype));
}

// ---- match_line --------------------------------------------------------------

struct match_case {
    const char *line;
    int code;
    std::ptrdiff_t value_at; // offset of the value, -1 when none is given
    const char *value;
};

TEST(BoardconfLines, MatchLineClassifiesAndFindsTheValue) {
    const match_case cases[] = {
        {"WAN_DEVICE x\n", BOARDCONF_WAN_DEVICE, -1, nullptr},
        {"LAN_DEVICE\n", BOARDCONF_LAN_DEVICE, -1, nullptr},
        {"symbolic  \tX25 card\n", BOARDCONF_SYMBOLIC, 11, "X25 card"},
        {"lines 4\n", BOARDCONF_LINES, 6, "4"},
        {"device\twan # remark\n", BOARDCONF_DEVICE, 7, "wan "},
        {"comment A board\r\n", BOARDCONF_COMMENT, 8, "A board"},
        {"mru 1500", BOARDCONF_MRU, 4, "1500"},
        {"wanmod mod#x\n", BOARDCONF_WANMOD, 7, "mod"},
        {"lines", BOARDCONF_LINES, 5, ""},
        {"device \n", BOARDCONF_DEVICE, 7, ""},
        {"devicefoo x\n", BOARDCONF_DEVICE, 10, "x"},
        {"mrux 5\n", BOARDCONF_MRU, 5, "5"},
        {"WAN_DEVICES\n", BOARDCONF_WAN_DEVICE, -1, nullptr},
        {"Device x\n", BOARDCONF_OTHER, -1, nullptr},
        {"MRU 5\n", BOARDCONF_OTHER, -1, nullptr},
        {"dev ice x\n", BOARDCONF_OTHER, -1, nullptr},
        {"x device 1\n", BOARDCONF_OTHER, -1, nullptr},
        {"\n", BOARDCONF_OTHER, -1, nullptr},
        {"", BOARDCONF_OTHER, -1, nullptr},
    };
    for (const match_case &c : cases) {
        SCOPED_TRACE(c.line);
        std::vector<char> line(c.line, c.line + std::strlen(c.line) + 1);
        char untouched[] = "?";
        char *value = untouched;
        EXPECT_EQ(match_line(line.data(), &value), c.code);
        if (c.value_at < 0) {
            EXPECT_EQ(value, untouched);
            EXPECT_STREQ(line.data(), c.line);
        } else {
            EXPECT_EQ(value - line.data(), c.value_at);
            if (value != untouched) {
                EXPECT_STREQ(value, c.value);
            }
        }
    }
}

// ---- Reading boardconf -------------------------------------------------------

class LinkDevices : public testing::Test {
  protected:
    void SetUp() override {
        qx25test::capture_all_messages();
        make_never_filled(table);
    }
    void TearDown() override { free_comments(table); }

    int fill(std::string_view content) {
        tree.write("config/boardconf", content);
        return fill_linktype_struct(table);
    }

    ConfigTree tree;
    table_type table;
};

TEST_F(LinkDevices, FullFileFillsEveryField) {
    ASSERT_EQ(fill("# Boards of the site\n"
                   "\n"
                   "WAN_DEVICE\n"
                   "\tsymbolic\tX25-4\n"
                   "\tdevice\t\twan\n"
                   "\tlines\t\t4\n"
                   "\tmru\t\t4096\n"
                   "\tcomment\t\tFour port WAN board\n"
                   "LAN_DEVICE ignored value\n"
                   "\tsymbolic\tETH\n"
                   "\tdevice\t\tlan\n"
                   "\tlines\t\t1\n"
                   "\tmru\t\t1500\n"
                   "\tcomment\t\tEthernet\n"
                   "\twanmod\t\tllcmod\n"
                   "WAN_DEVICE\n"),
              1);
    EXPECT_TRUE(messages().empty());
    expect_row(table[0], DEVICE_WAN, "X25-4", "wan", "wanmod", 4, "Four port WAN board", 4096);
    expect_row(table[1], DEVICE_LAN, "ETH", "lan", "llcmod", 1, "Ethernet", 1500);
    expect_row(table[2], DEVICE_WAN, "", "", "wanmod", 0, "<null>", 0);
    for (int row = 3; row < DEVICE_TYPE_ROWS; ++row)
        expect_empty(table[row], row);
}

TEST_F(LinkDevices, LanDeviceGetsTheEthernetModule) {
    ASSERT_EQ(fill("LAN_DEVICE\nWAN_DEVICE\n"), 1);
    EXPECT_EQ(text(table[0].wanmod), "s_ethr");
    EXPECT_EQ(text(table[1].wanmod), "wanmod");
    // The mark's other fields stay in the first row.
    EXPECT_EQ(text(table[0].device), "notinit");
    EXPECT_EQ(table[0].lines, 254);
}

std::string devices(int count) {
    std::string content;
    for (int row = 0; row < count; ++row) {
        content += row % 2 == 0 ? "WAN_DEVICE\n" : "LAN_DEVICE\n";
        content += "symbolic D" + std::to_string(row) + "\n";
    }
    return content;
}

TEST_F(LinkDevices, FiftyDevicesFillEveryRow) {
    ASSERT_EQ(fill(devices(50)), 1);
    EXPECT_TRUE(messages().empty());
    for (int row = 0; row < device_rows; ++row) {
        SCOPED_TRACE(row);
        EXPECT_EQ(table[row].type, row % 2 == 0 ? DEVICE_WAN : DEVICE_LAN);
        EXPECT_EQ(text(table[row].symbolic), "D" + std::to_string(row));
    }
    expect_empty(table[50], 50);
}

TEST_F(LinkDevices, FiftyFirstDeviceIsReportedAndEndsTheReading) {
    ASSERT_EQ(fill(devices(50) + "WAN_DEVICE\n"
                                 "symbolic LATE\n"
                                 "LAN_DEVICE\n"
                                 "device late\n"),
              1);
    EXPECT_EQ(messages(), std::vector<std::string>{"Too many devices in boardconf file\n"});
    EXPECT_EQ(text(table[49].symbolic), "D49");
    EXPECT_EQ(text(table[49].device), "");
    expect_empty(table[50], 50);
}

TEST_F(LinkDevices, ReadingStopsRightAfterTheFiftyFirstDevice) {
    FILE *stream = std::tmpfile();
    ASSERT_NE(stream, nullptr);
    std::string content = devices(50) + "LAN_DEVICE\nsymbolic LATE\n";
    std::fputs(content.c_str(), stream);
    std::rewind(stream);
    int row = -1;
    process_info_file(stream, &row, table);
    EXPECT_EQ(row, 50);
    char next[64];
    ASSERT_NE(std::fgets(next, sizeof next, stream), nullptr);
    EXPECT_STREQ(next, "symbolic LATE\n");
    std::fclose(stream);
    EXPECT_EQ(messages().size(), 1u);
}

TEST_F(LinkDevices, CounterEndsAtTheLastRow) {
    FILE *stream = std::tmpfile();
    ASSERT_NE(stream, nullptr);
    std::fputs("WAN_DEVICE\nLAN_DEVICE\nWAN_DEVICE\nlines 3\n", stream);
    std::rewind(stream);
    int row = -1;
    process_info_file(stream, &row, table);
    std::fclose(stream);
    EXPECT_EQ(row, 2);
    EXPECT_EQ(table[2].lines, 3);
}

TEST_F(LinkDevices, SecondCommentReplacesTheFirst) {
    ASSERT_EQ(fill("WAN_DEVICE\ncomment first\ncomment second one\n"), 1);
    EXPECT_EQ(comment_of(table[0]), "second one");
}

TEST_F(LinkDevices, CommentOfAMarkedRowReplacesTheMark) {
    // Read without fill_linktype_struct, the mark is still in row 0: it is
    // no allocation and must not be freed.
    FILE *stream = std::tmpfile();
    ASSERT_NE(stream, nullptr);
    std::fputs("WAN_DEVICE\ncomment new\n", stream);
    std::rewind(stream);
    int row = -1;
    process_info_file(stream, &row, table);
    std::fclose(stream);
    EXPECT_EQ(comment_of(table[0]), "new");
}

TEST_F(LinkDevices, LinesKeepTheirLowEightBits) {
    ASSERT_EQ(fill("WAN_DEVICE\nlines 300\nLAN_DEVICE\nlines 255\n"), 1);
    EXPECT_EQ(table[0].lines, 44);
    EXPECT_EQ(table[1].lines, 255);
}

TEST_F(LinkDevices, MruIsReadAsADecimalNumber) {
    ASSERT_EQ(fill("WAN_DEVICE\nmru -7\nLAN_DEVICE\nmru 12abc\nWAN_DEVICE\nmru x\n"), 1);
    EXPECT_EQ(table[0].mru, -7);
    EXPECT_EQ(table[1].mru, 12);
    EXPECT_EQ(table[2].mru, 0);
}

TEST_F(LinkDevices, DeviceAndSymbolicTakeTheFirstWordOnly) {
    ASSERT_EQ(fill("WAN_DEVICE\n"
                   "device  wan0 \t # remark\n"
                   "symbolic X25\tcard\n"),
              1);
    EXPECT_EQ(text(table[0].device), "wan0");
    EXPECT_EQ(text(table[0].symbolic), "X25");
}

TEST_F(LinkDevices, WanmodAndCommentKeepTheWholeValue) {
    ASSERT_EQ(fill("WAN_DEVICE\n"
                   "wanmod two words #remark\n"
                   "comment\t a  long\tcomment \n"),
              1);
    EXPECT_EQ(text(table[0].wanmod), "two words ");
    EXPECT_EQ(comment_of(table[0]), "a  long\tcomment ");
}

TEST_F(LinkDevices, ValueEndsAtACarriageReturn) {
    ASSERT_EQ(fill("WAN_DEVICE\r\nsymbolic X25\r\ncomment text\r\nlines 6\r\n"), 1);
    EXPECT_EQ(table[0].type, DEVICE_WAN);
    EXPECT_EQ(text(table[0].symbolic), "X25");
    EXPECT_EQ(comment_of(table[0]), "text");
    EXPECT_EQ(table[0].lines, 6);
}

TEST_F(LinkDevices, FileWithoutDevicesLeavesTheMarks) {
    ASSERT_EQ(fill("# nothing but remarks\ndevice x\nlines 3\n\n"), 1);
    EXPECT_EQ(text(table[0].device), "notinit");
    EXPECT_EQ(text(table[0].symbolic), "notinit");
    EXPECT_EQ(text(table[0].wanmod), "notinit");
    EXPECT_EQ(table[0].type, 254);
    EXPECT_EQ(table[0].lines, 254);
    EXPECT_EQ(table[0].valid, 255);
    EXPECT_EQ(table[0].mru, -2);
    EXPECT_EQ(address(table[0].comment), address(nullptr)); // cleared before the file is read
    for (int row = 1; row < DEVICE_TYPE_ROWS; ++row)
        expect_empty(table[row], row);
}

TEST_F(LinkDevices, IndentedKeywordIsRecognised) {
    ASSERT_EQ(fill("WAN_DEVICE\n \tlines 4\n \t  LAN_DEVICE\n"), 1);
    EXPECT_EQ(table[0].lines, 4);
    EXPECT_EQ(table[1].type, DEVICE_LAN);
}

TEST_F(LinkDevices, EmptyAndRemarkLinesAreSkipped) {
    constexpr char content[] = "WAN_DEVICE\n"
                               "\n"
                               "lines 2\n"
                               "#device remarked\n"
                               "\0device hidden\n"
                               "  # mru 5\n"
                               "\n";
    ASSERT_EQ(fill(std::string_view(content, sizeof content - 1)), 1);
    EXPECT_EQ(table[0].type, DEVICE_WAN);
    EXPECT_EQ(table[0].lines, 2);
    EXPECT_EQ(text(table[0].device), "notinit");
    EXPECT_EQ(table[0].mru, -2);
    expect_empty(table[1], 1);
}

TEST_F(LinkDevices, KeywordIsMatchedByItsBeginning) {
    ASSERT_EQ(fill("WAN_DEVICEs\ndevicefoo x\nmrux 5\nsymbolically S\nlinesize 9\n"), 1);
    EXPECT_EQ(table[0].type, DEVICE_WAN);
    EXPECT_EQ(text(table[0].device), "x");
    EXPECT_EQ(table[0].mru, 5);
    EXPECT_EQ(text(table[0].symbolic), "S");
    EXPECT_EQ(table[0].lines, 9);
}

TEST_F(LinkDevices, KeywordsAreCaseSensitive) {
    ASSERT_EQ(fill("WAN_DEVICE\nDevice x\nMRU 5\nLines 3\nlan_device\n"), 1);
    EXPECT_EQ(text(table[0].device), "notinit");
    EXPECT_EQ(table[0].mru, -2);
    EXPECT_EQ(table[0].lines, 254);
    expect_empty(table[1], 1);
}

TEST_F(LinkDevices, KeywordLinesBeforeTheFirstDeviceAreIgnored) {
    ASSERT_EQ(fill("device early\ncomment early\nmru 9\nWAN_DEVICE\nlines 2\n"), 1);
    EXPECT_EQ(text(table[0].device), "notinit");
    EXPECT_EQ(address(table[0].comment), address(nullptr));
    EXPECT_EQ(table[0].mru, -2);
    EXPECT_EQ(table[0].lines, 2);
    EXPECT_TRUE(messages().empty());
}

TEST_F(LinkDevices, LongValuesAreCutToTheirFields) {
    ASSERT_EQ(fill("WAN_DEVICE\n"
                   "device dev\n"
                   "lines 7\n"
                   "symbolic ABCDEFGHIJ\n"
                   "wanmod 0123456789abcdefghij\n"
                   "LAN_DEVICE\n"
                   "device 0123456789ABCDEFGHIJKLMNO\n"),
              1);
    EXPECT_EQ(text(table[0].symbolic), "ABCDEFG");
    EXPECT_EQ(table[0].symbolic[7], '\0');
    EXPECT_EQ(text(table[0].device), "dev");
    EXPECT_EQ(text(table[0].wanmod), "0123456789abcde");
    EXPECT_EQ(table[0].wanmod[15], '\0');
    EXPECT_EQ(table[0].lines, 7);
    EXPECT_EQ(table[0].type, DEVICE_WAN);
    EXPECT_EQ(text(table[1].device), "0123456789ABCDEFGHI");
    EXPECT_EQ(table[1].device[19], '\0');
    EXPECT_EQ(text(table[1].wanmod), "s_ethr");
}

TEST_F(LinkDevices, RereadingKeepsWhatTheNewFileDoesNotSet) {
    ASSERT_EQ(fill("WAN_DEVICE\nsymbolic A\ndevice wa\nlines 4\nmru 100\ncomment one\n"
                   "LAN_DEVICE\nsymbolic B\ndevice la\ncomment two\n"
                   "WAN_DEVICE\nsymbolic C\nwanmod cmod\n"),
              1);
    ASSERT_EQ(fill("LAN_DEVICE\nsymbolic NEW\ncomment renewed\n"), 1);
    EXPECT_TRUE(messages().empty());
    expect_row(table[0], DEVICE_LAN, "NEW", "wa", "s_ethr", 4, "renewed", 100);
    expect_row(table[1], DEVICE_LAN, "B", "la", "s_ethr", 0, "two", 0);
    expect_row(table[2], DEVICE_WAN, "C", "", "cmod", 0, "<null>", 0);
    expect_empty(table[3], 3);
}

TEST_F(LinkDevices, MissingFileLeavesTheTableAsItWas) {
    ASSERT_EQ(fill("WAN_DEVICE\nsymbolic A\ncomment kept\n"), 1);
    std::filesystem::remove(tree.config_dir() + "/boardconf");
    table_type before;
    std::memcpy(before, table, sizeof table);
    EXPECT_EQ(fill_linktype_struct(table), 0);
    EXPECT_EQ(std::memcmp(before, table, sizeof table), 0);
    EXPECT_TRUE(messages().empty());
}

TEST_F(LinkDevices, MissingFileStillClearsTheMarkedComment) {
    // The comments are cleared before the file is looked for.
    EXPECT_EQ(fill_linktype_struct(table), 0);
    EXPECT_EQ(address(table[0].comment), address(nullptr));
    EXPECT_EQ(table[0].mru, -2);
    EXPECT_EQ(text(table[0].device), "notinit");
    EXPECT_TRUE(messages().empty());
}

TEST_F(LinkDevices, FirstFillClearsTheCommentsOfTheDeviceRows) {
    char *stale = reinterpret_cast<char *>(std::uintptr_t{0x1234});
    for (int row = 1; row < DEVICE_TYPE_ROWS; ++row)
        table[row].comment = stale;
    ASSERT_EQ(fill("WAN_DEVICE\ncomment first\n"), 1);
    EXPECT_EQ(comment_of(table[0]), "first");
    int stale_rows = 0;
    for (int row = 1; row < device_rows; ++row) {
        stale_rows += table[row].comment != nullptr;
        table[row].comment = nullptr;
    }
    EXPECT_EQ(stale_rows, 0);
    // The end row is never written.
    EXPECT_EQ(address(table[50].comment), address(stale));
    table[50].comment = nullptr;

    // Once the mark is gone nothing is cleared any more.
    table[10].comment = stale;
    ASSERT_EQ(fill("WAN_DEVICE\n"), 1);
    EXPECT_EQ(address(table[10].comment), address(stale));
    EXPECT_EQ(comment_of(table[0]), "first");
    table[10].comment = nullptr;
}

TEST_F(LinkDevices, FirstFillWithoutACommentLeavesNone) {
    ASSERT_EQ(fill("WAN_DEVICE\n"), 1);
    EXPECT_EQ(address(table[0].comment), address(nullptr));
    EXPECT_EQ(table[0].mru, -2);
}

TEST_F(LinkDevices, BothMarksAreNeededToClearTheComments) {
    char *stale = reinterpret_cast<char *>(std::uintptr_t{0x1234});
    table[0].mru = 1500;
    table[5].comment = stale;
    ASSERT_EQ(fill("# no devices\n"), 1);
    EXPECT_EQ(address(table[0].comment), address(mark_pointer()));
    EXPECT_EQ(address(table[5].comment), address(stale));
    table[5].comment = nullptr;
}

TEST_F(LinkDevices, OverlongLineIsCutAndItsTailDropped) {
    // Each long line fills the buffer's 1023 characters exactly before a
    // tail that would be a keyword line of its own.
    std::string content = "WAN_DEVICE\n";
    content += "comment " + std::string(3000, 'x') + "\n";
    content += "lines 9\n";
    content += "#" + std::string(1022, ' ') + "device tail\n";
    content += "wanmod " + std::string(1016, 'm') + "lines 99\n";
    content += "symbolic " + std::string(3000, 's'); // no newline at the end
    ASSERT_EQ(fill(content), 1);
    EXPECT_EQ(comment_of(table[0]), std::string(1023 - 8, 'x'));
    EXPECT_EQ(text(table[0].device), "notinit");
    EXPECT_EQ(text(table[0].wanmod), std::string(15, 'm'));
    EXPECT_EQ(table[0].lines, 9);
    EXPECT_EQ(text(table[0].symbolic), "sssssss");
    expect_empty(table[1], 1);
}

// Checks what any reading, however odd its file, has to leave behind.
void expect_sound(const table_type &table) {
    EXPECT_TRUE(table[0].type == 254 || table[0].type == DEVICE_WAN || table[0].type == DEVICE_LAN);
    for (int row = 0; row < DEVICE_TYPE_ROWS; ++row) {
        SCOPED_TRACE(row);
        const device_type &entry = table[row];
        if (row > 0) {
            EXPECT_LE(entry.type, DEVICE_LAN);
        }
        EXPECT_EQ(entry.symbolic[sizeof entry.symbolic - 1], '\0');
        EXPECT_EQ(entry.device[sizeof entry.device - 1], '\0');
        EXPECT_EQ(entry.wanmod[sizeof entry.wanmod - 1], '\0');
        if (entry.comment != nullptr && entry.comment != mark_pointer()) {
            EXPECT_LT(std::strlen(entry.comment), 1024u);
        }
    }
    expect_empty(table[50], 50);
}

TEST_F(LinkDevices, RandomBytesAreReadWithoutHarm) {
    std::mt19937 random(2718);
    std::uniform_int_distribution<int> byte(0, 255);
    std::string content;
    for (int i = 0; i < 65536; ++i)
        content += static_cast<char>(byte(random));
    ASSERT_EQ(fill(content), 1);
    expect_sound(table);
}

TEST_F(LinkDevices, RandomValuesAreReadWithoutHarm) {
    const char *const words[] = {"WAN_DEVICE", "LAN_DEVICE", "symbolic", "lines",
                                 "device",     "mru",        "comment",  "wanmod"};
    const char pieces[] = {' ', '\t', '\n', '\r', '#', '\0', 'a', '7', '-'};
    std::mt19937 random(31415);
    std::uniform_int_distribution<int> word(0, 7);
    std::uniform_int_distribution<int> piece(0, sizeof pieces - 1);
    std::uniform_int_distribution<int> length(0, 40);
    std::string content;
    for (int line = 0; line < 2000; ++line) {
        content += std::string(static_cast<std::size_t>(length(random) % 3), ' ');
        content += words[word(random)];
        for (int i = length(random); i > 0; --i)
            content += pieces[piece(random)];
        content += '\n';
    }
    ASSERT_EQ(fill(content), 1);
    expect_sound(table);
    EXPECT_LE(messages().size(), 1u);
}

// ---- The library's own tables ------------------------------------------------

TEST(DeviceTables, ConfigurationTableIsFilledOnItsOwn) {
    qx25test::capture_all_messages();
    ConfigTree tree;
    tree.write("config/boardconf", "WAN_DEVICE\nsymbolic G\ncomment global\n");
    table_type saved;
    std::memcpy(saved, __config_linktype, sizeof saved);

    ASSERT_EQ(fill_linktype_struct(__config_linktype), 1);
    expect_row(__config_linktype[0], DEVICE_WAN, "G", "notinit", "wanmod", 254, "global", -2);
    expect_never_filled(linktype[0]);

    free_comments(__config_linktype);
    std::memcpy(__config_linktype, saved, sizeof saved);
}

} // namespace
