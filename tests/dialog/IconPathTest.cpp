// Where the dialog looks for its icons. The program's own loading function stands before the toolkit's.
#include <dlfcn.h>

#include "tests/dialog/DialogFixture.h"

namespace {

std::vector<std::string>& LoadedPaths() {
    static std::vector<std::string> paths;
    return paths;
}

}  // namespace

extern "C" __attribute__((visibility("default"))) GdkPixbuf* gdk_pixbuf_new_from_file(const char* path,
                                                                                      GError** error) {
    LoadedPaths().emplace_back(path);
    using CLoad = GdkPixbuf*(const char*, GError**);
    return reinterpret_cast<CLoad*>(dlsym(RTLD_NEXT, "gdk_pixbuf_new_from_file"))(path, error);
}

namespace {

class IconPath : public DialogTest {
protected:
    // For one component of each kind, in the order of the registry.
    std::vector<std::string> PathsIn(const char* directory) {
        for (const EAudioComponentType type : {ACT_CONVERTOR, ACT_DECODER, ACT_ENCODER}) Add("component", type);
        if (directory != nullptr) m_manager->SetImagesDirectory(directory);
        LoadedPaths().clear();
        Build();
        return LoadedPaths();
    }
};

using CPaths = std::vector<std::string>;

TEST_F(IconPath, NamesDirectoryAndKind) {
    EXPECT_EQ(PathsIn("/opt/x/img"),
              (CPaths{"/opt/x/img/apm-convertor_icon-16.png", "/opt/x/img/apm-decoder_icon-16.png",
                      "/opt/x/img/apm-encoder_icon-16.png"}));
}

const CPaths kInTheRoot = {"/apm-convertor_icon-16.png", "/apm-decoder_icon-16.png", "/apm-encoder_icon-16.png"};

TEST_F(IconPath, HasOneSlashForTheRootDirectory) { EXPECT_EQ(PathsIn("/"), kInTheRoot); }

TEST_F(IconPath, BeginsAtTheRootWhereNoDirectoryWasSet) { EXPECT_EQ(PathsIn(nullptr), kInTheRoot); }

TEST_F(IconPath, KeepsAnyOtherSlash) {
    EXPECT_EQ(PathsIn("//"),
              (CPaths{"///apm-convertor_icon-16.png", "///apm-decoder_icon-16.png", "///apm-encoder_icon-16.png"}));
    EXPECT_EQ(Page(0).Rows(), 1) << "a missing icon is no error";
}

TEST_F(IconPath, IsNotAskedForOtherKinds) {
    Add("handler", ACT_URL_HANDLER);
    LoadedPaths().clear();
    Build();
    EXPECT_EQ(LoadedPaths(), CPaths());
}

}  // namespace
