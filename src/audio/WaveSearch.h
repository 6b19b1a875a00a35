// Which wave devices can do a format. Only 16-bit formats count, of 11025, 22050 or 44100 hertz with one or
// two channels; anything else finds nothing. Devices are numbered from 0.
#pragma once

#include "platform/devices/WaveDevices.h"

namespace tolvex {

// The WaveFormatFlag of a format; 0 for one that is not known.
quint32 WaveFormatFlagFor(int rate, int channels);

// The first output from `from` on; -1 when there is none.
int FindSuitableOutput(int from, int rate, int channels);
int CountSuitableOutputs(int rate, int channels);
// The highest numbered one; -1 when there is none.
int LastSuitableOutput(int rate, int channels);
int LastSuitableInput(int rate, int channels);

} // namespace tolvex
