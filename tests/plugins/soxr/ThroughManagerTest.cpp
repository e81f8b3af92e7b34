// The convertor as the manager uses it: for formats with floats, between a real decoder and its host.
#include "stream/AudioPluginMgrInterface.h"
#include "stream/Process.h"
#include "stream/RawReader.h"
#include "tests/plugins/LoadedPlugins.h"
#include "tests/plugins/soxr/PluginUnderTest.h"

namespace {

void AppendNumber(std::string& text, std::uint32_t number, int bytes) {
    for (int shift = 0; shift < 8 * bytes; shift += 8) text += static_cast<char>(number >> shift);
}

// A stereo WAVE file of floats at 44.1 kHz.
std::string FloatFile(const std::vector<float>& samples) {
    const CBytes data = PackedFloats(samples);
    const auto size = static_cast<std::uint32_t>(data.size());
    std::string file = "RIFF";
    AppendNumber(file, 36 + size, 4);
    file += "WAVEfmt ";
    AppendNumber(file, 16, 4);
    AppendNumber(file, 3, 2);  // WAVE_FORMAT_IEEE_FLOAT
    AppendNumber(file, 2, 2);
    AppendNumber(file, 44100, 4);
    AppendNumber(file, 8 * 44100, 4);
    AppendNumber(file, 8, 2);
    AppendNumber(file, 32, 2);
    file += "data";
    AppendNumber(file, size, 4);
    return file.append(data.begin(), data.end());
}

CBytes ReadAll(IAudioRawReader& reader) {
    CBytes bytes;
    CBytes buffer(60000);
    EAudioRawState state = ARS_MORE;
    for (int read = 1; read > 0 || state == ARS_MORE;) {
        if (!reader.RawRead(buffer.data(), static_cast<int>(buffer.size()), &read, state, nullptr)) return {};
        bytes.insert(bytes.end(), buffer.begin(), buffer.begin() + read);
    }
    return bytes;
}

TEST(SoxrThroughManager, AdvancedFormatsCanBeEnabledOnceItIsLoaded) {
    const CLoadedPlugins plugins;
    CAudioPluginMgr& manager = plugins.Manager();
    EXPECT_FALSE(manager.EnableSupport(AF_ADVANCED_FORMATS, true));
    EXPECT_TRUE(manager.EnableSupport(AF_BASIC, true));
    EXPECT_TRUE(manager.EnableSupport(AF_ADVANCED_FORMATS, true));
    EXPECT_TRUE(manager.IsSupported(AF_ADVANCED_FORMATS));
}

TEST(SoxrThroughManager, WhatIsBeyondFullScaleInAFloatFileIsThereForTheDownMix) {
    const CLoadedPlugins plugins;
    CAudioPluginMgr& manager = plugins.Manager();
    ASSERT_TRUE(manager.EnableSupport(AF_BASIC, true) && manager.EnableSupport(AF_ADVANCED_FORMATS, true));
    std::vector<float> samples;
    for (int frame = 0; frame < 4410; ++frame) samples.insert(samples.end(), {1.5F, -0.5F});
    const CScratchDirectory scratch;
    const std::string path = scratch.Write("loud.wav", FloatFile(samples));
    const SWavFormat wanted{48000, 24, 1};
    CComPtr<IUnknown> stream;
    ASSERT_TRUE(manager.OpenURLAudioFile(path.c_str(), &wanted, stream.Out(), -1, AUX_CONVERT, AUX_NONE, nullptr));
    const auto process = CComPtr<IProcess>::Query(stream.Get(), IID_IProcess);
    const auto reader = CComPtr<IAudioRawReader>::Query(stream.Get(), IID_IAudioRawReader);
    ASSERT_TRUE(process->Start(nullptr));
    const std::vector<int> output = Unpacked(ReadAll(*reader), 24);
    ASSERT_TRUE(process->End(nullptr));
    ASSERT_EQ(output.size(), 4800U);
    EXPECT_NEAR(output[2400], 0x400000, 4);
}

}  // namespace
