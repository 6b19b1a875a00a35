// A database file under construction. It lies beside its future place, under a name of its own, until it is
// complete; then it gets its name, unless another file has taken that meanwhile. So nobody ever sees a
// partial database, and if several programs make one at the same time one succeeds and the others are told.
//
//     Draft draft(storage, path);
//     {
//         Database database = Database::open(storage, draft.path(), {.exclusive = true});
//         ... tables, rows ...
//         database.close();
//     }
//     draft.publish();
//
// A lock on each draft shows that its process lives; the
// next program takes over the draft of a dead one.
#pragma once

#include "jet/base/Storage.h"

namespace jet {

class Draft {
public:
    // Begins with an empty database. Throws DatabaseExists if `path` exists, and the errors of making a file.
    // The storage outlives the draft.
    Draft(Storage& storage, const std::string& path);
    // Removes a draft that was not published.
    ~Draft();
    Draft(const Draft&) = delete;
    Draft& operator=(const Draft&) = delete;

    // Its path. Whoever opens it there must close it before publish().
    const std::string& path() const { return beside_; }
    // Gives it its name, durably. Throws DatabaseExists if
    // another program was faster; that file stays.
    void publish();

    // Removes a file of length 0 from a place where a database is to be made; a database that another program
    // has made there meanwhile stays.
    static void removeEmpty(Storage& storage, const std::string& path);

private:
    bool take(const std::string& beside);
    void write() const;

    Storage& storage_;
    std::string path_;
    std::string beside_;
    std::unique_ptr<StorageFile> file_; // keeps it locked
};

} // namespace jet
