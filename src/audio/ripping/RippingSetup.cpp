#include "audio/ripping/RippingSetup.h"

#include "audio/LoadAudioSettings.h"
#include "core/settings/NewerSettings.h"
#include "core/settings/SettingCheck.h"
#include "core/settings/SettingText.h"
#include "core/settings/SettingsLoader.h"
#include "core/settings/StoredSettings.h"

#include <cmath>

namespace tolvex {

namespace {

constexpr qint32 highestLevel = 100;

struct FlagRow {
    bool RippingSetup::*held;
    qint16 Settings::*setting;
};
constexpr FlagRow flags[] = {
    {&RippingSetup::askFirst, &Settings::AskBeforeProcess},
    {&RippingSetup::autoTop, &Settings::AutoTopAudio},
    {&RippingSetup::allowCddb, &Settings::AllowCDDB},
    {&RippingSetup::allowSubmissions, &Settings::AllowSubmit},
};

void take(const RippingSetup& setup, Settings& settings) {
    for (const FlagRow& row : flags)
        settings.*row.setting = setup.*row.held ? -1 : 0;
    settings.NormaliseAudioPercent = setup.normalise ? setup.level : 0;
    settings.ServerAddress = setup.server.trimmed();
    settings.EmailAddress = setup.email.trimmed();
}

// Leaves the port as it is.
void show(const Settings& settings, RippingSetup& setup) {
    for (const FlagRow& row : flags)
        setup.*row.held = settings.*row.setting != 0;
    setup.normalise = settings.NormaliseAudioPercent >= 1;
    setup.level = setup.normalise ? settings.NormaliseAudioPercent : UsualNormaliseLevel;
    setup.server = settings.ServerAddress;
    setup.email = settings.EmailAddress;
}

SetupOutcome checkEmail(const QString& given) {
    const QString email = given.trimmed();
    if (!email.isEmpty() && email.contains(u'@') && email.contains(u'.'))
        return {};
    return {
        QStringLiteral("You must enter a valid e-mail address to use CDDB Servers\n\nThis is normally the "
                       "email address of the System Administrator"),
        QStringLiteral("txtCDDBEmailAddress")};
}

// What the file cannot hold; the suite has no texts of its own for it.
SetupOutcome checkStorable(const RippingSetup& setup) {
    QString why;
    if (!CheckSettingValue(RowOf<&Settings::ServerAddress>(), setup.server, &why))
        return {QStringLiteral("The CDDB Server cannot be stored: %1.").arg(why),
                QStringLiteral("comboCDDBServer")};
    if (!CheckSettingValue(RowOf<&Settings::EmailAddress>(), setup.email, &why))
        return {QStringLiteral("The e-mail address cannot be stored: %1.").arg(why),
                QStringLiteral("txtCDDBEmailAddress")};
    return {};
}

SetupOutcome check(const RippingSetup& setup) {
    if (setup.normalise && (setup.level < 0 || setup.level > highestLevel))
        return {QStringLiteral("You must specify a percentage from 0 to 100 for the Normalise Percentage"),
                QStringLiteral("txtNormaliseLevel")};
    if (setup.allowCddb) {
        for (const SetupOutcome& outcome :
             {CheckCddbServer(setup.server), CheckCddbPort(setup.port), checkEmail(setup.email)})
            if (!outcome.stored())
                return outcome;
    }
    return checkStorable(setup);
}

} // namespace

std::span<const SettingRow* const> RippingRows() {
    static const SettingRow* const rows[] = {
        &RowOf<&Settings::AskBeforeProcess>(),      &RowOf<&Settings::AutoTopAudio>(),
        &RowOf<&Settings::NormaliseAudioPercent>(), &RowOf<&Settings::AllowCDDB>(),
        &RowOf<&Settings::ServerAddress>(),         &RowOf<&Settings::EmailAddress>(),
        &RowOf<&Settings::AllowSubmit>(),
    };
    return rows;
}

Settings RippingSettingsOf(const RippingSetup& setup) {
    Settings settings;
    take(setup, settings);
    return settings;
}

RippingSetup LoadRippingSetup(const Settings& settings) {
    Settings stored;
    for (const SettingRow* row : RippingRows())
        LoadRow(*row, {AudiowallIniFile(settings)}, stored);
    RippingSetup setup;
    show(stored, setup);
    return setup;
}

SetupOutcome StoreRippingSetup(RippingSetup& setup, RippingSetup& shown, Settings& settings) {
    if (SetupOutcome refused = check(setup); !refused.stored())
        return refused;
    Settings wanted = RippingSettingsOf(setup);
    Settings before = RippingSettingsOf(shown);
    const QStringList changed =
        TakeNewer(RippingRows(), RippingSettingsOf(LoadRippingSetup(settings)), before, wanted);
    if (!changed.isEmpty()) {
        show(wanted, setup);
        show(before, shown);
        return {NewerSettingsText(changed)};
    }
    const QString file = AudiowallIniFile(settings);
    platform::ProfileBatch batch(file);
    for (const SettingRow* row : RippingRows())
        PutSettingText(batch, *row, StoredText(*row, 0, wanted).value_or(QString()));
    if (const int error = batch.commit())
        return {ProfileErrorText(error, file), {}, error};
    take(setup, settings);
    shown = setup;
    return {};
}

bool SetRippingValue(RippingSetup& setup, const SettingRow& row, const QString& value, QString* why) {
    SettingRow anyNumber = row;
    if (row.kind == SettingKind::Number)
        anyNumber = row.range(INT32_MIN, INT32_MAX);
    const std::optional<QString> text = CheckSettingValue(anyNumber, value, why);
    if (!text)
        return false;
    Settings settings = RippingSettingsOf(setup);
    PutEntry(row, 0, *text, settings);
    show(settings, setup);
    // A level below 0 is refused as a level, not taken for none.
    setup.normalise = settings.NormaliseAudioPercent != 0;
    if (setup.normalise)
        setup.level = settings.NormaliseAudioPercent;
    return true;
}

SetupOutcome CheckCddbServer(const QString& server) {
    if (server.contains(u'.')) // and so not empty
        return {};
    return {
        QStringLiteral("You must specify a valid CDDB Server to use to read CD Titles\n\nNote that FreeDB "
                       "Servers do not require an account, whilst CDDB servers do"),
        QStringLiteral("comboCDDBServer")};
}

SetupOutcome CheckCddbPort(qint32 port) {
    if (port > 0)
        return {};
    return {
        QStringLiteral("You must specify a Port to connect to the CDDB Server on.\n\nNormally this is port "
                       "8880"),
        QStringLiteral("txtCDDBPort")};
}

QString LevelInDecibels(qint32 percent) {
    if (percent <= 0)
        return {};
    return QStringLiteral("%1 dB").arg(20 * std::log10(percent / 100.0), 0, 'f', 1);
}

QString CddbServerHint(const QString& server) {
    const QString name = server.trimmed().toLower();
    if (name == u"freedb.org" || name.endsWith(u".freedb.org"))
        return QStringLiteral("freedb.org was closed in March 2020; gnudb.gnudb.org has its titles.");
    if (name.endsWith(u".example.com"))
        return QStringLiteral(
            "This name is an example: the commercial service gives each customer a server of its own.");
    return {};
}

} // namespace tolvex
