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
    {"links", "", "list the configured links",
     "Finds every link file of $X25CONFIGFILES/config and prints one line per\n"
     "link, in link order: number, alias, type, X.25 version, frame protocol,\n"
     "DTE or DCE side, devices, full address, number of PVCs and description.\n"
     "A file that cannot be read, or that names a device another link uses, is\n"
     "reported and left out.\n",
     run_links},
    {"pvcs", "[LINK]", "list the permanent virtual circuits of the links",
     "Prints the PVCs that $X25CONFIGFILES/pvcmapconf gives the configured links,\n"
     "or those of link number LINK: link, logical channel number (hexadecimal),\n"
     "the two packet sizes in bytes and the two window sizes.\n",
     run_pvcs},
    {"show", "LINK|FILE", "print a link configuration as the library writes it",
     "Reads a link configuration, given by link number or by file name as for\n"
     "check, and prints it in the file format as the library writes it: every\n"
     "value, defaults included, with the comments of the file. What the reader\n"
     "reported is shown on standard error.\n",
     run_show},
    {"set", "[--dry-run] LINK SECTION KEYWORD VALUE", "change one keyword of a link configuration",
     "Gives KEYWORD of SECTION of link number LINK the VALUE by changing the value\n"
     "on the keyword's line of the link's file, or by adding a line for it at the\n"
     "end of the section; every other byte of the file stays as it is. SECTION is\n"
     "link, x25, llc2, lapb, wan or mlp, or lapb1 to lapb5 and wan1 to wan5 for the\n"
     "subsections of SECTION MLP in file order.\n\n"
     "The VALUE is read by the library as from the file; nothing is written when\n"
     "it reports a problem with it or passes over it, or when the file holds the\n"
     "value already. The new file must read as the old one with that value and no\n"
     "other change. It replaces the old one atomically, which is kept as\n"
     "FILE.BAK, and is read back; when it does not read as planned the previous\n"
     "file is put back.\n\n"
     "  --dry-run   print the change as a unified diff and write nothing\n",
     run_set},
    {"diff", "LINK|FILE", "show what a rewrite by the library would change",
     "Reads a link configuration, given as for show, and prints as a unified diff\n"
     "how the file that the library would write for it (see show) differs from\n"
     "the file as it is: the values it adds, the comments and lines it changes or\n"
     "drops. Nothing is written.\n",
     run_diff},
    // ---- Name databases and link identifiers ----
    {"host", "NAME|ADDRESS", "show a host of xhosts",
     "Looks NAME up among the host names and aliases of $X25CONFIGFILES/xhosts,\n"
     "or, when no host has that name, ADDRESS among their X.25 addresses, and\n"
     "prints the host's address, name and aliases.\n",
     run_host},
    {"hosts", "", "list the hosts of xhosts",
     "Prints every host of $X25CONFIGFILES/xhosts in file order: address, name\n"
     "and aliases. Lines the library does not take as hosts are left out.\n",
     run_hosts},
    {"subnets", "", "list the subnetworks the configured links make",
     "Prints the subnetworks of the subnetworks database, one per configured link\n"
     "in link order: number, alias name, full address and description.\n",
     run_subnets},
    {"call", "NAME|ADDRESS", "show the PAD call string of a host or address",
     "Prints the call string a PAD user's NAME (a host of xhosts) or ADDRESS\n"
     "turns into: the called address, \" +\" and the calling address of its link,\n"
     "then the facilities of its padmapconf entry. An ADDRESS is checked\n"
     "against the address class of the link its subnetwork names.\n",
     run_call},
    {"pad", "[ADDRESS]", "list the PAD map entries and their facilities",
     "Prints the entries of $X25CONFIGFILES/padmapconf, or the entry the library\n"
     "finds for ADDRESS: the address and its facilities as a PAD user types\n"
     "them after it.\n",
     run_pad},
    {"profile", "ADDRESS", "show the X.29 profile of an address",
     "Prints the X.29 profile $X25CONFIGFILES/x29profile gives ADDRESS: its kind\n"
     "(S, C, P, or V and a number), the T flag and the X.3 parameters the line\n"
     "sets, by number.\n",
     run_profile},
    {"ppa", "DEVICE INSTANCE", "show the PPA number of an LLC2 device",
     "Prints the physical point of attachment of the LLC2 DEVICE and INSTANCE,\n"
     "from the files of /etc/llc2/default/.\n",
     run_ppa},
    {"template", "save|show|put|get LINK LAYER", "save, show, send and fetch tuning templates",
     "Works on the tuning record of one LAYER (x25, lapb, llc2 or wan) of link\n"
     "number LINK: the values of that section of the link's configuration file.\n\n"
     "  save   writes it to the link's working template file,\n"
     "         $X25CONFIGFILES/template/LINKnnn_working.LAYER, and reads it back\n"
     "  show   shows the working template file: line, keyword and value\n"
     "  put    sends it to the layer's driver (/dev/x25, /dev/lapb, /dev/llc2)\n"
     "  get    fetches the driver's record and shows it as show does\n\n"
     "A LAN link has the layers x25 and llc2, a WAN link x25, lapb and wan, an\n"
     "MLP link x25. Nothing is saved or sent from a configuration file with\n"
     "problems (see check). The WAN layer has no driver: put and get do nothing.\n",
     run_template},
    // ---- Link inventory and legacy configuration import ----
    {"inventory", "", "show devices, links and PVCs together, with their conflicts",
     "Prints the device kinds of $X25CONFIGFILES/boardconf with the links that use\n"
     "each, the links of $X25CONFIGFILES/config with their devices and PVCs, and\n"
     "the PVCs of pvcmapconf. A link whose file names a device boardconf does not\n"
     "know, or a device another link uses too, is flagged; so is a file that\n"
     "cannot be read and a PVC of a link that is not configured. The exit status\n"
     "is 1 when anything was flagged.\n",
     run_inventory},
    {"import", "[--dry-run]", "write link files from the older x25conf",
     "Reads $X25CONFIGFILES/x25conf, the older list of links (one device a line;\n"
     "several lines for one link make an MLP link), with the addresses, aliases and\n"
     "descriptions of $X25CONFIGFILES/subnetworks, and writes the LINK section of\n"
     "each link's file config/link_config_NNNN.cfg through the library. A file that\n"
     "exists keeps its other sections, its comments and what x25conf does not\n"
     "give; it is copied to FILE.BAK first. Each line left out is reported with its\n"
     "line number and the field at fault. When a write fails, every file written\n"
     "is put back as it was. The exit status is 1 when a line was left out or\n"
     "the import failed.\n\n"
     "  --dry-run   show the files as they would be written; write nothing\n",
     run_import},
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
