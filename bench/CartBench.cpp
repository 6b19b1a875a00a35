// The audiowall at its largest, 99,999 carts in 11 lists of 30 MB together: reading every cart as a search
// does, compared with reading the same bytes in one plain loop; decoding alone; and looking for the notes of
// every cart in a folder that holds 5,000 of them.
#include "FullWall.h"

#include "audio/CartNotes.h"
#include "platform/paths/Paths.h"

#include <QFile>
#include <QTemporaryDir>

#include <cstdio>

using namespace tolvex;
using namespace tolvex::bench;

namespace {

constexpr int cartCount = HighestCart;
constexpr int noteCount = 5000;
const QString wallFolder = QStringLiteral("C:\\WALL");

QString listPath(int part) {
    return wallFolder + QStringLiteral("\\Carts%1.lst").arg(part);
}

// A machine with a full wall, made once.
class Wall {
public:
    Wall() {
        platform::SetMachineFolder(folder_.path());
        makeFullWall(carts, [](int) { return wallFolder; });
        for (int note = 0; note < noteCount; ++note)
            platform::ReplaceWholeFile(
                CartFileStem(carts, 1 + note * (cartCount / noteCount)) + QStringLiteral(".RTF"), "x");
        OpenCartParts(carts, 0, true);
    }

    Settings settings;
    CartStore carts{settings};

private:
    QTemporaryDir folder_;
};

Wall& wall() {
    static Wall instance;
    return instance;
}

// Plain reading: the 11 files in one loop of the C library, record by record into one buffer.
void readPlainly() {
    char record[CartListRecordLength];
    for (int part = 1; part <= CartPartCount; ++part) {
        std::FILE* const file = std::fopen(platform::HostPath(listPath(part)).toUtf8().constData(), "rb");
        while (file && std::fread(record, sizeof record, 1, file) == 1)
            benchmark::DoNotOptimize(record);
        if (file)
            std::fclose(file);
    }
}

void readEveryCart() {
    for (int cart = 1; cart <= cartCount; ++cart)
        benchmark::DoNotOptimize(ReadCart(wall().carts, cart));
}

// Both in turn, so that other load on the machine affects both alike; "ratio" is the time of one reading of
// the wall in plain loops.
void everyCartOfAFullWall(benchmark::State& state) {
    double ours = 0;
    double plain = 0;
    for (auto _ : state) {
        const double seconds = secondsOf(readEveryCart);
        plain += secondsOf(readPlainly);
        ours += seconds;
        state.SetIterationTime(seconds);
    }
    state.counters["ratio"] = ours / plain;
    state.SetItemsProcessed(state.iterations() * cartCount);
}
BENCHMARK(everyCartOfAFullWall)->UseManualTime()->Unit(benchmark::kMillisecond);

void everyCartAndItsText(benchmark::State& state) {
    for (auto _ : state)
        for (int cart = 1; cart <= cartCount; ++cart)
            benchmark::DoNotOptimize(CartDescription(ReadCart(wall().carts, cart), true));
    state.SetItemsProcessed(state.iterations() * cartCount);
}
BENCHMARK(everyCartAndItsText)->Unit(benchmark::kMillisecond);

void sameBytesInOnePlainLoop(benchmark::State& state) {
    for (auto _ : state)
        readPlainly();
    state.SetItemsProcessed(state.iterations() * cartCount);
}
BENCHMARK(sameBytesInOnePlainLoop)->Unit(benchmark::kMillisecond);

void decodeOneRecord(benchmark::State& state) {
    const QByteArray bytes = cartBytes(42);
    for (auto _ : state)
        benchmark::DoNotOptimize(DecodeCartRecord(bytes.constData()));
}
BENCHMARK(decodeOneRecord);

void notesOfEveryCart(benchmark::State& state) {
    for (auto _ : state) {
        int found = 0;
        for (int cart = 1; cart <= cartCount; ++cart) {
            bool exists = false;
            benchmark::DoNotOptimize(CartNotesPath(wall().carts, cart, &exists));
            found += exists ? 1 : 0;
        }
        if (found != noteCount)
            state.SkipWithError("notes are missing");
    }
    state.SetItemsProcessed(state.iterations() * cartCount);
}
BENCHMARK(notesOfEveryCart)->Unit(benchmark::kMillisecond);

// The same by asking for each file.
void notesOfEveryCartByAsking(benchmark::State& state) {
    for (auto _ : state)
        for (int cart = 1; cart <= cartCount; ++cart)
            for (const char* extension : {".RTF", ".TXT"})
                if (platform::FileExists(CartFileStem(wall().carts, cart) + QLatin1String(extension)))
                    break;
}
BENCHMARK(notesOfEveryCartByAsking)->Unit(benchmark::kMillisecond);

// With a file of its own for one cart in ten of the first ten thousand.
void everyCartWithOwnFiles(benchmark::State& state) {
    constexpr int asked = 10000;
    for (int cart = 10; cart <= asked; cart += 10) {
        QFile file(platform::HostPath(CartFileStem(wall().carts, cart) + QStringLiteral(".LST")));
        if (file.open(QIODevice::WriteOnly))
            file.write(cartBytes(cart));
    }
    wall().settings.UseIndividualCartListFiles = -1;
    for (auto _ : state)
        for (int cart = 1; cart <= asked; ++cart)
            benchmark::DoNotOptimize(ReadCart(wall().carts, cart));
    wall().settings.UseIndividualCartListFiles = 0;
    state.SetItemsProcessed(state.iterations() * asked);
}
BENCHMARK(everyCartWithOwnFiles)->Unit(benchmark::kMillisecond);

} // namespace

int main(int argc, char** argv) {
    wall();
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
