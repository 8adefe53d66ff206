#ifndef QORVEL_PLATFORM_COM_WINDOWS_H_
#define QORVEL_PLATFORM_COM_WINDOWS_H_

// Owning holders for COM pointers and BSTRs, and the text conversions of the Windows face.

#include <windows.h>

#include <oleauto.h>

#include <string>
#include <string_view>
#include <utility>

namespace qorvel::win {

// An interface pointer this holder owns one reference to.
template <class T>
class ComPtr {
 public:
  ComPtr() = default;
  // Takes a new reference to `p`.
  explicit ComPtr(T* p) : p_(p) {
    if (p_) p_->AddRef();
  }
  // Takes over the reference the caller holds.
  static ComPtr Attach(T* p) {
    ComPtr result;
    result.p_ = p;
    return result;
  }
  ComPtr(const ComPtr& other) : ComPtr(other.p_) {}
  ComPtr(ComPtr&& other) noexcept : p_(std::exchange(other.p_, nullptr)) {}
  ComPtr& operator=(ComPtr other) noexcept {
    std::swap(p_, other.p_);
    return *this;
  }
  ~ComPtr() { reset(); }

  T* get() const { return p_; }
  T* operator->() const { return p_; }
  explicit operator bool() const { return p_ != nullptr; }
  // For a call that hands out a new reference: releases what is held first.
  T** put() {
    reset();
    return &p_;
  }
  void** put_void() { return reinterpret_cast<void**>(put()); }
  // Hands the reference to the caller.
  T* detach() { return std::exchange(p_, nullptr); }
  void reset() {
    if (T* p = std::exchange(p_, nullptr)) p->Release();
  }

 private:
  T* p_ = nullptr;
};

// UTF-8 (the library's text) to UTF-16 (the platform's) and back.
std::wstring Widen(std::string_view utf8);
std::string Narrow(const wchar_t* text, size_t length);
inline std::string Narrow(BSTR text) { return text ? Narrow(text, SysStringLen(text)) : ""; }

// A BSTR this holder frees.
class Bstr {
 public:
  Bstr() = default;
  explicit Bstr(std::string_view utf8);
  Bstr(const Bstr&) = delete;
  Bstr& operator=(const Bstr&) = delete;
  ~Bstr() { SysFreeString(b_); }
  BSTR get() const { return b_; }
  BSTR* put() {
    SysFreeString(b_);
    b_ = nullptr;
    return &b_;
  }
  BSTR detach() { return std::exchange(b_, nullptr); }

 private:
  BSTR b_ = nullptr;
};

// A VARIANT this holder clears.
struct UniqueVariant : VARIANT {
  UniqueVariant() { VariantInit(this); }
  UniqueVariant(const UniqueVariant&) = delete;
  UniqueVariant& operator=(const UniqueVariant&) = delete;
  ~UniqueVariant() { VariantClear(this); }
};

}  // namespace qorvel::win

#endif  // QORVEL_PLATFORM_COM_WINDOWS_H_
