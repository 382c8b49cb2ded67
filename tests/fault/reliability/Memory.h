#pragma once

/// The allocations of the whole program, also those of the C library's streams: counted, and made
/// to fail. Memory.cpp is among the sources of a program that asks for it.
namespace memory {

enum class Shortage { None, Once, Ever };

/// From now on: the allocation number `at`, counted from here, fails, or all from that one on.
void Begin(Shortage shortage, long at);

/// From here to GoOn nothing is counted or fails.
void Pause();
void GoOn();

/// Nothing fails any more. How many allocations were asked for since Begin.
long End();

/// How many are not freed yet.
long Alive();

}  // namespace memory
