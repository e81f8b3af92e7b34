// Names, directories, window and feature switches that hosts set.
#include "com/InterfaceIds.h"
#include "com/StatusObject.h"
#include "pluginmgr/AudioPluginMgr.h"
#include "pluginmgr/GtkWindowCheck.h"

bool CAudioPluginMgr::SetImagesDirectory(const char* directory) {
    m_strImagesDirectory = directory;
    return true;
}

const char* CAudioPluginMgr::GetImagesDirectory() { return m_strImagesDirectory.GetText(); }

bool CAudioPluginMgr::SetProfileText(CBasicString<char>& member, const char* text, IStatus** status) {
    if (m_loads.Value() != 0) {
        ReportStatus(status, AE_PLUGINS_LOADED);
        return false;
    }
    member = text;
    return true;
}

bool CAudioPluginMgr::SetVendor(const char* vendor, IStatus** status) {
    return SetProfileText(m_strVendor, vendor, status);
}

const char* CAudioPluginMgr::GetVendor() { return m_strVendor.GetText(); }

bool CAudioPluginMgr::SetProduct(const char* product, IStatus** status) {
    return SetProfileText(m_strProduct, product, status);
}

const char* CAudioPluginMgr::GetProduct() { return m_strProduct.GetText(); }

void CAudioPluginMgr::SetAppWindow(_GtkWindow* window) { m_pAppWindow = window; }

_GtkWindow* CAudioPluginMgr::GetAppWindow() { return IsGtkWindow(m_pAppWindow) ? m_pAppWindow : nullptr; }

bool CAudioPluginMgr::IsSupported(EAudioFeature feature) {
    switch (feature) {
        case AF_BASIC:
            return m_bFeatureBasic;
        case AF_ADVANCED_FORMATS:
            return m_bFeatureAdvancedFormats;
        default:
            return false;
    }
}

bool CAudioPluginMgr::EnableSupport(EAudioFeature feature, bool enable) {
    switch (feature) {
        case AF_BASIC:
            // Switching it off leaves advanced formats as they are.
            m_bFeatureBasic = enable;
            return true;
        case AF_ADVANCED_FORMATS:
            if (enable) return EnableAdvancedFormats();
            m_bFeatureAdvancedFormats = false;
            return true;
        default:
            return false;
    }
}

bool CAudioPluginMgr::EnableAdvancedFormats() {
    if (!m_bFeatureBasic || !m_pConvertorFactory) return false;
    void* face = nullptr;
    m_pConvertorFactory->QueryInterface(IID_IFeatureSupport, &face);
    const auto features = CComPtr<IFeatureSupport>::Adopt(static_cast<IFeatureSupport*>(face));
    if (!features || !features->IsSupported(AF_ADVANCED_FORMATS)) return false;
    m_bFeatureAdvancedFormats = true;
    return true;
}

void CAudioPluginMgr::SetTagSourceMode(int mode) { m_metadataSettings.m_nTagSourceMode = mode; }

void CAudioPluginMgr::SetFileNameOrder(int order) { m_metadataSettings.m_nFileNameOrder = order; }
