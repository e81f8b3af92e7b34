// What becomes of exceptions at the plug-in's border.
#include <gtest/gtest.h>

#include "sdk/Guard.h"
#include "tests/support/StreamQueries.h"

namespace {

using support::TextOf;

template <typename TThrown>
CComPtr<IStatus> StatusOf(const TThrown& thrown, const std::string& subject = "song.wav") {
    CComPtr<IStatus> status;
    EXPECT_FALSE(Guarded(status.Out(), subject, [&]() -> bool { throw thrown; }));
    return status;
}

TEST(SdkGuard, PassesTheResultOn) {
    CComPtr<IStatus> status;
    EXPECT_TRUE(Guarded(status.Out(), "song.wav", [] { return true; }));
    EXPECT_FALSE(Guarded(status.Out(), "song.wav", [] { return false; }));
    EXPECT_FALSE(status);
}

TEST(SdkGuard, DescribesWhatWasThrown) {
    EXPECT_STREQ(TextOf(StatusOf(std::runtime_error("no room"))), "song.wav: no room");
    EXPECT_STREQ(TextOf(StatusOf(std::runtime_error("no room"), "")), "no room");
    EXPECT_STREQ(TextOf(StatusOf(5)), "song.wav: unknown failure");
    EXPECT_EQ(StatusOf(std::bad_alloc())->GetSysError(), static_cast<unsigned int>(ENOMEM));
    EXPECT_EQ(StatusOf(CBadArgument())->GetAudioError(), AE_BAD_ARGUMENT);
}

TEST(SdkGuard, NeedsNoStatus) {
    EXPECT_FALSE(Guarded(nullptr, "song.wav", []() -> bool { Refuse("no room"); }));
    EXPECT_FALSE(Guarded(nullptr, "song.wav", []() -> bool { throw std::bad_alloc(); }));
    EXPECT_FALSE(Guarded(nullptr, "song.wav", []() -> bool { throw CBadArgument(); }));
}

TEST(SdkGuard, NamesTheFileAsAPersonKnowsIt) {
    EXPECT_EQ(FileNameOf("/music/song.wav"), "song.wav");
    EXPECT_EQ(FileNameOf("song.wav"), "song.wav");
    EXPECT_EQ(FileNameOf("/music/"), "/music/");
}

}  // namespace
