// qx25 ident: the IDENTIFICATION block of a link configuration file.
#include "command.h"

#include "qx25.h"

#include <cstring>
#include <iostream>
#include <string_view>

namespace qx25tool {

namespace {

void field(std::string_view name, const char *value, std::size_t width) {
    std::cout << name << std::string(17 - name.size(), ' ')
              << visible(std::string_view(value, ::strnlen(value, width))) << '\n';
}

} // namespace

int run_ident(const command &self, const arguments &args) {
    if (args.size() != 1) return usage_error(self, "one LINK or FILE is needed");
    std::string name, path;
    if (!name_link_file(args[0], name, path)) {
        complain(self.name, std::string("'") + args[0] + "' names no link file");
        return exit_failure;
    }

    config_identification ids;
    FILE *stream = x25_open_config_file(path.c_str(), &ids, 0);
    if (stream == nullptr) {
        // The library said why; what CRLF line ends did, it cannot say.
        if (std::string note = crlf_note(path); !note.empty()) complain(self.name, note);
        return exit_failure;
    }
    // The first SECTION line waits in the reader's push-back: take it back
    // before the stream goes away.
    config_line line{};
    x25_read_config_line(stream, &line);
    std::fclose(stream);

    field("file", path.c_str(), path.size());
    field("PRODUCT_NAME", ids.product_name, sizeof ids.product_name);
    field("PRODUCT_VERSION", ids.product_version, sizeof ids.product_version);
    field("FILE_TYPE", ids.file_type, sizeof ids.file_type);
    field("MODIFIED_BY", ids.modified_by, sizeof ids.modified_by);
    field("FILE_DATE", ids.file_date, sizeof ids.file_date);
    if (ids.comments[0] != '\0') {
        std::cout << "comments:\n";
        std::string_view comments(ids.comments, ::strnlen(ids.comments, sizeof ids.comments));
        while (!comments.empty()) {
            std::size_t end = comments.find('\n');
            std::cout << "  !" << visible(comments.substr(0, end)) << '\n';
            comments.remove_prefix(end == std::string_view::npos ? comments.size() : end + 1);
        }
    }
    return exit_ok;
}

} // namespace qx25tool
