#pragma once

#include <optional>
#include <string>
#include <utility>
#include <variant>

namespace foundation {

/// Why something failed: a domain, a code within it, and a text for people.
class Error {
 public:
  Error(std::string domain, long code, std::string localizedDescription);

  /// An error of the operating system (domain "NSPOSIXErrorDomain").
  ///
  /// `code` is an errno value, `operation` the call and its operand ("open /tmp/x"); the
  /// description is the operation, a colon, a blank and the system's text for the code.
  static Error posix(int code, std::string operation);

  const std::string& domain() const { return domain_; }
  long code() const { return code_; }
  const std::string& localizedDescription() const { return localizedDescription_; }

  /// What log lines print: the localised description.
  const std::string& description() const { return localizedDescription_; }

  friend bool operator==(const Error&, const Error&) = default;

 private:
  std::string domain_;
  long code_;
  std::string localizedDescription_;
};

/// A value, or the error that stands in its place.
template <class T>
class [[nodiscard]] Result {
 public:
  Result(T value) : content_(std::in_place_index<0>, std::move(value)) {}
  Result(Error error) : content_(std::in_place_index<1>, std::move(error)) {}

  explicit operator bool() const { return content_.index() == 0; }

  /// The value; only when there is one.
  T& operator*() & { return *std::get_if<0>(&content_); }
  const T& operator*() const& { return *std::get_if<0>(&content_); }
  T&& operator*() && { return std::move(*std::get_if<0>(&content_)); }
  T* operator->() { return std::get_if<0>(&content_); }
  const T* operator->() const { return std::get_if<0>(&content_); }

  /// The error; only when there is no value.
  const Error& error() const { return *std::get_if<1>(&content_); }

 private:
  std::variant<T, Error> content_;
};

/// Success, or the error that stands in its place.
template <>
class [[nodiscard]] Result<void> {
 public:
  Result() = default;
  Result(Error error) : error_(std::move(error)) {}

  explicit operator bool() const { return !error_; }
  const Error& error() const { return *error_; }

 private:
  std::optional<Error> error_;
};

}  // namespace foundation
