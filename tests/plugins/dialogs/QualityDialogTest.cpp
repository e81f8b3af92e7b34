// The convertor's settings: the resampling quality.
#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <string>

#include "stream/Convertor.h"
#include "tests/plugins/LoadedPlugins.h"
#include "tests/support/DialogDriver.h"

namespace {

constexpr const char* kConvertor = "SoX Resampler Convertor";
constexpr int kQuick = 0;
constexpr int kHigh = 1;
constexpr int kVeryHigh = 2;

std::vector<GtkToggleButton*> RadioButtonsOf(GtkDialog* dialog) {
    std::vector<GtkWidget*> widgets;
    CollectWidgets(GTK_WIDGET(dialog), widgets);
    std::vector<GtkToggleButton*> buttons;
    for (GtkWidget* const widget : widgets) {
        if (GTK_IS_RADIO_BUTTON(widget)) buttons.push_back(GTK_TOGGLE_BUTTON(widget));
    }
    return buttons;
}

// Which of the radio buttons is active when the dialog opens.
int ActiveOf(const std::vector<GtkToggleButton*>& buttons) {
    const auto active = std::find_if(buttons.begin(), buttons.end(), gtk_toggle_button_get_active);
    return static_cast<int>(active - buttons.begin());
}

bool Configure(const CLoadedPlugins& plugins, const std::function<void(GtkDialog*)>& act) {
    const auto settings = CComPtr<IConfigurable>::Query(plugins.Component(kConvertor).Get(), IID_IConfigurable);
    const CDialogDriver driver(act);
    const bool accepted = settings->Configure();
    EXPECT_TRUE(driver.Acted());
    return accepted;
}

bool Choose(const CLoadedPlugins& plugins, int quality, int response = GTK_RESPONSE_OK) {
    return Configure(plugins, [&](GtkDialog* dialog) {
        gtk_toggle_button_set_active(RadioButtonsOf(dialog).at(static_cast<std::size_t>(quality)), TRUE);
        gtk_dialog_response(dialog, response);
    });
}

// The choice that the dialog shows.
int ShownQuality(const CLoadedPlugins& plugins) {
    int active = -1;
    Configure(plugins, [&](GtkDialog* dialog) {
        active = ActiveOf(RadioButtonsOf(dialog));
        gtk_dialog_response(dialog, GTK_RESPONSE_CANCEL);
    });
    return active;
}

constexpr SHeldWavFormat kFrom{{44100, 32, 1}, 0};
constexpr SHeldWavFormat kTo{{48000, 32, 1}, 0};

CComPtr<IAudioConvertor> MakeConvertor(const CLoadedPlugins& plugins) {
    IConvertorFactory* factory = nullptr;
    plugins.Manager().GetConvertor(&factory);
    CComPtr<IAudioConvertor> convertor;
    EXPECT_TRUE(factory->CreateConvertor(&kFrom.m_format, &kTo.m_format, convertor.Out(), nullptr));
    return convertor;
}

// Two seconds of a tone at 19 kHz, whose images are further down with each quality.
std::vector<int> Treble() {
    std::vector<int> samples;
    for (int at = 0; at < 2 * kFrom.m_format.nSampleRate; ++at) {
        samples.push_back(static_cast<int>(1e9 * std::sin(2 * std::acos(-1.0) * 19000 * at / 44100.0)));
    }
    return samples;
}

std::vector<int> Convert(IAudioConvertor& convertor) {
    std::vector<int> input = Treble();
    std::vector<int> output;
    auto* const bytes = reinterpret_cast<unsigned char*>(input.data());
    int size = static_cast<int>(input.size() * sizeof(int));
    do {
        EXPECT_TRUE(convertor.Convert(size > 0 ? bytes : nullptr, size, 0, nullptr));
        const auto* const made = reinterpret_cast<const int*>(convertor.GetOutputData());
        output.insert(output.end(), made, made + static_cast<std::size_t>(convertor.GetOutputLength()) / sizeof(int));
        size = 0;
    } while (convertor.GetOutputLength() > 0);
    return output;
}

std::int64_t LargestDifference(const std::vector<int>& left, const std::vector<int>& right) {
    std::int64_t largest = 0;
    for (std::size_t at = 0; at < left.size(); ++at) {
        largest = std::max<std::int64_t>(largest, std::abs(std::int64_t{left[at]} - right[at]));
    }
    return largest;
}

}  // namespace

TEST(QualityDialog, IsHighAtFirstAndStandsAboveTheHostsWindow) {
    const CGtkSession gtk;
    const CLoadedPlugins plugins;
    GtkWidget* const window = gtk_window_new(GTK_WINDOW_TOPLEVEL);
    plugins.Manager().SetAppWindow(GTK_WINDOW(window));
    EXPECT_FALSE(Configure(plugins, [&](GtkDialog* dialog) {
        EXPECT_EQ(gtk_window_get_transient_for(GTK_WINDOW(dialog)), GTK_WINDOW(window));
        EXPECT_TRUE(gtk_window_get_modal(GTK_WINDOW(dialog)));
        EXPECT_STREQ(gtk_window_get_title(GTK_WINDOW(dialog)), "Resampling Quality");
        const auto buttons = RadioButtonsOf(dialog);
        ASSERT_EQ(buttons.size(), 3u);
        EXPECT_STREQ(gtk_button_get_label(GTK_BUTTON(buttons[0])), "_Quick");
        EXPECT_STREQ(gtk_button_get_label(GTK_BUTTON(buttons[1])), "_High");
        EXPECT_STREQ(gtk_button_get_label(GTK_BUTTON(buttons[2])), "_Very high");
        EXPECT_EQ(ActiveOf(buttons), kHigh);
        gtk_dialog_response(dialog, GTK_RESPONSE_CANCEL);
    }));
    gtk_widget_destroy(window);
}

TEST(QualityDialog, AcceptedChoiceIsTrueAndShownNextTime) {
    const CGtkSession gtk;
    const CLoadedPlugins plugins;
    for (const int quality : {kVeryHigh, kQuick, kHigh, kVeryHigh}) {
        EXPECT_TRUE(Choose(plugins, quality));
        EXPECT_EQ(ShownQuality(plugins), quality);
    }
}

TEST(QualityDialog, AnythingButOkIsFalseAndChangesNothing) {
    const CGtkSession gtk;
    const CLoadedPlugins plugins;
    for (const int response : {GTK_RESPONSE_CANCEL, GTK_RESPONSE_DELETE_EVENT, GTK_RESPONSE_NONE}) {
        EXPECT_FALSE(Choose(plugins, kQuick, response));
        EXPECT_EQ(ShownQuality(plugins), kHigh);
    }
}

TEST(QualityDialog, OkButtonAcceptsAndCancelButtonDoesNot) {
    const CGtkSession gtk;
    const CLoadedPlugins plugins;
    for (const int response : {GTK_RESPONSE_OK, GTK_RESPONSE_CANCEL}) {
        const bool accepted = Configure(plugins, [&](GtkDialog* dialog) {
            gtk_button_clicked(GTK_BUTTON(gtk_dialog_get_widget_for_response(dialog, response)));
        });
        EXPECT_EQ(accepted, response == GTK_RESPONSE_OK);
    }
}

TEST(QualityDialog, IsFalseWhileGtkHasNoDisplay) {
    const CLoadedPlugins plugins;
    const auto settings = CComPtr<IConfigurable>::Query(plugins.Component(kConvertor).Get(), IID_IConfigurable);
    ASSERT_TRUE(settings);
    EXPECT_FALSE(settings->Configure());
}

TEST(QualityDialog, ChoiceTakesEffectOnLaterConvertorsOnly) {
    const CGtkSession gtk;
    const CLoadedPlugins plugins;
    const std::vector<int> high = Convert(*MakeConvertor(plugins));
    const auto earlier = MakeConvertor(plugins);
    ASSERT_TRUE(Choose(plugins, kQuick));
    const auto later = MakeConvertor(plugins);
    EXPECT_EQ(Convert(*earlier), high);
    const std::vector<int> quick = Convert(*later);
    ASSERT_EQ(quick.size(), high.size());
    EXPECT_NE(quick, high);
    ASSERT_TRUE(Choose(plugins, kVeryHigh));
    const std::vector<int> veryHigh = Convert(*MakeConvertor(plugins));
    ASSERT_EQ(veryHigh.size(), high.size());
    EXPECT_LT(LargestDifference(veryHigh, high), LargestDifference(veryHigh, quick));
    EXPECT_GT(LargestDifference(veryHigh, high), 0);
}

TEST(QualityDialog, ChoiceIsForgottenWithThePluginWhichReallyUnloads) {
    const CGtkSession gtk;
    {
        const CLoadedPlugins plugins;
        EXPECT_TRUE(Choose(plugins, kQuick));
        EXPECT_EQ(ShownQuality(plugins), kQuick);
    }
    std::ifstream maps("/proc/self/maps");
    const std::string text((std::istreambuf_iterator<char>(maps)), {});
    EXPECT_EQ(text.find("/soxr.so"), std::string::npos);
    const CLoadedPlugins plugins;
    EXPECT_EQ(ShownQuality(plugins), kHigh);
}
