// One run of a program on a workstation: opens, saves and closes everything, in this order for the window and
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
    // interrupted import, the settings. False if the program must end; the user has been told why.
    // `firstInstance` false: another copy is running, and this one ends silently.
    bool begin(bool firstInstance);
    // The rest of the start: the name of the configuration, the settings of the station, the shared lists,
    // the users database, which stays open for the run so that history can be written.
    void load();
    // Call after the file locations changed: opens the station's files at the new location.
    void reload();
    // Whether begin() got far enough for end() to save.
    bool begun() const { return begun_; }
    // The window's end: saves the local settings, closes everything, and starts the program that the command
    // line names for it. Does nothing before begin().
    void end();

    // The shell's start: the same settings of the workstation and its station as in the window. Makes and
    // changes nothing, except after an interrupted import: a command that changes something must start with
    // files that belong together. False if no local ini file was chosen.
    bool read();
    // Closes everything that is open. The settings stay.
    void close();

private:
    void openUsersDatabase();
    void mendInterruptedImport();

    Workstation& station_;
    bool begun_ = false;
    bool toldOfImport_ = false;
};

} // namespace tolvex
