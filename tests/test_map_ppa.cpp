// The PPA of an LLC2 device. This program is built with the LLC2 driver's
// default directory at llc2/default/ relative to the working directory, and
// each test works in a scratch directory of its own.
#include "qx25.h"

#include "config_tree.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <random>
#include <string>
#include <unistd.h>

namespace fs = std::filesystem;

namespace {

class DeviceToPpa : public testing::Test {
  protected:
    void SetUp() override {
        previous = fs::current_path();
        fs::current_path(tree.root());
        fs::create_directories("llc2/default");
    }
    void TearDown() override { fs::current_path(previous); }
    void file(const std::string &name, const std::string &text) {
        tree.write("llc2/default/" + name, text);
    }
    fs::path previous;
    qx25test::ConfigTree tree;
};

TEST_F(DeviceToPpa, TheNumberAfterTheLastDotOfTheMatchingFile) {
    file("llc2.2", "devicename=elx\ndeviceinstance=0\n");
    EXPECT_EQ(x25_device_to_ppa("elx", 0), 2);
    EXPECT_EQ(x25_device_to_ppa("el", 0), 2); // the name is compared over its own length
    EXPECT_EQ(x25_device_to_ppa("elxx", 0), -1);
    EXPECT_EQ(x25_device_to_ppa("elx", 1), -1);
    EXPECT_EQ(x25_device_to_ppa("eth", 0), -1);
}

TEST_F(DeviceToPpa, TheRightFileAmongSeveral) {
    file("a.b.1", "devicename=eth\ndeviceinstance=0\n");
    file("llc2.7", "# second board\n  devicename=eth # comment\n\ndeviceinstance=1\n");
    file("llc2.12", "deviceinstance=2\ndevicename=eth\n");
    EXPECT_EQ(x25_device_to_ppa("eth", 0), 1);
    EXPECT_EQ(x25_device_to_ppa("eth", 1), 7);
    EXPECT_EQ(x25_device_to_ppa("eth", 2), 12);
    EXPECT_EQ(x25_device_to_ppa("eth", 3), -1);
}

TEST_F(DeviceToPpa, ALastLineWithoutNewlineIsNeverExamined) {
    file("llc2.3", "devicename=elx\ndeviceinstance=0");
    EXPECT_EQ(x25_device_to_ppa("elx", 0), -1);
    file("llc2.3", "deviceinstance=0\ndevicename=elx");
    EXPECT_EQ(x25_device_to_ppa("elx", 0), -1);
    file("llc2.3", "deviceinstance=0\ndevicename=elx\n");
    EXPECT_EQ(x25_device_to_ppa("elx", 0), 3);
}

TEST_F(DeviceToPpa, InstanceValues) {
    file("llc2.4", "devicename=elx\ndeviceinstance=\ndeviceinstance=05 blanks\n");
    EXPECT_EQ(x25_device_to_ppa("elx", 0), -1);
    EXPECT_EQ(x25_device_to_ppa("elx", 5), 4);
    file("llc2.4", "devicename=elx\ndeviceinstance=\n");
    EXPECT_EQ(x25_device_to_ppa("elx", 0), -1); // an empty value is no 0
}

TEST_F(DeviceToPpa, KeysMustStartTheLineAfterBlanksOnly) {
    file("llc2.5", "\tdevicename=elx\ndeviceinstance=0\n");
    EXPECT_EQ(x25_device_to_ppa("elx", 0), -1);
    file("llc2.5", "#devicename=elx\ndeviceinstance=0\n");
    EXPECT_EQ(x25_device_to_ppa("elx", 0), -1);
    file("llc2.5", "DeviceName=elx\ndeviceinstance=0\n");
    EXPECT_EQ(x25_device_to_ppa("elx", 0), -1);
    file("llc2.5", "   devicename=elx#x\n deviceinstance=0#y\n");
    EXPECT_EQ(x25_device_to_ppa("elx", 0), 5);
}

TEST_F(DeviceToPpa, NamesThatCannotStandForAPpa) {
    const char *text = "devicename=elx\ndeviceinstance=0\n";
    file("l2", text);   // too short
    file("llc2", text); // no dot
    EXPECT_EQ(x25_device_to_ppa("elx", 0), -1);
    file(".5", text); // too short even with a dot
    EXPECT_EQ(x25_device_to_ppa("elx", 0), -1);
    file("llc2.x", text); // no number: PPA 0
    EXPECT_EQ(x25_device_to_ppa("elx", 0), 0);
}

TEST_F(DeviceToPpa, ANegativeNumberDoesNotEndTheScan) {
    file("llc2.-1", "devicename=elx\ndeviceinstance=0\n");
    EXPECT_EQ(x25_device_to_ppa("elx", 0), -1);
    file("llc2.6", "devicename=elx\ndeviceinstance=0\n");
    EXPECT_EQ(x25_device_to_ppa("elx", 0), 6);
}

TEST_F(DeviceToPpa, DirectoriesAndUnreadableEntriesDoNotMatch) {
    fs::create_directories("llc2/default/sub.8");
    file("llc2.9", "devicename=elx\ndeviceinstance=0\n");
    fs::permissions("llc2/default/llc2.9", fs::perms::none);
    int expected = ::geteuid() == 0 ? 9 : -1; // the superuser reads it all the same
    EXPECT_EQ(x25_device_to_ppa("elx", 0), expected);
}

TEST_F(DeviceToPpa, ALongLineKeepsOnlyItsHead) {
    file("llc2.10", "devicename=elx" + std::string(400, ' ') + "\ndeviceinstance=0\n");
    EXPECT_EQ(x25_device_to_ppa("elx", 0), 10);
    file("llc2.10", std::string(300, ' ') + "devicename=elx\ndeviceinstance=0\n");
    EXPECT_EQ(x25_device_to_ppa("elx", 0), -1);
}

TEST_F(DeviceToPpa, WithoutTheDirectoryNothingMatches) {
    fs::remove_all("llc2");
    EXPECT_EQ(x25_device_to_ppa("elx", 0), -1);
    EXPECT_EQ(x25_device_to_ppa(nullptr, 0), -1);
}

TEST_F(DeviceToPpa, RandomBytesAndVeryLongLines) {
    std::mt19937 random(5);
    for (int n = 0; n < 8; ++n) {
        std::string text(5000, '\0');
        for (char &c : text)
            c = random() % 3 == 0 ? '\n' : static_cast<char>(random() % 256);
        file("llc2." + std::to_string(n), text);
    }
    file("llc2.100", std::string(100000, 'd') + "\n" + std::string(100000, '#'));
    EXPECT_EQ(x25_device_to_ppa("elx", 0), -1);
    file("llc2.200", "devicename=elx\ndeviceinstance=0\n");
    EXPECT_EQ(x25_device_to_ppa("elx", 0), 200);
}

TEST_F(DeviceToPpa, AnEmptyDeviceNameMatchesAnyName) {
    file("llc2.11", "devicename=elx\ndeviceinstance=3\n");
    EXPECT_EQ(x25_device_to_ppa("", 3), 11);
}

} // namespace
