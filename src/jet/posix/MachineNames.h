// File names on a POSIX system: finds, makes and removes them. The files themselves are in
// MachineStorage.cpp. Everything throws jet::Error with the path and the system's message.
#pragma once

#include "jet/base/Error.h"

#include <string>

#include <sys/stat.h>

namespace jet {

// Throws the error for an errno. `otherwise`: the number for an errno without one of its own.
[[noreturn]] void FailAtFile(const std::string& path, const char* what, int error, ErrorNumber otherwise);

bool IsSameFile(const struct stat& one, const struct stat& other);

// Makes new names in the folder of a path durable.
void FlushFolderOf(const std::string& path);

// The end of a chain of links that begins at a path, whether it exists or not. A parent folder may still be a
// link.
std::string FollowLinks(const std::string& path);

// Implementations of exists(), remove(), rename(), publish() and link() of Storage.
bool FileIsThere(const std::string& path);
void RemoveName(const std::string& path);
void RenameFile(const std::string& from, const std::string& to);
void PublishFile(const std::string& from, const std::string& to);
bool LinkFile(const std::string& path, const std::string& second);

} // namespace jet
