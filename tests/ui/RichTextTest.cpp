#include "ui/richtext/RichText.h"

#include <QTextBlock>
#include <QTextDocument>
#include <QTextFragment>

#include <gtest/gtest.h>

using namespace tolvex;

namespace {

QString plain(const QByteArray& rtf) {
    QTextDocument document;
    LoadRichText(rtf, document);
    return document.toPlainText();
}

// The format of the first piece of text that begins with `start`.
QTextCharFormat formatOf(const QTextDocument& document, const QString& start) {
    for (QTextBlock block = document.begin(); block.isValid(); block = block.next())
        for (auto it = block.begin(); !it.atEnd(); ++it)
            if (it.fragment().text().startsWith(start))
                return it.fragment().charFormat();
    ADD_FAILURE() << "no text begins with " << start.toStdString();
    return {};
}

} // namespace

TEST(RichText, ShowsCharacterFormats) {
    QTextDocument document;
    LoadRichText("{\\rtf1\\ansi{\\fonttbl{\\f0 Arial;}{\\f1\\fcharset2 Symbol;}}"
                 "{\\colortbl ;\\red255\\green0\\blue0;\\red0\\green0\\blue128;}"
                 "plain {\\b bold} {\\i slanted} {\\ul lined}{\\ulnone  bare} \\cf1\\fs36 big red\\cf0\\fs24 "
                 " after\\par}",
                 document);
    EXPECT_EQ(document.toPlainText(), QStringLiteral("plain bold slanted lined bare big red after\n"));
    EXPECT_EQ(formatOf(document, "bold").fontWeight(), QFont::Bold);
    EXPECT_TRUE(formatOf(document, "slanted").fontItalic());
    EXPECT_TRUE(formatOf(document, "lined").fontUnderline());
    EXPECT_FALSE(formatOf(document, " bare").fontUnderline());
    const QTextCharFormat big = formatOf(document, "big red");
    EXPECT_EQ(big.foreground().color(), QColor(255, 0, 0));
    EXPECT_EQ(big.fontPointSize(), 18);
    EXPECT_FALSE(formatOf(document, " after").hasProperty(QTextFormat::ForegroundBrush));
}

TEST(RichText, ReadsCodePageAndUnicodeCharacters) {
    EXPECT_EQ(plain("{\\rtf1 caf\\'e9 \\'80\\u8364?\\u-3913?{\\uc2\\u8364ab}c\\~d\\{\\}\\\\}"),
              QString::fromUtf8("café €€") + QChar(0xF0B7) + QString::fromUtf8("€c d{}\\"));
    EXPECT_EQ(plain("{\\rtf1 \\lquote a\\rquote\\emdash\\bullet\\tab x\\line y}"),
              QString::fromUtf8("‘a’—•\tx\ny"));
}

TEST(RichText, ReadsParagraphsBulletsAndTables) {
    QTextDocument document;
    LoadRichText("{\\rtf1{\\fonttbl{\\f0 Arial;}{\\f2\\fcharset2 Symbol;}}\\pard\\qc Title\\par"
                 "\\pard\\fi-360\\li720{\\pntext\\f2\\'B7\\tab}first\\par"
                 "\\trowd\\cellx100\\cellx200\\intbl a\\cell b\\cell\\row\\pard done}",
                 document);
    EXPECT_EQ(document.toPlainText(), QString::fromUtf8("Title\n•\tfirst\na\tb\ndone"));
    EXPECT_EQ(document.begin().blockFormat().alignment(), Qt::AlignHCenter);
    EXPECT_NEAR(document.begin().next().blockFormat().leftMargin(), 48, 0.1);
}

TEST(RichText, PassesOverWhatIsNoText) {
    EXPECT_EQ(plain("{\\rtf1{\\info{\\author somebody}}{\\stylesheet{\\s0 Normal;}}{\\*\\unknown gone}a"
                    "{\\pict\\wmetafile8 0102}{\\header top}{\\v hidden}b{\\field{\\*\\fldinst HYPERLINK x}"
                    "{\\fldrslt link}}\\bin3 {{{c}"),
              QStringLiteral("ablinkc"));
}

TEST(RichText, DamagedFilesGiveWhatIsThere) {
    EXPECT_EQ(plain("{\\rtf1 cut {\\b of"), QStringLiteral("cut of"));
    EXPECT_EQ(plain("{\\rtf1 a}tail}}"), QStringLiteral("a"));
    EXPECT_EQ(plain("{\\rtf1 a\\bin99999999 b"), QStringLiteral("a"));
    EXPECT_EQ(plain("{\\rtf1 \\fs99999999999999 x\\'zz\\u}"), QStringLiteral("x") + QChar(0));
    // Nested beyond the limit: the text inside is dropped, the text after it is not.
    const QByteArray deep = "{\\rtf1 a" + QByteArray(5000, '{') + "x" + QByteArray(5000, '}') + "b}";
    EXPECT_EQ(plain(deep), QStringLiteral("ab"));
    EXPECT_FALSE(IsRichText("plain"));
}
