// Hostile files where the library expects its text files: lines of a
// million characters, carriage returns, special files, files nobody may
// read, and files that change while an enumeration reads them. Each reader
// keeps its defined result and neither crashes, hangs nor reads a line's
// tail as a line of its own.
#include "qx25.h"

#include "captured_messages.h"
#include "config_tree.h"
#include "link_config.h"
#include "link_files.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <string>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

using qx25test::ConfigTree;
using qx25test::messages;

namespace fs = std::filesystem;

namespace {

const std::string million(1000000, 'x');

// Each name database with a reader that lists what it finds.
struct database {
    const char *file;
    std::string line;          // one good line of the file
    std::string (*read_all)(); // what an enumeration finds
    std::string expected;      // what it finds in the good line
};

std::string host_names() {
    std::string found;
    setxhostent(0);
    while (xhost_entry *entry = getxhostent())
        found += std::string(entry->xh_name) + ";";
    endxhostent();
    return found;
}

std::string pad_texts() {
    std::string found;
    setpadent(0);
    while (pad_entry *entry = getpadent())
        found += std::string(entry->free_text) + ";";
    endpadent();
    return found;
}

std::string subnetwork_names() {
    std::string found;
    __setsubnetent(0);
    while (subnet_entry *entry = __getsubnetent())
        found += std::string(entry->name != nullptr ? entry->name : "(none)") + ";";
    __endsubnetent();
    return found;
}

std::string profile_kind() {
    x29_profile profile{};
    if (stox25("3.1234", &profile.address, 0) != 0) return "bad address";
    if (find_x29profile(&profile) != 1) return "none";
    return "kind " + std::to_string(profile.kind);
}

const database databases[] = {
    {"xhosts", "3.1234 host alias\n", host_names, "host;"},
    {"padmapconf", "3.1234 88 P7/7 - - free\n", pad_texts, "free;"},
    {"subnetworks", "3 pdn public network\n", subnetwork_names, "pdn;"},
    {"x29profile", "3.1234\tC\n", profile_kind, "kind 1"},
};

class HostileFiles : public testing::Test {
  protected:
    void SetUp() override {
        qx25test::capture_all_messages();
        alarm(60); // a reader that waits on a special file fails here
    }
    void TearDown() override { alarm(0); }

    ConfigTree tree;
};

// ---- Lines of a million characters -------------------------------------------

// A line longer than any buffer is dropped whole: its tail never turns into
// an entry, and the good line after it is read.
TEST_F(HostileFiles, AMillionCharacterLineIsDroppedWhole) {
    for (const database &db : databases) {
        SCOPED_TRACE(db.file);
        // The long line ends in text that would be a good line by itself.
        tree.write(std::string("config/") + db.file, million + " " + db.line + db.line);
        EXPECT_EQ(db.read_all(), db.expected);
        tree.write(std::string("config/") + db.file, db.line + million);
        EXPECT_EQ(db.read_all(), db.expected) << "a last line without newline";
    }
}

TEST_F(HostileFiles, AMillionCharacterLineInTheDeviceTableAndThePvcMap) {
    tree.write("config/boardconf", "WAN_DEVICE\n\tcomment " + million + "\n\tdevice wan\n\tlines " +
                                       million + "\n\tlines 2\n");
    device_type table[DEVICE_TYPE_ROWS] = {};
    ASSERT_EQ(fill_linktype_struct(table), 1);
    EXPECT_STREQ(table[0].device, "wan");
    EXPECT_EQ(table[0].lines, 2);
    // The head of the long comment line is its value: 1023 characters less
    // the keyword.
    ASSERT_NE(table[0].comment, nullptr);
    EXPECT_EQ(std::string(table[0].comment), std::string(1023 - 9, 'x'));
    EXPECT_EQ(table[1].type, DEVICE_END);
    std::free(table[0].comment);

    tree.write("config/pvcmapconf",
               "1 1 128 128 2 2 " + million + " 1 2 128 128 2 2\n1 3 128 128 2 2\n");
    link_node node{};
    node.link.values.subnet.address.snid = 1;
    __fill_PVC_lists(&node);
    ASSERT_NE(node.link.values.pvcs, nullptr);
    EXPECT_EQ(node.link.values.pvcs->lcn, 3);
    EXPECT_EQ(node.link.values.pvcs->next, nullptr);
    free_link_item(&node.link.values);
    EXPECT_TRUE(messages().empty());
}

// The link file reader takes lines of 127 characters: a longer one comes in
// pieces, each read as a line. A million characters are reported piece by
// piece and reading goes on to the lines behind them.
TEST_F(HostileFiles, AMillionCharacterLineInALinkFile) {
    qx25test::write_boardconf(tree);
    std::string path = qx25test::write_link_file(
        tree, 3, "\tdevice wan0\n! " + million + "\n\ttype WAN\n\talias pdn\n");
    config_identification ids;
    link_section link{};
    int mode = 0;
    EXPECT_EQ(x25_read_config_parameter_file(path.c_str(), &ids, &link, nullptr, nullptr, nullptr,
                                             nullptr, nullptr, &mode),
              0);
    EXPECT_STREQ(link.values.subnet.name, "pdn");
    EXPECT_EQ(link.values.device_count, 1);
    // The comment's first 125 characters are one comment; every further
    // piece of 127 is a keyword line of its own, which LINK does not know.
    EXPECT_EQ(messages().size(), (million.size() + 2 - 127 + 126) / 127);
    free_link_comments(&link);
    free_link_item(&link.values);
}

// ---- NUL bytes ---------------------------------------------------------------------

// A NUL byte ends the text of its line; the rest of that line is never read
// as a line of its own. The hosts file takes only lines that end in a
// newline, so a line a NUL cut short is skipped there.
TEST_F(HostileFiles, ANulByteEndsTheTextOfItsLineOnly) {
    using namespace std::string_literals;
    for (const database &db : databases) {
        SCOPED_TRACE(db.file);
        tree.write(std::string("config/") + db.file, "\0"s + db.line + db.line);
        EXPECT_EQ(db.read_all(), db.expected);
    }
    tree.write("config/xhosts", "3.1234 host\0 3.5 hidden\n3.6 next\n"s);
    EXPECT_EQ(host_names(), "next;");
}

// ---- Carriage returns -------------------------------------------------------------

// A carriage return is text to the readers: it ends a boardconf value, and
// elsewhere it stays in the field it ends.
TEST_F(HostileFiles, CarriageReturnLineEnds) {
    tree.write("config/boardconf", "WAN_DEVICE\r\n\tdevice wan\r\n\tlines 2\r\n");
    device_type table[DEVICE_TYPE_ROWS] = {};
    ASSERT_EQ(fill_linktype_struct(table), 1);
    EXPECT_STREQ(table[0].device, "wan");
    EXPECT_EQ(table[0].lines, 2);

    tree.write("config/xhosts", "3.1234 host alias\r\n");
    EXPECT_EQ(host_names(), "host;");
    xhost_entry *host = getxhostbyname("alias\r");
    ASSERT_NE(host, nullptr);
    EXPECT_STREQ(host->xh_name, "host");
}

// ---- Special files and files nobody may read --------------------------------------

TEST_F(HostileFiles, ADirectoryOrAFifoInPlaceOfADatabase) {
    for (const database &db : databases) {
        SCOPED_TRACE(db.file);
        std::string path = tree.config_dir() + "/" + db.file;
        fs::create_directories(path);
        EXPECT_EQ(db.read_all(), db.read_all == profile_kind ? "none" : "");
        fs::remove(path);
        ASSERT_EQ(mkfifo(path.c_str(), 0600), 0);
        EXPECT_EQ(db.read_all(), db.read_all == profile_kind ? "none" : "");
        fs::remove(path);
    }
    EXPECT_TRUE(messages().empty());
}

// Runs `probe` in a child that has given up root for the nobody user, and
// returns what it found; the tree is opened up so that nobody reaches the
// files, which are made unreadable.
std::string as_nobody(const ConfigTree &tree, const std::vector<std::string> &unreadable,
                      std::string (*probe)()) {
    fs::permissions(tree.root(), fs::perms::all, fs::perm_options::add);
    for (const char *directory : {"/config", "/config/config", "/lib"})
        if (fs::exists(tree.root() + directory))
            fs::permissions(tree.root() + directory, fs::perms::all, fs::perm_options::add);
    for (const std::string &relative : unreadable)
        fs::permissions(tree.root() + "/" + relative, fs::perms::none);
    int ends[2];
    if (pipe(ends) != 0) return "no pipe";
    std::fflush(nullptr);
    pid_t child = fork();
    if (child == 0) {
        close(ends[0]);
        if (setgid(65534) != 0 || setuid(65534) != 0) std::_Exit(3);
        std::string found = probe();
        std::_Exit(write(ends[1], found.data(), found.size()) == static_cast<ssize_t>(found.size())
                       ? 0
                       : 1);
    }
    close(ends[1]);
    std::string found;
    char buffer[512];
    for (ssize_t got; (got = read(ends[0], buffer, sizeof buffer)) > 0;)
        found.append(buffer, static_cast<std::size_t>(got));
    close(ends[0]);
    int status = 0;
    waitpid(child, &status, 0);
    if (WIFEXITED(status) && WEXITSTATUS(status) == 3) return "cannot become nobody";
    return found;
}

TEST_F(HostileFiles, FilesNobodyMayRead) {
    if (geteuid() != 0) GTEST_SKIP() << "needs root to become another user";
    for (const database &db : databases)
        tree.write(std::string("config/") + db.file, db.line);
    qx25test::write_boardconf(tree);
    qx25test::write_link_file(tree, 3, "\tdevice wan0\n");
    std::vector<std::string> files = {"config/xhosts", "config/padmapconf", "config/subnetworks",
                                      "config/x29profile", "config/config/link_config_0003.cfg"};
    std::string found = as_nobody(tree, files, [] {
        qx25test::capture_all_messages();
        std::string seen = host_names() + "|" + pad_texts() + "|" + subnetwork_names() + "|" +
                           profile_kind() + "|";
        config_identification ids;
        link_section link{};
        int mode = 0;
        int result = x25_read_config_parameters(3, &ids, &link, nullptr, nullptr, nullptr, nullptr,
                                                nullptr, &mode);
        seen += std::to_string(result) + "|";
        for (const std::string &message : messages())
            seen += message;
        return seen;
    });
    EXPECT_EQ(found, "|||none|13|Error opening file " + tree.config_dir() +
                         "/config/link_config_0003.cfg\n");
}

// ---- Files that change while they are read ------------------------------------------

// A file rewritten or truncated under an open enumeration: what the stream
// had read ahead and what the file holds now may both come back, but only
// as whole entries, and the enumeration still ends.
TEST_F(HostileFiles, AHostsFileRewrittenBetweenTwoReads) {
    std::string path = tree.write("config/xhosts", "3.1 a\n3.2 b\n3.3 c\n");
    for (bool truncated : {false, true}) {
        setxhostent(0);
        ASSERT_NE(getxhostent(), nullptr);
        if (truncated)
            ASSERT_EQ(truncate(path.c_str(), 0), 0);
        else
            tree.write("config/xhosts", "3.1 a\n3.7 x\n3.8 y\n3.9 z\n"); // same file, rewritten
        int entries = 0;
        for (xhost_entry *entry; (entry = getxhostent()) != nullptr && entries < 10; ++entries)
            EXPECT_NE(std::string("bcxyz").find(entry->xh_name), std::string::npos)
                << entry->xh_name;
        EXPECT_LT(entries, 4);
        endxhostent();
        tree.write("config/xhosts", "3.1 a\n3.2 b\n3.3 c\n");
    }

    // Replaced by another file (a rename over it), the open one is read on.
    tree.write("config/xhosts", "3.1 a\n3.2 b\n");
    setxhostent(0);
    ASSERT_NE(getxhostent(), nullptr);
    tree.write("config/xhosts.new", "3.5 new\n");
    fs::rename(tree.config_dir() + "/xhosts.new", path);
    xhost_entry *entry = getxhostent();
    ASSERT_NE(entry, nullptr);
    EXPECT_STREQ(entry->xh_name, "b");
    EXPECT_EQ(getxhostent(), nullptr);
    endxhostent();
    EXPECT_EQ(host_names(), "new;");
}

// The links are read when the enumeration starts: a link file removed or
// changed afterwards changes nothing until the next one.
TEST_F(HostileFiles, ALinkFileRemovedDuringTheSubnetworkEnumeration) {
    qx25test::write_boardconf(tree);
    qx25test::write_link_file(tree, 1, "\tdevice wan0\n\talias first\n");
    std::string second = qx25test::write_link_file(tree, 2, "\tdevice wan1\n\talias second\n");
    setsubnetent();
    subnet_entry *entry = getsubnetent();
    ASSERT_NE(entry, nullptr);
    EXPECT_STREQ(entry->name, "first");
    fs::remove(second);
    entry = getsubnetent();
    ASSERT_NE(entry, nullptr);
    EXPECT_STREQ(entry->name, "second");
    EXPECT_EQ(getsubnetent(), nullptr);
    endsubnetent();
    setsubnetent();
    ASSERT_NE(getsubnetent(), nullptr);
    EXPECT_EQ(getsubnetent(), nullptr);
    endsubnetent();
}

} // namespace
