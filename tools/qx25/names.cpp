// What the commands of the name databases share.
#include "command.h"

#include "paths.h"

namespace qx25tool {

std::string address_text(const x25_address &address) {
    char text[256];
    return x25tos(&address, text, 0) == 0 ? text : "?";
}

std::string aliases_text(const xhost_entry &host) {
    std::string text;
    for (char **alias = host.xh_aliases; *alias != nullptr; ++alias)
        text += (text.empty() ? "" : " ") + std::string(*alias);
    return text;
}

std::string database_file(const char *name) {
    return std::string(qx25::config_dir()) + "/" + name;
}

bool database_readable(const command &self, const char *name) {
    std::string unreadable = unreadable_file(database_file(name), true);
    if (!unreadable.empty()) complain(self.name, unreadable);
    return unreadable.empty();
}

} // namespace qx25tool
