#include "databases/users/UserImport.h"

#include "core/report/Folders.h"
#include "core/settings/Settings.h"
#include "core/text/TextFields.h"
#include "databases/store/Report.h"
#include "databases/users/UsersDatabase.h"
#include "databases/users/UsersSchema.h"
#include "platform/Clock.h"
#include "platform/CodePage.h"
#include "platform/Prompts.h"
#include "platform/profile/ProfileFile.h"

namespace tolvex {

namespace {

using platform::Answer;
using platform::Buttons;
using platform::Icon;

// Fields that are copied unchanged.
constexpr struct {
    const char* older;
    const char* field;
} copiedFields[] = {
    {"FullName", "FullName"}, {"Phone1", "PhoneNumber1"}, {"Phone2", "PhoneNumber2"},
    {"Address", "Address"},   {"Access1", "GroupNumber"},
};

// The bits of the older rights for each right; any of the bits grants it.
constexpr struct {
    const char* older;
    int bits;
    const char* right;
} rights[] = {
    {"Access2", 1, "AccessRight2"}, {"Access2", 8192, "AccessRight1"}, {"Access3", 1, "AccessRight4"},
    {"Access3", 1, "AccessRight5"}, {"Access2", 124, "AccessRight6"},
};

void makeGroups(SuiteDatabase& database) {
    auto table = database.open(QStringLiteral("Usergroups"), RecordsetMode::Table);
    while (!table->eof()) {
        table->remove();
        table->moveNext();
    }
    for (const UserGroup& group : DefaultUserGroups()) {
        table->addNew();
        table->set(QStringLiteral("GroupNumber"), group.number);
        table->set(QStringLiteral("Name"), QString(QLatin1String(group.name)));
        table->set(QStringLiteral("AllowMultipleUsers"), group.allowMultipleUsers);
        for (int right = 1; right <= AccessRightCount; ++right)
            table->set(QStringLiteral("AccessRight%1").arg(right), group.accessRights);
        table->update();
    }
}

// Adds one account of the older file to the Users table.
void importRow(SuiteRecordset& from, SuiteRecordset& users, const QString& login) {
    users.seek(login);
    if (users.noMatch()) {
        users.addNew();
        users.set(QStringLiteral("LoginName"), login);
        users.set(QStringLiteral("CreationDate"), platform::clock().now());
    } else {
        users.edit();
    }
    users.set(QStringLiteral("Password"),
              TransformPassword(from.value(QStringLiteral("password")).toString(), false));
    for (const auto& copied : copiedFields)
        users.set(QLatin1String(copied.field), from.value(QLatin1String(copied.older)));
    users.set(QStringLiteral("OverrideAccessRights"), true);
    users.set(QStringLiteral("AccountStatus"), 1);
    for (const auto& right : rights)
        if (from.value(QLatin1String(right.older)).toInt() & right.bits)
            users.set(QLatin1String(right.right), true);
    users.update();
}

// The file that the user wants to import from; empty: none.
QString chooseFile(const Settings& settings, bool silent) {
    QString name = OlderUsersFile(settings);
    if (!name.isEmpty() && !silent) {
        DatabaseInformation information;
        GetDatabaseInformation(name, &information, false);
        const Answer answer =
            platform::prompts().ask({QStringLiteral("Do you want to import the Users from '") +
                                         information.Description + QStringLiteral("'?"),
                                     Icon::Question, Buttons::YesNoCancel});
        if (answer == Answer::Cancel)
            return {};
        if (answer == Answer::Yes)
            return name;
        name.clear();
    }
    platform::FileQuestion question;
    question.title = QStringLiteral("Please select the Users Database to import from..");
    question.filter = QStringLiteral("Database Files (*.MDB)|*.MDB|All Files (*.*)|*.*");
    question.defaultExtension = QStringLiteral("MDB");
    question.fileName = name;
    return platform::prompts().pickFile(question).value_or(QString());
}

void importFile(const QString& name, SuiteRecordset& users) {
    std::unique_ptr<SuiteDatabase> older;
    std::unique_ptr<SuiteRecordset> accounts;
    try {
        older = OpenSuiteDatabase(name);
        accounts = older->open(QStringLiteral("General"), RecordsetMode::Table);
    } catch (const DatabaseError& error) {
        Report(QStringLiteral("opening the database"), error);
        return;
    }
    for (; !accounts->eof(); accounts->moveNext()) {
        QString login;
        try {
            login = accounts->value(QStringLiteral("Login")).toString();
            if (login.trimmed().isEmpty())
                throw DatabaseError{NullKeyError, QStringLiteral("The account has no login.")};
            importRow(*accounts, users, login);
        } catch (const DatabaseError& error) {
            Report(QStringLiteral("adding %1 to the users database").arg(login), error);
        }
    }
    platform::prompts().ask({QStringLiteral("The Users database has been imported"), Icon::Information});
}

} // namespace

QString OlderUsersFile(const Settings& settings) {
    const QString name = platform::ProfileText(QStringLiteral("UsersDatabase"), QStringLiteral("FileName"),
                                               {}, QStringLiteral("Tolvex.ini"));
    return name.trimmed().isEmpty() ? QString() : settings.DataLocation + QStringLiteral("\\USERS\\") + name;
}

QString TransformPassword(const QString& text, bool keepCase) {
    QByteArray codes = platform::ToCodePage(keepCase ? text : UpperCased(text));
    for (char& code : codes) {
        const unsigned bits = static_cast<unsigned char>(code);
        code = static_cast<char>((bits & 0xE4u) | (bits & 0x01u) << 4 | (bits & 0x10u) >> 4 |
                                 (bits & 0x02u) << 2 | (bits & 0x08u) >> 2);
    }
    return platform::FromCodePage(codes);
}

void MakeDefaultGroupsAndImport(UsersState& state, bool silent) {
    if (!state.database)
        return;
    try {
        makeGroups(*state.database);
    } catch (const DatabaseError& error) {
        Report(QStringLiteral("opening the database"), error);
        return;
    }
    platform::prompts().setPointer(platform::Pointer::Default);
    const QString name = chooseFile(state.settings, silent);
    if (FileLength(name) <= 0)
        return;
    try {
        importFile(name, *state.users);
    } catch (const DatabaseError& error) {
        Report(QStringLiteral("opening the database"), error);
    }
}

} // namespace tolvex
