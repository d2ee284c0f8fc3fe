// x29profile on any text: the line reader keeps every line within its
// 1024-byte buffer, the profile look-up for the address of the first line
// stays within the record, and the item parser takes any line.
#include "qx25.h"

#include "fuzz_support.h"

#include <cstdint>
#include <cstdio>
#include <cstring>
#include <memory>
#include <string>

using qx25fuzz::require;

namespace {

constexpr std::size_t line_size = 1024;

void check_profile(const x29_profile &profile) {
    for (int i = 1; i < X29_PARAMETERS; ++i)
        require(profile.parameter_set[i] <= 1, "a parameter is neither set nor unset");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    static const bool ready = (qx25fuzz::silence_messages(), true);
    (void)ready;
    qx25fuzz::write_file("config/x29profile", data, size);

    auto line = std::make_unique<char[]>(line_size);
    auto profile = std::make_unique<x29_profile>();
    std::string first_address;
    if (FILE *stream = open_x29profile()) {
        for (int lines = 0; lines < 10000 && read_x29profile(line.get(), stream) == 1; ++lines) {
            require(std::memchr(line.get(), '\0', line_size) != nullptr,
                    "a profile line is not terminated");
            if (first_address.empty())
                first_address = std::string(line.get()).substr(0, std::strcspn(line.get(), " \t:"));
            std::memset(profile.get(), 0, sizeof *profile);
            parse_load_profile(line.get(), profile.get());
            check_profile(*profile);
        }
        std::fclose(stream);
    }

    std::memset(profile.get(), 0, sizeof *profile);
    if (stox25(first_address.c_str(), &profile->address, 0) == 0) {
        find_x29profile(profile.get());
        check_profile(*profile);
    }

    std::string text = qx25fuzz::as_text(data, size);
    std::memset(profile.get(), 0, sizeof *profile);
    parse_load_profile(text.data(), profile.get());
    check_profile(*profile);
    return 0;
}
