// A decoder stream at work.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "com/ComPtr.h"
#include "com/InterfaceIds.h"
#include "host/validate/LoadedPlugin.h"
#include "host/validate/SampleSound.h"
#include "host/validate/Trial.h"
#include "stream/Process.h"
#include "stream/RawReader.h"

// A file that a decoder is expected to open.
struct SSampleCase {
    SComponent m_decoder;
    std::string m_strPath;

    std::string GetLabel() const;
};

// Whether the component lists the extension of the file, in any case.
bool ListsExtensionOf(const std::string& path, IAudioComponent& component);

// Every decoder of the plug-in that is enabled, with every sample that it lists; a sample that none lists goes to all.
// Throws CSkipped when nothing is left.
std::vector<SSampleCase> SampleCases(CTrial& trial);

// Throws CFinding when the decoder refuses the sample.
CComPtr<IUnknown> OpenSample(const SSampleCase& sample);

// One read, as it came out.
struct SReadResult {
    bool m_bDone = false;
    int m_nBytes = 0;
    EAudioRawState m_eState = ARS_MORE;
    std::string m_strReason;  // of a read that failed
    bool m_bKeptBounds = true;
};

// The three interfaces that drive a source. What is read is checked only as far as memory goes; every operation throws
// CFinding when it fails. [stream-thread]
class CSource {
public:
    explicit CSource(CComPtr<IUnknown> stream);

    IUnknown& Stream() const { return *m_pStream; }
    IProcess& Process() const { return *m_pProcess; }
    IAudioRawReader& Reader() const { return *m_pReader; }
    IAudioRawBlockInfo& Blocks() const { return *m_pBlocks; }

    // Another interface of the stream; empty when it has none.
    template <typename TFace>
    CComPtr<TFace> Face(unsigned long identity) const {
        return CComPtr<TFace>::Query(m_pStream.Get(), identity);
    }

    SWavFormat Format() const;
    std::size_t FrameBytes() const { return static_cast<std::size_t>(BlockSizeOf(Format())); }

    void Start();
    void End();

    // Into a buffer with some room behind it.
    SReadResult Read(int size, CBytes& bytes);

    // All that follows, in reads of the given sizes in turn.
    CBytes ReadToEnd(const std::vector<int>& sizes = {4096 * 12});

    // At most `bytes` bytes of what follows.
    CBytes ReadSome(std::size_t bytes);

private:
    CComPtr<IUnknown> m_pStream;
    CComPtr<IProcess> m_pProcess;
    CComPtr<IAudioRawReader> m_pReader;
    CComPtr<IAudioRawBlockInfo> m_pBlocks;
};

// Calls `examine` with a fresh source for every sample case; findings come out with the case's label.
void ForEachSource(CTrial& trial, const std::function<void(CSource& source)>& examine);

// The same for whoever needs the case itself.
void ForEachSample(CTrial& trial, const std::function<void(const SSampleCase& sample)>& examine);

// The sound of the sample from its first frame to its end, in one go.
CBytes LinearSound(const SSampleCase& sample);
