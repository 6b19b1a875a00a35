#include "databases/odbc/OdbcConnectString.h"

#include <QList>

#include <algorithm>

namespace tolvex {

namespace {

const QString Prefix = QStringLiteral("ODBC;");

struct Attribute {
    QString keyword;
    QString value; // as written
    QString text() const { return value.isNull() ? keyword : keyword + u'=' + value; }
    bool is(const char* name) const {
        return keyword.trimmed().compare(QLatin1String(name), Qt::CaseInsensitive) == 0;
    }
};

QString withoutPrefix(const QString& connect) {
    const QString trimmed = connect.trimmed();
    return trimmed.startsWith(Prefix, Qt::CaseInsensitive) ? trimmed.mid(Prefix.size()) : trimmed;
}

// Where the attribute that starts at `start` ends: at a semicolon outside braces, or at the end of the text.
qsizetype endOfAttribute(const QString& text, qsizetype start) {
    qsizetype at = start;
    while (at < text.size() && text[at] != u';' && text[at] != u'=')
        ++at;
    if (at < text.size() && text[at] == u'=')
        while (++at < text.size() && text[at] == u' ')
            continue;
    if (at < text.size() && text[at] == u'{')
        for (++at; at < text.size(); ++at) {
            if (text[at] != u'}')
                continue;
            if (at + 1 >= text.size() || text[at + 1] != u'}')
                break;
            ++at;
        }
    const qsizetype end = text.indexOf(u';', at);
    return end < 0 ? text.size() : end;
}

QList<Attribute> attributesOf(const QString& text) {
    QList<Attribute> attributes;
    for (qsizetype start = 0; start < text.size();) {
        const qsizetype end = endOfAttribute(text, start);
        const QString part = text.mid(start, end - start);
        const qsizetype equals = part.indexOf(u'=');
        if (equals >= 0)
            attributes += {part.left(equals), part.mid(equals + 1)};
        else if (!part.trimmed().isEmpty())
            attributes += {part, QString()};
        start = end + 1;
    }
    return attributes;
}

QString joined(const QList<Attribute>& attributes) {
    QStringList texts;
    for (const Attribute& attribute : attributes)
        texts += attribute.text();
    return texts.join(u';');
}

// For a driver. FreeTDS finds the end of a value in braces by the semicolon after it.
QString handedOver(const QList<Attribute>& attributes) {
    const QString text = joined(attributes);
    return text.endsWith(u'}') ? text + u';' : text;
}

// A value of any characters.
QString written(const QString& value) {
    const bool plain = std::none_of(value.begin(), value.end(), [](QChar letter) {
        return QStringView(u"[]{}(),;?*=!@").contains(letter);
    });
    if (plain && value == value.trimmed() && !value.isEmpty())
        return value;
    QString doubled = value;
    return u'{' + doubled.replace(u'}', QStringLiteral("}}")) + u'}';
}

QString unwritten(const QString& value) {
    if (!value.startsWith(u'{') || !value.endsWith(u'}') || value.size() < 2)
        return value.trimmed();
    return value.mid(1, value.size() - 2).replace(QStringLiteral("}}"), QStringLiteral("}"));
}

} // namespace

QString ServerAttributes(const QString& connect) {
    return handedOver(attributesOf(withoutPrefix(connect)));
}

QString DatabaseAttributes(const QString& connect, const QString& database) {
    QList<Attribute> attributes = attributesOf(withoutPrefix(connect));
    attributes.removeIf([](const Attribute& attribute) { return attribute.is("Database"); });
    attributes += {QStringLiteral("Database"), written(database)};
    return handedOver(attributes);
}

QString ServerName(const QString& connect) {
    const QList<Attribute> attributes = attributesOf(withoutPrefix(connect));
    for (const char* known : {"DSN", "SERVER", "SERVERNAME", "DRIVER"})
        for (const Attribute& attribute : attributes)
            if (attribute.is(known) && !attribute.value.isEmpty())
                return unwritten(attribute.value);
    return QStringLiteral("ODBC");
}

QString ShownConnect(const QString& connect) {
    QList<Attribute> attributes = attributesOf(connect);
    bool secret = false;
    for (Attribute& attribute : attributes)
        if (attribute.is("PWD") || attribute.is("PASSWORD")) {
            attribute.value = QStringLiteral("***");
            secret = true;
        }
    return secret ? joined(attributes) : connect;
}

} // namespace tolvex
