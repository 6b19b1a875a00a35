// Drives and paths: maps a Windows path of the suite to this machine.
//
// Settings hold Windows paths ("C:\TOLVEX\SYSTEM", "M:", "\\SERVER\SHARE\X"). On Windows they are used as
// they stand. Elsewhere they are resolved against one machine folder, laid out as Wine lays out a prefix:
// dosdevices/c: and the like are folders or links, dosdevices/z: is "/", dosdevices/com1 and the like link to
// devices, dosdevices/unc/SERVER/SHARE holds shares. Names match without regard to case, component by
// component; an exact spelling wins, otherwise the first in byte order. Only this floor and jet/ use host
// paths; the floors above only display them.
#pragma once

#include <QString>

namespace tolvex::platform {

// Chooses the machine folder (a host path, made with its drive C: if missing). Empty: $TOLVEX_HOME, else
// $XDG_DATA_HOME/tolvex, else ~/.local/share/tolvex. Drops every cache. False, with a sentence in *why, if
// the folder cannot be made or used.
bool SetMachineFolder(const QString& hostFolder, QString* why = nullptr);

// Host path of the current machine folder; calls SetMachineFolder({}) if none was chosen.
QString MachineFolder();

// The host path for a Windows path. Existing components resolve without regard to case, the
// exact spelling first; components that do not exist are taken as spelled. "/" separates like
// "\". A bare name resolves to the Windows folder (the rule of the private profile files) if
// `bareNameIn` is WindowsFolder, else to the current folder of the current drive. ".." never
// leaves the root of a drive or share. Empty if the path is empty, names a missing drive or
// share, or holds a zero character. Cost: one stat in all for a path that exists as spelled;
// otherwise one hash look-up and one stat per component while the folders are unchanged.
enum class BareName { WindowsFolder, CurrentFolder };
QString HostPath(const QString& path, BareName bareName = BareName::CurrentFolder);

// The Windows path of a host path: the drive with the deepest folder that contains it (Z: for anything else).
QString WindowsPath(const QString& hostPath);

// "C:\WINDOWS" and "C:\WINDOWS\SYSTEM32" off Windows; at most 145 characters.
QString WindowsFolder();
QString SystemFolder();

// The folder for temporary files, without a trailing backslash ("C:\WINDOWS\TEMP" off Windows).
QString TempFolder();

// This program's folder, as a Windows path without a trailing backslash. Tests may set another.
QString ApplicationFolder();
void SetApplicationFolder(const QString& windowsPath);

// A file that belongs to the program ("config.chm"), as a Windows path: in the folder of the program, where a
// build and a station's own copy are, else in the shared data of an installed program. That folder is found
// relative to the program, so an installation can be moved as a whole. The path in the folder of the program
// if the file is in neither.
QString ApplicationFile(const QString& name);

// The path of a shell folder by its number (0x26 is program files, 0x2B common files), or empty if there is
// none.
QString SpecialFolderPath(int number);

// The short (8.3) form of an existing path: stable from call to call, and it resolves back to the same file.
// At most 1023 characters; empty if the path does not exist.
QString ShortPath(const QString& path);

// Bit 0 is A:, bit 25 Z:; a set bit means that the drive exists.
quint32 LogicalDrives();

// The platform's numbers: 0 unknown, 1 no such drive, 2 removable, 3 fixed, 4 remote, 5 CD-ROM, 6 RAM disk.
// Derived from the file system that the drive's link leads to. Tests set another type, until the next
// SetMachineFolder.
enum class DriveType {
    Unknown = 0,
    NoRoot = 1,
    Removable = 2,
    Fixed = 3,
    Remote = 4,
    CdRom = 5,
    RamDisk = 6
};
DriveType TypeOfDrive(QChar letter);
void SetTypeOfDrive(QChar letter, DriveType type);

// The current drive and folder, as a Windows path ("C:\" at start). Set returns false if it is not a folder.
QString CurrentFolder();
bool SetCurrentFolder(const QString& path);

} // namespace tolvex::platform
