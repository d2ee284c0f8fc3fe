// The configuration line reader and the IDENTIFICATION block.
#include "qx25.h"

#include "config_tree.h"
#include "captured_messages.h"
#include "new_config.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <unistd.h>
#include <vector>

using qx25test::ConfigTree;
using qx25test::messages;
using namespace std::string_literals;

namespace {

const char *const good_head = "! Link 1 of the site\n"
                              "! second line\n"
                              "\n"
                              "IDENTIFICATION\n"
                              "\tPRODUCT_NAME\tQuenlark X.25\n"
                              "\tPRODUCT_VERSION\t 4.1 patch 07\n"
                              "! between\n"
                              "\tFILE_TYPE\tx25link\n"
                              "\tMODIFIED_BY\troot\n"
                              "\tFILE_DATE\tSat Nov 21 10:00:00 2026\n"
                              "\n"
                              "! the link section\n"
                              "SECTION\tLINK\t! trailing\n"
                              "\tdevice\t\twan0\n";

class ConfigLines : public testing::Test {
  protected:
    void SetUp() override {
        qx25test::capture_all_messages();
        // Short relative names keep the messages within their buffer.
        ASSERT_EQ(::chdir(tree.root().c_str()), 0);
    }

    // Opens a file of the given content; null when the reader refused it.
    FILE *open(const std::string &content, const char *name = "f.cfg", int mode = 0) {
        tree.write(name, content);
        return x25_open_config_file(name, &ids, mode);
    }

    // Reads the next line with both comment fields emptied first.
    int next(FILE *stream) {
        line.comments[0] = '\0';
        line.trailer[0] = '\0';
        return x25_read_config_line(stream, &line);
    }

    // Reads a bare stream, as the reader does after the IDENTIFICATION block.
    FILE *raw(const std::string &content) {
        tree.write("raw.txt", content);
        std::memset(&line, 0, sizeof line);
        return std::fopen("raw.txt", "r");
    }

    ConfigTree tree;
    config_identification ids;
    config_line line{};
};

TEST_F(ConfigLines, RecordLayouts) {
    EXPECT_EQ(sizeof(config_identification), 1199u);
    EXPECT_EQ(offsetof(config_identification, product_version), 64u);
    EXPECT_EQ(offsetof(config_identification, file_type), 79u);
    EXPECT_EQ(offsetof(config_identification, modified_by), 111u);
    EXPECT_EQ(offsetof(config_identification, file_date), 143u);
    EXPECT_EQ(offsetof(config_identification, comments), 175u);
    EXPECT_EQ(offsetof(config_line, kind), 4u);
    EXPECT_EQ(offsetof(config_line, keyword), 6u);
    EXPECT_EQ(offsetof(config_line, value), 70u);
    EXPECT_EQ(offsetof(config_line, comments), 326u);
    EXPECT_EQ(offsetof(config_line, trailer), 1350u);
}

TEST_F(ConfigLines, GoodHeadFillsTheIdentificationAndQueuesTheSectionLine) {
    FILE *stream = open(good_head);
    ASSERT_NE(stream, nullptr);
    EXPECT_TRUE(messages().empty());
    EXPECT_STREQ(ids.product_name, "Quenlark X.25");
    // Blanks after the keyword are skipped, the version's own included.
    EXPECT_EQ(std::string(ids.product_version, 13), std::string("4.1 patch 07", 13));
    EXPECT_STREQ(ids.file_type, "x25link");
    EXPECT_STREQ(ids.modified_by, "root");
    EXPECT_STREQ(ids.file_date, "Sat Nov 21 10:00:00 2026");
    EXPECT_STREQ(ids.comments, " Link 1 of the site\n second line\n");

    ASSERT_EQ(next(stream), 0);
    EXPECT_EQ(line.kind, CONFIG_LINE_SECTION);
    EXPECT_STREQ(line.keyword, "SECTION");
    EXPECT_STREQ(line.value, "LINK");
    EXPECT_STREQ(line.comments, " the link section\n");
    EXPECT_STREQ(line.trailer, " trailing");
    EXPECT_EQ(line.line_no, 13u);

    ASSERT_EQ(next(stream), 0);
    EXPECT_EQ(line.kind, CONFIG_LINE_KEYWORD);
    EXPECT_STREQ(line.keyword, "device");
    EXPECT_STREQ(line.value, "wan0");
    EXPECT_EQ(line.line_no, 14u);
    EXPECT_EQ(next(stream), -1);
    std::fclose(stream);
}

TEST_F(ConfigLines, NullArgumentsAreReported) {
    EXPECT_EQ(x25_open_config_file(nullptr, &ids, 0), nullptr);
    EXPECT_EQ(x25_open_config_file("f.cfg", nullptr, 0), nullptr);
    EXPECT_EQ(messages(),
              (std::vector<std::string>{"Null pointers passed to x25_open_config_file\n",
                                        "Null pointers passed to x25_open_config_file\n"}));
}

TEST_F(ConfigLines, MissingFileIsReportedUnlessSilent) {
    EXPECT_EQ(x25_open_config_file("missing.cfg", &ids, 0), nullptr);
    EXPECT_EQ(messages(), std::vector<std::string>{"Error opening file missing.cfg\n"});
    messages().clear();
    EXPECT_EQ(x25_open_config_file("missing.cfg", &ids, X25_CONFIG_SILENT), nullptr);
    EXPECT_TRUE(messages().empty());
}

TEST_F(ConfigLines, EmptyFileCannotBeReadAsIdentification) {
    EXPECT_EQ(open(""), nullptr);
    EXPECT_EQ(messages(),
              std::vector<std::string>{"Error reading IDENTIFICATION section from file f.cfg\n"});
}

TEST_F(ConfigLines, OnlyCommentsCannotBeReadAsIdentification) {
    EXPECT_EQ(open("! nothing\n\n! else\n"), nullptr);
    EXPECT_EQ(messages(),
              std::vector<std::string>{"Error reading IDENTIFICATION section from file f.cfg\n"});
}

TEST_F(ConfigLines, SectionBeforeIdentificationNamesItsLine) {
    EXPECT_EQ(open("! comment\n\nSECTION LINK\n"), nullptr);
    EXPECT_EQ(messages(), std::vector<std::string>{
                              "Error reading IDENTIFICATION section from file f.cfg, line 3\n"});
}

TEST_F(ConfigLines, IdentificationAtEndOfFileIsWronglyTerminated) {
    EXPECT_EQ(open("IDENTIFICATION\n"), nullptr);
    EXPECT_EQ(messages(), std::vector<std::string>{
                              "IDENTIFICATION section wrongly terminated in file f.cfg, line 1\n"});
}

TEST_F(ConfigLines, KeywordsThenEndOfFileAreWronglyTerminated) {
    EXPECT_EQ(open("IDENTIFICATION\nPRODUCT_NAME x\n\n"), nullptr);
    EXPECT_EQ(messages(), std::vector<std::string>{
                              "IDENTIFICATION section wrongly terminated in file f.cfg, line 3\n"});
    EXPECT_STREQ(ids.product_name, "x"); // what was filled stays
}

TEST_F(ConfigLines, SubsectionOrSecondIdentificationEndsTheBlockWrongly) {
    EXPECT_EQ(open("IDENTIFICATION\nSUBSECTION LAPB\nSECTION LINK\n"), nullptr);
    EXPECT_EQ(open("IDENTIFICATION\nFILE_TYPE x\nidentification\n"), nullptr);
    EXPECT_EQ(messages(),
              (std::vector<std::string>{
                  "IDENTIFICATION section wrongly terminated in file f.cfg, line 2\n",
                  "IDENTIFICATION section wrongly terminated in file f.cfg, line 3\n"}));
}

TEST_F(ConfigLines, DirectoryIsAnOpeningError) {
    ASSERT_EQ(::mkdir("dir.cfg", 0755), 0);
    EXPECT_EQ(x25_open_config_file("dir.cfg", &ids, 0), nullptr);
    EXPECT_EQ(messages(), std::vector<std::string>{"Error opening file dir.cfg\n"});
}

TEST_F(ConfigLines, KeywordsAndSectionNamesIgnoreCase) {
    FILE *stream = open("identification\nproduct_name A\nFile_Type B\nsection link\n");
    ASSERT_NE(stream, nullptr);
    EXPECT_STREQ(ids.product_name, "A");
    EXPECT_STREQ(ids.file_type, "B");
    ASSERT_EQ(next(stream), 0);
    EXPECT_EQ(line.kind, CONFIG_LINE_SECTION);
    EXPECT_STREQ(line.keyword, "section"); // kept as written
    std::fclose(stream);
}

TEST_F(ConfigLines, UnknownIdentificationKeywordsAreIgnoredSilently) {
    FILE *stream = open("IDENTIFICATION ignored value ! and comment\nVENDOR x\nSECTION X25\n");
    ASSERT_NE(stream, nullptr);
    EXPECT_TRUE(messages().empty());
    EXPECT_EQ(ids.product_name[0], '\0');
    next(stream);
    std::fclose(stream);
}

TEST_F(ConfigLines, EveryDuplicateIsReportedWithItsOwnLineAndTheFirstKept) {
    FILE *stream = open("IDENTIFICATION\n"
                        "PRODUCT_NAME one\n"
                        "PRODUCT_VERSION one\n"
                        "FILE_TYPE one\n"
                        "MODIFIED_BY one\n"
                        "FILE_DATE one\n"
                        "! comment lines count too\n"
                        "PRODUCT_NAME two\n"
                        "PRODUCT_VERSION two\n"
                        "FILE_TYPE two\n"
                        "MODIFIED_BY two\n"
                        "\n"
                        "FILE_DATE two\n"
                        "SECTION LINK\n");
    ASSERT_NE(stream, nullptr);
    EXPECT_EQ(messages(),
              (std::vector<std::string>{"Duplicate PRODUCT_NAME entry at line 8, skipped\n",
                                        "Duplicate PRODUCT_VERSION entry at line 9, skipped\n",
                                        "Duplicate FILE_TYPE entry at line 10, skipped\n",
                                        "Duplicate MODIFIED_BY entry at line 11, skipped\n",
                                        "Duplicate FILE_DATE entry at line 13, skipped\n"}));
    EXPECT_STREQ(ids.product_name, "one");
    EXPECT_STREQ(ids.product_version, "one");
    EXPECT_STREQ(ids.file_type, "one");
    EXPECT_STREQ(ids.modified_by, "one");
    EXPECT_STREQ(ids.file_date, "one");
    next(stream);
    std::fclose(stream);
}

TEST_F(ConfigLines, AnEmptyFirstValueDoesNotCountAsSet) {
    FILE *stream = open("IDENTIFICATION\nFILE_DATE\nFILE_DATE today\nSECTION LINK\n");
    ASSERT_NE(stream, nullptr);
    EXPECT_TRUE(messages().empty());
    EXPECT_STREQ(ids.file_date, "today");
    next(stream);
    std::fclose(stream);
}

TEST_F(ConfigLines, FieldsAreCutToTheirLimits) {
    std::string name(70, 'n'), version(20, 'v'), type(40, 't');
    FILE *stream = open("IDENTIFICATION\nPRODUCT_NAME " + name + "\nPRODUCT_VERSION " + version +
                        "\nFILE_TYPE " + type + "\nMODIFIED_BY " + type + "\nFILE_DATE " + type +
                        "\nSECTION LINK\n");
    ASSERT_NE(stream, nullptr);
    EXPECT_EQ(std::string(ids.product_name), std::string(63, 'n'));
    // The version fills all 15 bytes and has no terminator of its own.
    EXPECT_EQ(std::string(ids.product_version, 15), std::string(15, 'v'));
    EXPECT_EQ(std::string(ids.file_type), std::string(31, 't'));
    EXPECT_EQ(std::string(ids.modified_by), std::string(31, 't'));
    EXPECT_EQ(std::string(ids.file_date), std::string(31, 't'));
    next(stream);
    std::fclose(stream);
}

TEST_F(ConfigLines, CommentsBeforeIdentificationAreCutToTheField) {
    std::string head;
    for (int i = 0; i < 30; ++i)
        head += "!" + std::string(100, char('a' + i % 26)) + "\n";
    FILE *stream = open(head + "IDENTIFICATION\nSECTION LINK\n");
    ASSERT_NE(stream, nullptr);
    EXPECT_EQ(std::strlen(ids.comments), 1023u);
    next(stream);
    std::fclose(stream);
}

TEST_F(ConfigLines, ValueAndTrailingComment) {
    FILE *stream = raw("word v ! n\nword v   \nword\t  two words  ! x\nword\n");
    ASSERT_EQ(next(stream), 0);
    EXPECT_STREQ(line.keyword, "word");
    EXPECT_STREQ(line.value, "v");
    EXPECT_STREQ(line.trailer, " n");
    ASSERT_EQ(next(stream), 0);
    EXPECT_STREQ(line.value, "v   "); // without a comment trailing blanks stay
    EXPECT_STREQ(line.trailer, "");
    ASSERT_EQ(next(stream), 0);
    EXPECT_STREQ(line.value, "two words");
    EXPECT_STREQ(line.trailer, " x");
    ASSERT_EQ(next(stream), 0);
    EXPECT_STREQ(line.value, "");
    EXPECT_EQ(line.kind, CONFIG_LINE_KEYWORD);
    std::fclose(stream);
}

TEST_F(ConfigLines, ExclamationMarkAlwaysStartsAComment) {
    FILE *stream = raw("description Hello!World\n");
    ASSERT_EQ(next(stream), 0);
    EXPECT_STREQ(line.value, "Hello");
    EXPECT_STREQ(line.trailer, "World");
    std::fclose(stream);
}

TEST_F(ConfigLines, LongTrailingCommentIsBoundByItsOwnLength) {
    // The bound is 127 less the comment's length with its newline: a
    // comment of 100 characters keeps its first 26.
    std::string comment(100, 'c');
    for (int i = 0; i < 100; ++i)
        comment[i] = char('a' + i % 26);
    FILE *stream = raw("k v !" + comment + "\nk v !" + comment.substr(0, 63) + "\n");
    ASSERT_EQ(next(stream), 0);
    EXPECT_EQ(std::string(line.trailer), comment.substr(0, 26));
    ASSERT_EQ(next(stream), 0);
    EXPECT_EQ(std::string(line.trailer), comment.substr(0, 63));
    std::fclose(stream);
}

TEST_F(ConfigLines, LongKeywordKeepsSixtyThreeCharactersAndTheWholeWordIsSkipped) {
    std::string word(70, 'k');
    FILE *stream = raw(word + " value\n");
    ASSERT_EQ(next(stream), 0);
    EXPECT_EQ(std::string(line.keyword), std::string(63, 'k'));
    EXPECT_STREQ(line.value, "value");
    std::fclose(stream);
}

TEST_F(ConfigLines, LongPhysicalLineIsDeliveredInPieces) {
    std::string value(196, 'x');
    for (int i = 0; i < 196; ++i)
        value[i] = char('a' + i % 26);
    FILE *stream = raw("key " + value + "\nnext\n"); // 200 characters before the newline
    ASSERT_EQ(next(stream), 0);
    EXPECT_EQ(line.line_no, 1u);
    EXPECT_EQ(std::string(line.value), value.substr(0, 123));
    ASSERT_EQ(next(stream), 0);
    EXPECT_EQ(line.line_no, 2u);
    EXPECT_EQ(std::string(line.keyword), value.substr(123, 63));
    ASSERT_EQ(next(stream), 0);
    EXPECT_STREQ(line.keyword, "next");
    EXPECT_EQ(line.line_no, 3u);
    std::fclose(stream);
}

TEST_F(ConfigLines, BlankAndCommentLinesAreCountedAndCommentsCollected) {
    FILE *stream = raw("\n  \t\n! one\n   ! two \n\tkey value\n");
    ASSERT_EQ(next(stream), 0);
    EXPECT_EQ(line.line_no, 5u);
    EXPECT_STREQ(line.comments, " one\n two \n");
    std::fclose(stream);
}

// The text of a line ends at a NUL byte; the rest of that line is dropped,
// but a comment line keeps its newline, so a comment cut short stays a line
// of its own.
TEST_F(ConfigLines, ANulByteEndsTheTextOfItsLineOnly) {
    FILE *stream = raw("! one\0 hidden\n! two\nkey val\0ue ! gone\nnext 1\n"s);
    ASSERT_EQ(next(stream), 0);
    EXPECT_EQ(line.line_no, 3u);
    EXPECT_STREQ(line.comments, " one\n two\n");
    EXPECT_STREQ(line.keyword, "key");
    EXPECT_STREQ(line.value, "val");
    EXPECT_STREQ(line.trailer, "");
    ASSERT_EQ(next(stream), 0);
    EXPECT_EQ(line.line_no, 4u);
    EXPECT_STREQ(line.keyword, "next");
    std::fclose(stream);
}

// A line whose text a NUL ends at once is a logical line with no keyword,
// as any line that ends where its text begins; it ends a run of comments.
TEST_F(ConfigLines, ALineThatBeginsWithANulIsAnEmptyLogicalLine) {
    FILE *stream = raw("! one\n  \0! two\n! three\nkey\n"s);
    ASSERT_EQ(next(stream), 0);
    EXPECT_EQ(line.line_no, 2u);
    EXPECT_STREQ(line.comments, " one\n");
    EXPECT_STREQ(line.keyword, "");
    EXPECT_EQ(line.kind, CONFIG_LINE_KEYWORD);
    ASSERT_EQ(next(stream), 0);
    EXPECT_STREQ(line.comments, " three\n");
    EXPECT_STREQ(line.keyword, "key");
    std::fclose(stream);
}

TEST_F(ConfigLines, ANulByteInALongLineStillLeavesItsTailForTheNextRead) {
    std::string content = "! short" + std::string(1, '\0') + std::string(130, 'x') + "\nkey 1\n";
    FILE *stream = raw(content);
    ASSERT_EQ(next(stream), 0);
    // The first 127 characters hold no newline: the line goes on.
    EXPECT_STREQ(line.comments, " short");
    EXPECT_EQ(line.line_no, 2u);
    EXPECT_EQ(std::string(line.keyword), std::string(11, 'x'));
    ASSERT_EQ(next(stream), 0);
    EXPECT_STREQ(line.keyword, "key");
    std::fclose(stream);
}

TEST_F(ConfigLines, CarriageReturnsStayInTheText) {
    FILE *stream = raw("! dos\r\nkey value\r\n");
    ASSERT_EQ(next(stream), 0);
    EXPECT_STREQ(line.comments, " dos\r\n");
    EXPECT_STREQ(line.keyword, "key");
    EXPECT_STREQ(line.value, "value\r");
    std::fclose(stream);
}

TEST_F(ConfigLines, TheReaderAppendsToWhatTheCommentFieldsHold) {
    FILE *stream = raw("! more\nkey v ! tail\n");
    std::strcpy(line.comments, "kept\n");
    std::strcpy(line.trailer, "kept");
    ASSERT_EQ(x25_read_config_line(stream, &line), 0);
    EXPECT_STREQ(line.comments, "kept\n more\n");
    EXPECT_STREQ(line.trailer, "kept tail");
    std::fclose(stream);
}

TEST_F(ConfigLines, ManyCommentLinesStopAtTheEndOfTheField) {
    std::string text;
    for (int i = 0; i < 100000; ++i)
        text += "! comment line number " + std::to_string(i) + "\n";
    FILE *stream = raw(text + "key value\n");
    ASSERT_EQ(next(stream), 0);
    EXPECT_EQ(std::strlen(line.comments), 1023u);
    EXPECT_EQ(line.line_no, 100001u);
    EXPECT_STREQ(line.keyword, "key");
    std::fclose(stream);
}

TEST_F(ConfigLines, BlanksWithoutNewlineAtTheEndAreAnEmptyKeywordLine) {
    FILE *stream = raw("key v\n   ");
    ASSERT_EQ(next(stream), 0);
    ASSERT_EQ(next(stream), 0);
    EXPECT_STREQ(line.keyword, "");
    EXPECT_STREQ(line.value, "");
    EXPECT_EQ(line.kind, CONFIG_LINE_KEYWORD);
    EXPECT_EQ(next(stream), -1);
    std::fclose(stream);
}

TEST_F(ConfigLines, EndOfFileKeepsTheLastLineButCountsCommentLines) {
    FILE *stream = raw("SUBSECTION wan ! x\n! trailing comment\n\n");
    ASSERT_EQ(next(stream), 0);
    EXPECT_EQ(line.kind, CONFIG_LINE_SUBSECTION);
    EXPECT_EQ(next(stream), -1);
    EXPECT_EQ(line.kind, CONFIG_LINE_SUBSECTION);
    EXPECT_STREQ(line.keyword, "SUBSECTION");
    EXPECT_STREQ(line.value, "wan");
    EXPECT_EQ(line.line_no, 3u);
    EXPECT_STREQ(line.comments, " trailing comment\n");
    std::fclose(stream);
}

TEST_F(ConfigLines, ReadErrorGivesTheSystemErrorNumber) {
    ASSERT_EQ(::mkdir("dir", 0755), 0);
    FILE *stream = std::fopen("dir", "r");
    ASSERT_NE(stream, nullptr);
    EXPECT_EQ(x25_read_config_line(stream, &line), EISDIR);
    std::fclose(stream);
}

TEST_F(ConfigLines, NullArgumentsAreInvalid) {
    FILE *stream = raw("k v\n");
    EXPECT_EQ(x25_read_config_line(nullptr, &line), EINVAL);
    EXPECT_EQ(x25_read_config_line(stream, nullptr), EINVAL);
    std::fclose(stream);
}

TEST_F(ConfigLines, PushedBackLinesComeBackNewestFirstAndOnlyToTheirStream) {
    FILE *a = raw("from_a 1\n");
    tree.write("b.txt", "from_b 1\n");
    FILE *b = std::fopen("b.txt", "r");
    config_line first{}, second{};
    std::strcpy(first.keyword, "first");
    first.line_no = 7;
    std::strcpy(first.comments, "c1\n");
    std::strcpy(second.keyword, "second");
    second.line_no = 9;
    __unread_config_line(a, &first);
    __unread_config_line(a, &second);

    config_line got{};
    ASSERT_EQ(x25_read_config_line(b, &got), 0);
    EXPECT_STREQ(got.keyword, "from_b");
    ASSERT_EQ(x25_read_config_line(a, &got), 0);
    EXPECT_STREQ(got.keyword, "second");
    EXPECT_EQ(got.line_no, 9u);
    ASSERT_EQ(x25_read_config_line(a, &got), 0);
    EXPECT_STREQ(got.keyword, "first");
    EXPECT_EQ(got.line_no, 7u);
    EXPECT_STREQ(got.comments, "c1\n");
    got.line_no = 0;
    ASSERT_EQ(x25_read_config_line(a, &got), 0);
    EXPECT_STREQ(got.keyword, "from_a");
    EXPECT_EQ(got.line_no, 1u);
    std::fclose(a);
    std::fclose(b);
}

TEST_F(ConfigLines, ANewStreamDoesNotInheritALineLeftByAClosedOne) {
    FILE *first = open("IDENTIFICATION\nSECTION FIRST\n", "one.cfg");
    ASSERT_NE(first, nullptr);
    std::fclose(first); // its SECTION line stays queued
    FILE *second = open("IDENTIFICATION\nSECTION SECOND\n", "two.cfg");
    ASSERT_NE(second, nullptr);
    ASSERT_EQ(next(second), 0);
    EXPECT_STREQ(line.value, "SECOND");
    std::fclose(second);
}

TEST_F(ConfigLines, AMessageTooLongForItsBufferKeepsItsNewline) {
    std::string name = "./" + std::string(200, 'n');
    EXPECT_EQ(x25_open_config_file(name.c_str(), &ids, 0), nullptr);
    ASSERT_EQ(messages().size(), 1u);
    const std::string &text = messages().front();
    EXPECT_EQ(text.size(), 127u);
    EXPECT_EQ(text.substr(0, 21), "Error opening file ./");
    EXPECT_EQ(text.back(), '\n');
}

TEST_F(ConfigLines, DefaultHandlerLeavesAnEmptyLineAfterEachMessage) {
    x25_set_config_error_function(nullptr);
    qx25test::CapturedStderr err;
    EXPECT_EQ(x25_open_config_file("missing.cfg", &ids, 0), nullptr);
    EXPECT_EQ(err.text(), "Error opening file missing.cfg\n\n");
}

} // namespace
