// The line editor: keyboard line input.
#pragma once

// Reads one line into buffer (at most size - 1 characters): a stacked line if there is one,
// otherwise keys with the editing rules. autoCount > 0 ends the input after that many characters.
void Read(char* buffer, unsigned long size, int autoCount);
