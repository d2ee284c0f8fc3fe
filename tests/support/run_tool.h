// Runs the qx25 tool as a child process and collects what it prints.
#pragma once

#include <string>
#include <vector>

namespace qx25test {

struct tool_result {
    int status; // exit status, or -1 when the tool did not exit normally
    std::string out;
    std::string err;
};

// Runs the tool with the given arguments in the current environment.
tool_result run_tool(const std::vector<std::string> &args);

// Runs any program the same way.
tool_result run_program(const std::string &program, const std::vector<std::string> &args);

} // namespace qx25test
