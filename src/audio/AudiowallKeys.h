// The keys of Audwall.ini that the sound windows set. The file lies beside the audio and belongs to all
// workstations of the station, so an OK changes only what its user changed: another workstation may have set
// the other keys since the window was filled.
#pragma once

#include "core/settings/SettingsTable.h"

#include <QList>

#include <functional>
#include <optional>

namespace tolvex {

struct Settings;

// Whether the settings lead to an Audwall.ini that is there.
bool AudiowallFileExists(const Settings& settings);

class AudiowallKeys {
public:
    // Of the Audwall.ini that the settings lead to. One that was there when the window was filled and is gone
    // now is not made anew with two keys: that is an error (ProfileFileNotFound).
    AudiowallKeys(const Settings& settings, bool wasThere);

    // A key and the text that the window holds for it. A key that the user did not change keeps the text that
    // the file has now, as long as `fits` says that the window can show it; otherwise it is written.
    void set(const SettingRow& row, const QString& text, bool changed,
             const std::function<bool(const QString& stored)>& fits);
    // Whether the user changed one of the keys. If not, a file that cannot be written holds nothing up.
    bool changed() const { return changed_; }

    // The ProfileError that write() would end with now, as far as it can be known before.
    int check() const;
    // Writes the keys as one replacement and takes them into the settings, as the file has them then.
    // ProfileError; nothing has changed when it is not ProfileOk.
    int write(Settings& settings);
    // Gives the file the texts that it had before write(). ProfileError.
    int putBack();

    // What such an error means: "FILE was not changed: ... (error 5)".
    QString errorText(int profileError) const;
    // Says through the prompts that the file was not written, though the user changed nothing that it holds,
    // and that everything else was.
    void sayNotWritten(int profileError) const;

    const QString& file() const { return file_; }

private:
    struct Key {
        const SettingRow* row;
        QString text;
        std::optional<QString> before; // nothing: the file lacked it
        bool isWritten;
    };
    bool needsWriting() const;
    int commit() const;

    QString file_;
    bool isGone_;
    QList<Key> keys_;
    bool changed_ = false;
};

} // namespace tolvex
