// The formats of this machine's codecs, verified by files written in them.
#include "platform/devices/AudioFormats.h"

#include <gtest/gtest.h>

using namespace tolvex::platform;

TEST(AudioFormats, AreThoseThatCanBeWritten) {
    const AudioFormatTag* pcm = FindAudioFormatTag(1);
    ASSERT_TRUE(pcm);
    EXPECT_EQ(pcm->name, "PCM");
    EXPECT_TRUE(pcm->formats.contains(AudioFormat{1, 2, 44100, 16}));
    EXPECT_TRUE(pcm->formats.contains(AudioFormat{1, 1, 8000, 8}));
    const AudioFormatTag* gsm = FindAudioFormatTag(0x31);
    ASSERT_TRUE(gsm);
    for (const AudioFormat& format : gsm->formats) // has one channel and no size of a sample
        EXPECT_EQ(format, (AudioFormat{0x31, 1, format.rate, 0}));
    EXPECT_EQ(FindAudioFormatTag(0x11)->formats.first().bits, 4);
    EXPECT_FALSE(FindAudioFormatTag(0));
    EXPECT_FALSE(FindAudioFormatTag(0x1234));
    qint32 last = 0;
    for (const AudioFormatTag& tag : AudioFormatTags()) {
        EXPECT_GT(tag.tag, last);
        last = tag.tag;
    }
}

TEST(AudioFormats, AreSuggestedByTagThenChannelsThenRate) {
    EXPECT_EQ(SuggestAudioFormat(1, 2, 44100), (AudioFormat{1, 2, 44100, 16}));
    EXPECT_EQ(SuggestAudioFormat(1, 1, 44000), (AudioFormat{1, 1, 44100, 16}));
    EXPECT_EQ(SuggestAudioFormat(0x31, 2, 9000), (AudioFormat{0x31, 1, 8000, 0}));
    EXPECT_EQ(SuggestAudioFormat(0x1234, 2, 48000), (AudioFormat{1, 2, 48000, 16}));
}

TEST(AudioFormats, AreDescribedInTheWordsOfTheSuite) {
    EXPECT_EQ(DescribeAudioFormat(1, 2, 44100), "PCM 44.100 kHz, 16 Bit, Stereo");
    EXPECT_EQ(DescribeAudioFormat(0x31, 1, 8000), "GSM 6.10 8.000 kHz, Mono");
    EXPECT_EQ(DescribeAudioFormat(4660, 2, 22050), "Format 4660 22.050 kHz, Stereo");
    EXPECT_EQ(AudioFormatDetails({1, 6, 48000, 24}), "48.000 kHz, 24 Bit, 6 Channels");
}
