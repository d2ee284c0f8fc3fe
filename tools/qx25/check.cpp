// qx25 check: reads link configurations and shows what the reader reported.
#include "command.h"
#include "release.h"

#include "link_config.h"

#include <cctype>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <iostream>
#include <string>
#include <vector>

namespace qx25tool {

namespace {

std::vector<std::string> collected;

int collect(const char *message) {
    collected.emplace_back(message);
    return 0;
}

bool all_digits(const char *text) {
    if (*text == '\0') return false;
    for (; *text != '\0'; ++text)
        if (!std::isdigit(static_cast<unsigned char>(*text))) return false;
    return true;
}

// The link file an argument names: a link number, or a file name, which the
// reader places as it places every name. `path` is where that is, to show.
bool link_file(const char *argument, char (&name)[config_path_max], char (&path)[config_path_max]) {
    if (all_digits(argument)) {
        long number = std::strtol(argument, nullptr, 10);
        if (number > 9999 ||
            __config_create_working_filename(".cfg", static_cast<int>(number), name, sizeof name))
            return false;
    } else if (std::snprintf(name, sizeof name, "%s", argument) >= int(sizeof name)) {
        return false;
    }
    return __qualify_working_filename(path, sizeof path, name) == 0 && path[0] != '\0';
}

// Reads one link file; prints its messages, or "ok".
bool check_one(const command &self, const char *argument) {
    char name[config_path_max], path[config_path_max];
    if (!link_file(argument, name, path)) {
        complain(self.name, std::string("'") + argument + "' names no link file");
        return false;
    }
    collected.clear();
    link_config config{};
    x32_record x25_x32{}, lapb_x32{}, mlp_x32[MLP_MAX_SUBSECTIONS]{};
    int mode = 0;
    int result = x25_read_config_parameter_file_x32(
        name, &config.ids, &config.link, &config.x25, &config.mlp, &config.lapb, &config.llc2,
        &config.wan, &x25_x32, &lapb_x32, mlp_x32, &mode);
    release(&config);

    for (std::string &message : collected) {
        while (!message.empty() && message.back() == '\n')
            message.pop_back();
        std::cout << path << ": " << message << '\n';
    }
    if (result != 0 && collected.empty())
        std::cout << path << ": " << std::strerror(result) << '\n';
    if (result == 0 && collected.empty()) std::cout << path << ": ok\n";
    return result == 0 && collected.empty();
}

} // namespace

int run_check(const command &self, std::span<char *const> args) {
    if (args.empty()) return usage_error(self, "no link or file given");
    x25_set_config_error_function(collect);
    x25_set_parse_error_function(collect);
    set_link_error_function(collect);
    bool clean = true;
    for (const char *argument : args)
        clean = check_one(self, argument) && clean;
    return clean ? exit_ok : exit_failure;
}

} // namespace qx25tool
