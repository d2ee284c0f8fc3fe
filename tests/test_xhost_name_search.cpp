// The look-up of a host by name reads "xhosts" in large blocks and parses
// only the lines that hold the name. Whatever the file holds, it must find
// what reading the file line by line finds, and leave the file where line
// by line reading leaves it.
#include "qx25.h"

#include "config_tree.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

using qx25test::ConfigTree;

namespace {

// "address name" of an entry, "none" for null.
std::string described(const xhost_entry *entry) {
    if (entry == nullptr) return "none";
    char text[256];
    if (x25tos(entry->xh_addr, text, 0) != 0) return "<bad address>";
    return std::string(text) + " " + entry->xh_name;
}

bool has_name(const xhost_entry *entry, const std::string &name) {
    if (name == entry->xh_name) return true;
    for (char **alias = entry->xh_aliases; *alias != nullptr; ++alias)
        if (name == *alias) return true;
    return false;
}

// The first entry with the name, going through the file line by line.
std::string line_by_line(const std::string &name) {
    setxhostent(0);
    const xhost_entry *entry;
    while ((entry = getxhostent()) != nullptr && !has_name(entry, name)) {
    }
    std::string found = described(entry);
    endxhostent();
    return found;
}

class HostSearch : public testing::Test {
  protected:
    void hosts(const std::string &text) { tree.write("config/xhosts", text); }
    // Looks the name up both ways; the two must agree.
    std::string search(const std::string &name) {
        std::string expected = line_by_line(name);
        std::string got = described(getxhostbyname(name.c_str()));
        EXPECT_EQ(got, expected) << "name " << name;
        return got;
    }
    ConfigTree tree;
};

std::string host_line(int i) {
    return "3.2342" + std::to_string(100000 + i) + "\thost" + std::to_string(i) + "\talias" +
           std::to_string(i) + "\n";
}

TEST_F(HostSearch, CommentLinesAndCommentsHideTheName) {
    hosts("#3.1 wanted\n3.2 other # wanted\n3.3\twanted\n");
    EXPECT_EQ(search("wanted"), "3.3 wanted");
}

TEST_F(HostSearch, TheNameAsPartOfAnotherWordIsNoMatch) {
    hosts("3.1 unwanted\n3.2 wanted2\n3.3 x wanted\n");
    EXPECT_EQ(search("wanted"), "3.3 x");
}

TEST_F(HostSearch, LinesAroundTheLengthOfTheLineBuffer) {
    // The line buffer keeps 1023 characters and the newline; a line of 1024
    // characters keeps them without the newline; longer lines keep their
    // head. A "#" in the head still ends what is read of the line.
    for (std::size_t length : {1022u, 1023u, 1024u, 1025u, 5000u}) {
        SCOPED_TRACE(length);
        std::string head = "3.7 wanted ";
        std::string with_comment = head + "#";
        hosts(head + std::string(length - head.size(), 'x') + "\n" + with_comment +
              std::string(length - with_comment.size(), 'y') + "\n" + "3.8 wanted\n");
        search("wanted");
    }
    EXPECT_EQ(search("wanted"), "3.7 wanted");
}

TEST_F(HostSearch, TheNameBehindTheHeadOfALongLineIsNotSeen) {
    hosts("3.1 a " + std::string(1100, 'x') + " wanted #\n3.2 wanted\n");
    EXPECT_EQ(search("wanted"), "3.2 wanted");
}

TEST_F(HostSearch, ALastLineWithoutNewline) {
    hosts("3.1 a\n3.2 wanted");
    EXPECT_EQ(search("wanted"), "none");
    hosts("3.1 a\n3.2 wanted #");
    EXPECT_EQ(search("wanted"), "3.2 wanted");
}

TEST_F(HostSearch, ATextAfterANulByteIsNotSeen) {
    const char text[] = "3.1 a\0 wanted\n3.2 b wanted\n";
    hosts(std::string(text, sizeof text - 1));
    EXPECT_EQ(search("wanted"), "3.2 b");
}

TEST_F(HostSearch, HostsOnBothSidesOfEachBlockBoundary) {
    constexpr std::size_t block = 65536;
    std::string text;
    std::vector<std::size_t> starts; // of each line
    for (int i = 0; i < 8000; ++i) {
        starts.push_back(text.size());
        text += host_line(i);
    }
    hosts(text);
    // A block ends at the last whole line it holds; the next one begins
    // with the line that did not fit.
    std::vector<int> near_boundaries;
    for (std::size_t begin = 0; begin + block < text.size();) {
        auto cut = std::upper_bound(starts.begin(), starts.end(), begin + block) - 1;
        int first_of_next = static_cast<int>(cut - starts.begin());
        for (int i = first_of_next - 2; i <= first_of_next + 1; ++i)
            near_boundaries.push_back(i);
        begin = *cut;
    }
    ASSERT_GE(near_boundaries.size(), 12u);
    for (int i : near_boundaries)
        EXPECT_EQ(search("host" + std::to_string(i)),
                  "3.2342" + std::to_string(100000 + i) + " host" + std::to_string(i));
    EXPECT_EQ(search("alias7999"), "3.2342107999 host7999");
    EXPECT_EQ(search("host8000"), "none");
}

TEST_F(HostSearch, ALineLongerThanABlock) {
    // Only the head of a long line is read: a "#" in it makes it an entry.
    std::string huge = "3.5 wanted #" + std::string(200000, 'z') + "\n";
    hosts(huge + "3.6 after\n");
    EXPECT_EQ(search("wanted"), "3.5 wanted");
    EXPECT_EQ(search("after"), "3.6 after");
    hosts("#" + huge + "3.6 wanted\n");
    EXPECT_EQ(search("wanted"), "3.6 wanted");
    hosts(std::string(200000, 'w') + " wanted\n3.6 wanted\n");
    EXPECT_EQ(search("wanted"), "3.6 wanted");
}

TEST_F(HostSearch, AnEmptyNameMatchesNoHost) {
    hosts("3.1 a b\n3.2 c\n");
    EXPECT_EQ(search(""), "none");
}

// Kept open, the file goes on right after the line of the host found.
TEST_F(HostSearch, TheFileKeptOpenGoesOnAfterTheHostFound) {
    std::string text;
    for (int i = 0; i < 3000; ++i)
        text += host_line(i);
    hosts(text);
    setxhostent(1);
    for (int i : {2000, 5, 1500}) {
        ASSERT_EQ(described(getxhostbyname(("host" + std::to_string(i)).c_str())),
                  "3.2342" + std::to_string(100000 + i) + " host" + std::to_string(i));
        EXPECT_EQ(described(getxhostent()),
                  "3.2342" + std::to_string(100001 + i) + " host" + std::to_string(i + 1));
    }
    EXPECT_EQ(getxhostbyname("host3000"), nullptr);
    EXPECT_EQ(getxhostent(), nullptr);
}

TEST_F(HostSearch, TheFileKeptOpenGoesOnAfterALongLineFound) {
    hosts("3.1 a\n3.2 wanted #" + std::string(3000, 'x') + "\n3.3 next\n");
    setxhostent(1);
    EXPECT_EQ(described(getxhostbyname("wanted")), "3.2 wanted");
    EXPECT_EQ(described(getxhostent()), "3.3 next");
}

} // namespace
