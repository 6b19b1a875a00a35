#include "app/ctl/Output.h"

#include <QStringList>

#include <algorithm>
#include <cstdio>

namespace tolvex::ctl {

namespace {

QString cellText(const QJsonValue& value) {
    if (value.isArray()) {
        QStringList parts;
        const QJsonArray array = value.toArray();
        for (const auto& part : array)
            parts += cellText(part);
        return parts.join(QLatin1String(", "));
    }
    if (value.isBool())
        return value.toBool() ? QStringLiteral("yes") : QStringLiteral("no");
    if (value.isDouble())
        return QString::number(value.toDouble(), 'g', 15);
    return value.toString();
}

// Text of files and databases may contain anything, including control sequences for a terminal.
QString harmless(QString text) {
    for (QChar& c : text)
        if (c.category() == QChar::Other_Control)
            c = u'\u00B7';
    return text;
}

} // namespace

Output Output::Kept() {
    Output output(true, true);
    output.kept_ = true;
    return output;
}

void Output::print(const QByteArray& bytes) const {
    if (!kept_)
        std::fwrite(bytes.constData(), 1, static_cast<size_t>(bytes.size()), stdout);
}

void Output::records(const QJsonArray& records, const Columns& columns) {
    if (json_) {
        document_ = QJsonDocument(records);
        return;
    }
    std::vector<QStringList> rows(1);
    for (const Column& column : columns)
        rows[0] += QLatin1String(column.heading);
    for (const auto& value : records) {
        const QJsonObject record = value.toObject();
        QStringList row;
        for (const Column& column : columns)
            row += harmless(cellText(record[QLatin1String(column.key)]));
        rows.push_back(row);
    }
    std::vector<qsizetype> widths(columns.size());
    for (const QStringList& row : rows)
        for (size_t i = 0; i < columns.size(); ++i)
            widths[i] = std::max(widths[i], row[static_cast<qsizetype>(i)].size());
    for (const QStringList& row : rows) {
        QString text;
        for (size_t i = 0; i < columns.size(); ++i) {
            const QString& cell = row[static_cast<qsizetype>(i)];
            text += columns[i].toTheRight ? cell.rightJustified(widths[i]) : cell.leftJustified(widths[i]);
            text += QLatin1String("  ");
        }
        while (text.endsWith(u' '))
            text.chop(1);
        line(text.toUtf8());
    }
}

void Output::record(const QJsonObject& record, const Columns& columns) {
    if (json_) {
        document_ = QJsonDocument(record);
        return;
    }
    qsizetype width = 0;
    for (const Column& column : columns)
        width = std::max(width, QLatin1String(column.heading).size());
    for (const Column& column : columns) {
        const QString heading = QLatin1String(column.heading) + u':';
        const QString text = harmless(cellText(record[QLatin1String(column.key)]));
        line((text.isEmpty() ? heading : heading.leftJustified(width + 2) + text).toUtf8());
    }
}

void Output::value(const char* key, const QJsonValue& value) {
    if (json_)
        document_ = QJsonDocument(QJsonObject{{QLatin1String(key), value}});
    else
        line(cellText(value).toUtf8());
}

void Output::line(const QByteArray& text) {
    written_ = true;
    print(text);
    print("\n");
}

void Output::event(const QByteArray& text) {
    line(text);
    std::fflush(stdout);
}

void Output::piece(std::string_view bytes) {
    written_ = true;
    print(QByteArray::fromRawData(bytes.data(), static_cast<qsizetype>(bytes.size())));
}

void Output::say(const QString& sentence) const {
    if (kept_)
        return;
    std::fflush(stdout);
    const QByteArray text = sentence.toLocal8Bit();
    std::fwrite(text.constData(), 1, static_cast<size_t>(text.size()), stderr);
    std::fputc('\n', stderr);
}

void Output::note(const QString& sentence) const {
    if (!quiet_)
        say(sentence);
}

void Output::setError(const QString& sentence, int number) {
    errors_ += sentence;
    if (number != 0)
        errorNumber_ = number;
}

QJsonDocument Output::ended(Ending ending, const QString& shown) const {
    if (document_ && ending != Ending::Failed)
        return *document_;
    if (ending == Ending::Done)
        return QJsonDocument(QJsonObject{{QStringLiteral("done"), true}});
    const QString text = !errors_.isEmpty() ? errors_.join(u'\n')
                         : !shown.isEmpty() ? shown
                                            : QStringLiteral("The answer is no.");
    QJsonObject error{{QStringLiteral("text"), text}, {QStringLiteral("number"), errorNumber_}};
    if (document_)
        error[QStringLiteral("details")] =
            document_->isArray() ? QJsonValue(document_->array()) : QJsonValue(document_->object());
    return QJsonDocument(QJsonObject{{QStringLiteral("error"), error}});
}

bool Output::finish(Ending ending, const QString& shown) {
    if (json_ && !written_)
        print(ended(ending, shown).toJson());
    return std::fflush(stdout) == 0 && std::ferror(stdout) == 0;
}

} // namespace tolvex::ctl
