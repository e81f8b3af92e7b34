// Streams inside an outer object of the validator's own.
#include <functional>

#include "com/Aggregatable.h"
#include "com/InterfaceIds.h"
#include "host/validate/Checks.h"
#include "host/validate/Objects.h"
#include "host/validate/Outcome.h"
#include "host/validate/OuterObject.h"
#include "host/validate/Sink.h"
#include "host/validate/Source.h"
#include "host/validate/Steps.h"

namespace {

// What a check sees of one stream: faces that were taken before it had an outer object.
struct SInner {
    IAggregatable& m_aggregatable;
    IUnknown& m_face;  // one of the stream's other faces
    std::string m_strFace;
};

// No reference is given back: after a finding it would reach an outer object that is gone.
void Examine(IUnknown& stream, const std::function<void(const SInner& inner)>& examine) {
    IAggregatable* const aggregatable = CComPtr<IAggregatable>::Query(&stream, IID_IAggregatable).Detach();
    if (aggregatable == nullptr) return;
    const std::vector<SFace> faces = FacesOf(stream);
    for (const SFace& face : faces) face.m_pFace->AddRef();
    for (const SFace& face : faces) {
        if (face.m_nIdentity == IID_IUnknown || face.m_nIdentity == IID_IAggregatable) continue;
        const std::string name = IdentityText(face.m_nIdentity);
        TellStep("the " + name + " face inside an outer object");
        examine({*aggregatable, *face.m_pFace, name});
        aggregatable->SetAggregator(nullptr);
    }
}

void ForEachInner(CTrial& trial, const std::function<void(const SInner& inner)>& examine) {
    bool found = false;
    const auto examineStream = [&](IUnknown* stream) {
        Examine(*stream, [&](const SInner& inner) {
            found = true;
            examine(inner);
        });
    };
    if (trial.MayUse("source/wrappable") && !trial.Plugin().GetRegistered(ACT_DECODER).empty()) {
        ForEachSample(trial, [&](const SSampleCase& sample) { examineStream(OpenSample(sample).Detach()); });
    }
    if (trial.MayUse("encoder/end") && !trial.Plugin().GetRegistered(ACT_ENCODER).empty()) {
        ForEachOutput(trial, [&](const SOutputCase& output, const std::string& path) {
            examineStream(CreateStream(*OpenTarget(output, path).Detach()).Detach());
        });
    }
    if (!found) throw CSkipped("no stream has IAggregatable");
}

void BeginsWithoutOuter(CTrial& trial) {
    ForEachInner(trial, [](const SInner& inner) {
        COuterObject other;
        IUnknown* outer = &other;
        Expect(inner.m_aggregatable.GetAggregator(&outer), "GetAggregator says false");
        Expect(outer == nullptr, "GetAggregator stores an outer object before there is one");
        Expect(!inner.m_aggregatable.GetAggregator(nullptr), "GetAggregator says true for a null out-pointer");
    });
}

void RemembersOuter(CTrial& trial) {
    ForEachInner(trial, [](const SInner& inner) {
        COuterObject outer;
        Expect(inner.m_aggregatable.SetAggregator(&outer), "SetAggregator says false");
        IUnknown* told = nullptr;
        const int before = outer.AddRefs() - outer.Releases();
        Expect(inner.m_aggregatable.GetAggregator(&told), "GetAggregator says false");
        Expect(told == &outer, "GetAggregator stores another object than SetAggregator was given");
        const int references = outer.AddRefs() - outer.Releases() - before;
        Expect(references == 1,
               "GetAggregator hands the outer object out with " + std::to_string(references) + " references");
    });
}

void HoldsOuterWeakly(CTrial& trial) {
    ForEachInner(trial, [](const SInner& inner) {
        COuterObject outer;
        inner.m_aggregatable.SetAggregator(&outer);
        Expect(outer.AddRefs() == 0, "SetAggregator takes a reference, so neither object would ever end");
    });
}

void DelegatesQueries(CTrial& trial) {
    ForEachInner(trial, [](const SInner& inner) {
        COuterObject outer;
        inner.m_aggregatable.SetAggregator(&outer);
        void* face = nullptr;
        const int result = inner.m_face.QueryInterface(IID_IRealFormat, &face);
        Expect(outer.Queries() == 1 && outer.LastIdentity() == IID_IRealFormat && result == kInterfaceMissing,
               "QueryInterface of the " + inner.m_strFace + " face does not ask the outer object");
    });
}

void DelegatesCounting(CTrial& trial) {
    ForEachInner(trial, [](const SInner& inner) {
        COuterObject outer;
        inner.m_aggregatable.SetAggregator(&outer);
        inner.m_face.AddRef();
        Expect(outer.AddRefs() == 1, "AddRef of the " + inner.m_strFace + " face does not reach the outer object");
        inner.m_face.Release();
        Expect(outer.Releases() == 1, "Release of the " + inner.m_strFace + " face does not reach the outer object");
    });
}

void AnswersInnerQueries(CTrial& trial) {
    ForEachInner(trial, [](const SInner& inner) {
        COuterObject outer;
        inner.m_aggregatable.SetAggregator(&outer);
        void* face = nullptr;
        const int result = inner.m_aggregatable.InnerQueryInterface(IID_IProcess, &face);
        Expect(outer.Queries() == 0, "InnerQueryInterface asks the outer object");
        Expect(result == kInterfaceFound && face != nullptr, "InnerQueryInterface does not know IProcess");
        Expect(inner.m_aggregatable.InnerQueryInterface(IID_IProcess, nullptr) == kInterfaceNoOutPointer,
               "InnerQueryInterface does not answer 3 for a null out-pointer");
        face = &outer;
        const int missing = inner.m_aggregatable.InnerQueryInterface(IID_IConvertorFactory, &face);
        Expect(missing == kInterfaceMissing && face == nullptr,
               "InnerQueryInterface does not answer 2 and null for an unknown identity");
    });
}

void CountsInside(CTrial& trial) {
    ForEachInner(trial, [](const SInner& inner) {
        COuterObject outer;
        inner.m_aggregatable.SetAggregator(&outer);
        const unsigned int first = inner.m_aggregatable.InnerAddRef();
        const unsigned int second = inner.m_aggregatable.InnerAddRef();
        const unsigned int third = inner.m_aggregatable.InnerRelease();
        const unsigned int fourth = inner.m_aggregatable.InnerRelease();
        Expect(outer.AddRefs() == 0 && outer.Releases() == 0, "InnerAddRef or InnerRelease reaches the outer object");
        Expect(second == first + 1 && third == first && fourth + 1 == first,
               "InnerAddRef, InnerAddRef, InnerRelease, InnerRelease count " + std::to_string(first) + ", " +
                   std::to_string(second) + ", " + std::to_string(third) + ", " + std::to_string(fourth));
    });
}

void LetsGo(CTrial& trial) {
    ForEachInner(trial, [](const SInner& inner) {
        COuterObject outer;
        inner.m_aggregatable.SetAggregator(&outer);
        Expect(inner.m_aggregatable.SetAggregator(nullptr), "SetAggregator says false for null");
        inner.m_face.AddRef();
        inner.m_face.Release();
        Expect(outer.AddRefs() == 0 && outer.Releases() == 0, "an outer object that was taken away is still called");
        Expect(FaceFor(inner.m_face, IID_IAggregatable) == &inner.m_aggregatable,
               "without its outer object the stream does not answer for itself again");
    });
}

}  // namespace

CCheckList AggregationChecks() {
    constexpr unsigned int kStreams = CONCERN_DECODER | CONCERN_ENCODER;
    return {
        {"aggregation/no-outer", "A new stream has no outer object, and says so.", kStreams, "component/initialize",
         BeginsWithoutOuter},
        {"aggregation/remembers-outer", "GetAggregator gives the outer object that was set, with one reference.",
         kStreams, "aggregation/no-outer", RemembersOuter},
        {"aggregation/weak", "A stream takes no reference on its outer object.", kStreams,
         "aggregation/remembers-outer", HoldsOuterWeakly},
        {"aggregation/delegates-queries", "Inside an outer object, QueryInterface of every face asks that object.",
         kStreams, "aggregation/weak", DelegatesQueries},
        {"aggregation/delegates-counting",
         "Inside an outer object, AddRef and Release of every face go to that object.", kStreams, "aggregation/weak",
         DelegatesCounting},
        {"aggregation/inner-queries", "InnerQueryInterface answers for the stream itself, by the rules.", kStreams,
         "aggregation/weak", AnswersInnerQueries},
        {"aggregation/inner-counting", "InnerAddRef and InnerRelease count on the stream itself.", kStreams,
         "aggregation/weak", CountsInside},
        {"aggregation/lets-go", "A stream whose outer object is taken away speaks for itself again.", kStreams,
         "aggregation/weak", LetsGo},
    };
}
