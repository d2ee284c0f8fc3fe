// Address conversion, the library's hottest path, against the C library's
// conversion of IPv6 addresses: every benchmark of a pair converts the same
// number of addresses per iteration, so the ratio of their times is the
// ratio per address.
#include "bench_tree.h"
#include "qx25.h"

#include <arpa/inet.h>
#include <benchmark/benchmark.h>

#include <array>

namespace {

// The forms applications and the databases write: subnetwork and DTE, with
// an NSAP or non-NSAP extension, without a subnetwork, a PVC, a LAN MAC
// address and LSAP, a wildcard, a subnetwork alone, 17 digits.
constexpr std::array<const char *, 8> x25_texts = {"3.23421234567",
                                                   "3.23421234567.N.4711",
                                                   "23421234567.X.AB",
                                                   "0.123.P",
                                                   "7.080020A1B2C3FE",
                                                   "3.2342*",
                                                   "3.",
                                                   "12345678901234567"};

constexpr std::array<const char *, 8> ipv6_texts = {"2001:db8::1",
                                                    "fe80::1ff:fe23:4567:890a",
                                                    "::1",
                                                    "2001:db8:85a3::8a2e:370:7334",
                                                    "::ffff:192.0.2.128",
                                                    "2001:db8:0:1:1:1:1:1",
                                                    "ff02::2",
                                                    "2001:db8:aaaa:bbbb:cccc:dddd:eeee:1"};

// Links 0 (WAN), 3 (WAN) and 7 (LAN) for the class checks.
struct checked_links {
    qx25bench::bench_tree tree;
    checked_links() {
        qx25bench::write_links(tree, 8);
        // link_text gives LAN for multiples of three: make 3 a WAN link and
        // 7 the LAN link the MAC address needs.
        tree.write("config/link_config_0003.cfg", qx25bench::link_text(1));
        tree.write("config/link_config_0007.cfg", qx25bench::link_text(0));
    }
};

void convert_to_records(benchmark::State &state, unsigned check) {
    x25_address address;
    for (auto _ : state)
        for (const char *text : x25_texts)
            benchmark::DoNotOptimize(stox25(text, &address, check));
    state.SetItemsProcessed(state.iterations() * x25_texts.size());
}

void BM_stox25(benchmark::State &state) {
    convert_to_records(state, 0);
}
BENCHMARK(BM_stox25);

// With the class check, an address with a subnetwork number reads SECTION
// LINK of that link's file: the check costs a file read.
void BM_stox25_checked(benchmark::State &state) {
    checked_links links;
    convert_to_records(state, 1);
}
BENCHMARK(BM_stox25_checked);

void BM_inet_pton(benchmark::State &state) {
    in6_addr address;
    for (auto _ : state)
        for (const char *text : ipv6_texts)
            benchmark::DoNotOptimize(inet_pton(AF_INET6, text, &address));
    state.SetItemsProcessed(state.iterations() * ipv6_texts.size());
}
BENCHMARK(BM_inet_pton);

std::array<x25_address, x25_texts.size()> parsed_addresses() {
    std::array<x25_address, x25_texts.size()> addresses{};
    for (std::size_t i = 0; i < x25_texts.size(); ++i)
        stox25(x25_texts[i], &addresses[i], 0);
    return addresses;
}

void convert_to_texts(benchmark::State &state, unsigned check) {
    auto addresses = parsed_addresses();
    char text[X25_ADDRESS_TEXT_MAX];
    for (auto _ : state)
        for (const x25_address &address : addresses) {
            benchmark::DoNotOptimize(x25tos(&address, text, check));
            benchmark::ClobberMemory();
        }
    state.SetItemsProcessed(state.iterations() * addresses.size());
}

void BM_x25tos(benchmark::State &state) {
    convert_to_texts(state, 0);
}
BENCHMARK(BM_x25tos);

void BM_x25tos_checked(benchmark::State &state) {
    checked_links links;
    convert_to_texts(state, 1);
}
BENCHMARK(BM_x25tos_checked);

void BM_inet_ntop(benchmark::State &state) {
    std::array<in6_addr, ipv6_texts.size()> addresses{};
    for (std::size_t i = 0; i < ipv6_texts.size(); ++i)
        inet_pton(AF_INET6, ipv6_texts[i], &addresses[i]);
    char text[INET6_ADDRSTRLEN];
    for (auto _ : state)
        for (const in6_addr &address : addresses) {
            benchmark::DoNotOptimize(inet_ntop(AF_INET6, &address, text, sizeof text));
            benchmark::ClobberMemory();
        }
    state.SetItemsProcessed(state.iterations() * addresses.size());
}
BENCHMARK(BM_inet_ntop);

void BM_equalx25(benchmark::State &state) {
    x25_address a, b;
    stox25("3.23421234567.N.4711", &a, 0);
    stox25("3.23421234567.N.4711", &b, 0);
    for (auto _ : state)
        benchmark::DoNotOptimize(equalx25(&a, &b));
}
BENCHMARK(BM_equalx25);

} // namespace
