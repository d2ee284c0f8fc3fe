// X.29 profiles: the x29profile and paddconf streams, the line reader, the
// search for an address and the items of a profile line.
#include "qx25.h"

#include "config_tree.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

using qx25test::ConfigTree;

namespace {

// The kind and every parameter that was set, as "kind P1=v ... T=t".
std::string describe(const x29_profile &profile) {
    std::string text = "kind " + std::to_string(profile.kind);
    for (int n = 1; n < X29_PARAMETERS; ++n)
        if (profile.parameter_set[n] != 0)
            text += " P" + std::to_string(n) + "=" + std::to_string(profile.parameters[n]);
    text += " T=" + std::to_string(profile.parameters[0]);
    if (profile.parameter_set[0] != 0) text += " (set flag 0!)";
    return text;
}

x29_profile profile_for(const char *address) {
    x29_profile profile{};
    EXPECT_EQ(stox25(address, &profile.address, 0), 0);
    return profile;
}

std::string applied(const char *items) {
    x29_profile profile{};
    std::vector<char> text(items, items + std::strlen(items) + 1);
    parse_load_profile(text.data(), &profile);
    return describe(profile);
}

class Profiles : public testing::Test {
  protected:
    void profiles(const std::string &text) { tree.write("config/x29profile", text); }
    ConfigTree tree;
};

TEST(ProfileItems, KindsAndParameters) {
    EXPECT_EQ(applied("V1:P2#0:P3#2:T1\n"), "kind 2 P2=0 P3=2 T=1");
    EXPECT_EQ(applied("V1:T1\n"), "kind 4 T=1");
    EXPECT_EQ(applied("C"), "kind 1 T=0");
    EXPECT_EQ(applied("P1#1:S"), "kind 0 P1=1 T=0");
    EXPECT_EQ(applied("  \tC:t7"), "kind 1 T=1");
    EXPECT_EQ(applied("C:T0"), "kind 1 T=0");
}

TEST(ProfileItems, TheLastKindWinsAndAnyParameterMakesKind2) {
    EXPECT_EQ(applied("V2:P1#1"), "kind 2 P1=1 T=0");
    EXPECT_EQ(applied("P1#1:V2"), "kind 5 P1=1 T=0");
    EXPECT_EQ(applied("p22#255"), "kind 2 P22=255 T=0");
}

TEST(ProfileItems, ParametersOutsideOneToTwentyTwoChangeOnlyTheKind) {
    EXPECT_EQ(applied("C:P23#1"), "kind 2 T=0");
    EXPECT_EQ(applied("C:P0#1"), "kind 2 T=0");
    EXPECT_EQ(applied("C:P-1#1"), "kind 2 T=0");
}

TEST(ProfileItems, ParameterValues) {
    EXPECT_EQ(applied("P4"), "kind 2 P4=0 T=0");      // no "#": value 0
    EXPECT_EQ(applied("P4#300"), "kind 2 P4=44 T=0"); // one byte
    EXPECT_EQ(applied("P4#x:P5#7"), "kind 2 P4=0 P5=7 T=0");
    EXPECT_EQ(applied("Px#3"), "kind 2 T=0");
}

TEST(ProfileItems, AVariantKindKeepsTheLowByteOfItsNumberPlusThree) {
    EXPECT_EQ(applied("V252"), "kind 255 T=0");
    EXPECT_EQ(applied("V253"), "kind 0 T=0");
    EXPECT_EQ(applied("V-3"), "kind 0 T=0");
    EXPECT_EQ(applied("V2147483647"), "kind 2 T=0");
    EXPECT_EQ(applied("V99999999999"), "kind 2 T=0");  // read as the largest int
    EXPECT_EQ(applied("V-99999999999"), "kind 3 T=0"); // read as the smallest int
}

TEST(ProfileItems, OnlyPAndTInEitherCase) {
    EXPECT_EQ(applied("c"), "kind 0 T=0");
    EXPECT_EQ(applied("C:s"), "kind 1 T=0");
    EXPECT_EQ(applied("C:v3"), "kind 1 T=0");
    EXPECT_EQ(applied("Q:V0"), "kind 3 T=0");
}

TEST(ProfileItems, EmptyItemsVanishAndANewlineItemStops) {
    EXPECT_EQ(applied("::C::P1#1:"), "kind 2 P1=1 T=0");
    EXPECT_EQ(applied("C:\n:P1#1"), "kind 1 T=0");
}

TEST(ProfileItems, TheItemWhereParsingStopped) {
    char text[] = "C:\n:P1#1";
    x29_profile profile{};
    char *stop = parse_load_profile(text, &profile);
    ASSERT_NE(stop, nullptr);
    EXPECT_EQ(stop, text + 2);
    char plain[] = "C:P1#1";
    EXPECT_EQ(parse_load_profile(plain, &profile), nullptr);
    EXPECT_EQ(parse_load_profile(nullptr, &profile), nullptr);
}

TEST(ProfileItems, UntouchedFieldsKeepTheCallersValues) {
    x29_profile profile{};
    profile.kind = 9;
    profile.parameters[3] = 77;
    profile.parameter_set[3] = 1;
    profile.reserved[0] = 42;
    char text[] = "P4#1\n";
    parse_load_profile(text, &profile);
    EXPECT_EQ(describe(profile), "kind 2 P3=77 P4=1 T=0");
    EXPECT_EQ(profile.reserved[0], 42);
}

TEST_F(Profiles, TheFirstLineOfTheAddressIsApplied) {
    profiles("# profiles\n\n3.1 C\n3.23421234567 V1:P2#0:P3#2:T1\n3.23421234567 S\n");
    x29_profile profile = profile_for("3.23421234567");
    EXPECT_EQ(find_x29profile(&profile), 1);
    EXPECT_EQ(describe(profile), "kind 2 P2=0 P3=2 T=1");
}

TEST_F(Profiles, NoLineForTheAddress) {
    profiles("3.1 C\n3.2 S\n");
    x29_profile profile = profile_for("3.3");
    profile.kind = 9;
    EXPECT_EQ(find_x29profile(&profile), 0);
    EXPECT_EQ(profile.kind, 9);
}

TEST_F(Profiles, AnAddressWithoutBlankOrTabAfterItIsSkipped) {
    profiles("3.1\n3.1\tP1#1\n");
    x29_profile profile = profile_for("3.1");
    EXPECT_EQ(find_x29profile(&profile), 1);
    EXPECT_EQ(describe(profile), "kind 2 P1=1 T=0");
}

TEST_F(Profiles, ALeadingBlankIsTheEmptyAddress) {
    profiles(" C\n3.1 S\n");
    x29_profile empty = profile_for("");
    empty.kind = 9;
    EXPECT_EQ(find_x29profile(&empty), 1);
    EXPECT_EQ(empty.kind, 1);
    x29_profile other = profile_for("3.1");
    other.kind = 9;
    EXPECT_EQ(find_x29profile(&other), 1);
    EXPECT_EQ(other.kind, 0);
}

TEST_F(Profiles, BadAddressesAreSkipped) {
    profiles("3.G C\n0.1234.P C\n3.1 V7\n");
    x29_profile profile = profile_for("3.1");
    EXPECT_EQ(find_x29profile(&profile), 1);
    EXPECT_EQ(profile.kind, 10);
}

TEST_F(Profiles, AMissingFileFindsNothing) {
    x29_profile profile = profile_for("3.1");
    EXPECT_EQ(find_x29profile(&profile), 0);
    EXPECT_EQ(find_x29profile(nullptr), 0);
    EXPECT_EQ(open_x29profile(), nullptr);
    EXPECT_EQ(open_paddconf(), nullptr);
}

TEST_F(Profiles, TheStreamsOfBothFiles) {
    profiles("3.1 C\n");
    tree.write("config/paddconf", "whatever the PAD programs read\n");
    FILE *stream = open_paddconf();
    ASSERT_NE(stream, nullptr);
    char line[1024];
    ASSERT_NE(std::fgets(line, sizeof line, stream), nullptr);
    EXPECT_STREQ(line, "whatever the PAD programs read\n");
    std::fclose(stream);
    stream = open_x29profile();
    ASSERT_NE(stream, nullptr);
    ASSERT_NE(std::fgets(line, sizeof line, stream), nullptr);
    EXPECT_STREQ(line, "3.1 C\n");
    std::fclose(stream);
}

TEST_F(Profiles, ReadingSkipsCommentAndEmptyLinesOnly) {
    profiles("# one\n\n   \n3.1 C\n#\nlast");
    FILE *stream = open_x29profile();
    ASSERT_NE(stream, nullptr);
    char line[1024];
    ASSERT_EQ(read_x29profile(line, stream), 1);
    EXPECT_STREQ(line, "   \n");
    ASSERT_EQ(read_x29profile(line, stream), 1);
    EXPECT_STREQ(line, "3.1 C\n");
    ASSERT_EQ(read_x29profile(line, stream), 1);
    EXPECT_STREQ(line, "last");
    EXPECT_EQ(read_x29profile(line, stream), 0);
    EXPECT_EQ(read_x29profile(line, nullptr), 0);
    std::fclose(stream);
}

TEST_F(Profiles, ALastLineWithoutNewlineStillCounts) {
    profiles("3.1 C:P5#1");
    x29_profile profile = profile_for("3.1");
    EXPECT_EQ(find_x29profile(&profile), 1);
    EXPECT_EQ(describe(profile), "kind 2 P5=1 T=0");
}

TEST_F(Profiles, CarriageReturnsAndOverLongLines) {
    profiles("3.1 " + std::string(1100, 'C') + ":P1#1\n3.1 P2#2\r\n");
    x29_profile profile = profile_for("3.1");
    EXPECT_EQ(find_x29profile(&profile), 1); // the head of the long line
    EXPECT_EQ(describe(profile), "kind 1 T=0");
    profiles("3.2 P2#2:T1\r\n");
    profile = profile_for("3.2");
    EXPECT_EQ(find_x29profile(&profile), 1);
    EXPECT_EQ(describe(profile), "kind 2 P2=2 T=1");
}

} // namespace
