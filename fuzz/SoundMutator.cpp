// How libFuzzer changes sound files: anywhere or in their headers, and mostly with a frame that fits again.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <random>
#include <string>

#include "fuzz/ContainerRepair.h"

extern "C" std::size_t LLVMFuzzerMutate(std::uint8_t* data, std::size_t size, std::size_t maxSize);

namespace {

std::string Mutated(const std::string& piece, std::size_t maxSize) {
    std::string mutated = piece;
    mutated.resize(std::max(maxSize, piece.size()));
    mutated.resize(LLVMFuzzerMutate(reinterpret_cast<std::uint8_t*>(mutated.data()), piece.size(), mutated.size()));
    return mutated;
}

}  // namespace

extern "C" std::size_t LLVMFuzzerCustomMutator(std::uint8_t* data, std::size_t size, std::size_t maxSize,
                                               unsigned int seed) {
    std::minstd_rand random(seed);
    const std::string file(reinterpret_cast<const char*>(data), size);
    // Most decisions of a decoder are in the first bytes of a file, few of which the bytes of a whole file would hit.
    const std::size_t headers = random() % 2 == 0 ? std::min<std::size_t>(size, 16u << random() % 5) : size;
    const std::size_t growth = maxSize - size;
    std::string result = Mutated(file.substr(0, headers), headers + growth) + file.substr(headers);
    if (random() % 8 != 0) RepairContainer(result);
    std::copy(result.begin(), result.end(), data);
    return result.size();
}
