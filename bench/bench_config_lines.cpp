// Reading a configuration file line by line, comments included.
#include "qx25.h"

#include <benchmark/benchmark.h>

#include <cstdio>
#include <string>

namespace {

std::string make_file() {
    std::string text = "! generated\nIDENTIFICATION\n\tPRODUCT_NAME\tQuenlark X.25\nSECTION LINK\n";
    for (int i = 0; i < 1000; ++i)
        text += "! comment before keyword " + std::to_string(i) + "\n\tkeyword" +
                std::to_string(i) + "\t\tvalue " + std::to_string(i) + "\t! trailing\n";
    return text;
}

void BM_read_config_lines(benchmark::State &state) {
    std::string text = make_file();
    char path[] = "/tmp/qx25-bench-XXXXXX";
    int fd = mkstemp(path);
    FILE *out = fdopen(fd, "w");
    std::fwrite(text.data(), 1, text.size(), out);
    std::fclose(out);

    config_identification ids;
    for (auto _ : state) {
        FILE *stream = x25_open_config_file(path, &ids, 0);
        config_line line{};
        int lines = 0;
        for (;;) {
            line.comments[0] = line.trailer[0] = '\0';
            if (x25_read_config_line(stream, &line) != 0) break;
            ++lines;
        }
        std::fclose(stream);
        benchmark::DoNotOptimize(lines);
    }
    std::remove(path);
    state.SetItemsProcessed(state.iterations() * 1001);
}
BENCHMARK(BM_read_config_lines);

} // namespace
