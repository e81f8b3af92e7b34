// All checks, and which of them a person chose.
#include "host/validate/Catalogue.h"

#include <fnmatch.h>

#include <algorithm>

#include "host/Failure.h"
#include "host/validate/Checks.h"

namespace {

CCheckList Collect() {
    CCheckList all;
    for (const auto group :
         {EntryChecks,     CollectionChecks,  ComponentChecks,    ExtensionChecks, DecoderChecks, RefusalChecks,
          SourceChecks,    ReadingChecks,     SourceDetailChecks, SeekChecks,      EncoderChecks, WritingChecks,
          ConvertorChecks, ConversionChecks,  HandlerChecks,      StatusChecks,    SettingChecks, CountChecks,
          QueryChecks,     AggregationChecks, WrappingChecks,     UnloadChecks,    ProcessChecks}) {
        const CCheckList checks = group();
        all.insert(all.end(), checks.begin(), checks.end());
    }
    return all;
}

bool Matches(const SCheck& check, const CPatterns& patterns) {
    return std::any_of(patterns.begin(), patterns.end(), [&](const std::string& pattern) {
        return fnmatch(pattern.c_str(), check.m_szName, 0) == 0 || pattern == GroupOf(check);
    });
}

}  // namespace

const CCheckList& AllChecks() {
    static const CCheckList all = Collect();
    return all;
}

const SCheck* FindCheck(const std::string& name) {
    const CCheckList& all = AllChecks();
    const auto found =
        std::find_if(all.begin(), all.end(), [&](const SCheck& check) { return name == check.m_szName; });
    return found != all.end() ? &*found : nullptr;
}

std::string GroupOf(const SCheck& check) {
    const std::string name = check.m_szName;
    return name.substr(0, name.find('/'));
}

void RequireKnown(const CPatterns& patterns) {
    for (const std::string& pattern : patterns) {
        const CCheckList& all = AllChecks();
        const bool known =
            std::any_of(all.begin(), all.end(), [&](const SCheck& check) { return Matches(check, {pattern}); });
        if (!known) throw CWrongUsage(pattern, "no check is named so (keloaudio validate --list-checks names all)");
    }
}

CCheckList ChosenChecks(const CPatterns& only, const CPatterns& skip) {
    CCheckList chosen;
    for (const SCheck& check : AllChecks()) {
        if ((only.empty() || Matches(check, only)) && !Matches(check, skip)) chosen.push_back(check);
    }
    return chosen;
}
