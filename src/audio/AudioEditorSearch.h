// Finds an audio editor on this machine: one search under the two names that its callers know it by.
#pragma once

#include <QString>

namespace tolvex {

// `path` when it names a file that is not empty, else the first installed editor found, else `path`.
QString SearchSampleEditor(const QString& path);
inline QString FindAudioEditor(const QString& current) {
    return SearchSampleEditor(current);
}

} // namespace tolvex
