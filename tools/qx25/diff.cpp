// qx25 diff: how a rewrite of a link file by the library would differ from
// the file as it is, comments included.
#include "command.h"
#include "unified_diff.h"

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <iostream>

namespace qx25tool {

int run_diff(const command &self, std::span<char *const> args) {
    if (args.size() != 1) return usage_error(self, "one LINK or FILE is needed");
    std::string name, path;
    if (!name_link_file(args[0], name, path)) {
        complain(self.name, std::string("'") + args[0] + "' names no link file");
        return exit_failure;
    }
    std::string text, failure;
    struct stat status {};
    if (!read_link_text(path, text, status, failure)) {
        complain(self.name, failure);
        return exit_failure;
    }

    collect_messages();
    link_records records;
    int result = records.read(name.c_str());
    std::vector<std::string> messages = take_messages();
    if (result != 0) {
        if (!complain_all(self.name, messages))
            complain(self.name, path + ": " + std::strerror(result));
        return exit_failure;
    }
    char *buffer = nullptr;
    std::size_t size = 0;
    FILE *stream = ::open_memstream(&buffer, &size);
    if (stream == nullptr) {
        complain(self.name,
                 std::string("cannot make room for the rewrite: ") + std::strerror(errno));
        return exit_failure;
    }
    result = records.write(stream); // closes the stream
    std::string rewritten(buffer != nullptr ? buffer : "", size);
    std::free(buffer);
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
