// Identities of the interfaces and their comparison.
#include <gtest/gtest.h>

#include <set>
#include <type_traits>

#include "com/InterfaceIds.h"

namespace {

struct SIdentity {
    const char* m_pszInterface;
    unsigned long m_nDeclared;
    unsigned long m_nExpected;
};

constexpr SIdentity kIdentities[] = {
    {"IUnknown", IID_IUnknown, 0},
    {"IStatus", IID_IStatus, 1},
    {"IProcess", IID_IProcess, 2},
    {"source name", IID_ISourceName, 3},
    {"IAggregatable", IID_IAggregatable, 4},
    {"IAudioRawReader", IID_IAudioRawReader, 6},
    {"IAudioFileOpener", IID_IAudioFileOpener, 11},
    {"IConvertorFactory", IID_IConvertorFactory, 13},
    {"IComponentEnum", IID_IComponentEnum, 16},
    {"IProfile", IID_IProfile, 19},
    {"ISeekable", IID_ISeekable, 20},
    {"IAudioRawBlockInfo", IID_IAudioRawBlockInfo, 21},
    {"IExtensionList", IID_IExtensionList, 22},
    {"IAudioRawWriter", IID_IAudioRawWriter, 23},
    {"IInfoReader", IID_IInfoReader, 25},
    {"IConfigurable", IID_IConfigurable, 33},
    {"IURLSourceHandler", IID_IURLSourceHandler, 34},
    {"IComponentAbout", IID_IComponentAbout, 43},
    {"IFeatureSupport", IID_IFeatureSupport, 45},
    {"IAdvancedFormat", IID_IAdvancedFormat, 46},
    {"IStatusCategory", IID_IStatusCategory, 48},
    {"IRealFormat", IID_IRealFormat, 60},
    {"IIndexArray", IID_IIndexArray, 61},
    {"IAppWindow", IID_IAppWindow, 63},
    {"IAudioPluginMgrInternal", IID_IAudioPluginMgrInternal, 64},
    {"IComponentOrderMgr", IID_IComponentOrderMgr, 65},
    {"IAudioTargetOpener", IID_IAudioTargetOpener, 1000},
    {"ITargetTags", IID_ITargetTags, 1001},
    {"INamedSettings", IID_INamedSettings, 1002},
    {"IClippingCount", IID_IClippingCount, 1003},
};

TEST(InterfaceIds, EveryInterfaceHasItsNumber) {
    for (const SIdentity& identity : kIdentities) {
        EXPECT_EQ(identity.m_nDeclared, identity.m_nExpected) << identity.m_pszInterface;
    }
}

TEST(InterfaceIds, NoTwoInterfacesShareANumber) {
    std::set<unsigned long> numbers;
    for (const SIdentity& identity : kIdentities) {
        EXPECT_TRUE(numbers.insert(identity.m_nDeclared).second) << identity.m_pszInterface;
    }
}

TEST(InterfaceIds, AreUnsignedLongIntegers) {
    EXPECT_TRUE((std::is_same<decltype(IID_IUnknown), const unsigned long>::value));
}

TEST(IsEqualIID, IsOneForTheSameNumber) {
    EXPECT_EQ(IsEqualIID(16, 16), 1);
    EXPECT_EQ(IsEqualIID(0, 0), 1);
}

TEST(IsEqualIID, IsZeroForDifferentNumbers) {
    EXPECT_EQ(IsEqualIID(0, 16), 0);
    EXPECT_EQ(IsEqualIID(16, 0), 0);
}

TEST(IsEqualIID, ComparesAllSixtyFourBits) { EXPECT_EQ(IsEqualIID(16, 16 | (1UL << 32)), 0); }

TEST(IsEqualIID, IsAFunctionFromTwoIdentitiesToInt) {
    EXPECT_TRUE((std::is_same<decltype(&IsEqualIID), int (*)(unsigned long, unsigned long)>::value));
}

}  // namespace
