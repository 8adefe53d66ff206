#include "windows/server/property_stream.h"

#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

#include "qorvel/platform/error.h"

namespace qorvel::win {
namespace {

constexpr char kMagic[4] = {'Q', 'V', 'P', 'B'};
constexpr uint16_t kVersion = 1;
constexpr size_t kHeaderBytes = 12;
// Far beyond what any control saves; a larger size is a damaged stream, not a big control.
constexpr uint32_t kMostPayloadBytes = 64 * 1024;

[[noreturn]] void Malformed(HRESULT hr, const std::string& why) {
  throw Error(static_cast<int32_t>(hr), "The saved control state can't be read: " + why);
}

class Writer {
 public:
  template <class T>
  void Put(T value) {
    uint8_t raw[sizeof(T)];
    std::memcpy(raw, &value, sizeof(T));
    bytes_.insert(bytes_.end(), raw, raw + sizeof(T));
  }
  void PutText(const std::string& text) { bytes_.insert(bytes_.end(), text.begin(), text.end()); }
  std::vector<uint8_t>& bytes() { return bytes_; }

 private:
  std::vector<uint8_t> bytes_;
};

class Reader {
 public:
  explicit Reader(const std::vector<uint8_t>& bytes) : bytes_(bytes) {}
  template <class T>
  T Get() {
    Need(sizeof(T));
    T value;
    std::memcpy(&value, bytes_.data() + at_, sizeof(T));
    at_ += sizeof(T);
    return value;
  }
  std::string GetText(size_t length) {
    Need(length);
    std::string text(reinterpret_cast<const char*>(bytes_.data()) + at_, length);
    at_ += length;
    return text;
  }
  bool done() const { return at_ == bytes_.size(); }

 private:
  void Need(size_t n) const {
    if (bytes_.size() - at_ < n) Malformed(E_FAIL, "an entry runs past the declared size");
  }
  const std::vector<uint8_t>& bytes_;
  size_t at_ = 0;
};

void PutValue(Writer& out, const std::string& name, const Variant& value) {
  switch (value.type()) {
    case VarType::kInteger:
      out.Put<uint16_t>(VT_I2);
      out.Put<int16_t>(value.ToInteger());
      break;
    case VarType::kBool:
      out.Put<uint16_t>(VT_BOOL);
      out.Put<int16_t>(RawBool(value.ToBool()));
      break;
    case VarType::kLong:
      out.Put<uint16_t>(VT_I4);
      out.Put<int32_t>(value.ToLong());
      break;
    case VarType::kDouble:
      out.Put<uint16_t>(VT_R8);
      out.Put<double>(value.ToDouble());
      break;
    case VarType::kText: {
      const std::string text = value.ToText();
      out.Put<uint16_t>(VT_BSTR);
      out.Put<uint32_t>(static_cast<uint32_t>(text.size()));
      out.PutText(text);
      break;
    }
    default:
      throw Error(static_cast<int32_t>(E_FAIL),
                  "The property " + name + " has a type a stream can't hold");
  }
}

Variant GetValue(Reader& in, const std::string& name) {
  switch (in.Get<uint16_t>()) {
    case VT_I2:
      return in.Get<int16_t>();
    case VT_BOOL:
      return MakeVariantBool(in.Get<int16_t>());
    case VT_I4:
      return in.Get<int32_t>();
    case VT_R8:
      return in.Get<double>();
    case VT_BSTR:
      return in.GetText(in.Get<uint32_t>());
    default:
      Malformed(E_FAIL, "the property " + name + " has an unknown type");
  }
}

void WriteAll(IStream* stream, const void* data, ULONG size) {
  ULONG written = 0;
  const HRESULT hr = stream->Write(data, size, &written);
  if (FAILED(hr)) throw Error(static_cast<int32_t>(hr), "The control state can't be written");
  if (written != size) throw Error(static_cast<int32_t>(STG_E_MEDIUMFULL), "The stream is full");
}

void ReadAll(IStream* stream, void* data, ULONG size) {
  ULONG read = 0;
  const HRESULT hr = stream->Read(data, size, &read);
  if (FAILED(hr)) throw Error(static_cast<int32_t>(hr), "The saved control state can't be read");
  if (read != size) Malformed(STG_E_READFAULT, "the stream ends early");
}

}  // namespace

void WritePropertyStream(const PropertyBag& bag, IStream* stream) {
  Writer payload;
  for (const auto& [name, value] : bag.entries()) {
    if (name.size() > 255) Malformed(E_FAIL, "a property name is too long");
    payload.Put<uint8_t>(static_cast<uint8_t>(name.size()));
    payload.PutText(name);
    PutValue(payload, name, value);
  }
  Writer header;
  header.PutText(std::string(kMagic, sizeof(kMagic)));
  header.Put<uint16_t>(kVersion);
  header.Put<uint16_t>(static_cast<uint16_t>(bag.size()));
  header.Put<uint32_t>(static_cast<uint32_t>(payload.bytes().size()));
  WriteAll(stream, header.bytes().data(), static_cast<ULONG>(header.bytes().size()));
  if (!payload.bytes().empty()) {
    WriteAll(stream, payload.bytes().data(), static_cast<ULONG>(payload.bytes().size()));
  }
}

PropertyBag ReadPropertyStream(IStream* stream) {
  std::vector<uint8_t> header(kHeaderBytes);
  ReadAll(stream, header.data(), kHeaderBytes);
  if (std::memcmp(header.data(), kMagic, sizeof(kMagic)) != 0) {
    Malformed(E_FAIL, "it is not in this library's format");
  }
  Reader head(header);
  head.GetText(sizeof(kMagic));
  const uint16_t version = head.Get<uint16_t>();
  const uint16_t count = head.Get<uint16_t>();
  const uint32_t size = head.Get<uint32_t>();
  if (version != kVersion) Malformed(E_FAIL, "version " + std::to_string(version) + " is unknown");
  if (size > kMostPayloadBytes) Malformed(E_FAIL, "its declared size is too large");
  std::vector<uint8_t> payload(size);
  if (size > 0) ReadAll(stream, payload.data(), size);
  Reader in(payload);
  PropertyBag bag;
  for (uint16_t i = 0; i < count; ++i) {
    const std::string name = in.GetText(in.Get<uint8_t>());
    if (name.empty()) Malformed(E_FAIL, "a property has no name");
    if (bag.Contains(name)) Malformed(E_FAIL, "the property " + name + " comes twice");
    bag.Append(name, GetValue(in, name));
  }
  if (!in.done()) Malformed(E_FAIL, "there is more than its entries");
  return bag;
}

}  // namespace qorvel::win
