#include "ui/animation/AviFile.h"

#include <QtEndian>

#include <algorithm>
#include <cstdlib>
#include <vector>

namespace tolvex {

namespace {

constexpr int largestSide = 1024;
constexpr qsizetype mostFrames = 1000;
constexpr qint64 mostDots = 16 << 20; // of all frames, four bytes each
constexpr int deepestList = 4;
constexpr int usualPace = 100; // milliseconds

constexpr qsizetype chunkHead = 8;
constexpr qsizetype formType = 4; // a list's kind, before its chunks
constexpr qsizetype bitmapHead = 40;
constexpr quint32 plain = 0;     // BI_RGB
constexpr quint32 runLength = 1; // BI_RLE8

template<typename Number>
Number numberAt(QByteArrayView bytes, qsizetype at) {
    return at + qsizetype(sizeof(Number)) <= bytes.size() ? qFromLittleEndian<Number>(bytes.data() + at)
                                                          : Number(0);
}

struct Chunk {
    QByteArrayView id;
    QByteArrayView kind; // of a list
    QByteArrayView data; // a list's chunks
};

// Calls `take` for each chunk and, below a list, for those of the list. A chunk that is cut short is taken as
// it is.
template<typename Take>
void walk(QByteArrayView bytes, const Take& take, int depth = 0) {
    while (bytes.size() >= chunkHead) {
        const qsizetype length = std::min<qsizetype>(numberAt<quint32>(bytes, 4), bytes.size() - chunkHead);
        Chunk chunk{bytes.first(4), {}, bytes.sliced(chunkHead, length)};
        if ((chunk.id == "LIST" || chunk.id == "RIFF") && length >= formType) {
            chunk.kind = chunk.data.first(formType);
            chunk.data = chunk.data.sliced(formType);
        }
        take(chunk);
        if (!chunk.kind.isEmpty() && depth < deepestList)
            walk(chunk.data, take, depth + 1);
        bytes = bytes.sliced(std::min<qsizetype>(chunkHead + length + length % 2, bytes.size()));
    }
}

class Reader {
public:
    Animation read(const QByteArray& bytes) {
        if (numberAt<quint32>(bytes, 0) != numberAt<quint32>("RIFF", 0) || bytes.mid(8, 4) != "AVI ")
            return {};
        walk(bytes, [this](const Chunk& chunk) { take(chunk); });
        return animation_;
    }

private:
    void take(const Chunk& chunk) {
        if (chunk.id == "avih") {
            const quint32 microseconds = numberAt<quint32>(chunk.data, 0);
            animation_.milliseconds =
                microseconds == 0 ? usualPace : std::clamp(int(microseconds / 1000), 10, 10000);
        } else if (chunk.id == "strh") {
            ++stream_;
            isPicture_ = chunk.data.startsWith("vids");
        } else if (chunk.id == "strf" && isPicture_ && canvas_.isNull()) {
            takeFormat(chunk.data);
        } else if (chunk.id.size() == 4 && (chunk.id.endsWith("db") || chunk.id.endsWith("dc")) &&
                   !canvas_.isNull() && chunk.id.first(2) == shown_) {
            takeFrame(chunk.data);
        }
    }

    void takeFormat(QByteArrayView format) {
        const auto headSize = numberAt<quint32>(format, 0);
        const auto width = numberAt<qint32>(format, 4);
        const auto height = numberAt<qint32>(format, 8);
        bits_ = numberAt<quint16>(format, 14);
        compression_ = numberAt<quint32>(format, 16);
        const bool known = compression_ == runLength ? bits_ == 8
                           : compression_ == plain   ? bits_ == 8 || bits_ == 16 || bits_ == 24 || bits_ == 32
                                                     : false;
        if (format.size() < bitmapHead || headSize < bitmapHead || !known || width < 1 ||
            width > largestSide || height == 0 || height < -largestSide || height > largestSide)
            return;
        bottomUp_ = height > 0;
        palette_.assign(256, qRgb(0, 0, 0));
        for (qsizetype i = 0; bits_ == 8 && i < 256; ++i) {
            const qsizetype at = qsizetype(headSize) + i * 4;
            if (at + 4 <= format.size())
                palette_[std::size_t(i)] = 0xFF000000 | (numberAt<quint32>(format, at) & 0xFFFFFF);
        }
        canvas_ = QImage(width, std::abs(height), QImage::Format_ARGB32);
        canvas_.fill(palette_[0]);
        shown_ = QByteArray::number(stream_).rightJustified(2, '0');
    }

    // An empty chunk shows the frame before once more.
    void takeFrame(QByteArrayView data) {
        const qint64 dots = qint64(canvas_.width()) * canvas_.height();
        if (animation_.frames.size() >= mostFrames || dots * (animation_.frames.size() + 1) > mostDots ||
            faulty_)
            return;
        if (!data.isEmpty() && compression_ == runLength)
            takeRuns(data);
        else if (!data.isEmpty())
            takePlain(data);
        if (faulty_)
            return;
        if (animation_.frames.isEmpty())
            ground_ = canvas_.pixel(0, 0);
        QImage frame = canvas_;
        for (int y = 0; y < frame.height(); ++y) {
            auto* line = reinterpret_cast<QRgb*>(frame.scanLine(y));
            std::replace(line, line + frame.width(), ground_, qRgba(0, 0, 0, 0));
        }
        animation_.frames += frame;
    }

    void put(int x, int y, QRgb colour) {
        if (x >= canvas_.width() || y >= canvas_.height())
            return;
        const int line = bottomUp_ ? canvas_.height() - 1 - y : y;
        reinterpret_cast<QRgb*>(canvas_.scanLine(line))[x] = colour;
    }

    void takePlain(QByteArrayView data) {
        const qsizetype stride = (qsizetype(canvas_.width()) * bits_ + 31) / 32 * 4;
        faulty_ = data.size() < stride * canvas_.height();
        for (int y = 0; !faulty_ && y < canvas_.height(); ++y)
            for (int x = 0; x < canvas_.width(); ++x)
                put(x, y, dotAt(data, y * stride + qsizetype(x) * bits_ / 8));
    }

    QRgb dotAt(QByteArrayView data, qsizetype at) const {
        const auto* dot = reinterpret_cast<const unsigned char*>(data.data() + at);
        if (bits_ == 8)
            return palette_[dot[0]];
        if (bits_ >= 24)
            return qRgb(dot[2], dot[1], dot[0]);
        const int five = numberAt<quint16>(data, at);
        const auto wide = [five](int shift) { return (five >> shift & 31) * 255 / 31; };
        return qRgb(wide(10), wide(5), wide(0));
    }

    // Pairs of bytes: a count and a colour; or 0 and 0 for the next line, 1 for the end, 2 for a step of so
    // many dots and lines, 3 and more for so many colours that follow.
    void takeRuns(QByteArrayView data) {
        const auto byteAt = [data](qsizetype i) { return static_cast<unsigned char>(data[i]); };
        int x = 0;
        int y = 0;
        qsizetype i = 0;
        while (i + 1 < data.size() && x <= canvas_.width() && y < canvas_.height()) {
            const int count = byteAt(i);
            const int value = byteAt(i + 1);
            i += 2;
            if (count > 0) {
                for (int k = 0; k < count; ++k)
                    put(x++, y, palette_[std::size_t(value)]);
            } else if (value == 0) {
                x = 0;
                ++y;
            } else if (value == 1) {
                return;
            } else if (value == 2) {
                if (i + 1 >= data.size())
                    return;
                x += byteAt(i);
                y += byteAt(i + 1);
                i += 2;
            } else {
                for (int k = 0; k < value && i < data.size(); ++k)
                    put(x++, y, palette_[byteAt(i++)]);
                i += value % 2;
            }
        }
    }

    Animation animation_{{}, usualPace};
    int stream_ = -1; // that the last header was of
    bool isPicture_ = false;
    QByteArray shown_; // number of the stream that is shown, as its chunks carry it
    int bits_ = 0;
    quint32 compression_ = plain;
    bool bottomUp_ = true;
    bool faulty_ = false;
    std::vector<QRgb> palette_;
    QImage canvas_; // the frame so far: run-length coded frames change a part of the one before
    QRgb ground_ = 0;
};

} // namespace

Animation ReadAvi(const QByteArray& bytes) {
    return bytes.size() > LongestAvi ? Animation() : Reader().read(bytes);
}

} // namespace tolvex
