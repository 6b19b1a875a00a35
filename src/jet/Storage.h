// Where database files lie: the machine's disks, or what a program puts in their place.
#pragma once

#include "jet/base/Storage.h" // IWYU pragma: export
