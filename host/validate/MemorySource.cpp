// The validator's own source, for convertors.
#include "host/validate/MemorySource.h"

#include <algorithm>
#include <cstring>
#include <utility>

#include "com/Aggregatable.h"
#include "com/QueryTable.h"
#include "host/validate/SampleSound.h"
#include "stream/Process.h"
#include "stream/RawReader.h"

namespace {

// The outer object shares the count, so there is nothing to pass on to it. [stream-thread]
class CMemorySource final : public CAggregatable, public IProcess, public IAudioRawReader, public IAudioRawBlockInfo {
public:
    CMemorySource(const SWavFormat& format, CBytes sound)
        : CAggregatable(0), m_format(format), m_sound(std::move(sound)) {}

    unsigned int AddRef() override { return InnerAddRef(); }
    unsigned int Release() override { return InnerRelease(); }
    int QueryInterface(unsigned long identity, void** face) override { return InnerQueryInterface(identity, face); }
    int InnerQueryInterface(unsigned long identity, void** face) override {
        return AnswerQuery(*this, identity, face,
                           {{IID_IUnknown, static_cast<IAggregatable*>(this)},
                            {IID_IAggregatable, static_cast<IAggregatable*>(this)},
                            {IID_IProcess, static_cast<IProcess*>(this)},
                            {IID_IAudioRawReader, static_cast<IAudioRawReader*>(this)},
                            {IID_IAudioRawBlockInfo, static_cast<IAudioRawBlockInfo*>(this)}});
    }

    bool Start(IStatus** /*status*/) override {
        m_nPlace = 0;
        m_bInProcess = true;
        return true;
    }
    bool End(IStatus** /*status*/) override { return std::exchange(m_bInProcess, false); }
    bool IsInProcess() override { return m_bInProcess; }

    SWavFormat GetRawFormat() override { return m_format; }
    bool RawRead(unsigned char* buffer, int size, int* read, EAudioRawState& state, IStatus** /*status*/) override {
        const int block = static_cast<int>(BlockSizeOf(m_format));
        const std::size_t bytes = std::min(static_cast<std::size_t>(size - size % block), m_sound.size() - m_nPlace);
        if (bytes > 0) std::memcpy(buffer, m_sound.data() + m_nPlace, bytes);
        m_nPlace += bytes;
        *read = static_cast<int>(bytes);
        state = bytes == 0 ? ARS_END : ARS_MORE;
        return true;
    }
    std::uint64_t GetRawLen() override { return m_sound.size(); }

    std::uint64_t GetPos() override { return m_nPlace / Block(); }
    std::int64_t GetBlockSize() override { return BlockSizeOf(m_format); }
    std::uint64_t GetDataLength() override { return m_sound.size() / Block(); }

private:
    std::size_t Block() const { return static_cast<std::size_t>(BlockSizeOf(m_format)); }

    SWavFormat m_format;
    CBytes m_sound;
    std::size_t m_nPlace = 0;
    bool m_bInProcess = false;
};

}  // namespace

CComPtr<IUnknown> MakeMemorySource(const SWavFormat& format, std::int64_t frames) {
    return CComPtr<IUnknown>(static_cast<IAggregatable*>(new CMemorySource(format, MakeSound(format, frames))));
}
