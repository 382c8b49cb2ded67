#pragma once

#include <kestdb.h>

#include <algorithm>
#include <exception>
#include <iostream>
#include <new>

#include "tests/fault/reliability/Endings.h"
#include "tests/fault/reliability/Units.h"

/// Does a step, and returns the worse of the two endings.
template <class Step>
int Try(int ending, Step step) {
  try {
    step();
    return ending;
  } catch (const CKestErr& failure) {
    std::cerr << "reported: " << failure.what() << '\n';
    return std::max<int>(ending, kReported);
  } catch (const NothingMade& failure) {
    std::cerr << "reported: " << failure.what() << '\n';
    return std::max<int>(ending, kReported);
  } catch (const std::bad_alloc&) {
    std::cerr << "reported: std::bad_alloc\n";
    return std::max<int>(ending, kNoMemory);
  } catch (const std::exception& failure) {
    std::cerr << "a foreign exception: " << failure.what() << '\n';
    return std::max<int>(ending, kForeignException);
  }
}

/// Closes the study that is open. One whose closing failed is closed by the second try, without
/// writing at last.
int Close(int ending);
