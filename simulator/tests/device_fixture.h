// A simulated device of a test's own, driven from outside by zqsim.
#ifndef ZQSIM_DEVICE_FIXTURE_H
#define ZQSIM_DEVICE_FIXTURE_H

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "run_program.h"
#include "temp_dir.h"

class DeviceTest : public testing::Test {
 protected:
  // Makes the device from the profile home-phone.
  void SetUp() override;

  // Runs the words with zqsim, in an environment without a device.
  static ProgramResult Zqsim(std::vector<std::string> words, ProgramSetting setting = {});
  // Runs the words on the device.
  ProgramResult Run(const std::vector<std::string>& words, const ProgramSetting& setting = {}) const;
  // What a shell on the device prints, standard error included; "status N" follows when it fails.
  std::string Shell(const std::string& script, const ProgramSetting& setting = {}) const;

  std::string Root() const { return folder_ / "device"; }
  // The file's place in the machine's file system.
  std::string Place(const std::string& path) const { return Root() + path; }

  TempDir folder_;
};

#endif
