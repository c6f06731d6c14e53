// The control's properties on their way between it and a container: from a property bag, from and
// to a stream, or from nowhere. On the stack of one call of the container.
//
// What cannot be read stays as it was, but a stream that is no record of ours throws
// std::runtime_error.
#pragma once

#include <windows.h>
#include <ocidl.h>

#include <cstdint>
#include <string>

namespace Vantrel::Web::ActiveX {

class PropertyExchange {
 public:
  virtual ~PropertyExchange() = default;
  virtual void number(const wchar_t* name, int32_t& value) = 0;
  virtual void text(const wchar_t* name, std::wstring& value) = 0;

 protected:
  PropertyExchange() = default;
  PropertyExchange(const PropertyExchange&) = default;
  PropertyExchange& operator=(const PropertyExchange&) = default;
};

// Nothing is known: all stays as it is.
class ResetExchange : public PropertyExchange {
 public:
  void number(const wchar_t*, int32_t&) override {}
  void text(const wchar_t*, std::wstring&) override {}
};

class BagReader : public PropertyExchange {
 public:
  // `log`, where the container wants to hear of failures, may be null.
  BagReader(IPropertyBag& bag, IErrorLog* log) : bag_(bag), log_(log) {}
  void number(const wchar_t* name, int32_t& value) override;
  void text(const wchar_t* name, std::wstring& value) override;

 private:
  IPropertyBag& bag_;
  IErrorLog* const log_;
};

class BagWriter : public PropertyExchange {
 public:
  explicit BagWriter(IPropertyBag& bag) : bag_(bag) {}
  void number(const wchar_t* name, int32_t& value) override;
  void text(const wchar_t* name, std::wstring& value) override;
  // The first failure.
  HRESULT result() const { return result_; }

 private:
  void write(const wchar_t* name, VARIANT& value);

  IPropertyBag& bag_;
  HRESULT result_ = S_OK;
};

// A record in a stream: properties in their order without their names, numbers of 32 bits, texts
// behind their length in bytes. One that ends early leaves the rest as it was.
class StreamReader : public PropertyExchange {
 public:
  // The longest text that is taken.
  static constexpr uint32_t kMostBytes = 1U << 20;

  explicit StreamReader(IStream& stream) : stream_(stream) {}
  void number(const wchar_t* name, int32_t& value) override;
  void text(const wchar_t* name, std::wstring& value) override;

 private:
  bool read(void* data, ULONG bytes);

  IStream& stream_;
};

class StreamWriter : public PropertyExchange {
 public:
  explicit StreamWriter(IStream& stream) : stream_(stream) {}
  void number(const wchar_t* name, int32_t& value) override;
  void text(const wchar_t* name, std::wstring& value) override;
  HRESULT result() const { return result_; }

 private:
  void write(const void* data, ULONG bytes);

  IStream& stream_;
  HRESULT result_ = S_OK;
};

}  // namespace Vantrel::Web::ActiveX
