// Runs a fuzz target over stored inputs: <program> <file or folder>...
// The name of each input is printed before it runs, so that the last one tells which input ended the process.
#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <string>
#include <vector>

#include "fuzz/FuzzTarget.h"

namespace {

namespace fs = std::filesystem;

std::vector<fs::path> InputsIn(const fs::path& place) {
    if (!fs::is_directory(place)) return {place};
    std::vector<fs::path> inputs;
    for (const fs::directory_entry& entry : fs::directory_iterator(place)) inputs.push_back(entry.path());
    std::sort(inputs.begin(), inputs.end());
    return inputs;
}

bool Run(const fs::path& input) {
    std::ifstream stream(input, std::ios::binary);
    if (!stream) return false;
    const std::string content{std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
    // Memory that ends with the input.
    const std::unique_ptr<std::uint8_t[]> bytes(new std::uint8_t[content.size()]);
    std::copy(content.begin(), content.end(), bytes.get());
    LLVMFuzzerTestOneInput(bytes.get(), content.size());
    return true;
}

}  // namespace

int main(int argc, char** argv) {
    if (LLVMFuzzerInitialize != nullptr) LLVMFuzzerInitialize(&argc, &argv);
    int count = 0;
    for (int i = 1; i < argc; ++i) {
        for (const fs::path& input : InputsIn(argv[i])) {
            std::fprintf(stderr, "%s\n", input.c_str());
            if (!Run(input)) {
                std::fprintf(stderr, "cannot be read\n");
                return 1;
            }
            ++count;
        }
    }
    if (count == 0) std::fprintf(stderr, "usage: %s <file or folder of inputs>...\n", argv[0]);
    return count != 0 ? 0 : 2;
}
