// qx25 check: reads link configurations and shows what the reader reported.
#include "command.h"

#include <cstring>
#include <iostream>
#include <string>
#include <vector>

namespace qx25tool {

namespace {

// Reads one link file; prints its messages, or "ok".
bool check_one(const command &self, const char *argument) {
    std::string name, path;
    if (!name_link_file(argument, name, path)) {
        complain(self.name, std::string("'") + argument + "' names no link file");
        return false;
    }
    link_records records;
    int result = records.read(name.c_str());
    std::vector<std::string> messages = take_messages();
    for (const std::string &message : messages)
        std::cout << path << ": " << message << '\n';
    if (result != 0 && messages.empty()) std::cout << path << ": " << std::strerror(result) << '\n';
    if (result == 0 && messages.empty()) std::cout << path << ": ok\n";
    return result == 0 && messages.empty();
}

} // namespace

int run_check(const command &self, std::span<char *const> args) {
    if (args.empty()) return usage_error(self, "no link or file given");
    collect_messages();
    bool clean = true;
    for (const char *argument : args)
        clean = check_one(self, argument) && clean;
    return clean ? exit_ok : exit_failure;
}

} // namespace qx25tool
