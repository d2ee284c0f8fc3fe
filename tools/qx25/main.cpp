// qx25: administration tool of the Quenlark X.25 configuration library.
#include "command.h"

#include "qx25.h"

#include <clocale>
#include <cstring>
#include <iostream>

namespace qx25tool {

namespace {

constexpr command command_table[] = {
    {"addr", "[--check] ADDRESS...", "parse X.25 addresses and show their fields",
     "Parses each ADDRESS and prints its subnetwork, DTE digits, extension and\n"
     "canonical text form.\n\n"
     "  --check   apply the address class of the link the subnetwork names\n",
     run_addr},
    {"ident", "FILE", "show the IDENTIFICATION block of a configuration file",
     "Opens the link configuration FILE, checks its IDENTIFICATION block and\n"
     "prints its fields and the comments before it.\n",
     run_ident},
    {"check", "LINK|FILE...", "read link configurations and show every problem",
     "Reads each link configuration, given by link number (3 reads\n"
     "config/link_config_0003.cfg) or by file name, and prints every message\n"
     "the reader produced, prefixed by the file name, or \"ok\". A file name\n"
     "that does not begin with /, ./ or ../ is looked up in $X25CONFIGFILES/config.\n"
     "The exit status is 1 when any file had a message.\n",
     run_check},
    {"devices", "", "show the device type table read from boardconf",
     "Reads $X25CONFIGFILES/boardconf and prints its device kinds: row, symbolic\n"
     "name, device name prefix, WAN or LAN, lines per board, driver module,\n"
     "maximum receive unit and comment.\n",
     run_devices},
    {"networks", "", "show the network profiles of world_networks.profile",
     "Reads $X25LIBFILES/world_networks.profile and prints the number, name and\n"
     "description of each network.\n",
     run_networks},
};

void print_usage(std::ostream &out) {
    out << "usage: qx25 COMMAND [ARGUMENTS]\n"
           "       qx25 COMMAND --help\n\n"
           "Commands:\n";
    for (const command &cmd : command_table)
        out << "  " << cmd.name << std::string(10 - cmd.name.size(), ' ') << cmd.summary << '\n';
    out << "\nFiles are looked up under $X25CONFIGFILES (default /etc/opt/Tarvenco/x25)\n"
           "and $X25LIBFILES (default /opt/Tarvenco/x25/lib).\n";
}

void print_command_help(const command &cmd) {
    std::cout << "usage: qx25 " << cmd.name << ' ' << cmd.synopsis << "\n\n" << cmd.help;
}

} // namespace

std::span<const command> commands() {
    return command_table;
}

void complain(std::string_view command_name, std::string_view message) {
    std::cerr << "qx25 " << command_name << ": " << message << '\n';
}

int usage_error(const command &cmd, std::string_view message) {
    complain(cmd.name, message);
    std::cerr << "usage: qx25 " << cmd.name << ' ' << cmd.synopsis << '\n';
    return exit_usage;
}

} // namespace qx25tool

int main(int argc, char **argv) {
    using namespace qx25tool;
    std::setlocale(LC_ALL, "");

    if (argc < 2) {
        print_usage(std::cerr);
        return exit_usage;
    }
    std::string_view name = argv[1];
    if (name == "--help" || name == "-h" || name == "help") {
        print_usage(std::cout);
        return exit_ok;
    }
    for (const command &cmd : commands()) {
        if (cmd.name != name) continue;
        std::span<char *const> args(argv + 2, static_cast<std::size_t>(argc - 2));
        for (const char *arg : args) {
            if (std::strcmp(arg, "--help") == 0 || std::strcmp(arg, "-h") == 0) {
                print_command_help(cmd);
                return exit_ok;
            }
        }
        x25_cat_open(); // without a catalog the built-in English texts are used
        int status = cmd.run(cmd, args);
        x25_cat_close();
        return status;
    }
    std::cerr << "qx25: unknown command '" << name << "'\n";
    print_usage(std::cerr);
    return exit_usage;
}
