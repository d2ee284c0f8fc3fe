// Link configuration files: discovery of every link against reading the
// same bytes with read(2), and reading, writing and updating one fully
// populated link file and the X.25 template.
#include "bench_tree.h"
#include "command.h"
#include "qx25.h"

#include <benchmark/benchmark.h>

#include <cstdio>
#include <dirent.h>
#include <fcntl.h>
#include <string>
#include <unistd.h>

namespace {

int ignore_message(const char *) {
    return 0;
}

void link_counts(benchmark::internal::Benchmark *benchmark) {
    for (int links : {1, 16, 255})
        benchmark->Arg(links);
}

// Discovery and the release of the chain it builds.
void BM_find_link_parameters(benchmark::State &state) {
    qx25bench::bench_tree tree;
    qx25bench::write_links(tree, static_cast<int>(state.range(0)));
    x25_set_parse_error_function(ignore_message);
    for (auto _ : state) {
        link_node *head = nullptr;
        if (x25_find_link_parameters(&head) != 0) state.SkipWithError("discovery failed");
        qx25bench::release_chain(head);
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(BM_find_link_parameters)->Apply(link_counts);

std::size_t read_whole(const std::string &path, char *buffer, std::size_t size) {
    int fd = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
    if (fd == -1) return 0;
    std::size_t total = 0;
    for (ssize_t got; (got = ::read(fd, buffer, size)) > 0;)
        total += static_cast<std::size_t>(got);
    ::close(fd);
    return total;
}

// The bytes discovery reads, with nothing done to them: boardconf, every
// link file of the directory and pvcmapconf.
void BM_read_link_bytes(benchmark::State &state) {
    qx25bench::bench_tree tree;
    qx25bench::write_links(tree, static_cast<int>(state.range(0)));
    std::string directory = tree.path("config");
    static char buffer[65536];
    for (auto _ : state) {
        std::size_t total = read_whole(tree.path("boardconf"), buffer, sizeof buffer);
        DIR *entries = ::opendir(directory.c_str());
        for (const dirent *entry = ::readdir(entries); entry != nullptr; entry = ::readdir(entries))
            if (entry->d_name[0] != '.')
                total += read_whole(directory + "/" + entry->d_name, buffer, sizeof buffer);
        ::closedir(entries);
        total += read_whole(tree.path("pvcmapconf"), buffer, sizeof buffer);
        benchmark::DoNotOptimize(total);
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(BM_read_link_bytes)->Apply(link_counts);

// One fully populated MLP link (five subsections at most, every keyword,
// comments).
struct one_link {
    qx25bench::bench_tree tree;
    std::string path;
    one_link() {
        qx25bench::write_links(tree, 3);
        path = tree.path("config/link_config_0002.cfg");
    }
};

void BM_read_link_file(benchmark::State &state) {
    one_link link;
    for (auto _ : state) {
        qx25tool::link_records records;
        if (records.read(link.path.c_str()) != 0) state.SkipWithError("read failed");
    }
}
BENCHMARK(BM_read_link_file);

void BM_write_link_file(benchmark::State &state) {
    one_link link;
    qx25tool::link_records records;
    records.read(link.path.c_str());
    std::string copy = link.tree.path("config/link_config_0009.cfg");
    link_config &c = records.config;
    for (auto _ : state)
        if (x25_write_config_parameter_file_x32(copy.c_str(), &c.ids, &c.link, &c.x25, &c.mlp,
                                                nullptr, nullptr, nullptr, &records.x25_x32,
                                                nullptr, records.mlp_x32) != 0)
            state.SkipWithError("write failed");
}
BENCHMARK(BM_write_link_file);

// Replacing SECTION X25 of the link's file: read, replace, write back.
void BM_update_link(benchmark::State &state) {
    one_link link;
    qx25tool::link_records records;
    records.read(link.path.c_str());
    for (auto _ : state)
        if (x25_update_link(2, &records.config.x25, SECTION_X25) != 0)
            state.SkipWithError("update failed");
}
BENCHMARK(BM_update_link);

// A complete X.25 template, one value a line.
constexpr const char *x25_template_text =
    "5\n88\n1\n001\n002\n000\n000\n010\n01f\n000\n000\n8\n8\n8\n7\n7\n7\n7\n2\n2\n"
    "4096\n10\n1800\n2000\n1800\n1800\n600\n100\n200\n0\n0\n1\n1\n1\n0\n0\n15\n15\n"
    "10\n9\n3\n3\nY\nN\nY\nN\n0\nN\nY\nN\nY\nN\nN\nN\nN\nN\nY\nN\nN\nN\nY\nN\nN\nN\n"
    "N\nY\n2\nY\n2342\n1\n4\n2\n0\n1\n2\n0\nY\n1\n2.2.2.3.3.3.4.4.5.5.5.5.5.5.5.5\n"
    "4.4.5.5.6.6.7.7.7.7.7.7.7.7.7.7\n";

// Link 3's working template.
struct template_tree {
    qx25bench::bench_tree tree;
    x25_template record{};
    template_tree() {
        tree.write("template/LINK003_working.x25", x25_template_text);
        read_x25_template_parameters(3, &record);
        record.link = 3;
    }
};

void BM_x25_template_write(benchmark::State &state) {
    template_tree tree;
    for (auto _ : state)
        if (write__x25_template_parameters(&tree.record) != 0) state.SkipWithError("write failed");
}
BENCHMARK(BM_x25_template_write);

void BM_x25_template_read(benchmark::State &state) {
    template_tree tree;
    x25_template record{};
    for (auto _ : state)
        if (read_x25_template_parameters(3, &record) != 0) state.SkipWithError("read failed");
}
BENCHMARK(BM_x25_template_read);

} // namespace
