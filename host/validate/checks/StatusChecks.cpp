// The statuses that refusals leave.
#include "com/InterfaceIds.h"
#include "com/Status.h"
#include "host/validate/Checks.h"
#include "host/validate/Objects.h"
#include "host/validate/Outcome.h"
#include "host/validate/References.h"
#include "host/validate/Steps.h"
#include "host/validate/Texts.h"

namespace {

constexpr unsigned int kErrorBit = 0x80000000;

// Nothing is given back: whether references come with them is one of the questions here.
std::vector<SObject>& Statuses(CTrial& trial) {
    auto* const statuses = new std::vector<SObject>(EveryStatus(trial));
    if (statuses->empty()) throw CSkipped("nothing of it that the validator can provoke leaves a status");
    return *statuses;
}

void ForEachStatus(CTrial& trial, const std::function<void(IStatus& status)>& examine) {
    ForEachObject(Statuses(trial), [&](IUnknown& object) {
        const auto status = CComPtr<IStatus>::Query(&object, IID_IStatus);
        Expect(static_cast<bool>(status), "no IStatus");
        examine(*status);
    });
}

void GivesUpLastReference(CTrial& trial) {
    for (SObject& status : Statuses(trial)) {
        try {
            ExpectLastRelease(status.m_pObject.Detach());
        } catch (const CFinding& finding) {
            throw CFinding(status.m_strLabel + ": " + finding.what());
        }
    }
}

void HasDescription(CTrial& trial) {
    ForEachStatus(trial, [](IStatus& status) {
        TellStep("GetDescription");
        const char* const text = status.GetDescription();
        Expect(text != nullptr, "a null description; one without words is empty");
        Expect(IsUtf8(text), "a description that is not UTF-8");
    });
}

void TellsReason(CTrial& trial) {
    ForEachStatus(trial, [](IStatus& status) {
        const std::string text = TextOf(status.GetDescription());
        Expect(!text.empty() || status.GetAudioError() != AE_NONE || status.GetSysError() != 0,
               "neither a description nor an error");
    });
}

void MarksErrors(CTrial& trial) {
    ForEachStatus(trial, [](IStatus& status) {
        const auto error = static_cast<unsigned int>(status.GetAudioError());
        Expect(error == 0 || (error & kErrorBit) != 0,
               "audio error " + std::to_string(error) + " lacks the bit 0x80000000");
    });
}

}  // namespace

CCheckList StatusChecks() {
    return {
        {"status/last-release", "A status ends with its one reference, which the caller owns.", CONCERN_ANY,
         "component/initialize", GivesUpLastReference},
        {"status/description", "A status has a description in UTF-8, which may be empty.", CONCERN_ANY,
         "status/last-release", HasDescription},
        {"status/reason", "A status tells a reason: a description, an audio error or a system error.", CONCERN_ANY,
         "status/description", TellsReason},
        {"status/error-bit", "An audio error has the bit 0x80000000.", CONCERN_ANY, "status/description", MarksErrors},
    };
}
