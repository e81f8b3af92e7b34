// keloaudio beside a hostile plug-in.
#pragma once

#include "tests/host/KeloAudio.h"

class CBesideHostile : public CKeloAudio {
protected:
    // The plug-in whose name says what it does.
    void UseHostile(const std::string& name) const { Copy(KELO_HOSTILE_FIXTURE, name); }

    // The same of a convertor.
    void UseHostileConvertor(const std::string& name) const { Copy(KELO_HOSTILE_CONVERTOR, name); }

    // One that the validator is tested with.
    void UseImpolite(const std::string& name) const { Copy(KELO_VALIDATE_FIXTURE, name); }

    void UseHealthy() const { UseFixture("ScriptedDecoder.so"); }

private:
    // Links to one file would be one plug-in to the loader.
    void Copy(const std::string& file, const std::string& name) const {
        std::filesystem::copy_file(file, PluginDirectory() + "/" + name + ".so");
    }
};
