// Every name database read from random bytes and from lines of 100,000
// characters: each call returns a defined result, every text it hands out
// ends within its buffer, and nothing crashes, overruns or leaks (the
// sanitizer build runs these too).
#include "qx25.h"

#include "captured_messages.h"
#include "config_tree.h"
#include "link_files.h"

#include <gtest/gtest.h>

#include <cstring>
#include <random>
#include <string>

using qx25test::ConfigTree;

namespace {

constexpr std::size_t line_buffer = 1025;

// Random bytes, with the characters the parsers look for made frequent.
std::string random_text(unsigned seed, std::size_t size) {
    static constexpr char favourites[] = " \t\n,#.-/:0123456789FRPWGBTXNfrpwgbtxn*?\r";
    std::mt19937 random(seed);
    std::string text(size, '\0');
    for (char &c : text) {
        unsigned pick = random() % 4;
        c = pick == 0 ? static_cast<char>(random() % 256)
                      : favourites[random() % (sizeof favourites - 1)];
    }
    return text;
}

std::string long_lines() {
    std::string text = "3.1 " + std::string(100000, 'a') + "\n";
    text += std::string(100000, ' ') + "\n";
    text += "3.2 84 P7/7 G12 T3110 " + std::string(100000, 'x') + "\n";
    text += std::string(50000, ',') + std::string(50000, '#') + "\n";
    text += "3.3 " + std::string(100000, '9');
    return text;
}

std::size_t bounded_length(const char *text) {
    return text != nullptr ? ::strnlen(text, line_buffer) : 0;
}

void read_every_host() {
    setxhostent(0);
    for (int n = 0; const xhost_entry *entry = getxhostent(); ++n) {
        ASSERT_LT(n, 100000);
        EXPECT_LT(bounded_length(entry->xh_name), line_buffer);
        int aliases = 0;
        for (char **alias = entry->xh_aliases; *alias != nullptr; ++alias, ++aliases)
            EXPECT_LT(bounded_length(*alias), line_buffer);
        EXPECT_LE(aliases, XHOST_MAX_ALIASES);
        char text[256];
        EXPECT_EQ(x25tos(entry->xh_addr, text, 0), 0);
    }
    endxhostent();
    getxhostbyname("a");
    x25_address address{};
    address.snid = 255;
    getxhostbyaddr(&address, 36, 1);
}

void read_every_subnetwork() {
    __setsubnetent(0);
    for (int n = 0; const subnet_entry *entry = __getsubnetent(); ++n) {
        ASSERT_LT(n, 100000);
        EXPECT_LT(bounded_length(entry->name), line_buffer);
        EXPECT_LT(bounded_length(entry->description), line_buffer);
    }
    __endsubnetent();
    __get_subnet(3);
}

void read_every_pad_entry() {
    setpadent(0);
    // A digit overflow ends the enumeration for one call; two nulls in a
    // row are the end of the file (or two overflows, which is as good).
    for (int n = 0, nulls = 0; n < 100000 && nulls < 2; ++n) {
        pad_entry *entry = getpadent();
        if (entry == nullptr) {
            ++nulls;
            continue;
        }
        nulls = 0;
        EXPECT_LE(bounded_length(entry->free_text), 124u);
        EXPECT_LE(entry->t_digit_count, 16);
        char text[256];
        EXPECT_EQ(padtos(entry, text), 0);
    }
    endpadent();
    x25_address address{};
    getpadbyaddr(&address);
    getpadbystr("3.1");
    getpadbystr("a");
}

void read_every_profile() {
    x29_profile profile{};
    find_x29profile(&profile);
    stox25("3.1", &profile.address, 0);
    find_x29profile(&profile);
    FILE *stream = open_x29profile();
    ASSERT_NE(stream, nullptr);
    char line[1024];
    while (read_x29profile(line, stream) == 1)
        EXPECT_LT(::strnlen(line, sizeof line), sizeof line);
    std::fclose(stream);
}

class Robustness : public testing::TestWithParam<unsigned> {
  protected:
    void SetUp() override { qx25test::capture_all_messages(); }
    void write_all(const std::string &text) {
        for (const char *name : {"xhosts", "subnetworks", "padmapconf", "x29profile"})
            tree.write(std::string("config/") + name, text);
    }
    void read_all() {
        read_every_host();
        read_every_subnetwork();
        read_every_pad_entry();
        read_every_profile();
    }
    ConfigTree tree;
};

TEST_P(Robustness, RandomBytes) {
    write_all(random_text(GetParam(), 20000));
    read_all();
}

TEST_P(Robustness, RandomBytesInShortLines) {
    std::string text = random_text(GetParam() + 1000, 20000);
    for (std::size_t i = 40; i < text.size(); i += 40)
        text[i] = '\n';
    write_all(text);
    read_all();
}

INSTANTIATE_TEST_SUITE_P(Seeds, Robustness, testing::Range(1u, 9u));

TEST(LongLines, HundredThousandCharacterLines) {
    ConfigTree tree;
    for (const char *name : {"xhosts", "subnetworks", "padmapconf", "x29profile"})
        tree.write(std::string("config/") + name, long_lines());
    read_every_host();
    read_every_subnetwork();
    read_every_pad_entry();
    read_every_profile();
    EXPECT_EQ(getxhostbyname(std::string(100000, 'a').c_str()), nullptr);
}

TEST(LongLines, RandomLinkFilesForTheSubnetworkLookUps) {
    qx25test::capture_all_messages();
    ConfigTree tree;
    qx25test::write_boardconf(tree);
    qx25test::write_link_file(tree, 1, random_text(7, 5000));
    qx25test::write_link_file(tree, 2, "device wan0\nalias " + std::string(100000, 'n') + "\n");
    setsubnetent();
    while (getsubnetent() != nullptr) {
    }
    endsubnetent();
    getsubnetbyname("x");
    getaddrbyid(2);
    getnettype("1");
    getpadbystr("2.1234");
}

} // namespace
