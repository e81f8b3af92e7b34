// Each way to fail is found by the check that is meant for it, and by no other.
#include <gtest/gtest.h>

#include <algorithm>
#include <set>

#include "tests/host/validate/ValidateRun.h"
#include "tests/support/Sanitizers.h"

namespace {

struct SFailure {
    const char* m_szFixture;
    const char* m_szCheck;
    const char* m_szVerdict = "failed";
};

void PrintTo(const SFailure& failure, std::ostream* out) { *out << failure.m_szFixture; }

const SFailure kFailures[] = {
    {"NeedsMissingSymbol", "entry/opens"},
    {"LacksReadyToFinish", "entry/both-symbols"},
    {"ExportsCppNames", "entry/both-symbols"},
    {"AcceptsNullOutPointer", "entry/null-out-pointer"},
    {"CrashesOnNullOutPointer", "entry/null-out-pointer", "crashed"},
    {"GivesNullPrimaryObject", "entry/primary-object"},
    {"ThrowsInsteadOfPrimaryObject", "entry/primary-object"},
    {"GivesPrimaryObjectWithoutReference", "entry/reference"},
    {"CollectionGivesNullMember", "collection/members"},
    {"CollectionGivesNoReferences", "collection/reference"},
    {"CollectionChangesItsCount", "collection/count-stable"},
    {"CollectionAnswersAnyIndex", "collection/out-of-range"},
    {"CollectionHoldsItself", "collection/nesting"},
    {"ComponentHasUnknownType", "component/type"},
    {"ComponentChangesItsType", "component/type-stable"},
    {"ComponentHasNullName", "component/name"},
    {"ComponentHasLatinName", "component/name"},
    {"ComponentChangesItsName", "component/name-stable"},
    {"ConvertorHasNoFactory", "component/interfaces"},
    {"RefusesToInitialize", "component/initialize"},
    {"ThrowsFromInitialize", "component/initialize"},
    {"NeedsStatusToInitialize", "component/null-status", "crashed"},
    {"InitializesOnce", "component/initialize-again"},
    {"AboutHasNullVendor", "component/about"},
    {"ListsNullExtension", "extensions/named"},
    {"ListsExtensionWithDot", "extensions/no-dot"},
    {"ChangesItsExtensions", "extensions/stable"},
    {"RefusesEverySample", "decoder/opens-sample"},
    {"GivesStreamWithoutReference", "decoder/reference"},
    {"StreamOutlivesItsRelease", "decoder/last-release"},
    {"OpensMissingFiles", "decoder/refuses-missing-file"},
    {"OpensDirectories", "decoder/refuses-directory"},
    {"OpensEmptyFiles", "decoder/refuses-empty-file"},
    {"OpensText", "decoder/refuses-text"},
    {"RefusesFilesWithoutStatus", "decoder/refusal-status"},
    {"NeedsStatusToRefuseFiles", "decoder/null-status", "crashed"},
    {"StreamLacksBlockInfo", "source/interfaces"},
    {"StreamHasNoChannels", "source/format"},
    {"StreamDoesNotStart", "source/start"},
    {"StreamNeverEnds", "source/reads-to-end"},
    {"StreamHangsInRead", "source/reads-to-end", "timedOut"},
    {"StreamCrashesInRead", "source/reads-to-end", "crashed"},
    {"StreamThrowsFromRead", "source/reads-to-end"},
    {"StreamExitsInRead", "source/reads-to-end", "crashed"},
    {"StreamCannotBeEnded", "source/end"},
    {"StreamEndsAtItsEndAlone", "source/ends-early"},
    {"StreamIsAlwaysInProcess", "source/in-process"},
    {"StreamChangesItsFormat", "source/format-constant"},
    {"StreamReadsBeforeStart", "source/read-before-start"},
    {"StreamReadsAfterEnd", "source/read-after-end"},
    {"StreamStartsOverAtItsEnd", "source/stays-at-end"},
    {"StreamStartsOnce", "source/starts-again"},
    {"StreamRefusesOuterObject", "source/wrappable"},
    {"StreamDeliversBrokenFrames", "source/whole-frames"},
    {"StreamWritesBehindBuffer", "source/buffer-bounds"},
    {"StreamLosesFramesOfOddReads", "source/any-portions"},
    {"StreamPositionIgnoresReads", "source/position"},
    {"StreamBlockSizeIsInBits", "source/block-size"},
    {"StreamLengthIsOneTooLong", "source/length"},
    {"StreamRawLengthIsInFrames", "source/raw-length"},
    {"StreamsShareTheirPlace", "source/streams-apart"},
    {"StreamChangesSamples", "source/content"},
    {"StreamHasLatinTitle", "source/tags"},
    {"StreamChangesItsTitle", "source/tags-stable"},
    {"StreamHasIndexPointOutside", "source/index-points"},
    {"StreamCountsIndexPointsWithoutEnd", "source/index-points"},
    {"StreamHasAnyIndexPoint", "source/index-out-of-range"},
    {"StreamTellsWrongName", "source/name"},
    {"StreamTellsShortFloats", "source/advanced-format"},
    {"SeekGoesForwardsAlone", "seek/reaches"},
    {"PositionIsOffAfterSeek", "seek/position"},
    {"SeekForwardsLandsLate", "seek/sound"},
    {"SeekFailsAtTheEnd", "seek/back-from-end"},
    {"SeekGoesBeyondTheEnd", "seek/beyond-end"},
    {"EncoderOpensNoTarget", "encoder/opens-target"},
    {"EncoderTakesAnyExtension", "encoder/unknown-extension"},
    {"TargetComesWithoutReference", "encoder/target-reference"},
    {"TargetHasNoFactory", "encoder/factory"},
    {"TargetRefusesEveryFormat", "encoder/creates-stream"},
    {"EncoderStreamComesWithoutReference", "encoder/stream-reference"},
    {"TargetOutlivesItsRelease", "encoder/last-release"},
    {"EncoderStreamCannotBeWrapped", "encoder/interfaces"},
    {"EncoderStreamHasNoRate", "encoder/format"},
    {"EncoderTakesImpossibleFormats", "encoder/impossible-formats"},
    {"EncoderCreatesFileEarly", "encoder/nothing-before-start"},
    {"EncoderDoesNotStart", "encoder/start"},
    {"EncoderDoesNotWrite", "encoder/writes"},
    {"EncoderLeavesNoFile", "encoder/end"},
    {"EncoderIsNeverInProcess", "encoder/in-process"},
    {"EncoderWritesBeforeStart", "encoder/write-before-start"},
    {"EncoderWritesAfterEnd", "encoder/write-after-end"},
    {"EncoderChangesItsFormat", "encoder/format-constant"},
    {"EncoderLosesTheEnd", "encoder/decodes-again"},
    {"EncoderLosesSmallPortions", "encoder/any-portions"},
    {"EncoderCrashesWithoutSound", "encoder/no-sound", "crashed"},
    {"EncoderStartsAnywhere", "encoder/unwritable-place"},
    {"EncoderForgetsTags", "encoder/tags"},
    {"FactoryRefusesEverything", "convertor/creates"},
    {"ConvertorComesWithoutReference", "convertor/reference"},
    {"ConvertorOutlivesItsRelease", "convertor/last-release"},
    {"FactoryCrashesOnNullFormats", "convertor/null-arguments", "crashed"},
    {"FactoryTakesAnyQualifier", "convertor/impossible-formats"},
    {"FactorySupportsUnknownFeatures", "convertor/features"},
    {"FactoryPromisesFloatSamples", "convertor/advanced-formats"},
    {"ConvertorDeliversBrokenFrames", "convertor/output"},
    {"ConvertorTailHasNoEnd", "convertor/tail"},
    {"ConvertorLosesFrames", "convertor/length"},
    {"ConvertorLosesBrokenFrames", "convertor/any-pieces"},
    {"ConvertorChangesSameFormat", "convertor/same-format"},
    {"SecondConvertorChangesSameFormat", "convertor/same-format"},
    {"ConvertorWritesIntoItsInput", "convertor/input-untouched"},
    {"ConvertorsShareState", "convertor/convertors-apart"},
    {"ConvertorHoldsEverythingBack", "convertor/inside-source"},
    {"ConvertorAlwaysClips", "convertor/clipping"},
    {"HandlerHasUnknownProtocol", "handler/protocols"},
    {"HandlerNeverFetches", "handler/fetches"},
    {"HandlerGivesRelativePath", "handler/path"},
    {"HandlerCutsFile", "handler/file"},
    {"HandlerHasOneFileForAll", "handler/files-apart"},
    {"HandlerRemovesFileFetchedAgain", "handler/keeps-files"},
    {"HandlerLeavesFiles", "handler/removes-files"},
    {"HandlerFetchesErrorPages", "handler/refuses-missing"},
    {"HandlerFetchesFromNobody", "handler/refuses-unreachable"},
    {"HandlerRefusesWithoutStatus", "handler/refusal-status"},
    {"HandlerNeedsStatusToRefuse", "handler/null-status", "crashed"},
    {"StatusOutlivesItsRelease", "status/last-release"},
    {"StatusHasNullDescription", "status/description"},
    {"StatusTellsNoReason", "status/reason"},
    {"StatusErrorLacksItsBit", "status/error-bit"},
    {"SettingHasNoValue", "settings/listed"},
    {"SettingsAreCountedWithoutEnd", "settings/listed"},
    {"SettingsHaveNoEnd", "settings/no-others"},
    {"TakesUnknownSettings", "settings/unknown-name"},
    {"TakesUnlistedValues", "settings/unknown-value"},
    {"SettingRefusesItsValue", "settings/takes-its-value"},
    {"ReleaseTellsOldCount", "count/steps"},
    {"FaceCountsAlone", "count/faces"},
    {"ComponentKeepsReference", "count/balance"},
    {"QueryTellsMissingForNullPointer", "query/null-out-pointer"},
    {"QueryLeavesOutPointerAlone", "query/unknown-identity"},
    {"QueryAddsTwoReferences", "query/one-reference"},
    {"FaceForgetsTheOthers", "query/every-face"},
    {"FaceHasOtherIdentity", "query/identity"},
    {"StreamInventsOuterObject", "aggregation/no-outer"},
    {"StreamForgetsOuterObject", "aggregation/remembers-outer"},
    {"StreamHoldsOuterObject", "aggregation/weak"},
    {"StreamAnswersForItself", "aggregation/delegates-queries"},
    {"StreamCountsForItself", "aggregation/delegates-counting"},
    {"InnerQueryAsksOuterObject", "aggregation/inner-queries"},
    {"InnerCountIsOff", "aggregation/inner-counting"},
    {"StreamKeepsOuterObject", "aggregation/lets-go"},
    {"StreamHoldsItselfInSource", "aggregation/source-count"},
    {"StreamCrashesWithItsSource", "aggregation/source-ends", "crashed"},
    {"StreamSoundsOtherInSource", "aggregation/source-sound"},
    {"EncoderStreamHoldsItselfInTarget", "aggregation/target-count"},
    {"EncoderStreamCrashesWithItsTarget", "aggregation/target-ends", "crashed"},
    {"EncoderStreamLosesFrameInTarget", "aggregation/target-writes"},
    {"IsNotReadyAtFirst", "ready/before-use"},
    {"IsAlwaysReady", "ready/while-objects-live"},
    {"IsNeverReadyAgain", "ready/after-use"},
    {"CrashesWhenUnloaded", "unload/closes", "crashed"},
    {"StaysInMemory", "unload/leaves-memory"},
    {"HasUniqueSymbol", "unload/leaves-memory"},
    {"LoadsOnce", "unload/loads-again"},
    {"NeedsTheHostsDirectory", "manager/registers"},
    {"IsReadyOnceTerminated", "manager/unloads"},
    {"LeavesThread", "process/threads"},
    {"LeavesFileOpen", "process/descriptors"},
    {"ChangesDirectory", "process/directory"},
    {"ChangesLocale", "process/locale"},
    {"IgnoresSignal", "process/signal-actions"},
    {"BlocksSignal", "process/signal-mask"},
    {"ChangesFileCreationMask", "process/umask"},
    {"ChangesEnvironment", "process/environment"},
    {"FlushesDenormals", "process/floating-point"},
};

class FailingPlugin : public testing::TestWithParam<SFailure> {};

TEST_P(FailingPlugin, IsFoundByTheCheckForItAlone) {
    const SFailure& failure = GetParam();
    const CFixturePlugin plugin(failure.m_szFixture);
    const bool hangs = std::string(failure.m_szVerdict) == "timedOut";
    std::vector<std::string> arguments = {"--timeout", hangs ? "2" : "60"};
    if (support::kAddressSanitizer) {
        // A process for each check is slow to start there; that the others find nothing is seen without it.
        const std::string check = failure.m_szCheck;
        arguments.insert(arguments.end(), {"--only", check.substr(0, check.find('/'))});
    }
    const nlohmann::json report = ValidateJson(plugin.Path(), arguments);
    const std::string expected = std::string(failure.m_szCheck) + " " + failure.m_szVerdict;
    EXPECT_EQ(FindingsIn(report), std::vector<std::string>{expected}) << report.at("checks").dump(1);
    EXPECT_NE(SeenBy(report, failure.m_szCheck), "");
}

INSTANTIATE_TEST_SUITE_P(Validate, FailingPlugin, testing::ValuesIn(kFailures),
                         [](const auto& test) { return std::string(test.param.m_szFixture); });

TEST(Validate, ASampleOfUnknownLengthHidesNoFaultOfTheNext) {
    const CScratchDirectory scratch;
    std::vector<std::string> arguments = {"--only", "seek/beyond-end"};
    for (const char* const name : {"unknown.wav", "usual.wav"}) {
        std::filesystem::copy_file("/usr/share/sounds/alsa/Front_Center.wav", scratch / name);
        arguments.insert(arguments.end(), {"--sample", scratch / name});
    }
    const nlohmann::json report = ValidateJson(CFixturePlugin("SeekGoesBeyondTheEnd").Path(), arguments);
    EXPECT_EQ(FindingsIn(report), std::vector<std::string>{"seek/beyond-end failed"}) << report.dump(1);
}

TEST(Validate, EveryCheckHasAFixtureThatItFinds) {
    std::set<std::string> found;
    for (const SFailure& failure : kFailures) found.insert(failure.m_szCheck);
    for (const SListedCheck& check : ListedChecks()) EXPECT_EQ(found.erase(check.m_strName), 1u) << check.m_strName;
    EXPECT_EQ(found, std::set<std::string>()) << "no such checks";
}

}  // namespace
