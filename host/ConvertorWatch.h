// The convertors that streams are given, and what they have clipped.
#pragma once

#include <atomic>
#include <cstdint>
#include <vector>

#include "com/ComPtr.h"
#include "stream/AudioPluginMgrInterface.h"
#include "stream/ClippingCount.h"
#include "stream/Convertor.h"

// Holds every convertor that is made on this thread during its life. At most one on a thread. [stream-thread]
class CConvertorRecord {
public:
    CConvertorRecord();
    ~CConvertorRecord();

    CConvertorRecord(const CConvertorRecord&) = delete;
    CConvertorRecord& operator=(const CConvertorRecord&) = delete;

    // By all of them so far; 0 for convertors that do not count.
    std::uint64_t GetClippedSamples() const;

    // The record of this thread, null when there is none.
    static CConvertorRecord* Current();

    void Add(IAudioConvertor* convertor);

private:
    std::vector<CComPtr<IClippingCount>> m_vConvertors;
};

// Stands in the manager's place for a convertor factory, passes everything on to the factory that it found there, and
// notes what that makes. Its references are only counted: a converting target releases one too many, and so does an
// unload. [host set-up] for its beginning and end, [any thread] in between
class CConvertorWatch final : public IConvertorFactory {
public:
    // Does nothing while the manager has no factory.
    explicit CConvertorWatch(IAudioPluginMgr& manager);

    // Puts the factory back where it was; no plug-in is held afterwards.
    ~CConvertorWatch();

    CConvertorWatch(const CConvertorWatch&) = delete;
    CConvertorWatch& operator=(const CConvertorWatch&) = delete;

    // The plug-ins' factory, which may be null.
    IConvertorFactory* GetFactory() const { return m_pFactory.Get(); }

    unsigned int AddRef() override { return ++m_nReferences; }
    unsigned int Release() override { return --m_nReferences; }

    // Further faces are the plug-in's own.
    int QueryInterface(unsigned long identity, void** face) override;

    void ReservedFirst() override {}
    bool CreateConvertor(const SWavFormat* from, const SWavFormat* to, IAudioConvertor** convertor,
                         IStatus** status) override;

private:
    IAudioPluginMgr& m_manager;
    CComPtr<IConvertorFactory> m_pFactory;
    std::atomic<unsigned int> m_nReferences{1};
};
