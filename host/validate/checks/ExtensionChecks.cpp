// The extensions that decoders and encoders list.
#include <functional>

#include "com/InterfaceIds.h"
#include "host/PluginSession.h"
#include "host/validate/Checks.h"
#include "host/validate/Outcome.h"
#include "host/validate/Steps.h"
#include "host/validate/Texts.h"
#include "host/validate/Trial.h"
#include "stream/FileOpener.h"

namespace {

void ForEachList(CTrial& trial, const std::function<void(IExtensionList& list)>& examine) {
    for (const SComponent& component : trial.Plugin().GetRegistered()) {
        const auto list = CComPtr<IExtensionList>::Query(component.m_pComponent.Get(), IID_IExtensionList);
        if (!list) continue;
        TellStep("the extension list of " + component.m_strLabel);
        try {
            examine(*list);
        } catch (const CFinding& finding) {
            throw CFinding(component.m_strLabel + ": " + finding.what());
        }
    }
}

std::vector<std::string> TextsOf(IExtensionList& list) {
    std::vector<std::string> texts;
    for (int i = 0; i < list.GetCount(); ++i) texts.push_back(TextOf(list.GetAt(i)));
    return texts;
}

void NamesEach(CTrial& trial) {
    ForEachList(trial, [](IExtensionList& list) {
        const int count = list.GetCount();
        Expect(IsPossibleCount(count), "a count of " + std::to_string(count));
        for (int i = 0; i < count; ++i) {
            const char* const extension = list.GetAt(i);
            Expect(extension != nullptr, "extension " + std::to_string(i) + " is null");
            Expect(*extension != '\0', "extension " + std::to_string(i) + " is empty");
        }
    });
}

void LeavesDotOut(CTrial& trial) {
    ForEachList(trial, [](IExtensionList& list) {
        for (const std::string& extension : TextsOf(list)) {
            Expect(extension.find('.') == std::string::npos, "\"" + extension + "\" holds a dot");
        }
    });
}

void KeepsList(CTrial& trial) {
    ForEachList(trial, [](IExtensionList& list) {
        const std::vector<std::string> first = TextsOf(list);
        const std::vector<std::string> second = TextsOf(list);
        Expect(first.size() == second.size(),
               "first " + std::to_string(first.size()) + " extensions, then " + std::to_string(second.size()));
        for (std::size_t i = 0; i < first.size(); ++i) {
            Expect(first[i] == second[i], "first \"" + first[i] + "\", then \"" + second[i] + "\"");
        }
    });
}

}  // namespace

CCheckList ExtensionChecks() {
    constexpr unsigned int kCodecs = CONCERN_DECODER | CONCERN_ENCODER;
    return {
        {"extensions/named", "Each listed extension is a text that is not empty.", kCodecs, "component/initialize",
         NamesEach},
        {"extensions/no-dot", "Listed extensions come without the dot.", kCodecs, "extensions/named", LeavesDotOut},
        {"extensions/stable", "The list of extensions is the same each time.", kCodecs, "extensions/named", KeepsList},
    };
}
