// Everything that a plug-in does, once.
#include "host/validate/Exercise.h"

#include "com/InterfaceIds.h"
#include "host/validate/ConvertorRun.h"
#include "host/validate/Outcome.h"
#include "host/validate/Sink.h"
#include "host/validate/Source.h"
#include "host/validate/Steps.h"
#include "stream/URLSourceHandler.h"

namespace {

void ReadSamples(CTrial& trial) {
    ForEachSample(trial, [](const SSampleCase& sample) { LinearSound(sample); });
}

void WriteFiles(CTrial& trial) {
    ForEachOutput(trial, [](const SOutputCase& output, const std::string& path) { CSink(output, path).WriteSample(); });
}

void Convert(CTrial& trial) {
    ForEachConversion(trial, [](IConvertorFactory& factory, const SConversionCase& conversion) {
        std::string reason;
        ConvertSample(*CreateConvertor(factory, conversion, reason), conversion, 12 * 1024);
    });
}

void Fetch(CTrial& trial) {
    if (!trial.Around().m_bOwnServer) return;
    for (const SComponent& component : trial.Components(ACT_URL_HANDLER)) {
        const auto handler = CComPtr<IURLSourceHandler>::Query(component.m_pComponent.Get(), IID_IURLSourceHandler);
        TellStep("Fetch of " + trial.Around().m_strURL);
        char path[kLocalPathCapacity] = "";
        handler->Fetch(trial.Around().m_strURL.c_str(), path, 0, nullptr);
    }
}

void DoWhereUsable(CTrial& trial, const char* check, void (*part)(CTrial&)) {
    if (!trial.MayUse(check)) return;
    try {
        part(trial);
    } catch (const CSkipped&) {
        // The plug-in has nothing of the kind.
    }
}

}  // namespace

void Exercise(CTrial& trial) {
    trial.Plugin();
    DoWhereUsable(trial, "source/end", ReadSamples);
    DoWhereUsable(trial, "encoder/end", WriteFiles);
    DoWhereUsable(trial, "convertor/tail", Convert);
    DoWhereUsable(trial, "handler/fetches", Fetch);
}
