// qx25 diff: how a rewrite of a link file by the library would differ from
// the file as it is, comments included.
#include "command.h"
#include "unified_diff.h"

#include <cstring>
#include <iostream>

namespace qx25tool {

int run_diff(const command &self, std::span<char *const> args) {
    std::string path;
    link_records records;
    std::vector<std::string> messages;
    if (int status = read_one_link(self, args, path, records, messages); status != exit_ok)
        return status;
    std::string text, failure;
    struct stat status {};
    if (!read_link_text(path, text, status, failure)) {
        complain(self.name, failure);
        return exit_failure;
    }
    std::string rewritten;
    int result = records.write_text(rewritten);
    std::vector<std::string> write_messages = take_messages();
    messages.insert(messages.end(), write_messages.begin(), write_messages.end());
    complain_all(self.name, messages);
    if (result != 0) {
        complain(self.name, std::string("cannot rewrite ") + path + ": " + std::strerror(result));
        return exit_failure;
    }
    std::cout << unified_diff(text, rewritten, path, path + " (rewritten by the library)");
    return exit_ok;
}

} // namespace qx25tool
