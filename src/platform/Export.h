#pragma once

// Marks the few symbols a shared library of this project offers to others.
#if defined(_WIN32)
#define PLCDB_EXPORT __declspec(dllexport)
#else
#define PLCDB_EXPORT __attribute__((visibility("default")))
#endif
