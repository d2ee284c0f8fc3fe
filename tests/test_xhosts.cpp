// The hosts database: line syntax, aliases, the look-ups by name and by
// address, the stay-open rule and files that end or break oddly.
#include "qx25.h"

#include "config_tree.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

using qx25test::ConfigTree;

namespace {

class Hosts : public testing::Test {
  protected:
    void hosts(const std::string &text) { tree.write("config/xhosts", text); }
    ConfigTree tree;
};

std::string address_text(const xhost_entry *entry) {
    char text[256];
    if (x25tos(entry->xh_addr, text, 0) != 0) return "<bad>";
    return text;
}

std::vector<std::string> aliases(const xhost_entry *entry) {
    std::vector<std::string> list;
    for (char **alias = entry->xh_aliases; *alias != nullptr; ++alias)
        list.push_back(*alias);
    return list;
}

// Every entry of the file as "address name alias...".
std::vector<std::string> all_entries() {
    std::vector<std::string> list;
    setxhostent(0);
    while (const xhost_entry *entry = getxhostent()) {
        std::string line = address_text(entry) + " " + entry->xh_name;
        for (const std::string &alias : aliases(entry))
            line += " " + alias;
        list.push_back(line);
    }
    endxhostent();
    return list;
}

using lines = std::vector<std::string>;

TEST_F(Hosts, EntryFieldsAndRecord) {
    hosts("3.23421234567\tparis\tlutece,capitale\n");
    setxhostent(0);
    const xhost_entry *entry = getxhostent();
    ASSERT_NE(entry, nullptr);
    EXPECT_STREQ(entry->xh_name, "paris");
    EXPECT_EQ(aliases(entry), (lines{"lutece", "capitale"}));
    EXPECT_EQ(entry->xh_addrtype, 1);
    EXPECT_EQ(entry->xh_length, 36);
    EXPECT_EQ(entry->xh_addr->snid, 3u);
    EXPECT_EQ(address_text(entry), "3.23421234567");
    EXPECT_EQ(getxhostent(), nullptr);
    endxhostent();
}

TEST_F(Hosts, AnAddressAloneIsNoEntryAndANameAloneHasNoAliases) {
    hosts("3.1111\n3.2222\tberlin\n3.3333 rome\n");
    EXPECT_EQ(all_entries(), (lines{"3.2222 berlin", "3.3333 rome"}));
}

TEST_F(Hosts, AliasesAreSeparatedByBlanksTabsAndCommasInAnyMixture) {
    hosts("3.1 h a,b c\n3.2 h a, ,b\n3.3 h\t, a\t\tb,,\n");
    EXPECT_EQ(all_entries(), (lines{"3.1 h a b c", "3.2 h a b", "3.3 h a b"}));
}

TEST_F(Hosts, SeparatorsBeforeTheNameAreSkipped) {
    hosts("3.1 ,, \tname alias\n3.2\t,name\n");
    EXPECT_EQ(all_entries(), (lines{"3.1 name alias", "3.2 name"}));
}

TEST_F(Hosts, TheThirtyFifthAliasAndLaterAreDropped) {
    std::string line = "3.1 host";
    for (int i = 1; i <= 40; ++i)
        line += " a" + std::to_string(i);
    hosts(line + "\n");
    setxhostent(0);
    const xhost_entry *entry = getxhostent();
    ASSERT_NE(entry, nullptr);
    std::vector<std::string> list = aliases(entry);
    ASSERT_EQ(list.size(), 34u);
    EXPECT_EQ(list.front(), "a1");
    EXPECT_EQ(list.back(), "a34");
    endxhostent();
}

TEST_F(Hosts, AddressesUseTheFullSyntax) {
    hosts("3.23421234567.N.4711 nsap\n23421234567.X.AB ext\n0.123.P pvc\n");
    EXPECT_EQ(all_entries(),
              (lines{"3.23421234567.N.4711 nsap", "23421234567.X.AB ext", "0.123.P pvc"}));
}

TEST_F(Hosts, LinesWithABadAddressAreSkipped) {
    hosts("3.12G4 bad\n0.1234.P pvc\n123456789012345678 long\n3.1 good\n");
    EXPECT_EQ(all_entries(), (lines{"3.1 good"}));
}

TEST_F(Hosts, ALeadingBlankGivesAnEmptyAddress) {
    hosts(" host alias\n");
    setxhostent(0);
    const xhost_entry *entry = getxhostent();
    ASSERT_NE(entry, nullptr);
    EXPECT_EQ(entry->xh_addr->snid, 255u);
    EXPECT_EQ(entry->xh_addr->dte_len, 0);
    EXPECT_STREQ(entry->xh_name, "host");
    endxhostent();
}

TEST_F(Hosts, CommentsAndBlankLines) {
    hosts("# hosts\n\n3.1 one # the first\n   \n\t\n#3.2 two\n3.3 three#no blank\n3.4#four\n");
    EXPECT_EQ(all_entries(), (lines{"3.1 one", " ", " ", "3.3 three"}));
}

TEST_F(Hosts, ALastLineWithoutNewlineIsLost) {
    hosts("3.1 one\n3.2 two");
    EXPECT_EQ(all_entries(), (lines{"3.1 one"}));
    hosts("3.1 one\n3.2 two#but a comment");
    EXPECT_EQ(all_entries(), (lines{"3.1 one", "3.2 two"}));
}

TEST_F(Hosts, CarriageReturnsStayInTheLastWord) {
    hosts("3.1 one\r\n3.2 two alias\r\n3.3\r\n");
    EXPECT_EQ(all_entries(), (lines{"3.1 one\r", "3.2 two alias\r"}));
    EXPECT_EQ(getxhostbyname("alias"), nullptr);
    EXPECT_NE(getxhostbyname("alias\r"), nullptr);
}

TEST_F(Hosts, AnOverLongLineIsSkippedWholeUnlessItsHeadHoldsAComment) {
    std::string tail = " t1 t2\n";
    hosts("3.1 long " + std::string(1100, 'x') + tail + "3.2 next\n3.3 kept " +
          std::string(1000, 'y') + " #" + std::string(100, 'z') + tail);
    lines expected = {"3.2 next", "3.3 kept " + std::string(1000, 'y')};
    EXPECT_EQ(all_entries(), expected);
}

TEST_F(Hosts, AMissingFileGivesNothing) {
    setxhostent(1);
    EXPECT_EQ(getxhostent(), nullptr);
    EXPECT_EQ(getxhostbyname("paris"), nullptr);
    x25_address address;
    stox25("3.1", &address, 0);
    EXPECT_EQ(getxhostbyaddr(&address, 36, 1), nullptr);
    endxhostent();
    // The file appears: the next opening finds it.
    hosts("3.1 paris\n");
    EXPECT_NE(getxhostbyname("paris"), nullptr);
}

TEST_F(Hosts, ADirectoryInPlaceOfTheFileGivesNothing) {
    tree.write("config/xhosts/inside", "");
    EXPECT_EQ(getxhostent(), nullptr);
    EXPECT_EQ(getxhostbyname("x"), nullptr);
}

TEST_F(Hosts, GetWithoutSetOpensTheFile) {
    hosts("3.1 one\n3.2 two\n");
    const xhost_entry *entry = getxhostent();
    ASSERT_NE(entry, nullptr);
    EXPECT_STREQ(entry->xh_name, "one");
    endxhostent();
}

TEST_F(Hosts, ByNameMatchesTheNameOrAnAliasCaseSensitively) {
    hosts("3.1 paris lutece\n3.2 berlin\n3.3 Rome roma paris\n");
    const xhost_entry *entry = getxhostbyname("paris");
    ASSERT_NE(entry, nullptr);
    EXPECT_EQ(address_text(entry), "3.1");
    entry = getxhostbyname("lutece");
    ASSERT_NE(entry, nullptr);
    EXPECT_STREQ(entry->xh_name, "paris");
    entry = getxhostbyname("roma");
    ASSERT_NE(entry, nullptr);
    EXPECT_STREQ(entry->xh_name, "Rome");
    EXPECT_EQ(getxhostbyname("rome"), nullptr);
    EXPECT_EQ(getxhostbyname("pari"), nullptr);
    EXPECT_EQ(getxhostbyname("3.1"), nullptr);
    EXPECT_EQ(getxhostbyname(nullptr), nullptr);
}

TEST_F(Hosts, ByNameIgnoresWordsInComments) {
    hosts("3.1 paris # berlin\n3.2 rome\n");
    EXPECT_EQ(getxhostbyname("berlin"), nullptr);
    ASSERT_NE(getxhostbyname("rome"), nullptr);
}

TEST_F(Hosts, ByAddressNeedsLength36AndType1) {
    hosts("3.1 one\n3.23421234567.N.4711 two\n");
    x25_address address;
    ASSERT_EQ(stox25("3.23421234567.N.4711", &address, 0), 0);
    const xhost_entry *entry = getxhostbyaddr(&address, 36, 1);
    ASSERT_NE(entry, nullptr);
    EXPECT_STREQ(entry->xh_name, "two");
    EXPECT_EQ(getxhostbyaddr(&address, 35, 1), nullptr);
    EXPECT_EQ(getxhostbyaddr(&address, 36, 2), nullptr);
    ASSERT_EQ(stox25("3.23421234567.N.4712", &address, 0), 0);
    EXPECT_EQ(getxhostbyaddr(&address, 36, 1), nullptr);
    ASSERT_EQ(stox25("4.1", &address, 0), 0);
    EXPECT_EQ(getxhostbyaddr(&address, 36, 1), nullptr);
}

TEST_F(Hosts, ALookUpClosesTheFileSoTheEnumerationStartsAgain) {
    hosts("3.1 one\n3.2 two\n3.3 three\n");
    setxhostent(0);
    EXPECT_STREQ(getxhostent()->xh_name, "one");
    EXPECT_STREQ(getxhostent()->xh_name, "two");
    ASSERT_NE(getxhostbyname("three"), nullptr);
    EXPECT_STREQ(getxhostent()->xh_name, "one");
    endxhostent();
}

TEST_F(Hosts, StayOpenKeepsTheFileOpenAndALookUpMovesTheEnumeration) {
    hosts("3.1 one\n3.2 two\n3.3 three\n");
    setxhostent(1);
    EXPECT_STREQ(getxhostent()->xh_name, "one");
    ASSERT_NE(getxhostbyname("two"), nullptr);
    // The look-up rewound the file and left it after "two".
    EXPECT_STREQ(getxhostent()->xh_name, "three");
    endxhostent();
    EXPECT_EQ(getxhostent(), nullptr); // still open, at its end
    setxhostent(0);                    // the flag is never cleared
    endxhostent();
    EXPECT_STREQ(getxhostent()->xh_name, "one");
}

TEST_F(Hosts, StayOpenReadsTheFileItOpenedEvenWhenReplaced) {
    hosts("3.1 one\n");
    setxhostent(1);
    tree.write("config/xhosts.new", "3.9 nine\n");
    std::rename((tree.config_dir() + "/xhosts.new").c_str(),
                (tree.config_dir() + "/xhosts").c_str());
    EXPECT_NE(getxhostbyname("one"), nullptr);
    EXPECT_EQ(getxhostbyname("nine"), nullptr);
}

TEST_F(Hosts, WithoutStayOpenEachLookUpReadsTheFileAnew) {
    hosts("3.1 one\n");
    EXPECT_NE(getxhostbyname("one"), nullptr);
    hosts("3.9 nine\n");
    EXPECT_EQ(getxhostbyname("one"), nullptr);
    EXPECT_NE(getxhostbyname("nine"), nullptr);
}

TEST_F(Hosts, SetRewindsAnOpenFile) {
    hosts("3.1 one\n3.2 two\n");
    setxhostent(0);
    EXPECT_STREQ(getxhostent()->xh_name, "one");
    setxhostent(0);
    EXPECT_STREQ(getxhostent()->xh_name, "one");
    EXPECT_STREQ(getxhostent()->xh_name, "two");
    endxhostent();
}

TEST_F(Hosts, TheDirectoryAlwaysGetsASeparator) {
    ::setenv("X25CONFIGFILES", (tree.config_dir() + "/").c_str(), 1);
    hosts("3.1 one\n");
    EXPECT_NE(getxhostbyname("one"), nullptr);
}

} // namespace
