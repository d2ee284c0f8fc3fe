// The pieces of qx25 set and diff that work on text alone: the unified diff,
// the line reader's count of lines, and the one-line edits.
#include "link_text.h"
#include "unified_diff.h"

#include <gtest/gtest.h>

#include <string>

using qx25tool::link_text;
using qx25tool::unified_diff;

namespace {

std::string numbered(int first, int last) {
    std::string text;
    for (int i = first; i <= last; ++i)
        text += "line " + std::to_string(i) + "\n";
    return text;
}

// ---- unified diff -----------------------------------------------------------------

TEST(UnifiedDiff, SameTextsGiveNothing) {
    EXPECT_EQ(unified_diff("a\nb\n", "a\nb\n", "old", "new"), "");
    EXPECT_EQ(unified_diff("", "", "old", "new"), "");
}

TEST(UnifiedDiff, OneChangedLineWithThreeLinesAround) {
    std::string old_text = numbered(1, 10);
    std::string new_text = old_text;
    new_text.replace(new_text.find("line 5\n"), 7, "line five\n");
    EXPECT_EQ(unified_diff(old_text, new_text, "a.cfg", "b.cfg"),
              "--- a.cfg\n+++ b.cfg\n"
              "@@ -2,7 +2,7 @@\n"
              " line 2\n line 3\n line 4\n-line 5\n+line five\n line 6\n line 7\n line 8\n");
}

TEST(UnifiedDiff, ContextStopsAtTheEndsOfTheText) {
    EXPECT_EQ(unified_diff("a\nb\nc\n", "x\nb\nc\n", "o", "n"),
              "--- o\n+++ n\n@@ -1,3 +1,3 @@\n-a\n+x\n b\n c\n");
    EXPECT_EQ(unified_diff("a\nb\nc\n", "a\nb\nc\nd\n", "o", "n"),
              "--- o\n+++ n\n@@ -1,3 +1,4 @@\n a\n b\n c\n+d\n");
}

TEST(UnifiedDiff, AnEmptyRangeStartsAtTheLineBefore) {
    EXPECT_EQ(unified_diff("", "a\n", "o", "n"), "--- o\n+++ n\n@@ -0,0 +1,1 @@\n+a\n");
    EXPECT_EQ(unified_diff("a\n", "", "o", "n"), "--- o\n+++ n\n@@ -1,1 +0,0 @@\n-a\n");
    std::string old_text = numbered(1, 8);
    std::string new_text = old_text;
    new_text.erase(new_text.find("line 5\n"), 7);
    EXPECT_EQ(unified_diff(old_text, new_text, "o", "n"),
              "--- o\n+++ n\n@@ -2,7 +2,6 @@\n line 2\n line 3\n line 4\n-line 5\n line 6\n"
              " line 7\n line 8\n");
    new_text = old_text;
    new_text.insert(new_text.find("line 5\n"), "added\n");
    EXPECT_EQ(unified_diff(old_text, new_text, "o", "n"),
              "--- o\n+++ n\n@@ -2,6 +2,7 @@\n line 2\n line 3\n line 4\n+added\n line 5\n"
              " line 6\n line 7\n");
}

TEST(UnifiedDiff, ChangesSixLinesApartShareAHunkAndSevenDoNot) {
    std::string old_text = numbered(1, 20);
    std::string six = old_text;
    six.replace(six.find("line 3\n"), 7, "three\n");
    six.replace(six.find("line 10\n"), 8, "ten\n");
    EXPECT_EQ(unified_diff(old_text, six, "o", "n"),
              "--- o\n+++ n\n@@ -1,13 +1,13 @@\n line 1\n line 2\n-line 3\n+three\n line 4\n"
              " line 5\n line 6\n line 7\n line 8\n line 9\n-line 10\n+ten\n line 11\n line 12\n"
              " line 13\n");
    std::string seven = old_text;
    seven.replace(seven.find("line 3\n"), 7, "three\n");
    seven.replace(seven.find("line 11\n"), 8, "eleven\n");
    EXPECT_EQ(unified_diff(old_text, seven, "o", "n"),
              "--- o\n+++ n\n@@ -1,6 +1,6 @@\n line 1\n line 2\n-line 3\n+three\n line 4\n"
              " line 5\n line 6\n"
              "@@ -8,7 +8,7 @@\n line 8\n line 9\n line 10\n-line 11\n+eleven\n line 12\n"
              " line 13\n line 14\n");
}

TEST(UnifiedDiff, ALastLineWithoutANewlineIsMarked) {
    EXPECT_EQ(unified_diff("a\nb", "a\nc", "o", "n"),
              "--- o\n+++ n\n@@ -1,2 +1,2 @@\n a\n-b\n\\ No newline at end of file\n"
              "+c\n\\ No newline at end of file\n");
    // A newline added to the last line changes it.
    EXPECT_EQ(unified_diff("a\nb", "a\nb\n", "o", "n"),
              "--- o\n+++ n\n@@ -1,2 +1,2 @@\n a\n-b\n\\ No newline at end of file\n+b\n");
}

TEST(UnifiedDiff, CarriageReturnsAreOfTheLine) {
    EXPECT_EQ(unified_diff("a\r\nb\r\n", "a\r\nc\r\n", "o", "n"),
              "--- o\n+++ n\n@@ -1,2 +1,2 @@\n a\r\n-b\r\n+c\r\n");
    EXPECT_EQ(unified_diff("a\r\n", "a\n", "o", "n"), "--- o\n+++ n\n@@ -1,1 +1,1 @@\n-a\r\n+a\n");
}

TEST(UnifiedDiff, TextsWithNothingInCommon) {
    EXPECT_EQ(unified_diff("a\nb\n", "c\nd\ne\n", "o", "n"),
              "--- o\n+++ n\n@@ -1,2 +1,3 @@\n-a\n-b\n+c\n+d\n+e\n");
}

TEST(UnifiedDiff, AShortestScriptKeepsTheLongestCommonRun) {
    EXPECT_EQ(unified_diff("a\nb\nc\na\nb\nb\na\n", "c\nb\na\nb\na\nc\n", "o", "n"),
              "--- o\n+++ n\n@@ -1,7 +1,6 @@\n-a\n-b\n c\n+b\n a\n b\n-b\n a\n+c\n");
}

// ---- the reader's count of lines ---------------------------------------------------

TEST(LinkText, LongLinesCountOncePerPieceOfTheReader) {
    // 126 characters and a newline fit one read; 127 and a newline take two,
    // the second one the newline alone.
    std::string text = std::string(126, 'a') + "\n" + std::string(127, 'b') + "\n" +
                       std::string(300, 'c') + "\nlast";
    link_text lines(text);
    ASSERT_EQ(lines.line_count(), 4u);
    EXPECT_TRUE(lines.read_whole(0));
    EXPECT_FALSE(lines.read_whole(1));
    EXPECT_FALSE(lines.read_whole(2));
    EXPECT_TRUE(lines.read_whole(3));
    EXPECT_EQ(lines.line_of_count(1), 0u);
    EXPECT_EQ(lines.line_of_count(2), 1u);
    EXPECT_EQ(lines.line_of_count(3), 1u);
    EXPECT_EQ(lines.line_of_count(4), 2u); // 301 characters: three pieces
    EXPECT_EQ(lines.line_of_count(6), 2u);
    EXPECT_EQ(lines.line_of_count(7), 3u);
    EXPECT_EQ(lines.line_of_count(8), std::nullopt);
    EXPECT_EQ(lines.line_of_count(0), std::nullopt);
    EXPECT_EQ(lines.line(3), "last");
}

TEST(LinkText, TheValueIsWhereTheReaderFindsIt) {
    auto value = [](std::string_view line) {
        qx25tool::value_place place = qx25tool::value_of(line);
        return std::string(line.substr(place.begin, place.end - place.begin));
    };
    EXPECT_EQ(value("\tn2_count\t\t10\n"), "10");
    EXPECT_EQ(value("  n2_count 10   \n"), "10   ");
    EXPECT_EQ(value("\tn2_count\t10  \t! ten\n"), "10");
    EXPECT_EQ(value("\tdevice\twan0, wan1 ! two\n"), "wan0, wan1");
    EXPECT_EQ(value("\tn2_count\t10\r\n"), "10");
    EXPECT_EQ(value("\tn2_count"), "");
    EXPECT_EQ(value("\tn2_count\t!x\n"), "");
    EXPECT_EQ(value("\tn2_count!x\n"), "");
}

TEST(LinkText, AValueIsReplacedAndNothingElse) {
    link_text text("a\n\tn2_count\t10\t! ten\r\nb");
    EXPECT_EQ(qx25tool::with_value(text, 1, "12"), "a\n\tn2_count\t12\t! ten\r\nb");
    link_text bare("\tn2_count\n\tt1_timer ! x\n\tpf_timer \n");
    EXPECT_EQ(qx25tool::with_value(bare, 0, "5"), "\tn2_count\t5\n\tt1_timer ! x\n\tpf_timer \n");
    EXPECT_EQ(qx25tool::with_value(bare, 1, "2"), "\tn2_count\n\tt1_timer\t2 ! x\n\tpf_timer \n");
    EXPECT_EQ(qx25tool::with_value(bare, 2, "7"), "\tn2_count\n\tt1_timer ! x\n\tpf_timer 7\n");
}

TEST(LinkText, ALineIsAddedWithTheLineEndsOfTheText) {
    link_text text("SECTION\tLAPB\r\n  n2_count 10\r\nSECTION\tWAN\r\n");
    std::string line = qx25tool::keyword_line(qx25tool::indentation(text.line(1)), "t1_timer",
                                              "3.0", text.line_end_after(1));
    EXPECT_EQ(line, "  t1_timer\t3.0\r\n");
    EXPECT_EQ(qx25tool::with_line_after(text, 1, line),
              "SECTION\tLAPB\r\n  n2_count 10\r\n  t1_timer\t3.0\r\nSECTION\tWAN\r\n");
    link_text open_end("SECTION\tLAPB\r\n\tn2_count\t10");
    line = qx25tool::keyword_line("\t", "t1_timer", "3.0", open_end.line_end_after(1));
    EXPECT_EQ(qx25tool::with_line_after(open_end, 1, line),
              "SECTION\tLAPB\r\n\tn2_count\t10\r\n\tt1_timer\t3.0");
    link_text one_line("SECTION\tLAPB");
    line = qx25tool::keyword_line("\t", "t1_timer", "3.0", one_line.line_end_after(0));
    EXPECT_EQ(qx25tool::with_line_after(one_line, 0, line), "SECTION\tLAPB\n\tt1_timer\t3.0");
}

} // namespace
