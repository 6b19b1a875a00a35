// The keys of the local ini file as they were when a sound window was filled. OK writes every key of that
// file, also those that the window does not show. The shell or another program may have stored some of them
// since; a key that the user did not touch keeps what the file holds by then.
#pragma once

#include "core/settings/Settings.h"

#include <QHash>

#include <optional>

namespace tolvex {

struct SettingRow;

class LocalKeys {
public:
    LocalKeys() = default;
    // As the local ini file of the settings holds them now.
    explicit LocalKeys(const Settings& settings);

    // Loads the keys that the file holds differently now into the settings. Gives their number.
    int takeNewer(Settings& settings) const;

private:
    using Entry = std::pair<const SettingRow*, int>; // an index is 0 where the row has none

    QHash<Entry, std::optional<QString>> texts_; // nothing: the file lacked the key
};

// Brings members of a window's record up to date that belong together, such as tag, channels and rate of a
// format: where the user left all of them as they were `loaded`, they become the `newer` ones.
template<typename Record, typename... Value>
void Follow(Record& held, const Record& loaded, const Record& newer, Value Record::*... members) {
    if (((held.*members == loaded.*members) && ...))
        ((held.*members = newer.*members), ...);
}

} // namespace tolvex
