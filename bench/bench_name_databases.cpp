// The name database look-ups that X.25 applications make on every call
// set-up, against a bare fgets loop over the same file, at four file sizes
// to show how they grow.
#include "bench_tree.h"
#include "qx25.h"

#include <benchmark/benchmark.h>

#include <cstdio>
#include <string>

namespace {

void file_sizes(benchmark::internal::Benchmark *benchmark) {
    for (int lines : {100, 1000, 10000, 100000})
        benchmark->Arg(lines);
}

struct hosts_tree {
    qx25bench::bench_tree tree;
    std::string path;
    explicit hosts_tree(int count) : path(tree.write("xhosts", qx25bench::xhosts_text(count))) {}
};

// The name on the last line: every look-up reads the whole file.
void BM_getxhostbyname(benchmark::State &state) {
    int count = static_cast<int>(state.range(0));
    hosts_tree hosts(count);
    std::string name = qx25bench::host_name(count - 1);
    for (auto _ : state)
        if (getxhostbyname(name.c_str()) == nullptr) state.SkipWithError("host not found");
    state.SetItemsProcessed(state.iterations() * count);
}
BENCHMARK(BM_getxhostbyname)->Apply(file_sizes);

void BM_getxhostbyaddr(benchmark::State &state) {
    int count = static_cast<int>(state.range(0));
    hosts_tree hosts(count);
    x25_address address;
    stox25(qx25bench::host_address(count - 1).c_str(), &address, 0);
    for (auto _ : state)
        if (getxhostbyaddr(&address, sizeof address, 1) == nullptr)
            state.SkipWithError("address not found");
    state.SetItemsProcessed(state.iterations() * count);
}
BENCHMARK(BM_getxhostbyaddr)->Apply(file_sizes);

// What an application could do with no library: open the file, read every
// line with fgets, close it.
void BM_fgets_loop(benchmark::State &state) {
    int count = static_cast<int>(state.range(0));
    hosts_tree hosts(count);
    for (auto _ : state) {
        FILE *stream = std::fopen(hosts.path.c_str(), "r");
        char line[1025];
        int lines = 0;
        while (std::fgets(line, sizeof line, stream) != nullptr)
            ++lines;
        std::fclose(stream);
        benchmark::DoNotOptimize(lines);
    }
    state.SetItemsProcessed(state.iterations() * count);
}
BENCHMARK(BM_fgets_loop)->Apply(file_sizes);

// The call string of the last host of 10,000, whose PAD map entry is the
// last of 10,000 and whose link is one of 255: the host, link discovery and
// the PAD map are each read whole.
void BM_getpadbystr(benchmark::State &state) {
    constexpr int hosts = 10000;
    qx25bench::bench_tree tree;
    qx25bench::write_links(tree, 255);
    tree.write("xhosts", qx25bench::xhosts_text(hosts));
    tree.write("padmapconf", qx25bench::padmap_text(hosts));
    std::string name = qx25bench::host_name(hosts - 1);
    x25_set_parse_error_function([](const char *) { return 0; });
    for (auto _ : state)
        if (getpadbystr(name.c_str()) == nullptr) state.SkipWithError("no call string");
}
BENCHMARK(BM_getpadbystr)->Unit(benchmark::kMillisecond);

struct subnet_tree {
    qx25bench::bench_tree tree;
    subnet_tree() { qx25bench::write_links(tree, 255); }
};

// The last link by its alias name and by its number.
void BM_getsubnetbyname(benchmark::State &state) {
    subnet_tree links;
    setsubnetent();
    std::string name;
    for (const subnet_entry *entry = getsubnetent(); entry != nullptr; entry = getsubnetent())
        if (entry->name != nullptr) name = entry->name;
    endsubnetent();
    for (auto _ : state)
        if (getsubnetbyname(name.c_str()) == nullptr) state.SkipWithError("no such subnetwork");
}
BENCHMARK(BM_getsubnetbyname)->Unit(benchmark::kMillisecond);

void BM_getsubnetbyid(benchmark::State &state) {
    subnet_tree links;
    for (auto _ : state)
        if (getsubnetbyid(254) == nullptr) state.SkipWithError("no such subnetwork");
}
BENCHMARK(BM_getsubnetbyid)->Unit(benchmark::kMillisecond);

} // namespace
