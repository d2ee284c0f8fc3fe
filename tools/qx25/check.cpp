// qx25 check: the findings of link files, or of the whole configuration
// tree.
#include "command.h"
#include "link_check.h"
#include "tree_check.h"

#include "paths.h"

#include <algorithm>
#include <iostream>
#include <string>
#include <vector>

namespace qx25tool {

bool print_findings(const std::vector<file_findings> &files) {
    bool clean = true;
    for (const file_findings &file : files) {
        std::vector<finding> found = file.found;
        std::stable_sort(found.begin(), found.end(),
                         [](const finding &a, const finding &b) { return a.line < b.line; });
        std::string path = visible(file.path);
        if (found.empty()) std::cout << path << ": ok\n";
        for (const finding &f : found) {
            std::cout << path;
            if (f.line != 0) std::cout << ':' << f.line;
            std::cout << ": " << visible(f.text) << '\n';
        }
        clean = clean && found.empty();
    }
    return clean;
}

namespace {

// Every file of the tree and the links against each other.
std::vector<file_findings> check_tree() {
    std::string config = qx25::config_dir();
    std::vector<file_findings> files;
    files.push_back(check_boardconf(config + "/boardconf"));

    std::vector<checked_link> links;
    std::vector<int> configured;
    for (const auto &[number, name] : link_files()) {
        links.push_back(check_link_file(name, config + "/config/" + name));
        if (links.back().records != nullptr) configured.push_back(number);
    }
    check_links_together(links);
    for (checked_link &link : links)
        files.push_back(std::move(link.findings));

    files.push_back(check_pvc_map(config + "/pvcmapconf", configured));
    files.push_back(
        check_network_profiles(std::string(qx25::lib_dir()) + "/world_networks.profile"));
    return files;
}

} // namespace

int run_check(const command &self, const arguments &args) {
    std::vector<file_findings> files;
    if (args.empty()) files = check_tree();
    bool named_all = true;
    for (const char *argument : args) {
        std::string name, path;
        if (!name_link_file(argument, name, path)) {
            complain(self.name, std::string("'") + argument + "' names no link file");
            named_all = false;
            continue;
        }
        files.push_back(check_link_file(name, path).findings);
    }
    bool clean = print_findings(files);
    return clean && named_all ? exit_ok : exit_failure;
}

} // namespace qx25tool
