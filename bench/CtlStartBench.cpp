// tolvexctl from start to end, "--version" and "status" on a configured station, beside a bare program of the
// toolkit's core.
#include "ProcessCost.h"

#include <QFile>
#include <QProcess>
#include <QTemporaryDir>

#include <fcntl.h>

int main() {
    const QTemporaryDir folder;
    qputenv("TOLVEX_HOME", QFile::encodeName(folder.path()));
    QProcess::execute(QStringLiteral(TOLVEX_BIN_DIR "/tolvexctl"),
                      {QStringLiteral("--yes"), QStringLiteral("--quiet"), QStringLiteral("autoconfig"),
                       QStringLiteral("local")});
    // Their output is not measured.
    const int shown = dup(STDOUT_FILENO);
    const int nowhere = open("/dev/null", O_WRONLY);
    dup2(nowhere, STDOUT_FILENO);
    const Cost bare = middle(TOLVEX_BIN_DIR "/bare_core", "");
    const Cost version = middle(TOLVEX_BIN_DIR "/tolvexctl", "--version");
    const Cost status = middle(TOLVEX_BIN_DIR "/tolvexctl", "status");
    dup2(shown, STDOUT_FILENO);
    printBeside("bare core program", bare, "tolvexctl --version", version);
    printBeside("bare core program", bare, "tolvexctl status", status);
    return 0;
}
