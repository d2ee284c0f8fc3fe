// The subnetworks databases: the configured links as subnetworks (through
// link discovery) and the older "subnetworks" file.
#include "qx25.h"

#include "captured_messages.h"
#include "config_tree.h"
#include "link_files.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

using qx25test::ConfigTree;

namespace {

using lines = std::vector<std::string>;

std::string text_or_null(const char *text) {
    return text != nullptr ? "'" + std::string(text) + "'" : "null";
}

std::string describe(const subnet_entry *entry) {
    if (entry == nullptr) return "none";
    char address[256];
    if (x25tos(&entry->address, address, 0) != 0) std::strcpy(address, "<bad>");
    return std::to_string(entry->address.snid) + " " + address + " " + text_or_null(entry->name) +
           " " + text_or_null(entry->description);
}

// ---- The configured links --------------------------------------------------------

class Links : public testing::Test {
  protected:
    void SetUp() override {
        qx25test::capture_all_messages();
        qx25test::write_boardconf(tree);
    }
    void link(int number, const std::string &lines) {
        qx25test::write_link_file(tree, number, lines);
    }
    void three_links() {
        link(12, "device wan2\nfull_address 12.23421234512\nalias paris\n"
                 "description main link\n");
        link(3, "device wan0\nfull_address 3.23421234567\nalias pdn\n");
        link(7, "device eth0\ntype LAN\n");
    }
    lines all_links() {
        lines list;
        setsubnetent();
        while (const subnet_entry *entry = getsubnetent())
            list.push_back(describe(entry));
        endsubnetent();
        return list;
    }
    ConfigTree tree;
};

TEST_F(Links, NoLinkFilesGiveNothing) {
    EXPECT_EQ(getsubnetent(), nullptr);
    setsubnetent();
    EXPECT_EQ(getsubnetent(), nullptr);
    endsubnetent();
    EXPECT_EQ(getsubnetbyname("paris"), nullptr);
    EXPECT_EQ(getsubnetbyid(3), nullptr);
    EXPECT_EQ(getaddrbyid(3), nullptr);
}

TEST_F(Links, WithoutBoardconfDiscoveryFailsAndReportsIt) {
    three_links();
    std::remove((tree.config_dir() + "/boardconf").c_str());
    qx25test::messages().clear();
    EXPECT_EQ(getsubnetent(), nullptr);
    EXPECT_EQ(qx25test::messages().size(), 1u);
}

TEST_F(Links, LinksComeInAscendingNumberWithTheirAddressAliasAndDescription) {
    three_links();
    EXPECT_EQ(all_links(), (lines{"3 3.23421234567 'pdn' null", "7 7 null null",
                                  "12 12.23421234512 'paris' 'main link'"}));
}

TEST_F(Links, TheLinkNumberIsTheSubnetworkWhateverTheFullAddressSays) {
    link(4, "device wan0\nfull_address 9.1234\n");
    EXPECT_EQ(all_links(), (lines{"4 4.1234 null null"}));
}

TEST_F(Links, AFirstGetWithoutSetBuildsTheListAndTheEndStaysTheEnd) {
    three_links();
    const subnet_entry *entry = getsubnetent();
    ASSERT_NE(entry, nullptr);
    EXPECT_EQ(entry->address.snid, 3u);
    EXPECT_EQ(getsubnetent()->address.snid, 7u);
    EXPECT_EQ(getsubnetent()->address.snid, 12u);
    EXPECT_EQ(getsubnetent(), nullptr);
    EXPECT_EQ(getsubnetent(), nullptr); // not rebuilt while the list is held
    endsubnetent();
    EXPECT_EQ(getsubnetent()->address.snid, 3u); // rebuilt after the end
    endsubnetent();
}

TEST_F(Links, SetStartsAgainAndSeesNewLinks) {
    three_links();
    setsubnetent();
    EXPECT_EQ(getsubnetent()->address.snid, 3u);
    link(1, "device wan3\n");
    setsubnetent(); // the earlier list is freed
    EXPECT_EQ(getsubnetent()->address.snid, 1u);
    EXPECT_EQ(getsubnetent()->address.snid, 3u);
    endsubnetent();
}

TEST_F(Links, ARecordIsClearedWhenTheEnumerationEnds) {
    three_links();
    setsubnetent();
    subnet_entry *entry = getsubnetent();
    while (getsubnetent() != nullptr) {
    }
    EXPECT_EQ(entry->address.snid, 0u);
    EXPECT_EQ(entry->name, nullptr);
    endsubnetent();
}

TEST_F(Links, ByNameIsCaseSensitiveAndSkipsLinksWithoutAlias) {
    three_links();
    EXPECT_EQ(describe(getsubnetbyname("paris")), "12 12.23421234512 'paris' 'main link'");
    EXPECT_EQ(describe(getsubnetbyname("pdn")), "3 3.23421234567 'pdn' null");
    EXPECT_EQ(getsubnetbyname("Paris"), nullptr);
    EXPECT_EQ(getsubnetbyname(""), nullptr);
    EXPECT_EQ(getsubnetbyname(nullptr), nullptr);
}

TEST_F(Links, ByIdAndGetaddrbyidFindTheLinkNumber) {
    three_links();
    EXPECT_EQ(describe(getsubnetbyid(12)), "12 12.23421234512 'paris' 'main link'");
    EXPECT_EQ(describe(getaddrbyid(7)), "7 7 null null");
    EXPECT_EQ(getsubnetbyid(4), nullptr);
    EXPECT_EQ(getaddrbyid(255), nullptr);
}

TEST_F(Links, ALookedUpRecordKeepsItsTextsUntilTheNextCall) {
    three_links();
    subnet_entry *entry = getsubnetbyid(12);
    ASSERT_NE(entry, nullptr);
    // The list is gone; the texts are still there to read.
    EXPECT_EQ(describe(entry), "12 12.23421234512 'paris' 'main link'");
    entry = getsubnetbyname("pdn");
    EXPECT_EQ(describe(entry), "3 3.23421234567 'pdn' null");
    EXPECT_EQ(getsubnetbyname("nothing"), nullptr);
}

TEST_F(Links, ALookUpEndsAnEnumerationInProgress) {
    three_links();
    setsubnetent();
    EXPECT_EQ(getsubnetent()->address.snid, 3u);
    ASSERT_NE(getsubnetbyid(7), nullptr);
    EXPECT_EQ(getsubnetent()->address.snid, 3u); // a fresh list
    endsubnetent();
}

TEST_F(Links, RefusedLinksAreLeftOut) {
    three_links();
    link(5, "device wan0\nalias twin\n"); // wan0 is link 3's
    lines list = all_links();
    EXPECT_EQ(list.size(), 3u);
    EXPECT_EQ(getsubnetbyname("twin") == nullptr, getsubnetbyname("pdn") != nullptr);
}

// ---- The subnetworks file ------------------------------------------------------------

class SubnetworksFile : public testing::Test {
  protected:
    void file(const std::string &text) { tree.write("config/subnetworks", text); }
    lines all_records() {
        lines list;
        __setsubnetent(0);
        while (const subnet_entry *entry = __getsubnetent())
            list.push_back(describe(entry));
        __endsubnetent();
        return list;
    }
    ConfigTree tree;
};

TEST_F(SubnetworksFile, NumberNameAndDescription) {
    file("12\tparis main link\n");
    EXPECT_EQ(all_records(), (lines{"12 12 'paris' 'main link'"}));
}

TEST_F(SubnetworksFile, ShortFirstFieldsWithoutDotAreSubnetworkNumbers) {
    file("3 a\n123 b\n1234 c\n3.2342 d\n12345.1 e\n");
    EXPECT_EQ(all_records(), (lines{"3 3 'a' null", "123 123 'b' null", "255 1234 'c' null",
                                    "3 3.2342 'd' null", "255 12345.N.1 'e' null"}));
}

TEST_F(SubnetworksFile, FieldsEndAtBlanksOrTabsAndTheDescriptionKeepsItsBlanks) {
    file("  \t7\t\t alias \t a  long\tdescription  \n8 name\n9\n10 x \n11 \n");
    EXPECT_EQ(all_records(), (lines{"7 7 'alias' 'a  long\tdescription  '", "8 8 'name' null",
                                    "9 9 null null", "10 10 'x' ''", "11 11 '' null"}));
}

TEST_F(SubnetworksFile, CommentsEndTheLineAnywhere) {
    file("# links\n4 lyon # second city\n#5 nice\n6# six\n");
    EXPECT_EQ(all_records(), (lines{"4 4 'lyon' ''", "6 6 null null"}));
}

TEST_F(SubnetworksFile, EmptyAndBlankLinesGiveAnEmptyRecord) {
    file("\n   \n \t# comment\n");
    EXPECT_EQ(all_records(), (lines{"255  null null", "255  null null", "255  null null"}));
}

TEST_F(SubnetworksFile, BadAddressesAreSkipped) {
    file("3.G x\n0.1234.P y\n4 z\n");
    EXPECT_EQ(all_records(), (lines{"4 4 'z' null"}));
}

TEST_F(SubnetworksFile, ALastLineWithoutNewlineIsIgnored) {
    file("4 a\n5 b");
    EXPECT_EQ(all_records(), (lines{"4 4 'a' null"}));
}

TEST_F(SubnetworksFile, OverLongAndCarriageReturnLines) {
    file("4 " + std::string(1100, 'a') + "\n5 b\r\n6 c d\r\n");
    EXPECT_EQ(all_records(), (lines{"5 5 'b\r' null", "6 6 'c' 'd\r'"}));
}

TEST_F(SubnetworksFile, AMissingFileGivesNothing) {
    __setsubnetent(0);
    EXPECT_EQ(__getsubnetent(), nullptr);
    __endsubnetent();
    EXPECT_EQ(__get_subnet(3), nullptr);
}

TEST_F(SubnetworksFile, GetSubnetFindsTheFirstRecordOfTheNumber) {
    file("3 first\n\n4 other\n3 second\n");
    EXPECT_EQ(describe(__get_subnet(3)), "3 3 'first' null");
    EXPECT_EQ(describe(__get_subnet(4)), "4 4 'other' null");
    EXPECT_EQ(describe(__get_subnet(255)), "255  null null");
    EXPECT_EQ(__get_subnet(5), nullptr);
}

TEST_F(SubnetworksFile, StayOpenAndInterleavedLookUps) {
    file("3 a\n4 b\n5 c\n");
    __setsubnetent(0);
    EXPECT_EQ(__getsubnetent()->address.snid, 3u);
    ASSERT_NE(__get_subnet(5), nullptr);
    EXPECT_EQ(__getsubnetent()->address.snid, 3u); // closed by the look-up
    __setsubnetent(1);
    EXPECT_EQ(__getsubnetent()->address.snid, 3u);
    ASSERT_NE(__get_subnet(4), nullptr);
    EXPECT_EQ(__getsubnetent()->address.snid, 5u); // open, after the match
    __endsubnetent();
    EXPECT_EQ(__getsubnetent(), nullptr);
}

TEST_F(SubnetworksFile, TheTwoEnumerationsHaveTheirOwnRecords) {
    qx25test::write_boardconf(tree);
    qx25test::write_link_file(tree, 2, "device wan0\nalias pdn\n");
    file("2 legacy\n");
    subnet_entry *legacy = __get_subnet(2);
    subnet_entry *link = getsubnetbyid(2);
    ASSERT_NE(legacy, nullptr);
    ASSERT_NE(link, nullptr);
    EXPECT_NE(legacy, link);
    EXPECT_STREQ(legacy->name, "legacy");
    EXPECT_STREQ(link->name, "pdn");
}

} // namespace
