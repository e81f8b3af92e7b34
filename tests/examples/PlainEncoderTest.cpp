// The encoder template.
#include "stream/AudioTargetOpener.h"
#include "stream/RawWriter.h"
#include "stream/TargetTags.h"
#include "tests/examples/ExamplesTest.h"

namespace {

using support::TextOf;

class PlainEncoder : public CExamplesTest {
protected:
    void LoadEncoder() const {
        Add("encoder", "plain_encoder");
        Load();
    }

    CComPtr<IAudioTarget> OpenTarget(const std::string& path) const {
        CComPtr<IAudioTarget> target;
        for (int i = 0; i < m_manager->GetCount() && !target; ++i) {
            CComPtr<IAudioComponent> component;
            m_manager->GetComponent(i, component.Out());
            const auto opener = CComPtr<IAudioTargetOpener>::Query(component.Get(), IID_IAudioTargetOpener);
            if (opener) opener->OpenTarget(path.c_str(), "plain", target.Out(), nullptr);
        }
        return target;
    }

    CComPtr<IUnknown> CreateStream(const CComPtr<IAudioTarget>& target, const SWavFormat& format = kFormat) const {
        CComPtr<IUnknown> stream;
        EXPECT_TRUE(m_manager->CreateURLAudioTarget(target->GetTargetFactory(), stream.Out(), format, nullptr));
        return stream;
    }

    static bool Write(const CComPtr<IUnknown>& stream, std::string samples) {
        EAudioRawState state = ARS_END;
        return CComPtr<IAudioRawWriter>::Query(stream.Get(), IID_IAudioRawWriter)
            ->RawWrite(reinterpret_cast<unsigned char*>(samples.data()), static_cast<int>(samples.size()), state,
                       nullptr);
    }
};

TEST_F(PlainEncoder, WritesWhatTheDecoderReads) {
    LoadEncoder();
    const std::string path = m_scratch / "written.plain";
    const std::string expected = PlainFile(500);
    const auto target = OpenTarget(path);
    ASSERT_TRUE(target);
    ASSERT_TRUE(CComPtr<ITargetTags>::Query(target.Get(), IID_ITargetTags)->SetTag(TAG_TITLE, "A title", nullptr));
    const auto stream = CreateStream(target);
    const auto process = CComPtr<IProcess>::Query(stream.Get(), IID_IProcess);
    EXPECT_FALSE(std::filesystem::exists(path));
    ASSERT_TRUE(process->Start(nullptr));
    ASSERT_TRUE(Write(stream, SamplesOf(expected)));
    ASSERT_TRUE(process->End(nullptr));
    EXPECT_EQ(ReadFile(path), expected);
}

TEST_F(PlainEncoder, RefusesATitleThatDoesNotFit) {
    Add("decoder", "plain_decoder");
    LoadEncoder();
    const std::string path = m_scratch / "long.plain";
    const std::string fitting = std::string(kTitleBytes - 2, 'a') + "\xC3\xA9";
    const auto target = OpenTarget(path);
    ASSERT_TRUE(target);
    const auto tags = CComPtr<ITargetTags>::Query(target.Get(), IID_ITargetTags);
    ASSERT_TRUE(tags->SetTag(TAG_TITLE, fitting.c_str(), nullptr));
    CComPtr<IStatus> status;
    EXPECT_FALSE(tags->SetTag(TAG_TITLE, ("a" + fitting).c_str(), status.Out()));
    EXPECT_STREQ(TextOf(status), "long.plain: a title of 65 bytes, where a plain file holds 64");
    const auto process = CComPtr<IProcess>::Query(CreateStream(target).Get(), IID_IProcess);
    ASSERT_TRUE(process->Start(nullptr));
    ASSERT_TRUE(process->End(nullptr));
    EXPECT_EQ(TitleOf(path), fitting);
}

TEST_F(PlainEncoder, AcceptsTheFormatsThatTheDecoderReads) {
    LoadEncoder();
    const auto target = OpenTarget(m_scratch / "some.plain");
    ASSERT_TRUE(target);
    const auto accepted = [&](const SWavFormat& format) {
        CComPtr<IUnknown> stream;
        EXPECT_TRUE(target->GetTargetFactory()->CreateTarget(stream.Out(), format, nullptr));
        const auto writer = CComPtr<IAudioRawWriter>::Query(stream.Get(), IID_IAudioRawWriter);
        return writer ? writer->GetRawFormat() : SWavFormat{};
    };
    EXPECT_EQ(accepted({768000, 20, 8}), (SWavFormat{768000, 24, 8}));
    EXPECT_EQ(accepted({1, 1, 1}), (SWavFormat{1, 8, 1}));
    EXPECT_EQ(accepted({48000, 0x7FFFFFFF, 2}), (SWavFormat{48000, 32, 2}));
    for (const SWavFormat& refused : {SWavFormat{768001, 16, 2}, {0, 16, 2}, {48000, 16, 0}, {48000, 16, 9}}) {
        CComPtr<IUnknown> stream;
        EXPECT_FALSE(target->GetTargetFactory()->CreateTarget(stream.Out(), refused, nullptr)) << refused;
    }
}

TEST_F(PlainEncoder, TellsAFullDisk) {
    LoadEncoder();
    const auto target = OpenTarget("/dev/full");
    ASSERT_TRUE(target);
    const auto stream = CreateStream(target);
    const auto process = CComPtr<IProcess>::Query(stream.Get(), IID_IProcess);
    ASSERT_TRUE(process->Start(nullptr));
    EXPECT_FALSE(Write(stream, SamplesOf(PlainFile(100000))));
    CComPtr<IStatus> status;
    EXPECT_FALSE(process->End(status.Out()));
    EXPECT_STREQ(TextOf(status), "full: not written completely");
}

}  // namespace
