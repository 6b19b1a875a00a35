// The sound windows: opening one compared with a dialog of as many widgets of the same classes without logic,
// OK compared with the bare replacement of a file of that size, and the samples for one step of a slider.
#include "audio/AudioSetup.h"
#include "audio/AudiowallSetup.h"
#include "audio/forms/CartView.h"
#include "audio/forms/frmAudioSetup.h"
#include "audio/forms/frmAudioWallSetup.h"
#include "core/settings/SettingsLoader.h"
#include "platform/devices/WaveDevices.h"
#include "platform/host/Replacement.h"
#include "platform/paths/Paths.h"
#include "ui/style/FitForm.h"
#include "ui/style/Style.h"

#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QSlider>
#include <QTableWidget>
#include <QTemporaryDir>
#include <QVBoxLayout>
#include <benchmark/benchmark.h>

using namespace tolvex;

namespace {

const QString ini = QStringLiteral("TOLVEX.INI");

class Sound : public benchmark::Fixture {
public:
    void SetUp(benchmark::State&) override {
        platform::SetMachineFolder(folder_.path());
        settings.LocalIniFile = ini;
        for (const SettingRows rows :
             {PlayerAssignmentRows, PlayerColourRows, PlayerRows, VolumeRows, SweptVolumeRows, AudioRows,
              CartDisplayRows, AudioWallSizeRows, AudioWallRows, AudiowallFileRows})
            LoadRows(rows, {ini}, settings);
        settings.TotalNumberCartPlayers = 6;
        QList<platform::WaveDevice> devices;
        for (int n = 0; n < 8; ++n)
            devices += {QStringLiteral("Device %1").arg(n), QString::number(n), 0,
                        platform::WaveFormat4M16 | platform::WaveFormat4S16, true};
        platform::SetWaveDevices(devices, devices);
    }

    Settings settings;

private:
    QTemporaryDir folder_;
};

void show(QDialog& dialog) {
    FitForm(&dialog);
    dialog.show();
    QApplication::processEvents();
}

template<typename Widget>
void addAsMany(const QWidget& as, QVBoxLayout& layout) {
    for (qsizetype left = as.findChildren<Widget*>().size(); left > 0; --left)
        layout.addWidget(new Widget);
}

// Opens a dialog with as many widgets as the window has.
void openPlain(const QDialog& as) {
    QDialog plain;
    QVBoxLayout layout(&plain);
    addAsMany<QLabel>(as, layout);
    addAsMany<QLineEdit>(as, layout);
    addAsMany<QComboBox>(as, layout);
    addAsMany<QCheckBox>(as, layout);
    addAsMany<QRadioButton>(as, layout);
    addAsMany<QPushButton>(as, layout);
    addAsMany<QSlider>(as, layout);
    addAsMany<QTableWidget>(as, layout);
    show(plain);
}

} // namespace

BENCHMARK_F(Sound, OpenAudioWindow)(benchmark::State& state) {
    for (auto _ : state) {
        frmAudioSetup form(settings);
        show(form);
    }
}
BENCHMARK_F(Sound, OpenPlainDialogForIt)(benchmark::State& state) {
    const frmAudioSetup as(settings);
    for (auto _ : state)
        openPlain(as);
}
BENCHMARK_F(Sound, OpenAudiowallWindow)(benchmark::State& state) {
    for (auto _ : state) {
        frmAudioWallSetup form(settings);
        show(form);
    }
}
BENCHMARK_F(Sound, OpenPlainDialogForThat)(benchmark::State& state) {
    const frmAudioWallSetup as(settings);
    for (auto _ : state)
        openPlain(as);
}

BENCHMARK_F(Sound, StoreAudioSettings)(benchmark::State& state) {
    AudioSetup setup = LoadAudioSetup(settings);
    for (auto _ : state) {
        setup.generalVolume = 100 - setup.generalVolume % 2; // something to write each time
        setup.duckVolume = (setup.duckVolume + 1) % 100;
        setup.fadePercent = 50;
        StoreAudioSetup(setup, settings);
    }
}
BENCHMARK_F(Sound, StoreAudiowallSettings)(benchmark::State& state) {
    AudiowallSetup setup = LoadAudiowallSetup(settings);
    for (auto _ : state) {
        setup.fadeSeconds = setup.fadeSeconds % 100 + 1;
        StoreAudiowallSetup(setup, settings);
    }
}
BENCHMARK_F(Sound, ReplaceAFileOfThatSize)(benchmark::State& state) {
    StoreAudioSetup(LoadAudioSetup(settings), settings);
    const QString path = platform::HostPath(ini, platform::BareName::WindowsFolder);
    QFile file(path);
    file.open(QIODevice::ReadOnly);
    QByteArray bytes = file.readAll();
    for (auto _ : state) {
        bytes.back() = char('0' + (bytes.back() + 1) % 10);
        platform::ReplaceHostFile(path, bytes);
    }
}

BENCHMARK_F(Sound, SamplesForOneStepOfASlider)(benchmark::State& state) {
    frmAudioWallSetup form(settings);
    form.findChild<QTabWidget*>()->setCurrentIndex(3);
    show(form);
    auto* slider = form.findChild<QSlider*>(QStringLiteral("sldCartWidth"));
    const auto samples = form.findChildren<CartView*>();
    int step = 0;
    for (auto _ : state) {
        slider->setValue(2500 + 15 * (++step % 50));
        for (CartView* sample : samples)
            sample->repaint();
        QApplication::processEvents();
    }
}

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication application(argc, argv);
    ApplyStyle(*qApp, Scheme::Light);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
