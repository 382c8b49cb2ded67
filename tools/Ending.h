#pragma once

#include <exception>
#include <stdexcept>
#include <string>

/// How a command ends: the exit status of the program.
enum Status : int {
  kDone = 0,
  kFault = 1,      ///< the data has a fault
  kWrongUse = 2,   ///< the command line asks for what there isn't
  kLocked = 3,     ///< somebody else holds the lock
  kNotOpened = 4,  ///< a file can't be opened or made
};

/// Ends a command with a message for its user.
class Refusal : public std::runtime_error {
 public:
  Refusal(Status status, const std::string& message)
      : std::runtime_error(message), status_(status) {}
  Status GetStatus() const { return status_; }

 private:
  Status status_;
};

/// Ends a command because its user asked for that by a signal.
class Interrupted : public std::exception {
 public:
  const char* what() const noexcept override { return "interrupted"; }
};
