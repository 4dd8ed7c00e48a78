#include "workbench/trace/TraceFormats.h"

#include <algorithm>
#include <filesystem>
#include <functional>
#include <regex>

#include "workbench/modem/TextFile.h"
#include "workbench/modem/TextNumber.h"

namespace bench {

namespace {

constexpr std::string_view kLevelPrefix = "TRACE_LEVEL_";
constexpr std::size_t kLongestLine = 4096;

std::string LevelName(std::string text) {
  if (text.starts_with(kLevelPrefix)) text.erase(0, kLevelPrefix.size());
  std::ranges::transform(text, text.begin(), [](char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
  });
  return text;
}

/// Reads one file line by line: a GUID line, and blocks of a message line, "{", items and "}".
class FileReader {
 public:
  using Sink = std::function<void(const std::string& guid, unsigned number, TraceFormat format)>;
  explicit FileReader(Sink sink) : sink_(std::move(sink)) {}

  /// What is wrong with the line, or nothing.
  std::string Read(const std::string& line) {
    if (inBlock_) return ReadItem(line);
    if (line == "{") {
      if (!inMessage_) return "a block of arguments without its message";
      inBlock_ = true;
      return {};
    }
    if (inMessage_) return "the message before has no block of arguments";
    if (line.empty() || line.starts_with("//")) return {};
    return line.starts_with("#typev") ? ReadMessage(line) : ReadGuid(line);
  }

  /// What is wrong with the end of the file, or nothing.
  std::string End() const {
    if (inMessage_) return "the file ends within a message";
    return guid_.empty() ? "the file has no GUID line" : "";
  }

 private:
  std::string ReadGuid(const std::string& line) {
    static const std::regex kLine(
        R"(([0-9a-f]{8}(?:-[0-9a-f]{4}){3}-[0-9a-f]{12}) \S+ // SRC=(\S+) MJ=\S* MN=\S*\s*)");
    std::smatch found;
    if (!std::regex_match(line, found, kLine)) return "neither a comment, a GUID nor a message";
    guid_ = found[1];
    source_ = found[2];
    return {};
  }

  std::string ReadMessage(const std::string& line) {
    static const std::regex kLine(
        R"re(#typev \w+ (\d+) "%0(.*)" //\s*LEVEL=(\w+) FLAGS=(\w+) FUNC=(~?\w+)\s*)re");
    if (guid_.empty()) return "a message before the GUID line";
    std::smatch found;
    if (!std::regex_match(line, found, kLine)) return "a message that cannot be read";
    const auto number = ToNumber<USHORT>(found[1].str());
    if (!number) return "a message number that is none: " + found[1].str();
    number_ = *number;
    format_ = {source_, LevelName(found[3]), found[4], found[5], found[2]};
    inMessage_ = true;
    return {};
  }

  std::string ReadItem(const std::string& line) {
    if (line == "}") {
      inBlock_ = inMessage_ = false;
      std::ranges::stable_sort(format_.items, {}, &TraceItem::insert);
      sink_(guid_, number_, std::move(format_));
      return {};
    }
    static const std::regex kLine(R"(.*, (Item\w+(?:\(.*\))?) -- (\d{1,4})\s*)");
    std::smatch found;
    if (!std::regex_match(line, found, kLine)) return "an argument that cannot be read";
    auto item = ItemOfType(found[1].str());
    if (!item) return "an argument of a type that is not known: " + found[1].str();
    item->insert = std::stoi(found[2]);
    format_.items.push_back(std::move(*item));
    return {};
  }

  const Sink sink_;
  std::string guid_;
  std::string source_;
  TraceFormat format_;
  USHORT number_ = 0;
  bool inMessage_ = false;
  bool inBlock_ = false;
};

}  // namespace

std::string TraceFormats::Add(std::string_view text, const std::string& name) {
  FileReader reader([this](const std::string& guid, unsigned number, TraceFormat format) {
    formats_[{guid, number}] = std::move(format);
  });
  std::size_t count = 0;
  for (std::size_t at = 0; at < text.size();) {
    const std::size_t end = std::min(text.find('\n', at), text.size());
    std::string line(text.substr(at, end - at));
    if (line.ends_with('\r')) line.pop_back();
    at = end + 1;
    ++count;
    const bool isLong = line.size() > kLongestLine;
    if (const std::string wrong = isLong ? "the line is too long" : reader.Read(line);
        !wrong.empty()) {
      return name + ":" + std::to_string(count) + ": " + wrong;
    }
  }
  const std::string wrong = reader.End();
  return wrong.empty() ? wrong : name + ": " + wrong;
}

Outcome<TraceFormats> TraceFormats::Load(const std::string& folder) {
  std::error_code error;
  const std::filesystem::path path = FromUtf8(folder);
  std::vector<std::string> files;
  for (std::filesystem::directory_iterator entry(path, error), end; !error && entry != end;
       entry.increment(error)) {
    if (entry->path().extension() != ".tmf") continue;
    files.push_back(ToUtf8(entry->path()));
  }
  if (error) return NoValue<TraceFormats>(folder + ": cannot be read: " + error.message());
  if (files.empty())
    return NoValue<TraceFormats>(folder + ": no trace format (.tmf) file is there");
  std::ranges::sort(files);
  TraceFormats formats;
  for (const std::string& file : files) {
    const auto text = ReadWholeFile(file);
    if (!text) return NoValue<TraceFormats>(text.error);
    if (std::string wrong = formats.Add(*text.value, file); !wrong.empty()) {
      return NoValue<TraceFormats>(std::move(wrong));
    }
  }
  return {.value = std::move(formats), .error = {}};
}

const TraceFormat* TraceFormats::Find(const GUID& message, USHORT number) const {
  const auto found = formats_.find({GuidText(message), number});
  return found == formats_.end() ? nullptr : &found->second;
}

}  // namespace bench
