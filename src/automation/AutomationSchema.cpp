#include "automation/AutomationSchema.h"

#include "databases/store/SuiteDatabase.h"

namespace tolvex {

const Table& KOVALogSchema() {
    using enum FieldKind;
    static const Table table{"Log",
                             {{"KIndex", Double},
                              {"EntryType", Long},
                              {"EntryStatus", Long},
                              {"EntryFlags", Long},
                              {"OriginalEntryFlags", Long},
                              {"EstimatedStartTime", Single},
                              {"ReferenceStartTime", Single},
                              {"ScheduledLength", Single},
                              {"EstimatedLength", Single},
                              {"ItemReference", Text, 0},
                              {"SchedulerReference", Text, 0},
                              {"HDReference", Text, 0},
                              {"Description1", Text, 0},
                              {"Description2", Text, 0},
                              {"Description3", Text, 0},
                              {"Description4", Text, 0},
                              {"EndingType", Integer},
                              {"ScheduledEndType", Long},
                              {"ActualEndType", Long},
                              {"Information1", Single},
                              {"Information2", Single},
                              {"Information3", Single},
                              {"Information4", Single},
                              {"InformationString1", Text, 0},
                              {"InformationString2", Text, 0},
                              {"InformationString3", Text, 0},
                              {"InformationString4", Text, 0},
                              {"PreCueOverride", Single},
                              {"ExtroOverride", Single},
                              {"HardwareEndTestNumber1", Integer},
                              {"HardwareEndTestState1", Integer},
                              {"HardwareEndTestNumber2", Integer},
                              {"HardwareEndTestState2", Integer},
                              {"PlayedDate", Long},
                              {"PlayedTime", Single},
                              {"PlayedLength", Single},
                              {"PlayedTerminal", Integer},
                              {"Notes", Memo},
                              {"WEB_Text", Memo},
                              {"DAB_Text", Text, 0},
                              {"RDS_Text", Text, 128},
                              {"SegueCodes", Memo},
                              {"AutoFadeStart", Single},
                              {"AutoFadeLength", Single}},
                             {{"Main", {"KIndex"}, true, true}}};
    return table;
}

const Table& KOVASongsSchema() {
    using enum FieldKind;
    static const Table table{"Songs",
                             {{"SongNumber", Long},
                              {"Media", Text, 50},
                              {"ItemNumber", Long},
                              {"TrackNumber", Integer},
                              {"AlbumTitle", Text, 50},
                              {"SongTitle", Text, 50},
                              {"Artist1", Text, 50},
                              {"Artist2", Text, 50},
                              {"Artist3", Text, 50},
                              {"OtherArtists", Memo},
                              {"BPM", Integer},
                              {"HDReference", Text, 0},
                              {"Category", Text, 50},
                              {"Gender", Text, 50},
                              {"SongType", Text, 50},
                              {"SongNotes", Memo},
                              {"WebNotes", Memo},
                              {"HourRestrictions1", Text, 24},
                              {"HourRestrictions2", Text, 24},
                              {"HourRestrictions3", Text, 24},
                              {"HourRestrictions4", Text, 24},
                              {"HourRestrictions5", Text, 24},
                              {"HourRestrictions6", Text, 24},
                              {"HourRestrictions7", Text, 24},
                              {"Year", Integer},
                              {"EndingType", Integer},
                              {"Styles", Text, 64},
                              {"OtherLocations", Memo},
                              {"RecordingNumber", Text, 50},
                              {"RecordLabel", Text, 50},
                              {"Composer", Text, 50},
                              {"Publisher", Text, 50},
                              {"Promoter", Text, 50},
                              {"Length", Single},
                              {"IntroStart", Single},
                              {"IntroEnd", Single},
                              {"Extro", Single}},
                             {{"Main", {"SongNumber"}, true, true},
                              {"MIT", {"Media", "ItemNumber", "TrackNumber"}},
                              {"HDReference", {"HDReference"}}}};
    return table;
}

const Table& KOVAJinglesSchema() {
    using enum FieldKind;
    static const Table table{"Jingles",
                             {{"JingleNumber", Long},
                              {"Media", Text, 50},
                              {"ItemNumber", Long},
                              {"TrackNumber", Integer},
                              {"JingleTitle", Text, 50},
                              {"OtherInformation", Memo},
                              {"BPM", Integer},
                              {"HDReference", Text, 12},
                              {"Category", Text, 50},
                              {"Gender", Text, 50},
                              {"JingleType", Text, 50},
                              {"IsSweeper", Boolean},
                              {"JingleNotes", Memo},
                              {"WebNotes", Memo},
                              {"HourRestrictions1", Text, 24},
                              {"HourRestrictions2", Text, 24},
                              {"HourRestrictions3", Text, 24},
                              {"HourRestrictions4", Text, 24},
                              {"HourRestrictions5", Text, 24},
                              {"HourRestrictions6", Text, 24},
                              {"HourRestrictions7", Text, 24},
                              {"StartDate", DateTime},
                              {"EndDate", DateTime},
                              {"Year", Integer},
                              {"EndingType", Integer},
                              {"OtherLocations", Memo},
                              {"MusicTitle", Text, 100},
                              {"ProductTitle", Text, 100},
                              {"Performer", Text, 100},
                              {"RecordingNumber", Text, 50},
                              {"RecordLabel", Text, 50},
                              {"Composer", Text, 50},
                              {"Publisher", Text, 50},
                              {"Promoter", Text, 50},
                              {"Length", Single},
                              {"IntroStart", Single},
                              {"IntroEnd", Single},
                              {"Extro", Single}},
                             {{"Main", {"JingleNumber"}, true, true},
                              {"MIT", {"Media", "ItemNumber", "TrackNumber"}},
                              {"HDReference", {"HDReference"}}}};
    return table;
}

const Table& KOVAScheduleSchema() {
    using enum FieldKind;
    static const Table table{"Schedule",
                             {{"HourNumber", Integer},
                              {"HourReference", Text, 8},
                              {"ShowTitle", Text, 50},
                              {"PlayoutMode", Integer},
                              {"RunToTime", Boolean},
                              {"Notes", Memo}},
                             {{"Main", {"HourNumber"}, true, true}}};
    return table;
}

TableList KOVADatabaseTables() {
    static const Table* const tables[] = {&KOVALogSchema(), &SettingsTableSchema(), &KOVASongsSchema(),
                                          &KOVAJinglesSchema(), &KOVAScheduleSchema()};
    return tables;
}

qint16 ValidateKOVADatabaseTables(const QString& databaseName, const QString& connect) {
    return static_cast<qint16>(ValidateDatabaseTables(databaseName, KOVADatabaseTables(), connect));
}

bool HasKOVADatabaseIndexes(SuiteDatabase& database) {
    const auto has = [&database](const char* table, const Index& index) {
        const auto shape = database.table(QLatin1String(table));
        return shape && shape->has(index);
    };
    bool all = has("Description", {"Main", {"Description"}, true});
    for (const Table* schema : KOVADatabaseTables())
        for (const Index& index : schema->indexes)
            all = all && has(schema->name, index);
    return all;
}

} // namespace tolvex
