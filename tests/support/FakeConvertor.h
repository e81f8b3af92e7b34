// A convertor and its factory that do what their test says.
#pragma once

#include <cstring>
#include <functional>
#include <optional>
#include <vector>

#include "com/FeatureSupport.h"
#include "com/QueryTable.h"
#include "stream/Convertor.h"
#include "tests/support/CallLog.h"
#include "tests/support/PlainCount.h"
#include "tests/support/ScriptedCall.h"

namespace support {

// What a convertor was given.
struct SConvertCall {
    const unsigned char* m_pData;
    std::vector<unsigned char> m_bytes;
    int m_nFlags;
    IStatus** m_ppStatus;
};

// The test owns the script, which outlives the convertor.
struct SConvertorScript {
    CCallLog* m_pLog = nullptr;  // "output length", "output data" and "release convertor" go there
    std::function<std::vector<unsigned char>(const std::vector<unsigned char>&)>
        m_convert;  // the same bytes when empty
    bool m_bConvertResult = true;
    const char* m_pReason = nullptr;  // stored as a status by each conversion
    std::optional<int> m_nLength;     // a length to tell instead of the true one
    std::vector<SConvertCall> m_convertCalls;
    int m_nAlive = 0;
};

// Starts with the one reference of its creator. [stream-thread]
class CFakeConvertor final : public IAudioConvertor {
public:
    explicit CFakeConvertor(SConvertorScript& script) : m_script(script) { ++m_script.m_nAlive; }
    ~CFakeConvertor() { --m_script.m_nAlive; }

    CFakeConvertor(const CFakeConvertor&) = delete;
    CFakeConvertor& operator=(const CFakeConvertor&) = delete;

    unsigned int AddRef() override { return ++m_nReferences; }
    unsigned int Release() override {
        Note("release convertor");
        const unsigned int count = --m_nReferences;
        if (count == 0) delete this;
        return count;
    }
    int QueryInterface(unsigned long identity, void** face) override {
        return AnswerQuery(*this, identity, face, {{IID_IUnknown, this}});
    }
    bool Convert(unsigned char* data, int size, int flags, IStatus** status) override {
        std::vector<unsigned char> input(data, data + size);
        m_output = m_script.m_convert ? m_script.m_convert(input) : input;
        m_script.m_convertCalls.push_back({data, std::move(input), flags, status});
        Play({EOutcome::Succeeds, m_script.m_pReason}, status);
        return m_script.m_bConvertResult;
    }
    int GetOutputLength() override {
        Note("output length");
        return m_script.m_nLength.value_or(static_cast<int>(m_output.size()));
    }
    unsigned char* GetOutputData() override {
        Note("output data");
        return m_output.data();
    }

private:
    void Note(const char* line) const {
        if (m_script.m_pLog != nullptr) m_script.m_pLog->Note(line);
    }

    SConvertorScript& m_script;
    unsigned int m_nReferences = 1;
    std::vector<unsigned char> m_output;
};

// What a factory was asked for: both held formats with the qualifier that stands behind each record.
struct SCreateCall {
    SHeldWavFormat m_from;
    SHeldWavFormat m_to;
    IAudioConvertor** m_ppConvertor;
    IStatus** m_ppStatus;
};

// Owned by its test; starts with one reference of the test's own.
class CFakeConvertorFactory final : public IConvertorFactory, public IFeatureSupport {
public:
    CFakeConvertorFactory() { AddRef(); }

    unsigned int AddRef() override { return m_references.Increment(); }
    unsigned int Release() override {
        if (m_convertor.m_pLog != nullptr) m_convertor.m_pLog->Note("release factory");
        const unsigned int count = m_references.Decrement();
        if (count == 0) m_bEnded = true;
        return count;
    }
    int QueryInterface(unsigned long identity, void** face) override {
        return AnswerQuery(*this, identity, face,
                           {{IID_IUnknown, static_cast<IConvertorFactory*>(this)},
                            {IID_IConvertorFactory, static_cast<IConvertorFactory*>(this)},
                            {IID_IFeatureSupport, static_cast<IFeatureSupport*>(this)}});
    }
    void ReservedFirst() override { ++m_nReservedCalls; }
    bool CreateConvertor(const SWavFormat* from, const SWavFormat* to, IAudioConvertor** convertor,
                         IStatus** status) override {
        SCreateCall call{{}, {}, convertor, status};
        std::memcpy(&call.m_from, from, sizeof call.m_from);
        std::memcpy(&call.m_to, to, sizeof call.m_to);
        m_createCalls.push_back(call);
        if (m_onCreate) m_onCreate(from);
        if (m_bYields) *convertor = new CFakeConvertor(m_convertor);
        return Play(m_create, status);
    }
    bool IsSupported(EAudioFeature feature) override { return feature == AF_ADVANCED_FORMATS && m_bAdvanced; }
    bool EnableSupport(EAudioFeature /*feature*/, bool /*enable*/) override { return false; }

    unsigned int References() const { return m_references.Value(); }

    SScriptedCall m_create;
    bool m_bYields = true;  // also when m_create fails
    bool m_bAdvanced = true;
    bool m_bEnded = false;  // whether the last reference was ever given back
    std::function<void(const SWavFormat* from)> m_onCreate;
    SConvertorScript m_convertor;
    std::vector<SCreateCall> m_createCalls;
    int m_nReservedCalls = 0;

private:
    CPlainCount m_references;
};

}  // namespace support
