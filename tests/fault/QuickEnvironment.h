#pragma once

// A program with QuickEnvironment.cpp among its sources logs nothing and waits for nothing.

/// How many times LError and LWarn were called since the start of the program.
int LoggedFaults();
