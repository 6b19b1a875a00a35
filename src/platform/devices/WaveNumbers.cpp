#include "platform/devices/WaveNumbers.h"

namespace tolvex::platform {

namespace {

constexpr int mostDevices = 64;
constexpr quint32 allFormats =
    WaveFormat1M16 | WaveFormat1S16 | WaveFormat2M16 | WaveFormat2S16 | WaveFormat4M16 | WaveFormat4S16;

bool samePlace(const KnownWaveDevice& a, const KnownWaveDevice& b) {
    return !a.place.isEmpty() && a.place == b.place;
}
bool sameId(const KnownWaveDevice& a, const KnownWaveDevice& b) {
    return a.device.id == b.device.id;
}
bool samePlaceAndId(const KnownWaveDevice& a, const KnownWaveDevice& b) {
    return a.place == b.place && sameId(a, b);
}

// Tabs and line ends separate fields and lines.
QString asField(QString text) {
    for (QChar& c : text)
        if (c < u' ')
            c = u' ';
    return text;
}

void writeLines(QByteArray& text, const char* direction, const QList<KnownWaveDevice>& devices) {
    for (const KnownWaveDevice& known : devices)
        text += QStringLiteral("%1\t%2\t%3\t%4\t%5\n")
                    .arg(QLatin1String(direction), asField(known.place), asField(known.device.id),
                         QString::number(known.device.formats, 16), asField(known.device.name))
                    .toUtf8();
}

} // namespace

QList<KnownWaveDevice> NumberWaveDevices(QList<KnownWaveDevice> remembered,
                                         const QList<KnownWaveDevice>& found) {
    const qsizetype before = remembered.size();
    for (KnownWaveDevice& known : remembered)
        known.device.present = false;
    QList<bool> placed(found.size(), false);
    for (const auto same : {&samePlaceAndId, &samePlace, &sameId})
        for (qsizetype i = 0; i < found.size(); ++i)
            for (qsizetype number = 0; number < before && !placed[i]; ++number) {
                KnownWaveDevice& known = remembered[number];
                if (known.device.present || !same(known, found[i]))
                    continue;
                const quint32 lastFormats = known.device.formats;
                known = found[i];
                if (known.busy)
                    known.device.formats = lastFormats;
                known.device.present = placed[i] = true;
            }
    for (qsizetype i = 0; i < found.size(); ++i) {
        if (placed[i])
            continue;
        remembered += found[i];
        remembered.last().device.present = true;
        if (found[i].busy)
            remembered.last().device.formats = allFormats;
    }
    for (qsizetype i = remembered.size() - 1; i >= 0 && remembered.size() > mostDevices; --i)
        if (!remembered[i].device.present)
            remembered.removeAt(i);
    return remembered;
}

QByteArray WriteKnownWaveDevices(const KnownWaveDevices& known) {
    QByteArray text;
    writeLines(text, "out", known.outputs);
    writeLines(text, "in", known.inputs);
    return text;
}

KnownWaveDevices ReadKnownWaveDevices(const QByteArray& text) {
    KnownWaveDevices known;
    for (const QString& line : QString::fromUtf8(text).split(u'\n')) {
        const QStringList fields = line.split(u'\t');
        if (fields.size() != 5 || fields[2].isEmpty() || (fields[0] != u"out" && fields[0] != u"in"))
            continue;
        QList<KnownWaveDevice>& devices = fields[0] == u"out" ? known.outputs : known.inputs;
        if (devices.size() >= mostDevices)
            continue;
        KnownWaveDevice device;
        device.place = fields[1];
        device.device.id = fields[2];
        device.device.formats = fields[3].toUInt(nullptr, 16) & allFormats;
        device.device.name = fields[4];
        device.device.present = false;
        devices += device;
    }
    return known;
}

} // namespace tolvex::platform
