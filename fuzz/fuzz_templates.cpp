// The four template file readers on any text. The first byte chooses the
// kind. Whatever a reader made of the file, the writer's file is written
// again byte for byte the same and reads back to the same record.
#include "qx25.h"

#include "fuzz_support.h"

#include <cstdint>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <iterator>
#include <memory>
#include <string>

using qx25fuzz::require;

namespace {

std::string contents(const std::string &path) {
    std::ifstream stream(path, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>());
}

template <typename Record> struct kind {
    int (*read)(const char *, Record *);
    int (*write)(const char *, Record *);
};

template <typename Record> void round_trip(const kind<Record> &of, const std::string &path) {
    auto first = std::make_unique<Record>();
    of.read(path.c_str(), first.get());

    std::string written = qx25fuzz::tree_root() + "/config/template/written";
    std::string again = qx25fuzz::tree_root() + "/config/template/again";
    require(of.write(written.c_str(), first.get()) == 0, "a template cannot be written");
    auto second = std::make_unique<Record>();
    int read_written = of.read(written.c_str(), second.get());
    require(of.write(again.c_str(), second.get()) == 0, "a template cannot be written again");
    require(contents(written) == contents(again), "a written template is written differently");
    auto third = std::make_unique<Record>();
    require(of.read(again.c_str(), third.get()) == read_written,
            "a rewritten template reads with another result");
    require(std::memcmp(second.get(), third.get(), sizeof(Record)) == 0,
            "a written template reads back to another record");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    static const bool ready = (qx25fuzz::silence_messages(), true);
    (void)ready;
    if (size < 1) return 0;
    std::string path = qx25fuzz::write_file("config/template/input", data + 1, size - 1);
    switch (data[0] & 3) {
    case 0:
        round_trip(kind<x25_template>{read_x25_template_parameter_file,
                                      write__x25_template_parameter_file},
                   path);
        break;
    case 1:
        round_trip(kind<lapb_template>{read_lapb_template_parameter_file,
                                       write_lapb_template_parameter_file},
                   path);
        break;
    case 2:
        round_trip(kind<llc2_template>{read_llc2_template_parameter_file,
                                       write_llc2_template_parameter_file},
                   path);
        break;
    default:
        round_trip(
            kind<wan_template>{read_wan_template_parameter_file, write_wan_template_parameter_file},
            path);
        break;
    }
    return 0;
}
