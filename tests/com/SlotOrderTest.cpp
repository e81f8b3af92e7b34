// The tables of this folder's exported classes hold the exported functions, slot by slot, and nothing behind them.
#include <gtest/gtest.h>

#include "com/ComPtr.h"
#include "com/ComponentList.h"
#include "com/StatusObject.h"
#include "tests/support/ClassTable.h"

namespace {

using support::ExpectSlots;
using support::ExpectTableLengths;
using support::kPure;
using support::TableOf;
using support::TableOfClass;

TEST(SlotOrder, OfAStatus) {
    CStatus status(AE_NONE);
    ExpectSlots(TableOf(static_cast<IStatus*>(&status)),
                {"_ZN7CStatus6AddRefEv", "_ZN7CStatus7ReleaseEv", "_ZN7CStatus14QueryInterfaceEmPPv",
                 "_ZN7CStatus14GetDescriptionEv", "_ZN7CStatus13GetAudioErrorEv", "_ZN7CStatus11GetSysErrorEv",
                 "_ZN7CStatusD1Ev", "_ZN7CStatusD0Ev", "_ZN7CStatus11SetCategoryE15EStatusCategory",
                 "_ZN7CStatus11GetCategoryEv"});
    ExpectSlots(TableOf(static_cast<IStatusCategory*>(&status)),
                {"_ZThn8_N7CStatus6AddRefEv", "_ZThn8_N7CStatus7ReleaseEv", "_ZThn8_N7CStatus14QueryInterfaceEmPPv",
                 "_ZThn8_N7CStatus11GetCategoryEv"});
    ExpectTableLengths("_ZTV7CStatus", {10, 4});
}

TEST(SlotOrder, OfAComponentEnumerator) {
    const auto list = CComPtr<CComponentEnum>::Adopt(new CComponentEnum);
    ExpectSlots(TableOf(list.Get()), {"_ZN14CComponentEnum6AddRefEv", "_ZN14CComponentEnum7ReleaseEv",
                                      "_ZN14CComponentEnum14QueryInterfaceEmPPv", "_ZN14CComponentEnum8GetCountEv",
                                      "_ZN14CComponentEnum12GetComponentEiPP15IAudioComponent"});
    ExpectTableLengths("_ZTV14CComponentEnum", {5});
}

// The class is abstract: its own table, which its objects have while they are built, is read. A compiler may leave the
// destructors' slots behind these empty there.
TEST(SlotOrder, OfAnAggregatable) {
    ExpectSlots(TableOfClass("_ZTV13CAggregatable"),
                {kPure, kPure, kPure, "_ZN13CAggregatable13SetAggregatorEP8IUnknown",
                 "_ZN13CAggregatable13GetAggregatorEPP8IUnknown", kPure, "_ZN13CAggregatable11InnerAddRefEv",
                 "_ZN13CAggregatable12InnerReleaseEv"});
    ExpectTableLengths("_ZTV13CAggregatable", {10});
}

}  // namespace
