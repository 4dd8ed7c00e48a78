#include "workbench/sensorapi/SensorRequest.h"

#include <cstring>
#include <stdexcept>
#include <type_traits>
#include <utility>

namespace bench {
namespace {

class Writer {
 public:
  template <class T>
  void Plain(const T& value) {
    static_assert(std::is_trivially_copyable_v<T>);
    Raw(&value, sizeof value);
  }
  void Blob(const void* bytes, std::size_t size) {
    Plain(static_cast<std::uint32_t>(size));
    if (size != 0) Raw(bytes, size);
  }
  void Value(const PROPVARIANT& value);
  void Values(const KeyValues& values) {
    Plain(static_cast<std::uint32_t>(values.size()));
    for (const auto& [key, value] : values) {
      Plain(key);
      Value(value.Get());
    }
  }
  template <class T>
  void List(const std::vector<T>& items) {
    Blob(items.data(), items.size() * sizeof(T));
  }
  std::string Take() { return std::move(bytes_); }

 private:
  void Raw(const void* bytes, std::size_t size) {
    bytes_.append(static_cast<const char*>(bytes), size);
  }

  std::string bytes_;
};

void Writer::Value(const PROPVARIANT& value) {
  Plain(value.vt);
  switch (value.vt) {
    case VT_EMPTY:
      break;
    case VT_CLSID:
      Plain(*value.puuid);
      break;
    case VT_LPWSTR: {
      const std::string text = Utf8(value.pwszVal);
      Blob(text.data(), text.size());
      break;
    }
    case kBytes:
      Blob(BytesOf(value).data(), BytesOf(value).size());
      break;
    case VT_UNKNOWN:
      throw std::invalid_argument("an object cannot travel");
    default:
      Plain(value.uhVal);  // the plain types all lie within these eight bytes
  }
}

/// Reads what Writer wrote; past the end everything reads as zero and `ok` is false.
class Reader {
 public:
  explicit Reader(std::string_view bytes) : bytes_(bytes) {}

  template <class T>
  T Plain() {
    T value{};
    const std::string_view raw = Raw(sizeof value);
    if (!raw.empty()) std::memcpy(&value, raw.data(), sizeof value);
    return value;
  }
  std::string_view Blob() { return Raw(Plain<std::uint32_t>()); }
  Variant Value();
  KeyValues Values() {
    KeyValues values;
    for (auto left = Plain<std::uint32_t>(); ok_ && left > 0; --left) {
      const auto key = Plain<PROPERTYKEY>();
      values.push_back({key, Value()});
    }
    return values;
  }
  template <class T>
  std::vector<T> List() {
    const std::string_view raw = Blob();
    if (raw.size() % sizeof(T) != 0) ok_ = false;
    std::vector<T> items(raw.size() / sizeof(T));
    if (!items.empty()) std::memcpy(items.data(), raw.data(), items.size() * sizeof(T));
    return items;
  }
  /// Everything was there, and nothing is left.
  bool Complete() const { return ok_ && bytes_.empty(); }

 private:
  std::string_view Raw(std::size_t size) {
    if (size > bytes_.size()) {
      ok_ = false;
      return {};
    }
    const std::string_view raw = bytes_.substr(0, size);
    bytes_.remove_prefix(size);
    return raw;
  }

  std::string_view bytes_;
  bool ok_ = true;
};

Variant Reader::Value() {
  PROPVARIANT plain{};
  plain.vt = Plain<VARTYPE>();
  switch (plain.vt) {
    case VT_EMPTY:
      return Variant();
    case VT_CLSID:
      return Variant::Guid(Plain<GUID>());
    case VT_LPWSTR:
      return Variant::String(Blob());
    case kBytes: {
      const std::string_view bytes = Blob();
      return Variant::Bytes({reinterpret_cast<const BYTE*>(bytes.data()), bytes.size()});
    }
    default:
      plain.uhVal = Plain<ULARGE_INTEGER>();
  }
  Variant value;
  if (plain.vt == VT_UNKNOWN || FAILED(CopyVariant(plain, value.Put()))) ok_ = false;
  return value;
}

}  // namespace

std::string Encode(const SensorRequest& request) {
  Writer writer;
  writer.Plain(request.operation);
  writer.List(request.keys);
  writer.Values(request.values);
  return writer.Take();
}

std::string Encode(const SensorAnswer& answer) {
  Writer writer;
  writer.Plain(answer.result);
  writer.Plain(answer.values.has_value());
  if (answer.values) writer.Values(*answer.values);
  writer.List(answer.keys);
  writer.List(answer.events);
  return writer.Take();
}

std::optional<SensorRequest> DecodeRequest(std::string_view bytes) {
  Reader reader(bytes);
  SensorRequest request;
  request.operation = static_cast<SensorOperation>(reader.Plain<std::uint8_t>());
  request.keys = reader.List<PROPERTYKEY>();
  request.values = reader.Values();
  const bool known = request.operation <= SensorOperation::kGetSupportedEvents;
  if (!reader.Complete() || !known) return std::nullopt;
  return request;
}

std::optional<SensorAnswer> DecodeAnswer(std::string_view bytes) {
  Reader reader(bytes);
  SensorAnswer answer;
  answer.result = reader.Plain<HRESULT>();
  if (reader.Plain<std::uint8_t>() != 0) answer.values = reader.Values();
  answer.keys = reader.List<PROPERTYKEY>();
  answer.events = reader.List<GUID>();
  if (!reader.Complete()) return std::nullopt;
  return answer;
}

}  // namespace bench
