// Address text and records: stox25 on any text, with and without the class
// check of the link it names; x25tos and equalx25 on any record. An address
// stox25 reads without a check is written by x25tos and read back equal,
// except a subnetwork number alone, which x25tos writes without its ".".
#include "qx25.h"

#include "fuzz_support.h"

#include <cstdint>
#include <cstring>
#include <memory>
#include <string>

using qx25fuzz::require;

namespace {

// Links of each address class the checks tell apart: 1 LAN, 2 WAN of 1980,
// 3 of 1984, 4 of 1988, 5 MLP.
void make_links() {
    qx25fuzz::write_boardconf();
    const char *const links[][2] = {{"1", "\tdevice eth0\n\tnetwork_type LAN\n"},
                                    {"2", "\tdevice wan0\n\tnetwork_type WAN80\n"},
                                    {"3", "\tdevice wan1\n\tnetwork_type WAN84\n"},
                                    {"4", "\tdevice wan2\n\tnetwork_type WAN88\n"},
                                    {"5", "\tdevice wan3\n\tnetwork_type MLP1\n"}};
    for (const auto &link : links)
        qx25fuzz::write_file(std::string("config/config/link_config_000") + link[0] + ".cfg",
                             std::string("IDENTIFICATION\nSECTION LINK\n") + link[1]);
}

// A record of exactly its own size on the heap, so that a read past it is
// caught.
std::unique_ptr<x25_address> record_from(const std::uint8_t *data, std::size_t size) {
    auto record = std::make_unique<x25_address>();
    std::memcpy(record.get(), data, size < sizeof *record ? size : sizeof *record);
    return record;
}

void text_to_record(const std::string &text, unsigned check) {
    x25_address address;
    std::memset(&address, 0xA5, sizeof address);
    int result = stox25(text.c_str(), &address, check);
    require(result == 0 || result == -1, "stox25 returns neither 0 nor -1");
    if (result != 0) return;
    require(address.dte_len <= 18 && address.ext_len <= 40 && address.ext_type <= 2,
            "stox25 accepted an address its record cannot hold");
    if (check != 0) return;
    if (address.snid != X25_NO_SNID && address.dte_len == 0 && address.ext_len == 0) return;

    auto written = std::make_unique<char[]>(X25_ADDRESS_TEXT_MAX);
    require(x25tos(&address, written.get(), 0) == 0, "x25tos refuses an address stox25 read");
    require(std::strlen(written.get()) < X25_ADDRESS_TEXT_MAX, "x25tos wrote past its maximum");
    x25_address again;
    require(stox25(written.get(), &again, 0) == 0, "stox25 refuses what x25tos wrote");
    require(equalx25(&address, &again) == 1, "an address does not read back equal");
}

void record_to_text(const std::uint8_t *data, std::size_t size, unsigned check) {
    auto address = record_from(data, size);
    auto written = std::make_unique<char[]>(X25_ADDRESS_TEXT_MAX);
    int result = x25tos(address.get(), written.get(), check);
    require(result == 0 || result == -1, "x25tos returns neither 0 nor -1");
    if (result == 0)
        require(std::strlen(written.get()) < X25_ADDRESS_TEXT_MAX, "x25tos wrote past its maximum");
    require(x25tos(address.get(), nullptr, check) == -1, "x25tos accepts a null buffer");
}

void compare_records(const std::uint8_t *data, std::size_t size) {
    auto a = record_from(data, size);
    auto b = record_from(size > sizeof(x25_address) ? data + sizeof(x25_address) : data,
                         size > sizeof(x25_address) ? size - sizeof(x25_address) : size);
    int forward = equalx25(a.get(), b.get());
    require(forward == equalx25(b.get(), a.get()), "equalx25 is not symmetric");
    require(equalx25(a.get(), a.get()) == 1, "a record differs from itself");
    int nibbles = data[0] % 41;
    require(x25add_equal(a->ext, b->ext, nibbles) == x25add_equal(b->ext, a->ext, nibbles),
            "x25add_equal is not symmetric");
}

} // namespace

// The first byte chooses the operation and the check flag; the rest is the
// text or the record(s).
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    static const bool ready = (qx25fuzz::silence_messages(), make_links(), true);
    (void)ready;
    if (size < 1) return 0;
    unsigned check = (data[0] >> 2) & 1;
    switch (data[0] & 3) {
    case 0:
    case 1:
        text_to_record(qx25fuzz::as_text(data + 1, size - 1), check);
        break;
    case 2:
        record_to_text(data + 1, size - 1, check);
        break;
    default:
        compare_records(data, size);
        break;
    }
    return 0;
}
