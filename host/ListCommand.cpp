// keloaudio list.
#include "host/ListCommand.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <array>
#include <cstdio>
#include <memory>
#include <vector>

#include "com/ComponentInfo.h"
#include "com/InterfaceIds.h"
#include "host/PluginCall.h"
#include "host/PluginOptions.h"
#include "host/PluginSession.h"

namespace {

// The last column, the extensions, is not padded.
using CRow = std::array<std::string, 4>;

std::string TypeText(EAudioComponentType type) {
    switch (type) {
        case ACT_COLLECTION:
            return "collection";
        case ACT_DECODER:
            return "decoder";
        case ACT_ENCODER:
            return "encoder";
        case ACT_CONVERTOR:
            return "convertor";
        case ACT_URL_HANDLER:
            return "url-handler";
    }
    return "type " + std::to_string(static_cast<unsigned int>(type));
}

std::string PlaceText(IAudioPluginMgr& manager, IAudioComponent& component) {
    const auto places = CComPtr<IAudioPluginMgrInternal>::Query(&manager, IID_IAudioPluginMgrInternal);
    COMPONENT_INFO info;
    if (!places || !places->GetComponentInfo(&component, &info)) return "unknown";
    return std::string(info.m_strLibraryFileName.GetText()) + " " + std::to_string(info.m_nIndex);
}

CRow RowOf(const CPluginSession& session, IAudioComponent& component) {
    const std::vector<std::string> extensions = ExtensionsOf(component);
    return {TypeText(component.GetType()), NameOf(component), PlaceText(session.GetManager(), component),
            extensions.empty() ? "-" : JoinNames(extensions)};
}

void PrintRows(const std::vector<CRow>& rows) {
    std::array<std::size_t, 3> widths{};
    for (const CRow& row : rows) {
        for (std::size_t i = 0; i < widths.size(); ++i) widths[i] = std::max(widths[i], row[i].size());
    }
    for (const CRow& row : rows) {
        std::string line;
        for (std::size_t i = 0; i < widths.size(); ++i)
            line += row[i] + std::string(widths[i] - row[i].size() + 2, ' ');
        std::puts((line + row.back()).c_str());
    }
}

int RunList(const SPluginOptions& options) {
    const CPluginSession session(options);
    CallPlugins(session.GetDirectory(), [&session] {
        std::vector<CRow> rows;
        for (const CComPtr<IAudioComponent>& component : session.GetComponents()) {
            rows.push_back(RowOf(session, *component));
        }
        PrintRows(rows);
    });
    return 0;
}

std::function<int()> DefineList(CLI::App& app) {
    const auto options = std::make_shared<SPluginOptions>();
    AddPluginOptions(app, *options);
    return [options] { return RunList(*options); };
}

}  // namespace

const SCommand kListCommand = {"list", "List the components of the plug-ins",
                               "Example: keloaudio list --plugins /opt/kelo/plugins", DefineList};
