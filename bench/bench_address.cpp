// Address conversion is the library's hottest path: every database line
// goes through stox25, every look-up by address through equalx25.
#include "qx25.h"

#include <benchmark/benchmark.h>

namespace {

const char *const texts[] = {"3.23421234567", "3.23421234567.N.4711", "23421234567.X.AB", "0.123.P",
                             "12345678901234567"};

void BM_stox25(benchmark::State &state) {
    x25_address address;
    for (auto _ : state)
        for (const char *text : texts)
            benchmark::DoNotOptimize(stox25(text, &address, 0));
    state.SetItemsProcessed(state.iterations() * std::size(texts));
}
BENCHMARK(BM_stox25);

void BM_x25tos(benchmark::State &state) {
    x25_address address;
    stox25("3.23421234567.N.47110815", &address, 0);
    char text[X25_ADDRESS_TEXT_MAX];
    for (auto _ : state)
        benchmark::DoNotOptimize(x25tos(&address, text, 0));
}
BENCHMARK(BM_x25tos);

void BM_equalx25(benchmark::State &state) {
    x25_address a, b;
    stox25("3.23421234567.N.4711", &a, 0);
    stox25("3.23421234567.N.4711", &b, 0);
    for (auto _ : state)
        benchmark::DoNotOptimize(equalx25(&a, &b));
}
BENCHMARK(BM_equalx25);

} // namespace
