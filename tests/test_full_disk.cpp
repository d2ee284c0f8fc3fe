// Writing on a full disk (a small tmpfs in a mount namespace of the test's
// own; skipped where none can be had). The library's writers rewrite their
// file in place: the error comes back and the file stays truncated where
// the writing stopped. The tool never writes in place: the old file stays
// whole and readable, and the tool says why it failed.
#include "qx25.h"

#include "config_tree.h"
#include "full_disk.h"
#include "link_records.h"
#include "run_tool.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <string>
#include <utility>
#include <vector>

using qx25test::ConfigTree;
using qx25test::on_full_disk;
using qx25test::read_file;

namespace fs = std::filesystem;

namespace {

// Comment lines enough to take a written LINK section past a 4 KiB page.
std::string many_comment_lines() {
    std::string lines;
    for (int i = 0; i < 40; ++i)
        lines += "! a comment line of the packet level, kept by every rewrite " +
                 std::to_string(i) + "\n";
    return lines;
}

class FullDisk : public testing::Test {
  protected:
    void SetUp() override {
        fs::copy(QX25_SOURCE_DIR "/examples/etc", tree.config_dir(),
                 fs::copy_options::recursive | fs::copy_options::overwrite_existing);
        fs::copy(QX25_SOURCE_DIR "/examples/lib/world_networks.profile", tree.lib_dir());
        link2 = tree.config_dir() + "/config/link_config_0002.cfg";
        ASSERT_EQ(records.read(link2), 0);
        // A comment before every X.25 keyword takes the file past two pages.
        for (config_comment &pair : records.config.x25.keyword)
            if (pair.comments == nullptr)
                pair.comments = strdup("the carrier's value, agreed in the contract\n");
        ASSERT_EQ(records.write(link2, qx25test::link_kind::wan), 0);
        big_link2 = read_file(link2);
        ASSERT_GT(big_link2.size(), 4096u);
    }

    // What writing the records gives on a disk with room, without the
    // MODIFIED_BY and FILE_DATE lines.
    std::string written_with_room() {
        std::string path = tree.root() + "/with_room.cfg";
        EXPECT_EQ(records.write(path, qx25test::link_kind::wan), 0);
        int stamps = 0;
        return qx25test::without_stamp(read_file(path), stamps);
    }

    ConfigTree tree;
    std::string link2;
    std::string big_link2;
    qx25test::link_records records;
};

std::string result_and_file(int result, const std::string &path) {
    return "result " + std::to_string(result) + "\n" + read_file(path);
}

TEST_F(FullDisk, TheWriterReturnsTheErrorAndLeavesTheFileTruncatedWhereItStopped) {
    std::string directory = tree.config_dir() + "/config";
    std::string complete = written_with_room();
    auto report = on_full_disk(
        directory, [&] { tree.write("config/config/link_config_0002.cfg", "! the old file\n"); },
        [&] { return result_and_file(records.write(link2, qx25test::link_kind::wan), link2); });
    if (!report) GTEST_SKIP() << "no mount namespace with a tmpfs here";

    std::string expected_head = "result " + std::to_string(ENOSPC) + "\n";
    ASSERT_EQ(report->substr(0, expected_head.size()), expected_head) << *report;
    std::string left = report->substr(expected_head.size());
    EXPECT_EQ(left.size(), 4096u); // the one page the truncation gave back
    int stamps = 0;
    std::string left_unstamped = qx25test::without_stamp(left, stamps);
    EXPECT_EQ(stamps, 2);
    EXPECT_EQ(complete.substr(0, left_unstamped.size()), left_unstamped);
}

TEST_F(FullDisk, TheUpdateOfALinkReturnsTheWritersError) {
    std::string directory = tree.config_dir() + "/config";
    // The new LINK section carries more than the old file's pages hold.
    std::string comment = many_comment_lines() + many_comment_lines();
    link_section link = records.config.link;
    link.section.comments = comment.data();
    auto report = on_full_disk(
        directory, [&] { tree.write("config/config/link_config_0002.cfg", big_link2); },
        [&] {
            int result = x25_update_link(2, &link, SECTION_LINK);
            std::string file = read_file(link2);
            return "result " + std::to_string(result) + "\nshorter " +
                   (file.size() < big_link2.size() + comment.size() ? "yes" : "no") + "\n";
        });
    if (!report) GTEST_SKIP() << "no mount namespace with a tmpfs here";
    EXPECT_EQ(*report, "result " + std::to_string(ENOSPC) + "\nshorter yes\n");
}

TEST_F(FullDisk, TemplateWritersReturnTheErrorAndLeaveWhatTheyWrote) {
    std::string directory = tree.config_dir() + "/template";
    struct writer {
        const char *file;
        int (*write)(const char *path);
    };
    const writer writers[] = {
        {"LINK002_working.x25",
         [](const char *path) {
             x25_template record{};
             return write__x25_template_parameter_file(path, &record);
         }},
        {"LINK002_working.lapb",
         [](const char *path) {
             lapb_template record{};
             return write_lapb_template_parameter_file(path, &record);
         }},
        {"LINK001_working.llc2",
         [](const char *path) {
             llc2_template record{};
             return write_llc2_template_parameter_file(path, &record);
         }},
        {"LINK002_working.wan",
         [](const char *path) {
             wan_template record{};
             return write_wan_template_parameter_file(path, &record);
         }},
    };
    for (const writer &w : writers) {
        std::string path = directory + "/" + w.file;
        // An empty old file frees nothing when it is truncated.
        auto report = on_full_disk(
            directory, [&] { tree.write(std::string("config/template/") + w.file, ""); },
            [&] { return result_and_file(w.write(path.c_str()), path); });
        if (!report) GTEST_SKIP() << "no mount namespace with a tmpfs here";
        EXPECT_EQ(*report, "result " + std::to_string(ENOSPC) + "\n") << w.file;
    }
}

TEST_F(FullDisk, TemplateSaveKeepsTheOldFileWholeAndSaysWhy) {
    std::string directory = tree.config_dir() + "/template";
    std::string path = directory + "/LINK002_working.lapb";
    const std::string old = read_file(path);
    ASSERT_FALSE(old.empty());
    auto report = on_full_disk(
        directory, [&] { tree.write("config/template/LINK002_working.lapb", old); },
        [&] {
            qx25test::tool_result result = qx25test::run_tool({"template", "save", "2", "lapb"});
            std::vector<std::string> names;
            for (const auto &entry : fs::directory_iterator(directory))
                names.push_back(entry.path().filename().string());
            std::sort(names.begin(), names.end());
            std::string listing;
            for (const std::string &name : names)
                listing += name + "\n";
            return "status " + std::to_string(result.status) + "\nout " + result.out + "err " +
                   result.err + "old file kept: " + (read_file(path) == old ? "yes" : "no") +
                   "\nfiles:\n" + listing;
        });
    if (!report) GTEST_SKIP() << "no mount namespace with a tmpfs here";
    // The new file beside the old one could not be written, and is gone.
    std::string fresh = directory + "/.LINK002_working.lapb.new.";
    std::size_t at = report->find(fresh);
    ASSERT_NE(at, std::string::npos) << *report;
    report->replace(at + fresh.size(), 6, "XXXXXX");
    EXPECT_EQ(*report, "status 1\nout err qx25 template: cannot write " + fresh +
                           "XXXXXX: No space left on device\nold file kept: yes\nfiles:\n"
                           ".filler\nLINK002_working.lapb\n");
}

// The link files of the examples as they were, and what a tool run on a full
// link file directory said and left there.
std::string tool_on_full_link_directory(const ConfigTree &tree,
                                        const std::vector<std::string> &args) {
    std::string directory = tree.config_dir() + "/config";
    std::vector<std::pair<std::string, std::string>> originals;
    for (const auto &entry : fs::directory_iterator(directory))
        originals.emplace_back(entry.path().filename().string(), read_file(entry.path()));
    std::sort(originals.begin(), originals.end());
    auto report = on_full_disk(
        directory,
        [&] {
            for (const auto &[name, text] : originals)
                tree.write("config/config/" + name, text);
        },
        [&] {
            qx25test::tool_result result = qx25test::run_tool(args);
            std::string kept = "every file kept: ";
            bool all_kept = true;
            for (const auto &[name, text] : originals)
                all_kept = all_kept && read_file(directory + "/" + name) == text;
            std::vector<std::string> names;
            for (const auto &entry : fs::directory_iterator(directory))
                names.push_back(entry.path().filename().string());
            std::sort(names.begin(), names.end());
            std::string listing;
            for (const std::string &name : names)
                listing += name + "\n";
            return "status " + std::to_string(result.status) + "\nerr " + result.err + kept +
                   (all_kept ? "yes" : "no") + "\nfiles:\n" + listing;
        });
    return report ? *report : std::string();
}

TEST_F(FullDisk, SetKeepsTheOldFileWholeAndSaysWhy) {
    std::string report = tool_on_full_link_directory(tree, {"set", "2", "lapb", "n2_count", "12"});
    if (report.empty()) GTEST_SKIP() << "no mount namespace with a tmpfs here";
    // The new file beside the old one could not be written, and is gone.
    EXPECT_NE(report.find("status 1\nerr qx25 set: link 2 not changed: cannot write " +
                          tree.config_dir() + "/config/.link_config_0002.cfg.new."),
              std::string::npos)
        << report;
    EXPECT_NE(report.find(": No space left on device\nevery file kept"), std::string::npos)
        << report;
    EXPECT_NE(report.find("every file kept: yes\nfiles:\n.filler\nlink_config_0001.cfg\n"
                          "link_config_0002.cfg\nlink_config_0003.cfg\n"),
              std::string::npos)
        << report;
}

TEST_F(FullDisk, ImportKeepsEveryOldFileWholeAndSaysWhy) {
    std::string report = tool_on_full_link_directory(tree, {"import"});
    if (report.empty()) GTEST_SKIP() << "no mount namespace with a tmpfs here";
    // The first backup could not be made: nothing was touched.
    EXPECT_NE(report.find("status 1\nerr qx25 import: cannot write " + tree.config_dir() +
                          "/config/link_config_0001.cfg.BAK."),
              std::string::npos)
        << report;
    EXPECT_NE(report.find(": No space left on device; nothing was written\nevery file kept"),
              std::string::npos)
        << report;
    EXPECT_NE(report.find("every file kept: yes\nfiles:\n.filler\nlink_config_0001.cfg\n"
                          "link_config_0002.cfg\nlink_config_0003.cfg\n"),
              std::string::npos)
        << report;
}

} // namespace
