// An environment variable for the length of a test.
#ifndef ZQ_TEST_ENVIRONMENT_SETTING_H
#define ZQ_TEST_ENVIRONMENT_SETTING_H

#include <cstdlib>
#include <optional>
#include <string>

class EnvironmentSetting {
 public:
  // A null value unsets it.
  EnvironmentSetting(const char* name, const char* value) : name_(name) {
    if (const char* before = getenv(name)) before_ = before;
    Set(value);
  }
  EnvironmentSetting(const EnvironmentSetting&) = delete;
  EnvironmentSetting& operator=(const EnvironmentSetting&) = delete;
  ~EnvironmentSetting() { Set(before_ ? before_->c_str() : nullptr); }

 private:
  void Set(const char* value) const {
    if (value != nullptr) {
      setenv(name_.c_str(), value, 1);
    } else {
      unsetenv(name_.c_str());
    }
  }

  const std::string name_;
  std::optional<std::string> before_;
};

#endif
