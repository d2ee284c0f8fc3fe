// Special files where the library expects a text file: a FIFO, a device or a
// directory is refused at once, never waited on, never read or truncated.
#include "qx25.h"

#include "captured_messages.h"
#include "config_tree.h"
#include "link_config.h"
#include "text_file.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <string>
#include <sys/stat.h>
#include <unistd.h>

using qx25test::ConfigTree;
using qx25test::messages;
using qx25test::read_file;

namespace {

// Every test here would hang for ever if a special file were opened as a
// plain one: the alarm turns such a hang into a failure.
class SpecialFiles : public testing::Test {
  protected:
    void SetUp() override {
        qx25test::capture_all_messages();
        alarm(10);
    }
    void TearDown() override { alarm(0); }

    std::string fifo(const std::string &relative) {
        std::string path = tree.root() + "/" + relative;
        EXPECT_EQ(mkfifo(path.c_str(), 0600), 0) << std::strerror(errno);
        return path;
    }

    ConfigTree tree;
};

TEST_F(SpecialFiles, RegularFileOpensAndReads) {
    std::string path = tree.write("config/plain", "text\n");
    qx25::file_ptr stream(qx25::open_regular_file(path.c_str()));
    ASSERT_TRUE(stream);
    char line[16] = {};
    ASSERT_NE(std::fgets(line, sizeof line, stream.get()), nullptr);
    EXPECT_STREQ(line, "text\n");
}

TEST_F(SpecialFiles, MissingFileKeepsItsErrno) {
    errno = 0;
    EXPECT_EQ(qx25::open_regular_file((tree.root() + "/none").c_str()), nullptr);
    EXPECT_EQ(errno, ENOENT);
}

TEST_F(SpecialFiles, DirectoryIsRefusedAsADirectory) {
    errno = 0;
    EXPECT_EQ(qx25::open_regular_file(tree.config_dir().c_str()), nullptr);
    EXPECT_EQ(errno, EISDIR);
    errno = 0;
    EXPECT_EQ(qx25::create_regular_file(tree.config_dir().c_str()), nullptr);
    EXPECT_EQ(errno, EISDIR);
}

TEST_F(SpecialFiles, FifoIsRefusedWithoutWaitingForAWriter) {
    std::string path = fifo("config/pipe");
    errno = 0;
    EXPECT_EQ(qx25::open_regular_file(path.c_str()), nullptr);
    EXPECT_EQ(errno, EINVAL);
}

TEST_F(SpecialFiles, DeviceIsRefused) {
    errno = 0;
    EXPECT_EQ(qx25::open_regular_file("/dev/null"), nullptr);
    EXPECT_EQ(errno, EINVAL);
    errno = 0;
    EXPECT_EQ(qx25::create_regular_file("/dev/null"), nullptr);
    EXPECT_EQ(errno, EINVAL);
}

TEST_F(SpecialFiles, FifoWithoutReaderIsNotWrittenTo) {
    std::string path = fifo("config/pipe");
    errno = 0;
    EXPECT_EQ(qx25::create_regular_file(path.c_str()), nullptr);
    EXPECT_EQ(errno, ENXIO);
}

TEST_F(SpecialFiles, FifoWithAReaderIsNotWrittenTo) {
    std::string path = fifo("config/pipe");
    int reader = open(path.c_str(), O_RDONLY | O_NONBLOCK);
    ASSERT_NE(reader, -1);
    errno = 0;
    EXPECT_EQ(qx25::create_regular_file(path.c_str()), nullptr);
    EXPECT_EQ(errno, EINVAL);
    char byte;
    EXPECT_EQ(read(reader, &byte, 1), 0); // nothing was written, and no writer is left
    close(reader);
}

TEST_F(SpecialFiles, CreatedFileIsTruncatedAndTakesTheUmask) {
    std::string path = tree.write("config/old", "old contents\n");
    {
        qx25::file_ptr stream(qx25::create_regular_file(path.c_str()));
        ASSERT_TRUE(stream);
        std::fputs("new\n", stream.get());
    }
    EXPECT_EQ(read_file(path), "new\n");

    mode_t previous = umask(027);
    std::string fresh = tree.root() + "/config/fresh";
    qx25::file_ptr stream(qx25::create_regular_file(fresh.c_str()));
    umask(previous);
    ASSERT_TRUE(stream);
    struct stat status {};
    ASSERT_EQ(stat(fresh.c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777, 0640u);
}

TEST_F(SpecialFiles, OpenedFilesAreNotInheritedByPrograms) {
    std::string path = tree.write("config/plain", "text\n");
    qx25::file_ptr stream(qx25::open_regular_file(path.c_str()));
    ASSERT_TRUE(stream);
    EXPECT_NE(fcntl(fileno(stream.get()), F_GETFD) & FD_CLOEXEC, 0);
}

// ---- The library's files ----------------------------------------------------------

TEST_F(SpecialFiles, LinkFileFifoIsAnOpeningError) {
    std::string path = fifo("config/config/link_config_0008.cfg");
    config_identification ids;
    EXPECT_EQ(x25_open_config_file(path.c_str(), &ids, 0), nullptr);
    ASSERT_EQ(messages().size(), 1u);
    EXPECT_EQ(messages()[0], "Error opening file " + path + "\n");
}

TEST_F(SpecialFiles, LinkFileDirectoryIsAnOpeningError) {
    std::string path = tree.config_dir() + "/config/link_config_0008.cfg";
    ASSERT_EQ(mkdir(path.c_str(), 0700), 0);
    config_identification ids;
    EXPECT_EQ(x25_open_config_file(path.c_str(), &ids, 0), nullptr);
    ASSERT_EQ(messages().size(), 1u);
    EXPECT_EQ(messages()[0], "Error opening file " + path + "\n");
}

TEST_F(SpecialFiles, BoardconfFifoReadsAsAMissingFile) {
    fifo("config/boardconf");
    device_type table[DEVICE_TYPE_ROWS] = {};
    EXPECT_EQ(fill_linktype_struct(table), 0);
    EXPECT_TRUE(messages().empty());
}

TEST_F(SpecialFiles, PvcMapFifoGivesNoCircuits) {
    fifo("config/pvcmapconf");
    link_node node{};
    node.link.values.subnet.address.snid = 1;
    __fill_PVC_lists(&node);
    EXPECT_EQ(node.link.values.pvcs, nullptr);
    EXPECT_TRUE(messages().empty());
}

TEST_F(SpecialFiles, ProfileFifoIsAnOpeningError) {
    std::string path = fifo("lib/world_networks.profile");
    EXPECT_STREQ(__network_name(2), "<Unknown>");
    ASSERT_FALSE(messages().empty());
    EXPECT_EQ(messages()[0], "Error opening file " + path + "\n");
}

// ---- Bounded lines ----------------------------------------------------------------------

class BoundedLines : public testing::Test {
  protected:
    qx25::line_read next(char *line, std::size_t size) {
        return qx25::read_bounded_line(stream.get(), line, size);
    }
    void open(const std::string &text) {
        path = tree.write("config/lines", text);
        stream.reset(std::fopen(path.c_str(), "r"));
        ASSERT_TRUE(stream);
    }
    ConfigTree tree;
    std::string path;
    qx25::file_ptr stream;
};

TEST_F(BoundedLines, LinesThatFitKeepTheirNewline) {
    open("one\n\nlast");
    char line[8];
    EXPECT_EQ(next(line, sizeof line), qx25::line_read::ok);
    EXPECT_STREQ(line, "one\n");
    EXPECT_EQ(next(line, sizeof line), qx25::line_read::ok);
    EXPECT_STREQ(line, "\n");
    EXPECT_EQ(next(line, sizeof line), qx25::line_read::ok);
    EXPECT_STREQ(line, "last");
    EXPECT_EQ(next(line, sizeof line), qx25::line_read::end);
}

TEST_F(BoundedLines, NewlineThatAloneDoesNotFitIsDropped) {
    open("1234567\nnext\n");
    char line[8];
    EXPECT_EQ(next(line, sizeof line), qx25::line_read::ok);
    EXPECT_STREQ(line, "1234567");
    EXPECT_EQ(next(line, sizeof line), qx25::line_read::ok);
    EXPECT_STREQ(line, "next\n");
}

TEST_F(BoundedLines, LongLineKeepsItsHeadAndLosesItsTail) {
    open("12345678tail\nnext\n");
    char line[8];
    EXPECT_EQ(next(line, sizeof line), qx25::line_read::too_long);
    EXPECT_STREQ(line, "1234567");
    EXPECT_EQ(next(line, sizeof line), qx25::line_read::ok);
    EXPECT_STREQ(line, "next\n");
    EXPECT_EQ(next(line, sizeof line), qx25::line_read::end);
}

TEST_F(BoundedLines, NulBytesNeitherEndNorLengthenALine) {
    open(std::string("123456\0tail\nab\0\nnext\n", 21));
    char line[8];
    EXPECT_EQ(next(line, sizeof line), qx25::line_read::too_long);
    EXPECT_EQ(std::memcmp(line, "123456\0", 8), 0);
    EXPECT_EQ(next(line, sizeof line), qx25::line_read::ok);
    EXPECT_EQ(std::memcmp(line, "ab\0\n", 5), 0);
    EXPECT_EQ(next(line, sizeof line), qx25::line_read::ok);
    EXPECT_STREQ(line, "next\n");
}

TEST_F(BoundedLines, MillionCharacterLineWithoutNewline) {
    open(std::string(1000000, 'x'));
    char line[1024];
    EXPECT_EQ(next(line, sizeof line), qx25::line_read::too_long);
    EXPECT_EQ(std::strlen(line), 1023u);
    EXPECT_EQ(next(line, sizeof line), qx25::line_read::end);
}

} // namespace
