// Drives and paths: where a Windows path of the suite lies on this machine.
//
// Settings hold Windows paths ("C:\TOLVEX\SYSTEM", "M:", "\\SERVER\SHARE\X"). On Windows they are used as
// they stand. Elsewhere they are resolved against one machine folder, laid out as Wine lays out a prefix:
// dosdevices/c: and the like are folders or links, dosdevices/z: is "/", dosdevices/com1 and the like link to
// devices, dosdevices/unc/SERVER/SHARE holds shares. Names match without regard to case, component by
// component; an exact spelling wins over another one, and among others the first in byte order. Only this
// floor and jet/ see host paths; above it they serve for showing only.
#pragma once

#include <QString>

namespace tolvex::platform {

// Chooses the machine folder (a host path, made with its drive C: if missing). Empty: $TOLVEX_HOME, else
// $XDG_DATA_HOME/tolvex, else ~/.local/share/tolvex. Drops every cache. False, with a sentence in *why, when
// the folder cannot be made or used.
bool SetMachineFolder(const QString& hostFolder, QString* why = nullptr);

// Host path of the machine folder in force; SetMachineFolder({}) is done first where nobody did it.
QString MachineFolder();

// The host path for a Windows path. Existing components resolve without regard to case, the exact spelling
// first; components that do not exist are taken as they are spelled. "/" separates as "\" does. A bare name
// resolves to the Windows folder (the rule of the private profile files) when `bareNameIn` is WindowsFolder,
// else to the current folder of the current drive. ".." never leaves a drive's or share's root. Empty when
// the path is empty, names a drive or share that is not there, or holds a zero character. Cost: one hash
// look-up a component while the folders are unchanged, one stat a folder to know that; one stat in all for a
// path that exists as it is spelled.
enum class BareName { WindowsFolder, CurrentFolder };
QString HostPath(const QString& path, BareName bareName = BareName::CurrentFolder);

// The Windows path of a host path, by the drive whose folder holds it most closely (so Z: for anything else).
QString WindowsPath(const QString& hostPath);

// "C:\WINDOWS" and "C:\WINDOWS\SYSTEM32" off Windows; at most 145 characters.
QString WindowsFolder();
QString SystemFolder();

// The folder for temporary files, without a trailing backslash ("C:\WINDOWS\TEMP" off Windows).
QString TempFolder();

// The folder that holds this program, as a Windows path without a trailing backslash. Tests may set another.
QString ApplicationFolder();
void SetApplicationFolder(const QString& windowsPath);

// A file that comes with the program ("config.chm"), as a Windows path: in the folder of the program, where a
// build and a station's own copy lie, else in the shared data of an installed program. That folder is found
// relative to the program, so an installation that was moved as a whole finds its files. The path in the
// folder of the program when the file is in neither.
QString ApplicationFile(const QString& name);

// The path of a shell folder by its number (0x26 is program files, 0x2B common files), or empty where there
// is none.
QString SpecialFolderPath(int number);

// The short (8.3) form of a path whose file or folder exists: stable from call to call, and it resolves back
// to the same file. At most 1023 characters; empty when the path does not exist.
QString ShortPath(const QString& path);

// Bit 0 is A:, bit 25 Z:; a set bit means that the drive is there.
quint32 LogicalDrives();

// The platform's numbers: 0 unknown, 1 no such drive, 2 removable, 3 fixed, 4 remote, 5 CD-ROM, 6 RAM disk.
// From the file system behind the drive's link. Tests put another type in place, until the next
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

// The current drive and folder, as a Windows path ("C:\" at start). Set gives false when it is not a folder.
QString CurrentFolder();
bool SetCurrentFolder(const QString& path);

} // namespace tolvex::platform
