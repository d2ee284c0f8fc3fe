// qx25 call: the call string a PAD user's text turns into.
#include "command.h"

#include <iostream>

namespace qx25tool {

int run_call(const command &self, const arguments &args) {
    if (args.size() != 1) return usage_error(self, "one NAME or ADDRESS is taken");
    collect_messages(); // the class check reads the link's file
    const char *call = nullptr;
    // padtos, under the look-up, explains a refusal on standard error itself.
    with_messages_named(self.name, [&] { call = getpadbystr(args[0]); });
    complain_all(self.name, take_messages());
    if (call == nullptr) {
        // The library passes over a database it cannot open without a word.
        for (const char *database : {"xhosts", "padmapconf"})
            if (std::string unreadable = unreadable_file(database_file(database), true);
                !unreadable.empty())
                complain(self.name, unreadable);
        complain(self.name,
                 "'" + std::string(args[0]) + "' is neither a host of xhosts nor an X.25 address");
        return exit_failure;
    }
    std::cout << call << '\n';
    return exit_ok;
}

} // namespace qx25tool
