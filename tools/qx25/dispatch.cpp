// The dispatcher of the qx25 tool: what every command gets without doing
// anything for it. Options end at "--" or at the first operand, help is
// asked for the same way everywhere, and the library's messages are
// collected for the command and shown with its name.
#include "command.h"

#include "paths.h"
#include "qx25.h"

#include <algorithm>
#include <iostream>

namespace qx25tool {

namespace {

void print_usage(std::span<const command> table, std::ostream &out) {
    out << "usage: qx25 COMMAND [ARGUMENTS]\n"
           "       qx25 COMMAND --help\n"
           "       qx25 --version\n\n"
           "Commands:\n";
    for (const command &cmd : table)
        out << "  " << cmd.name << std::string(10 - std::min<std::size_t>(cmd.name.size(), 9), ' ')
            << cmd.summary << '\n';
    out << "\nFiles are looked up under $X25CONFIGFILES (default " << qx25::default_config_dir
        << ")\nand $X25LIBFILES (default " << qx25::default_lib_dir << ").\n";
}

void print_command_help(const command &cmd) {
    std::cout << "usage: qx25 " << cmd.name << ' ' << cmd.synopsis << "\n\n" << cmd.help;
}

// Whether the command's table entry names the option.
bool takes(const command &cmd, std::string_view option) {
    std::string_view names = cmd.options;
    while (!names.empty()) {
        std::size_t end = names.find(' ');
        if (names.substr(0, end) == option) return true;
        names.remove_prefix(end == std::string_view::npos ? names.size() : end + 1);
    }
    return false;
}

enum class parse_result { run, help, wrong };

// Takes the options off the words after the command's name.
parse_result take_options(const command &cmd, std::span<char *const> words, arguments &args,
                          std::string &problem) {
    std::size_t index = 0;
    for (; index < words.size(); ++index) {
        std::string_view word = words[index];
        if (word == "--") {
            ++index;
            break;
        }
        if (word.size() < 2 || word.front() != '-') break; // an operand ("-" is one too)
        if (word == "--help" || word == "-h") return parse_result::help;
        if (!takes(cmd, word)) {
            problem = "unknown option '" + std::string(word) + "'";
            return parse_result::wrong;
        }
        if (!args.given(word)) args.options.push_back(word);
    }
    static_cast<std::span<char *const> &>(args) = words.subspan(index);
    return parse_result::run;
}

} // namespace

bool arguments::given(std::string_view option) const {
    return std::find(options.begin(), options.end(), option) != options.end();
}

int dispatch(std::span<const command> table, int argc, char **argv) {
    if (argc < 2) {
        print_usage(table, std::cerr);
        return exit_usage;
    }
    std::string_view name = argv[1];
    if (name == "--help" || name == "-h" || name == "help") {
        print_usage(table, std::cout);
        return exit_ok;
    }
    if (name == "--version") {
        std::cout << "qx25 " << QX25_VERSION << " (libqx25.so." << QX25_SOVERSION << ")\n";
        return exit_ok;
    }
    auto cmd = std::find_if(table.begin(), table.end(),
                            [&](const command &candidate) { return candidate.name == name; });
    if (cmd == table.end()) {
        std::cerr << "qx25: unknown command '" << visible(name) << "'\n";
        print_usage(table, std::cerr);
        return exit_usage;
    }
    arguments args;
    std::string problem;
    switch (take_options(*cmd, std::span<char *const>(argv + 2, static_cast<std::size_t>(argc - 2)),
                         args, problem)) {
    case parse_result::help:
        print_command_help(*cmd);
        return exit_ok;
    case parse_result::wrong:
        return usage_error(*cmd, problem);
    case parse_result::run:
        break;
    }
    x25_cat_open(); // without a catalog the built-in English texts are used
    collect_messages();
    int status = cmd->run(*cmd, args);
    // What the library said and the command did not show is shown now.
    complain_all(cmd->name, take_messages());
    x25_cat_close();
    return status;
}

} // namespace qx25tool
