// One run of a program over a workstation: what is opened, saved and closed, in this order for the window and
// for the shell.
#pragma once

namespace tolvex {

struct Workstation;

class Session {
public:
    // The workstation outlives the session.
    explicit Session(Workstation& station)
        : station_(station) {}
    Session(const Session&) = delete;
    Session& operator=(const Session&) = delete;

    // The window's start up to the local settings: the data engine, the choice of the local ini file, an
    // import that was cut short, the settings. False when the program is to end: what there was to say has
    // been said. `firstInstance` false: another copy is running, and this one ends without a word.
    bool begin(bool firstInstance);
    // The rest of it: the name of the configuration, the settings of the station, the shared lists, the users
    // database. It stays open for the run: whatever writes history finds it so.
    void load();
    // Once the file locations have changed: the files of the station from there.
    void reload();
    // Whether begin() came so far that end() saves.
    bool begun() const { return begun_; }
    // The window's end: saves the local settings, closes everything, and starts the program that the command
    // line names for it. Does nothing before begin().
    void end();

    // The shell's start: the settings of the workstation and of its station, as the window has them. Makes
    // and changes nothing, but for an import that was cut short: a command that changes something begins with
    // files that belong together. False when no local ini file was chosen.
    bool read();
    // Closes what is open. The settings stay.
    void close();

private:
    void openUsersDatabase();
    void mendInterruptedImport();

    Workstation& station_;
    bool begun_ = false;
    bool toldOfImport_ = false;
};

} // namespace tolvex
