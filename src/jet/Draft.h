// A database file that is being made. It lies beside the place it is made for, under a name of its own, until
// it is whole; then it gets its name, unless another has taken that meanwhile. So nobody ever meets a
// half-made database, and of several who make one at the same time one succeeds and the others learn of it.
//
//     Draft draft(storage, path);
//     {
//         Database database = Database::open(storage, draft.path(), {.exclusive = true});
//         ... tables, rows ...
//         database.close();
//     }
//     draft.publish();
//
// The living know each other by a lock on their drafts; one that a dead process left is taken over by the
// next.
#pragma once

#include "jet/base/Storage.h"

namespace jet {

class Draft {
public:
    // Begins with an empty database. Throws DatabaseExists when `path` is there, and what making a file
    // throws. The storage outlives the draft.
    Draft(Storage& storage, const std::string& path);
    // Takes away what was not published.
    ~Draft();
    Draft(const Draft&) = delete;
    Draft& operator=(const Draft&) = delete;

    // Where it lies. Whoever opens it there closes it before publish().
    const std::string& path() const { return beside_; }
    // Gives it its name; a power cut after that loses none of it. Throws DatabaseExists when another was
    // quicker, whose file stays.
    void publish();

    // Removes a file of no length from a place where a database is to be made; one that another has made
    // there meanwhile stays.
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
