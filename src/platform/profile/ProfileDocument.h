// The text of one private profile file, without the file: parsed once, queried by name, edited in place.
//
// An edit touches only its own line; every other byte stays as it is. The text is code page 1252, or UTF-16
// little-endian if it begins with that byte order mark; bytes() returns it in its own encoding.
// docs/formats/profile.md describes the format.
//
// Section and key names match without regard to case and without outer
// blanks (not tabs). Characters outside code page 1252 become '?', and
// line breaks and zero characters are removed from what is written.
#pragma once

#include <QByteArray>
#include <QHash>
#include <QString>
#include <QStringList>

#include <optional>
#include <vector>

namespace tolvex::platform {

class ProfileDocument {
public:
    // More lines than any profile has; a longer file is refused rather than held in memory.
    static constexpr size_t mostLines = 4'000'000;

    // Cost: one pass over the bytes. Any bytes are a valid profile.
    explicit ProfileDocument(const QByteArray& bytes = {});

    // False if it has more than `mostLines`; it must then not be queried.
    bool valid() const { return lines_.size() <= mostLines; }

    // The text after the first "=" of the first such key in the first such section, without outer white
    // space, up to its first zero character. Nothing if there is no such key. Cost: one hash look-up.
    std::optional<QString> value(const QString& section, const QString& key) const;

    // Names as spelled, in file order, with repeats, without empty ones.
    QStringList sections() const;
    QStringList keys(const QString& section) const;

    // Sets one key. An existing one keeps its place and spelling (a line of that name without "=" becomes the
    // key); a new one goes after the last key of its section, a new section to the end of the text. An equal
    // value changes nothing. Cost: independent of the length of the text.
    void set(const QString& section, const QString& key, const QString& value);
    // Removes the first such key.
    void remove(const QString& section, const QString& key);
    // Removes the first such section: its header and everything below except blank lines and comments.
    void removeSection(const QString& section);

    QByteArray bytes() const;

    // Approximate memory use, in bytes.
    qsizetype cost() const;

private:
    enum class Kind : quint8 {
        Other, // a run of blank lines, comments and text before the first header
        Key,
        Bare, // text without "="
        Header
    };
    // A line, or a run of Other lines, linked in file order by `next`.
    struct Line {
        int begin = 0; // in text_
        int end = 0;   // after its line end
        int previous = -1;
        int next = -1;
        int nextSame = -1; // the next one with the same name in the index
        int lastKey = -1;  // of a header: the last Key line of its section
        Kind kind = Kind::Other;
    };
    struct Chain {
        int first = -1;
        int last = -1;
    };

    Line& at(int number) { return lines_[static_cast<size_t>(number)]; }
    const Line& at(int number) const { return lines_[static_cast<size_t>(number)]; }
    void parse();
    QStringView content(const Line& line) const;
    QStringView nameOf(const Line& line) const;
    Kind classify(QStringView content) const;
    quint64 placeOf(int owner, QStringView name) const;
    int find(int owner, QStringView name, Kind kind) const;
    int findHeader(const QString& section) const;
    QString joined() const;

    void index(int owner, int line);
    void unindex(int owner, int line);
    int insertBehind(int line, const QString& text);
    void rewrite(int line, const QString& text);
    void endLine(int line);
    void unlink(int line);
    void parseAgain();
    void findLastKey(int header, int from);

    bool wide_ = false;
    QByteArray oddByte_; // after the last whole character of a UTF-16 text
    QString text_;       // the text as read, and after it every line written since
    std::vector<Line> lines_;
    int last_ = 0;
    bool joins_ = false; // a removal brought a CR and another line break together
    QHash<quint64, Chain> places_;
};

} // namespace tolvex::platform
