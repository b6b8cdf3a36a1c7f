#pragma once

/// Before a function: compiled for the processor's widest vectors too; the program takes what the processor
/// has. Such a function neither takes nor returns a vector by value.
#if defined(__x86_64__) && defined(__linux__) && !defined(QUILLMAR_ONE_TARGET)
#define QUILLMAR_EVERY_TARGET __attribute__((target_clones("arch=x86-64-v4", "arch=x86-64-v3", "default")))
#else
#define QUILLMAR_EVERY_TARGET
#endif
