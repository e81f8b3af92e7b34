// A source that the manager opened with the real plug-ins.
#pragma once

#include <gtest/gtest.h>

#include <string>

#include "stream/Process.h"
#include "stream/SourceDetails.h"
#include "tests/plugins/LoadedPlugins.h"

struct SOpenedSource {
    // A null `wanted` is the file's own format.
    SOpenedSource(const CLoadedPlugins& plugins, const std::string& path, const SWavFormat* wanted = nullptr) {
        CComPtr<IStatus> status;
        EXPECT_TRUE(plugins.Manager().OpenURLAudioFile(path.c_str(), wanted, m_stream.Out(), -1, AUX_CONVERT, AUX_NONE,
                                                       status.Out()))
            << (status ? status->GetDescription() : "");
        m_process = CComPtr<IProcess>::Query(m_stream.Get(), IID_IProcess);
        m_info = CComPtr<IInfoReader>::Query(m_stream.Get(), IID_IInfoReader);
        m_index = CComPtr<IIndexArray>::Query(m_stream.Get(), IID_IIndexArray);
    }

    // "artist|title".
    std::string ArtistTitle() const {
        if (!m_info) return "no tags are offered";
        return std::string(m_info->GetArtist()) + "|" + m_info->GetTitle();
    }

    CComPtr<IUnknown> m_stream;
    CComPtr<IProcess> m_process;
    CComPtr<IInfoReader> m_info;
    CComPtr<IIndexArray> m_index;
};
