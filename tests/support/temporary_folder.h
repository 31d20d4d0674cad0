// A folder of its own for one test, removed with all that is in it at the end.
#pragma once

#include <sys/stat.h>

#include <filesystem>
#include <fstream>
#include <string>
#include <string_view>

namespace SharedClasses::tests {

class TemporaryFolder {
 public:
  explicit TemporaryFolder(const std::filesystem::path& place = std::filesystem::temp_directory_path()) {
    std::string pattern = (place / "sharedclasses-XXXXXX").string();
    mPath = ::mkdtemp(pattern.data());
  }
  TemporaryFolder(const TemporaryFolder&) = delete;
  TemporaryFolder& operator=(const TemporaryFolder&) = delete;
  ~TemporaryFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(mPath, ignored);
  }

  // A place that is in memory where the system has one: for what is synced so often that a disk would take minutes.
  [[nodiscard]] static std::filesystem::path memory() {
    const std::filesystem::path memory = "/dev/shm";
    return std::filesystem::is_directory(memory) ? memory : std::filesystem::temp_directory_path();
  }

  [[nodiscard]] const std::string& path() const { return mPath; }

  // Writes a file, folders on its way included, and returns its full path.
  std::string write(const std::string& name, std::string_view bytes) const {
    const std::filesystem::path file = std::filesystem::path(mPath) / name;
    std::filesystem::create_directories(file.parent_path());
    std::ofstream(file, std::ios::binary) << bytes;
    return file.string();
  }
  // The same for a script of the shell, which can be run.
  std::string writeProgram(const std::string& name, std::string_view script = "") const {
    const std::string program = write(name, "#!/bin/sh\n" + std::string(script));
    std::filesystem::permissions(program, std::filesystem::perms(0755));
    return program;
  }
  // A named pipe, in the place of a file that is there.
  std::string makePipe(const std::string& name) const {
    const std::string pipe = write(name, "");
    return std::filesystem::remove(pipe) && ::mkfifo(pipe.c_str(), 0600) == 0 ? pipe : "no pipe";
  }

 private:
  std::string mPath;
};

}  // namespace SharedClasses::tests
