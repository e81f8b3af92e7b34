// Collections and their members.
#include <functional>

#include "com/ComponentEnum.h"
#include "com/InterfaceIds.h"
#include "host/validate/Checks.h"
#include "host/validate/Outcome.h"
#include "host/validate/References.h"
#include "host/validate/Steps.h"
#include "host/validate/Trial.h"

namespace {

constexpr int kMostNesting = 7;

void ForEachCollection(CTrial& trial, const std::function<void(IComponentEnum& members)>& examine) {
    for (const SComponent& component : trial.Loaded().GetEverything()) {
        if (component.m_eType != ACT_COLLECTION) continue;
        const auto members = CComPtr<IComponentEnum>::Query(component.m_pComponent.Get(), IID_IComponentEnum);
        Expect(static_cast<bool>(members), component.m_strLabel + ": no IComponentEnum");
        TellStep("asking a collection for its members");
        examine(*members);
    }
}

std::string PlaceText(int index) { return "member " + std::to_string(index) + ": "; }

void GivesEveryMember(CTrial& trial) {
    ForEachCollection(trial, [](IComponentEnum& members) {
        for (int i = 0; i < members.GetCount(); ++i) {
            IAudioComponent* member = nullptr;
            Expect(members.GetComponent(i, &member), PlaceText(i) + "false");
            Expect(member != nullptr, PlaceText(i) + "true, and no component is stored");
        }
    });
}

void GivesReferences(CTrial& trial) {
    ForEachCollection(trial, [](IComponentEnum& members) {
        for (int i = 0; i < members.GetCount(); ++i) {
            IAudioComponent* member = nullptr;
            members.GetComponent(i, &member);
            Expect(member != nullptr, "no component " + std::to_string(i));
            ExpectOwnReference(*member);
        }
    });
}

void KeepsCount(CTrial& trial) {
    ForEachCollection(trial, [](IComponentEnum& members) {
        const int count = members.GetCount();
        Expect(count >= 0, "a count of " + std::to_string(count));
        for (int again = 0; again < 3; ++again) {
            const int other = members.GetCount();
            Expect(other == count, "first " + std::to_string(count) + " members, then " + std::to_string(other));
        }
    });
}

void RefusesOtherIndexes(CTrial& trial) {
    ForEachCollection(trial, [](IComponentEnum& members) {
        const int count = members.GetCount();
        for (const int index : {-1, count, count + 1000}) {
            IAudioComponent* member = nullptr;
            Expect(!members.GetComponent(index, &member),
                   "true for member " + std::to_string(index) + " of " + std::to_string(count));
        }
    });
}

void Ends(IAudioComponent& component, int depth) {
    Expect(depth <= kMostNesting,
           "more than " + std::to_string(kMostNesting) + " collections inside one another: does one hold itself?");
    const bool isCollection = component.GetType() == ACT_COLLECTION;
    const auto members = CComPtr<IComponentEnum>::Query(isCollection ? &component : nullptr, IID_IComponentEnum);
    for (int i = 0; members && i < members->GetCount(); ++i) {
        CComPtr<IAudioComponent> member;
        if (members->GetComponent(i, member.Out()) && member) Ends(*member, depth + 1);
    }
}

void NestsWithEnd(CTrial& trial) { Ends(*trial.Loaded().GetEverything().front().m_pComponent, 0); }

}  // namespace

CCheckList CollectionChecks() {
    return {
        {"collection/members", "A collection stores a component for each index below its count.", CONCERN_COLLECTION,
         "entry/reference", GivesEveryMember},
        {"collection/reference", "Each member comes with a reference that the caller owns.", CONCERN_COLLECTION,
         "collection/members", GivesReferences},
        {"collection/count-stable", "A collection tells the same count each time.", CONCERN_COLLECTION,
         "collection/members", KeepsCount},
        {"collection/out-of-range", "A collection answers false for an index that it does not have.",
         CONCERN_COLLECTION, "collection/reference", RefusesOtherIndexes},
        {"collection/nesting", "Collections inside collections come to an end.", CONCERN_COLLECTION,
         "collection/reference", NestsWithEnd},
    };
}
