// Searching a full audiowall for a word that does not occur: the whole program compared with grep and ripgrep
// on the same lists and, with notes, with one plain loop over the notes; the cost of the pauses for a
// window's events, and the longest stretch between two of them.
//
// All candidates run in turn, so that other load on the machine affects all alike. "ours/grep" and so on are
// ratios of total times; below 1 ours is faster.
#include "FullWall.h"

#include "audio/CartNotes.h"
#include "audio/search/CartSearch.h"
#include "platform/paths/Paths.h"

#include <QCoreApplication>
#include <QTemporaryDir>

#include <algorithm>
#include <cstdio>
#include <numeric>
#include <random>
#include <string>
#include <vector>

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>

using namespace tolvex;
using namespace tolvex::bench;

namespace {

constexpr char word[] = "zebra";
constexpr int notesInFolder = 5000;

QString folderOf(int part) {
    return QStringLiteral("C:\\WALL%1").arg(part);
}

std::string hostPath(const QString& path) {
    return platform::HostPath(path).toStdString();
}

// The carts of a part that have notes, and then the same number of other names.
std::vector<qint32> notesOf(int part, std::mt19937& random) {
    const qint32 first = (part - 1) * CartsInPart + 1;
    const qint32 last = part == CartPartCount ? HighestCart : part * CartsInPart;
    std::vector<qint32> carts(static_cast<std::size_t>(last - first + 1));
    std::iota(carts.begin(), carts.end(), first);
    std::shuffle(carts.begin(), carts.end(), random);
    carts.resize(std::min<std::size_t>(carts.size(), notesInFolder));
    for (qint32 other = 20000; part != CartPartCount && int(carts.size()) < notesInFolder; ++other)
        carts.push_back(other);
    std::sort(carts.begin(), carts.end());
    return carts;
}

// A machine with a full wall in 11 folders, each with 5,000 files of notes of half a kilobyte to four.
class Wall {
public:
    Wall() {
        platform::SetMachineFolder(folder_.path());
        makeFullWall(carts, folderOf);
        platform::ReplaceWholeFile(QStringLiteral("C:\\WALL1\\Audwall.ini"),
                                   "[Audiowall]\r\nNoCarts=99999\r\nVersion=2.6\r\n");
        QByteArray ini = "[FileLocations]\r\n";
        std::mt19937 random(1);
        for (int part = 1; part <= CartPartCount; ++part) {
            ini += "Carts" + QByteArray::number(part) + '=' + folderOf(part).toLatin1() + "\r\n";
            lists.push_back(hostPath(CartListPath(carts, part)));
            for (const qint32 cart : notesOf(part, random)) {
                const QByteArray text =
                    "{\\rtf1 " + QByteArray("Played at night. ").repeated(30 + int(random() % 200)) + '}';
                const QString path = folderOf(part) + u'\\' + CartFileName(cart) + QStringLiteral(".RTF");
                std::FILE* const file = std::fopen(hostPath(path).c_str(), "wb");
                std::fwrite(text.constData(), 1, std::size_t(text.size()), file);
                std::fclose(file);
                notes.push_back(hostPath(path));
                if (PartOfCart(cart) == part)
                    searchedNotes.push_back(notes.back());
            }
        }
        platform::ReplaceWholeFile(QStringLiteral("C:\\WINDOWS\\TOLVEX.INI"), ini);
        OpenCartParts(carts, 0, true);
    }

    std::string home() const { return folder_.path().toStdString(); }

    Settings settings;
    CartStore carts{settings};
    std::vector<std::string> lists;
    std::vector<std::string> notes;
    std::vector<std::string> searchedNotes; // those of carts in their own folder

private:
    QTemporaryDir folder_;
};

Wall& wall() {
    static Wall instance;
    return instance;
}

// Runs a program to its end, discarding its output. False if there is no such program or it failed; finding
// nothing is not a failure.
bool run(std::vector<std::string> words) {
    std::vector<char*> arguments(words.size() + 1);
    std::transform(words.begin(), words.end(), arguments.begin(),
                   [](std::string& text) { return text.data(); });
    posix_spawn_file_actions_t silence;
    ::posix_spawn_file_actions_init(&silence);
    for (const int stream : {1, 2})
        ::posix_spawn_file_actions_addopen(&silence, stream, "/dev/null", O_WRONLY, 0);
    pid_t child = 0;
    int status = -1;
    if (::posix_spawnp(&child, arguments[0], &silence, nullptr, arguments.data(), environ) == 0)
        ::waitpid(child, &status, 0);
    ::posix_spawn_file_actions_destroy(&silence);
    return WIFEXITED(status) && WEXITSTATUS(status) <= 1;
}

std::vector<std::string> overLists(std::vector<std::string> words) {
    words.insert(words.end(), wall().lists.begin(), wall().lists.end());
    return words;
}

bool runOurs(const char* option = "--quiet") {
    static const std::string program = TOLVEX_BIN_DIR "/tolvexctl";
    return run({program, "--home", wall().home(), "carts", "find", option, word});
}

void readPlainly(const std::vector<std::string>& files) {
    static char buffer[1 << 16];
    for (const std::string& name : files) {
        std::FILE* const file = std::fopen(name.c_str(), "rb");
        while (file && std::fread(buffer, 1, sizeof buffer, file) > 0)
            benchmark::DoNotOptimize(buffer);
        if (file)
            std::fclose(file);
    }
}

void wholeProgram(benchmark::State& state) {
    double ours = 0;
    double grep = 0;
    double ripgrep = 0;
    bool good = true;
    for (auto _ : state) {
        const double seconds = secondsOf([&] { good = runOurs() && good; });
        grep += secondsOf([&] { good = run(overLists({"grep", "-aci", word})) && good; });
        ripgrep += secondsOf([&] { good = run(overLists({"rg", "-aic", word})) && good; });
        ours += seconds;
        state.SetIterationTime(seconds);
    }
    if (!good)
        state.SkipWithError("tolvexctl, grep and rg (package ripgrep) are needed");
    state.counters["ours/grep"] = ours / grep;
    state.counters["ours/rg"] = ours / ripgrep;
}
BENCHMARK(wholeProgram)->UseManualTime()->Unit(benchmark::kMillisecond)->MinTime(2);

void wholeProgramWithNotes(benchmark::State& state) {
    double ours = 0;
    double all = 0;
    double searched = 0;
    for (auto _ : state) {
        const double seconds = secondsOf([] { runOurs("--notes"); });
        all += secondsOf([] { readPlainly(wall().notes); });
        searched += secondsOf([] { readPlainly(wall().searchedNotes); });
        ours += seconds;
        state.SetIterationTime(seconds);
    }
    state.counters["ours/plain"] = ours / all;
    state.counters["ours/searched"] = ours / searched; // only those of carts in their folder
}
BENCHMARK(wholeProgramWithNotes)->UseManualTime()->Unit(benchmark::kMillisecond)->MinTime(2);

// A search as a window runs it: "yields" is its time relative to the same search without pauses, "longest_ms"
// the longest wait of events, and so of Stop.
void searchWithPauses(benchmark::State& state) {
    const bool notes = state.range(0) != 0;
    double ours = 0;
    double inOneGo = 0;
    double longest = 0;
    const CartQuery query{.text = word, .wholeWall = true, .notes = notes};
    for (auto _ : state) {
        wall().carts.notes.reset(); // as the first search finds things
        CartSearch search(wall().carts, query, HighestCart);
        const double seconds = secondsOf([&] {
            for (bool more = true; more;) {
                longest =
                    std::max(longest, secondsOf([&] { more = search.runFor(std::chrono::milliseconds(5)); }));
                QCoreApplication::processEvents();
            }
        });
        wall().carts.notes.reset();
        CartSearch other(wall().carts, query, HighestCart);
        inOneGo += secondsOf([&] {
            while (other.runFor(std::chrono::hours(1))) {
            }
        });
        ours += seconds;
        state.SetIterationTime(seconds);
    }
    state.counters["yields"] = ours / inOneGo;
    state.counters["longest_ms"] = longest * 1000;
    state.SetItemsProcessed(state.iterations() * HighestCart);
}
BENCHMARK(searchWithPauses)
    ->ArgName("notes")
    ->Arg(0)
    ->Arg(1)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond)
    ->MinTime(2);

} // namespace

int main(int argc, char** argv) {
    const QCoreApplication application(argc, argv);
    benchmark::Initialize(&argc, argv);
    wall();
    readPlainly(wall().lists);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
