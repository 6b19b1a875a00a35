// What may come next on a command line, from the program and through the script for bash.
#include "RunCtl.h"
#include "support/SoundDevices.h"

namespace tolvex::tests {
namespace {

class CtlCompletion : public Ctl {
protected:
    void SetUp() override {
        ASSERT_EQ(run({"profile", "set", "tolvex.ini", "FileLocations", "Data", "C:\\DATA"}).status, 0);
        write(onC("DATA/NOTES.TXT"), "x");
        write(onC("DATA/USERS/FOUND.MDB"), "x");
    }
    // The candidates, without descriptions, and directives.
    QStringList complete(const QStringList& words) const {
        QStringList values;
        for (const QString& line : QString(run(QStringList{"--complete"} + words).out).split('\n'))
            if (!line.isEmpty())
                values += line.section('\t', 0, 0);
        return values;
    }
    // What bash gets for a line that it split into these words, as shell text.
    QByteArray bash(const QString& typed, const QString& words) const {
        const QString script = "source '" TOLVEX_SOURCE_DIR "/packaging/completions/tolvexctl.bash';"
                               "PATH='" TOLVEX_BIN_DIR "':$PATH; COMP_LINE=$1; COMP_POINT=${#1}; shift;"
                               "COMP_WORDS=(\"$@\"); COMP_CWORD=$(($# - 1)); _tolvexctl;"
                               "printf '%s|' \"${COMPREPLY[@]}\"";
        const Result result = start("bash", QStringList{"-c", script, "-", typed} + words.split(' '));
        EXPECT_EQ(result.err, "");
        return result.out;
    }
};

using List = QStringList;

} // namespace

TEST_F(CtlCompletion, FollowsTheRowsOfTheCommands) {
    EXPECT_EQ(complete({"prof"}), List("profile"));
    EXPECT_EQ(complete({"--home", home(), "profile", "get"}), List({"get", "getint"}));
    EXPECT_EQ(complete({"registry", "set", "--d"}), List("--dword"));
    EXPECT_EQ(complete({"--sys"}), List("--sys-ini"));
    EXPECT_EQ(complete({"hardware", "set", "1", "2", "--type", "in"}), List("input"));
    EXPECT_EQ(complete({"hardware", "set", "--type=o"}), List("--type=output"));
    EXPECT_EQ(complete({"settings", "import", "--preview", "C:\\DATA\\N"}),
              List({"C:\\DATA\\NOTES.TXT", ":files"}));
    EXPECT_EQ(complete({"automation", "settings", "li"}), List("list")) << "a file may be left out";
    EXPECT_EQ(complete({"automation", "settings", "get", ""}), List())
        << "an item, where there is a database";
    ASSERT_EQ(run({"commands", "add", "Door", "--serial", "2", "--text", "x"}).status, 0);
    EXPECT_EQ(complete({"commands", "show", ""}), List("Door"));
    EXPECT_EQ(complete({"commands", "add", ""}), List()) << "a new name";
    EXPECT_EQ(complete({"profile", "get", "--", "--d"}), List(":files"));
    EXPECT_EQ(complete({"nonsense", "x"}), List());
    EXPECT_EQ(run({"--complete", "stat"}).out,
              "status\tShow how this workstation is configured and what is missing\n");
}

TEST_F(CtlCompletion, AsksTheMachine) {
    EXPECT_EQ(complete({"settings", "set", "audiowall", "CartMinimumW"}), List("CartMinimumWidth"));
    EXPECT_EQ(complete({"settings", "list", "FileL"}), List("FileLocations"));
    EXPECT_EQ(complete({"profile", "get", "tolvex.ini", "F"}), List("FileLocations"));
    EXPECT_EQ(complete({"profile", "get", "tolvex.ini", "FileLocations", ""}), List("Data"));
    EXPECT_EQ(complete({"db", "check", "c"}), List({"C:\\DATA\\USERS\\FOUND.MDB", "C:\\", ":files"}));
    EXPECT_EQ(complete({"db", "find", "C:\\DATA\\"}), List({"C:\\DATA\\USERS\\", ":folders"}));
    EXPECT_EQ(complete({"db", "find", "c"}), List({"C:\\", ":folders"})) << "a folder, no database";
    ASSERT_EQ(run({"db", "create", "C:\\DATA\\LOG.MDB", "--type", "14"}).status, 0);
    EXPECT_EQ(complete({"db", "export", "C:\\DATA\\LOG.MDB", "Desc"}), List("Description"));
    EXPECT_EQ(complete({"db", "export", "C:\\DATA\\NOTES.TXT", ""}), List());

    SoundDevices sound;
    sound.declare({"desk"});
    const Result heard = shell("ALSA_CONFIG_PATH=" + QString::fromUtf8(sound.config()) +
                               " \"$ctl\" --complete audio players 2 1 The");
    EXPECT_EQ(heard.out, "The desk\toutput\n");
}

TEST_F(CtlCompletion, ReachesBashAsItTakesWordsApart) {
    EXPECT_EQ(bash("tolvexctl prof", "tolvexctl prof"), "profile|");
    EXPECT_EQ(bash("tolvexctl db check C:\\\\DATA\\\\U", "tolvexctl db check C : \\\\DATA\\\\U"),
              "\\\\DATA\\\\USERS\\\\|");
    EXPECT_EQ(bash("tolvexctl db check 'C:\\DATA\\USERS\\", "tolvexctl db check 'C:\\DATA\\USERS\\"),
              "C:\\DATA\\USERS\\FOUND.MDB|");
    EXPECT_EQ(bash("tolvexctl --home=ho", "tolvexctl --home = ho"), "home/|");
    EXPECT_EQ(bash("tolvexctl db info drive", "tolvexctl db info drive"), "|");
}

} // namespace tolvex::tests
