#include "browsers/activex/property_exchange_win.h"

#include <stdexcept>

#include "browsers/activex/variant_win.h"

namespace Vantrel::Web::ActiveX {

namespace {

// The property as a value of `type`; empty if the container has none that can be one.
void readProperty(IPropertyBag& bag, IErrorLog* log, const wchar_t* name, VARTYPE type,
                  Variant& value) {
  Variant given;
  given.get()->vt = type;  // what the container is asked for; some give what they have
  if (FAILED(bag.Read(name, given.get(), log))) return;
  if (FAILED(VariantChangeType(value.get(), given.get(), 0, type))) VariantClear(value.get());
}

}  // namespace

void BagReader::number(const wchar_t* name, int32_t& value) {
  Variant found;
  readProperty(bag_, log_, name, VT_I4, found);
  if (found.type() == VT_I4) value = found.value().lVal;
}

void BagReader::text(const wchar_t* name, std::wstring& value) {
  Variant found;
  readProperty(bag_, log_, name, VT_BSTR, found);
  if (found.type() == VT_BSTR && found.value().bstrVal != nullptr) value = found.value().bstrVal;
}

void BagWriter::number(const wchar_t* name, int32_t& value) {
  Variant variant;
  variant.get()->vt = VT_I4;
  variant.get()->lVal = value;
  write(name, *variant.get());
}

void BagWriter::text(const wchar_t* name, std::wstring& value) {
  Variant variant;
  variant.get()->vt = VT_BSTR;
  variant.get()->bstrVal = bstrOfWide(value).release();
  write(name, *variant.get());
}

void BagWriter::write(const wchar_t* name, VARIANT& value) {
  const HRESULT written = bag_.Write(name, &value);
  if (SUCCEEDED(result_)) result_ = written;
}

bool StreamReader::read(void* data, ULONG bytes) {
  ULONG got = 0;
  return SUCCEEDED(stream_.Read(data, bytes, &got)) && got == bytes;
}

void StreamReader::number(const wchar_t*, int32_t& value) {
  int32_t found = 0;
  if (read(&found, sizeof found)) value = found;
}

void StreamReader::text(const wchar_t*, std::wstring& value) {
  uint32_t bytes = 0;
  if (!read(&bytes, sizeof bytes)) return;
  if (bytes > kMostBytes || bytes % sizeof(wchar_t) != 0) {
    throw std::runtime_error("A stored text has an impossible length");
  }
  std::wstring found(bytes / sizeof(wchar_t), L'\0');
  if (read(found.data(), bytes)) value = std::move(found);
}

void StreamWriter::number(const wchar_t*, int32_t& value) {
  write(&value, sizeof value);
}

void StreamWriter::text(const wchar_t*, std::wstring& value) {
  const uint64_t length = value.size() * sizeof(wchar_t);
  if (length > StreamReader::kMostBytes)
    throw std::runtime_error("A text is too long to be stored");
  const auto bytes = static_cast<uint32_t>(length);
  write(&bytes, sizeof bytes);
  write(value.data(), bytes);
}

void StreamWriter::write(const void* data, ULONG bytes) {
  ULONG written = 0;
  HRESULT result = stream_.Write(data, bytes, &written);
  if (SUCCEEDED(result) && written != bytes) result = STG_E_MEDIUMFULL;
  if (SUCCEEDED(result_)) result_ = result;
}

}  // namespace Vantrel::Web::ActiveX
