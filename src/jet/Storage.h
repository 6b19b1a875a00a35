// Where database files lie: the machine's disks, or a program's replacement.
#pragma once

#include "jet/base/Storage.h" // IWYU pragma: export
