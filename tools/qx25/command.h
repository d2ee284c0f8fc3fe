// The qx25 tool: one entry per command, dispatched from a table.
#pragma once

#include <span>
#include <string_view>

namespace qx25tool {

enum exit_status { exit_ok = 0, exit_failure = 1, exit_usage = 2 };

struct command {
    std::string_view name;
    std::string_view synopsis; // arguments, as shown in usage lines
    std::string_view summary;  // one line for the command list
    std::string_view help;     // the rest of "qx25 NAME --help"
    int (*run)(const command &self, std::span<char *const> args);
};

std::span<const command> commands();

// Prints "qx25 NAME: message" on standard error.
void complain(std::string_view command_name, std::string_view message);

// Reports a wrong call of a command and returns exit_usage.
int usage_error(const command &cmd, std::string_view message);

int run_addr(const command &self, std::span<char *const> args);
int run_ident(const command &self, std::span<char *const> args);
int run_check(const command &self, std::span<char *const> args);
int run_devices(const command &self, std::span<char *const> args);
int run_networks(const command &self, std::span<char *const> args);

} // namespace qx25tool
