// One file that is about to be written.
#pragma once

#include <string>
#include <utility>

#include "com/ComPtr.h"
#include "sdk/CountedObject.h"
#include "sdk/EncoderStream.h"
#include "sdk/Utf8.h"

// Made by CEncoderComponent. Tags and settings hold for the streams that are made afterwards. [stream-thread]
class CEncoderTarget final : public CCountedObject<IAudioTarget, ITargetTags, INamedSettings>,
                             public IURLAudioTargetFactory {
public:
    // `encoding` outlives the target.
    CEncoderTarget(CFileEncoding& encoding, STargetRequest request)
        : m_encoding(encoding), m_request(std::move(request)), m_strFileName(FileNameOf(m_request.m_strPath)) {}

    IURLAudioTargetFactory* GetTargetFactory() override { return this; }

    void ReservedFirst() override {}
    void ReservedSecond() override {}

    bool CreateTarget(IUnknown** stream, const SWavFormat& format, IStatus** status) override {
        return Guarded(status, m_strFileName, [&] {
            if (stream == nullptr) throw CBadArgument();
            if (format.nBitsPerSample < 1) Refuse("samples without bits cannot be written");
            const SWavFormat accepted = m_encoding.AcceptFormat(m_request, format);
            *stream = CComPtr<IAggregatable>(new CEncoderStream(m_encoding, m_request, accepted)).Detach();
            return true;
        });
    }

    bool HasTag(ETag tag) override { return tag <= TAG_GENRE && m_encoding.HasTag(m_request, tag); }

    bool SetTag(ETag tag, const char* text, IStatus** status) override {
        return Guarded(status, m_strFileName, [&] {
            if (text == nullptr || tag > TAG_GENRE) throw CBadArgument();
            if (!HasTag(tag)) Refuse("a ." + m_request.m_strExtension + " file has no place for this tag");
            if (!IsUtf8(text)) Refuse("a tag that is not UTF-8");
            m_encoding.CheckTag(m_request, tag, text);
            m_request.m_tags[tag] = text;
            return true;
        });
    }

    int GetSettingCount() override { return m_request.m_settings.Count(); }
    const char* GetSettingName(int n) override { return Text(m_request.m_settings.At(n), &SSetting::m_strName); }
    const char* GetSettingValues(int n) override { return Text(m_request.m_settings.At(n), &SSetting::m_strValues); }
    const char* GetSetting(const char* name) override {
        return Text(m_request.m_settings.Find(name), &SSetting::m_strValue);
    }

    bool SetSetting(const char* name, const char* value, IStatus** status) override {
        return Guarded(status, m_strFileName, [&] {
            if (name == nullptr || value == nullptr) throw CBadArgument();
            CSettings changed = m_request.m_settings;
            changed.Set(name, value);
            m_encoding.CheckSetting(m_request, name, value);
            m_request.m_settings = std::move(changed);
            return true;
        });
    }

private:
    static const char* Text(const SSetting* setting, std::string SSetting::*text) {
        return setting != nullptr ? (setting->*text).c_str() : nullptr;
    }

    CFileEncoding& m_encoding;
    STargetRequest m_request;
    std::string m_strFileName;
};
