// The rules of QueryInterface.
#include "com/InterfaceIds.h"
#include "host/validate/Checks.h"
#include "host/validate/Objects.h"
#include "host/validate/Outcome.h"
#include "host/validate/References.h"

namespace {

constexpr unsigned long kUnknownIdentities[] = {5, 999999, ~0UL};

std::string ResultText(int result, int expected) {
    return std::to_string(result) + " instead of " + std::to_string(expected);
}

void AnswersNullOutPointer(CTrial& trial) {
    ForEachObject(EveryObject(trial), [](IUnknown& object) {
        for (const unsigned long identity : {IID_IUnknown, kUnknownIdentities[0]}) {
            const int result = object.QueryInterface(identity, nullptr);
            Expect(result == kInterfaceNoOutPointer, ResultText(result, kInterfaceNoOutPointer));
        }
    });
}

void AnswersUnknownIdentity(CTrial& trial) {
    ForEachObject(EveryObject(trial), [](IUnknown& object) {
        for (const unsigned long identity : kUnknownIdentities) {
            void* face = &object;
            const int result = object.QueryInterface(identity, &face);
            Expect(result == kInterfaceMissing,
                   "identity " + std::to_string(identity) + ": " + ResultText(result, kInterfaceMissing));
            Expect(face == nullptr,
                   "identity " + std::to_string(identity) + ": the out-pointer's target is not set to null");
        }
    });
}

void AddsOneReference(CTrial& trial) {
    ForEachObject(EveryObject(trial), [](IUnknown& object) {
        for (const SFace& face : FacesOf(object)) {
            const unsigned int before = CountOf(object);
            void* answer = nullptr;
            object.QueryInterface(face.m_nIdentity, &answer);
            const unsigned int after = CountOf(object);
            Expect(after == before + 1, "asked for " + IdentityText(face.m_nIdentity) + ", the count goes from " +
                                            std::to_string(before) + " to " + std::to_string(after));
            face.m_pFace->Release();
        }
    });
}

// With one answer from every face, queries are reflexive, symmetric and transitive.
void AnswersFromEveryFace(CTrial& trial) {
    ForEachObject(EveryObject(trial), [](IUnknown& object) {
        const std::vector<SFace> faces = FacesOf(object);
        for (const SFace& asked : faces) {
            for (const SFace& wanted : faces) {
                Expect(FaceFor(*asked.m_pFace, wanted.m_nIdentity) != nullptr,
                       IdentityText(wanted.m_nIdentity) + " is not to be had from the " +
                           IdentityText(asked.m_nIdentity) + " face");
            }
        }
    });
}

void HasOneIdentity(CTrial& trial) {
    ForEachObject(EveryObject(trial), [](IUnknown& object) {
        const IUnknown* const identity = FaceFor(object, IID_IUnknown);
        Expect(identity != nullptr, "no IUnknown (identity 0)");
        for (const SFace& face : FacesOf(object)) {
            for (int again = 0; again < 2; ++again) {
                const IUnknown* const seen = FaceFor(*face.m_pFace, IID_IUnknown);
                Expect(seen == nullptr || seen == identity,
                       "the " + IdentityText(face.m_nIdentity) + " face gives another IUnknown");
            }
        }
    });
}

}  // namespace

CCheckList QueryChecks() {
    return {
        {"query/null-out-pointer", "QueryInterface answers 3 for a null out-pointer.", CONCERN_ANY, "count/faces",
         AnswersNullOutPointer},
        {"query/unknown-identity", "QueryInterface answers 2 for an unknown identity and stores null.", CONCERN_ANY,
         "count/faces", AnswersUnknownIdentity},
        {"query/one-reference", "QueryInterface adds exactly one reference when it succeeds.", CONCERN_ANY,
         "count/faces", AddsOneReference},
        {"query/every-face", "From each face of an object every other can be had.", CONCERN_ANY, "count/faces",
         AnswersFromEveryFace},
        {"query/identity", "From each face and each time, identity 0 is the same pointer.", CONCERN_ANY, "count/faces",
         HasOneIdentity},
    };
}
