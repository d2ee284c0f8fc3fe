// The name database look-ups that X.25 applications make on every call
// set-up, against a bare fgets loop over the same file.
#include "qx25.h"

#include <benchmark/benchmark.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <string>

namespace {

constexpr int host_count = 10000;

// A configuration directory with an xhosts file of 10,000 hosts, the one
// looked for last.
class hosts_file {
  public:
    hosts_file() {
        std::string pattern = (std::filesystem::temp_directory_path() / "qx25-bench-XXXXXX");
        directory_ = ::mkdtemp(pattern.data());
        std::ofstream out(directory_ + "/xhosts");
        for (int i = 0; i < host_count; ++i)
            out << "3.2342" << 100000 + i << "\thost" << i << "\talias" << i << ",other" << i
                << "\n";
        ::setenv("X25CONFIGFILES", directory_.c_str(), 1);
    }
    ~hosts_file() { std::filesystem::remove_all(directory_); }
    std::string path() const { return directory_ + "/xhosts"; }

  private:
    std::string directory_;
};

const std::string last_host = "host" + std::to_string(host_count - 1);

void BM_getxhostbyname(benchmark::State &state) {
    hosts_file file;
    for (auto _ : state)
        benchmark::DoNotOptimize(getxhostbyname(last_host.c_str()));
}
BENCHMARK(BM_getxhostbyname);

// What an application could do with no library: open, read every line with
// fgets, look for the name, close.
void BM_bare_fgets_loop(benchmark::State &state) {
    hosts_file file;
    std::string path = file.path();
    for (auto _ : state) {
        FILE *stream = std::fopen(path.c_str(), "r");
        char line[1025];
        bool found = false;
        while (std::fgets(line, sizeof line, stream) != nullptr)
            if (std::strstr(line, last_host.c_str()) != nullptr) found = true;
        std::fclose(stream);
        benchmark::DoNotOptimize(found);
    }
}
BENCHMARK(BM_bare_fgets_loop);

} // namespace
