// Reference counts.
#include "host/validate/Checks.h"
#include "host/validate/Exercise.h"
#include "host/validate/Objects.h"
#include "host/validate/Outcome.h"
#include "host/validate/References.h"
#include "host/validate/Steps.h"

namespace {

std::string StepText(const char* operation, unsigned int before, unsigned int after) {
    return std::string(operation) + " makes " + std::to_string(after) + " of " + std::to_string(before);
}

void CountsInSteps(CTrial& trial) {
    ForEachObject(EveryObject(trial), [](IUnknown& object) {
        TellStep("AddRef and Release");
        const unsigned int first = object.AddRef();
        const unsigned int second = object.AddRef();
        Expect(second == first + 1, StepText("AddRef", first, second));
        const unsigned int third = object.Release();
        Expect(third == first, StepText("Release", second, third));
        const unsigned int fourth = object.Release();
        Expect(fourth + 1 == first, StepText("Release", third, fourth));
    });
}

void CountsForEveryFace(CTrial& trial) {
    ForEachObject(EveryObject(trial), [](IUnknown& object) {
        const std::vector<SFace> faces = FacesOf(object);
        const unsigned int before = CountOf(object);
        for (const SFace& face : faces) {
            const unsigned int seen = CountOf(*face.m_pFace);
            Expect(seen == before, "the " + IdentityText(face.m_nIdentity) + " face counts " + std::to_string(seen) +
                                       " references where the object has " + std::to_string(before));
        }
    });
}

void ComesBackToCount(CTrial& trial) {
    std::vector<unsigned int> before;
    const CComponents& components = trial.Plugin().GetEverything();
    for (const SComponent& component : components) before.push_back(CountOf(*component.m_pComponent));
    Exercise(trial);
    for (std::size_t i = 0; i < components.size(); ++i) {
        const unsigned int after = CountOf(*components[i].m_pComponent);
        Expect(after == before[i], components[i].m_strLabel + " has " + std::to_string(after) +
                                       " references after use where it had " + std::to_string(before[i]));
    }
}

}  // namespace

CCheckList CountChecks() {
    return {
        {"count/steps", "AddRef and Release answer the count that they make, one more and one less.", CONCERN_ANY,
         "component/initialize", CountsInSteps},
        {"count/faces", "All faces of an object have one count.", CONCERN_ANY, "count/steps", CountsForEveryFace},
        {"count/balance", "After use, with everything released, components have the references that they had before.",
         CONCERN_ANY, "count/steps", ComesBackToCount},
    };
}
