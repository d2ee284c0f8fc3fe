// What qx25 check finds in the files of the configuration tree: each finding
// names its file and, where it has one, its line.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace qx25tool {

struct finding {
    std::size_t line = 0; // from 1; 0 for the file as a whole
    std::string text;
};

// The findings of one file.
struct file_findings {
    std::string path;
    std::vector<finding> found;

    void add(std::size_t line, std::string text) { found.push_back({line, std::move(text)}); }
};

// Prints "PATH:LINE: text" (or "PATH: text") for each finding, in line order
// (those of the whole file first), or "PATH: ok" for a file without any.
// Control characters of the files are shown as escapes. True when there was
// no finding.
bool print_findings(const std::vector<file_findings> &files);

} // namespace qx25tool
