#include "platform/registry/RegistryDocument.h"

#include "platform/CodePage.h"
#include "platform/registry/RegistryLine.h"

#include <QtEndian>

#include <algorithm>

namespace tolvex::platform {

namespace {

const QString lineEnd = QStringLiteral("\r\n");
constexpr char wideMark[] = "\xFF\xFE";

QString folded(const QString& text) {
    return text.toLower();
}

bool isBlank(const QString& line) {
    return line.trimmed().isEmpty();
}

bool fitsOnALine(const QString& text) {
    return std::none_of(text.cbegin(), text.cend(),
                        [](QChar c) { return c.isNull() || c == u'\r' || c == u'\n'; });
}

// Lines with their ends; a value continued after a "\" is one line.
QStringList splitLines(const QString& text) {
    QStringList lines;
    qsizetype begin = 0;
    for (qsizetype at = 0; at < text.size();) {
        qsizetype end = text.indexOf(u'\n', at);
        end = end < 0 ? text.size() : end + 1;
        const QStringView line = QStringView(text).sliced(at, end - at).trimmed();
        at = end;
        if (line.endsWith(u'\\') && !line.startsWith(u';') && !line.startsWith(u'[') && at < text.size())
            continue;
        lines += text.sliced(begin, at - begin);
        begin = at;
    }
    return lines;
}

} // namespace

RegistryDocument::RegistryDocument(const QByteArray& bytes) {
    wide_ = bytes.isEmpty() || bytes.startsWith(wideMark);
    QString text;
    if (bytes.isEmpty()) {
        text = QStringLiteral("Windows Registry Editor Version 5.00\r\n\r\n");
    } else if (wide_) {
        text.resize(bytes.size() / 2 - 1);
        qFromLittleEndian<char16_t>(bytes.constData() + 2, text.size(), text.data());
        oddByte_ = bytes.mid(text.size() * 2 + 2);
    } else {
        text = FromCodePage(bytes);
    }
    ansi_ = text.trimmed().startsWith(QLatin1String("REGEDIT4"));
    lines_ = splitLines(text);
    index();
}

// Lines count in order, so the last one of a name wins.
void RegistryDocument::index() {
    keys_.clear();
    Key* key = nullptr;
    bool firstBlock = false;
    for (int number = 0; number < lines_.size(); ++number) {
        const QString& line = lines_[number];
        if (line.trimmed().startsWith(u'[')) {
            const QString path = ParseRegistryHeader(line);
            // "[-path]" asks an import to remove; no key of a store begins like that.
            key = path.isEmpty() || path.startsWith(u'-') || !fitsOnALine(path) ? nullptr
                                                                                : &keys_[folded(path)];
            firstBlock = key && key->path.isEmpty();
            if (firstBlock)
                *key = {path, number + 1, {}};
        } else if (key) {
            const std::optional<RegistryLine> parsed = ParseRegistryLine(line, ansi_);
            if (!parsed || !fitsOnALine(parsed->name))
                continue;
            if (firstBlock)
                key->end = number + 1;
            if (parsed->value)
                key->values[folded(parsed->name)] = {parsed->name, number};
            else
                key->values.remove(folded(parsed->name));
        }
    }
}

qsizetype RegistryDocument::cost() const {
    constexpr qsizetype perLine = 160; // two text headers, an entry of the map
    qsizetype cost = 0;
    for (const QString& line : lines_)
        cost += line.size() * 3 + perLine;
    return cost;
}

const RegistryDocument::Value* RegistryDocument::find(const QString& path, const QString& name) const {
    const auto key = keys_.constFind(folded(NormalRegistryPath(path)));
    if (key == keys_.cend())
        return nullptr;
    const auto value = key->values.constFind(folded(name));
    return value == key->values.cend() ? nullptr : &*value;
}

std::optional<RegistryValue> RegistryDocument::value(const QString& path, const QString& name) const {
    const Value* found = find(path, name);
    if (!found)
        return std::nullopt;
    return ParseRegistryLine(lines_[found->line], ansi_)->value;
}

bool RegistryDocument::hasKey(const QString& path) const {
    const QString wanted = folded(NormalRegistryPath(path));
    if (keys_.contains(wanted))
        return true;
    const auto below = keys_.lowerBound(wanted + u'\\');
    return below != keys_.cend() && below.key().startsWith(wanted + u'\\');
}

QStringList RegistryDocument::valueNames(const QString& path) const {
    QStringList names;
    const auto key = keys_.constFind(folded(NormalRegistryPath(path)));
    if (key != keys_.cend())
        for (const Value& value : key->values)
            names += value.name;
    return names;
}

QStringList RegistryDocument::subkeys(const QString& path) const {
    const QString above = folded(NormalRegistryPath(path)) + u'\\';
    const qsizetype depth = above.count(u'\\');
    QMap<QString, QString> names;
    for (auto key = keys_.lowerBound(above); key != keys_.cend() && key.key().startsWith(above); ++key) {
        const QString name = key->path.section(u'\\', depth, depth);
        names.insert(folded(name), name);
    }
    return names.values();
}

bool RegistryDocument::set(const QString& givenPath, const QString& name, const RegistryValue& value) {
    const QString path = NormalRegistryPath(givenPath);
    if (!path.contains(u'\\') || !fitsOnALine(path) || !fitsOnALine(name))
        return false;
    if (const Value* found = find(path, name)) {
        lines_[found->line] = FormatRegistryLine(found->name, value, ansi_);
        return true;
    }
    if (!lines_.isEmpty() && !lines_.last().endsWith(u'\n'))
        lines_.last() += lineEnd;
    const QString line = FormatRegistryLine(name, value, ansi_);
    const auto key = keys_.constFind(folded(path));
    if (key != keys_.cend()) {
        lines_.insert(key->end, line);
    } else {
        if (!lines_.isEmpty() && !isBlank(lines_.last()))
            lines_ += lineEnd;
        lines_ << u'[' + path + u']' + lineEnd << line << lineEnd;
    }
    index();
    return true;
}

bool RegistryDocument::remove(const QString& givenPath, const QString& name) {
    if (!find(givenPath, name))
        return false;
    const QString path = folded(NormalRegistryPath(givenPath));
    bool inKey = false;
    QStringList kept;
    for (const QString& line : std::as_const(lines_)) {
        if (line.trimmed().startsWith(u'['))
            inKey = folded(ParseRegistryHeader(line)) == path;
        const std::optional<RegistryLine> parsed = inKey ? ParseRegistryLine(line, ansi_) : std::nullopt;
        if (!parsed || folded(parsed->name) != folded(name))
            kept += line;
    }
    lines_ = kept;
    index();
    return true;
}

QByteArray RegistryDocument::bytes() const {
    const QString text = lines_.join(QString());
    if (!wide_)
        return ToCodePage(text);
    QByteArray bytes = wideMark;
    bytes.resize(2 + text.size() * 2);
    qToLittleEndian<char16_t>(text.constData(), text.size(), bytes.data() + 2);
    return bytes + oddByte_;
}

} // namespace tolvex::platform
