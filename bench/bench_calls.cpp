// One call of each look-up on the benchmark files, each between two
// getppid() calls, for scripts/bench to count the system calls of each
// under strace. Prints the names of the calls in order.
#include "bench_tree.h"
#include "qx25.h"

#include <cstdio>
#include <string>
#include <unistd.h>

namespace {

int ignore_message(const char *) {
    return 0;
}

template <typename Call> void counted(const char *name, Call call) {
    std::printf("%s\n", name);
    ::getppid();
    call();
    ::getppid();
}

} // namespace

int main() {
    qx25bench::bench_tree tree;
    qx25bench::write_links(tree, 255);
    tree.write("xhosts", qx25bench::xhosts_text(100));
    tree.write("padmapconf", qx25bench::padmap_text(100));
    x25_set_parse_error_function(ignore_message);

    counted("x25_find_link_parameters, 255 links", [] {
        link_node *head = nullptr;
        x25_find_link_parameters(&head);
        qx25bench::release_chain(head);
    });
    counted("getxhostbyname, 100 lines", [] { getxhostbyname("host99"); });
    counted("fgets loop, 100 lines", [&tree] {
        FILE *stream = std::fopen(tree.path("xhosts").c_str(), "r");
        char line[1025];
        while (std::fgets(line, sizeof line, stream) != nullptr) {
        }
        std::fclose(stream);
    });
    counted("getpadbystr, 255 links", [] { getpadbystr("host99"); });
    counted("x25_read_config_parameters, one link, LINK only", [] {
        config_identification ids;
        link_section link{};
        int mode = 0;
        x25_read_config_parameters(1, &ids, &link, nullptr, nullptr, nullptr, nullptr, nullptr,
                                   &mode);
        free_link_comments(&link);
        free_link_item(&link.values);
    });
    return 0;
}
