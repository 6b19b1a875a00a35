// The bytes of an open file as pages of memory that this program shares with the system and every other
// program: reading them costs no system call and shows at once what others write.
//
// Another program may cut the file short while it is mapped, and a disk or share may fail; a touch of such
// a page raises SIGBUS. A handler of ours then puts an empty page in its place, and the read that touched it
// reports failure. A SIGBUS that is not ours goes where it went before.
#pragma once

#include <QtGlobal>

namespace tolvex::platform {

class SharedPages {
public:
    SharedPages() = default;
    ~SharedPages() { unmap(); }
    SharedPages(const SharedPages&) = delete;
    SharedPages& operator=(const SharedPages&) = delete;

    // Maps the first `length` bytes of a file in place of what was mapped. False, with nothing mapped, where
    // the file system does not map files or the length is 0.
    bool map(int descriptor, qint64 length);
    void unmap();
    qint64 length() const { return length_; }

    // Copies bytes that lie below length(). False when a page of them is no longer there; `out` is then
    // worthless, and so is the whole map.
    bool copy(qint64 offset, qint64 length, char* out) const;

private:
    char* pages_ = nullptr;
    qint64 length_ = 0;
};

} // namespace tolvex::platform
