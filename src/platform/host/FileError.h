// Error numbers of the suite's run-time for files and folders, as its error reports show them.
#pragma once

namespace tolvex::platform {

enum FileError : int {
    NoError = 0,
    BadFileNumber = 52,
    FileNotFound = 53,
    FileAlreadyOpen = 55,
    DeviceIoError = 57,
    FileAlreadyExists = 58,
    BadRecordLength = 59,
    DiskFull = 61,
    PastEndOfFile = 62,
    BadRecordNumber = 63,
    PermissionDenied = 70,
    DiskNotReady = 71,
    PathFileAccess = 75,
    PathNotFound = 76,
};

} // namespace tolvex::platform
