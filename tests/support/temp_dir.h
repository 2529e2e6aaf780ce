// A fresh temporary folder per test, removed with everything in it afterwards.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace qb::test {

class TempDir {
 public:
  TempDir();
  ~TempDir();
  TempDir(const TempDir&) = delete;
  TempDir& operator=(const TempDir&) = delete;

  // The folder, without a trailing separator.
  const std::string& path() const { return path_; }
  // path() + separator + name
  std::string File(const std::string& name) const;

 private:
  std::string path_;
};

std::vector<std::uint8_t> ReadBytes(const std::string& path);
std::string ReadText(const std::string& path);
void WriteBytes(const std::string& path, const std::vector<std::uint8_t>& bytes);
void WriteText(const std::string& path, const std::string& text);
bool FileExists(const std::string& path);

}  // namespace qb::test
