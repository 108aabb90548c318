#pragma once

#include <concepts>
#include <cstdint>
#include <typeinfo>

#include "foundation/Registered.h"

/// A class with a log level of its own, which `DDLog` knows by the class or by its name.
///
/// The class has two static members and announces itself in its body:
///
///     class Downloader {
///      public:
///       static std::uint32_t ddLogLevel();
///       static void ddSetLogLevel(std::uint32_t level);
///       DD_REGISTER_CLASS(Downloader);
///     };
///
/// Every source that includes the header carries the registration, so it happens wherever the class
/// is used, also when the class comes from a static library whose other object files are dropped.
/// A registration lives until the process ends. Thread safety: any thread.
class DDRegisteredClass : public foundation::Registered<DDRegisteredClass> {
 public:
  template <class T>
  static DDRegisteredClass registration() {
    static_assert(
        requires(std::uint32_t level) {
          { T::ddLogLevel() } -> std::same_as<std::uint32_t>;
          { T::ddSetLogLevel(level) } -> std::same_as<void>;
        },
        "a registered class has both ddLogLevel and ddSetLogLevel");
    return DDRegisteredClass(typeid(T), &T::ddLogLevel, &T::ddSetLogLevel);
  }

  const std::type_info& type() const { return type_; }
  std::uint32_t logLevel() const { return getter_(); }
  void setLogLevel(std::uint32_t level) const { setter_(level); }

 private:
  DDRegisteredClass(const std::type_info& type, std::uint32_t (*getter)(),
                    void (*setter)(std::uint32_t));

  const std::type_info& type_;
  std::uint32_t (*const getter_)();
  void (*const setter_)(std::uint32_t);
};

/// Registers a class; stands in its body.
#define DD_REGISTER_CLASS(Class) \
  inline static const DDRegisteredClass ddRegistration = DDRegisteredClass::registration<Class>()
