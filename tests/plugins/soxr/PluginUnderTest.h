// The built plug-in, loaded as a host loads it.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <random>
#include <stdexcept>
#include <string>
#include <vector>

#include "com/AudioComponent.h"
#include "com/ComPtr.h"
#include "com/InterfaceIds.h"
#include "com/NamedSettings.h"
#include "portable/DynamicLibrary.h"
#include "stream/ClippingCount.h"
#include "stream/Convertor.h"

using CBytes = std::vector<unsigned char>;

constexpr int kRates[] = {8000, 11025, 22050, 44100, 48000, 88200, 96000, 192000};

inline SHeldWavFormat Held(int rate, int bits, int channels, int qualifier = kIntegerSamples) {
    return {{rate, bits, channels}, qualifier};
}

inline SHeldWavFormat HeldFloat(int rate, int channels) { return Held(rate, 32, channels, kFloatSamples); }

class CPluginUnderTest {
public:
    CPluginUnderTest() : m_pModule(LoadLibrary(KELO_SOXR_PLUGIN)) {
        if (m_pModule == nullptr) throw std::runtime_error("cannot load " KELO_SOXR_PLUGIN);
        const auto getPrimary = reinterpret_cast<bool (*)(IAudioComponent**)>(
            GetProcAddress(m_pModule, "KELO_PLUGIN_GetPrimaryAudioObject"));
        m_pReadyToFinish = reinterpret_cast<bool (*)()>(GetProcAddress(m_pModule, "KELO_PLUGIN_ReadyToFinish"));
        if (getPrimary == nullptr || m_pReadyToFinish == nullptr || !getPrimary(m_pComponent.Out())) {
            throw std::runtime_error("no component");
        }
        m_pFactory = CComPtr<IConvertorFactory>::Query(m_pComponent.Get(), IID_IConvertorFactory);
    }
    ~CPluginUnderTest() {
        m_pFactory.Reset();
        m_pComponent.Reset();
        FreeLibrary(m_pModule);
    }
    CPluginUnderTest(const CPluginUnderTest&) = delete;
    CPluginUnderTest& operator=(const CPluginUnderTest&) = delete;

    void* Module() const { return m_pModule; }
    IAudioComponent& Component() const { return *m_pComponent; }
    IConvertorFactory& Factory() const { return *m_pFactory; }
    bool ReadyToFinish() const { return m_pReadyToFinish(); }

    // Empty when the plug-in refuses.
    CComPtr<IAudioConvertor> Create(const SHeldWavFormat& from, const SHeldWavFormat& to,
                                    IStatus** status = nullptr) const {
        CComPtr<IAudioConvertor> convertor;
        m_pFactory->CreateConvertor(&from.m_format, &to.m_format, convertor.Out(), status);
        return convertor;
    }

    CComPtr<INamedSettings> Settings() const {
        return CComPtr<INamedSettings>::Query(m_pComponent.Get(), IID_INamedSettings);
    }

    // Holds for the convertors that are made afterwards.
    void Set(const char* name, const char* value) const { ASSERT_TRUE(Settings()->SetSetting(name, value, nullptr)); }

private:
    void* m_pModule;
    bool (*m_pReadyToFinish)() = nullptr;
    CComPtr<IAudioComponent> m_pComponent;
    CComPtr<IConvertorFactory> m_pFactory;
};

// Appends what the last Convert made.
inline void AppendOutput(IAudioConvertor& convertor, CBytes& output) {
    const int length = convertor.GetOutputLength();
    if (length == 0) return;
    const unsigned char* const data = convertor.GetOutputData();
    ASSERT_NE(data, nullptr);
    output.insert(output.end(), data, data + length);
}

// Calls with 0 bytes until nothing is left.
inline void Drain(IAudioConvertor& convertor, CBytes& output) {
    do {
        ASSERT_TRUE(convertor.Convert(nullptr, 0, 0, nullptr));
        AppendOutput(convertor, output);
    } while (convertor.GetOutputLength() != 0);
}

// Feeds `input` in blocks whose sizes `nextSize` tells, then the end.
template <typename TNextSize>
CBytes ConvertInBlocks(IAudioConvertor& convertor, CBytes input, TNextSize nextSize) {
    CBytes output;
    for (std::size_t at = 0; at < input.size();) {
        const std::size_t size = std::min<std::size_t>(nextSize(), input.size() - at);
        EXPECT_TRUE(convertor.Convert(input.data() + at, static_cast<int>(size), 0, nullptr));
        AppendOutput(convertor, output);
        at += size;
    }
    Drain(convertor, output);
    return output;
}

inline CBytes ConvertAll(IAudioConvertor& convertor, const CBytes& input) {
    return ConvertInBlocks(convertor, input, [&] { return input.size(); });
}

inline CBytes ConvertAll(const CPluginUnderTest& plugin, const SHeldWavFormat& from, const SHeldWavFormat& to,
                         const CBytes& input) {
    return ConvertAll(*plugin.Create(from, to), input);
}

inline CBytes RandomBytes(std::size_t count, unsigned seed = 1) {
    std::mt19937 random(seed);
    CBytes bytes(count);
    std::generate(bytes.begin(), bytes.end(), [&] { return static_cast<unsigned char>(random()); });
    return bytes;
}

// Signed samples of 16, 24 or 32 bits as packed little-endian PCM and back.
inline CBytes Packed(const std::vector<int>& samples, int bits) {
    CBytes bytes;
    for (const int sample : samples) {
        for (int shift = 0; shift < bits; shift += 8) {
            bytes.push_back(static_cast<unsigned char>(static_cast<unsigned>(sample) >> shift));
        }
    }
    return bytes;
}

inline std::vector<int> Unpacked(const CBytes& bytes, int bits) {
    const std::size_t width = static_cast<std::size_t>(bits / 8);
    std::vector<int> samples;
    for (std::size_t at = 0; at + width <= bytes.size(); at += width) {
        unsigned sample = 0;
        for (std::size_t byte = 0; byte < width; ++byte) sample |= unsigned{bytes[at + byte]} << (8 * byte);
        samples.push_back(static_cast<int>(sample << (32 - bits)) >> (32 - bits));
    }
    return samples;
}

inline std::uint64_t ClippedSamples(IAudioConvertor& convertor) {
    return CComPtr<IClippingCount>::Query(&convertor, IID_IClippingCount)->GetClippedSamples();
}

// Floats of 32 bits as packed PCM and back.
inline CBytes PackedFloats(const std::vector<float>& samples) {
    CBytes bytes(samples.size() * sizeof(float));
    std::memcpy(bytes.data(), samples.data(), bytes.size());
    return bytes;
}

inline std::vector<float> UnpackedFloats(const CBytes& bytes) {
    std::vector<float> samples(bytes.size() / sizeof(float));
    std::memcpy(samples.data(), bytes.data(), samples.size() * sizeof(float));
    return samples;
}
