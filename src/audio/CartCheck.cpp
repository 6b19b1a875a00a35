#include "audio/CartCheck.h"

#include "audio/CartLists.h"
#include "audio/CartStore.h"
#include "core/report/Folders.h"
#include "core/text/TextFields.h"
#include "platform/Prompts.h"
#include "platform/files/Files.h"

#include <QHash>

#include <algorithm>
#include <iterator>

namespace tolvex {

namespace {

constexpr qint32 cartsBetweenSteps = 100;

// What lies beside a cart's audio under its name.
constexpr const char* otherExtensions[] = {"LST", "RTF", "TXT"};

bool isAudio(const QString& extension) {
    return std::none_of(std::begin(otherExtensions), std::end(otherExtensions), [&](const char* other) {
        return extension.compare(QLatin1String(other), Qt::CaseInsensitive) == 0;
    });
}

// Audio files of a folder by the cart that their names tell.
using AudioFiles = QHash<qint32, QStringList>;

AudioFiles audioIn(const QString& folder) {
    const QString prefix = QStringLiteral("TLV");
    AudioFiles files;
    for (const QString& name : platform::FolderNames(folder)) {
        const qsizetype dot = name.lastIndexOf(u'.');
        if (!name.startsWith(prefix, Qt::CaseInsensitive) || dot < 0 || !isAudio(name.mid(dot + 1)))
            continue;
        const QString digits = name.mid(prefix.size(), dot - prefix.size());
        if (digits.size() >= 5 && ValidateCharacters(digits, CharacterClass::Digits))
            files[digits.toInt()] += name;
    }
    return files;
}

// What makes two carts the same one; empty for a cart without a name.
QString identityOf(const CartRecord& cart) {
    const QString lines = cart.Line1 + cart.Line2 + cart.Line3;
    return lines.trimmed().isEmpty() ? QString() : lines + QString::number(cart.TotalLength, 'g', 9);
}

class Check {
public:
    explicit Check(CartStore& wall)
        : carts_(wall) {}

    CartCheckResult run() {
        const auto progress = platform::prompts().beginProgress(QStringLiteral("Checking carts"), true);
        for (int part = 1; part <= PartOfCart(carts_.settings.NoCarts) && !result_.stopped; ++part)
            if (!CartListPath(carts_, part).isEmpty())
                checkPart(part, *progress);
        return result_;
    }

private:
    void add(const QString& kind, int part, qint32 cart, const QString& text) {
        result_.faults.append({kind, part, cart, text});
    }

    void checkPart(int part, platform::Progress& progress) {
        const CartListFacts list = LookAtCartList(carts_, part);
        if (!list.isSound())
            add(list.state(), part, 0, list.inWords());
        if (list.error != platform::NoError || OpenCartParts(carts_, part, true) != 0)
            return;
        ++result_.lists;
        const QString& location = carts_.settings.CartPartTable[part].Location;
        if (location != audioLocation_) {
            audio_ = audioIn(location);
            audioLocation_ = location;
        }
        const qint32 last = std::min(list.lastCart(), carts_.settings.NoCarts);
        for (qint32 cart = (part - 1) * CartsInPart + 1; cart <= last; ++cart) {
            checkCart(part, cart);
            if (cart % cartsBetweenSteps == 0 &&
                !progress.step(cart, carts_.settings.NoCarts, QStringLiteral("cart %1").arg(cart))) {
                result_.stopped = true;
                return;
            }
        }
    }

    void checkCart(int part, qint32 number) {
        qint16 status = 0;
        const CartRecord cart = ReadCart(carts_, number, &status);
        if (status != platform::NoError)
            return add(QStringLiteral("unreadable"), part, number,
                       QStringLiteral("Cart %1 could not be read (error %2).").arg(number).arg(status));
        if (cart.isEmpty())
            return;
        ++result_.carts;
        checkAudio(part, number);
        const QString identity = identityOf(cart);
        if (identity.isEmpty())
            return;
        const auto same = first_.constFind(identity);
        if (same == first_.constEnd())
            first_.insert(identity, number);
        else
            add(QStringLiteral("double"), part, number,
                QStringLiteral("Cart %1 has the lines and the length of cart %2.").arg(number).arg(*same));
    }

    void checkAudio(int part, qint32 number) {
        const QStringList files = audio_.value(number);
        if (files.size() > 1)
            add(QStringLiteral("double"), part, number,
                QStringLiteral("Cart %1 has several audio files in %2: %3.")
                    .arg(number)
                    .arg(audioLocation_, files.join(QStringLiteral(", "))));
        const bool heard = std::any_of(files.begin(), files.end(), [this](const QString& name) {
            return FileLength(audioLocation_ + u'\\' + name) > 0;
        });
        if (!heard && !carts_.settings.AllowAudioFileLinking)
            add(QStringLiteral("audio"), part, number,
                QStringLiteral("Cart %1 has no audio in %2.").arg(number).arg(audioLocation_));
    }

    CartStore& carts_;
    CartCheckResult result_;
    QHash<QString, qint32> first_; // the first cart of each identity
    QString audioLocation_;
    AudioFiles audio_; // of that folder
};

} // namespace

CartCheckResult CheckCarts(CartStore& carts) {
    return Check(carts).run();
}

} // namespace tolvex
