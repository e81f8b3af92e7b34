// One sound file that is about to be written.
#pragma once

#include <string>

#include "com/ReferenceCount.h"
#include "plugins/sndfile/LiveObjects.h"
#include "plugins/sndfile/OutputFormat.h"
#include "stream/AudioTargetOpener.h"

// Made by CEncoder with the one reference of its creator. [any thread] for the count, [stream-thread] for the rest.
class CEncoderTarget final : public IAudioTarget, public IURLAudioTargetFactory {
public:
    CEncoderTarget(const char* path, const SOutputFormat& output)
        : m_references(1), m_strPath(path), m_output(output) {}

    unsigned int AddRef() override { return m_references.Increment(); }
    unsigned int Release() override;
    int QueryInterface(unsigned long identity, void** face) override;

    IURLAudioTargetFactory* GetTargetFactory() override { return this; }

    void ReservedFirst() override {}
    void ReservedSecond() override {}
    bool CreateTarget(IUnknown** stream, const SWavFormat& format, IStatus** status) override;

private:
    CLiveObject m_live;
    CReferenceCount m_references;
    std::string m_strPath;
    const SOutputFormat& m_output;
};
