// Animations out of AVI files, and the sign that stands in where there is none.
#include "TestPlaces.h"
#include "support/MachineFolder.h"

#include "ui/animation/AnimationView.h"

#include <QFile>
#include <QTest>
#include <QtEndian>

#include <gtest/gtest.h>

using namespace tolvex;
using namespace tolvex::tests;

namespace {

QByteArray sample(const char* name) {
    QFile file(QStringLiteral(TOLVEX_SOURCE_DIR "/fuzz/corpus/avi_file/%1").arg(name));
    EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << name;
    return file.readAll();
}

// A frame as letters: "." what is transparent, m black, w white, g green, "?" anything else.
QStringList drawn(const QImage& frame) {
    QStringList lines;
    for (int y = 0; y < frame.height(); ++y) {
        QString line;
        for (int x = 0; x < frame.width(); ++x) {
            const QRgb dot = frame.pixel(x, y);
            line += qAlpha(dot) == 0             ? u'.'
                    : dot == qRgb(0, 0, 0)       ? u'm'
                    : dot == qRgb(255, 255, 255) ? u'w'
                    : dot == qRgb(0, 128, 0)     ? u'g'
                                                 : u'?';
        }
        lines += line;
    }
    return lines;
}

// The bytes with a number put in after an occurrence of a text.
QByteArray with(QByteArray bytes, const char* after, qsizetype offset, quint32 number) {
    const qsizetype at = bytes.indexOf(after) + qsizetype(strlen(after)) + offset;
    qToLittleEndian(number, bytes.data() + at);
    return bytes;
}

} // namespace

TEST(Animation, ReadsWhatTheSuiteHas) {
    const Animation runs = ReadAvi(sample("run-length"));
    EXPECT_EQ(runs.milliseconds, 100);
    ASSERT_EQ(runs.frames.size(), 3);
    EXPECT_EQ(drawn(runs.frames[0]), (QStringList{".ww.", ".mm.", "...."}));
    EXPECT_EQ(drawn(runs.frames[1]), (QStringList{".ww.", ".gm.", "...."})); // changes a part
    EXPECT_EQ(runs.frames[2], runs.frames[1]);
    const Animation eight = ReadAvi(sample("plain-8"));
    ASSERT_EQ(eight.frames.size(), 3);
    EXPECT_EQ(drawn(eight.frames[0]), (QStringList{".mwgm", ".mwgm"}));
    const Animation plain = ReadAvi(sample("plain-24-top-down"));
    ASSERT_EQ(plain.frames.size(), 2);
    EXPECT_EQ(plain.frames[0].pixel(1, 0), qRgb(5, 4, 3));
    EXPECT_EQ(plain.frames[0].pixel(2, 1), qRgb(20, 19, 18));
    // Behind a stream of sound, five bits a colour.
    const Animation sixteen = ReadAvi(sample("sound-and-16-bits"));
    ASSERT_EQ(sixteen.frames.size(), 1);
    EXPECT_EQ(sixteen.milliseconds, 100);
    EXPECT_EQ(sixteen.frames[0].pixel(0, 1), qRgb(148, 82, 98));
}

TEST(Animation, RefusesWhatItCannotShow) {
    const QByteArray good = sample("plain-8");
    EXPECT_TRUE(ReadAvi({}).frames.isEmpty());
    EXPECT_TRUE(ReadAvi(good.left(100)).frames.isEmpty());
    EXPECT_EQ(ReadAvi(good.chopped(5)).frames.size(), 2);
    // Too wide, no height, a coding for moving pictures.
    for (const auto& [offset, number] :
         {std::pair<int, quint32>(8, 1025), {12, 0}, {20, 0x44495633}, {12, 0x80000000}})
        EXPECT_TRUE(ReadAvi(with(good, "strf", offset, number)).frames.isEmpty()) << offset;
    QByteArray other = good;
    other.replace("AVI ", "WAVE");
    EXPECT_TRUE(ReadAvi(other).frames.isEmpty());
}

TEST(Animation, PlaysOrShowsASign) {
    TestMachine machine;
    machine.write("C:\\APP\\find.avi", sample("run-length"));
    AnimationView view;
    view.resize(64, 64);
    EXPECT_FALSE(view.open("C:\\APP\\none.avi"));
    const QImage still = view.grab().toImage();
    view.start();
    const QImage sign = view.grab().toImage();
    EXPECT_NE(sign, still);
    EXPECT_TRUE(QTest::qWaitFor([&] { return view.grab().toImage() != sign; }));
    view.stop();
    EXPECT_EQ(view.grab().toImage(), still);

    EXPECT_TRUE(view.open("C:\\APP\\find.avi"));
    const QImage first = view.grab().toImage();
    EXPECT_NE(first, still);
    view.start();
    EXPECT_TRUE(QTest::qWaitFor([&] { return view.grab().toImage() != first; }));
    view.stop();
    EXPECT_EQ(view.grab().toImage(), first);
}
