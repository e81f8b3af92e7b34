// A decoder plug-in and the chain behind it: the whole input is a sound file, which is opened in the manager, read as
// it is and converted by the soxr plug-in, and sought in. What is asked of it follows from the file's own bytes.
#include <pthread.h>
#include <sys/mman.h>
#include <unistd.h>

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "com/ComPtr.h"
#include "com/FeatureSupport.h"
#include "com/InterfaceIds.h"
#include "fuzz/FuzzTarget.h"
#include "fuzz/Require.h"
#include "sdk/Utf8.h"
#include "stream/LiveAggregators.h"
#include "stream/Process.h"
#include "stream/RawReader.h"
#include "stream/SourceDetails.h"
#include "tests/support/ManagerHold.h"
#include "tests/support/ScratchDirectory.h"

namespace {

// What is read of a sound at most, so that a few bytes that declare hours do not take their time.
constexpr int kMostReads = 64;
constexpr std::uint64_t kMostBytes = 1 << 20;

constexpr SWavFormat kWantedFormats[] = {{48000, 16, 2}, {44100, 24, 1}, {8000, 8, 1}, {96000, 32, 2}, {22050, 16, 6}};
constexpr int kBufferSizes[] = {4096, 65532, 512, 333};

bool HasDecoder(CAudioPluginMgr& manager) {
    CComPtr<IComponentEnum> decoders;
    return manager.Get(ACT_DECODER, decoders.Out()) && decoders->GetCount() > 0;
}

// A manager with the plug-in under test and the convertor, which stay loaded: some libraries leave memory behind when
// they are unloaded.
CAudioPluginMgr& Manager() {
    static const auto* const hold = [] {
        const CScratchDirectory scratch;
        for (const std::filesystem::path plugin : {KELO_FUZZED_PLUGIN, KELO_SOXR_PLUGIN}) {
            std::filesystem::create_symlink(plugin, scratch.Path() / plugin.filename());
        }
        const auto* const loaded = new support::CManagerHold;
        (*loaded)->SetPluginDirectory(scratch.Path().c_str());
        (*loaded)->LoadPlugins();
        IConvertorFactory* lent = nullptr;
        fuzz::Require(HasDecoder(*loaded->Get()), KELO_FUZZED_PLUGIN " has a decoder");
        fuzz::Require((*loaded)->GetConvertor(&lent) && lent != nullptr, KELO_SOXR_PLUGIN " has a convertor");
        return loaded;
    }();
    return *hold->Get();
}

// A file without a name that opens by a path.
class CMemoryFile {
public:
    CMemoryFile(const std::uint8_t* data, std::size_t size) : m_nDescriptor(memfd_create("sound", MFD_CLOEXEC)) {
        fuzz::Require(write(m_nDescriptor, data, size) == static_cast<ssize_t>(size), "the file is written");
    }
    ~CMemoryFile() { close(m_nDescriptor); }

    CMemoryFile(const CMemoryFile&) = delete;
    CMemoryFile& operator=(const CMemoryFile&) = delete;

    std::string Path() const { return "/proc/self/fd/" + std::to_string(m_nDescriptor); }

private:
    int m_nDescriptor;
};

// FNV-1a.
std::uint64_t HashOf(const std::uint8_t* data, std::size_t size) {
    std::uint64_t hash = 0xCBF29CE484222325;
    for (std::size_t i = 0; i < size; ++i) hash = (hash ^ data[i]) * 0x100000001B3;
    return hash ^ hash >> 32;
}

// A source with all its faces.
class CSource {
public:
    CSource(const std::string& path, const SWavFormat* wanted, int bufferSize)
        : m_buffer(static_cast<std::size_t>(bufferSize)), m_bConverts(wanted != nullptr) {
        CComPtr<IStatus> status;
        const bool opened =
            Manager().OpenURLAudioFile(path.c_str(), wanted, m_stream.Out(), -1, AUX_CONVERT, AUX_NONE, status.Out());
        fuzz::RequireEqual("whether there is a stream", bool{m_stream}, opened);
        fuzz::RequireEqual("whether there is a reason", bool{status}, !opened);
        if (!opened) return;
        m_process = CComPtr<IProcess>::Query(m_stream.Get(), IID_IProcess);
        m_reader = CComPtr<IAudioRawReader>::Query(m_stream.Get(), IID_IAudioRawReader);
        m_block = CComPtr<IAudioRawBlockInfo>::Query(m_stream.Get(), IID_IAudioRawBlockInfo);
        m_seekable = CComPtr<ISeekable>::Query(m_stream.Get(), IID_ISeekable);
    }

    bool IsOpen() const { return bool{m_stream}; }

    void CheckFormat() const {
        const SWavFormat format = m_reader->GetRawFormat();
        fuzz::Require(format.nSampleRate > 0 && format.nChannels > 0, "there are rate and channels");
        fuzz::Require(format.nBitsPerSample > 0 && format.nBitsPerSample % 8 == 0, "samples have whole bytes");
        fuzz::RequireEqual<long>("bytes per frame", m_block->GetBlockSize(), BlockSizeOf(format));
    }

    void CheckDetails() const {
        const auto info = CComPtr<IInfoReader>::Query(m_stream.Get(), IID_IInfoReader);
        if (info) {
            for (const char* const text :
                 {info->GetAlbum(), info->GetYear(), info->GetGenre(), info->GetArtist(), info->GetTitle()}) {
                fuzz::Require(text == nullptr || IsUtf8(text), "tags are UTF-8");
            }
        }
        const auto index = CComPtr<IIndexArray>::Query(m_stream.Get(), IID_IIndexArray);
        const int count = index->GetIndexNumber();
        for (int i = 0; i < count; ++i) index->GetIndex(i);
        fuzz::RequireEqual("the point behind the last one", index->GetIndex(count), kNoIndexPoint);
    }

    bool Start() const { return m_process->Start(nullptr); }
    void End() const { fuzz::Require(m_process->End(nullptr), "the stream ends"); }

    // To the end of the sound, or as far as it goes; how many bytes there were.
    std::uint64_t ReadOn() {
        std::uint64_t total = 0;
        EAudioRawState state = ARS_MORE;
        for (int i = 0; i < kMostReads && total < kMostBytes; ++i) {
            const std::uint64_t before = m_block->GetPos();
            int read = -1;
            if (!Read(read, state)) break;
            total += static_cast<std::uint64_t>(read);
            if (!m_bConverts) RequireMoved(before, read);
            if (read == 0 && state != ARS_MORE) {
                RequireEnd();
                break;
            }
        }
        return total;
    }

    void SeekTo(std::uint64_t choice) {
        if (!m_seekable) return;
        const std::uint64_t length = m_block->GetDataLength();
        const std::uint64_t before = m_block->GetPos();
        const std::uint64_t position = length == 0 ? choice % 100000 : choice % (length + 1);
        const bool found = m_seekable->Seek(position, nullptr);
        if (!m_bConverts) fuzz::RequireEqual("where a seek leads", m_block->GetPos(), found ? position : before);
    }

private:
    bool Read(int& read, EAudioRawState& state) {
        const int size = static_cast<int>(m_buffer.size());
        CComPtr<IStatus> status;
        if (!m_reader->RawRead(m_buffer.data(), size, &read, state, status.Out())) return false;
        fuzz::Require(read >= 0 && read <= size, "what is read fits");
        fuzz::Require(read % m_block->GetBlockSize() == 0, "whole frames are read");
        return true;
    }

    void RequireMoved(std::uint64_t before, int read) const {
        const auto frames = static_cast<std::uint64_t>(read / m_block->GetBlockSize());
        fuzz::RequireEqual("the position behind a read", m_block->GetPos(), before + frames);
    }

    // A sound that ends before its time would be an error.
    void RequireEnd() const {
        const std::uint64_t length = m_block->GetDataLength();
        if (!m_bConverts && length != 0) fuzz::RequireEqual("the position at the end", m_block->GetPos(), length);
    }

    CComPtr<IUnknown> m_stream;
    CComPtr<IProcess> m_process;
    CComPtr<IAudioRawReader> m_reader;
    CComPtr<IAudioRawBlockInfo> m_block;
    CComPtr<ISeekable> m_seekable;
    std::vector<unsigned char> m_buffer;
    bool m_bConverts;
};

// How many bytes were read, 0 of what cannot be played.
std::uint64_t Play(const std::string& path, const SWavFormat* wanted, std::uint64_t choice) {
    CSource source(path, wanted, kBufferSizes[choice % 4]);
    if (!source.IsOpen()) return 0;
    source.CheckFormat();
    source.CheckDetails();
    if (!source.Start()) return 0;
    std::uint64_t total = source.ReadOn();
    source.SeekTo(choice >> 8);
    total += source.ReadOn();
    source.End();
    return total;
}

// A decoder that refuses everything, or no way to convert, would let every input pass.
void RequireThatAGoodSoundPlays() {
    std::ifstream stream(KELO_GOOD_SOUND, std::ios::binary);
    const std::vector<std::uint8_t> content{std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
    const CMemoryFile file(content.data(), content.size());
    fuzz::Require(Play(file.Path(), nullptr, 0) > 0, KELO_GOOD_SOUND " plays as it is");
    fuzz::Require(Play(file.Path(), kWantedFormats, 0) > 0, KELO_GOOD_SOUND " plays converted");
}

}  // namespace

// libsndfile 1.2.0 leaves what libvorbis keeps of a stream whose later headers are broken.
extern "C" const char* __lsan_default_suppressions();
extern "C" const char* __lsan_default_suppressions() { return "leak:libvorbis.so\n"; }

extern "C" int LLVMFuzzerInitialize(int* /*argc*/, char*** /*argv*/) {
    RequireThatAGoodSoundPlays();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::uint64_t choice = HashOf(data, size);
    const CMemoryFile file(data, size);
    Manager().EnableSupport(AF_ADVANCED_FORMATS, (choice & 16) != 0);
    Play(file.Path(), nullptr, choice);
    Play(file.Path(), &kWantedFormats[choice % 5], choice >> 16);
    pthread_mutex_lock(&g_AggregatorsMutex);
    const std::int64_t alive = g_lAggregators;
    pthread_mutex_unlock(&g_AggregatorsMutex);
    fuzz::RequireEqual<long>("the count of streams alive", alive, 0);
    return 0;
}
