// Three cards of 100 lines: loading, showing and applying them, and giving 100 selected lines an action.
#include "QuietFile.h"

#include "core/settings/Settings.h"
#include "hardware/AdvantechDriver.h"
#include "hardware/HardwareStore.h"
#include "hardware/LineEdits.h"
#include "hardware/forms/CardPage.h"
#include "hardware/forms/LineUsageModel.h"
#include "hardware/forms/frmHardwareSettings.h"
#include "platform/paths/Paths.h"
#include "platform/profile/ProfileFile.h"

#include <QApplication>
#include <QTemporaryDir>
#include <benchmark/benchmark.h>

using namespace tolvex;

namespace {

const QString ini = QStringLiteral("TOLVEX.INI");

// Every device is a board of 60 inputs and 40 outputs.
class Boards : public AdvantechDriver {
public:
    qint32 open(qint32, qint32&) override { return 0; }
    qint32 features(qint32, BoardFeatures& features) override {
        features = {1, 60, 40};
        return 0;
    }
    qint32 portModes(qint32, PortModes&) override { return 0; }
    qint32 close(qint32) override { return 0; }
    QString errorText(qint32) override { return {}; }
};

class Cards : public benchmark::Fixture {
public:
    void SetUp(benchmark::State&) override {
        platform::SetMachineFolder(folder_.path());
        settings.LocalIniFile = ini;
        SetAdvantechDriver([]() -> AdvantechDriver* {
            static Boards boards;
            return &boards;
        });
        cards = {};
        for (HardwareCard& card : cards) {
            card.CardType = CardAdvantech;
            for (int n = 1; n <= LinesPerCard; ++n) {
                card.Lines[n].LineType = n > 60;
                card.Lines[n].Description = QStringLiteral("Studio line %1").arg(n);
                ChooseAction(card, {n}, n > 60 ? 2 : 1);
            }
        }
        WriteHardwareSettings(cards, ini);
        MakeQuiet(ini);
    }

    Settings settings;
    HardwareCardTable cards;

private:
    QTemporaryDir folder_;
};

} // namespace

BENCHMARK_F(Cards, Load)(benchmark::State& state) {
    for (auto _ : state)
        ReadHardwareSettings(cards, ini);
}

BENCHMARK_F(Cards, LoadAChangedFile)(benchmark::State& state) {
    for (auto _ : state) {
        platform::ForgetProfiles();
        ReadHardwareSettings(cards, ini);
    }
}

BENCHMARK_F(Cards, OpenAndShowTheForm)(benchmark::State& state) {
    for (auto _ : state) {
        frmHardwareSettings form(cards, settings);
        form.show();
        QApplication::processEvents();
        form.hide();
    }
}

BENCHMARK_F(Cards, ShowAllLinesAnew)(benchmark::State& state) {
    LineUsageModel model(cards[1]);
    model.setLines(LinesPerCard);
    for (auto _ : state)
        model.UpdateGridDisplay();
}

BENCHMARK_F(Cards, ApplyOneChange)(benchmark::State& state) {
    ReadHardwareSettings(cards, ini);
    for (auto _ : state) {
        ToggleLogic(cards[3], {100});
        WriteHardwareSettings(cards, ini);
    }
}

BENCHMARK_F(Cards, GiveAHundredLinesAnAction)(benchmark::State& state) {
    LineUsageModel model(cards[1]);
    model.setLines(LinesPerCard);
    LineNumbers lines;
    for (int n = 1; n <= LinesPerCard; ++n)
        lines.append(n);
    qint32 action = 1;
    for (auto _ : state) {
        ChooseAction(cards[1], lines, action);
        model.UpdateGridDisplay();
        action = action == 1 ? 3 : 1;
    }
}

int main(int argc, char** argv) {
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication application(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
