#pragma once

// Showing the first window touches a few megabytes of fresh memory once: its backing store,
// the item list's row header, the widgets themselves. Taken a 4 KB page at a time, that is a
// thousand page faults on the window's thread, over a millisecond of the start. This lays the
// heap out so the memory comes from a few 2 MB pages instead, where the system offers them.
//
// Blocks of up to 32 MB then come from the heap rather than from mappings of their own, and
// freed memory up to 64 MB stays in the heap for the next ones: the ceilings glibc's own
// thresholds rise to as a program runs, taken at once.
//
// Call first thing in main(), before the window's memory is asked for (threads already running
// keep heaps of their own). Does nothing after the first call, or where the C library or the
// system offers none of this.
void reserveStartupHeap();
