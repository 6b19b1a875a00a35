// Makes a Jet database of songs, fills it in one transaction, finds rows by an index and by a query, checks
// the file.
#include "jet/Check.h"
#include "jet/Database.h"
#include "jet/Design.h"
#include "jet/Error.h"
#include "jet/Query.h"
#include "jet/Recordset.h"

#include <cstdio>
#include <iostream>

int main(int argc, char** argv) try {
    const std::string path = argc > 1 ? argv[1] : "SONGS.MDB";
    std::remove(path.c_str());
    jet::Database database = jet::Database::create(path);
    jet::AppendTable(
        database.catalog(),
        {.name = u"Songs",
         .fields = {{u"Title", jet::ColumnType::Text, 60}, {u"Year", jet::ColumnType::Long}},
         .indexes = {{.name = u"Main", .fields = {{u"Title"}}, .unique = true, .primary = true}}});
    jet::Transaction transaction(database);
    for (const char* insert : {"('Yesterday', 1965)", "('Help!', 1965)", "('Waterloo', 1974)"})
        jet::Execute(database.catalog(), u"INSERT INTO Songs (Title, [Year]) VALUES " + jet::ToUtf16(insert));
    jet::Execute(database.catalog(), u"DELETE FROM Songs WHERE [Year] > 1970");
    transaction.commit();
    database.flush(); // from here on a power cut loses none of it

    const auto tell = [](jet::Recordset& song) {
        std::cout << jet::ToUtf8(std::get<std::u16string>(song.value(u"Title"))) << ' '
                  << std::get<std::int32_t>(song.value(u"Year")) << '\n';
    };
    jet::Recordset songs = jet::Recordset::open(database, u"Songs");
    songs.setIndex(u"Main");
    songs.seek(jet::SeekComparison::Equal, std::u16string(u"yesterday"));
    tell(songs);
    jet::Recordset chosen = jet::Recordset::open(database, u"SELECT * FROM Songs WHERE Title LIKE 'h*'",
                                                 jet::Recordset::Kind::Dynaset);
    tell(chosen);
    const jet::CheckResult check = jet::CheckDatabase(database, [](const jet::Fault&) {});
    std::cout << songs.recordCount() << " songs, " << check.faults << " faults\n";
    database.close();
} catch (const jet::Error& error) {
    std::cerr << error.what() << " (error " << static_cast<int>(error.number()) << ")\n";
    return 1;
}
