// The life of an encoder stream, and what is in the file at its end.
#include <filesystem>

#include "com/InterfaceIds.h"
#include "host/FailureText.h"
#include "host/FormatText.h"
#include "host/validate/Checks.h"
#include "host/validate/DecodedFile.h"
#include "host/validate/FormatRules.h"
#include "host/validate/Outcome.h"
#include "host/validate/Sink.h"
#include "host/validate/Steps.h"
#include "stream/TargetTags.h"

namespace {

void Starts(CTrial& trial) {
    ForEachOutput(trial, [](const SOutputCase& output, const std::string& path) { CSink(output, path).Start(); });
}

void Writes(CTrial& trial) {
    ForEachOutput(trial, [](const SOutputCase& output, const std::string& path) {
        CSink sink(output, path);
        sink.Start();
        sink.Write(MakeSound(sink.Format(), kSampleFrames));
    });
}

void Ends(CTrial& trial) {
    ForEachOutput(trial, [](const SOutputCase& output, const std::string& path) {
        CSink(output, path).WriteSample();
        std::error_code error;
        Expect(std::filesystem::file_size(path, error) > 0 && !error, "no file is there after End, or an empty one");
    });
}

void ExpectInProcess(const CSink& sink, bool inProcess, const char* when) {
    TellStep("IsInProcess of an encoder stream");
    Expect(sink.Process().IsInProcess() == inProcess,
           std::string("IsInProcess says ") + (inProcess ? "false " : "true ") + when);
}

void KnowsWhetherInProcess(CTrial& trial) {
    ForEachOutput(trial, [](const SOutputCase& output, const std::string& path) {
        CSink sink(output, path);
        ExpectInProcess(sink, false, "before Start");
        sink.Start();
        ExpectInProcess(sink, true, "after Start");
        sink.Write(MakeSound(sink.Format(), kSampleFrames));
        ExpectInProcess(sink, true, "before End");
        sink.End();
        ExpectInProcess(sink, false, "after End");
    });
}

void ExpectRefused(const CSink& sink, const char* when) {
    CBytes sound = MakeSound(sink.Format(), 100);
    TellStep(std::string("RawWrite ") + when);
    EAudioRawState state = ARS_MORE;
    CComPtr<IStatus> status;
    Expect(!sink.Writer().RawWrite(sound.data(), static_cast<int>(sound.size()), state, status.Out()),
           std::string("RawWrite ") + when + " says true");
}

void RefusesWriteBeforeStart(CTrial& trial) {
    ForEachOutput(trial, [](const SOutputCase& output, const std::string& path) {
        ExpectRefused(CSink(output, path), "before Start");
    });
}

void RefusesWriteAfterEnd(CTrial& trial) {
    ForEachOutput(trial, [](const SOutputCase& output, const std::string& path) {
        CSink sink(output, path);
        sink.WriteSample();
        ExpectRefused(sink, "after End");
    });
}

void KeepsFormat(CTrial& trial) {
    ForEachOutput(trial, [](const SOutputCase& output, const std::string& path) {
        CSink sink(output, path);
        const SWavFormat first = sink.Format();
        const auto expectSame = [&](const char* when) {
            Expect(SHeldWavFormat{sink.Format(), 0} == SHeldWavFormat{first, 0},
                   "first " + FormatText(first) + ", " + when + " " + FormatText(sink.Format()));
        };
        sink.Start();
        expectSame("after Start");
        sink.Write(MakeSound(first, kSampleFrames));
        sink.End();
        expectSame("after End");
    });
}

// Codecs put silence before and behind the sound when a file does not say how much of it is padding.
constexpr double kMostPadding = 0.25;  // seconds

void ExpectWholeSound(const SDecodedFile& decoded, const SWavFormat& written) {
    const double expected = static_cast<double>(kSampleFrames) / written.nSampleRate;
    const double seconds = static_cast<double>(decoded.Frames()) / decoded.m_format.nSampleRate;
    Expect(seconds >= expected - 0.001,
           "the file decodes to " + std::to_string(seconds) + " s of the " + std::to_string(expected) + " s written");
    Expect(seconds <= expected + kMostPadding, "the file decodes to " + std::to_string(seconds) + " s where " +
                                                   std::to_string(expected) + " s were written");
}

// A file that some decoder lists, written to the end.
struct SWrittenFile {
    const SOutputCase& m_output;
    std::string m_strPath;
    SWavFormat m_format;  // that the encoder accepted
};

// Calls `examine` with a file of every output case that some decoder lists, and skips when there is none.
void ForEachDecodable(CTrial& trial, const std::function<void(const SWrittenFile& file)>& examine) {
    bool found = false;
    ForEachOutput(trial, [&](const SOutputCase& output, const std::string& path) {
        CSink sink(output, path);
        const SWrittenFile file{output, path, sink.Format()};
        sink.WriteSample();
        if (!DecodeFile(trial, path)) return;
        found = true;
        examine(file);
    });
    if (!found) throw CSkipped("no decoder at hand lists what its encoders write");
}

void DecodesAgain(CTrial& trial) {
    ForEachDecodable(
        trial, [&](const SWrittenFile& file) { ExpectWholeSound(*DecodeFile(trial, file.m_strPath), file.m_format); });
}

void TakesAnyPortions(CTrial& trial) {
    ForEachDecodable(trial, [&](const SWrittenFile& file) {
        const SDecodedFile whole = *DecodeFile(trial, file.m_strPath);
        CSink(file.m_output, file.m_strPath).WriteSample(97);
        const SDecodedFile portions = *DecodeFile(trial, file.m_strPath);
        Expect(portions.m_sound.size() == whole.m_sound.size(),
               "written in portions of 97 frames, " + DifferenceText(whole.m_sound, portions.m_sound));
    });
}

void SurvivesNoSound(CTrial& trial) {
    ForEachOutput(trial, [](const SOutputCase& output, const std::string& path) {
        CSink sink(output, path);
        sink.Start();
        TellStep("End of an encoder stream without sound");
        CComPtr<IStatus> status;
        const bool ended = sink.Process().End(status.Out());
        Expect(ended || status, "End without sound says false without a status");
    });
}

void RefusesUnwritablePlace(CTrial& trial) {
    const std::string file = trial.WriteScratch("file", "no directory");
    ForEachOutput(trial, [&](const SOutputCase& output, const std::string& /*path*/) {
        const auto opener =
            CComPtr<IAudioTargetOpener>::Query(output.m_encoder.m_pComponent.Get(), IID_IAudioTargetOpener);
        const std::string path = file + "/below." + output.m_strExtension;
        TellStep("OpenTarget below a file that is no directory");
        CComPtr<IAudioTarget> target;
        CComPtr<IStatus> status;
        if (opener->OpenTarget(path.c_str(), output.m_strExtension.c_str(), target.Out(), status.Out())) {
            const CSink sink(target);
            TellStep("Start below a file that is no directory");
            Expect(!sink.Process().Start(status.Out()), "Start says true where no file can be written");
        }
        Expect(static_cast<bool>(status), "a place that cannot be written is refused without a status");
    });
}

std::string TagText(ETag tag) { return "Kelo tag " + std::to_string(static_cast<unsigned int>(tag)); }

// A year is the one tag that formats may hold as a number.
std::string TextFor(ETag tag) { return tag == TAG_YEAR ? "1999" : TagText(tag); }

std::vector<ETag> SetTags(ITargetTags& tags) {
    std::vector<ETag> set;
    for (const ETag tag : {TAG_TITLE, TAG_ARTIST, TAG_ALBUM, TAG_YEAR, TAG_GENRE}) {
        TellStep("HasTag and SetTag");
        const bool has = tags.HasTag(tag);
        CComPtr<IStatus> status;
        const bool taken = tags.SetTag(tag, TextFor(tag).c_str(), status.Out());
        const std::string name = "tag " + std::to_string(static_cast<unsigned int>(tag));
        Expect(taken == has, name + ": HasTag says " + (has ? "true" : "false") + " and SetTag " +
                                 (taken ? "true" : "false: " + StatusText(status.Get(), "no reason", "")));
        Expect(taken || status, name + ": refused without a status");
        if (taken) set.push_back(tag);
    }
    return set;
}

void KeepsTags(CTrial& trial) {
    bool found = false;
    ForEachDecodable(trial, [&](const SWrittenFile& file) {
        const CComPtr<IAudioTarget> target = OpenTarget(file.m_output, file.m_strPath);
        const auto tags = CComPtr<ITargetTags>::Query(target.Get(), IID_ITargetTags);
        if (!tags) return;
        found = true;
        const std::vector<ETag> set = SetTags(*tags);
        CSink(target).WriteSample();
        const SDecodedFile decoded = *DecodeFile(trial, file.m_strPath);
        for (const ETag tag : set) {
            const std::string& seen = decoded.m_tags[tag];
            Expect(seen == TextFor(tag), "the tag \"" + TextFor(tag) + "\" comes back as \"" + seen + "\"");
        }
    });
    if (!found) throw CSkipped("its targets have no ITargetTags");
}

}  // namespace

CCheckList WritingChecks() {
    return {
        {"encoder/start", "A stream starts.", CONCERN_ENCODER, "encoder/format", Starts},
        {"encoder/writes", "A started stream takes sound of its format.", CONCERN_ENCODER, "encoder/start", Writes},
        {"encoder/end", "After End the file is there.", CONCERN_ENCODER, "encoder/writes", Ends},
        {"encoder/in-process", "IsInProcess is true between Start and End alone.", CONCERN_ENCODER, "encoder/end",
         KnowsWhetherInProcess},
        {"encoder/write-before-start", "A write before Start is refused.", CONCERN_ENCODER, "encoder/end",
         RefusesWriteBeforeStart},
        {"encoder/write-after-end", "A write after End is refused.", CONCERN_ENCODER, "encoder/end",
         RefusesWriteAfterEnd},
        {"encoder/format-constant", "The accepted format is the same from creation to the last Release.",
         CONCERN_ENCODER, "encoder/end", KeepsFormat},
        {"encoder/decodes-again", "A written file decodes to the whole sound.", CONCERN_ENCODER, "encoder/end",
         DecodesAgain},
        {"encoder/any-portions", "Sound written in portions of any sizes makes as long a file.", CONCERN_ENCODER,
         "encoder/decodes-again", TakesAnyPortions},
        {"encoder/no-sound", "A stream that is ended without any sound does so, or says why not.", CONCERN_ENCODER,
         "encoder/end", SurvivesNoSound},
        {"encoder/unwritable-place", "A place where no file can be written is refused with a status.", CONCERN_ENCODER,
         "encoder/end", RefusesUnwritablePlace},
        {"encoder/tags", "Tags that a target takes are in the file, and others are refused with a status.",
         CONCERN_ENCODER, "encoder/decodes-again", KeepsTags},
    };
}
