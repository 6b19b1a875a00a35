// The text of one private profile file, without a file: parsed once, asked by name, edited in place.
//
// Only the line that a change concerns is touched; every other byte stays as it is, whatever it is. The text
// is code page 1252, or UTF-16 little-endian where it begins with that byte order mark; bytes() gives it back
// in its own encoding. docs/formats/profile.md tells the form.
//
// Section and key names match without regard to case, and lose outer blanks (not tabs) first. Characters
// that code page 1252 does not have become '?', and line breaks and zero characters are taken out of what is
// written.
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
    // More lines than any profile has; a file of that kind is refused rather than held in memory.
    static constexpr size_t mostLines = 4'000'000;

    // Cost: one pass over the bytes. Any bytes are a profile.
    explicit ProfileDocument(const QByteArray& bytes = {});

    // False when it has more than `mostLines`; nothing is to be asked of it then.
    bool valid() const { return lines_.size() <= mostLines; }

    // The text after the first "=" of the first such key in the first such section: outer white space taken
    // off, up to its first zero character. Nothing when there is no such key. Cost: one hash look-up.
    std::optional<QString> value(const QString& section, const QString& key) const;

    // Names as they are spelled, in file order, repeats included, empty ones left out.
    QStringList sections() const;
    QStringList keys(const QString& section) const;

    // Sets one key. A present one keeps its place and spelling (a text without "=" of that name becomes the
    // key); a new one goes after the last key of its section, a new section to the end of the text. A value
    // that is there already changes nothing. Cost: independent of the length of the text.
    void set(const QString& section, const QString& key, const QString& value);
    // Removes the first such key.
    void remove(const QString& section, const QString& key);
    // Removes the first such section: its header and everything below but blank lines and comments.
    void removeSection(const QString& section);

    QByteArray bytes() const;

    // Memory held, in bytes, nearly.
    qsizetype cost() const;

private:
    enum class Kind : quint8 {
        Other, // a run of blank lines, comments and text before the first header
        Key,
        Bare, // text without "="
        Header
    };
    // A line, or a run of Other lines, in file order by `next`.
    struct Line {
        int begin = 0; // in text_
        int end = 0;   // after its line end
        int previous = -1;
        int next = -1;
        int nextSame = -1; // the next one that is looked up by the same name
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
