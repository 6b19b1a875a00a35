// Names of files on a POSIX system: looking for them, giving and taking them. The files themselves are in
// MachineStorage.cpp. Everything throws jet::Error with the path and what the system said.
#pragma once

#include "jet/base/Error.h"

#include <string>

#include <sys/stat.h>

namespace jet {

// Throws the error for an errno. `otherwise`: the number for what has none of its own.
[[noreturn]] void FailAtFile(const std::string& path, const char* what, int error, ErrorNumber otherwise);

bool IsSameFile(const struct stat& one, const struct stat& other);

// Makes names made in the folder of a path survive a power cut.
void FlushFolderOf(const std::string& path);

// Where a chain of links that begins at a path ends, whether something is there or not. A folder above may
// still be a link.
std::string FollowLinks(const std::string& path);

// What Storage promises of exists(), remove(), rename(), publish() and link().
bool FileIsThere(const std::string& path);
void RemoveName(const std::string& path);
void RenameFile(const std::string& from, const std::string& to);
void PublishFile(const std::string& from, const std::string& to);
bool LinkFile(const std::string& path, const std::string& second);

} // namespace jet
