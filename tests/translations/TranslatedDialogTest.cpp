// Dialogs in the languages of the catalogues, with a real GTK 2.
#include <libintl.h>
#include <locale.h>

#include <algorithm>
#include <set>

#include "com/SettingsDialog.h"
#include "tests/plugins/LoadedPlugins.h"
#include "tests/support/DialogDriver.h"

namespace {

constexpr const char* kDomain = "keloaudiopluginmgr";

// The build tree's catalogues in the place of the system's.
void BindBuildTree() {
    bindtextdomain(kDomain, KELO_LOCALE_DIRECTORY);
    bind_textdomain_codeset(kDomain, "UTF-8");
}

// A person whose language this is.
void Speak(const char* language) {
    setenv("LC_ALL", "C.UTF-8", 1);
    setenv("LANGUAGE", language, 1);
    setlocale(LC_ALL, "");
    BindBuildTree();
}

std::vector<std::string> TextsOf(GtkWidget* dialog) {
    std::vector<GtkWidget*> widgets;
    CollectWidgets(dialog, widgets);
    std::vector<std::string> texts = {gtk_window_get_title(GTK_WINDOW(dialog))};
    for (GtkWidget* const widget : widgets) {
        if (GTK_IS_LABEL(widget)) texts.emplace_back(gtk_label_get_label(GTK_LABEL(widget)));
        if (!GTK_IS_TREE_VIEW(widget)) continue;
        for (int i = 0; i < 3; ++i) {
            texts.emplace_back(gtk_tree_view_column_get_title(gtk_tree_view_get_column(GTK_TREE_VIEW(widget), i)));
        }
    }
    return texts;
}

struct SLanguage {
    const char* m_pszName;
    std::set<std::string> m_texts;
};

void PrintTo(const SLanguage& language, std::ostream* out) { *out << language.m_pszName; }

// Title, pages, columns, buttons.
const SLanguage kLanguages[] = {
    {"de",
     {"Audioformat-Einstellungen", "Decoder", "Encoder", "Konverter", "Name des Plug-ins", "Hersteller", "Dateiname",
      "Konfigurieren...", "Info...", "S_chließen"}},
    {"es",
     {"Configuración de formatos de audio", "Decodificadores", "Codificadores", "Convertidores",
      "Nombre del complemento", "Proveedor", "Nombre del archivo", "Configurar...", "Acerca de...", "_Cerrar"}},
    {"fr",
     {"Paramètres des formats audio", "Décodeurs", "Encodeurs", "Convertisseurs", "Nom du plug-in", "Fournisseur",
      "Nom du fichier", "Configurer...", "À propos...", "_Fermer"}},
    {"ja",
     {"オーディオ形式の設定", "デコーダー", "エンコーダー", "コンバーター", "プラグイン名", "開発元", "ファイル名",
      "設定...", "情報...", "閉じる(_C)"}},
    {"zh_CN",
     {"音频格式设置", "解码器", "编码器", "转换器", "插件名称", "供应商", "文件名", "配置...", "关于...", "关闭(_C)"}},
};

class TranslatedDialog : public testing::TestWithParam<SLanguage> {};

TEST_P(TranslatedDialog, ShowsEveryTextInItsLanguage) {
    const CGtkSession gtk;
    Speak(GetParam().m_pszName);
    GtkWidget* const dialog = AudioFormatSettingsDialog_New(nullptr);
    ASSERT_NE(dialog, nullptr);
    const std::vector<std::string> texts = TextsOf(dialog);
    EXPECT_EQ(std::set<std::string>(texts.begin(), texts.end()), GetParam().m_texts);
    gtk_widget_destroy(dialog);
}

INSTANTIATE_TEST_SUITE_P(Languages, TranslatedDialog, testing::ValuesIn(kLanguages),
                         [](const auto& test) { return std::string(test.param.m_pszName); });

TEST(TranslatedPluginDialogs, ShowTheirTextsInTheLanguage) {
    const CGtkSession gtk;
    const CLoadedPlugins plugins;
    Speak("de");
    std::vector<std::string> texts;
    const auto collect = [&](GtkDialog* dialog) {
        texts = TextsOf(GTK_WIDGET(dialog));
        gtk_dialog_response(dialog, GTK_RESPONSE_CANCEL);
    };
    const auto shows = [&](const std::string& text) {
        return std::any_of(texts.begin(), texts.end(),
                           [&](const std::string& shown) { return shown.find(text) != std::string::npos; });
    };
    {
        const CDialogDriver driver(collect);
        plugins.About("libsndfile Encoder")->About();
        EXPECT_TRUE(shows("Schreibt Audiodateien mit libsndfile-1."));
    }
    {
        const CDialogDriver driver(collect);
        CComPtr<IConfigurable>::Query(plugins.Component("SoX Resampler Convertor").Get(), IID_IConfigurable)
            ->Configure();
        EXPECT_TRUE(shows("Qualität der Abtastratenwandlung"));
        EXPECT_TRUE(shows("_Schnell") && shows("_Hoch") && shows("S_ehr hoch"));
    }
}

}  // namespace
