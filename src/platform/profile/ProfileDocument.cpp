#include "platform/profile/ProfileDocument.h"

#include "platform/CodePage.h"

#include <QtEndian>

#include <algorithm>
#include <utility>

namespace tolvex::platform {

namespace {

constexpr char16_t byteOrderMark = 0xFEFF;
constexpr char wideMark[] = "\xFF\xFE";
const QString lineEnd = QStringLiteral("\r\n");
constexpr int noOwner = -1; // the "section" under which headers are looked up

// White space around names and values. It includes Ctrl-Z, with which old editors end a text.
bool isSpace(QChar c) {
    return c == u' ' || (c >= u'\t' && c <= u'\r') || c == QChar(0x1A);
}

bool isLineBreak(QChar c) {
    return c == u'\r' || c == u'\n';
}

// Finds the end of line ends: after a LF with all CRs before it, or after a CR alone. Text-mode writers turn
// CR LF into CR CR LF; split, that would be a line and a blank one, with room for a new key between.
class LineEnds {
public:
    LineEnds(const QChar* text, int size)
        : text_(text)
        , size_(size) {}
    // `at` is at a line break. Over all calls from front to back, looks at each character once.
    int endAfter(int at) {
        if (at < noFeedBefore_)
            return at + 1;
        int end = at;
        while (end < size_ && text_[end] == u'\r')
            ++end;
        if (end < size_ && text_[end] == u'\n')
            return end + 1;
        noFeedBefore_ = end;
        return at + 1;
    }

private:
    const QChar* text_;
    int size_;
    int noFeedBefore_ = 0; // the CRs before this position have no LF after them
};

QStringView stripped(QStringView text) {
    qsizetype begin = 0;
    qsizetype end = text.size();
    while (begin < end && isSpace(text[begin]))
        ++begin;
    while (end > begin && isSpace(text[end - 1]))
        --end;
    return text.sliced(begin, end - begin);
}

QStringView beforeZero(QStringView text) {
    const qsizetype zero = text.indexOf(QChar(u'\0'));
    return zero < 0 ? text : text.first(zero);
}

char16_t folded(QChar c) {
    if (c.unicode() < 0x80)
        return c >= u'A' && c <= u'Z' ? c.unicode() + 0x20 : c.unicode();
    return c.toLower().unicode();
}

bool sameName(QStringView a, QStringView b) {
    return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                      [](QChar x, QChar y) { return folded(x) == folded(y); });
}

// Only characters of code page 1252.
QString narrowed(const QString& text) {
    const bool plain = std::all_of(text.cbegin(), text.cend(), [](QChar c) { return c.unicode() < 0x80; });
    return plain ? text : FromCodePage(ToCodePage(text));
}

QString writable(QString text) {
    text.removeIf([](QChar c) { return isLineBreak(c) || c.isNull(); });
    return narrowed(text);
}

// A name as the operations use it.
QString plainName(const QString& given) {
    const QString name = writable(given);
    qsizetype begin = 0;
    qsizetype end = name.size();
    while (begin < end && name[begin] == u' ')
        ++begin;
    while (end > begin && name[end - 1] == u' ')
        --end;
    return name.sliced(begin, end - begin);
}

} // namespace

ProfileDocument::ProfileDocument(const QByteArray& bytes)
    : wide_(bytes.startsWith(wideMark)) {
    if (wide_) {
        text_.resize(bytes.size() / 2);
        qFromLittleEndian<char16_t>(bytes.constData(), text_.size(), text_.data());
        oddByte_ = bytes.mid(text_.size() * 2);
    } else {
        text_ = FromCodePage(bytes);
    }
    parse();
}

// Splits text_ into lines.
void ProfileDocument::parse() {
    lines_.clear();
    places_.clear();
    joins_ = false;
    const QChar* text = text_.constData();
    const int size = static_cast<int>(text_.size());
    int begin = wide_ && size > 0 && text[0] == QChar(byteOrderMark) ? 1 : 0;
    lines_.push_back({0, begin}); // the mark, or nothing: a first header is inserted after it
    int header = -1;
    LineEnds ends(text, size);
    while (begin < size && valid()) {
        int end = begin;
        while (end < size && !isLineBreak(text[end]))
            ++end;
        Kind kind = classify(QStringView(text + begin, text + end));
        if (header < 0 && kind != Kind::Header)
            kind = Kind::Other;
        if (end < size)
            end = ends.endAfter(end);
        const int number = static_cast<int>(lines_.size());
        if (Line& before = lines_.back(); kind == Kind::Other && before.kind == kind && number > 1) {
            before.end = end;
        } else {
            before.next = number;
            lines_.push_back({begin, end, number - 1, -1, -1, -1, kind});
            if (kind == Kind::Header)
                header = number;
            if (kind == Kind::Key)
                at(header).lastKey = number;
            if (kind != Kind::Other)
                index(kind == Kind::Header ? noOwner : header, number);
        }
        begin = end;
    }
    last_ = static_cast<int>(lines_.size()) - 1;
}

void ProfileDocument::parseAgain() {
    text_ = joined();
    parse();
}

// The text of a line without its end.
QStringView ProfileDocument::content(const Line& line) const {
    QStringView text = QStringView(text_).sliced(line.begin, line.end - line.begin);
    while (!text.isEmpty() && isLineBreak(text.back()))
        text.chop(1);
    return text;
}

ProfileDocument::Kind ProfileDocument::classify(QStringView content) const {
    const QStringView text = stripped(content);
    if (text.isEmpty() || text[0] == u';')
        return Kind::Other;
    if (text[0] == u'[')
        return Kind::Header;
    if (text.contains(u'='))
        return Kind::Key;
    return beforeZero(text).isEmpty() ? Kind::Other : Kind::Bare;
}

QStringView ProfileDocument::nameOf(const Line& line) const {
    QStringView text = stripped(content(line));
    if (line.kind == Kind::Header)
        text = text.sliced(1);
    if (const qsizetype end = text.indexOf(line.kind == Kind::Header ? u']' : u'='); end >= 0)
        text = text.first(end);
    return stripped(beforeZero(text));
}

// The hash of a name: FNV-1a, 64 bits wide, so that collisions hardly ever occur.
quint64 ProfileDocument::placeOf(int owner, QStringView name) const {
    constexpr quint64 prime = 0x100000001B3;
    quint64 place = (0xCBF29CE484222325 ^ static_cast<quint32>(owner)) * prime;
    for (const QChar c : name)
        place = (place ^ folded(c)) * prime;
    return place;
}

int ProfileDocument::find(int owner, QStringView name, Kind kind) const {
    const auto place = places_.constFind(placeOf(owner, name));
    if (place == places_.cend())
        return -1;
    int number = place->first;
    while (number >= 0) {
        const Line& line = at(number);
        if (line.kind == kind && sameName(nameOf(line), name))
            break;
        number = line.nextSame;
    }
    return number;
}

int ProfileDocument::findHeader(const QString& section) const {
    return find(noOwner, section, Kind::Header);
}

std::optional<QString> ProfileDocument::value(const QString& section, const QString& key) const {
    const int header = findHeader(plainName(section));
    const int number = header < 0 ? -1 : find(header, plainName(key), Kind::Key);
    if (number < 0)
        return std::nullopt;
    const QStringView text = content(at(number));
    return narrowed(stripped(beforeZero(text.sliced(text.indexOf(u'=') + 1))).toString());
}

QStringList ProfileDocument::sections() const {
    QStringList names;
    for (int number = 0; number >= 0; number = at(number).next)
        if (const Line& line = at(number); line.kind == Kind::Header)
            names += narrowed(nameOf(line).toString());
    names.removeAll(QString());
    return names;
}

QStringList ProfileDocument::keys(const QString& section) const {
    QStringList names;
    const int header = findHeader(plainName(section));
    if (header < 0)
        return names;
    for (int number = at(header).next; number >= 0;) {
        const Line& line = at(number);
        if (line.kind == Kind::Header)
            break;
        if (line.kind == Kind::Key)
            names += narrowed(nameOf(line).toString());
        number = line.next;
    }
    names.removeAll(QString());
    return names;
}

void ProfileDocument::index(int owner, int number) {
    Chain& chain = places_[placeOf(owner, nameOf(at(number)))];
    if (chain.last >= 0)
        at(chain.last).nextSame = number;
    else
        chain.first = number;
    chain.last = number;
}

void ProfileDocument::unindex(int owner, int number) {
    const Line& line = at(number);
    const auto place = places_.find(placeOf(owner, nameOf(line)));
    int before = -1;
    for (int i = place->first; i != number; i = at(i).nextSame)
        before = i;
    if (before >= 0)
        at(before).nextSame = line.nextSame;
    else
        place->first = line.nextSame;
    if (place->last == number)
        place->last = before;
    if (place->first < 0)
        places_.erase(place);
}

// Replaces the text of a line.
void ProfileDocument::rewrite(int number, const QString& text) {
    Line& line = at(number);
    line.begin = static_cast<int>(text_.size());
    text_ += text;
    line.end = static_cast<int>(text_.size());
}

// Adds the line end that the last line may lack.
void ProfileDocument::endLine(int number) {
    const Line& line = at(number);
    if (line.end > line.begin && !isLineBreak(text_[line.end - 1]))
        rewrite(number, text_.sliced(line.begin, line.end - line.begin) + lineEnd);
}

int ProfileDocument::insertBehind(int number, const QString& text) {
    endLine(number);
    const int added = static_cast<int>(lines_.size());
    const int next = at(number).next;
    lines_.push_back({0, 0, number, next});
    rewrite(added, text);
    at(added).kind = classify(content(lines_.back()));
    at(number).next = added;
    if (next >= 0)
        at(next).previous = added;
    else
        last_ = added;
    return added;
}

void ProfileDocument::unlink(int number) {
    const Line& line = at(number);
    Line& before = at(line.previous);
    before.next = line.next;
    if (line.next < 0) {
        last_ = line.previous;
        return;
    }
    Line& behind = at(line.next);
    behind.previous = line.previous;
    joins_ = joins_ || (before.end > before.begin && text_[before.end - 1] == u'\r' &&
                        isLineBreak(text_[behind.begin]));
}

// The last Key line of a section, searched upwards from one of its lines.
void ProfileDocument::findLastKey(int header, int from) {
    while (from != header && at(from).kind != Kind::Key)
        from = at(from).previous;
    at(header).lastKey = from == header ? -1 : from;
}

void ProfileDocument::set(const QString& section, const QString& key, const QString& value) {
    const QString sectionName = plainName(section);
    const QString keyName = plainName(key);
    const QString text = writable(value);

    int header = findHeader(sectionName);
    if (header < 0) {
        header = insertBehind(last_, u'[' + sectionName + u']' + lineEnd);
        if (!sameName(nameOf(at(header)), sectionName)) {
            // A name that does not read back ("a]b"): its key still goes below it.
            insertBehind(header, keyName + u'=' + text + lineEnd);
            parseAgain();
            return;
        }
        index(noOwner, header);
    }

    int number = find(header, keyName, Kind::Key);
    if (number >= 0) {
        const QStringView line = content(at(number));
        const QStringView old = line.sliced(line.indexOf(u'=') + 1);
        if (old == text || stripped(old) == text)
            return;
    } else {
        number = find(header, keyName, Kind::Bare);
    }
    if (number >= 0) {
        rewrite(number, nameOf(at(number)).toString() + u'=' + text + lineEnd);
        if (std::exchange(at(number).kind, Kind::Key) == Kind::Bare) {
            int end = number;
            for (int next = end; next >= 0 && at(next).kind != Kind::Header; next = at(next).next)
                end = next;
            findLastKey(header, end);
        }
        return;
    }

    const int lastKey = at(header).lastKey;
    number = insertBehind(lastKey >= 0 ? lastKey : header, keyName + u'=' + text + lineEnd);
    const Line& added = at(number);
    if (added.kind != Kind::Key || !sameName(nameOf(added), keyName)) {
        parseAgain(); // a name that does not read back, such as ";k"
        return;
    }
    at(header).lastKey = number;
    index(header, number);
}

void ProfileDocument::remove(const QString& section, const QString& key) {
    const int header = findHeader(plainName(section));
    const int number = header < 0 ? -1 : find(header, plainName(key), Kind::Key);
    if (number < 0)
        return;
    unindex(header, number);
    unlink(number);
    if (at(header).lastKey == number)
        findLastKey(header, at(number).previous);
    if (joins_)
        parseAgain();
}

void ProfileDocument::removeSection(const QString& section) {
    const int header = findHeader(plainName(section));
    if (header < 0)
        return;
    unindex(noOwner, header);
    unlink(header);
    // Its keys may stay in the index: nothing leads to their section any more.
    for (int number = at(header).next; number >= 0;) {
        const Line& line = at(number);
        if (line.kind == Kind::Header)
            break;
        if (line.kind != Kind::Other)
            unlink(number);
        number = line.next;
    }
    if (joins_)
        parseAgain();
}

QString ProfileDocument::joined() const {
    QString text;
    text.reserve(text_.size());
    for (int number = 0; number >= 0;) {
        const Line& line = at(number);
        text += QStringView(text_).sliced(line.begin, line.end - line.begin);
        number = line.next;
    }
    return text;
}

QByteArray ProfileDocument::bytes() const {
    const QString text = joined();
    if (!wide_)
        return ToCodePage(text);
    QByteArray bytes(text.size() * 2, Qt::Uninitialized);
    qToLittleEndian<char16_t>(text.constData(), text.size(), bytes.data());
    return bytes + oddByte_;
}

qsizetype ProfileDocument::cost() const {
    // Of the index: an entry, its share of the table's empty slots, and the hash's bookkeeping.
    constexpr qsizetype perPlace = 40;
    return text_.capacity() * 2 + static_cast<qsizetype>(lines_.capacity() * sizeof(Line)) +
           places_.size() * perPlace;
}

} // namespace tolvex::platform
