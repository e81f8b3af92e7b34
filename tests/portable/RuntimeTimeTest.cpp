// Calendar time as text and fields.
#include <errno.h>
#include <gtest/gtest.h>
#include <limits.h>
#include <stdlib.h>
#include <string.h>

#include <algorithm>

#include "portable/RuntimeTime.h"

namespace {

class RuntimeTime : public testing::Test {
protected:
    void SetUp() override {
        setenv("TZ", "UTC0", 1);
        tzset();
        memset(m_text, '#', sizeof m_text);
        errno = 0;
    }

    // True when every byte of `fields` is 0xFF, so that every field is -1.
    static bool AllMinusOne(const struct tm& fields) {
        const auto* const bytes = reinterpret_cast<const unsigned char*>(&fields);
        return std::all_of(bytes, bytes + sizeof fields, [](unsigned char byte) { return byte == 0xFF; });
    }

    char m_text[32];
};

}  // namespace

TEST_F(RuntimeTime, CtimeWritesTheTextOfATime) {
    const time_t time = 86400;
    EXPECT_EQ(0, ctime_s(m_text, 26, &time));
    EXPECT_STREQ("Fri Jan  2 00:00:00 1970\n", m_text);
    const time_t zero = 0;
    EXPECT_EQ(0, ctime_s(m_text, sizeof m_text, &zero));
    EXPECT_STREQ("Thu Jan  1 00:00:00 1970\n", m_text);
}

TEST_F(RuntimeTime, CtimeReturnsWhateverErrnoHolds) {
    const time_t time = 0;
    errno = 77;
    EXPECT_EQ(77, ctime_s(m_text, 26, &time));
    EXPECT_STREQ("Thu Jan  1 00:00:00 1970\n", m_text);
}

TEST_F(RuntimeTime, CtimeRefusesNullAndSizeZero) {
    const time_t time = 0;
    EXPECT_EQ(EINVAL, ctime_s(nullptr, 26, &time));
    EXPECT_EQ(EINVAL, ctime_s(m_text, 0, &time));
    EXPECT_EQ('#', m_text[0]);
}

TEST_F(RuntimeTime, CtimeEmptiesTheBufferForSmallSizesAndBadTimes) {
    const time_t good = 0;
    const time_t negative = -1;
    struct SCase {
        size_t m_nSize;
        const time_t* m_pTime;
    };
    const SCase cases[] = {{25, &good}, {1, &good}, {26, nullptr}, {26, &negative}};
    for (const SCase& c : cases) {
        strcpy(m_text, "old");
        EXPECT_EQ(EINVAL, ctime_s(m_text, c.m_nSize, c.m_pTime)) << &c - cases;
        EXPECT_STREQ("", m_text) << &c - cases;
    }
}

TEST_F(RuntimeTime, CtimeEmptiesTheBufferForYearsItCannotWrite) {
    const time_t lastOfFourDigits = 253402300799;
    EXPECT_EQ(0, ctime_s(m_text, 26, &lastOfFourDigits));
    EXPECT_STREQ("Fri Dec 31 23:59:59 9999\n", m_text);
    for (const time_t time : {lastOfFourDigits + 1, time_t{LONG_MAX}}) {
        strcpy(m_text, "old");
        errno = 0;
        const int result = ctime_s(m_text, 26, &time);
        EXPECT_NE(0, result) << time;
        EXPECT_EQ(errno, result) << time;
        EXPECT_STREQ("", m_text) << time;
    }
}

TEST_F(RuntimeTime, LocaltimeBreaksATimeDown) {
    setenv("TZ", "XXX-2", 1);
    tzset();
    const time_t time = 86400;
    struct tm fields = {};
    EXPECT_EQ(0, localtime_s(&fields, &time));
    EXPECT_EQ(70, fields.tm_year);
    EXPECT_EQ(0, fields.tm_mon);
    EXPECT_EQ(2, fields.tm_mday);
    EXPECT_EQ(2, fields.tm_hour);
    EXPECT_EQ(0, fields.tm_min);
    EXPECT_EQ(0, fields.tm_sec);
    EXPECT_EQ(5, fields.tm_wday);
    EXPECT_EQ(1, fields.tm_yday);
    EXPECT_EQ(0, fields.tm_isdst);
}

TEST_F(RuntimeTime, LocaltimeOfNullSetsEveryFieldToMinusOne) {
    struct tm fields = {};
    EXPECT_EQ(EINVAL, localtime_s(&fields, nullptr));
    EXPECT_TRUE(AllMinusOne(fields));
    EXPECT_EQ(-1, fields.tm_sec);
    EXPECT_EQ(-1, fields.tm_isdst);
}

TEST_F(RuntimeTime, LocaltimeOfANegativeTimeSetsEveryFieldToMinusOne) {
    const time_t negative = -1;
    struct tm fields = {};
    EXPECT_EQ(EINVAL, localtime_s(&fields, &negative));
    EXPECT_TRUE(AllMinusOne(fields));
}

TEST_F(RuntimeTime, LocaltimeRefusesANullDestination) {
    const time_t time = 0;
    EXPECT_EQ(EINVAL, localtime_s(nullptr, &time));
}
