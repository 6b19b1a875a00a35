#include "network/commands/CommandUses.h"

namespace tolvex {

bool NamesCommand(const QString& text, const QString& name) {
    const QString words = name.trimmed();
    if (words.isEmpty())
        return false;
    for (qsizetype at = text.indexOf(words, 0, Qt::CaseInsensitive); at >= 0;
         at = text.indexOf(words, at + 1, Qt::CaseInsensitive)) {
        const qsizetype end = at + words.size();
        const bool begins = at == 0 || !text[at - 1].isLetterOrNumber();
        const bool ends = end == text.size() || !text[end].isLetterOrNumber();
        if (begins && ends)
            return true;
    }
    return false;
}

QList<CommandUse> CommandUsesInHardware(const HardwareCardTable& cards, const QString& name) {
    QList<CommandUse> uses;
    for (int number = 1; number <= HardwareCardCount; ++number) {
        const HardwareCard& card = cards[number];
        if (card.CardType == CardDisabled)
            continue;
        for (int n = 1; n <= LinesPerCard; ++n)
            if (NamesCommand(card.Lines[n].description(), name))
                uses += CommandUse{QStringLiteral("Hardware card %1, line %2").arg(number).arg(n),
                                   card.Lines[n].description()};
    }
    return uses;
}

QList<CommandUse> CommandUses(const QString& name, const HardwareCardTable& cards,
                              const std::vector<CommandUseSource>& sources) {
    QList<CommandUse> uses = CommandUsesInHardware(cards, name);
    for (const CommandUseSource& source : sources)
        uses += source(name);
    return uses;
}

} // namespace tolvex
