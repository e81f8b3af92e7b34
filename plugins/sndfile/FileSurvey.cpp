// What the headers of a sound file tell that the codec does not.
#include "plugins/sndfile/FileSurvey.h"

#include "plugins/sndfile/DeclaredFrames.h"
#include "plugins/sndfile/InfoFrame.h"
#include "plugins/sndfile/MpegFrames.h"
#include "plugins/sndfile/OggPages.h"

namespace {

sf_count_t SamplesOf(const SMpegStart& start, std::uint64_t frames) {
    return static_cast<sf_count_t>(frames * start.m_header.FrameSamples());
}

bool HasDelays(const SInfoFrame& info) { return info.m_nDelay + info.m_nPadding != 0; }

// The sound without the delays of encoder and decoder and without the padding.
sf_count_t SoundOf(const SMpegStart& start, const SInfoFrame& info) {
    const std::uint64_t dropped = HasDelays(info) ? info.m_nDelay + info.m_nPadding : SInfoFrame::kDecoderDelay;
    return SamplesOf(start, info.m_nFrames) - static_cast<sf_count_t>(dropped);
}

// Whether the sizes that the file tells of itself are right, so that its count can be taken on trust.
bool FitsFile(const SInfoFrame& info, const SMpegStart& start, CFileBytes& file) {
    return info.m_nFrames != 0 && info.m_nBytes != 0 && start.m_nAt + info.m_nBytes == MpegAudioEnd(file);
}

// An encoder may count this frame among the others.
bool Declares(const SInfoFrame& info, const SMpegCount& count) {
    return info.m_nFrames == count.m_nFrames || (info.m_nFrames == count.m_nFrames + 1 && !count.m_bEndsInFrame);
}

// What to put in place of `replaced` bytes at the start, so that the codec knows of all frames behind them.
SSplice WithInfo(const SMpegStart& start, const SMpegCount& count, std::uint64_t replaced, SInfoFrame info,
                 const std::string& lead) {
    // The size of the frame itself does not depend on the numbers in it.
    const std::uint64_t own = info.Bytes(start.m_header).size();
    info.m_nBytes = own + lead.size() + count.m_nEnd - (start.m_nAt + replaced);
    return {start.m_nAt, replaced, info.Bytes(start.m_header) + lead};
}

// With an Info frame the codec drops the decoder's delay, which it delivers without one: a silent frame goes ahead,
// and all of it is delay.
SSplice WithAddedInfo(const SMpegStart& start, const SMpegCount& count) {
    SInfoFrame info;
    info.m_nFrames = count.m_nFrames + 1;
    info.m_nDelay = start.m_header.FrameSamples() - SInfoFrame::kDecoderDelay;
    info.m_nPadding = SInfoFrame::kDecoderDelay;
    return WithInfo(start, count, 0, info, SilentFrame(start.m_header));
}

// Sound that does not end where the file declares has no padding: what stands for none is the decoder's delay.
SSplice WithCorrectedInfo(const SMpegStart& start, const SMpegCount& count, SInfoFrame info, bool whole) {
    info.m_nFrames = count.m_nFrames;
    if (!whole && HasDelays(info)) info.m_nPadding = SInfoFrame::kDecoderDelay;
    return WithInfo(start, count, start.m_header.FrameBytes(), info, "");
}

void SurveyLayerIII(CFileBytes& file, const SMpegStart& start, SFileSurvey& survey) {
    const std::size_t firstBytes = start.m_header.FrameBytes();
    const auto told = SInfoFrame::Parse(file.At(start.m_nAt, firstBytes), start.m_header);
    if (told && FitsFile(*told, start, file)) return;

    const SMpegCount count = CountMpegFrames(file, start, start.m_nAt + (told ? firstBytes : 0));
    if (count.m_nFrames == 0) survey.m_strRefusal = "no whole frame is there";
    if (!told) {
        survey.m_splice = WithAddedInfo(start, count);
        return;
    }
    const bool whole = told->m_nFrames == 0 || Declares(*told, count);
    survey.m_splice = WithCorrectedInfo(start, count, *told, whole);
    survey.m_bEndMissing = !whole && told->m_nFrames > count.m_nFrames;
    if (survey.m_bEndMissing) survey.m_nPromised = SoundOf(start, *told);
}

// The other layers have no Info frame; the codec reckons from the size of one frame.
void SurveyMpeg(CFileBytes& file, SFileSurvey& survey) {
    const auto start = FindMpegStart(file);
    if (!start) return;
    if (start->m_header.Layer() == 3) return SurveyLayerIII(file, *start, survey);
    survey.m_nCounted = SamplesOf(*start, CountMpegFrames(file, *start, start->m_nAt).m_nFrames);
}

// RFC 7845, 5.1: byte 18 of the first packet is the family of the channels; those above 1 tell of no speakers. RFC
// 3533, 6: the packet stands behind 27 bytes and one lacing value.
bool HasSpeakers(CFileBytes& file) {
    const std::string_view head = file.At(28, 19);
    return head.size() < 19 || head.substr(0, 8) != "OpusHead" || head[18] == 0 || head[18] == 1;
}

void SurveyOgg(CFileBytes& file, SFileSurvey& survey) {
    survey.m_bSpeakersKnown = HasSpeakers(file);
    const SOggEnd end = FindOggEnd(file);
    survey.m_bChained = IsOggChain(file, end);
    survey.m_lastPage = end.m_lastPage;
    if (!end.m_bCutShort) return;
    survey.m_bEndMissing = true;
    // Half a page at the end hides from the codec where the pages before it end.
    if (end.m_nAt != 0) survey.m_splice = SSplice{end.m_nAt, file.Size() - end.m_nAt, ""};
}

// The codec may take a size that was never filled in, or a great one, for no samples at all, and refuses a CAF file
// with fewer samples than declared.
void SurveySamples(const std::string& formatName, SFileSurvey& survey) {
    if (!survey.m_extent) return;
    const SDataExtent& extent = *survey.m_extent;
    if (!extent.m_bMisleading && !(extent.IsCutShort() && formatName == "CAF")) return;
    survey.m_splice = extent.m_splice;
}

void SurveyFrames(CFileBytes& file, const std::string& formatName, SFileSurvey& survey) {
    SDeclaredFrames declared = FindDeclaredFrames(file, formatName);
    survey.m_nPromised = static_cast<sf_count_t>(declared.m_nFrames);
    if (declared.m_splice) survey.m_splice = std::move(declared.m_splice);
}

}  // namespace

SFileSurvey SurveyOf(int descriptor, const std::string& formatName) {
    CFileBytes file(descriptor);
    SFileSurvey survey;
    survey.m_extent = FindDataExtent(file, formatName);
    SurveySamples(formatName, survey);
    SurveyFrames(file, formatName, survey);
    if (formatName == "Ogg") SurveyOgg(file, survey);
    if (formatName == "MP3" || formatName.empty()) SurveyMpeg(file, survey);
    return survey;
}
