#include "qorvel/platform/launcher.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <fstream>
#include <string>

#include "qorvel/platform/error.h"

namespace qorvel {
namespace {

std::string WriteFile(const std::string& name, const std::string& text, mode_t mode) {
  std::string path = testing::TempDir() + name;
  std::ofstream(path) << text;
  chmod(path.c_str(), mode);
  return path;
}

TEST(LauncherTest, InstalledAndRealProgramsStartWithAProcessId) {
  PortableLauncher launcher;
  int started = 0;
  launcher.InstallProgram("C:\\Programs\\host.exe", [&] { ++started; });
  int32_t first = launcher.LaunchProgram("C:\\Programs\\host.exe", 1);
  int32_t second = launcher.LaunchProgram("C:\\Programs\\host.exe", 2);
  EXPECT_EQ(started, 2);
  EXPECT_GT(first, 0);
  EXPECT_NE(first, second);
  std::string script = WriteFile("qorvel_launch_ok.sh", "#!/bin/sh\nexit 0\n", 0755);
  EXPECT_GT(launcher.LaunchProgram(script, 1), 0);
  EXPECT_GT(launcher.LaunchProgram(script, 1), 0);  // and the first one is collected
}

TEST(LauncherTest, WhatCannotBeStartedIsFileNotFound) {
  PortableLauncher launcher;
  const std::string paths[] = {
      "C:\\Program Files\\Halvern\\Zebrin\\2300\\zebrin.exe",
      testing::TempDir() + "qorvel_no_such_program",
      WriteFile("qorvel_launch_plain.sh", "#!/bin/sh\nexit 0\n", 0644),
      WriteFile("qorvel_launch_garbage", "\x01\x02 not a program", 0755),
      testing::TempDir(),
      "",
  };
  for (const std::string& path : paths) {
    try {
      launcher.LaunchProgram(path, 1);
      ADD_FAILURE() << "started " << path;
    } catch (const Error& e) {
      EXPECT_EQ(e.number(), err::kFileNotFound) << path;
      EXPECT_EQ(e.description(), "File not found");
    }
  }
}

}  // namespace
}  // namespace qorvel
