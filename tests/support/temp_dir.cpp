#include "tests/support/temp_dir.h"

#include <atomic>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <stdexcept>

namespace fs = std::filesystem;

namespace qb::test {

TempDir::TempDir() {
  static std::atomic<unsigned> counter{0};
  std::random_device rd;
  const fs::path base = fs::temp_directory_path();
  for (int attempt = 0; attempt < 100; ++attempt) {
    fs::path p = base / ("qbtest-" + std::to_string(rd()) + "-" + std::to_string(counter++));
    std::error_code ec;
    if (fs::create_directory(p, ec)) {
      path_ = p.string();  // ends with the folder's name, not a separator
      return;
    }
  }
  throw std::runtime_error("cannot create a temporary folder");
}

TempDir::~TempDir() {
  std::error_code ec;
  fs::remove_all(path_, ec);
}

std::string TempDir::File(const std::string& name) const {
  return path_ + static_cast<char>(fs::path::preferred_separator) + name;
}

std::vector<std::uint8_t> ReadBytes(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  return std::vector<std::uint8_t>(std::istreambuf_iterator<char>(in), {});
}

std::string ReadText(const std::string& path) {
  const std::vector<std::uint8_t> bytes = ReadBytes(path);
  return std::string(bytes.begin(), bytes.end());
}

void WriteBytes(const std::string& path, const std::vector<std::uint8_t>& bytes) {
  std::ofstream out(path, std::ios::binary | std::ios::trunc);
  out.write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
}

void WriteText(const std::string& path, const std::string& text) { WriteBytes(path, {text.begin(), text.end()}); }

bool FileExists(const std::string& path) {
  std::error_code ec;
  return fs::exists(path, ec);
}

}  // namespace qb::test
