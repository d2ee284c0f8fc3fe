// Message catalog: the NLSPATH search path, opening and closing, the message
// texts of set 15 and the error functions with their default output.
#include "qx25.h"

#include "config_tree.h"
#include "error_functions.h"
#include "captured_messages.h"
#include "messages.h"

#include <gtest/gtest.h>

#include <clocale>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <map>
#include <string>

using qx25::Msg;
using qx25test::ConfigTree;
using qx25test::messages;

namespace {

const std::string library_part = "/locale/%L/LC_MESSAGES/%N.cat";
const std::string stage_dir = QX25_STAGE_DATADIR;
const nl_catd failed = reinterpret_cast<nl_catd>(-1);

std::string nlspath() {
    const char *value = std::getenv("NLSPATH");
    return value != nullptr ? value : "<unset>";
}

// Reads the messages of a catalog source: number -> text with its escapes
// turned into the characters they stand for.
std::map<int, std::string> catalog_source(const std::string &language) {
    std::ifstream in(std::string(QX25_SOURCE_DIR) + "/catalog/libqx25messages." + language +
                     ".msg");
    std::map<int, std::string> texts;
    std::string line;
    int set = 0;
    while (std::getline(in, line)) {
        if (line.rfind("$set ", 0) == 0) set = std::atoi(line.c_str() + 5);
        if (line.empty() || line[0] == '$') continue;
        EXPECT_EQ(set, 15) << line;
        std::size_t space = line.find(' ');
        std::string text, raw = line.substr(space + 1);
        for (std::size_t i = 0; i < raw.size(); ++i) {
            if (raw[i] == '\\' && i + 1 < raw.size() && raw[i + 1] == 'n') {
                text += '\n';
                ++i;
            } else {
                text += raw[i];
            }
        }
        texts[std::stoi(line.substr(0, space))] = text;
    }
    return texts;
}

std::vector<std::string> conversions(const std::string &format) {
    std::vector<std::string> found;
    std::size_t position = 0;
    for (auto c = qx25::next_conversion(format, position); !c.empty();
         c = qx25::next_conversion(format, position))
        found.emplace_back(c);
    return found;
}

class Catalog : public testing::Test {
  protected:
    void SetUp() override {
        ::unsetenv("NLSPATH");
        ::unsetenv("X25LIBFILES");
        qx25test::capture_all_messages();
    }
};

TEST_F(Catalog, DescriptorIsZeroBeforeOpening) {
    EXPECT_EQ(qx25catDesc, nullptr);
}

TEST_F(Catalog, DefaultSearchPathIsTheDefaultLibraryDirectory) {
    EXPECT_EQ(x25_cat_open(), -1);
    EXPECT_EQ(nlspath(), "/opt/Tarvenco/x25/lib" + library_part);
    EXPECT_EQ(qx25catDesc, failed);
}

TEST_F(Catalog, LibraryDirectoryComesFromX25LIBFILES) {
    ::setenv("X25LIBFILES", "/srv/x25lib", 1);
    x25_cat_open();
    EXPECT_EQ(nlspath(), "/srv/x25lib" + library_part);
}

TEST_F(Catalog, CallersSearchPathIsTriedFirst) {
    ::setenv("NLSPATH", "/usr/share/%N", 1);
    ::setenv("X25LIBFILES", "/srv/x25lib", 1);
    x25_cat_open();
    EXPECT_EQ(nlspath(), "/usr/share/%N:/srv/x25lib" + library_part);
}

TEST_F(Catalog, OpeningAgainRebuildsThePathFromTheCurrentEnvironment) {
    ::setenv("NLSPATH", "/first", 1);
    x25_cat_open();
    EXPECT_EQ(nlspath(), "/first:/opt/Tarvenco/x25/lib" + library_part);
    ::setenv("X25LIBFILES", "/second", 1);
    x25_cat_open(); // the caller's part is now the path built before
    EXPECT_EQ(nlspath(), "/first:/opt/Tarvenco/x25/lib" + library_part + ":/second" + library_part);
}

TEST_F(Catalog, SearchPathOfExactlyTheBufferSizeIsAccepted) {
    // "NLSPATH=" + P + ":" + "/x" + library part = 1023 characters.
    std::size_t room = 1023 - std::string("NLSPATH=").size() - 1 - 2 - library_part.size();
    std::string caller(room, 'p');
    ::setenv("NLSPATH", caller.c_str(), 1);
    ::setenv("X25LIBFILES", "/x", 1);
    x25_cat_open();
    EXPECT_EQ(nlspath(), caller + ":/x" + library_part);
}

TEST_F(Catalog, TooLongSearchPathIsRefusedAndTheEnvironmentLeftAlone) {
    ::setenv("X25LIBFILES", "/x", 1);
    std::size_t room = 1023 - std::string("NLSPATH=").size() - 1 - 2 - library_part.size();
    std::string caller(room + 1, 'p');
    ::setenv("NLSPATH", caller.c_str(), 1);
    EXPECT_EQ(x25_cat_open(), -1);
    EXPECT_EQ(qx25catDesc, failed);
    EXPECT_EQ(nlspath(), caller);
}

TEST_F(Catalog, VeryLongLibraryDirectoryIsRefusedWithoutOverrun) {
    std::string directory = "/" + std::string(5000, 'd');
    ::setenv("X25LIBFILES", directory.c_str(), 1);
    EXPECT_EQ(x25_cat_open(), -1);
    EXPECT_EQ(nlspath(), "<unset>");
    EXPECT_STREQ(qx25::message_text(Msg::NoMemory), "Cannot allocate memory\n");
}

TEST_F(Catalog, RefusedPathKeepsTheOneAlreadyInTheEnvironment) {
    ::setenv("X25LIBFILES", "/ok", 1);
    x25_cat_open();
    std::string before = nlspath();
    ::setenv("X25LIBFILES", ("/" + std::string(2000, 'd')).c_str(), 1);
    EXPECT_EQ(x25_cat_open(), -1);
    EXPECT_EQ(nlspath(), before);
}

TEST_F(Catalog, WithoutACatalogEveryMessageIsItsDefault) {
    for (int number = 1; number <= 44; ++number)
        EXPECT_STREQ(qx25::message_text(static_cast<Msg>(number)), qx25::default_message(number));
    EXPECT_EQ(x25_cat_open(), -1);
    EXPECT_STREQ(qx25::message_text(Msg::UnknownProtocol), "Unknown protocol\n");
}

TEST_F(Catalog, OpensTheEnglishCatalogOfTheLibraryDirectory) {
    ::setenv("X25LIBFILES", stage_dir.c_str(), 1);
    ASSERT_EQ(x25_cat_open(), 0);
    EXPECT_NE(qx25catDesc, failed);
    EXPECT_STREQ(catgets(qx25catDesc, 15, 28, "missing"), "Error opening file %s\n");
    EXPECT_EQ(x25_cat_close(), 0);
}

TEST_F(Catalog, CallersPathFindsTheFrenchCatalog) {
    ::setenv("NLSPATH", (stage_dir + "/locale/fr/LC_MESSAGES/%N.cat").c_str(), 1);
    ASSERT_EQ(x25_cat_open(), 0);
    EXPECT_STREQ(qx25::message_text(Msg::NoMemory), "Impossible d'allouer la mémoire\n");
    config_identification ids;
    EXPECT_EQ(x25_open_config_file("/nonexistent/l.cfg", &ids, 0), nullptr);
    EXPECT_EQ(messages(),
              std::vector<std::string>{"Erreur à l'ouverture du fichier /nonexistent/l.cfg\n"});
    x25_cat_close();
}

TEST_F(Catalog, MessagesLocaleChoosesTheFrenchCatalog) {
    ASSERT_NE(std::setlocale(LC_MESSAGES, "fr_FR.UTF-8"), nullptr)
        << "the fr_FR.UTF-8 locale is needed (the test setup generates it)";
    ::setenv("X25LIBFILES", stage_dir.c_str(), 1);
    ASSERT_EQ(x25_cat_open(), 0);
    EXPECT_STREQ(qx25::message_text(Msg::UnknownSection), "Section %s inconnue, ignorée\n");
    x25_cat_close();
}

TEST_F(Catalog, AfterClosingTheDefaultsAreUsedAgain) {
    ::setenv("NLSPATH", (stage_dir + "/locale/fr/LC_MESSAGES/%N.cat").c_str(), 1);
    ASSERT_EQ(x25_cat_open(), 0);
    nl_catd open_descriptor = qx25catDesc;
    EXPECT_EQ(x25_cat_close(), 0);
    EXPECT_EQ(qx25catDesc, open_descriptor); // not reset
    EXPECT_STREQ(qx25::message_text(Msg::NoMemory), "Cannot allocate memory\n");
}

TEST_F(Catalog, ClosingWithoutAnOpenCatalogFailsLikeAnInvalidDescriptor) {
    errno = 0;
    EXPECT_EQ(x25_cat_close(), -1);
    EXPECT_EQ(errno, EBADF);
    x25_cat_open(); // fails: nothing to close either
    EXPECT_EQ(x25_cat_close(), -1);
}

TEST_F(Catalog, ATranslationWithOtherConversionsIsNotTrusted) {
    ConfigTree tree;
    std::string source = tree.write("bad.msg", "$set 15\n"
                                               "28 Broken %s %s %d\\n\n"
                                               "3 Memoire epuisee\\n\n");
    std::string catalog = tree.root() + "/bad.cat";
    ASSERT_EQ(std::system(("gencat " + catalog + " " + source).c_str()), 0);
    ::setenv("NLSPATH", catalog.c_str(), 1);
    ASSERT_EQ(x25_cat_open(), 0);
    EXPECT_STREQ(qx25::message_text(Msg::NoMemory), "Memoire epuisee\n");
    EXPECT_STREQ(qx25::message_text(Msg::ErrorOpeningFile), "Error opening file %s\n");
    // A message the catalog lacks keeps its default.
    EXPECT_STREQ(qx25::message_text(Msg::UnknownSection), "Unknown section %s, skipped\n");
    x25_cat_close();
}

TEST(CatalogSources, EnglishCatalogHoldsExactlyTheBuiltInTexts) {
    std::map<int, std::string> english = catalog_source("en");
    ASSERT_EQ(english.size(), 44u);
    for (int number = 1; number <= 44; ++number)
        EXPECT_EQ(english[number], qx25::default_message(number)) << "message " << number;
}

TEST(CatalogSources, FrenchCatalogKeepsEveryConversionInOrder) {
    std::map<int, std::string> french = catalog_source("fr");
    ASSERT_EQ(french.size(), 44u);
    for (int number = 1; number <= 44; ++number) {
        std::string english = qx25::default_message(number);
        EXPECT_EQ(conversions(french[number]), conversions(english)) << "message " << number;
        EXPECT_TRUE(qx25::same_conversions(french[number], english)) << "message " << number;
        EXPECT_NE(french[number], english) << "message " << number << " is not translated";
        EXPECT_EQ(french[number].back(), '\n') << "message " << number;
    }
}

TEST(CatalogSources, ConversionsAreFoundInOrder) {
    EXPECT_EQ(conversions("file %s, line %d\n"), (std::vector<std::string>{"%s", "%d"}));
    EXPECT_EQ(conversions("100%% of %-5s %lu %"), (std::vector<std::string>{"%-5s", "%lu", "%"}));
    EXPECT_FALSE(qx25::same_conversions("%s %d", "%d %s"));
    EXPECT_FALSE(qx25::same_conversions("%s", "%s %s"));
    EXPECT_TRUE(qx25::same_conversions("a %s b", "c %s"));
    EXPECT_EQ(qx25::default_message(0), nullptr);
    EXPECT_EQ(qx25::default_message(45), nullptr);
}

TEST(ErrorFunctions, DefaultHandlersPrintTheirFormats) {
    struct handler_case {
        int (*handler)(const char *);
        const char *output;
    };
    const handler_case cases[] = {
        {config_error_handler, "text\n\n"},
        {parse_error_handler, "text\n"},
        {llc2_template_error_handler, "text\n\n"},
        {lapb_template_error_handler, "text\n\n"},
        {x25_template_error_handler, "text\n\n"},
        {wan_template_error_handler, "text\n\n"},
        {link_error_handler, "text\n"},
    };
    for (const handler_case &c : cases) {
        qx25test::CapturedStderr err;
        EXPECT_EQ(c.handler("text\n"), 0);
        EXPECT_EQ(err.text(), c.output);
    }
}

TEST(ErrorFunctions, ModulesStartWithTheirDefaultHandlers) {
    EXPECT_EQ(__config_error_function, config_error_handler);
    EXPECT_EQ(__parse_error_function, parse_error_handler);
    EXPECT_EQ(__llc2_template_error_function, llc2_template_error_handler);
    EXPECT_EQ(__lapb_template_error_function, lapb_template_error_handler);
    EXPECT_EQ(__x25_template_error_function, x25_template_error_handler);
    EXPECT_EQ(__wan_template_error_function, wan_template_error_handler);
    EXPECT_EQ(__link_error_function, link_error_handler);
}

TEST(ErrorFunctions, EachSetterInstallsAndNullRestoresTheDefault) {
    using qx25test::capture_message;
    struct setter_case {
        void (*set)(x25_error_function);
        x25_error_function *current;
        x25_error_function fallback;
    };
    const setter_case cases[] = {
        {x25_set_config_error_function, &__config_error_function, config_error_handler},
        {set_llc2_template_error_function, &__llc2_template_error_function,
         llc2_template_error_handler},
        {set_lapb_template_error_function, &__lapb_template_error_function,
         lapb_template_error_handler},
        {set_x25_template_error_function, &__x25_template_error_function,
         x25_template_error_handler},
        {set_wan_template_error_function, &__wan_template_error_function,
         wan_template_error_handler},
        {set_link_error_function, &__link_error_function, link_error_handler},
    };
    for (const setter_case &c : cases) {
        c.set(capture_message);
        EXPECT_EQ(*c.current, capture_message);
        c.set(nullptr);
        EXPECT_EQ(*c.current, c.fallback);
    }
}

TEST(ErrorFunctions, ParseSetterReturnsThePreviousFunction) {
    using qx25test::capture_message;
    EXPECT_EQ(x25_set_parse_error_function(capture_message), parse_error_handler);
    EXPECT_EQ(__parse_error_function, capture_message);
    EXPECT_EQ(x25_set_parse_error_function(nullptr), capture_message);
    EXPECT_EQ(__parse_error_function, parse_error_handler);
    EXPECT_EQ(x25_set_parse_error_function(nullptr), parse_error_handler);
}

TEST(ErrorFunctions, ReportsPassTheCatalogTextOrTheFormattedMessage) {
    qx25test::capture_all_messages();
    qx25::report(__parse_error_function, Msg::NoLcnRange);
    qx25::report(__parse_error_function, Msg::TooManyLapbSubsections, 5);
    qx25::report(__parse_error_function, Msg::ProfileReadError, 5, 12);
    EXPECT_EQ(messages(), (std::vector<std::string>{"No LCN range found\n",
                                                    "Too many LAPB subsections, max of 5\n",
                                                    "Error 5 reading profile file at line 12\n"}));
}

TEST(ErrorFunctions, BoundedFormattingKeepsTheNewline) {
    char buffer[16];
    qx25::format_bounded(buffer, sizeof buffer, "Error %s\n", "a very long argument");
    EXPECT_STREQ(buffer, "Error a very l\n");
    qx25::format_bounded(buffer, sizeof buffer, "Error %s", "a very long argument");
    EXPECT_STREQ(buffer, "Error a very lo");
    qx25::format_bounded(buffer, sizeof buffer, "ok %d\n", 7);
    EXPECT_STREQ(buffer, "ok 7\n");
}

} // namespace
