// The plug-in's convertor object.
#pragma once

#include "com/ReferenceCount.h"
#include "plugins/soxr/Conversion.h"
#include "plugins/soxr/LiveConvertors.h"
#include "plugins/soxr/OutputAllowance.h"
#include "stream/Convertor.h"

// Starts with the one reference of its creator. Each call hands out no more than the caller's buffer holds; the rest
// waits for the next calls. [stream-thread]
class CConvertor final : public IAudioConvertor {
public:
    // Throws when soxr refuses or memory runs out.
    explicit CConvertor(const SConversionPlan& plan);

    unsigned int AddRef() override;
    unsigned int Release() override;
    int QueryInterface(unsigned long identity, void** face) override;

    // The first call with bytes after one with none begins a new stream: hosts seek back after the end.
    bool Convert(unsigned char* data, int size, int flags, IStatus** status) override;
    int GetOutputLength() override { return m_nLength; }
    unsigned char* GetOutputData() override { return m_pData; }

private:
    ~CConvertor() = default;

    void Feed(const unsigned char* data, int size);
    void HandOut(std::int64_t frames);

    CLiveConvertor m_alive;
    CReferenceCount m_references{1};
    COutputAllowance m_allowance;
    CConversion m_conversion;
    int m_nFrameBytes;
    int m_nLastInput = 0;  // bytes of the last call that had any
    bool m_bEnded = false;
    int m_nLength = 0;
    unsigned char* m_pData = nullptr;
};
