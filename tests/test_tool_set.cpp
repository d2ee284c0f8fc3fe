// qx25 set on files of every shape (line ends, comment blocks, long lines),
// qx25 diff, and set when writing the new file fails at each step.
#include "config_tree.h"
#include "run_tool.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <optional>
#include <string>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

using qx25test::ConfigTree;
using qx25test::read_file;
using qx25test::run_tool;

namespace fs = std::filesystem;

namespace {

const char *const boardconf = "WAN_DEVICE\n\tdevice wan\n\tlines 2\n";
const char *const profiles = "2\tX25_1988\tPublic network, 1988\n";

// A leased line with blocks of short comment lines, as an administrator
// writes them.
const std::string leased_line = "! Link 2.\n"
                                "! Written by hand.\n"
                                "IDENTIFICATION\n"
                                "\tPRODUCT_NAME\tQuenlark X.25\n"
                                "\tMODIFIED_BY\tnetadm\n"
                                "SECTION\tLINK\n"
                                "\tdevice\t\twan0\n"
                                "\tprotocol\tLAPB\n"
                                "\n"
                                "! The frame level:\n"
                                "!   as the carrier asks,\n"
                                "!   checked in May.\n"
                                "SECTION\tLAPB\n"
                                "! Retries:\n"
                                "! ten, not more.\n"
                                "\tn2_count\t10\n"
                                "\tt1_timer\t3.0\t! the carrier's value\n"
                                "\n"
                                "! The line:\n"
                                "! 64k.\n"
                                "SECTION\tWAN\n"
                                "\tline_speed\t64000\n"
                                "SECTION\tX25\n"
                                "\tnetwork\t\tX25_1988\n";

std::string replaced(std::string text, const std::string &from, const std::string &to) {
    std::size_t at = text.find(from);
    EXPECT_NE(at, std::string::npos) << from;
    if (at != std::string::npos) text.replace(at, from.size(), to);
    return text;
}

// Every "\n" of the text as "\r\n".
std::string with_crlf(const std::string &text) {
    std::string result;
    for (char c : text) {
        if (c == '\n') result += '\r';
        result += c;
    }
    return result;
}

// The names in a directory, sorted.
std::vector<std::string> names_in(const std::string &directory) {
    std::vector<std::string> names;
    for (const auto &entry : fs::directory_iterator(directory))
        names.push_back(entry.path().filename().string());
    std::sort(names.begin(), names.end());
    return names;
}

// Sets environment variables for the tool runs of one test.
class environment {
  public:
    void set(const char *name, const std::string &value) {
        const char *old = std::getenv(name);
        saved_.push_back({name, old != nullptr ? std::optional<std::string>(old) : std::nullopt});
        ::setenv(name, value.c_str(), 1);
    }
    ~environment() {
        for (auto it = saved_.rbegin(); it != saved_.rend(); ++it) {
            if (it->second)
                ::setenv(it->first, it->second->c_str(), 1);
            else
                ::unsetenv(it->first);
        }
    }

  private:
    std::vector<std::pair<const char *, std::optional<std::string>>> saved_;
};

class ToolSet : public testing::Test {
  protected:
    void SetUp() override {
        ::setenv("LC_ALL", "C", 1);
        ::unsetenv("NLSPATH");
        ::setenv("LOGNAME", "tester", 1);
        tree.write("config/boardconf", boardconf);
        tree.write("lib/world_networks.profile", profiles);
        directory = tree.config_dir() + "/config";
        path = directory + "/link_config_0002.cfg";
    }

    void write_link(const std::string &text) {
        tree.write("config/config/link_config_0002.cfg", text);
    }

    ConfigTree tree;
    std::string directory;
    std::string path;
};

// ---- the shape of the file ------------------------------------------------------

TEST_F(ToolSet, CommentBlocksStayWhereTheyAre) {
    write_link(leased_line);
    auto changed = run_tool({"set", "2", "lapb", "n2_count", "12"});
    EXPECT_EQ(changed.status, 0) << changed.err;
    std::string expected = replaced(leased_line, "\tn2_count\t10\n", "\tn2_count\t12\n");
    EXPECT_EQ(read_file(path), expected);
    // A line added to the section goes before the comments of the next one.
    auto added = run_tool({"set", "2", "lapb", "max_iframe_len", "263"});
    EXPECT_EQ(added.status, 0) << added.err;
    expected = replaced(expected, "the carrier's value\n\n! The line:",
                        "the carrier's value\n\tmax_iframe_len\t263\n\n! The line:");
    EXPECT_EQ(read_file(path), expected);
    // And again and again: each edit changes its own line.
    ASSERT_EQ(run_tool({"set", "2", "lapb", "n2_count", "13"}).status, 0);
    ASSERT_EQ(run_tool({"set", "2", "wan", "line_speed", "9600"}).status, 0);
    expected = replaced(expected, "\tn2_count\t12\n", "\tn2_count\t13\n");
    expected = replaced(expected, "\tline_speed\t64000\n", "\tline_speed\t9600\n");
    EXPECT_EQ(read_file(path), expected);
}

TEST_F(ToolSet, TheLastOfTwoLinesOfAKeywordIsTheOneChanged) {
    std::string twice = replaced(leased_line, "\tt1_timer", "\tn2_count\t11\n\tt1_timer");
    write_link(twice);
    auto result = run_tool({"set", "2", "lapb", "n2_count", "12"});
    EXPECT_EQ(result.status, 0) << result.err;
    EXPECT_EQ(result.out,
              "link 2: LAPB n2_count 11 -> 12 (line 17); previous file kept as " + path + ".BAK\n");
    EXPECT_EQ(read_file(path), replaced(twice, "\tn2_count\t11\n", "\tn2_count\t12\n"));
}

TEST_F(ToolSet, CrlfLinesKeepTheirLineEnds) {
    // The reader keeps a carriage return in the value, so the lines that
    // name the block and the sections end in a comment here.
    std::string text = replaced(leased_line, "IDENTIFICATION\n", "IDENTIFICATION\t! crlf\n");
    for (const char *section : {"LINK", "LAPB", "WAN", "X25"}) {
        std::string line = std::string("SECTION\t") + section + "\n";
        text = replaced(text, line, std::string("SECTION\t") + section + " !\n");
    }
    text = with_crlf(text);
    write_link(text);
    auto changed = run_tool({"set", "2", "lapb", "n2_count", "12"});
    EXPECT_EQ(changed.status, 0) << changed.err;
    std::string expected = replaced(text, "\tn2_count\t10\r\n", "\tn2_count\t12\r\n");
    EXPECT_EQ(read_file(path), expected);
    auto added = run_tool({"set", "2", "wan", "max_frame", "1024"});
    EXPECT_EQ(added.status, 0) << added.err;
    expected = replaced(expected, "\tline_speed\t64000\r\n",
                        "\tline_speed\t64000\r\n\tmax_frame\t1024\r\n");
    EXPECT_EQ(read_file(path), expected);
}

TEST_F(ToolSet, AFileTheReaderCannotOpenIsLeftAlone) {
    // "IDENTIFICATION\r" is no IDENTIFICATION line to the reader.
    std::string text = with_crlf(leased_line);
    write_link(text);
    auto result = run_tool({"set", "2", "lapb", "n2_count", "12"});
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.err, "qx25 set: Error reading IDENTIFICATION section from file " + path +
                              ", line 3\n"
                              "qx25 set: link 2 not changed\n");
    EXPECT_EQ(read_file(path), text);
    EXPECT_EQ(names_in(directory), std::vector<std::string>{"link_config_0002.cfg"});
}

TEST_F(ToolSet, AFileWithoutAFinalNewlineKeepsEndingWithout) {
    std::string text = leased_line.substr(0, leased_line.size() - 1);
    write_link(text);
    // The last line itself.
    ASSERT_EQ(run_tool({"set", "2", "x25", "network", "7"}).status, 0);
    text = replaced(text, "\tnetwork\t\tX25_1988", "\tnetwork\t\t7");
    EXPECT_EQ(read_file(path), text);
    // A line added after it.
    ASSERT_EQ(run_tool({"set", "2", "x25", "modulo", "128"}).status, 0);
    EXPECT_EQ(read_file(path), text + "\n\tmodulo\t128");
    ASSERT_EQ(run_tool({"set", "2", "x25", "modulo", "8"}).status, 0);
    EXPECT_EQ(read_file(path), text + "\n\tmodulo\t8");
}

TEST_F(ToolSet, AKeywordLineWithoutAValue) {
    std::string text = replaced(leased_line, "\tn2_count\t10\n", "\tn2_count\n");
    text = replaced(text, "\tt1_timer\t3.0\t!", "\tt1_timer\t!");
    write_link(text);
    ASSERT_EQ(run_tool({"set", "2", "lapb", "n2_count", "5"}).status, 0);
    ASSERT_EQ(run_tool({"set", "2", "lapb", "t1_timer", "2.5"}).status, 0);
    std::string expected = replaced(text, "\tn2_count\n", "\tn2_count\t5\n");
    EXPECT_EQ(read_file(path), replaced(expected, "\tt1_timer\t!", "\tt1_timer\t2.5\t!"));
}

TEST_F(ToolSet, LinesTooLongForTheReader) {
    // The reader takes a long line in pieces: such a line is not edited, and
    // no edit makes one.
    std::string description(120, 'd');
    std::string text = replaced(leased_line, "\tprotocol\tLAPB\n",
                                "\tprotocol\tLAPB\n\tdescription\t" + description + "\n");
    write_link(text);
    auto long_line = run_tool({"set", "2", "link", "description", "short"});
    EXPECT_EQ(long_line.status, 1);
    EXPECT_EQ(long_line.err,
              "qx25 set: link 2 not changed: line 9 of its file is longer than 127 characters\n");
    auto too_long = run_tool({"set", "2", "link", "alias", std::string(120, 'a')});
    EXPECT_EQ(too_long.status, 1);
    EXPECT_EQ(too_long.err, "qx25 set: link 2 not changed: the line would be longer than the "
                            "127 characters the reader takes\n");
    // A tab, the keyword, a tab, the value and the newline: 127 characters.
    auto fits = run_tool({"set", "2", "link", "alias", std::string(119, 'a')});
    EXPECT_EQ(fits.status, 0) << fits.err;
    std::string line = "\tdescription\t" + description + "\n";
    EXPECT_EQ(read_file(path),
              replaced(text, line, line + "\talias\t" + std::string(119, 'a') + "\n"));
}

TEST_F(ToolSet, TheNewFileAndTheBackupHaveTheOwnerOfTheFile) {
    write_link(leased_line);
    // Only root can give a file to another user.
    if (::geteuid() != 0) GTEST_SKIP() << "needs root";
    ASSERT_EQ(::chown(path.c_str(), 1, 1), 0);
    ASSERT_EQ(run_tool({"set", "2", "lapb", "n2_count", "12"}).status, 0);
    for (const std::string &file : {path, path + ".BAK"}) {
        struct stat status {};
        ASSERT_EQ(::stat(file.c_str(), &status), 0) << file;
        EXPECT_EQ(status.st_uid, 1u) << file;
        EXPECT_EQ(status.st_gid, 1u) << file;
    }
}

TEST_F(ToolSet, ASymbolicLinkStaysOne) {
    std::string real = fs::canonical(tree.write("elsewhere/link2.cfg", leased_line)).string();
    fs::create_symlink(real, path);
    auto result = run_tool({"set", "2", "lapb", "n2_count", "12"});
    EXPECT_EQ(result.status, 0) << result.err;
    EXPECT_EQ(result.out,
              "link 2: LAPB n2_count 10 -> 12 (line 16); previous file kept as " + real + ".BAK\n");
    EXPECT_TRUE(fs::is_symlink(path));
    EXPECT_EQ(read_file(real), replaced(leased_line, "\tn2_count\t10\n", "\tn2_count\t12\n"));
    EXPECT_EQ(read_file(real + ".BAK"), leased_line);
}

// ---- diff -------------------------------------------------------------------------

TEST_F(ToolSet, DiffNeedsOneLinkOrFile) {
    auto none = run_tool({"diff"});
    EXPECT_EQ(none.status, 2);
    EXPECT_EQ(none.err, "qx25 diff: one LINK or FILE is needed\nusage: qx25 diff LINK|FILE\n");
    auto missing = run_tool({"diff", "7"});
    EXPECT_EQ(missing.status, 1);
    EXPECT_EQ(missing.err,
              "qx25 diff: Error opening file " + directory + "/link_config_0007.cfg\n");
    auto far = run_tool({"diff", "123456"});
    EXPECT_EQ(far.status, 1);
    EXPECT_EQ(far.err, "qx25 diff: '123456' names no link file\n");
}

// ---- failures while writing ------------------------------------------------------

struct failure_case {
    const char *name;
    const char *call;
    const char *path; // pattern, under the link directory
    int error;
    const char *message; // what set says, the link directory as DIR
    bool backup_made;    // the backup is in place when the failure comes
};

std::ostream &operator<<(std::ostream &out, const failure_case &c) {
    return out << c.name;
}

class ToolSetFailure : public ToolSet, public testing::WithParamInterface<failure_case> {
  protected:
    // Runs set with the call failing as the case says.
    qx25test::tool_result run_failing(const failure_case &c) {
        environment env;
        env.set("LD_PRELOAD", QX25_FAILING_CALLS);
        const char *asan = std::getenv("ASAN_OPTIONS");
        env.set("ASAN_OPTIONS",
                std::string(asan != nullptr ? asan : "") + ":verify_asan_link_order=0");
        env.set("QX25_FAIL_CALL", c.call);
        env.set("QX25_FAIL_PATH", directory + c.path);
        env.set("QX25_FAIL_ERRNO", std::to_string(c.error));
        return run_tool({"set", "2", "lapb", "n2_count", "12"});
    }

    // The message with DIR for the link directory and XXXXXX for the six
    // random characters of a temporary file's name.
    std::string general(std::string message) {
        for (std::size_t at; (at = message.find(directory)) != std::string::npos;)
            message.replace(at, directory.size(), "DIR");
        for (const char *role : {".new.", ".bak."}) {
            std::size_t at = message.find(role);
            if (at != std::string::npos) message.replace(at + 5, 6, "XXXXXX");
        }
        return message;
    }
};

TEST_P(ToolSetFailure, LeavesTheFileAndTheBackupWhole) {
    const failure_case &c = GetParam();
    write_link(leased_line);
    tree.write("config/config/link_config_0002.cfg.BAK", "older\n");
    auto result = run_failing(c);
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.out, "");
    EXPECT_EQ(general(result.err),
              std::string("qx25 set: link 2 not changed: ") + c.message + "\n");
    EXPECT_EQ(read_file(path), leased_line);
    EXPECT_EQ(read_file(path + ".BAK"), c.backup_made ? leased_line : "older\n");
    EXPECT_EQ(names_in(directory),
              (std::vector<std::string>{"link_config_0002.cfg", "link_config_0002.cfg.BAK"}));
}

const failure_case failures[] = {
    {"NoRoomForTheNewFile", "mkostemp", "/.link_config_0002.cfg.new.*", ENOSPC,
     "cannot create a file in DIR: No space left on device", false},
    {"ReadOnlyDirectory", "mkostemp", "/.link_config_0002.cfg.new.*", EROFS,
     "cannot create a file in DIR: Read-only file system", false},
    {"NoPermission", "mkostemp", "/.link_config_0002.cfg.new.*", EACCES,
     "cannot create a file in DIR: Permission denied", false},
    {"WritingTheNewFile", "write", "/.link_config_0002.cfg.new.*", ENOSPC,
     "cannot write DIR/.link_config_0002.cfg.new.XXXXXX: No space left on device", false},
    {"GivingTheNewFileItsMode", "fchmod", "/.link_config_0002.cfg.new.*", EPERM,
     "cannot give DIR/.link_config_0002.cfg.new.XXXXXX the mode of DIR/link_config_0002.cfg: "
     "Operation not permitted",
     false},
    {"SyncingTheNewFile", "fsync", "/.link_config_0002.cfg.new.*", EIO,
     "cannot sync DIR/.link_config_0002.cfg.new.XXXXXX: Input/output error", false},
    {"WritingTheBackup", "write", "/.link_config_0002.cfg.bak.*", EDQUOT,
     "cannot write DIR/.link_config_0002.cfg.bak.XXXXXX: Disk quota exceeded", false},
    {"SyncingTheBackup", "fsync", "/.link_config_0002.cfg.bak.*", EIO,
     "cannot sync DIR/.link_config_0002.cfg.bak.XXXXXX: Input/output error", false},
    {"RenamingTheBackup", "rename", "/link_config_0002.cfg.BAK", EROFS,
     "cannot rename DIR/.link_config_0002.cfg.bak.XXXXXX to DIR/link_config_0002.cfg.BAK: "
     "Read-only file system",
     false},
    {"RenamingTheNewFile", "rename", "/link_config_0002.cfg", EXDEV,
     "cannot rename DIR/.link_config_0002.cfg.new.XXXXXX to DIR/link_config_0002.cfg: "
     "Invalid cross-device link",
     true},
};

INSTANTIATE_TEST_SUITE_P(Steps, ToolSetFailure, testing::ValuesIn(failures),
                         [](const testing::TestParamInfo<failure_case> &info) {
                             return std::string(info.param.name);
                         });

TEST_F(ToolSetFailure, AFileThatDoesNotReadBackIsPutBack) {
    write_link(leased_line);
    // The new file's text never reaches the disk, once.
    environment env;
    env.set("QX25_FAIL_TIMES", "1");
    auto result = run_failing({"", "write", "/.link_config_0002.cfg.new.*", 0, "", true});
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.out, "");
    EXPECT_EQ(result.err, "qx25 set: the new " + path +
                              " does not read as planned: it cannot be read: Error reading "
                              "IDENTIFICATION section from file " +
                              path +
                              "\n"
                              "qx25 set: link 2 not changed: the previous file is put back\n");
    EXPECT_EQ(read_file(path), leased_line);
    EXPECT_EQ(read_file(path + ".BAK"), leased_line);
    EXPECT_EQ(names_in(directory),
              (std::vector<std::string>{"link_config_0002.cfg", "link_config_0002.cfg.BAK"}));
}

TEST_F(ToolSetFailure, ADirectoryThatCannotBeSyncedIsReported) {
    write_link(leased_line);
    // Only the directory matches: the new files are in it, not it.
    auto result = run_failing({"", "fsync", "", EIO, "", true});
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.out,
              "link 2: LAPB n2_count 10 -> 12 (line 16); previous file kept as " + path + ".BAK\n");
    EXPECT_EQ(result.err,
              "qx25 set: cannot sync the directory " + directory + ": Input/output error\n");
    EXPECT_EQ(read_file(path), replaced(leased_line, "\tn2_count\t10\n", "\tn2_count\t12\n"));
    EXPECT_EQ(read_file(path + ".BAK"), leased_line);
}

} // namespace
