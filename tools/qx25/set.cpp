// qx25 set: gives one keyword of one section of a link a new value by
// editing the one line of its file that holds it (or by adding one line),
// and puts the new file in place atomically, the previous one kept as
// FILE.BAK. The file is read back afterwards and put back when it does not
// read as planned.
#include "atomic_file.h"
#include "command.h"
#include "keyword_edit.h"
#include "unified_diff.h"

#include <cstdlib>
#include <cstring>
#include <iostream>
#include <memory>
#include <string>

namespace qx25tool {

namespace {

// Highest link number a link file written by number can carry.
constexpr unsigned long last_link_number = 254;

struct set_request {
    bool dry_run = false;
    int link = 0;
    edit_target target;
    const char *keyword = nullptr;
    const char *value = nullptr;
};

// The request, or the exit status of a wrong call.
int parse(const command &self, std::span<char *const> args, set_request &request) {
    while (!args.empty() && std::strcmp(args[0], "--dry-run") == 0) {
        request.dry_run = true;
        args = args.subspan(1);
    }
    if (args.size() != 4) return usage_error(self, "LINK, SECTION, KEYWORD and VALUE are needed");
    const char *link = args[0];
    if (!is_number(link) || std::strtoul(link, nullptr, 10) > last_link_number)
        return usage_error(self, "LINK must be a link number from 0 to 254");
    request.link = static_cast<int>(std::strtoul(link, nullptr, 10));
    std::optional<edit_target> target = target_named(args[1]);
    if (!target)
        return usage_error(self, std::string("unknown section '") + args[1] +
                                     "': link, x25, llc2, lapb, wan, mlp, lapb1 to lapb5 or "
                                     "wan1 to wan5");
    request.target = *target;
    request.keyword = keyword_named(request.target, args[2]);
    if (request.keyword == nullptr)
        return usage_error(self, std::string("'") + args[2] + "' is not a keyword of " +
                                     request.target.title);
    request.value = args[3];
    if (std::optional<std::string> problem = value_problem(request.value))
        return usage_error(self, *problem);
    return exit_ok;
}

// The file a path names, through symbolic links; the path itself when that
// cannot be found out.
std::string real_path(const std::string &path) {
    std::unique_ptr<char, decltype(&std::free)> resolved(::realpath(path.c_str(), nullptr),
                                                         &std::free);
    return resolved != nullptr ? std::string(resolved.get()) : path;
}

// Compares the file read back with what was planned; what differs, or empty.
std::string read_back(const std::string &name, const keyword_edit &edit) {
    reading back = read_link_file(name);
    if (back.result != 0)
        return "it cannot be read: " +
               (back.messages.empty() ? std::strerror(back.result) : back.messages.front());
    if (std::optional<std::string> difference = first_difference(edit.expected, back.parts))
        return "its " + *difference + " is not as planned";
    if (back.messages != edit.expected_messages) return "the library reports other problems";
    return {};
}

} // namespace

int run_set(const command &self, std::span<char *const> args) {
    set_request request;
    if (int status = parse(self, args, request); status != exit_ok) return status;
    const edit_target &target = request.target;
    std::string name, path;
    name_link_file(std::to_string(request.link).c_str(), name, path);
    std::string unchanged = "link " + std::to_string(request.link) + " not changed";

    std::string text, failure;
    struct stat status {};
    if (!read_link_text(path, text, status, failure)) {
        complain(self.name, failure);
        complain(self.name, unchanged);
        return exit_failure;
    }
    keyword_edit edit = plan_keyword_edit(text, path, target, request.keyword, request.value);
    std::string what =
        "link " + std::to_string(request.link) + ": " + target.title + ' ' + request.keyword;
    switch (edit.outcome) {
    case edit_outcome::refused:
        if (complain_all(self.name, edit.messages))
            complain(self.name, unchanged);
        else
            complain(self.name, unchanged + ": " + edit.reason);
        return exit_failure;
    case edit_outcome::unchanged:
        if (edit.old_value)
            std::cout << what << " is " << *edit.old_value << " already; file not changed\n";
        else
            std::cout << what << " has that value already (by default); file not changed\n";
        return exit_ok;
    case edit_outcome::changed:
        break;
    }
    if (request.dry_run) {
        std::cout << unified_diff(text, edit.new_text, path, path);
        return exit_ok;
    }

    // The file must still be the one the edit was planned on.
    std::string now;
    if (!read_link_text(path, now, status, failure) || now != text) {
        complain(self.name, unchanged + ": " + path + " changed while it was being edited");
        return exit_failure;
    }
    // A symbolic link stays one: the file it names is replaced.
    std::string file = real_path(path);
    std::string backup = file + ".BAK";
    replacement done = replace_file(file, edit.new_text, status, backup, text);
    if (!done.replaced) {
        complain(self.name, unchanged + ": " + done.failure);
        return exit_failure;
    }
    if (std::string wrong = read_back(name, edit); !wrong.empty()) {
        replacement restored = replace_file(file, text, status);
        complain(self.name, "the new " + path + " does not read as planned: " + wrong);
        if (restored.replaced)
            complain(self.name, unchanged + ": the previous file is put back");
        else
            complain(self.name, "cannot put the previous file back: " + restored.failure +
                                    "; it is kept as " + backup);
        return exit_failure;
    }
    if (edit.added)
        std::cout << what << ' ' << request.value << " added";
    else
        std::cout << what << ' ' << *edit.old_value << " -> " << request.value;
    std::cout << " (line " << edit.line << "); previous file kept as " << backup << '\n';
    if (!done.failure.empty()) {
        // The new file is in place, but may not be on disk yet.
        complain(self.name, done.failure);
        return exit_failure;
    }
    return exit_ok;
}

} // namespace qx25tool
