// The bytes of an open file as memory pages shared with the system and every other program: reading them
// costs no system call and shows at once what others write.
//
// Another program may truncate the file while it is mapped, and a disk or share may fail; reading such a page
// raises SIGBUS. Our handler then puts an empty page in its place, and the read reports failure. A SIGBUS
// that is not ours goes to the previous handler.
#pragma once

#include <QtGlobal>

namespace tolvex::platform {

class SharedPages {
public:
    SharedPages() = default;
    ~SharedPages() { unmap(); }
    SharedPages(const SharedPages&) = delete;
    SharedPages& operator=(const SharedPages&) = delete;

    // Maps the first `length` bytes of a file in place of the previous map. False, with nothing mapped, if
    // the file system cannot map files or the length is 0.
    bool map(int descriptor, qint64 length);
    void unmap();
    qint64 length() const { return length_; }

    // Copies bytes that lie below length(). False if one of their pages is gone; `out` and the whole map are
    // then unusable.
    bool copy(qint64 offset, qint64 length, char* out) const;

private:
    char* pages_ = nullptr;
    qint64 length_ = 0;
};

} // namespace tolvex::platform
