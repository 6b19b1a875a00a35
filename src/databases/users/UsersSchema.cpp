#include "databases/users/UsersSchema.h"

namespace tolvex {

namespace {

constexpr UserGroup groups[] = {
    {1, "System Administrator", false, true},
    {2, "Station Manager", false, true},
    {3, "Programme Controller", false, true},
    {4, "Secretary Treasurer", false, true},
    {5, "Chief Engineer", false, true},
    {6, "Head of Advertising", false, true},
    {7, "Head of Music", false, true},
    {8, "Head of News", false, true},
    {9, "Head of Publicity", false, true},
    {10, "Head of Arts Team", false, true},
    {11, "", false, true},
    {12, "", false, true},
    {13, "", false, true},
    {14, "", false, true},
    {15, "", false, true},
    {16, "Administration Department", true, false},
    {17, "Engineering Department", true, false},
    {18, "Advertising Department", true, false},
    {19, "Music Department", true, false},
    {20, "Finance Department", true, false},
    {21, "Publicity Department", true, false},
    {22, "Arts Team", true, false},
    {23, "General User", true, false},
};

} // namespace

const Table& UsersSchema() {
    using enum FieldKind;
    static const Table table{"Users",
                             {{"LoginName", Text, 20},        {"Password", Text, 20},
                              {"FullName", Text, 60},         {"PhoneNumber1", Text, 30},
                              {"PhoneNumber2", Text, 30},     {"Address", Memo},
                              {"MobileNumber", Text, 30},     {"FaxNumber", Text, 30},
                              {"PersonalEMail", Text, 60},    {"PublicEMail", Text, 60},
                              {"PersonalHomepage", Text, 60}, {"PublicHomepage", Text, 60},
                              {"GroupNumber", Long},          {"OverrideAccessRights", Boolean},
                              {"AccessRight1", Boolean},      {"AccessRight2", Boolean},
                              {"AccessRight3", Boolean},      {"AccessRight4", Boolean},
                              {"AccessRight5", Boolean},      {"AccessRight6", Boolean},
                              {"Description", Memo},          {"Notes", Memo},
                              {"CreationDate", DateTime},     {"ExpirationDate", DateTime},
                              {"DeletionDate", DateTime},     {"LastPasswordSetDate", DateTime},
                              {"LastLogin", DateTime},        {"AccountStatus", Long}},
                             {{"Main", {"LoginName"}, true, true}}};
    return table;
}

const Table& UserGroupsSchema() {
    using enum FieldKind;
    static const Table table{"UserGroups",
                             {{"GroupNumber", Long},
                              {"Name", Text, 50},
                              {"AllowMultipleUsers", Boolean},
                              {"AccessRight1", Boolean},
                              {"AccessRight2", Boolean},
                              {"AccessRight3", Boolean},
                              {"AccessRight4", Boolean},
                              {"AccessRight5", Boolean},
                              {"AccessRight6", Boolean}},
                             {{"Main", {"GroupNumber"}, true, true}}};
    return table;
}

const Table& UserHistorySchema() {
    using enum FieldKind;
    // At most one row per second: writers move to the next free second.
    static const Table table{"UserHistory",
                             {{"EventTime", DateTime},
                              {"LoginName", Text, 20},
                              {"ComputerName", Text, 20},
                              {"Action", Long},
                              {"Status", Long},
                              {"Notes", Memo}},
                             {{"Main", {"EventTime"}, true, true}}};
    return table;
}

const Table& UserPreferencesSchema() {
    using enum FieldKind;
    static const Table table{"UserPreferences",
                             {{"LoginName", Text, 20}, {"Name", Text, 0}, {"Preference", Memo}},
                             {{"Main", {"LoginName", "Name"}, true, true}}};
    return table;
}

TableList UsersDatabaseTables() {
    static const Table* const tables[] = {&SettingsTableSchema(), &UsersSchema(), &UserGroupsSchema(),
                                          &UserHistorySchema(), &UserPreferencesSchema()};
    return tables;
}

qint16 ValidateUsersDatabaseTables(const QString& databaseName, const QString& connect) {
    return static_cast<qint16>(ValidateDatabaseTables(databaseName, UsersDatabaseTables(), connect));
}

std::span<const UserGroup> DefaultUserGroups() {
    return groups;
}

} // namespace tolvex
