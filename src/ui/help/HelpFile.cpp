#include "ui/help/HelpFile.h"

#include "platform/paths/Paths.h"

#include <QFile>
#include <QRegularExpression>

#include <chm_lib.h>

namespace tolvex {

namespace {

// Larger than any page or picture of a help file; protects memory from a damaged length.
constexpr LONGUINT64 LongestObject = 16 << 20;

class ChmFile : public HelpFile {
public:
    explicit ChmFile(chmFile* file)
        : file_(file) {}
    ~ChmFile() override { chm_close(file_); }

    std::optional<QByteArray> read(const QString& name) const override {
        const QString path = name.startsWith(u'/') ? name : u'/' + name;
        chmUnitInfo unit{};
        if (chm_resolve_object(file_, path.toUtf8().constData(), &unit) != CHM_RESOLVE_SUCCESS ||
            unit.length > LongestObject)
            return std::nullopt;
        QByteArray bytes(static_cast<qsizetype>(unit.length), '\0');
        const LONGINT64 got =
            chm_retrieve_object(file_, &unit, reinterpret_cast<unsigned char*>(bytes.data()), 0,
                                static_cast<LONGINT64>(unit.length));
        if (got < 0)
            return std::nullopt;
        bytes.truncate(static_cast<qsizetype>(got));
        return bytes;
    }

    // The contents page is a nested list of objects with "Name" and "Local" parameters.
    QList<Entry> contents() const override {
        QList<Entry> entries;
        const QString text = QString::fromUtf8(read(QStringLiteral("/contents.hhc")).value_or(QByteArray()));
        static const QRegularExpression token(
            QStringLiteral(R"rx(<(/?ul)\b|<param\s+name="(Name|Local)"\s+value="([^"]*)")rx"),
            QRegularExpression::CaseInsensitiveOption);
        int level = -1;
        Entry entry;
        for (auto it = token.globalMatch(text); it.hasNext();) {
            const QRegularExpressionMatch match = it.next();
            const QString tag = match.captured(1).toLower();
            if (tag == u"ul") {
                ++level;
            } else if (tag == u"/ul") {
                --level;
            } else if (match.captured(2).compare(u"Name", Qt::CaseInsensitive) == 0) {
                entry.title = match.captured(3);
            } else {
                entry.page = u'/' + match.captured(3);
                entry.level = std::max(0, level);
                entries.append(entry);
            }
        }
        return entries;
    }

    // A small page of our own inside the file lists the page of each context: "100 console.html".
    QString pageOf(int context) const override {
        QString fallback = QStringLiteral("/index.html");
        const QByteArray table = read(QStringLiteral("/contexts.txt")).value_or(QByteArray());
        for (const QByteArray& line : table.split('\n')) {
            const QList<QByteArray> words = line.simplified().split(' ');
            if (words.size() == 2 && words[0].toInt() == context)
                return u'/' + QString::fromUtf8(words[1]);
        }
        return fallback;
    }

private:
    chmFile* file_;
};

} // namespace

std::unique_ptr<HelpFile> HelpFile::open(const QString& path) {
    const QString host = platform::HostPath(path);
    if (host.isEmpty() || !QFile::exists(host))
        return nullptr;
    chmFile* file = chm_open(QFile::encodeName(host).constData());
    return file ? std::make_unique<ChmFile>(file) : nullptr;
}

} // namespace tolvex
