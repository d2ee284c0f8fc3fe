// The --json output of the qx25 commands, read back with a JSON parser and
// checked value by value, and the writer's escaping of what files hold.
#include "config_tree.h"
#include "json_writer.h"
#include "link_files.h"
#include "run_tool.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <cstdlib>
#include <sstream>
#include <string>

using nlohmann::json;
using qx25test::ConfigTree;
using qx25test::run_tool;
using qx25tool::json_string;
using qx25tool::json_writer;

namespace {

// ---- the writer ----------------------------------------------------------------------

TEST(JsonString, EscapesQuotesBackslashesAndControlCharacters) {
    EXPECT_EQ(json_string("a\"b\\c"), R"("a\"b\\c")");
    EXPECT_EQ(json_string("tab\there\nline\r\x1b[1m\x7f"),
              R"("tab\u0009here\u000aline\u000d\u001b[1m\u007f")");
    EXPECT_EQ(json_string(std::string("nul\0end", 7)), R"("nul\u0000end")");
    EXPECT_EQ(json_string(""), R"("")");
}

TEST(JsonString, KeepsUtf8AndReadsOtherBytesAsLatin1) {
    EXPECT_EQ(json_string("caf\xc3\xa9 \xe2\x82\xac \xf0\x9f\x93\xa1"),
              "\"caf\xc3\xa9 \xe2\x82\xac \xf0\x9f\x93\xa1\"");
    EXPECT_EQ(json_string("caf\xe9"), R"("caf\u00e9")");
    // An overlong form, a surrogate and a cut sequence are no UTF-8.
    EXPECT_EQ(json_string("\xc0\xaf"), R"("\u00c0\u00af")");
    EXPECT_EQ(json_string("\xed\xa0\x80"), R"("\u00ed\u00a0\u0080")");
    EXPECT_EQ(json_string("\xe2\x82"), R"("\u00e2\u0082")");
    // Whatever the bytes, a parser reads the text back.
    std::string all;
    for (int c = 0; c < 256; ++c)
        all += static_cast<char>(c);
    json parsed = json::parse(json_string(all));
    ASSERT_TRUE(parsed.is_string());
    EXPECT_EQ(parsed.get<std::string>().substr(0, 128), all.substr(0, 128));
}

TEST(JsonWriter, NestsWithCommasInOrderAndEndsTheLine) {
    std::ostringstream out;
    json_writer writer(out);
    writer.begin_object().key("b").number(-2).key("a").begin_array().text("x").null().boolean(true);
    writer.begin_object().end().texts({"p", "q"}).end().key("c").text_or_null("").end();
    EXPECT_EQ(out.str(), R"({"b":-2,"a":["x",null,true,{},["p","q"]],"c":null})"
                         "\n");
}

// ---- the commands --------------------------------------------------------------------

class JsonTool : public testing::Test {
  protected:
    void SetUp() override {
        ::setenv("LC_ALL", "C", 1);
        qx25test::copy_example_tree(tree);
    }
    // Runs the command and parses its standard output.
    json run(const std::vector<std::string> &args, int status = 0,
             const std::string &err = std::string()) {
        auto result = run_tool(args);
        EXPECT_EQ(result.status, status);
        EXPECT_EQ(result.err, err);
        EXPECT_TRUE(result.out.ends_with("\n"));
        EXPECT_EQ(result.out.find('\n'), result.out.size() - 1) << "one line";
        return json::parse(result.out);
    }
    ConfigTree tree;
};

TEST_F(JsonTool, Links) {
    json out = run({"links", "--json"});
    ASSERT_EQ(out["links"].size(), 3u);
    EXPECT_EQ(out["links"][1], json::parse(R"({"link": 2, "alias": "pdn", "type": "WAN",
        "version": "1988", "protocol": "LAPB", "mode": "DTE", "devices": ["wan0"],
        "address": "2.23421234567", "pvcs": 2, "description": "Leased line to the PDN, 64k"})"));
    EXPECT_EQ(out["links"][2]["devices"], json::parse(R"(["wan1", "wan2"])"));
    EXPECT_EQ(out["links"][2]["type"], "MLP");
    EXPECT_EQ(out["links"][0]["address"], "1.0800200A1B2C04");
    // The keys come in the documented order.
    std::string text = run_tool({"links", "--json"}).out;
    EXPECT_TRUE(text.starts_with(R"({"links":[{"link":1,"alias":"sitelan","type":"LAN",)"));
}

TEST_F(JsonTool, LinksWithoutAliasOrAddressGiveNull) {
    qx25test::write_link_file(tree, 7, "\tdevice\twan5\n");
    json out = run({"links", "--json"});
    ASSERT_EQ(out["links"].size(), 4u);
    EXPECT_EQ(out["links"][3]["link"], 7);
    EXPECT_TRUE(out["links"][3]["alias"].is_null());
    EXPECT_TRUE(out["links"][3]["address"].is_null());
    EXPECT_TRUE(out["links"][3]["description"].is_null());
}

TEST_F(JsonTool, ProblemsKeepTheirMessagesAndExitStatus) {
    // A link that takes a device of link 2 is left out: reported on standard
    // error, exit status 1, and the JSON holds the links there are.
    qx25test::write_link_file(tree, 9, "\tdevice\twan0\n");
    auto result = run_tool({"links", "--json"});
    EXPECT_EQ(result.status, 1);
    // Which of the two is left out depends on the order of the directory.
    EXPECT_NE(result.err.find("qx25 links: Duplicate device in file link_config_000"),
              std::string::npos)
        << result.err;
    json out = json::parse(result.out);
    EXPECT_EQ(out["links"].size(), 3u);
}

TEST_F(JsonTool, NoLinksIsAnEmptyList) {
    std::filesystem::remove_all(tree.config_dir() + "/config");
    std::filesystem::create_directory(tree.config_dir() + "/config");
    EXPECT_EQ(run_tool({"links", "--json"}).out, "{\"links\":[]}\n");
}

TEST_F(JsonTool, Pvcs) {
    json out = run({"pvcs", "--json"});
    ASSERT_EQ(out["pvcs"].size(), 4u);
    EXPECT_EQ(out["pvcs"][3], json::parse(R"({"link": 3, "lcn": 2, "packet_size_1": 512,
        "packet_size_2": 512, "window_1": 7, "window_2": 7})"));
    json link2 = run({"pvcs", "--json", "2"});
    ASSERT_EQ(link2["pvcs"].size(), 2u);
    EXPECT_EQ(link2["pvcs"][1]["window_1"], 4);
}

TEST_F(JsonTool, PvcChannelsAreReadAsHexadecimal) {
    tree.write("config/pvcmapconf", "2 1A 4096 16 3 5\n");
    json out = run({"pvcs", "--json"});
    ASSERT_EQ(out["pvcs"].size(), 1u);
    EXPECT_EQ(out["pvcs"][0]["lcn"], 26);
    EXPECT_EQ(out["pvcs"][0]["packet_size_1"], 4096);
    EXPECT_EQ(out["pvcs"][0]["packet_size_2"], 16);
}

TEST_F(JsonTool, Devices) {
    json out = run({"devices", "--json"});
    ASSERT_EQ(out["devices"].size(), 2u);
    EXPECT_EQ(out["devices"][1], json::parse(R"j({"row": 1, "symbolic": "ETHR", "device": "eth",
        "kind": "LAN", "lines": 1, "module": "s_ethr", "mru": 1500,
        "comment": "Ethernet interface (LLC2)"
})j"));
}

TEST_F(JsonTool, Networks) {
    json out = run({"networks", "--json"});
    ASSERT_EQ(out["networks"].size(), 9u);
    EXPECT_EQ(out["networks"][4], json::parse(R"({"number": 10, "name": "PSS",
        "description": "British Telecom packet switched service"})"));
}

TEST_F(JsonTool, Hosts) {
    json out = run({"hosts", "--json"});
    ASSERT_EQ(out["hosts"].size(), 4u);
    EXPECT_EQ(out["hosts"][0], json::parse(R"({"address": "2.23421987654", "name": "paris",
        "aliases": ["lutece", "capitale"]})"));
    EXPECT_EQ(out["hosts"][2]["address"], "3.23421555000.N.4711");
}

TEST_F(JsonTool, HostTextsKeepEveryByte) {
    tree.write("config/xhosts", "2.1234\tev\x1bil\tq\"uote,back\\slash\n");
    json out = run({"hosts", "--json"});
    ASSERT_EQ(out["hosts"].size(), 1u);
    EXPECT_EQ(out["hosts"][0]["name"], "ev\x1bil");
    EXPECT_EQ(out["hosts"][0]["aliases"], json::parse(R"(["q\"uote", "back\\slash"])"));
}

TEST_F(JsonTool, EmptyHostsFileIsAnEmptyList) {
    tree.write("config/xhosts", "# nobody\n");
    EXPECT_EQ(run_tool({"hosts", "--json"}).out, "{\"hosts\":[]}\n");
}

TEST_F(JsonTool, Subnets) {
    json out = run({"subnets", "--json"});
    ASSERT_EQ(out["subnets"].size(), 3u);
    EXPECT_EQ(out["subnets"][2], json::parse(R"({"subnet": 3, "name": "pdnmlp",
        "address": "3.23421234999", "description": "Multilink to the PDN over two lines"})"));
}

TEST_F(JsonTool, Pad) {
    json out = run({"pad", "--json"});
    ASSERT_EQ(out["pad"].size(), 3u);
    EXPECT_EQ(out["pad"][0], json::parse(R"({"address": "2.23421987654",
        "facilities": "P7/7W2/2 88 G12 ~head office"})"));
    json one = run({"pad", "--json", "3.23421555000.N.4711"});
    EXPECT_EQ(one, json::parse(R"({"pad": [{"address": "3.23421555000.N.4711",
        "facilities": "F 88"}]})"));
}

TEST_F(JsonTool, Show) {
    json out = run({"show", "--json", "2"});
    EXPECT_EQ(out["file"], tree.config_dir() + "/config/link_config_0002.cfg");
    EXPECT_EQ(out["identification"]["product_name"], "Quenlark X.25");
    EXPECT_EQ(out["identification"]["file_type"], "x25link");
    EXPECT_EQ(out["identification"]["modified_by"], "netadm");
    std::vector<std::string> sections;
    for (const json &section : out["sections"])
        sections.push_back(section["section"]);
    EXPECT_EQ(sections, (std::vector<std::string>{"LINK", "LAPB", "WAN", "X25"}));
    const json &link = out["sections"][0];
    EXPECT_EQ(link["subsection"], false);
    EXPECT_EQ(link["values"]["device"], "wan0");
    EXPECT_EQ(link["values"]["alias"], "pdn"); // its trailing comment is not part of it
    EXPECT_EQ(link["values"]["description"], "Leased line to the PDN, 64k");
    EXPECT_EQ(out["sections"][1]["values"]["t1_timer"], "3.0");
    EXPECT_EQ(out["sections"][1]["values"]["pf_timer"], "0.7");
    EXPECT_EQ(out["sections"][3]["values"]["network"], "PSS");
    // The keywords come in the writer's order.
    std::string text = run_tool({"show", "--json", "2"}).out;
    EXPECT_LT(text.find("\"n2_count\""), text.find("\"t1_timer\""));
}

TEST_F(JsonTool, ShowMarksTheSubsectionsOfMlp) {
    json out = run({"show", "--json", "3"});
    std::vector<std::pair<std::string, bool>> sections;
    for (const json &section : out["sections"])
        sections.emplace_back(section["section"], section["subsection"]);
    EXPECT_EQ(sections, (std::vector<std::pair<std::string, bool>>{{"LINK", false},
                                                                   {"MLP", false},
                                                                   {"LAPB", true},
                                                                   {"WAN", true},
                                                                   {"LAPB", true},
                                                                   {"WAN", true},
                                                                   {"X25", false}}));
}

TEST_F(JsonTool, ShowKeepsTheReadersMessagesOnStandardError) {
    qx25test::write_link_file(tree, 8, "\tdevice\twan6\n\tbogus\t1\n");
    auto result = run_tool({"show", "--json", "8"});
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.err, "qx25 show: Unknown LINK Keyword <bogus>, skipped\n");
    json out = json::parse(result.out);
    EXPECT_EQ(out["sections"][0]["values"]["device"], "wan6");
}

TEST_F(JsonTool, Inventory) {
    json out = run({"inventory", "--json"});
    EXPECT_EQ(out["devices"][0], json::parse(R"({"row": 0, "symbolic": "WANS", "device": "wan",
        "kind": "WAN", "lines": 2, "used_by": ["wan0 link 2", "wan1 link 3", "wan2 link 3"]})"));
    EXPECT_EQ(out["links"][2], json::parse(R"({"link": 3, "file": "link_config_0003.cfg",
        "alias": "pdnmlp", "devices": ["wan1", "wan2"], "address": "3.23421234999", "pvcs": 2,
        "flags": []})"));
    EXPECT_EQ(out["pvcs"].size(), 4u);
}

TEST_F(JsonTool, InventoryFlagsAreAList) {
    qx25test::write_link_file(tree, 9, "\tdevice\twan0\n");
    auto result = run_tool({"inventory", "--json"});
    EXPECT_EQ(result.status, 1);
    json out = json::parse(result.out);
    ASSERT_EQ(out["links"].size(), 4u);
    EXPECT_EQ(out["links"][1]["flags"], json::parse(R"(["device wan0 also used by link 9"])"));
    EXPECT_EQ(out["links"][3]["flags"], json::parse(R"(["device wan0 also used by link 2"])"));
}

} // namespace
