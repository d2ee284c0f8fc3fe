// Runs the qx25 tool as a child process and collects what it prints.
#pragma once

#include <string>
#include <vector>

namespace qx25test {

struct tool_result {
    int status; // exit status, or -1 when the tool did not exit normally
    std::string out;
    std::string err;
    bool timed_out = false; // stopped at its time limit
};

// Runs the tool with the given arguments in the current environment. With a
// time limit (seconds), a tool still running then is stopped: a guard for
// tests of what must never wait, such as a FIFO in place of a file.
tool_result run_tool(const std::vector<std::string> &args, unsigned time_limit = 0);

// Runs any program the same way.
tool_result run_program(const std::string &program, const std::vector<std::string> &args,
                        unsigned time_limit = 0);

} // namespace qx25test
