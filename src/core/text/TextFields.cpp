#include "core/text/TextFields.h"

#include "platform/CodePage.h"

namespace tolvex {

bool ValidateCharacters(const QString& text, CharacterClass allowed) {
    const int number = static_cast<int>(allowed);
    if (number < 1 || number > 5)
        return true;
    const bool digits = allowed != CharacterClass::Letters;
    const bool letters = allowed == CharacterClass::DigitsAndLetters || allowed == CharacterClass::Letters ||
                         allowed == CharacterClass::DigitsLettersBlank;
    const bool blank =
        allowed == CharacterClass::DigitsLettersBlank || allowed == CharacterClass::DigitsBlank;
    return std::all_of(text.begin(), text.end(), [&](QChar c) {
        return (digits && c >= u'0' && c <= u'9') ||
               (letters && ((c >= u'A' && c <= u'Z') || (c >= u'a' && c <= u'z'))) || (blank && c == u' ');
    });
}

QString TextField(const QString& text, qsizetype start, QChar separator, qsizetype* position, bool trim,
                  bool skipLeading) {
    qsizetype first = std::max<qsizetype>(start, 1) - 1;
    while (skipLeading && first < text.size() && text[first] == u' ')
        ++first;
    const qsizetype end = first < text.size() ? text.indexOf(separator, first) : -1;
    if (position)
        *position = end + 1;
    const QString field = text.mid(first, end < 0 ? -1 : end - first);
    return trim ? field.trimmed() : field;
}

QString UpperCased(QString text) {
    for (QChar& letter : text)
        if (const QString upper(letter.toUpper());
            letter.unicode() < 0x80 || platform::FromCodePage(platform::ToCodePage(upper)) == upper)
            letter = upper.front();
    return text;
}

QString SwitchValue(const QString& commandLine, const QString& name) {
    const qsizetype found = commandLine.indexOf(name);
    if (found < 0)
        return {};
    const QString value = TextField(commandLine, found + name.size() + 1, u' ');
    return value.isNull() ? QStringLiteral("") : value;
}

} // namespace tolvex
