// Named settings of components and targets.
#include <functional>

#include "com/InterfaceIds.h"
#include "com/NamedSettings.h"
#include "host/FailureText.h"
#include "host/PluginSession.h"
#include "host/validate/Checks.h"
#include "host/validate/Outcome.h"
#include "host/validate/Sink.h"
#include "host/validate/Steps.h"
#include "host/validate/Texts.h"

namespace {

constexpr const char* kUnknownName = "kelo-no-such-setting";
constexpr const char* kUnknownValue = "kelo-no-such-value";

struct SOwner {
    std::string m_strLabel;
    CComPtr<INamedSettings> m_pSettings;
};

void AddTargets(CTrial& trial, std::vector<SOwner>& owners) {
    if (!trial.MayUse("encoder/last-release") || trial.Plugin().GetRegistered(ACT_ENCODER).empty()) return;
    ForEachOutput(trial, [&](const SOutputCase& output, const std::string& path) {
        const CComPtr<IAudioTarget> target = OpenTarget(output, path);
        const auto settings = CComPtr<INamedSettings>::Query(target.Get(), IID_INamedSettings);
        if (settings) owners.push_back({"the target of " + output.GetLabel(), settings});
    });
}

std::vector<SOwner> Owners(CTrial& trial) {
    std::vector<SOwner> owners;
    for (const SComponent& component : trial.Plugin().GetRegistered()) {
        const auto settings = CComPtr<INamedSettings>::Query(component.m_pComponent.Get(), IID_INamedSettings);
        if (settings) owners.push_back({component.m_strLabel, settings});
    }
    AddTargets(trial, owners);
    return owners;
}

void ForEachOwner(CTrial& trial, const std::function<void(INamedSettings& settings)>& examine) {
    const std::vector<SOwner> owners = Owners(trial);
    if (owners.empty()) throw CSkipped("nothing of it has INamedSettings");
    for (const SOwner& owner : owners) {
        TellStep("the settings of " + owner.m_strLabel);
        try {
            examine(*owner.m_pSettings);
        } catch (const CFinding& finding) {
            throw CFinding(owner.m_strLabel + ": " + finding.what());
        }
    }
}

void ForEachName(CTrial& trial, const std::function<void(INamedSettings& settings, const std::string& name)>& examine) {
    ForEachOwner(trial, [&](INamedSettings& settings) {
        for (int i = 0; i < settings.GetSettingCount(); ++i) examine(settings, TextOf(settings.GetSettingName(i)));
    });
}

void ExpectText(const char* text, const std::string& what) {
    Expect(text != nullptr, what + " is null");
    Expect(IsUtf8(text), what + " is not UTF-8");
}

void ListsSettings(CTrial& trial) {
    ForEachOwner(trial, [](INamedSettings& settings) {
        const int count = settings.GetSettingCount();
        Expect(IsPossibleCount(count), "a count of " + std::to_string(count));
        for (int i = 0; i < count; ++i) {
            const std::string place = " of setting " + std::to_string(i);
            ExpectText(settings.GetSettingName(i), "the name" + place);
            ExpectText(settings.GetSettingValues(i), "the text about the values" + place);
            const std::string name = settings.GetSettingName(i);
            ExpectText(settings.GetSetting(name.c_str()), "the value" + place + " (" + name + ")");
        }
    });
}

void HasNoOthers(CTrial& trial) {
    ForEachOwner(trial, [](INamedSettings& settings) {
        const int count = settings.GetSettingCount();
        for (const int n : {-1, count, count + 1000}) {
            Expect(settings.GetSettingName(n) == nullptr && settings.GetSettingValues(n) == nullptr,
                   "setting " + std::to_string(n) + " of " + std::to_string(count) + " is told to be there");
        }
        Expect(settings.GetSetting(kUnknownName) == nullptr, "an unknown name has a value");
    });
}

void RefusesUnknownName(CTrial& trial) {
    ForEachOwner(trial, [](INamedSettings& settings) {
        CComPtr<IStatus> status;
        Expect(!settings.SetSetting(kUnknownName, "1", status.Out()), "an unknown name can be set");
        Expect(static_cast<bool>(status), "an unknown name is refused without a status");
        Expect(!settings.SetSetting(kUnknownName, "1", nullptr), "an unknown name can be set without a status");
    });
}

// Lists of values such as "low|high" tell what is not among them.
void RefusesUnknownValue(CTrial& trial) {
    bool found = false;
    ForEachOwner(trial, [&](INamedSettings& settings) {
        for (int i = 0; i < settings.GetSettingCount(); ++i) {
            if (TextOf(settings.GetSettingValues(i)).find('|') == std::string::npos) continue;
            found = true;
            const std::string name = TextOf(settings.GetSettingName(i));
            const std::string before = TextOf(settings.GetSetting(name.c_str()));
            CComPtr<IStatus> status;
            Expect(!settings.SetSetting(name.c_str(), kUnknownValue, status.Out()), name + " takes an unlisted value");
            Expect(static_cast<bool>(status), name + " refuses an unlisted value without a status");
            const std::string after = TextOf(settings.GetSetting(name.c_str()));
            Expect(after == before, name + " was " + before + " and is " + after + " after a refused change");
        }
    });
    if (!found) throw CSkipped("none of its settings lists its values");
}

void TakesItsValue(CTrial& trial) {
    ForEachName(trial, [](INamedSettings& settings, const std::string& name) {
        const std::string value = TextOf(settings.GetSetting(name.c_str()));
        CComPtr<IStatus> status;
        const bool taken = settings.SetSetting(name.c_str(), value.c_str(), status.Out());
        Expect(taken,
               name + " refuses the value that it has, " + value + ": " + StatusText(status.Get(), "no reason", ""));
        const std::string after = TextOf(settings.GetSetting(name.c_str()));
        Expect(after == value, name + " was set to " + value + " and is " + after);
    });
}

}  // namespace

CCheckList SettingChecks() {
    return {
        {"settings/listed", "Each named setting has a name, a text about its values and a value.", CONCERN_ANY,
         "component/initialize", ListsSettings},
        {"settings/no-others", "A setting that is not there has neither name nor value.", CONCERN_ANY,
         "settings/listed", HasNoOthers},
        {"settings/unknown-name", "An unknown setting is refused with a status.", CONCERN_ANY, "settings/listed",
         RefusesUnknownName},
        {"settings/unknown-value", "A value that is not listed is refused with a status and changes nothing.",
         CONCERN_ANY, "settings/listed", RefusesUnknownValue},
        {"settings/takes-its-value", "A setting takes the value that it has.", CONCERN_ANY, "settings/listed",
         TakesItsValue},
    };
}
