#include "backup_names.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

namespace fs = std::filesystem;

namespace qx25tool {

namespace {

constexpr std::string_view backup_suffix = ".BAK";

// The numbers of FILE.BAK.N backups there are, in ascending order.
std::vector<unsigned long> backup_numbers(const std::string &file) {
    fs::path path(file);
    std::string prefix = path.filename().string() + std::string(backup_suffix) + ".";
    fs::path directory = path.has_parent_path() ? path.parent_path() : fs::path(".");
    std::vector<unsigned long> numbers;
    std::error_code error;
    for (const fs::directory_entry &entry : fs::directory_iterator(directory, error)) {
        std::string name = entry.path().filename().string();
        if (!name.starts_with(prefix)) continue;
        std::string digits = name.substr(prefix.size());
        if (digits.empty() || digits.size() > 9 || digits.front() == '0' ||
            !std::all_of(digits.begin(), digits.end(), [](char c) { return c >= '0' && c <= '9'; }))
            continue;
        numbers.push_back(std::stoul(digits));
    }
    std::sort(numbers.begin(), numbers.end());
    return numbers;
}

bool exists(const std::string &path) {
    struct stat status {};
    return ::lstat(path.c_str(), &status) == 0 || errno != ENOENT;
}

} // namespace

std::string next_backup_name(const std::string &file) {
    std::string first = file + std::string(backup_suffix);
    if (!exists(first)) return first;
    std::vector<unsigned long> numbers = backup_numbers(file);
    unsigned long next = numbers.empty() ? 1 : numbers.back() + 1;
    while (exists(first + "." + std::to_string(next)))
        ++next;
    return first + "." + std::to_string(next);
}

std::string prune_backups(const std::string &file, std::size_t kept) {
    std::vector<unsigned long> numbers = backup_numbers(file);
    if (numbers.size() <= kept) return {};
    std::string failures;
    for (std::size_t i = 0; i < numbers.size() - kept; ++i) {
        std::string name = file + std::string(backup_suffix) + "." + std::to_string(numbers[i]);
        struct stat status {};
        if (::lstat(name.c_str(), &status) != 0 || !S_ISREG(status.st_mode)) continue;
        if (::unlink(name.c_str()) != 0) {
            int error = errno;
            failures += (failures.empty() ? "" : "; ") +
                        ("cannot remove the old backup " + name + ": " + std::strerror(error));
        }
    }
    return failures;
}

} // namespace qx25tool
