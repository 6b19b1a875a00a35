#include "ui/richtext/RichText.h"

#include "platform/CodePage.h"

#include <QBrush>
#include <QColor>
#include <QFont>
#include <QHash>
#include <QList>
#include <QTextBlockFormat>
#include <QTextCharFormat>
#include <QTextCursor>
#include <QTextDocument>

#include <algorithm>
#include <utility>

namespace tolvex {

namespace {

// How the reader treats the text of a group.
enum class Destination { Body, FontTable, ColourTable, Skip };

struct State {
    Destination destination = Destination::Body;
    QTextCharFormat character;
    QTextBlockFormat paragraph;
    int font = 0;
    int unicodeSkip = 1; // characters that replace one \u character for old readers
    bool hidden = false;
};

struct Font {
    QString family;
    bool symbol = false; // a pi font: its bytes are not letters
};

constexpr double PixelsPerTwip = 96.0 / 1440.0;

// Groups whose text is not part of the document, even without the \* mark.
bool isSkippedGroup(const QByteArray& word) {
    static const QList<QByteArray> skipped = {
        "stylesheet", "info",       "pict",     "header",    "headerl",   "headerr", "headerf", "footer",
        "footerl",    "footerr",    "footerf",  "objdata",   "listtable", "revtbl",  "rsidtbl", "generator",
        "fldinst",    "nonshppict", "xmlnstbl", "themedata", "datastore", "private",
    };
    return skipped.contains(word);
}

// Control words that stand for one character.
char16_t characterOf(const QByteArray& word) {
    static const QHash<QByteArray, char16_t> characters = {
        {"tab", u'\t'},        {"line", u'\u2028'},    {"emdash", u'\u2014'},    {"endash", u'\u2013'},
        {"lquote", u'\u2018'}, {"rquote", u'\u2019'},  {"ldblquote", u'\u201C'}, {"rdblquote", u'\u201D'},
        {"bullet", u'\u2022'}, {"emspace", u'\u2003'}, {"enspace", u'\u2002'},   {"softline", u'\u2028'},
    };
    return characters.value(word, 0);
}

class Reader {
public:
    Reader(const QByteArray& bytes, QTextDocument& document)
        : bytes_(bytes)
        , cursor_(&document) {}

    void read() {
        cursor_.beginEditBlock();
        while (position_ < bytes_.size() && depth_ >= 0)
            readOne();
        if (depth_ > 0)
            endDocument();
        cursor_.endEditBlock();
    }

private:
    void readOne() {
        const char c = bytes_[position_++];
        switch (c) {
        case '{':
            openGroup();
            break;
        case '}':
            closeGroup();
            break;
        case '\\':
            readControl();
            break;
        case '\r':
        case '\n':
        case '\0':
            break;
        default:
            putByte(c);
        }
    }

    void openGroup() {
        ++depth_;
        if (depth_ <= MaxRichTextDepth) {
            saved_.append(state_);
        } else {
            // Nested too deeply: its text is dropped until the depth is back.
            state_.destination = Destination::Skip;
        }
    }

    void closeGroup() {
        if (depth_ == 1)
            endDocument();
        formatChanged_ = true;
        skip_ = 0;
        starred_ = false;
        if (depth_ <= MaxRichTextDepth && !saved_.isEmpty())
            state_ = saved_.takeLast();
        --depth_;
        if (depth_ == 0)
            depth_ = -1; // the outermost group is closed: the rest is not part of the document
    }

    void readControl() {
        if (position_ >= bytes_.size())
            return;
        const char c = bytes_[position_];
        if (!isLetter(c)) {
            ++position_;
            readSymbol(c);
            return;
        }
        const qsizetype start = position_;
        while (position_ < bytes_.size() && isLetter(bytes_[position_]))
            ++position_;
        const QByteArray word = bytes_.mid(start, std::min<qsizetype>(position_ - start, 32));
        bool negative = false;
        if (position_ < bytes_.size() && bytes_[position_] == '-') {
            negative = true;
            ++position_;
        }
        bool hasValue = false;
        qint64 value = 0;
        while (position_ < bytes_.size() && bytes_[position_] >= '0' && bytes_[position_] <= '9') {
            hasValue = true;
            value = std::min<qint64>(value * 10 + (bytes_[position_] - '0'), 1'000'000'000);
            ++position_;
        }
        if (position_ < bytes_.size() && bytes_[position_] == ' ')
            ++position_;
        apply(word, hasValue, static_cast<int>(negative ? -value : value));
    }

    void readSymbol(char c) {
        switch (c) {
        case '\'':
            putHexByte();
            break;
        case '*':
            starred_ = true;
            break;
        case '~':
            putCharacter(u'\u00A0');
            break;
        case '_':
            putCharacter(u'\u2011');
            break;
        case '\\':
        case '{':
        case '}':
            putByte(c);
            break;
        case '\r':
        case '\n':
            endParagraph();
            break;
        default: // optional hyphens, index marks
            break;
        }
    }

    void apply(const QByteArray& word, bool hasValue, int value) {
        const bool starred = std::exchange(starred_, false);
        if (word == "bin") {
            position_ += std::clamp<qsizetype>(value, 0, bytes_.size() - position_);
            return;
        }
        if (state_.destination == Destination::Skip)
            return;
        if (word == "fonttbl") {
            state_.destination = Destination::FontTable;
        } else if (word == "colortbl") {
            state_.destination = Destination::ColourTable;
            colours_.clear();
            colour_ = QColor();
        } else if (isSkippedGroup(word) || (starred && word != "shppict")) {
            state_.destination = Destination::Skip;
        } else if (state_.destination == Destination::FontTable) {
            applyInFontTable(word, value);
        } else if (state_.destination == Destination::ColourTable) {
            applyInColourTable(word, value);
        } else if (!applyCharacter(word, !hasValue || value != 0, value) && !applyParagraph(word, value)) {
            applyContent(word, value);
        }
    }

    void applyInFontTable(const QByteArray& word, int value) {
        if (word == "f") {
            state_.font = value;
        } else if (word == "fcharset" && fonts_.size() < 1000) {
            fonts_[state_.font].symbol = value == 2;
        }
    }

    void applyInColourTable(const QByteArray& word, int value) {
        const int part = std::clamp(value, 0, 255);
        if (word == "red")
            colour_ = QColor(part, colour_.green(), colour_.blue());
        else if (word == "green")
            colour_ = QColor(colour_.red(), part, colour_.blue());
        else if (word == "blue")
            colour_ = QColor(colour_.red(), colour_.green(), part);
    }

    // Format of characters. `on` is false for "\b0" and the like.
    bool applyCharacter(const QByteArray& word, bool on, int value) {
        QTextCharFormat& format = state_.character;
        if (word == "b")
            format.setFontWeight(on ? QFont::Bold : QFont::Normal);
        else if (word == "i")
            format.setFontItalic(on);
        else if (word == "ulnone")
            format.setFontUnderline(false);
        else if (word == "ul" || word == "ulw" || word == "uld" || word == "uldb" || word == "ulth")
            format.setFontUnderline(on);
        else if (word == "strike" || word == "striked")
            format.setFontStrikeOut(on);
        else if (word == "super")
            format.setVerticalAlignment(on ? QTextCharFormat::AlignSuperScript
                                           : QTextCharFormat::AlignNormal);
        else if (word == "sub")
            format.setVerticalAlignment(on ? QTextCharFormat::AlignSubScript : QTextCharFormat::AlignNormal);
        else if (word == "nosupersub")
            format.setVerticalAlignment(QTextCharFormat::AlignNormal);
        else if (word == "caps")
            format.setFontCapitalization(on ? QFont::AllUppercase : QFont::MixedCase);
        else if (word == "scaps")
            format.setFontCapitalization(on ? QFont::SmallCaps : QFont::MixedCase);
        else if (word == "fs")
            format.setFontPointSize(std::clamp(value, 2, 400) / 2.0);
        else if (word == "f")
            setFont(value);
        else if (word == "cf")
            setColour(value, QTextFormat::ForegroundBrush);
        else if (word == "cb" || word == "highlight" || word == "chcbpat")
            setColour(value, QTextFormat::BackgroundBrush);
        else if (word == "v")
            state_.hidden = on;
        else if (word == "plain") {
            format = {};
            state_.hidden = false;
            state_.font = 0;
        } else
            return false;
        formatChanged_ = true;
        return true;
    }

    bool applyParagraph(const QByteArray& word, int value) {
        QTextBlockFormat& format = state_.paragraph;
        const double pixels = std::clamp(value, -20000, 20000) * PixelsPerTwip;
        if (word == "pard")
            format = {};
        else if (word == "ql")
            format.setAlignment(Qt::AlignLeft);
        else if (word == "qr")
            format.setAlignment(Qt::AlignRight);
        else if (word == "qc")
            format.setAlignment(Qt::AlignHCenter);
        else if (word == "qj")
            format.setAlignment(Qt::AlignJustify);
        else if (word == "li")
            format.setLeftMargin(std::max(0.0, pixels));
        else if (word == "ri")
            format.setRightMargin(std::max(0.0, pixels));
        else if (word == "fi")
            format.setTextIndent(pixels);
        else if (word == "sb")
            format.setTopMargin(std::max(0.0, pixels));
        else if (word == "sa")
            format.setBottomMargin(std::max(0.0, pixels));
        else
            return false;
        return true;
    }

    void applyContent(const QByteArray& word, int value) {
        if (const char16_t character = characterOf(word)) {
            putCharacter(character);
        } else if (word == "par" || word == "sect" || word == "page") {
            endParagraph();
        } else if (word == "cell" || word == "nestcell") {
            putCharacter(u'\t');
        } else if (word == "row" || word == "nestrow") {
            if (run_.endsWith(u'\t'))
                run_.chop(1);
            endParagraph();
        } else if (word == "uc") {
            state_.unicodeSkip = std::clamp(value, 0, 10);
        } else if (word == "u") {
            putCharacter(static_cast<char16_t>(value));
            skip_ = state_.unicodeSkip;
        }
    }

    void setFont(int number) {
        state_.font = number;
        const Font font = fonts_.value(number);
        if (!font.family.isEmpty() && !font.symbol)
            state_.character.setFontFamilies({font.family});
        else
            state_.character.clearProperty(QTextFormat::FontFamilies);
    }

    void setColour(int index, int property) {
        const QColor colour = colours_.value(index);
        if (colour.isValid())
            state_.character.setProperty(property, QBrush(colour));
        else
            state_.character.clearProperty(property);
    }

    static bool isLetter(char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); }

    void putHexByte() {
        bool ok = false;
        const int byte = bytes_.mid(position_, 2).toInt(&ok, 16);
        position_ = std::min(position_ + 2, bytes_.size());
        if (ok)
            putByte(static_cast<char>(byte));
    }

    void putByte(char byte) {
        if (skip_ > 0) {
            --skip_;
            return;
        }
        switch (state_.destination) {
        case Destination::Skip:
            return;
        case Destination::FontTable:
            if (byte != ';' && fonts_.size() < 1000 && fonts_[state_.font].family.size() < 64)
                fonts_[state_.font].family += platform::FromCodePage(&byte, 1);
            return;
        case Destination::ColourTable:
            if (byte == ';' && colours_.size() < 4096) {
                colours_.append(colour_);
                colour_ = QColor();
            }
            return;
        case Destination::Body:
            // The dot of a symbol font is the usual bullet; its other signs have no equivalent letters.
            if (fonts_.value(state_.font).symbol)
                putCharacter(u'\u2022');
            else
                putText(platform::FromCodePage(&byte, 1));
        }
    }

    void putCharacter(char16_t unit) { putText(QString(QChar(unit))); }

    void putText(const QString& text) {
        if (state_.destination != Destination::Body || state_.hidden)
            return;
        if (std::exchange(formatChanged_, false) && runFormat_ != state_.character) {
            endRun();
            runFormat_ = state_.character;
        }
        run_ += text;
    }

    // Runs of equal format go into the document at once.
    void endRun() {
        if (!run_.isEmpty())
            cursor_.insertText(run_, runFormat_);
        run_.clear();
    }

    // The last paragraph has no end of its own; it gets its format before its group is closed.
    void endDocument() {
        endRun();
        cursor_.setBlockFormat(state_.paragraph);
    }

    void endParagraph() {
        if (state_.destination != Destination::Body)
            return;
        endRun();
        cursor_.setBlockFormat(state_.paragraph);
        cursor_.insertBlock();
    }

    const QByteArray& bytes_;
    QTextCursor cursor_;
    qsizetype position_ = 0;
    int depth_ = 0;
    State state_;
    QList<State> saved_;
    QHash<int, Font> fonts_;
    QList<QColor> colours_;
    QColor colour_;
    QString run_;
    QTextCharFormat runFormat_;
    bool formatChanged_ = true;
    int skip_ = 0;         // replacement characters of a \u character still to skip
    bool starred_ = false; // readers that do not know the group may ignore it
};

} // namespace

bool IsRichText(const QByteArray& bytes) {
    return bytes.startsWith("{\\rtf");
}

void LoadRichText(const QByteArray& bytes, QTextDocument& document) {
    document.clear();
    Reader(bytes, document).read();
}

} // namespace tolvex
