// qx25: administration tool of the Quenlark X.25 configuration library.
#include "command.h"

#include <clocale>

namespace qx25tool {

namespace {

constexpr command command_table[] = {
    {"addr", "[--check] ADDRESS...", "parse X.25 addresses and show their fields",
     "Parses each ADDRESS and prints its subnetwork, DTE digits, extension and\n"
     "canonical text form.\n\n"
     "  --check   apply the address class of the link the subnetwork names\n",
     run_addr, "--check"},
    {"ident", "LINK|FILE", "show the IDENTIFICATION block of a configuration file",
     "Opens a link configuration, given by link number or by file name as for\n"
     "check, checks its IDENTIFICATION block and prints its fields and the\n"
     "comments before it.\n",
     run_ident},
    {"check", "[LINK|FILE...]", "check the configuration tree or link files",
     "Without arguments, checks every file of the configuration tree: each link\n"
     "file, boardconf, pvcmapconf and world_networks.profile, and the links\n"
     "against each other (a device or an alias used twice). With arguments,\n"
     "checks each link configuration, given by link number (3 reads\n"
     "config/link_config_0003.cfg) or by file name; a file name that does not\n"
     "begin with /, ./ or ../ is looked up in $X25CONFIGFILES/config.\n\n"
     "Prints each finding as FILE:LINE: text (FILE: text for the file as a\n"
     "whole): what the library reports, and what it passes over, cuts or drops\n"
     "without a word (unknown keywords, long lines, long comment blocks, CRLF\n"
     "line ends, values it bends). A file without findings is FILE: ok. The exit\n"
     "status is 0 only when nothing was found.\n",
     run_check},
    {"devices", "[--json]", "show the device type table read from boardconf",
     "Reads $X25CONFIGFILES/boardconf and prints its device kinds: row, symbolic\n"
     "name, device name prefix, WAN or LAN, lines per board, driver module,\n"
     "maximum receive unit and comment.\n\n"
     "  --json   print the records as one JSON object (see qx25(1))\n",
     run_devices, "--json"},
    {"networks", "[--json]", "show the network profiles of world_networks.profile",
     "Reads $X25LIBFILES/world_networks.profile and prints the number, name and\n"
     "description of each network.\n\n"
     "  --json   print the records as one JSON object (see qx25(1))\n",
     run_networks, "--json"},
    {"links", "[--json]", "list the configured links",
     "Finds every link file of $X25CONFIGFILES/config and prints one line per\n"
     "link, in link order: number, alias, type, X.25 version, frame protocol,\n"
     "DTE or DCE side, devices, full address, number of PVCs and description.\n"
     "A file that cannot be read, or that names a device another link uses, is\n"
     "reported and left out; the exit status is then 1.\n\n"
     "  --json   print the records as one JSON object (see qx25(1))\n",
     run_links, "--json"},
    {"pvcs", "[--json] [LINK]", "list the permanent virtual circuits of the links",
     "Prints the PVCs that $X25CONFIGFILES/pvcmapconf gives the configured links,\n"
     "or those of link number LINK: link, logical channel number (hexadecimal),\n"
     "the two packet sizes in bytes and the two window sizes. The exit status is\n"
     "1 when a link file was left out (see links) or the library reported a\n"
     "problem.\n\n"
     "  --json   print the records as one JSON object (see qx25(1))\n",
     run_pvcs, "--json"},
    {"show", "[--json] LINK|FILE", "print a link configuration as the library writes it",
     "Reads a link configuration, given by link number or by file name as for\n"
     "check, and prints it in the file format as the library writes it: every\n"
     "value, defaults included, with the comments of the file. What the reader\n"
     "reported is shown on standard error.\n\n"
     "  --json   print the records as one JSON object (see qx25(1))\n",
     run_show, "--json"},
    {"set", "[--dry-run] LINK SECTION KEYWORD VALUE", "change one keyword of a link configuration",
     "Gives KEYWORD of SECTION of link number LINK the VALUE by changing the value\n"
     "on the keyword's line of the link's file, or by adding a line for it at the\n"
     "end of the section; every other byte of the file stays as it is. SECTION is\n"
     "link, x25, llc2, lapb, wan or mlp, or lapb1 to lapb5 and wan1 to wan5 for the\n"
     "subsections of SECTION MLP in file order.\n\n"
     "The VALUE is read by the library as from the file; nothing is written when\n"
     "it reports a problem with it or passes over it, when it is not wholly a\n"
     "value of the keyword (the library would read it as another), when the\n"
     "link would name a device another link uses, or when the file holds the\n"
     "value already. The new file must read as the old one with that value and\n"
     "no other change. It replaces the old one atomically and is read back; when\n"
     "it does not read as planned the previous file is put back.\n\n"
     "The first change keeps the file as it was as FILE.BAK, which is never\n"
     "touched again; each later change keeps the previous file as FILE.BAK.1,\n"
     "FILE.BAK.2, ..., and the 10 newest of these numbered backups are kept.\n\n"
     "  --dry-run   print the change as a unified diff and write nothing\n",
     run_set, "--dry-run"},
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
    {"hosts", "[--json]", "list the hosts of xhosts",
     "Prints every host of $X25CONFIGFILES/xhosts in file order: address, name\n"
     "and aliases. Lines the library does not take as hosts are left out.\n\n"
     "  --json   print the records as one JSON object (see qx25(1))\n",
     run_hosts, "--json"},
    {"subnets", "[--json]", "list the subnetworks the configured links make",
     "Prints the subnetworks of the subnetworks database, one per configured link\n"
     "in link order: number, alias name, full address and description.\n\n"
     "  --json   print the records as one JSON object (see qx25(1))\n",
     run_subnets, "--json"},
    {"call", "NAME|ADDRESS", "show the PAD call string of a host or address",
     "Prints the call string a PAD user's NAME (a host of xhosts) or ADDRESS\n"
     "turns into: the called address, \" +\" and the calling address of its link,\n"
     "then the facilities of its padmapconf entry. An ADDRESS is checked\n"
     "against the address class of the link its subnetwork names.\n",
     run_call},
    {"pad", "[--json] [ADDRESS]", "list the PAD map entries and their facilities",
     "Prints the entries of $X25CONFIGFILES/padmapconf, or the entry the library\n"
     "finds for ADDRESS: the address and its facilities as a PAD user types\n"
     "them after it.\n\n"
     "  --json   print the records as one JSON object (see qx25(1))\n",
     run_pad, "--json"},
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
    {"inventory", "[--json]", "show devices, links and PVCs together, with their conflicts",
     "Prints the device kinds of $X25CONFIGFILES/boardconf with the links that use\n"
     "each, the links of $X25CONFIGFILES/config with their devices and PVCs, and\n"
     "the PVCs of pvcmapconf. A link whose file names a device boardconf does not\n"
     "know, or a device another link uses too, is flagged; so is a file that\n"
     "cannot be read and a PVC of a link that is not configured. The exit status\n"
     "is 1 when anything was flagged.\n\n"
     "  --json   print the records as one JSON object (see qx25(1))\n",
     run_inventory, "--json"},
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
     run_import, "--dry-run"},
};

} // namespace

std::span<const command> commands() {
    return command_table;
}

} // namespace qx25tool

int main(int argc, char **argv) {
    std::setlocale(LC_ALL, "");
    return qx25tool::dispatch(qx25tool::commands(), argc, argv);
}
