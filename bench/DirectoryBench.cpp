// Listing "*.so" among ten thousand entries beside a bare loop over readdir and fstatat.
#include <benchmark/benchmark.h>
#include <dirent.h>
#include <fcntl.h>
#include <stdlib.h>
#include <sys/stat.h>

#include <filesystem>
#include <fstream>
#include <memory>
#include <string>

#include "bench/CountedIterations.h"
#include "portable/DirEntry.h"
#include "portable/MatchMask.h"
#include "portable/PortableFile.h"

namespace {

constexpr int kEntries = 10000;
constexpr int kMatches = 1000;

// A directory in which every tenth file matches.
class CCrowdedDirectory {
public:
    CCrowdedDirectory() {
        std::string name = (std::filesystem::temp_directory_path() / "kelo-bench-XXXXXX").string();
        if (mkdtemp(name.data()) == nullptr) throw std::runtime_error("no directory: " + name);
        m_path = name;
        for (int i = 0; i < kEntries; ++i) {
            std::ofstream(m_path / ("entry" + std::to_string(i) + (i % (kEntries / kMatches) == 0 ? ".so" : ".txt")));
        }
    }
    ~CCrowdedDirectory() {
        std::error_code ignored;
        std::filesystem::remove_all(m_path, ignored);
    }

    CCrowdedDirectory(const CCrowdedDirectory&) = delete;
    CCrowdedDirectory& operator=(const CCrowdedDirectory&) = delete;

    std::string Path() const { return m_path.string(); }

private:
    std::filesystem::path m_path;
};

struct SCloseDirectory {
    void operator()(DIR* stream) const { closedir(stream); }
};

}  // namespace

static void BareListing(benchmark::State& state) {
    const CCrowdedDirectory directory;
    for (auto _ : state) {
        const std::unique_ptr<DIR, SCloseDirectory> stream(opendir(directory.Path().c_str()));
        int found = 0;
        while (const dirent64* entry = readdir64(stream.get())) {
            struct stat64 status;
            if (MatchMask("*.so", entry->d_name, 0) == 0) continue;
            if (fstatat64(dirfd(stream.get()), entry->d_name, &status, AT_SYMLINK_NOFOLLOW) == 0) ++found;
        }
        if (found != kMatches) state.SkipWithError("wrong number of entries");
    }
}
BENCHMARK(BareListing)->Apply(CountedIterations);

static void ListingByFindFirst(benchmark::State& state) {
    const CCrowdedDirectory directory;
    const std::string mask = directory.Path() + "/*.so";
    for (auto _ : state) {
        const std::unique_ptr<CDirEntry> search(CPortableFile::FindFirst(mask.c_str(), 0, 0, 0, 2));
        int found = 0;
        for (; search->IsValid() != 0; search->Next()) ++found;
        if (found != kMatches) state.SkipWithError("wrong number of entries");
    }
}
BENCHMARK(ListingByFindFirst)->Apply(CountedIterations);
