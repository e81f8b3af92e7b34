// The pages of an Ogg file.
#include "plugins/sndfile/OggPages.h"

#include <algorithm>
#include <vector>

namespace {

// RFC 3533, 6: 27 bytes, of which 5 is the header type, 6 the granule position, 14 the stream's serial number, 26 the
// count of lacing values that follow.
constexpr std::size_t kHeaderBytes = 27;
constexpr std::uint64_t kNoGranule = ~std::uint64_t{0};  // no packet ends in the page
constexpr char kBeginOfStream = 2;
constexpr char kEndOfStream = 4;
constexpr std::uint64_t kMostPageBytes = 65307;

struct SPage {
    std::uint64_t m_nEnd;
    std::uint64_t m_nGranule;
    std::uint64_t m_nSerial;
    bool m_bBeginsStream;
    bool m_bEndsStream;
    bool m_bEndsInPacket;
};

// The page at `at`, if its whole header is there.
std::optional<SPage> PageAt(CFileBytes& file, std::uint64_t at) {
    const std::string_view header = file.At(at, kHeaderBytes + 255);
    if (header.size() < kHeaderBytes || header.substr(0, 4) != "OggS" || header[4] != 0) return std::nullopt;
    const std::size_t count = static_cast<unsigned char>(header[26]);
    if (header.size() < kHeaderBytes + count) return std::nullopt;
    const std::string_view lacing = header.substr(kHeaderBytes, count);
    std::uint64_t end = at + kHeaderBytes + count;
    for (const char value : lacing) end += static_cast<unsigned char>(value);
    return SPage{end,
                 FromLittleEndian(header.substr(6, 8)),
                 FromLittleEndian(header.substr(14, 4)),
                 (header[5] & kBeginOfStream) != 0,
                 (header[5] & kEndOfStream) != 0,
                 !lacing.empty() && lacing.back() == '\xFF'};
}

// From `at` on; `limit` when there is none before.
std::uint64_t FindCapture(CFileBytes& file, std::uint64_t at, std::uint64_t limit) {
    constexpr std::size_t kStep = 4096;
    while (at < limit) {
        const std::string_view bytes = file.At(at, kStep);
        const std::size_t found = bytes.find("OggS");
        if (found != std::string_view::npos) return std::min(at + found, limit);
        if (bytes.size() < kStep) break;
        at += kStep - 3;
    }
    return limit;
}

// A page that another one or the end of the file follows: no chance find. `limit` when it does not begin below that.
std::uint64_t FindPage(CFileBytes& file, std::uint64_t at, std::uint64_t limit) {
    for (;; ++at) {
        at = FindCapture(file, at, limit);
        if (at >= limit) return limit;
        const auto page = PageAt(file, at);
        if (page && (page->m_nEnd >= file.Size() || file.At(page->m_nEnd, 4) == "OggS")) return at;
    }
}

// None where the page before is of another stream or is not seen.
std::optional<std::uint64_t> GranulesAfter(const std::optional<SPage>& before, const SPage& page) {
    if (!before || before->m_nSerial != page.m_nSerial || before->m_nGranule > page.m_nGranule) return std::nullopt;
    return page.m_nGranule - before->m_nGranule;
}

// The streams whose first pages stand together at the beginning, and where the other pages begin.
struct SFirstPages {
    std::vector<std::uint64_t> m_vSerials;
    std::uint64_t m_nEnd = 0;
};

SFirstPages FirstPages(CFileBytes& file) {
    SFirstPages first;
    for (;;) {
        const auto page = PageAt(file, first.m_nEnd);
        if (!page || !page->m_bBeginsStream) return first;
        first.m_vSerials.push_back(page->m_nSerial);
        first.m_nEnd = page->m_nEnd;
    }
}

// Goes from header to header, over no more than two pages of what is none.
bool BeginsStreamBehind(CFileBytes& file, std::uint64_t at) {
    std::uint64_t others = 2 * kMostPageBytes;
    while (at < file.Size() && others > 0) {
        const auto page = PageAt(file, at);
        if (page && page->m_bBeginsStream) return true;
        const std::uint64_t next = page ? page->m_nEnd : FindPage(file, at + 1, std::min(file.Size(), at + others));
        if (!page) others -= next - at;
        at = next;
    }
    return false;
}

}  // namespace

SOggEnd FindOggEnd(CFileBytes& file) {
    const std::uint64_t size = file.Size();
    const std::uint64_t from = size > 2 * kMostPageBytes ? size - 2 * kMostPageBytes : 0;
    SOggEnd end;
    std::optional<SPage> last;
    std::optional<SPage> lastMarked;
    for (std::uint64_t at = FindPage(file, from, size); at < size;) {
        const auto page = PageAt(file, at);
        if (page && page->m_nEnd > size) break;
        if (!page) {
            at = FindPage(file, at + 1, size);
            continue;
        }
        if (page->m_nGranule != kNoGranule) {
            end.m_lastPage = GranulesAfter(lastMarked, *page);
            lastMarked = page;
        }
        last = page;
        at = end.m_nAt = page->m_nEnd;
        end.m_nSerial = page->m_nSerial;
    }
    const bool complete = last && last->m_bEndsStream;
    const bool inPacket = last && last->m_bEndsInPacket;
    const bool inPage = end.m_nAt < size && (!complete || file.At(end.m_nAt, 4) == "OggS");
    end.m_bCutShort = inPage || (inPacket && !complete);
    return end;
}

bool IsOggChain(CFileBytes& file, const SOggEnd& end) {
    const SFirstPages first = FirstPages(file);
    const std::vector<std::uint64_t>& serials = first.m_vSerials;
    if (serials.empty() || end.m_nAt == 0) return false;
    return std::find(serials.begin(), serials.end(), end.m_nSerial) == serials.end() ||
           BeginsStreamBehind(file, first.m_nEnd);
}
