#include "workbench/modem/TextFile.h"

#include <array>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <memory>

namespace bench {

namespace {

std::FILE* OpenToRead(const std::string& path) {
#ifdef _WIN32
  return _wfopen(FromUtf8(path).c_str(), L"rb");
#else
  return std::fopen(path.c_str(), "rb");
#endif
}

}  // namespace

std::filesystem::path FromUtf8(const std::string& text) {
  return {std::u8string(text.begin(), text.end())};
}

std::string ToUtf8(const std::filesystem::path& path) {
  const std::u8string text = path.generic_u8string();
  return {text.begin(), text.end()};
}

Outcome<std::string> ReadWholeFile(const std::string& path) {
  const auto why = [&path] {
    return NoValue<std::string>(path + ": cannot be read: " + std::strerror(errno));
  };
  struct Closer {
    void operator()(std::FILE* file) const { std::fclose(file); }
  };
  const std::unique_ptr<std::FILE, Closer> file(OpenToRead(path));
  if (!file) return why();
  std::string text;
  std::array<char, 1 << 16> block;
  while (const std::size_t count = std::fread(block.data(), 1, block.size(), file.get())) {
    text.append(block.data(), count);
  }
  if (std::ferror(file.get()) != 0) return why();
  return {.value = std::move(text), .error = {}};
}

}  // namespace bench
