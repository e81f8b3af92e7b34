// Counts from floating-point quotients.
#include <gtest/gtest.h>

#include "stream/TruncateToUnsigned.h"

namespace {

constexpr std::uint64_t kLargest = std::numeric_limits<std::uint64_t>::max();

TEST(TruncateToUnsigned, CutsTheFraction) {
    EXPECT_EQ(TruncateToUnsigned(2.99F), 2U);
    EXPECT_EQ(TruncateToUnsigned(0.99), 0U);
}

TEST(TruncateToUnsigned, TakesWhatLiesOutsideAsTheNearerEnd) {
    EXPECT_EQ(TruncateToUnsigned(-1.0F), 0U);
    EXPECT_EQ(TruncateToUnsigned(1e30F), kLargest);
    EXPECT_EQ(TruncateToUnsigned(18446744073709551616.0), kLargest);
    EXPECT_EQ(TruncateToUnsigned(std::numeric_limits<double>::infinity()), kLargest);
}

TEST(TruncateToUnsigned, KeepsTheLargestFloatBelowTheLimit) {
    EXPECT_EQ(TruncateToUnsigned(18446742974197923840.0F), 18446742974197923840U);
}

TEST(TruncateToUnsigned, TakesWhatIsNoNumberAsZero) {
    EXPECT_EQ(TruncateToUnsigned(std::numeric_limits<float>::quiet_NaN()), 0U);
}

}  // namespace
