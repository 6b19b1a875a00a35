// The sound windows' settings and the sound devices from a shell.
#include "RunCtl.h"
#include "support/SoundDevices.h"

#include <QJsonArray>
#include <QJsonObject>

using tolvex::tests::Ctl;
using tolvex::tests::SoundDevices;

namespace {

class CtlAudio : public Ctl {
protected:
    CtlAudio() {
        sound.record("line", 0.5, 0.25, 44100 * 5);
        sound.declare({"desk", "phones"}, {"line"});
        run({"profile", "set", "tolvex.ini", "CartPlayers", "TotalNumberCartPlayers", "2"});
    }
    // With the declared devices.
    Result hear(const QString& words) const {
        return shell("ALSA_CONFIG_PATH=" + QString::fromUtf8(sound.config()) + " \"$ctl\" " + words);
    }
    QByteArray stored(const char* section, const char* key) const {
        return run({"profile", "get", "tolvex.ini", section, key}).out.trimmed();
    }
    QByteArray ini() const { return read(onC("WINDOWS/tolvex.ini")); }

    SoundDevices sound;
};

} // namespace

TEST_F(CtlAudio, SetsPlayersAndFormatAsTheWindowDoes) {
    EXPECT_EQ(hear("audio players 2 --manual 1 'the desk'").status, 0);
    EXPECT_EQ(stored("CartPlayers", "SoundCardNumber1"), "2");
    EXPECT_EQ(stored("CartPlayers", "SoundCardNumber2"), "1");
    QJsonObject shown = hear("--json audio show").json().object();
    EXPECT_EQ(shown["devices"].toArray()[1].toObject()["name"], "The desk");
    EXPECT_EQ(shown["automatic"], false);
    EXPECT_EQ(hear("audio format 'gsm 6.10' 1 8000").status, 0);
    EXPECT_EQ(stored("Audio", "Format"), "49");
    EXPECT_EQ(hear("--json audio show").json().object()["format"].toObject()["text"],
              "GSM 6.10 8.000 kHz, Mono");
    EXPECT_TRUE(hear("audio players 4 --auto").err.contains("only 2 suitable sound devices"));
    EXPECT_EQ(stored("CartPlayers", "SoundCardNumber1"), "");

    const QByteArray before = ini();
    const auto refused = [&](const QString& words, const char* why) {
        const Result result = hear(words);
        EXPECT_EQ(result.status, 2) << words.toStdString();
        EXPECT_TRUE(result.err.contains(why)) << result.err.toStdString();
    };
    refused("audio players 7", "You cannot have more than 6 in Tolvex");
    refused("audio players x", "from 0 to 6");
    refused("audio players 1 --manual desk phones", "too many");
    refused("audio players 2 desk", "--manual is expected");
    refused("audio players 2 --manual 7", "is not an output");
    refused("audio format 1 2 44000", "the nearest is 44.100 kHz, 16 Bit, Stereo");
    refused("audio format 4660 2 44100", "is not a format");
    refused("audio test 5", "A player from 1 to 4");
    refused("audio test 1 --seconds soon", "--seconds");
    EXPECT_EQ(ini(), before);
    EXPECT_EQ(hear("--json audio formats 0x31").json().array()[0].toObject()["channels"], 1);
    EXPECT_EQ(hear("audio formats 4660").status, 1);
}

TEST_F(CtlAudio, PlaysATestToneAndMeasuresALevel) {
    EXPECT_EQ(hear("audio players 2 --manual phones mapper").status, 0);
    const Result tone = hear("audio test 1 --seconds 0.3");
    EXPECT_EQ(tone.status, 0) << tone.err.toStdString();
    EXPECT_EQ(sound.samplesOf("phones").size(), 2U * 13230);
    EXPECT_TRUE(hear("audio test 2").err.contains("is not there"));
    const QJsonObject level = hear("--json audio level --seconds 0.4").json().object();
    EXPECT_EQ(level["left"].toDouble(), -6.0);
    EXPECT_EQ(level["right"].toDouble(), -12.0);
    EXPECT_EQ(level["level"], "good");
}

TEST_F(CtlAudio, PutsNumbersRightAfterDevicesHaveMoved) {
    EXPECT_EQ(hear("audio players 2 --manual desk phones").status, 0);
    QFile::remove(home() + "/wavedevices.txt"); // the numbers are assigned again
    sound.declare({"phones", "new", "desk"}, {"line"});
    EXPECT_EQ(hear("--json status").json().object()["movedDevices"].toArray().toVariantList().value(0),
              "Player 1 was 'The desk', which is now number 2; number 0 is now 'The phones'");
    EXPECT_EQ(hear("audio repair").status, 0);
    EXPECT_EQ(stored("CartPlayers", "SoundCardNumber1"), "3");
    EXPECT_EQ(stored("CartPlayers", "SoundCardNumber2"), "1");
    EXPECT_TRUE(hear("audio repair").err.contains("Every number means"));
}

TEST_F(CtlAudio, SetsTheAudiowall) {
    EXPECT_EQ(run({"audiowall", "size", "500"}).status, 3); // there is no location for it
    EXPECT_EQ(run({"audiowall", "jump", "5", "100", "News"}).status, 0);
    EXPECT_EQ(stored("AudioWall", "NumberCartJumpButtons"), "5");
    EXPECT_EQ(stored("AudioWall", "JumpDescription5"), "News");
    EXPECT_TRUE(run({"audiowall", "jump", "1", "20000", "x"}).err.contains("9999 carts"));
    EXPECT_EQ(run({"audiowall", "jump", "11", "1"}).err, "You can only have up to 10 Jump Buttons\n");
    run({"profile", "set", "tolvex.ini", "FileLocations", "Carts1", "C:\\WALL"});
    QDir().mkpath(onC("WALL"));
    EXPECT_TRUE(run({"audiowall", "size", "100000"}).err.contains("It has been changed to 99999 for you."));
    const QJsonObject wall = run({"--json", "audiowall", "show"}).json().object();
    EXPECT_EQ(wall["carts"], 99999);
    EXPECT_EQ(wall["jumps"].toArray()[4].toObject(),
              (QJsonObject{{"button", 5}, {"cart", 100}, {"description", "News"}}));
    // A file that was not written is a failure, also where the command changes nothing that it holds.
    QFile::remove(onC("WALL/Audwall.ini"));
    QDir().mkpath(onC("WALL/Audwall.ini"));
    const Result players = hear("audio players 1");
    EXPECT_EQ(players.status, 3);
    EXPECT_TRUE(players.err.contains("the settings of this workstation were stored"))
        << players.err.toStdString();
    EXPECT_EQ(stored("CartPlayers", "TotalNumberCartPlayers"), "1");
}
