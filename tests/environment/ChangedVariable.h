#pragma once

#include <cstdlib>
#include <optional>
#include <string>

/// An environment variable with another value, or none, for the time of a test.
class ChangedVariable {
 public:
  ChangedVariable(const std::string& name, const std::optional<std::string>& value) : m_name(name) {
    if (const char* old = std::getenv(name.c_str())) m_old = old;
    Set(value);
  }
  ChangedVariable(const ChangedVariable&) = delete;
  ChangedVariable& operator=(const ChangedVariable&) = delete;
  ~ChangedVariable() { Set(m_old); }

 private:
  void Set(const std::optional<std::string>& value) {
    if (value) {
      setenv(m_name.c_str(), value->c_str(), 1);
    } else {
      unsetenv(m_name.c_str());
    }
  }

  std::string m_name;
  std::optional<std::string> m_old;
};
