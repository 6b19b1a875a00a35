// The window that finds carts on a full audiowall, 99,999 carts with 5,000 files of notes: how long Stop, a
// double click and closing take in the middle of a search with notes, from the event to the end of what it
// does; a search that finds every cart, with its rows, beside the same search alone.
#include "FullWall.h"

#include "audio/CartPicking.h"
#include "audio/forms/CartResultList.h"
#include "audio/forms/frmFindCart.h"
#include "audio/search/CartSearch.h"
#include "platform/paths/Paths.h"
#include "ui/style/FitForm.h"
#include "ui/style/Style.h"

#include <QApplication>
#include <QComboBox>
#include <QElapsedTimer>
#include <QFile>
#include <QMouseEvent>
#include <QPushButton>
#include <QTemporaryDir>

#include <algorithm>

using namespace tolvex;
using namespace tolvex::bench;

namespace {

constexpr int notes = 5000;

struct Wall {
    QTemporaryDir folder;
    Settings settings;
    CartStore carts{settings};
    CartPicking picking;

    Wall() {
        platform::SetMachineFolder(folder.path());
        makeFullWall(carts, [](int) { return QStringLiteral("C:\\WALL"); });
        for (int file = 1; file <= notes; ++file)
            platform::ReplaceWholeFile(QStringLiteral("C:\\WALL\\") + CartFileName(file * 19) +
                                           QStringLiteral(".RTF"),
                                       QByteArray(2000, 'x'));
        settings.SearchCartNotes = -1;
        OpenCartParts(carts, 0, true);
    }
};

Wall& wall() {
    static Wall instance;
    return instance;
}

// A window with a search under way that has found the first cart.
std::unique_ptr<frmFindCart> searching(const QString& text) {
    wall().carts.notes.reset();
    auto form = std::make_unique<frmFindCart>(wall().carts, wall().picking);
    FitForm(form.get());
    form->show();
    form->findChild<QComboBox*>(QStringLiteral("cmbSearchText"))->setEditText(text);
    form->findChild<QPushButton*>(QStringLiteral("cmdFind"))->click();
    return form;
}

void post(QWidget* target, std::initializer_list<QEvent::Type> types, const QPoint& at) {
    for (const QEvent::Type type : types)
        QCoreApplication::postEvent(target, new QMouseEvent(type, at, target->mapToGlobal(at), Qt::LeftButton,
                                                            Qt::LeftButton, Qt::NoModifier));
}

enum Way { Stop, DoubleClick, Close };

// "longest_ms" of the way out, and "searched" carts, over searches that are left at different places.
void leaveInTheMiddle(benchmark::State& state) {
    double longest = 0;
    double searched = 0;
    int slices = 1;
    for (auto _ : state) {
        const auto form = searching(QStringLiteral("title number 1"));
        // One more turn of the loop each time, so that each search is further on.
        const int turns = slices++ % 20;
        for (int i = 0; form->isSearching() && (i < turns || form->search()->foundCount() == 0); ++i)
            QCoreApplication::processEvents();
        auto* list = form->findChild<CartResultList*>();
        QElapsedTimer clock;
        clock.start();
        switch (static_cast<Way>(state.range(0))) {
        case Stop:
            post(form->findChild<QPushButton*>(QStringLiteral("cmdStop")),
                 {QEvent::MouseButtonPress, QEvent::MouseButtonRelease}, {5, 5});
            break;
        case DoubleClick:
            post(list->viewport(),
                 {QEvent::MouseButtonPress, QEvent::MouseButtonRelease, QEvent::MouseButtonDblClick},
                 {20, 5});
            break;
        case Close:
            QMetaObject::invokeMethod(form.get(), "close", Qt::QueuedConnection);
            break;
        }
        while (form->isSearching() || (state.range(0) != Stop && form->isVisible()))
            QCoreApplication::processEvents();
        const double seconds = double(clock.nsecsElapsed()) / 1e9;
        longest = std::max(longest, seconds * 1000);
        searched += form->search()->done();
        state.SetIterationTime(seconds);
    }
    state.counters["longest_ms"] = longest;
    state.counters["searched"] = searched / double(state.iterations());
}
BENCHMARK(leaveInTheMiddle)
    ->ArgName("way")
    ->DenseRange(Stop, Close)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond)
    ->Iterations(60);

void findEveryCart(benchmark::State& state) {
    double alone = 0;
    double window = 0;
    for (auto _ : state) {
        const double seconds = secondsOf([] {
            const auto form = searching(QStringLiteral("*"));
            while (form->isSearching())
                QCoreApplication::processEvents();
        });
        alone += secondsOf([] {
            wall().carts.notes.reset();
            CartSearch search(wall().carts, {.text = QStringLiteral("*"), .wholeWall = true, .notes = true},
                              HighestCart);
            while (search.runFor(std::chrono::hours(1))) {
            }
        });
        window += seconds;
        state.SetIterationTime(seconds);
    }
    state.counters["window/alone"] = window / alone;
}
BENCHMARK(findEveryCart)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(10);

} // namespace

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication application(argc, argv);
    ApplyStyle(application, Scheme::Light);
    benchmark::Initialize(&argc, argv);
    wall();
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
