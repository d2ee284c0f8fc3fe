// Runs a harness over files and directories of inputs, without libFuzzer:
// the regression run of the test suite, under whichever compiler and
// sanitizers the build uses. Directories are read in name order.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size);

namespace {

void add_inputs(const std::filesystem::path &path, std::vector<std::filesystem::path> &inputs) {
    if (!std::filesystem::is_directory(path)) {
        inputs.push_back(path);
        return;
    }
    std::vector<std::filesystem::path> found;
    for (const auto &entry : std::filesystem::directory_iterator(path))
        if (entry.is_regular_file()) found.push_back(entry.path());
    std::sort(found.begin(), found.end());
    inputs.insert(inputs.end(), found.begin(), found.end());
}

} // namespace

int main(int argc, char **argv) {
    std::vector<std::filesystem::path> inputs;
    for (int i = 1; i < argc; ++i)
        add_inputs(argv[i], inputs);
    if (inputs.empty()) {
        std::fprintf(stderr, "%s: no inputs\n", argv[0]);
        return 1;
    }
    for (const auto &input : inputs) {
        std::ifstream stream(input, std::ios::binary);
        if (!stream) {
            std::fprintf(stderr, "%s: cannot read %s\n", argv[0], input.c_str());
            return 1;
        }
        std::vector<char> bytes((std::istreambuf_iterator<char>(stream)),
                                std::istreambuf_iterator<char>());
        // A copy of exactly the input's size, so that a read past its end is
        // caught as it is under libFuzzer.
        std::vector<std::uint8_t> data(bytes.begin(), bytes.end());
        auto *copy = new std::uint8_t[data.size() + (data.empty() ? 1 : 0)];
        std::copy(data.begin(), data.end(), copy);
        LLVMFuzzerTestOneInput(copy, data.size());
        delete[] copy;
    }
    std::printf("%s: %zu inputs ran\n", argv[0], inputs.size());
    return 0;
}
