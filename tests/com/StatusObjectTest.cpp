// The status object: what it carries, what it answers, its layout and its slots.
#include <gtest/gtest.h>

#include <cstring>
#include <new>
#include <string>
#include <thread>
#include <type_traits>
#include <vector>

#include "com/ComPtr.h"
#include "com/InterfaceIds.h"
#include "com/StatusObject.h"
#include "tests/com/VirtualTable.h"

namespace {

static_assert(sizeof(CStatus) == 88, "two tables 16, count 32, three words 12, padding 4, text 24");
static_assert(alignof(CStatus) == 8, "");
static_assert(sizeof(EAudioError) == 4 && sizeof(EStatusCategory) == 4, "32-bit values");
static_assert(std::is_base_of<IStatus, CStatus>::value && std::is_base_of<IStatusCategory, CStatus>::value, "");
static_assert(std::has_virtual_destructor<CStatus>::value, "");

constexpr auto kCategory = static_cast<EStatusCategory>(7);

// Tells when it ends.
class CWatchedStatus final : public CStatus {
public:
    explicit CWatchedStatus(int& destroyed) : CStatus(AE_NONE), m_nDestroyed(destroyed) {}
    ~CWatchedStatus() override { ++m_nDestroyed; }

    unsigned int AddRef() override { return CStatus::AddRef(); }
    unsigned int Release() override { return CStatus::Release(); }
    int QueryInterface(unsigned long identity, void** face) override { return CStatus::QueryInterface(identity, face); }
    EStatusCategory GetCategory() override { return CStatus::GetCategory(); }

private:
    int& m_nDestroyed;
};

template <typename T>
T FieldAt(const void* object, std::size_t offset) {
    T field;
    std::memcpy(&field, static_cast<const char*>(object) + offset, sizeof(field));
    return field;
}

using FCount = unsigned int (*)(void* face);
using FQuery = int (*)(void* face, unsigned long identity, void** answer);
using FGetText = const char* (*)(void* face);
using FGetWord = unsigned int (*)(void* face);
using FSetWord = void (*)(void* face, unsigned int word);
using FDestroy = void (*)(void* face);

TEST(Status, BuiltFromAnAudioErrorHoldsNothingElse) {
    CStatus status(static_cast<EAudioError>(0x80000013));
    EXPECT_EQ(status.GetAudioError(), 0x80000013U);
    EXPECT_EQ(status.GetSysError(), 0U);
    EXPECT_STREQ(status.GetDescription(), "");
    EXPECT_EQ(status.GetCategory(), 0U);
    void* face = &status;
    EXPECT_EQ(status.QueryInterface(48, &face), 2);
    EXPECT_EQ(face, nullptr);
}

TEST(Status, BuiltFromASystemErrorHoldsNothingElse) {
    CStatus status(2U);
    EXPECT_EQ(status.GetSysError(), 2U);
    EXPECT_EQ(status.GetAudioError(), 0U);
    EXPECT_STREQ(status.GetDescription(), "");
    EXPECT_EQ(status.GetCategory(), 0U);
}

TEST(Status, BuiltFromATextHoldsNothingElse) {
    CStatus status("No conversion possible");
    EXPECT_STREQ(status.GetDescription(), "No conversion possible");
    EXPECT_EQ(status.GetAudioError(), 0U);
    EXPECT_EQ(status.GetSysError(), 0U);
    EXPECT_EQ(status.GetCategory(), 0U);
}

TEST(Status, CopiesTheTextItIsBuiltFrom) {
    char text[] = "gone";
    CStatus status(text);
    text[0] = 'd';
    EXPECT_STREQ(status.GetDescription(), "gone");
}

TEST(Status, ErrorCodesHaveTheirNumbers) {
    EXPECT_EQ(AE_NONE, 0U);
    EXPECT_EQ(AE_BAD_ARGUMENT, 0x80000001U);
    EXPECT_EQ(AE_BUFFER_TOO_SMALL, 0x80000002U);
    EXPECT_EQ(AE_UNKNOWN_URL, 0x80000003U);
    EXPECT_EQ(AE_NO_DECODER, 0x80000004U);
    EXPECT_EQ(AE_PLUGINS_LOADED, 0x80000013U);
}

TEST(Status, StartsWithTheOneReferenceOfItsCreator) {
    int destroyed = 0;
    CStatus* const status = new CWatchedStatus(destroyed);
    EXPECT_EQ(status->AddRef(), 2U);
    EXPECT_EQ(status->Release(), 1U);
    EXPECT_EQ(destroyed, 0);
    EXPECT_EQ(status->Release(), 0U);
    EXPECT_EQ(destroyed, 1);
}

TEST(Status, OneReleaseAfterConstructionDestroysIt) {
    int destroyed = 0;
    EXPECT_EQ((new CWatchedStatus(destroyed))->Release(), 0U);
    EXPECT_EQ(destroyed, 1);
}

TEST(Status, ReleaseThroughTheCategoryFaceDestroysItToo) {
    int destroyed = 0;
    IStatusCategory* const category = new CWatchedStatus(destroyed);
    EXPECT_EQ(category->Release(), 0U);
    EXPECT_EQ(destroyed, 1);
}

TEST(Status, BalancedReferencesFromManyThreadsKeepIt) {
    int destroyed = 0;
    CStatus* const status = new CWatchedStatus(destroyed);
    std::vector<std::thread> threads;
    for (int i = 0; i < 8; ++i) {
        threads.emplace_back([status] {
            IStatusCategory* const category = status;
            for (int turn = 0; turn < 2000; ++turn) {
                status->AddRef();
                category->AddRef();
                status->Release();
                category->Release();
            }
        });
    }
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(destroyed, 0);
    EXPECT_EQ(status->Release(), 0U);
    EXPECT_EQ(destroyed, 1);
}

TEST(StatusQuery, ZeroAndOneAreTheStatusFace) {
    CStatus status(AE_NONE);
    for (const unsigned long identity : {0UL, 1UL}) {
        void* face = nullptr;
        EXPECT_EQ(status.QueryInterface(identity, &face), 0) << identity;
        EXPECT_EQ(face, static_cast<IStatus*>(&status)) << identity;
    }
}

TEST(StatusQuery, ASuccessAddsExactlyOneReference) {
    CStatus status(AE_NONE);
    void* face = nullptr;
    status.QueryInterface(1, &face);
    EXPECT_EQ(status.AddRef(), 3U);
}

TEST(StatusQuery, FortyEightIsTheCategoryFaceWhileThereIsACategory) {
    CStatus status(AE_NONE);
    status.SetCategory(kCategory);
    const auto category = CComPtr<IStatusCategory>::Query(&status, 48);
    ASSERT_TRUE(category);
    EXPECT_EQ(category.Get(), static_cast<IStatusCategory*>(&status));
    EXPECT_EQ(category->GetCategory(), kCategory);
}

TEST(StatusQuery, SettingTheCategoryToZeroDeniesItAgain) {
    CStatus status(AE_NONE);
    status.SetCategory(kCategory);
    status.SetCategory(static_cast<EStatusCategory>(0));
    void* face = &status;
    EXPECT_EQ(status.QueryInterface(48, &face), 2);
    EXPECT_EQ(face, nullptr);
    EXPECT_EQ(status.AddRef(), 2U);
}

TEST(StatusQuery, AnUnknownIdentityIsDenied) {
    CStatus status(AE_NONE);
    status.SetCategory(kCategory);
    for (const unsigned long identity : {2UL, 16UL, 49UL, 1UL << 32}) {
        void* face = &status;
        EXPECT_EQ(status.QueryInterface(identity, &face), 2) << identity;
        EXPECT_EQ(face, nullptr) << identity;
    }
}

TEST(StatusQuery, ANullOutPointerReturnsThreeAndTakesNoReference) {
    CStatus status(AE_NONE);
    EXPECT_EQ(status.QueryInterface(0, nullptr), 3);
    EXPECT_EQ(status.QueryInterface(99, nullptr), 3);
    EXPECT_EQ(status.AddRef(), 2U);
}

TEST(StatusQuery, BothFacesAnswerAlike) {
    CStatus status(AE_NONE);
    status.SetCategory(kCategory);
    IStatusCategory* const category = &status;
    void* face = nullptr;
    EXPECT_EQ(category->QueryInterface(0, &face), 0);
    EXPECT_EQ(face, static_cast<IStatus*>(&status));
    EXPECT_EQ(category->QueryInterface(48, &face), 0);
    EXPECT_EQ(face, category);
    EXPECT_EQ(category->AddRef(), 4U);
}

TEST(ReportStatus, HandsOverTheCreatorsReference) {
    IStatus* status = nullptr;
    ReportStatus(&status, AE_NO_DECODER);
    ASSERT_NE(status, nullptr);
    EXPECT_EQ(status->GetAudioError(), AE_NO_DECODER);
    EXPECT_EQ(status->AddRef(), 2U);
    status->Release();
    EXPECT_EQ(status->Release(), 0U);
}

TEST(ReportStatus, TakesASystemErrorOrAText) {
    CComPtr<IStatus> status;
    ReportStatus(status.Out(), 13U);
    EXPECT_EQ(status->GetSysError(), 13U);
    ReportStatus(status.Out(), "No conversion possible");
    EXPECT_STREQ(status->GetDescription(), "No conversion possible");
}

// A reason that counts how often a status is made from it.
struct SCountedReason {
    operator EAudioError() const {
        ++*m_pMade;
        return AE_NO_DECODER;
    }
    int* m_pMade;
};

TEST(ReportStatus, MakesNothingWithoutAnOutPointer) {
    int made = 0;
    ReportStatus(nullptr, SCountedReason{&made});
    EXPECT_EQ(made, 0);
    CComPtr<IStatus> status;
    ReportStatus(status.Out(), SCountedReason{&made});
    EXPECT_EQ(made, 1);
}

TEST(StatusLayout, TheCategoryFaceStandsBehindThePrimaryOne) {
    CStatus status(AE_NONE);
    EXPECT_EQ(static_cast<void*>(static_cast<IStatus*>(&status)), &status);
    EXPECT_EQ(reinterpret_cast<char*>(static_cast<IStatusCategory*>(&status)), reinterpret_cast<char*>(&status) + 8);
}

TEST(StatusLayout, HoldsCountErrorsCategoryAndTextInThisOrder) {
    CStatus status(static_cast<EAudioError>(0x80000004));
    status.SetCategory(kCategory);
    status.AddRef();
    int count = 0;
    ASSERT_EQ(sem_getvalue(reinterpret_cast<sem_t*>(reinterpret_cast<char*>(&status) + 16), &count), 0);
    EXPECT_EQ(count, 2);
    EXPECT_EQ(FieldAt<unsigned int>(&status, 52), 0x80000004U);
    EXPECT_EQ(FieldAt<unsigned int>(&status, 56), 7U);
    CStatus system(13U);
    EXPECT_EQ(FieldAt<unsigned int>(&system, 48), 13U);
}

TEST(StatusLayout, TheTextIsAGrowableStringAtTheEnd) {
    CStatus status("No conversion possible");
    EXPECT_EQ(FieldAt<const char*>(&status, 72), status.GetDescription());
    EXPECT_EQ(FieldAt<int>(&status, 80), 46);
    EXPECT_EQ(FieldAt<int>(&status, 84), 22);
}

TEST(StatusLayout, ALongTextHasTwiceItsLengthPlusTwoBytesAndAZeroedTail) {
    CStatus status("hello");
    const char expected[12] = {'h', 'e', 'l', 'l', 'o'};
    ASSERT_EQ(FieldAt<int>(&status, 80), 12);
    EXPECT_EQ(std::memcmp(status.GetDescription(), expected, sizeof(expected)), 0);
}

TEST(StatusLayout, AShortTextStaysInTheInitialSixBytes) {
    CStatus status("four");
    const char expected[6] = {'f', 'o', 'u', 'r'};
    ASSERT_EQ(FieldAt<int>(&status, 80), 6);
    EXPECT_EQ(std::memcmp(status.GetDescription(), expected, sizeof(expected)), 0);
}

TEST(StatusSlots, ZeroToTwoAreThoseOfTheRootInterface) {
    CStatus status(AE_NONE);
    EXPECT_EQ(CallSlot<FCount>(&status, 0), 2U);
    EXPECT_EQ(CallSlot<FCount>(&status, 1), 1U);
    void* face = nullptr;
    EXPECT_EQ(CallSlot<FQuery>(&status, 2, 1UL, &face), 0);
    EXPECT_EQ(face, &status);
}

TEST(StatusSlots, ThreeToFiveReadTextAndErrors) {
    CStatus text("why");
    CStatus audio(static_cast<EAudioError>(0x80000003));
    CStatus system(5U);
    EXPECT_STREQ(CallSlot<FGetText>(&text, 3), "why");
    EXPECT_EQ(CallSlot<FGetWord>(&audio, 4), 0x80000003U);
    EXPECT_EQ(CallSlot<FGetWord>(&system, 5), 5U);
}

TEST(StatusSlots, SixDestroysWithoutFreeing) {
    alignas(CWatchedStatus) unsigned char storage[sizeof(CWatchedStatus)];
    int destroyed = 0;
    CallSlot<FDestroy>(new (storage) CWatchedStatus(destroyed), 6);
    EXPECT_EQ(destroyed, 1);
}

TEST(StatusSlots, SevenDestroysAndFrees) {
    int destroyed = 0;
    CallSlot<FDestroy>(new CWatchedStatus(destroyed), 7);
    EXPECT_EQ(destroyed, 1);
}

TEST(StatusSlots, EightAndNineSetAndGetTheCategory) {
    CStatus status(AE_NONE);
    CallSlot<FSetWord>(&status, 8, 7U);
    EXPECT_EQ(CallSlot<FGetWord>(&status, 9), 7U);
}

TEST(StatusSlots, OfTheCategoryFaceForwardToTheSameObject) {
    CStatus status(AE_NONE);
    status.SetCategory(kCategory);
    void* const category = static_cast<IStatusCategory*>(&status);
    EXPECT_EQ(CallSlot<FCount>(category, 0), 2U);
    EXPECT_EQ(status.AddRef(), 3U);
    EXPECT_EQ(CallSlot<FCount>(category, 1), 2U);
    void* face = nullptr;
    EXPECT_EQ(CallSlot<FQuery>(category, 2, 48UL, &face), 0);
    EXPECT_EQ(face, category);
    EXPECT_EQ(CallSlot<FGetWord>(category, 3), 7U);
}

TEST(StatusSlots, HoldTheExportedFunctions) {
    constexpr const char* kSymbols[] = {
        "_ZN7CStatus6AddRefEv",
        "_ZN7CStatus7ReleaseEv",
        "_ZN7CStatus14QueryInterfaceEmPPv",
        "_ZN7CStatus14GetDescriptionEv",
        "_ZN7CStatus13GetAudioErrorEv",
        "_ZN7CStatus11GetSysErrorEv",
        "_ZN7CStatusD1Ev",
        "_ZN7CStatusD0Ev",
        "_ZN7CStatus11SetCategoryE15EStatusCategory",
        "_ZN7CStatus11GetCategoryEv",
    };
    CStatus status(AE_NONE);
    std::size_t slot = 0;
    for (const char* const symbol : kSymbols) {
        EXPECT_TRUE(SlotHolds(&status, slot, symbol)) << slot << " holds " << SlotSymbol(&status, slot);
        ++slot;
    }
}

}  // namespace
