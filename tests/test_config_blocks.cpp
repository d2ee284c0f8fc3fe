// Once a section that no record takes begins, the link reader reads the
// rest of the file in blocks and passes over the keyword lines of such
// sections without taking them apart. Whatever the file holds, that must
// give what reading it one line at a time gives. This program is linked
// with malloc and fread wrapped: a test can refuse the reader its block,
// which makes it read one line at a time, and can make reading fail.
#include "qx25.h"

#include "captured_messages.h"
#include "config_tree.h"
#include "link_config.h"
#include "link_file_generator.h"
#include "new_config.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <string>
#include <unistd.h>
#include <vector>

namespace {
bool refuse_blocks = false;       // allocations of a block's size fail
bool fail_after_buffered = false; // reading fails once the buffered bytes are taken
int refused = 0;                  // allocations refused
} // namespace

extern "C" {
void *__real_malloc(std::size_t size);
std::size_t __real_fread(void *buffer, std::size_t size, std::size_t count, FILE *stream);

void *__wrap_malloc(std::size_t size) {
    if (refuse_blocks && size >= 16384) {
        ++refused;
        return nullptr;
    }
    return __real_malloc(size);
}

std::size_t __wrap_fread(void *buffer, std::size_t size, std::size_t count, FILE *stream) {
    if (fail_after_buffered) {
        // The descriptor now reads nothing: what the stream has buffered is
        // delivered, then the read fails.
        int write_only = ::open("/dev/null", O_WRONLY);
        ::dup2(write_only, ::fileno(stream));
        ::close(write_only);
        fail_after_buffered = false;
    }
    return __real_fread(buffer, size, count, stream);
}
}

namespace {

using qx25test::ConfigTree;

std::string text_or_null(const char *text) {
    return text != nullptr ? "\"" + std::string(text) + "\"" : "null";
}

// Everything that reading a file for SECTION LINK alone gives: the result,
// the link record (values and comments) and the messages.
std::string read_link_only(const std::string &path) {
    qx25test::capture_all_messages();
    config_identification ids;
    link_section link{};
    int mode = 0;
    int result = x25_read_config_parameter_file(path.c_str(), &ids, &link, nullptr, nullptr,
                                                nullptr, nullptr, nullptr, &mode);
    std::string got = "result " + std::to_string(result) + ", mode " + std::to_string(mode) + "\n";
    link_values values = link.values;
    got += "alias " + text_or_null(values.subnet.name) + ", description " +
           text_or_null(values.subnet.description) + "\n";
    values.subnet.name = values.subnet.description = nullptr;
    const auto *bytes = reinterpret_cast<const unsigned char *>(&values);
    got += "values";
    for (std::size_t i = 0; i < sizeof values; ++i)
        got += " " + std::to_string(bytes[i]);
    got += "\nsection " + text_or_null(link.section.comments) + " " +
           text_or_null(link.section.trailer) + "\n";
    for (int i = 0; i < LINK_KEYWORDS; ++i)
        got += "keyword " + std::to_string(i) + " " + text_or_null(link.keyword[i].comments) + " " +
               text_or_null(link.keyword[i].trailer) + "\n";
    for (const std::string &message : qx25test::messages())
        got += "message " + message;
    __release_link_section(&link);
    return got;
}

std::string read_one_line_at_a_time(const std::string &path) {
    refuse_blocks = true;
    refused = 0;
    std::string got = read_link_only(path);
    refuse_blocks = false;
    // The reader wanted a block, was refused it, and read on line by line.
    EXPECT_GT(refused, 0);
    return got;
}

class ConfigBlocks : public testing::Test {
  protected:
    void SetUp() override {
        tree.write("config/boardconf", qx25test::generated_boardconf);
        tree.write("lib/world_networks.profile", qx25test::generated_profiles);
    }
    // Reads the file both ways; the two must agree.
    std::string both_ways(const std::string &text) {
        std::string path = tree.write("config/config/l.cfg", text);
        std::string expected = read_one_line_at_a_time(path);
        std::string got = read_link_only(path);
        EXPECT_EQ(got, expected) << "the file:\n" << text;
        return got;
    }
    ConfigTree tree;
};

const std::string head = "IDENTIFICATION\n\tFILE_TYPE\tlink\nSECTION LINK\n\tdevice wan1\n";

TEST_F(ConfigBlocks, GeneratedConfigurations) {
    using qx25test::link_kind;
    for (link_kind kind : {link_kind::lan, link_kind::wan, link_kind::mlp})
        for (std::uint32_t index = 0; index < 40; ++index) {
            auto file = qx25test::generate_link_file(kind, qx25test::first_seed + 5000 + index);
            both_ways(file.text);
            if (HasFailure()) return;
        }
}

TEST_F(ConfigBlocks, SectionLinkAgainAfterSectionsPassedOver) {
    std::string got = both_ways(head + "SECTION X25\n\tmodulo 8\n! before the second link section\n"
                                       "SECTION link ! trailing\n\talias second\n");
    EXPECT_NE(got.find("alias \"second\""), std::string::npos);
    EXPECT_NE(got.find("section \" before the second link section\n\" \" trailing\""),
              std::string::npos);
}

TEST_F(ConfigBlocks, HeadingsPassedOverAreStillReported) {
    std::string got = both_ways(head + "SECTION X25\n\tmodulo 8\nSECTION nowhere\n\tx 1\n"
                                       "IDENTIFICATION\nSUBSECTION LAPB\n\tn2_count 3\n"
                                       "SECTION LINK\n\talias back\n");
    EXPECT_NE(got.find("message Unknown section nowhere, skipped\n"
                       "message Unexpected IDENTIFICATION section, skipped\n"),
              std::string::npos);
    EXPECT_NE(got.find("alias \"back\""), std::string::npos);
}

TEST_F(ConfigBlocks, TheRestOfALongLineIsALineOfItsOwn) {
    // The reader takes 127 characters at a time: what follows is read as
    // a line, here a SECTION line.
    std::string filler(127 - std::strlen("\tpadding"), 'x');
    std::string got = both_ways(head + "SECTION X25\n\tpadding" + filler + "SECTION LINK\n" +
                                "\talias from_the_rest\n" + std::string(300, ' ') + "\n" +
                                "SECTION WAN\n\tx " + std::string(500, 'y') + "\n");
    EXPECT_NE(got.find("alias \"from_the_rest\""), std::string::npos);
}

TEST_F(ConfigBlocks, CommentLinesCutShortByANulByte) {
    // The comment's text ends at the NUL; the line is still a comment line
    // of its own, so the next comment does not run into it.
    std::string nul(1, '\0');
    std::string got = both_ways(head + "SECTION X25\n\tmodulo 8\n" + nul + "empty\n! cut" + nul +
                                "hidden\n! next\nSECTION LINK\n\talias second\n");
    EXPECT_NE(got.find("section \" cut\n next\n\""), std::string::npos) << got;
}

TEST_F(ConfigBlocks, WordsThatOnlyLookLikeHeadings) {
    const char hidden[] = "\tkey\0SECTION LINK\n\talias d\n";
    std::string got = both_ways(head +
                                "SECTION X25\nSECTIONS LINK\n\talias a\nSECTION!LINK\n\talias b\n"
                                "section\tlink\n\talias c\nSUBSECTION\nIDENTIFICATIONS\n\t\n" +
                                std::string(hidden, sizeof hidden - 1) + "!SECTION LINK\n");
    // "section link" is the only heading: the keyword lines after it,
    // "alias d" last, go to the link.
    EXPECT_NE(got.find("alias \"d\""), std::string::npos);
}

TEST_F(ConfigBlocks, ManyCommentsBeforeAHeading) {
    std::string comments;
    for (int i = 0; i < 100; ++i)
        comments += "! comment " + std::to_string(i) + " " + std::string(30, 'c') + "\n";
    both_ways(head + "SECTION WAN\n" + comments + "\tkeyword\n" + comments + "SECTION LINK\n" +
              comments + "\talias z\n");
}

TEST_F(ConfigBlocks, FilesLargerThanABlock) {
    std::string text = head + "SECTION X25\n";
    for (int i = 0; text.size() < 100000; ++i)
        text +=
            "\tkeyword" + std::to_string(i) + "\tvalue ! remark\n" +
            (i % 997 == 0 ? "SECTION LINK\n\talias a" + std::to_string(i) + "\nSECTION X25\n" : "");
    both_ways(text);
    both_ways(text + "SECTION LINK\n\talias last");
}

TEST_F(ConfigBlocks, ALastLineWithoutNewline) {
    std::string got = both_ways(head + "SECTION X25\n\tmodulo 8\nSECTION LINK\n\talias end");
    EXPECT_NE(got.find("alias \"end\""), std::string::npos);
}

// A read error ends the reading where it happens: the lines before it are
// taken, the line it cuts is lost, and the error is reported.
TEST_F(ConfigBlocks, AReadErrorAmongLinesPassedOver) {
    // The stream is given a buffer of config_stream_buffer_size bytes and
    // fills it at the first read; reading fails right after those, in the
    // middle of SECTION cut.
    const std::size_t buffered = qx25::config_stream_buffer_size;
    std::string text = head + "SECTION X25\nSECTION before\n";
    while (text.size() < buffered - 5)
        text += "\tk v\n";
    text.resize(buffered - 5, '\n');
    text += "SECTION cut\n\tafter\nSECTION LINK\n\talias never\n";
    ASSERT_EQ(text.substr(buffered - 5, 11), "SECTION cut");
    std::string path = tree.write("config/config/l.cfg", text);

    fail_after_buffered = true;
    std::string got = read_link_only(path);
    EXPECT_FALSE(fail_after_buffered); // reading went through the block
    EXPECT_NE(got.find("result 0"), std::string::npos);
    EXPECT_NE(got.find("alias null"), std::string::npos);
    EXPECT_EQ(qx25test::messages(),
              (std::vector<std::string>{"Unknown section before, skipped\n",
                                        "Error reading file " + path + "\n"}));
}

} // namespace
